#include <QtTest>
class tst_mapviewer : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_mapviewer)
#include "tst_mapviewer.moc"
