// The map's speed against the loopback tile server: the frame time of a
// full-HD view of tiles already loaded, the requests of a long pan, each of
// which must be made once, and the frame times of the same pan from a disk
// cache of 500 tiles with nothing decoded yet. Runs headless unless a
// platform is chosen.

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
const int diskTiles = 500;

// Lets the map fetch until the server has been quiet for a while.
void settle(const cTileServer& server)
{
    int seen = -1;
    while (seen != server.requests().size()) {
        seen = server.requests().size();
        QTest::qWait(300);
    }
}

// Pans the map `tiles` tiles east in steps of `panStep` pixels, repainting
// after each; returns each repaint's time in milliseconds, sorted.
QVector<double> pan(MapControl& map, int tiles)
{
    QVector<double> times;
    QElapsedTimer timer;
    const QPoint middle(viewSize.width() / 2, viewSize.height() / 2);
    for (int moved = 0; moved < tiles * MapAdapter::tileSize; moved += panStep) {
        map.setView(map.coordinateAt(middle + QPoint(panStep, 0)));
        timer.start();
        map.repaint();
        times << timer.nsecsElapsed() / 1e6;
        QTest::qWait(5);
    }
    std::sort(times.begin(), times.end());
    return times;
}

// A full-HD map of the layer at the pan's start, keeping its tiles in `cache`.
bool showMap(MapControl& map, MapLayer& layer, const QString& cache)
{
    map.enablePersistentCache(QDir(cache), 100);
    map.resize(viewSize);
    map.addLayer(&layer);
    map.showScale(true);
    map.setView(QPointF(37.62, 55.75));
    map.setZoom(15);
    map.show();
    return QTest::qWaitForWindowExposed(&map, 5000);
}

int distinct(const QStringList& requests)
{
    return QSet<QString>(requests.cbegin(), requests.cend()).size();
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
    if (!showMap(map, layer, cache.path()))
        return 1;
    settle(server);
    const QStringList firstRequests = server.requests();
    const int firstTiles = firstRequests.size();

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
    pan(map, panTiles);
    const double panMs = panTimer.elapsed();
    settle(server);
    const QStringList requests = server.requests();

    // A fast pan drops the tiles it passed before they came: the path is
    // walked again, waiting at each view, and beyond until the disk holds
    // the tiles asked for. Then a map with nothing decoded pans the path again.
    map.setView(QPointF(37.62, 55.75));
    for (int step = 0; step <= panTiles * MapAdapter::tileSize / (viewSize.width() / 2)
         || distinct(firstRequests + server.requests()) < diskTiles; ++step) {
        map.repaint();
        settle(server);
        map.setView(map.coordinateAt(QPoint(viewSize.width(), viewSize.height() / 2)));
    }
    const int onDisk = distinct(firstRequests + server.requests());
    map.hide();
    server.clearRequests();
    MapControl cold;
    if (!showMap(cold, layer, cache.path()))
        return 1;
    const QVector<double> coldTimes = pan(cold, panTiles);
    const double coldMedian = coldTimes.at(coldTimes.size() / 2);
    const double coldMax = coldTimes.last();

    std::printf("platform:                  %s\n", qPrintable(QApplication::platformName()));
    std::printf("view:                      %d x %d, %d tiles loaded\n", viewSize.width(), viewSize.height(),
                firstTiles);
    std::printf("repaint, median of %d:    %.2f ms (fastest %.2f, 90%% under %.2f)\n", frames, median,
                times.first(), times.at(frames * 9 / 10));
    std::printf("pan across %d tiles:       %.0f ms in %d steps\n", panTiles, panMs,
                panTiles * MapAdapter::tileSize / panStep);
    std::printf("pan requests:              %d, distinct %d\n", int(requests.size()), distinct(requests));
    std::printf("cold pan, %d tiles on disk: frame median %.2f ms, max %.2f ms, %d requests\n", onDisk,
                coldMedian, coldMax, int(server.requests().size()));
    const bool ok = median < 8.0 && distinct(requests) == requests.size() && onDisk >= diskTiles
        && coldMedian < 8.0 && coldMax < 30.0 && server.requests().isEmpty();
    std::printf("%s\n", ok ? "within budget" : "OVER BUDGET");
    return ok ? 0 : 1;
}
