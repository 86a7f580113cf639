#include "replay.h"
#include "trackindex.h"
#include "trackreader.h"

#include "geo.h"

#include <QDateTime>
#include <QJsonArray>
#include <QtTest>

#include <cmath>

namespace {

const QString tracksDir = QStringLiteral(VOSK_SHARED_DIR "/tracks/");

bool loadTrack(const QString& file, int index, cTrack* track)
{
    cTrackFile tracks;
    QString error;
    if (!cTrackReader::read(tracksDir + file, &tracks, &error) || index >= tracks.tracks.size()) {
        qWarning() << file << error;
        return false;
    }
    *track = tracks.tracks.at(index);
    return true;
}

// A stop centred on a track point, its course (when `courseDiff` is not 0)
// the direction from the point before to the point after.
cStop stopOn(const cTrack& track, int i, int radius, int courseDiff)
{
    cStop stop;
    stop.name = QStringLiteral("P%1").arg(i);
    stop.lon = track.points.at(i).lon;
    stop.lat = track.points.at(i).lat;
    stop.radius = radius;
    if (courseDiff > 0) {
        const cTrackPoint& before = track.points.at(i - 1);
        const cTrackPoint& after = track.points.at(i + 1);
        stop.course_enabled = true;
        stop.course_value = qRound(geo::bearingDegrees(before.lon, before.lat, after.lon, after.lat)) % 360;
        stop.course_diff = courseDiff;
    }
    return stop;
}

// A synthetic ride from a point in Moscow: legs driven with a point every
// few metres, one second apart, and standstills with a repeating GPS scatter.
class cDrive
{
public:
    cDrive() { add(); }

    cDrive& go(double bearing, double metres, double step = 5)
    {
        for (double done = step; done <= metres + 1e-9; done += step) {
            geo::destination(m_lon, m_lat, bearing, step, &m_lon, &m_lat);
            add();
        }
        return *this;
    }

    cDrive& stand(int points, double scatterMetres)
    {
        const double centreLon = m_lon;
        const double centreLat = m_lat;
        for (int i = 0; i < points; ++i) {
            geo::destination(centreLon, centreLat, i * 137.5, scatterMetres * ((i % 5) + 1) / 5, &m_lon, &m_lat);
            add();
        }
        m_lon = centreLon;
        m_lat = centreLat;
        return *this;
    }

    // A stop placed from where the drive is now; a negative course: none.
    cStop stop(const QString& name, double bearing, double metres, int radius, int courseValue = -1) const
    {
        cStop stop;
        stop.name = name;
        geo::destination(m_lon, m_lat, bearing, metres, &stop.lon, &stop.lat);
        stop.radius = radius;
        stop.course_enabled = courseValue >= 0;
        stop.course_value = std::max(0, courseValue);
        return stop;
    }

    cTrack track;

private:
    void add()
    {
        cTrackPoint point;
        point.lon = m_lon;
        point.lat = m_lat;
        point.time = 1700000000000LL + track.points.size() * 1000LL;
        point.segmentStart = track.points.isEmpty();
        track.points.append(point);
    }

    double m_lon = 37.6;
    double m_lat = 55.75;
};

// "announced missed | announced ..." : statuses in stop order, passes apart.
QString summary(const cReplayResult& result)
{
    QStringList passes;
    for (const cStopReplay& row : result.stops) {
        if (row.stop == 0)
            passes << QString();
        passes.last() += (row.stop ? QStringLiteral(" ") : QString()) + statusKey(row.status);
    }
    return passes.join(QStringLiteral(" | "));
}

QStringList announcementTimes(const cReplayResult& result)
{
    QStringList times;
    for (const cStopReplay& row : result.stops)
        times << QDateTime::fromMSecsSinceEpoch(row.time, Qt::UTC).toString(QStringLiteral("hh:mm:ss"));
    return times;
}

int fixValue(const cStopReplay& row, cSuggestedFix::eKind kind)
{
    for (const cSuggestedFix& fix : row.fixes) {
        if (fix.kind == kind)
            return fix.value;
    }
    return -1;
}

} // namespace

class tst_Replay : public QObject
{
    Q_OBJECT

private slots:
    void indexFindsWhatAFullSearchFinds();
    void carRideAsGpxAndNmea();
    void suggestedFixesCatchTheRide();
    void walkFindsItsBranch_data();
    void walkFindsItsBranch();
    void plannedRouteWithoutTimes();
    void zoneTouchedAtItsEdge();
    void courseWindows();
    void stopsOnOppositeSidesOfTheRoad();
    void standstillInsideZones();
    void passingTheSameStopsTwice();
    void stopsAnnouncedOutOfOrder();
};

// Around the hike's tracks, near and kilometres away, over stretches of the track.
void tst_Replay::indexFindsWhatAFullSearchFinds()
{
    cTrackFile file;
    QString error;
    QVERIFY2(cTrackReader::read(tracksDir + "korita-zbevnica.gpx", &file, &error), qPrintable(error));
    cTrack hike;
    for (const cTrack& track : file.tracks)
        hike.points += track.points;
    const cTrackIndex index(hike.points);
    const int count = hike.points.size();
    for (int i = 0; i < count; i += 37) {
        double lon = 0;
        double lat = 0;
        geo::destination(hike.points.at(i).lon, hike.points.at(i).lat, i * 7.0, (i % 5) * (i % 7) * 60.0, &lon, &lat);
        const int first = (i * 13) % count;
        const int end = std::min(count, first + 1 + (i * 29) % count);
        cNearPoint nearest;
        QVector<int> within;
        for (int j = 0; j < count; ++j) {
            const double metres = geo::distanceMetres(lon, lat, hike.points.at(j).lon, hike.points.at(j).lat);
            if (j >= first && j < end && (nearest.index < 0 || metres < nearest.metres))
                nearest = {j, metres};
            if (metres <= 150)
                within << j;
        }
        QCOMPARE(index.nearest(lon, lat, first, end).index, nearest.index);
        QVector<int> found;
        for (const cNearPoint& near : index.pointsWithin(lon, lat, 150))
            found << near.index;
        QCOMPARE(found, within);
    }
}

// The car leaves a car park slowly, stands two minutes at a crossing and
// comes back to where it started.
void tst_Replay::carRideAsGpxAndNmea()
{
    QStringList gpxTimes;
    for (const QString& file :
         {QStringLiteral("around-visnjan-with-car.gpx"), QStringLiteral("around-visnjan-with-car.nmea")}) {
        cTrack track;
        QVERIFY(loadTrack(file, 0, &track));
        cBranch branch;
        branch.stops << stopOn(track, 0, 30, 0);
        for (int i : {20, 30, 41, 49, 55})
            branch.stops << stopOn(track, i, 30, 90);
        branch.stops << stopOn(track, 70, 12, 0);
        for (int i : {85, 90})
            branch.stops << stopOn(track, i, 30, 90);

        const cReplayResult result = cReplay(track).replayBranch(branch, eBranchKind::Direct);
        // Back at the start the depot begins a second pass.
        QCOMPARE(summary(result),
                 QStringLiteral("announced announced announced announced announced announced announced "
                                "announced announced | announced missed missed missed missed missed "
                                "missed missed missed"));
        QCOMPARE(result.stops.at(6).announcements, 1);
        QCOMPARE(qRound(result.stops.at(10).closestMetres / 10), 18);
        if (gpxTimes.isEmpty())
            gpxTimes = announcementTimes(result);
        else
            QCOMPARE(announcementTimes(result), gpxTimes);

        const QJsonObject json = result.toJson();
        QCOMPARE(json.value("branch").toString(), QStringLiteral("direct"));
        const QJsonObject depot = json.value("stops").toArray().at(9).toObject();
        QCOMPARE(depot.value("stop").toInt(), 1);
        QCOMPARE(depot.value("pass").toInt(), 2);
        QCOMPARE(depot.value("status").toString(), QStringLiteral("announced"));
        QCOMPARE(depot.value("time").toString(), QStringLiteral("2020-12-18T06:22:36Z"));
    }
    QCOMPARE(gpxTimes.first(), QStringLiteral("06:15:50"));
}

// Each fix, applied, makes the stop announced on the same ride.
void tst_Replay::suggestedFixesCatchTheRide()
{
    cTrack track;
    QVERIFY(loadTrack(QStringLiteral("around-visnjan-with-car.gpx"), 0, &track));
    cBranch branch;
    branch.stops << stopOn(track, 30, 30, 90) << stopOn(track, 41, 30, 60) << stopOn(track, 49, 35, 90);
    cStop& reversed = branch.stops[1];
    reversed.course_value = (reversed.course_value + 180) % 360;
    // Moved off the road, 60 m to the left of the direction of travel.
    cStop& aside = branch.stops[2];
    geo::destination(aside.lon, aside.lat, aside.course_value - 90, 60, &aside.lon, &aside.lat);

    const cReplay replay(track);
    cReplayResult result = replay.replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced missed missed"));
    const int original = (reversed.course_value + 180) % 360;
    QCOMPARE(result.stops.at(1).reason,
             QStringLiteral("inside the zone, heading 142° outside %1° ± 30°").arg(reversed.course_value));
    QCOMPARE(fixValue(result.stops.at(1), cSuggestedFix::eKind::CourseValue), original);
    QCOMPARE(result.stops.at(2).reason, QStringLiteral("never inside the zone (closest 60 m, radius 35 m)"));
    QCOMPARE(fixValue(result.stops.at(2), cSuggestedFix::eKind::CourseValue), -1);

    reversed.course_value = fixValue(result.stops.at(1), cSuggestedFix::eKind::CourseValue);
    aside.radius = fixValue(result.stops.at(2), cSuggestedFix::eKind::Radius);
    QVERIFY(aside.radius > 60 && aside.radius < 70);
    result = replay.replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced announced announced"));
}

void tst_Replay::walkFindsItsBranch_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("track");
    QTest::addColumn<bool>("backwards");
    QTest::newRow("hike, GPX 1.0") << "korita-zbevnica.gpx" << 1 << false;
    QTest::newRow("hike, NMEA") << "korita-zbevnica.nmea" << 1 << false;
    QTest::newRow("hike walked back") << "korita-zbevnica.gpx" << 1 << true;
    QTest::newRow("walk round a lake") << "cerknicko-jezero.gpx" << 0 << false;
}

// Stops every 20 points of the walk in the direct branch; the reverse branch
// has them the other way round with reversed courses.
void tst_Replay::walkFindsItsBranch()
{
    QFETCH(QString, file);
    QFETCH(int, track);
    QFETCH(bool, backwards);
    cTrack walk;
    QVERIFY(loadTrack(file, track, &walk));
    cRoute route;
    for (int i = 20; i < 170; i += 20) {
        cStop stop = stopOn(walk, i, 25, 120);
        route.direct.stops << stop;
        stop.course_value = (stop.course_value + 180) % 360;
        route.reverse.stops.prepend(stop);
    }
    if (backwards) {
        std::reverse(walk.points.begin(), walk.points.end());
        for (cTrackPoint& point : walk.points)
            point.segmentStart = false;
    }
    const cReplayResult result = cReplay(walk).replayRoute(route);
    QCOMPARE(result.branch, backwards ? eBranchKind::Reverse : eBranchKind::Direct);
    QCOMPARE(result.passes, 1);
    QVERIFY2(result.clean(), qPrintable(summary(result)));
}

// A route planned on a map: no times, points a hundred metres apart.
void tst_Replay::plannedRouteWithoutTimes()
{
    cTrack planned;
    QVERIFY(loadTrack(QStringLiteral("route.gpx"), 0, &planned));
    cBranch branch;
    for (int i : {5, 25, 45})
        branch.stops << stopOn(planned, i, 20, 60);
    const cReplayResult result = cReplay(planned).replayBranch(branch, eBranchKind::Direct);
    QVERIFY2(result.clean(), qPrintable(summary(result)));
    const QJsonObject row = result.toJson().value("stops").toArray().first().toObject();
    QVERIFY(row.value("time").isNull());
    QVERIFY(!row.value("heading").isNull());
}

// Only the points count, not the line between them; the distance that
// counts is the great-circle one, at most the radius.
void tst_Replay::zoneTouchedAtItsEdge()
{
    cDrive drive;
    drive.go(90, 100, 1);
    cBranch branch;
    branch.stops << drive.stop(QStringLiteral("Inside"), 0, 34.9, 35)
                 << drive.stop(QStringLiteral("Outside"), 0, 35.4, 35);
    drive.go(90, 100, 1);
    const cReplayResult result = cReplay(drive.track).replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced missed"));
    QCOMPARE(qRound(result.stops.at(0).closestMetres * 10), 349);
    QCOMPARE(result.stops.at(1).reason, QStringLiteral("never inside the zone (closest 36 m, radius 35 m)"));
    QCOMPARE(fixValue(result.stops.at(1), cSuggestedFix::eKind::Radius), 36 + cReplay::radiusMarginMetres);
}

// 350° with a sector 40° wide; driving north with the receiver reporting
// east, its course counts from a speed of 1 m/s.
void tst_Replay::courseWindows()
{
    QStringList outcomes;
    for (int heading : {5, 15, 335, 325, 350}) {
        cDrive drive;
        drive.go(heading, 100);
        cBranch branch;
        branch.stops << drive.stop(QStringLiteral("North"), 0, 0, 30, 350);
        branch.stops.first().course_diff = 40;
        drive.go(heading, 100);
        const cReplayResult result = cReplay(drive.track).replayBranch(branch, eBranchKind::Direct);
        outcomes << statusKey(result.stops.first().status);
        if (heading == 15)
            QCOMPARE(result.stops.first().reason, QStringLiteral("inside the zone, heading 15° outside 350° ± 20°"));
    }
    for (double speed : {0.9, 1.0}) {
        cDrive drive;
        drive.go(0, 100);
        cBranch branch;
        branch.stops << drive.stop(QStringLiteral("East"), 0, 0, 30, 90);
        drive.go(0, 100);
        for (cTrackPoint& point : drive.track.points) {
            point.course = 90;
            point.speed = speed;
        }
        outcomes << statusKey(cReplay(drive.track).replayBranch(branch, eBranchKind::Direct).stops.first().status);
    }
    QCOMPARE(outcomes.join(' '), QStringLiteral("announced missed announced missed announced missed announced"));

    // Entering northbound, turning east at the stop: announced once the
    // heading has come round, still inside the zone.
    cDrive drive;
    drive.go(0, 100);
    cBranch branch;
    branch.stops << drive.stop(QStringLiteral("Corner"), 0, 0, 30, 90);
    const int corner = drive.track.points.size() - 1;
    drive.go(90, 102, 6);
    const cStopReplay turned = cReplay(drive.track).replayBranch(branch, eBranchKind::Direct).stops.first();
    QCOMPARE(turned.announcedAt, corner + 1);
    QCOMPARE(qRound(turned.heading), 90);
}

// Both zones cover the whole road; only the course tells the sides apart.
void tst_Replay::stopsOnOppositeSidesOfTheRoad()
{
    cDrive drive;
    drive.go(90, 100);
    cRoute route;
    route.direct.stops << drive.stop(QStringLiteral("Eastbound"), 180, 10, 25, 90);
    route.reverse.stops << drive.stop(QStringLiteral("Westbound"), 0, 10, 25, 270);
    drive.go(90, 100);

    const cReplay east(drive.track);
    QCOMPARE(east.replayRoute(route).branch, eBranchKind::Direct);
    const cReplayResult wrongSide = east.replayBranch(route.reverse, eBranchKind::Reverse);
    QCOMPARE(wrongSide.stops.first().reason, QStringLiteral("inside the zone, heading 90° outside 270° ± 30°"));
    QCOMPARE(fixValue(wrongSide.stops.first(), cSuggestedFix::eKind::CourseValue), 90);
    QCOMPARE(fixValue(wrongSide.stops.first(), cSuggestedFix::eKind::Radius), -1);

    std::reverse(drive.track.points.begin(), drive.track.points.end());
    const cReplayResult west = cReplay(drive.track).replayRoute(route);
    QCOMPARE(west.branch, eBranchKind::Reverse);
    QVERIFY(west.clean());
}

void tst_Replay::standstillInsideZones()
{
    cDrive drive;
    drive.go(90, 200);
    cBranch branch;
    // Stands in the middle of a zone: the scatter never leaves it.
    branch.stops << drive.stop(QStringLiteral("Inside"), 0, 3, 30);
    // Stands inside a zone whose course is the other way: the scatter points
    // every way, the heading must stay the one the car arrived with.
    branch.stops << drive.stop(QStringLiteral("Reversed"), 0, 3, 30, 270);
    const int standFrom = drive.track.points.size();
    drive.stand(300, 2.4).go(90, 200);
    // Stands on the edge of a zone: in and out with the scatter.
    branch.stops << drive.stop(QStringLiteral("Edge"), 90, 32, 30);
    drive.stand(20, 4).go(90, 200);

    const cReplay replay(drive.track);
    const cReplayResult result = replay.replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced missed repeated"));
    QCOMPARE(result.stops.at(0).announcements, 1);
    for (int i = standFrom; i < standFrom + 300; ++i)
        QVERIFY2(geo::angleBetween(replay.headings().at(i), 90) < 45, qPrintable(QString::number(i)));
    QVERIFY(result.stops.at(2).announcements > 1);
    QCOMPARE(result.stops.at(2).reason,
             QStringLiteral("announced %1 times on one pass").arg(result.stops.at(2).announcements));
}

// Round the block twice: the stops are passed twice, in two passes.
void tst_Replay::passingTheSameStopsTwice()
{
    cDrive drive;
    cBranch branch;
    branch.stops << drive.stop(QStringLiteral("First"), 90, 100, 30, 90)
                 << drive.stop(QStringLiteral("Second"), 90, 300, 30);
    for (int round = 0; round < 2; ++round)
        drive.go(90, 400).go(0, 300).go(270, 400).go(180, 300);

    const cReplayResult result = cReplay(drive.track).replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced announced | announced announced"));
    QVERIFY(result.clean());
    QCOMPARE(result.stops.at(2).pass, 1);
    QCOMPARE(result.toJson().value("passes").toInt(), 2);
}

void tst_Replay::stopsAnnouncedOutOfOrder()
{
    cDrive drive;
    cBranch branch;
    for (double metres : {100, 400, 300, 200, 500})
        branch.stops << drive.stop(QStringLiteral("At %1").arg(metres), 90, metres, 30, 90);
    drive.go(90, 600);
    const cReplayResult result = cReplay(drive.track).replayBranch(branch, eBranchKind::Direct);
    QCOMPARE(summary(result), QStringLiteral("announced announced out-of-order out-of-order announced"));
    QCOMPARE(result.stops.at(2).reason, QStringLiteral("announced before stop 2, At 400"));
    QCOMPARE(result.stops.at(3).reason, QStringLiteral("announced before stop 2, At 400"));
}

QTEST_GUILESS_MAIN(tst_Replay)
#include "tst_replay.moc"
