#include <QtTest>
class tst_routeeditor : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_routeeditor)
#include "tst_routeeditor.moc"
