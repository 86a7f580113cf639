#include "geo.h"
#include "projectmanager.h"
#include "testsupport.h"

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

private:
    cRun run(const QStringList& arguments, const QString& locale = QString());

    QTemporaryDir m_dir;
    QTemporaryDir m_home;
    QString m_project;
    QString m_sound;
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
    QVERIFY2(help.out.contains("\n  check ") && help.out.contains("\n  info "), qPrintable(help.out));
    QCOMPARE(run({"--version"}).out, QString("voskantor-cli 1.21.0.1\n"));
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

QTEST_GUILESS_MAIN(tst_Cli)
#include "tst_cli.moc"
