// Reads a generated city-sized GTFS feed (5 million stop times in a zip) the
// way the import does: the route list, then the stop patterns of one route
// and of every route, then builds and imports every route with courses.
// Targets: each read under 10 s, peak memory under 500 MB.

#include "gtfsfeed.h"
#include "gtfsroutebuilder.h"
#include "gtfssupport.h"
#include "projectmanager.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kRoutes = 400;
constexpr int kStopsPerPattern = 50;
constexpr int kTripsPerDirection = 125; // 400 x 2 x 125 x 50 = 5,000,000 stop times
constexpr int kStops = 4000;
constexpr int kShapePointsPerStop = 10;

QByteArray format(const char* pattern, ...)
{
    char line[256];
    va_list arguments;
    va_start(arguments, pattern);
    const int length = std::vsnprintf(line, sizeof line, pattern, arguments);
    va_end(arguments);
    return QByteArray(line, length);
}

double peakMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    }
    return -1;
}

double stopLat(int stop)
{
    return 55.6 + (stop / 100) * 0.004;
}

double stopLon(int stop)
{
    return 37.4 + (stop % 100) * 0.006;
}

// The stops a route's direction visits: a walk across the grid, reversed
// for direction 1.
int patternStop(int route, int direction, int index)
{
    const int position = direction == 0 ? index : kStopsPerPattern - 1 - index;
    return (route * 7 + position * 13) % kStops;
}

QByteArray time(int minutes)
{
    return format("%02d:%02d:00", minutes / 60, minutes % 60);
}

bool writeFeed(const QString& path, qint64* stopTimes)
{
    using gtfssupport::cZipWriter;
    cZipWriter zip(path);
    QByteArray text = "route_id,agency_id,route_short_name,route_long_name,route_type\n";
    for (int r = 0; r < kRoutes; ++r)
        text += format("R%d,A,%d,\"Маршрут %d, Центр — Окраина\",3\n", r, r, r);
    if (!zip.begin("routes.txt") || !zip.write(text) || !zip.end())
        return false;

    text = "stop_id,stop_name,stop_lat,stop_lon\n";
    for (int s = 0; s < kStops; ++s)
        text += format("S%d,Остановка %d,%.6f,%.6f\n", s, s, stopLat(s), stopLon(s));
    if (!zip.begin("stops.txt") || !zip.write(text) || !zip.end())
        return false;

    text = "route_id,service_id,trip_id,direction_id,shape_id\n";
    for (int r = 0; r < kRoutes; ++r) {
        for (int d = 0; d < 2; ++d) {
            for (int t = 0; t < kTripsPerDirection; ++t)
                text += format("R%d,WD,R%d_D%d_T%d,%d,SH%d_%d\n", r, r, d, t, d, r, d);
        }
    }
    if (!zip.begin("trips.txt") || !zip.write(text) || !zip.end())
        return false;

    if (!zip.begin("stop_times.txt")
        || !zip.write("trip_id,arrival_time,departure_time,stop_id,stop_sequence,pickup_type\n"))
        return false;
    *stopTimes = 0;
    for (int r = 0; r < kRoutes; ++r) {
        text.clear();
        for (int d = 0; d < 2; ++d) {
            for (int t = 0; t < kTripsPerDirection; ++t) {
                const QByteArray trip = format("R%d_D%d_T%d", r, d, t);
                for (int i = 0; i < kStopsPerPattern; ++i) {
                    const QByteArray at = time(300 + t * 7 + i * 2);
                    text += trip + ',' + at + ',' + at + ",S" + QByteArray::number(patternStop(r, d, i)) + ','
                        + QByteArray::number(i + 1) + ",0\n";
                }
                *stopTimes += kStopsPerPattern;
            }
        }
        if (!zip.write(text))
            return false;
    }
    if (!zip.end())
        return false;

    if (!zip.begin("shapes.txt") || !zip.write("shape_id,shape_pt_lat,shape_pt_lon,shape_pt_sequence\n"))
        return false;
    for (int r = 0; r < kRoutes; ++r) {
        text.clear();
        for (int d = 0; d < 2; ++d) {
            int sequence = 0;
            for (int i = 0; i + 1 < kStopsPerPattern; ++i) {
                const int from = patternStop(r, d, i);
                const int to = patternStop(r, d, i + 1);
                for (int k = 0; k < kShapePointsPerStop; ++k) {
                    const double f = double(k) / kShapePointsPerStop;
                    text += format("SH%d_%d,%.6f,%.6f,%d\n", r, d,
                                                 stopLat(from) + f * (stopLat(to) - stopLat(from)),
                                                 stopLon(from) + f * (stopLon(to) - stopLon(from)), ++sequence);
                }
            }
        }
        if (!zip.write(text))
            return false;
    }
    return zip.end() && zip.close();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("city.zip"));

    QElapsedTimer clock;
    clock.start();
    qint64 stopTimes = 0;
    if (!writeFeed(path, &stopTimes)) {
        std::fprintf(stderr, "writing the feed failed\n");
        return 1;
    }
    std::printf("feed: %lld stop times, %d routes, %.1f MB zip, written in %lld ms, peak %.1f MB so far\n",
                static_cast<long long>(stopTimes), kRoutes, QFileInfo(path).size() / 1e6,
                static_cast<long long>(clock.elapsed()), peakMegabytes());

    int progressCalls = 0;
    const cGtfsProgress progress = [&progressCalls](qint64, qint64) {
        ++progressCalls;
        return true;
    };
    cGtfsFeed feed;
    QString error;
    clock.restart();
    if (!feed.open(path, progress, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::printf("route list:            %lld ms (%d routes)\n", static_cast<long long>(clock.elapsed()),
                feed.routes().size());

    clock.restart();
    if (!feed.loadPatterns({feed.findRoute(QStringLiteral("R200"))}, progress, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::printf("patterns of one route: %lld ms\n", static_cast<long long>(clock.elapsed()));

    QVector<int> all;
    for (int i = 0; i < feed.routes().size(); ++i)
        all << i;
    clock.restart();
    if (!feed.loadPatterns(all, progress, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    std::printf("patterns of all routes: %lld ms\n", static_cast<long long>(clock.elapsed()));

    clock.restart();
    QVector<cGtfsRouteChoice> choices;
    for (const int route : all)
        choices << feed.defaultChoice(route);
    cGtfsBuildOptions options;
    options.course = true;
    QList<cRoute> routes;
    if (!cGtfsRouteBuilder(feed, options).buildAll(choices, &routes, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    cProjectManager manager;
    manager.importRoutes(routes);
    std::printf("build and import all:  %lld ms (%d routes)\n", static_cast<long long>(clock.elapsed()),
                manager.project()->routes.size());
    std::printf("progress reports:      %d\n", progressCalls);
    std::printf("peak memory (VmHWM):   %.1f MB\n", peakMegabytes());
    return 0;
}
