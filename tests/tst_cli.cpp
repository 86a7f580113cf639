#include "geo.h"
#include "gtfssupport.h"
#include "projectmanager.h"
#include "testsupport.h"
#include "trackreader.h"

#include <QtTest>

using namespace testsupport;

namespace {

struct cRun
{
    int code = -1;
    QString out;
    QString err;
};

cStop stopAt(const QString& name, double eastMetres)
{
    cStop stop;
    stop.id = QUuid::createUuid();
    stop.name = name;
    geo::destination(30.3, 59.9, 90, eastMetres, &stop.lon, &stop.lat);
    return stop;
}

cRoute route(const QString& name, const QString& number, const QString& type, int stops)
{
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = name;
    route.short_name = number;
    route.type = type;
    for (int i = 0; i < stops; ++i)
        route.direct.stops << stopAt(QStringLiteral("%1-%2").arg(number).arg(i + 1), 400.0 * i);
    return route;
}

QJsonObject parsed(const QString& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    return error.error == QJsonParseError::NoError ? document.object() : QJsonObject();
}

cProject savedProject(const QString& path)
{
    cProjectManager manager;
    if (!manager.openProject(path))
        return cProject();
    return *manager.project();
}

} // namespace

// voskantor-cli run as a process, the way a script on a server runs it.
class tst_Cli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void runsWithoutDisplayOrGuiLibraries();
    void checkExitCodes();
    void checkJsonNamesEachPlace();
    void unreadableProjectsAndWrongArguments();
    void readerLinesOnlyWhenVerboseAndNoLogs();
    void infoListsRoutesSoundsAndBounds();
    void importGtfsCreatesThenAdds();
    void importGtfsFailuresLeaveTheProject();
    void exportRefusesErrorsAndReportsFailures();
    void replayExitCodesAndOutput();
    void replayRefusesBadInput();

private:
    cRun run(const QStringList& arguments, const QString& locale = QString());

    QTemporaryDir m_dir;
    QTemporaryDir m_home;
    QString m_project;
    QString m_sound;
    QString m_rideProject;
};

void tst_Cli::initTestCase()
{
    m_sound = m_dir.filePath("central.mp3");
    QProcess::execute("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=duration=0.2", m_sound});
    QVERIFY(QFile::exists(m_sound));

    cProjectManager manager;
    cRoute clean = route("Депо — Вокзал", "5", "line", 3);
    clean.direct.stops[1].sound = m_sound;
    cRoute broken = route("Кольцо", "12", "round", 2);
    broken.direct.stops[1].sound = m_dir.filePath("missing.mp3");
    cRoute warned = route("Warn", "7", "bidir", 2);
    manager.project()->routes << clean << broken << warned;
    m_project = m_dir.filePath("city.vosk");
    QVERIFY(manager.saveProject(m_project));
}

cRun tst_Cli::run(const QStringList& arguments, const QString& locale)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    environment.insert("HOME", m_home.path());
    environment.insert("XDG_DATA_HOME", m_home.filePath("data"));
    environment.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
    if (!locale.isEmpty())
        environment.insert("LC_ALL", locale);
    process.setProcessEnvironment(environment);
    process.start(VOSK_CLI, arguments);
    cRun result;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.code = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void tst_Cli::runsWithoutDisplayOrGuiLibraries()
{
    QProcess ldd;
    ldd.start("ldd", {VOSK_CLI});
    QVERIFY(ldd.waitForFinished(30000));
    const QString libraries = QString::fromLocal8Bit(ldd.readAllStandardOutput());
    QVERIFY2(libraries.contains("libQt5Core"), qPrintable(libraries));
    QVERIFY2(!libraries.contains("libQt5Gui") && !libraries.contains("libQt5Widgets"), qPrintable(libraries));

    const cRun help = run({"--help"});
    QCOMPARE(help.code, 0);
    QVERIFY2(help.out.contains("\n  check ") && help.out.contains("\n  export ")
                 && help.out.contains("\n  info "), qPrintable(help.out));
    QCOMPARE(run({"--version"}).out, QString("voskantor-cli 1.21.0.1\n"));
    // --route repeats where a command takes several routes, not for replay.
    // Simplified: the help wraps its lines.
    QVERIFY(run({"check", "--help"}).out.simplified().contains("may be given more than once"));
    const QString replayHelp = run({"replay", "--help"}).out.simplified();
    QVERIFY2(replayHelp.contains("needed once") && !replayHelp.contains("more than once"), qPrintable(replayHelp));
    const cRun russian = run({"check", m_project, "--route", "5"}, "ru_RU.UTF-8");
    QCOMPARE(russian.code, 0);
    QCOMPARE(russian.out, QString("Проблем не найдено.\n"));
}

void tst_Cli::checkExitCodes()
{
    const cRun clean = run({"check", m_project, "--route", "Депо — Вокзал"});
    QCOMPARE(clean.code, 0);
    QCOMPARE(clean.out, QString("No problems found.\n"));
    // Warnings alone do not fail the check.
    const cRun warned = run({"check", m_project, "--route", "7"});
    QCOMPARE(warned.code, 0);
    QVERIFY2(warned.out.startsWith("Warning: Route \"Warn\", reverse: ") && warned.out.contains("[empty-branch]\n")
                 && warned.out.endsWith("Errors: 0, warnings: 1.\n"),
             qPrintable(warned.out));
    const cRun all = run({"check", m_project});
    QCOMPARE(all.code, 1);
    QVERIFY2(all.out.contains("[missing-sound]"), qPrintable(all.out));
}

void tst_Cli::checkJsonNamesEachPlace()
{
    const cRun result = run({"check", m_project, "--format", "json", "--route", "12", "--route", "7"});
    QCOMPARE(result.code, 1);
    const QJsonArray problems = parsed(result.out).value("problems").toArray();
    QCOMPARE(problems.size(), 2);
    const QJsonObject missing = problems.at(0).toObject();
    QCOMPARE(missing.value("code").toString(), QString("missing-sound"));
    QCOMPARE(missing.value("severity").toString(), QString("error"));
    QCOMPARE(missing.value("route").toString(), QString("Кольцо"));
    QCOMPARE(missing.value("branch").toString(), QString("direct"));
    QCOMPARE(missing.value("stop").toInt(), 2);
    QCOMPARE(missing.value("stop_name").toString(), QString("12-2"));
    QVERIFY(missing.value("message").toString().contains("missing.mp3"));
    const QJsonObject empty = problems.at(1).toObject();
    QCOMPARE(empty.value("severity").toString(), QString("warning"));
    QCOMPARE(empty.value("branch").toString(), QString("reverse"));
    QVERIFY(!empty.contains("stop") && !empty.contains("stop_name"));
}

void tst_Cli::unreadableProjectsAndWrongArguments()
{
    const cRun unknown = run({"check", m_project, "--route", "99"});
    QCOMPARE(unknown.code, 2);
    QVERIFY2(unknown.err.contains("\"99\"") && unknown.err.contains("  Депо — Вокзал (5)\n")
                 && unknown.err.contains("  Warn (7)\n"),
             qPrintable(unknown.err));
    QCOMPARE(run({"check", m_project, "--format", "xml"}).code, 2);
    QCOMPARE(run({"check", m_project, "--no-such-option"}).code, 2);
    QCOMPARE(run({"check"}).code, 2);
    QCOMPARE(run({"frobnicate", m_project}).code, 2);

    // The reader's own words say why.
    const QList<QPair<QByteArray, QString>> files{
        {QByteArray(), "No such file"},
        {"project = { id = '{3243f6a8-885a-408d-8313-198a2e037073}', version = 1, routes = {", "unexpected symbol"},
        {"route = {}", "No project table in Lua-state... nil"},
        {"project = { version = 1, routes = {} }", "Project ID is NULL"}};
    for (int i = 0; i < files.size(); ++i) {
        const QString path = m_dir.filePath(QString("bad%1.vosk").arg(i));
        if (!files[i].first.isNull())
            QVERIFY(writeFile(path, files[i].first));
        const cRun result = run({"info", path});
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.startsWith("voskantor-cli: ") && result.err.contains(files[i].second),
                 qPrintable(result.err));
        QCOMPARE(result.out, QString());
    }
}

void tst_Cli::readerLinesOnlyWhenVerboseAndNoLogs()
{
    // Stops without a full name make the reader say so, line by line.
    const cRun quiet = run({"info", m_project});
    QCOMPARE(quiet.code, 0);
    QCOMPARE(quiet.err, QString());
    const cRun verbose = run({"info", m_project, "--verbose"});
    QCOMPARE(verbose.code, 0);
    QVERIFY2(verbose.err.contains("full_name not found, skipping\n"), qPrintable(verbose.err));
    QCOMPARE(verbose.out, quiet.out);
    // Nothing went to the window's log folder, nor anywhere else at home.
    QCOMPARE(QDir(m_home.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void tst_Cli::infoListsRoutesSoundsAndBounds()
{
    const cRun text = run({"info", m_project, "--route", "5", "--route", "12"});
    QCOMPARE(text.code, 0);
    QVERIFY2(text.out.contains("Routes: 2\n  Депо — Вокзал [5, line]: 3 direct and 0 reverse stops\n")
                 && text.out.contains("Sounds: 2 referenced, 1 missing\n  " + m_dir.filePath("missing.mp3") + '\n'),
             qPrintable(text.out));

    const cRun json = run({"info", m_project, "--format", "json"});
    QCOMPARE(json.code, 0);
    const QJsonObject info = parsed(json.out);
    const QJsonArray routes = info.value("routes").toArray();
    QCOMPARE(routes.size(), 3);
    QCOMPARE(routes.at(1).toObject().value("short_name").toString(), QString("12"));
    QCOMPARE(routes.at(2).toObject().value("direct_stops").toInt(), 2);
    QCOMPARE(routes.at(2).toObject().value("reverse_stops").toInt(), 0);
    const QJsonObject sounds = info.value("sounds").toObject();
    QCOMPARE(sounds.value("referenced").toInt(), 2);
    QCOMPARE(sounds.value("missing_files").toArray(), QJsonArray{m_dir.filePath("missing.mp3")});
    // Every route starts at the same place and runs 800 m east, along a
    // great circle that bends a little south.
    const QJsonObject box = info.value("bounding_box").toObject();
    QCOMPARE(box.value("west").toDouble(), 30.3);
    QCOMPARE(box.value("north").toDouble(), 59.9);
    QVERIFY(qAbs(box.value("south").toDouble() - 59.9) < 1e-5);
    QVERIFY(qAbs(geo::distanceMetres(30.3, 59.9, box.value("east").toDouble(), 59.9) - 800) < 0.1);
}

void tst_Cli::importGtfsCreatesThenAdds()
{
    const QString feed = gtfssupport::sharedFeed("poa.zip");
    const QString project = m_dir.filePath("poa.vosk");
    const cRun first = run({"import-gtfs", feed, project, "--route", "T2", "--course-diff", "45"});
    QCOMPARE(first.code, 0);
    QCOMPARE(first.out, "Added TRANSVERSAL 2 [T2]: 62 direct and 0 reverse stops\nRoutes in the project: 1. Saved "
                            + project + ".\n");
    const cProject created = savedProject(project);
    QCOMPARE(created.routes.size(), 1);
    const cStop& stop = created.routes.at(0).direct.stops.at(0);
    QVERIFY(stop.course_enabled);
    QCOMPARE(stop.course_diff, 45);

    // Named twice, imported once; the routes already there stay as they were.
    const cRun second = run({"import-gtfs", feed, project, "--route", "A141", "--route", "176", "--route", "A141"});
    QCOMPARE(second.code, 0);
    const cProject grown = savedProject(project);
    QCOMPARE(grown.routes.size(), 3);
    QCOMPARE(testsupport::difference(grown.routes.at(0), created.routes.at(0)), QString());
    QCOMPARE(grown.routes.at(2).short_name, QString("176"));
    QVERIFY(!grown.routes.at(2).direct.stops.at(0).course_enabled);

    const QString whole = m_dir.filePath("fortaleza.vosk");
    const cRun all = run({"import-gtfs", gtfssupport::sharedFeed("fortaleza.zip"), whole});
    QCOMPARE(all.code, 0);
    QCOMPARE(savedProject(whole).routes.size(), 14);
}

// Whatever goes wrong, the project file keeps its bytes.
void tst_Cli::importGtfsFailuresLeaveTheProject()
{
    const QByteArray before = readFile(m_project);
    const QString truncated = m_dir.filePath("truncated.zip");
    QVERIFY(writeFile(truncated, readFile(gtfssupport::sharedFeed("poa.zip")).left(60000)));
    gtfssupport::cFeedFiles files = gtfssupport::smallFeed();
    files["stop_times.txt"] += "T6,,,S9,3\n";
    const QString undefinedStop = m_dir.filePath("undefined.zip");
    QVERIFY(gtfssupport::writeZip(undefinedStop, files));
    const QString poa = gtfssupport::sharedFeed("poa.zip");

    const cRun missing = run({"import-gtfs", poa, m_project, "--route", "T2", "--route", "T99"});
    QCOMPARE(missing.code, 1);
    QCOMPARE(missing.err, QString("voskantor-cli: The feed has no route with the id or short name \"T99\".\n"));
    // Found bad only when the stops are read, after the project was.
    const cRun late = run({"import-gtfs", undefinedStop, m_project});
    QCOMPARE(late.code, 2);
    QVERIFY2(late.err.contains("stop_times.txt, line 34: stop_id \"S9\" is not defined in stops.txt."),
             qPrintable(late.err));
    const cRun broken = run({"import-gtfs", truncated, m_project});
    QCOMPARE(broken.code, 2);
    QVERIFY2(broken.err.startsWith("voskantor-cli: Cannot read the GTFS feed " + truncated), qPrintable(broken.err));
    QCOMPARE(run({"import-gtfs", poa, m_project, "--course-diff", "0"}).code, 2);
    QCOMPARE(readFile(m_project), before);
    QVERIFY(!QFile::exists(m_project + ".bak"));

    const QString unreadable = m_dir.filePath("unreadable.vosk");
    QVERIFY(writeFile(unreadable, "route = {}"));
    QCOMPARE(run({"import-gtfs", poa, unreadable}).code, 2);
    QCOMPARE(readFile(unreadable), QByteArray("route = {}"));
}

void tst_Cli::exportRefusesErrorsAndReportsFailures()
{
    const QString out = m_dir.filePath("card");
    const cRun clean = run({"export", m_project, out, "--route", "5"});
    QCOMPARE(clean.code, 0);
    QCOMPARE(clean.out, QString("Exported 1 routes and 1 sounds into %1.\n").arg(out));
    // Progress is for a terminal, not for a pipe.
    QCOMPARE(clean.err, QString());
    QVERIFY(QFile::exists(out + "/route/5.lua") && QFile::exists(out + "/voskdev/central.wav"));

    const cRun refused = run({"export", m_project, m_dir.filePath("refused"), "--route", "12"});
    QCOMPARE(refused.code, 1);
    QVERIFY2(refused.err.contains("[missing-sound]") && refused.err.contains("--force"), qPrintable(refused.err));
    QVERIFY(!QFile::exists(m_dir.filePath("refused")));

    // Forced, the missing source still fails the export: no sound came of it.
    const cRun forced = run({"export", m_project, m_dir.filePath("forced"), "--route", "12", "--force"});
    QCOMPARE(forced.code, 1);
    QVERIFY2(forced.err.contains("missing.wav was not written."), qPrintable(forced.err));
    QVERIFY(QFile::exists(m_dir.filePath("forced/route/12.lua")));

    // A source ffmpeg cannot decode is a conversion failure of its own.
    const QString text = m_dir.filePath("text.mp3");
    QVERIFY(writeFile(text, QByteArray("Not a sound at all.\n").repeated(20)));
    cProjectManager manager;
    cRoute undecodable = route("Текст", "3", "line", 2);
    undecodable.direct.stops[0].sound = text;
    manager.project()->routes << undecodable;
    const QString project = m_dir.filePath("text.vosk");
    QVERIFY(manager.saveProject(project));
    const cRun failed = run({"export", project, m_dir.filePath("failed"), "--force"});
    QCOMPARE(failed.code, 1);
    QVERIFY2(failed.err.contains("[undecodable-sound]") && failed.err.contains("Failed: " + text),
             qPrintable(failed.err));
}

QString sharedTrack(const QString& name)
{
    return QStringLiteral(VOSK_SHARED_DIR "/tracks/") + name;
}

// Stops on a recorded car ride: route 3 has them where the car went, in
// the order it went, and the same stops backwards as its reverse branch;
// route 4 has its middle stop 200 m off the road.
void tst_Cli::replayExitCodesAndOutput()
{
    cTrackFile ride;
    QString error;
    QVERIFY2(cTrackReader::read(sharedTrack("around-visnjan-with-car.gpx"), &ride, &error), qPrintable(error));
    const QVector<cTrackPoint>& points = ride.tracks.at(0).points;
    const auto stopAtPoint = [&points](int index, const QString& name) {
        cStop stop;
        stop.id = QUuid::createUuid();
        stop.name = name;
        stop.lon = points.at(index).lon;
        stop.lat = points.at(index).lat;
        stop.radius = 30;
        return stop;
    };
    cRoute onRoad;
    onRoad.id = QUuid::createUuid();
    onRoad.name = "Višnjan";
    onRoad.short_name = "3";
    for (int index : {20, 50, 80})
        onRoad.direct.stops << stopAtPoint(index, QString("P%1").arg(index));
    for (int i = onRoad.direct.stops.size() - 1; i >= 0; --i)
        onRoad.reverse.stops << onRoad.direct.stops.at(i);
    cRoute offRoad = onRoad;
    offRoad.id = QUuid::createUuid();
    offRoad.name = "Off road";
    offRoad.short_name = "4";
    offRoad.reverse.stops.clear();
    cStop& middle = offRoad.direct.stops[1];
    geo::destination(middle.lon, middle.lat, 0, 200, &middle.lon, &middle.lat);
    cProjectManager manager;
    manager.project()->routes << onRoad << offRoad;
    m_rideProject = m_dir.filePath("ride.vosk");
    QVERIFY(manager.saveProject(m_rideProject));
    const QByteArray saved = readFile(m_rideProject);

    const cRun clean = run({"replay", m_rideProject, sharedTrack("around-visnjan-with-car.gpx"), "--route", "3"});
    QCOMPARE(clean.code, 0);
    QVERIFY2(clean.out.startsWith("Route \"Višnjan\", direct branch (detected)\n  1. P20: announced, ")
                 && clean.out.endsWith("Announced 3 of 3, missed 0, out of order 0, repeated 0.\n"),
             qPrintable(clean.out));
    // The same ride logged as NMEA announces the same stops at the same
    // times; its coordinates are rounded to about a metre.
    const cRun nmea = run({"replay", m_rideProject, sharedTrack("around-visnjan-with-car.nmea"), "--route", "Višnjan"});
    QCOMPARE(nmea.code, 0);
    const QRegularExpression headings(", heading \\d+°|, closest \\d+ m");
    QCOMPARE(QString(nmea.out).remove(headings), QString(clean.out).remove(headings));

    const cRun backwards = run({"replay", m_rideProject, sharedTrack("around-visnjan-with-car.gpx"), "--route", "3",
                                "--branch", "reverse", "--format", "json"});
    QCOMPARE(backwards.code, 1);
    const QJsonObject reverse = parsed(backwards.out);
    QCOMPARE(reverse.value("branch").toString(), QString("reverse"));
    QStringList statuses;
    for (const QJsonValue& stop : reverse.value("stops").toArray())
        statuses << stop.toObject().value("status").toString();
    QVERIFY2(statuses.count("out-of-order") == 2 && statuses.count("announced") == 1, qPrintable(statuses.join(' ')));

    const cRun missed = run({"replay", m_rideProject, sharedTrack("around-visnjan-with-car.gpx"), "--route", "4",
                             "--format", "json"});
    QCOMPARE(missed.code, 1);
    const QJsonArray stops = parsed(missed.out).value("stops").toArray();
    QCOMPARE(stops.size(), 3);
    const QJsonObject off = stops.at(1).toObject();
    QCOMPARE(off.value("stop").toInt(), 2);
    QCOMPARE(off.value("name").toString(), QString("P50"));
    QCOMPARE(off.value("status").toString(), QString("missed"));
    QVERIFY(off.value("time").isNull() && off.value("heading").isNull());
    QVERIFY2(off.value("reason").toString().startsWith("never inside the zone (closest ")
                 && off.value("reason").toString().endsWith(" m, radius 30 m)"),
             qPrintable(off.value("reason").toString()));
    const QJsonObject first = stops.at(0).toObject();
    QCOMPARE(first.value("status").toString(), QString("announced"));
    // Announced on entering the zone, at the ride's first point inside it.
    int entry = 0;
    while (geo::distanceMetres(points.at(entry).lon, points.at(entry).lat, points.at(20).lon, points.at(20).lat) > 30)
        ++entry;
    QCOMPARE(first.value("time").toString(),
             QDateTime::fromMSecsSinceEpoch(points.at(entry).time, Qt::UTC).toString(Qt::ISODate));
    QVERIFY(first.value("closest_m").toDouble() < 0.1);

    QCOMPARE(readFile(m_rideProject), saved);
}

void tst_Cli::replayRefusesBadInput()
{
    const QString ride = sharedTrack("around-visnjan-with-car.gpx");
    const QString cut = m_dir.filePath("cut.gpx");
    QVERIFY(writeFile(cut, readFile(ride).left(3000)));
    const QList<QPair<QStringList, QString>> cases{
        {{"replay", m_rideProject, ride}, "one route"},
        {{"replay", m_rideProject, ride, "--route", "3", "--route", "4"}, "one route"},
        {{"replay", m_rideProject, ride, "--route", "99"}, "\"99\""},
        {{"replay", m_rideProject, ride, "--route", "3", "--branch", "sideways"}, "\"sideways\""},
        {{"replay", m_rideProject, ride, "--route", "3", "--track", "2"}, "(tracks in the file: 1)"},
        {{"replay", m_rideProject, m_dir.filePath("none.gpx"), "--route", "3"}, "none.gpx"},
        {{"replay", m_rideProject, cut, "--route", "3"}, "Line "},
        {{"replay", m_rideProject, ride, "--route", "4", "--branch", "reverse"}, "no stops"},
        {{"replay", m_rideProject, "--route", "3"}, "PROJECT TRACK"}};
    for (const auto& bad : cases) {
        const cRun result = run(bad.first);
        QCOMPARE(result.code, 2);
        QVERIFY2(result.err.contains(bad.second) && result.out.isEmpty(), qPrintable(result.err));
    }
}

QTEST_GUILESS_MAIN(tst_Cli)
#include "tst_cli.moc"
