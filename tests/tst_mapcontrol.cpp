#include <QtTest>
class tst_mapcontrol : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_mapcontrol)
#include "tst_mapcontrol.moc"
