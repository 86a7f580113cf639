#include "gtfsfeed.h"
#include "gtfsroutebuilder.h"
#include "gtfssupport.h"
#include "projectmanager.h"
#include "testsupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace gtfssupport;
using testsupport::stopNames;

namespace {

QVector<int> allRoutes(const cGtfsFeed& feed)
{
    QVector<int> routes;
    for (int i = 0; i < feed.routes().size(); ++i)
        routes << i;
    return routes;
}

QVector<cGtfsRouteChoice> defaultChoices(const cGtfsFeed& feed, const QVector<int>& routes)
{
    QVector<cGtfsRouteChoice> choices;
    for (const int route : routes)
        choices << feed.defaultChoice(route);
    return choices;
}

QList<int> courses(const QList<cStop>& stops)
{
    QList<int> values;
    for (const cStop& stop : stops)
        values << (stop.course_enabled ? stop.course_value : -1);
    return values;
}

// Lines of a feed file split plainly at commas: enough for files without
// quoted fields, and independent of the reader under test.
QList<QByteArrayList> plainRows(const QByteArray& text)
{
    QList<QByteArrayList> rows;
    for (const QByteArray& line : text.split('\n')) {
        if (!line.trimmed().isEmpty())
            rows << line.trimmed().split(',');
    }
    return rows;
}

} // namespace

class tst_GtfsImport : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    // Opens a feed and builds the default choice of the named routes (all
    // when none is named).
    bool build(const QString& path, const QStringList& names, const cGtfsBuildOptions& options, cGtfsFeed* feed,
               QList<cRoute>* built)
    {
        QString error;
        if (!feed->open(path, nullptr, &error)) {
            qWarning().noquote() << error;
            return false;
        }
        QVector<int> routes;
        for (const QString& name : names)
            routes << feed->findRoute(name);
        if (names.isEmpty())
            routes = allRoutes(*feed);
        const bool ok = feed->loadPatterns(routes, nullptr, &error)
            && cGtfsRouteBuilder(*feed, options).buildAll(defaultChoices(*feed, routes), built, &error);
        if (!ok)
            qWarning().noquote() << error;
        return ok;
    }

    // Imports into a fresh project, saves it and opens the file again.
    QList<cRoute> roundTrip(const QList<cRoute>& routes, const QString& file)
    {
        cProjectManager manager;
        manager.importRoutes(routes);
        if (!manager.saveProject(file))
            return {};
        cProjectManager reader;
        testsupport::cMessageCapture quiet; // the reader logs every field left out
        return reader.openProject(file) ? reader.project()->routes : QList<cRoute>();
    }

private slots:
    void publicFeeds_data()
    {
        QTest::addColumn<QString>("feed");
        QTest::addColumn<int>("routes");
        QTest::addColumn<int>("trips");
        QTest::newRow("Porto Alegre") << "poa.zip" << 4 << 387;
        QTest::newRow("São Paulo") << "saopaulo.zip" << 72 << 92;
        QTest::newRow("Fortaleza") << "fortaleza.zip" << 14 << 2292;
    }

    // Every trip lands in exactly one pattern of its route.
    void publicFeeds()
    {
        QFETCH(QString, feed);
        cGtfsFeed gtfs;
        QString error;
        QVERIFY2(gtfs.open(sharedFeed(feed), nullptr, &error), qPrintable(error));
        QTEST(gtfs.routes().size(), "routes");
        QVERIFY2(gtfs.loadPatterns(allRoutes(gtfs), nullptr, &error), qPrintable(error));
        int listed = 0;
        int inPatterns = 0;
        for (int route = 0; route < gtfs.routes().size(); ++route) {
            listed += gtfs.routes().at(route).tripCount;
            for (const cGtfsPattern& pattern : gtfs.patterns(route))
                inPatterns += pattern.tripCount;
        }
        QTEST(listed, "trips");
        QTEST(inPatterns, "trips");
    }

    void fortalezaHasNoDirections()
    {
        cGtfsFeed feed;
        QString error;
        QVERIFY(feed.open(sharedFeed("fortaleza.zip"), nullptr, &error));
        const int route = feed.findRoute("804");
        QVERIFY(feed.loadPatterns({route}, nullptr, &error));
        QCOMPARE(feed.patterns(route).size(), 2);
        QCOMPARE(feed.patterns(route).at(0).tripCount, 237);
        QCOMPARE(feed.patterns(route).at(0).stops.size(), 13);
        QCOMPARE(feed.patterns(route).at(1).tripCount, 18);
        QCOMPARE(feed.defaultChoice(route).direct, 0);
        QCOMPARE(feed.defaultChoice(route).reverse, -1);
    }

    // A known trip of Porto Alegre, imported, saved, and read back by the
    // project reader and by the stock Lua interpreter.
    void knownTripThroughTheProjectFile()
    {
        const QString zip = sharedFeed("poa.zip");
        QHash<QByteArray, QByteArrayList> stops;
        for (const QByteArrayList& row : plainRows(readZipEntry(zip, "stops.txt")))
            stops.insert(row.at(0), row); // stop_id,stop_code,stop_name,stop_desc,stop_lat,stop_lon
        QMap<int, QByteArray> sequence;
        for (const QByteArrayList& row : plainRows(readZipEntry(zip, "stop_times.txt"))) {
            if (row.at(0) == "T2-1@1#520")
                sequence.insert(row.at(4).toInt(), row.at(3));
        }
        QCOMPARE(sequence.size(), 62);
        QStringList expected{QString::number(sequence.size())};
        for (const QByteArray& stopId : sequence) {
            const QByteArrayList& stop = stops.value(stopId);
            expected << QString::asprintf("%.6f %.6f %s", stop.at(5).toDouble(), stop.at(4).toDouble(),
                                          stop.at(2).constData());
        }

        cGtfsFeed feed;
        QList<cRoute> built;
        cGtfsBuildOptions options;
        options.course = true;
        options.courseDiff = 45;
        QVERIFY(build(zip, {"T2"}, options, &feed, &built));
        QCOMPARE(built.size(), 1);
        QCOMPARE(built.at(0).name, QStringLiteral("TRANSVERSAL 2"));
        QCOMPARE(built.at(0).short_name, QStringLiteral("T2"));
        QVERIFY(built.at(0).reverse.stops.isEmpty());
        for (const cStop& stop : built.at(0).direct.stops) {
            QVERIFY(stop.course_enabled);
            QCOMPARE(stop.course_diff, 45);
            QCOMPARE(stop.radius, 35);
        }

        const QString file = m_dir.filePath("poa.vosk");
        QCOMPARE(testsupport::difference(roundTrip(built, file).value(0), built.at(0)), QString());

        const QString script = m_dir.filePath("print.lua");
        QVERIFY(testsupport::writeFile(script, "dofile(arg[1])\n"
                                               "local stops = project.routes[1].stops.direct\n"
                                               "print(#stops)\n"
                                               "for _, s in ipairs(stops) do\n"
                                               "  print(string.format('%.6f %.6f %s', s.zone.center.lon,"
                                               " s.zone.center.lat, s.name))\n"
                                               "end\n"));
        QProcess lua;
        lua.start("lua5.1", {script, file});
        QVERIFY(lua.waitForFinished(30000));
        QCOMPARE(lua.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(lua.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts), expected);
    }

    // Names come back from a saved project exactly as the feed wrote them.
    void textsSurviveTheProjectFile()
    {
        cFeedFiles files = smallFeed();
        files["routes.txt"] += "R3,A,3',\"Line 'A' \\ 50%1 \"\"x\"\"\",3\n";
        files["stops.txt"] += "55.79,\"O'Hara \\ 100%2\nнижний\",S5,37.65,\n";
        files["trips.txt"] += "R3,W,T10,0,\n";
        files["stop_times.txt"] += "T10,,,S5,1\nT10,,,S1,2\n";
        const QString path = m_dir.filePath("texts");
        QVERIFY(writeFolder(path, files));
        cGtfsFeed feed;
        QList<cRoute> built;
        QVERIFY(build(path, {}, {}, &feed, &built));

        const QList<cRoute> read = roundTrip(built, m_dir.filePath("texts.vosk"));
        QCOMPARE(read.size(), 3);
        QCOMPARE(read.at(0).name, QStringLiteral("Вокзал — Центр"));
        // Names repeat within a branch as the feed has them.
        QCOMPARE(stopNames(read.at(0).direct.stops),
                 QStringList({"Вокзал", "Рынок", "Школа \"Радуга\", корпус 2", "Рынок"}));
        QCOMPARE(stopNames(read.at(0).reverse.stops),
                 QStringList({"Рынок", "Школа \"Радуга\", корпус 2", "Рынок", "Вокзал"}));
        QCOMPARE(courses(read.at(0).direct.stops), QList<int>({-1, -1, -1, -1}));
        QCOMPARE(read.at(1).name, QStringLiteral("2"));
        QCOMPARE(read.at(2).name, QStringLiteral("Line 'A' \\ 50%1 \"x\""));
        QCOMPARE(read.at(2).short_name, QStringLiteral("3'"));
        QCOMPARE(stopNames(read.at(2).direct.stops), QStringList({"O'Hara \\ 100%2\nнижний", "Вокзал"}));
    }

    // Accents and apostrophes of real names come back from the saved project.
    void saoPauloNames()
    {
        cGtfsFeed feed;
        QList<cRoute> built;
        QVERIFY(build(sharedFeed("saopaulo.zip"), {}, {}, &feed, &built));
        const QList<cRoute> read = roundTrip(built, m_dir.filePath("saopaulo.vosk"));
        QCOMPARE(read.size(), 72);
        QStringList expected;
        QStringList names;
        for (int route = 0; route < read.size(); ++route) {
            expected << feed.routes().at(route).longName;
            names << read.at(route).name;
            const cGtfsRouteChoice choice = feed.defaultChoice(route);
            for (const int pattern : {choice.direct, choice.reverse}) {
                for (const int stop : feed.patterns(route).value(pattern).stops)
                    expected << feed.stops().at(stop).name;
            }
            names << stopNames(read.at(route).direct.stops) << stopNames(read.at(route).reverse.stops);
        }
        QCOMPARE(names, expected);
        QVERIFY(names.contains(QStringLiteral("Estr. Do M'boi Mirim, 5700")));
        QVERIFY(names.contains(QStringLiteral("Cohab Antártica - Lapa")));
    }

    // A path east, north, and back the same way: stops on the way back face
    // the other way, and a stop just past the corner takes the new street.
    // Route M runs the same stops without a path.
    void coursesFollowThePath()
    {
        cFeedFiles files;
        files["routes.txt"] = "route_id,route_short_name,route_long_name,route_type\nL,L,Loop,3\nM,M,Plain,3\n";
        files["stops.txt"] = "stop_id,stop_name,stop_lat,stop_lon\n"
                             "P1,east,0.0001,0.005\nP2,corner,0.0003,0.0101\nP3,top,0.009,0.0099\n"
                             "P4,back,0.002,0.0099\nP5,home,-0.0001,0.005\n";
        files["trips.txt"] = "route_id,trip_id,shape_id\nL,T1,S\nL,T2,\nM,T3,\n";
        files["shapes.txt"] = "shape_id,shape_pt_lat,shape_pt_lon,shape_pt_sequence\n"
                              "S,0,0,1\nS,0,0.01,2\nS,0.01,0.01,3\nS,0.01,0.01,4\nS,0,0.01,5\nS,0,0,6\n";
        QByteArray times = "trip_id,stop_id,stop_sequence\n";
        for (const char* trip : {"T1", "T2", "T3"}) {
            for (int i = 1; i <= 5; ++i)
                times += QByteArray(trip) + ",P" + QByteArray::number(i) + "," + QByteArray::number(i) + "\n";
        }
        files["stop_times.txt"] = times;
        const QString path = m_dir.filePath("loop");
        QVERIFY(writeFolder(path, files));

        cGtfsFeed feed;
        QString error;
        QVERIFY(feed.open(path, nullptr, &error));
        QVERIFY(feed.loadPatterns({0, 1}, nullptr, &error));
        QCOMPARE(feed.patterns(0).at(0).shapeId, QStringLiteral("S"));
        cGtfsBuildOptions options;
        options.course = true;
        const cGtfsRouteBuilder builder(feed, options);
        cRoute route;
        QVERIFY(builder.build({0, 0, -1}, &route, &error));
        QCOMPARE(courses(route.direct.stops), QList<int>({90, 0, 0, 180, 270}));
        QCOMPARE(route.direct.stops.at(0).course_diff, 60);
        // Without a path: towards the next stop, the last one as it was reached.
        QVERIFY(builder.build({1, 0, -1}, &route, &error));
        QCOMPARE(courses(route.direct.stops), QList<int>({88, 359, 180, 247, 247}));
    }

    // A failing build adds nothing; a successful one adds each route in turn.
    void importIsAllOrNothing()
    {
        const QString path = m_dir.filePath("small");
        QVERIFY(writeFolder(path, smallFeed()));
        cGtfsFeed feed;
        QString error;
        QVERIFY(feed.open(path, nullptr, &error));
        QVERIFY(feed.loadPatterns({0}, nullptr, &error));
        const cGtfsRouteBuilder builder(feed, {});
        QList<cRoute> routes;
        QVERIFY(!builder.buildAll({feed.defaultChoice(0), feed.defaultChoice(1)}, &routes, &error));
        QCOMPARE(error, QStringLiteral("The stops of route R2 have not been read from the feed."));
        QVERIFY(routes.isEmpty());

        QVERIFY(feed.loadPatterns({0, 1}, nullptr, &error));
        QVERIFY(builder.buildAll({feed.defaultChoice(0), feed.defaultChoice(1)}, &routes, &error));
        cProjectManager manager;
        testsupport::cSignalRecorder signalsSeen(&manager);
        QList<QUuid> announced;
        connect(&manager, &cProjectManager::routeImported, this, [&announced](QUuid id) { announced << id; });
        manager.importRoutes(routes);
        QCOMPARE(signalsSeen.names, QStringList({"opened", "imported", "opened", "imported"}));
        QCOMPARE(announced, QList<QUuid>({routes.at(0).id, routes.at(1).id}));
        QCOMPARE(manager.project()->routes.size(), 2);
        QCOMPARE(manager.project()->routes.at(0).base_text.current, QStringLiteral("Stop: "));
    }
};

QTEST_GUILESS_MAIN(tst_GtfsImport)
#include "tst_gtfsimport.moc"
