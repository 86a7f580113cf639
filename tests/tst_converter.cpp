#include <QtTest>
class tst_converter : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_converter)
#include "tst_converter.moc"
