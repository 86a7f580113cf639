#include <QtTest>
class tst_player : public QObject { Q_OBJECT };
QTEST_GUILESS_MAIN(tst_player)
#include "tst_player.moc"
