// The map's speed against the loopback tile server: the frame time of a
// full-HD view of tiles already loaded, and the requests of a long pan, each
// of which must be made once. Runs headless unless a platform is chosen.

#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "tileserver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>

using namespace qmapcontrol;

namespace {

const QSize viewSize(1920, 1080);
const int frames = 300;
const int panTiles = 50;
const int panStep = 32;

// Lets the map fetch until the server has been quiet for a while.
void settle(const cTileServer& server)
{
    int seen = -1;
    while (seen != server.requests().size()) {
        seen = server.requests().size();
        QTest::qWait(300);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir cache;
    cTileServer server;
    if (!server.start()) {
        std::fprintf(stderr, "cannot start the tile server\n");
        return 1;
    }
    qputenv(MapAdapter::serverVariable, server.url().toLatin1());

    OSMMapAdapter adapter;
    MapLayer layer(QStringLiteral("OSM"), &adapter);
    MapControl map;
    map.enablePersistentCache(QDir(cache.path()), 100);
    map.resize(viewSize);
    map.addLayer(&layer);
    map.showScale(true);
    map.setView(QPointF(37.62, 55.75));
    map.setZoom(15);
    map.show();
    if (!QTest::qWaitForWindowExposed(&map, 5000))
        return 1;
    settle(server);
    const int firstTiles = server.requests().size();

    QVector<double> times;
    QElapsedTimer timer;
    for (int i = 0; i < frames; ++i) {
        timer.start();
        map.repaint();
        times << timer.nsecsElapsed() / 1e6;
    }
    std::sort(times.begin(), times.end());
    const double median = times.at(frames / 2);

    server.clearRequests();
    QElapsedTimer panTimer;
    panTimer.start();
    const QPoint middle(viewSize.width() / 2, viewSize.height() / 2);
    for (int moved = 0; moved < panTiles * MapAdapter::tileSize; moved += panStep) {
        map.setView(map.coordinateAt(middle + QPoint(panStep, 0)));
        map.repaint();
        QTest::qWait(5);
    }
    const double panMs = panTimer.elapsed();
    settle(server);
    const QStringList requests = server.requests();
    const int distinct = QSet<QString>(requests.cbegin(), requests.cend()).size();

    std::printf("platform:                  %s\n", qPrintable(QApplication::platformName()));
    std::printf("view:                      %d x %d, %d tiles loaded\n", viewSize.width(), viewSize.height(),
                firstTiles);
    std::printf("repaint, median of %d:    %.2f ms (fastest %.2f, 90%% under %.2f)\n", frames, median,
                times.first(), times.at(frames * 9 / 10));
    std::printf("pan across %d tiles:       %.0f ms in %d steps\n", panTiles, panMs,
                panTiles * MapAdapter::tileSize / panStep);
    std::printf("pan requests:              %d, distinct %d\n", int(requests.size()), distinct);
    const bool ok = median < 8.0 && distinct == requests.size();
    std::printf("%s\n", ok ? "within budget" : "OVER BUDGET");
    return ok ? 0 : 1;
}
