// Times reading a recorded track of 100,000 points (GPX and NMEA) and
// replaying it through a route of 2 x 500 stops along it; then a ride that
// crosses its own path many times, through stops along it. Targets: a GPX file read in under half
// a second, a branch replayed in under a second.
#include "geo.h"
#include "replay.h"
#include "trackreader.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>

namespace {

const int kPoints = 100000;
const int kStops = 500;
const int kRuns = 5;

// A bus at about 8 m/s through a town's streets, one fix a second, with a
// stop and its GPS scatter now and then. It turns left and right at
// crossings and never comes back over its path; a wandering one turns
// either way and crosses its path and the route many times.
QVector<cTrackPoint> drive(bool wandering)
{
    std::mt19937 random(14);
    std::uniform_real_distribution<double> unit(0, 1);
    QVector<cTrackPoint> points;
    double lon = 37.6;
    double lat = 55.75;
    double bearing = 15;
    const qint64 start = QDateTime(QDate(2024, 5, 1), QTime(5, 0), Qt::UTC).toMSecsSinceEpoch();
    while (points.size() < kPoints) {
        if (unit(random) < 0.02) {
            if (wandering)
                bearing += unit(random) < 0.5 ? 90 : -90;
            else
                bearing = bearing < 60 ? 105 : 15;
        }
        const double heading = bearing + (unit(random) - 0.5) * 6;
        const bool standing = points.size() % 200 > 190;
        double pointLon = lon;
        double pointLat = lat;
        if (standing)
            geo::destination(lon, lat, unit(random) * 360, unit(random) * 3, &pointLon, &pointLat);
        else
            geo::destination(lon, lat, heading, 6 + unit(random) * 4, &lon, &lat);
        cTrackPoint point;
        point.lon = standing ? pointLon : lon;
        point.lat = standing ? pointLat : lat;
        point.time = start + points.size() * 1000LL;
        points.append(point);
    }
    points.first().segmentStart = true;
    return points;
}

QByteArray gpxText(const QVector<cTrackPoint>& points)
{
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<gpx version=\"1.1\" creator=\"bench\" xmlns=\"http://www.topografix.com/GPX/1/1\" "
                      "xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v1\">\n"
                      "<trk><name>Bench</name><trkseg>\n";
    for (const cTrackPoint& point : points) {
        text += "<trkpt lat=\"" + QByteArray::number(point.lat, 'f', 7) + "\" lon=\""
            + QByteArray::number(point.lon, 'f', 7) + "\"><ele>151.4</ele><time>"
            + QDateTime::fromMSecsSinceEpoch(point.time, Qt::UTC).toString(Qt::ISODate).toLatin1()
            + "</time><extensions><gpxtpx:TrackPointExtension><gpxtpx:speed>8.1</gpxtpx:speed>"
              "</gpxtpx:TrackPointExtension></extensions></trkpt>\n";
    }
    return text + "</trkseg></trk>\n</gpx>\n";
}

QByteArray nmeaSentence(const QByteArray& body)
{
    int sum = 0;
    for (char c : body)
        sum ^= static_cast<unsigned char>(c);
    return '$' + body + '*' + QByteArray::number(sum, 16).rightJustified(2, '0').toUpper() + "\r\n";
}

QByteArray nmeaCoordinate(double value, int degreeDigits, char positive, char negative)
{
    const double magnitude = std::fabs(value);
    const int degrees = static_cast<int>(magnitude);
    return QByteArray::number(degrees).rightJustified(degreeDigits, '0')
        + QByteArray::number((magnitude - degrees) * 60, 'f', 4).rightJustified(7, '0') + ','
        + (value < 0 ? negative : positive);
}

QByteArray nmeaText(const QVector<cTrackPoint>& points)
{
    QByteArray text;
    for (const cTrackPoint& point : points) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(point.time, Qt::UTC);
        const QByteArray position
            = nmeaCoordinate(point.lat, 2, 'N', 'S') + ',' + nmeaCoordinate(point.lon, 3, 'E', 'W');
        const QByteArray clock = time.toString(QStringLiteral("hhmmss.zzz")).toLatin1();
        text += nmeaSentence("GPRMC," + clock + ",A," + position + ",15.7,,"
                             + time.toString(QStringLiteral("ddMMyy")).toLatin1() + ",,,A");
        text += nmeaSentence("GPGGA," + clock + ',' + position + ",1,09,0.9,151.4,M,14.0,M,,");
    }
    return text;
}

cRoute routeAlong(const QVector<cTrackPoint>& points)
{
    cRoute route;
    const int spacing = kPoints / kStops;
    for (int s = 0; s < kStops; ++s) {
        const int i = s * spacing + spacing / 2;
        cStop stop;
        stop.name = QStringLiteral("Остановка %1").arg(s + 1);
        stop.lon = points.at(i).lon;
        stop.lat = points.at(i).lat;
        stop.radius = 30 + s % 20;
        stop.course_enabled = true;
        stop.course_value = qRound(geo::bearingDegrees(points.at(i - 1).lon, points.at(i - 1).lat, points.at(i + 1).lon,
                                                       points.at(i + 1).lat))
            % 360;
        stop.course_diff = 90;
        route.direct.stops << stop;
        stop.course_value = (stop.course_value + 180) % 360;
        route.reverse.stops.prepend(stop);
    }
    return route;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Median and minimum of the runs, in milliseconds.
void report(const char* what, QVector<double> times, const char* target)
{
    std::sort(times.begin(), times.end());
    std::printf("%-40s min %7.1f ms, median %7.1f ms %s\n", what, times.first(), times.at(times.size() / 2), target);
}

QVector<double> timed(const std::function<bool()>& job)
{
    QVector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        QElapsedTimer timer;
        timer.start();
        if (!job())
            return {};
        times << timer.nsecsElapsed() / 1e6;
    }
    return times;
}

} // namespace

int main()
{
    const QVector<cTrackPoint> points = drive(false);
    QTemporaryDir dir;
    const QString gpxPath = dir.filePath(QStringLiteral("bench.gpx"));
    const QString nmeaPath = dir.filePath(QStringLiteral("bench.nmea"));
    const QByteArray gpx = gpxText(points);
    const QByteArray nmea = nmeaText(points);
    if (!dir.isValid() || !writeFile(gpxPath, gpx) || !writeFile(nmeaPath, nmea)) {
        std::fprintf(stderr, "cannot write the track files\n");
        return 1;
    }
    std::printf("track: %d points, GPX %lld bytes, NMEA %lld bytes; route: 2 x %d stops\n", kPoints,
                static_cast<long long>(gpx.size()), static_cast<long long>(nmea.size()), kStops);

    QString error;
    cTrackFile file;
    const auto readAll = [&](const QString& path) {
        return cTrackReader::read(path, &file, &error) && file.tracks.size() == 1
            && file.tracks.first().points.size() == kPoints;
    };
    const QVector<double> gpxTimes = timed([&] { return readAll(gpxPath); });
    const QVector<double> nmeaTimes = timed([&] { return readAll(nmeaPath); });
    if (gpxTimes.isEmpty() || nmeaTimes.isEmpty()) {
        std::fprintf(stderr, "reading went wrong: %s\n", qPrintable(error));
        return 1;
    }

    cTrack track;
    track.points = points;
    const cRoute route = routeAlong(points);
    cReplayResult result;
    const QVector<double> branchTimes = timed([&] {
        result = cReplay(track).replayBranch(route.direct, eBranchKind::Direct);
        return result.passes == 1 && result.count(eStopStatus::Announced) > kStops * 9 / 10;
    });
    const QVector<double> routeTimes = timed([&] {
        result = cReplay(track).replayRoute(route);
        return result.branch == eBranchKind::Direct;
    });
    // A ride that comes back over its path, with its stops on it.
    track.points = drive(true);
    const cRoute wanderingRoute = routeAlong(track.points);
    cReplayResult wandering;
    const QVector<double> wanderingTimes = timed([&] {
        wandering = cReplay(track).replayBranch(wanderingRoute.direct, eBranchKind::Direct);
        return wandering.passes > 1;
    });
    if (branchTimes.isEmpty() || routeTimes.isEmpty() || wanderingTimes.isEmpty()) {
        std::fprintf(stderr, "the replay went wrong\n");
        return 1;
    }

    report("read GPX", gpxTimes, "(target < 500 ms)");
    report("read NMEA", nmeaTimes, "");
    report("replay one branch", branchTimes, "(target < 1000 ms)");
    report("replay both branches, choose one", routeTimes, "");
    report("replay one branch, wandering ride", wanderingTimes, "");
    for (const cReplayResult* replayed : {&result, &wandering}) {
        std::printf("%s: %d announced, %d missed, %d out of order, %d repeated, %d passes\n",
                    replayed == &result ? "direct branch" : "wandering ride", replayed->count(eStopStatus::Announced),
                    replayed->count(eStopStatus::Missed), replayed->count(eStopStatus::OutOfOrder),
                    replayed->count(eStopStatus::Repeated), replayed->passes);
    }
    return 0;
}
