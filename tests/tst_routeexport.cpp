#include <QtTest>
class tst_routeexport : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_routeexport)
#include "tst_routeexport.moc"
