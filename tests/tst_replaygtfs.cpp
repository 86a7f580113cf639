#include "gtfsroutebuilder.h"
#include "gtfssupport.h"
#include "projectmanager.h"
#include "replay.h"
#include "stopfixer.h"

#include "geo.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

// A bus driving the path at 10 m/s, one fix a second.
cTrack busRide(const QVector<cGtfsPoint>& path)
{
    const double step = 10;
    cTrack track;
    track.name = QStringLiteral("bus");
    const auto add = [&track](double lon, double lat) {
        cTrackPoint point;
        point.lon = lon;
        point.lat = lat;
        point.time = 1600000000000LL + track.points.size() * 1000LL;
        point.segmentStart = track.points.isEmpty();
        track.points.append(point);
    };
    double carried = 0;
    for (int i = 1; i < path.size(); ++i) {
        const cGtfsPoint& a = path.at(i - 1);
        const cGtfsPoint& b = path.at(i);
        const double length = geo::distanceMetres(a.lon, a.lat, b.lon, b.lat);
        const double bearing = geo::bearingDegrees(a.lon, a.lat, b.lon, b.lat);
        for (double along = carried; along < length; along += step) {
            double lon = 0;
            double lat = 0;
            geo::destination(a.lon, a.lat, bearing, along, &lon, &lat);
            add(lon, lat);
        }
        carried = std::fmod(carried - length, step);
        if (carried < 0)
            carried += step;
    }
    add(path.last().lon, path.last().lat);
    return track;
}

// A route of the feed as the importer builds it, with courses along the
// bus's path, and the rides along the paths of its branches.
struct cFeedRoute
{
    cRoute route;
    cTrack direct;
    cTrack reverse;
};

bool feedRoute(const QString& feed, const QString& shortName, cFeedRoute* built)
{
    cGtfsFeed gtfs;
    QString error;
    const int index = gtfs.open(gtfssupport::sharedFeed(feed), nullptr, &error) ? gtfs.findRoute(shortName) : -1;
    if (index < 0 || !gtfs.loadPatterns({index}, nullptr, &error)) {
        qWarning().noquote() << feed << shortName << error;
        return false;
    }
    cGtfsBuildOptions options;
    options.course = true;
    options.courseDiff = 90;
    const cGtfsRouteChoice choice = gtfs.defaultChoice(index);
    if (!cGtfsRouteBuilder(gtfs, options).build(choice, &built->route, &error))
        return false;
    const auto ride = [&gtfs, index](int pattern) {
        return pattern < 0 ? cTrack() : busRide(gtfs.shape(gtfs.patterns(index).at(pattern).shapeId));
    };
    built->direct = ride(choice.direct);
    built->reverse = ride(choice.reverse);
    return !built->direct.points.isEmpty();
}

QStringList notAnnounced(const cReplayResult& result)
{
    QStringList rows;
    for (const cStopReplay& row : result.stops) {
        if (row.status != eStopStatus::Announced)
            rows << QStringLiteral("%1 %2: %3").arg(row.stop + 1).arg(statusKey(row.status), row.reason);
    }
    return rows;
}

} // namespace

class tst_ReplayGtfs : public QObject
{
    Q_OBJECT

private slots:
    void busPathsAnnounceEveryStop_data();
    void busPathsAnnounceEveryStop();
    void faultsFoundAndFixed();
};

// The feeds' stops lie beside the paths their buses drive; each branch's own
// ride is recognised as that branch. In São Paulo the reverse trip starts by
// circling the block round its second stop, which the device announces again
// on the way back in.
void tst_ReplayGtfs::busPathsAnnounceEveryStop_data()
{
    QTest::addColumn<QString>("feed");
    QTest::addColumn<QString>("route");
    QTest::addColumn<QStringList>("reverseFaults");
    QTest::newRow("Porto Alegre") << "poa.zip" << "T2" << QStringList();
    QTest::newRow("São Paulo, both directions")
        << "saopaulo.zip" << "148L-10" << QStringList{"2 repeated: announced 2 times on one pass"};
    QTest::newRow("Fortaleza") << "fortaleza.zip" << "806" << QStringList();
}

void tst_ReplayGtfs::busPathsAnnounceEveryStop()
{
    QFETCH(QString, feed);
    QFETCH(QString, route);
    QFETCH(QStringList, reverseFaults);
    cFeedRoute built;
    QVERIFY(feedRoute(feed, route, &built));
    const cReplayResult direct = cReplay(built.direct).replayRoute(built.route);
    QCOMPARE(direct.branch, eBranchKind::Direct);
    QCOMPARE(notAnnounced(direct), QStringList());
    QCOMPARE(direct.stops.size(), built.route.direct.stops.size());
    if (built.reverse.points.isEmpty())
        return;
    const cReplayResult reverse = cReplay(built.reverse).replayRoute(built.route);
    QCOMPARE(reverse.branch, eBranchKind::Reverse);
    QCOMPARE(notAnnounced(reverse), reverseFaults);
}

// One stop placed across the street, out of the bus's reach, another with
// its course turned round: each is missed for its own reason, and the fix
// each suggests, applied, brings the ride back to every stop.
void tst_ReplayGtfs::faultsFoundAndFixed()
{
    cFeedRoute built;
    QVERIFY(feedRoute("poa.zip", "T2", &built));
    cProjectManager manager;
    manager.project()->routes << built.route;
    QList<cStop>& stops = manager.project()->routes[0].direct.stops;
    cStop& moved = stops[10];
    geo::destination(moved.lon, moved.lat, moved.course_value + 90, 90, &moved.lon, &moved.lat);
    cStop& turned = stops[20];
    const int course = turned.course_value;
    turned.course_value = (course + 180) % 360;

    const cReplay replay(built.direct);
    const cReplayResult result = replay.replayBranch(manager.project()->routes[0].direct, eBranchKind::Direct);
    const QStringList missed = notAnnounced(result);
    QCOMPARE(missed.size(), 2);
    QVERIFY2(missed[0].startsWith("11 missed: never inside the zone (closest"), qPrintable(missed[0]));
    QVERIFY2(qAbs(result.stops[10].closestMetres - 90) < 10, qPrintable(missed[0]));
    QVERIFY2(missed[1].startsWith("21 missed: inside the zone, heading"), qPrintable(missed[1]));
    QVERIFY2(missed[1].endsWith(QStringLiteral("outside %1° ± 45°").arg(turned.course_value)), qPrintable(missed[1]));
    QCOMPARE(result.stops[20].fixes.size(), 1);
    QCOMPARE(result.stops[20].fixes[0].kind, cSuggestedFix::eKind::CourseValue);
    QCOMPARE(result.stops[20].fixes[0].value, course);

    cStopFixer fixer(&manager);
    QSignalSpy announced(&fixer, &cStopFixer::stopChanged);
    for (int stop : {10, 20}) {
        const QVector<cSuggestedFix>& fixes = result.stops[stop].fixes;
        QVERIFY(!fixes.isEmpty());
        QVERIFY(fixer.apply(stops[stop].id, fixes.first()));
    }
    QCOMPARE(announced.count(), 2);
    QCOMPARE(announced[0][0].toUuid(), stops[10].id);
    QCOMPARE(turned.course_value, course);
    QCOMPARE(notAnnounced(replay.replayBranch(manager.project()->routes[0].direct, eBranchKind::Direct)),
             QStringList());

    QVERIFY(!fixer.apply(QUuid::createUuid(), result.stops[20].fixes[0]));
    QCOMPARE(announced.count(), 2);
}

QTEST_GUILESS_MAIN(tst_ReplayGtfs)
#include "tst_replaygtfs.moc"
