// Linked like the editor: every allocation of the process, the C library's,
// C++'s and Qt's own, must land in mimalloc's heap, and on large pages. If
// the link order ever let the C library's malloc win, blocks from the two
// allocators would meet in free() and realloc().

#include "memorypages.h"

#include <QByteArray>
#include <QString>
#include <QtTest>

#include <cstdlib>
#include <memory>

#include <mimalloc.h>

class tst_memorypages : public QObject
{
    Q_OBJECT

private slots:
    void everyAllocationIsMimallocs();
};

void tst_memorypages::everyAllocationIsMimallocs()
{
    QVERIFY(usesLargeMemoryPages());

    void* block = std::malloc(48);
    QVERIFY(mi_is_in_heap_region(block));
    block = std::realloc(block, 1 << 20);
    QVERIFY(mi_is_in_heap_region(block));
    std::free(block);

    const auto object = std::make_unique<char[]>(200);
    QVERIFY(mi_is_in_heap_region(object.get()));

    // Allocated inside Qt's library, not by this program's code.
    const QByteArray bytes(100000, 'x');
    QVERIFY(mi_is_in_heap_region(bytes.constData()));
    const QString text = QString::number(1234567).repeated(50);
    QVERIFY(mi_is_in_heap_region(text.constData()));
}

QTEST_APPLESS_MAIN(tst_memorypages)
#include "tst_memorypages.moc"
