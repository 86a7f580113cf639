#include "projectmanager.h"
#include "testsupport.h"

#include <QtTest>

using namespace testsupport;

namespace {

const QByteArray validId = "{3243f6a8-885a-408d-8313-198a2e037073}";
const QByteArray routeWithId = "{ id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}', name = 'r' }";


} // namespace

class tst_ProjectFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void freshManager();
    void emptyProjectTextAndRoundTrip();
    void projectWithRoutesRoundTrip();
    void openFailures_data();
    void openFailures();
    void versions_data();
    void versions();
    void routesTableSkipsNonTablesAndStopsAtAFailure();
    void hostileFilesFailInTime_data();
    void hostileFilesFailInTime();
    void savingKeepsThePreviousFile();
    void readOnlyFolders();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    QString writeProjectFile(const QByteArray& text)
    {
        const QString file = path(QStringLiteral("in.vosk"));
        writeFile(file, text);
        return file;
    }

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_ProjectFile::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

void tst_ProjectFile::freshManager()
{
    cProjectManager manager;
    const cProject* project = manager.project();
    QVERIFY(!project->id.isNull());
    QCOMPARE(project->version, 1);
    QVERIFY(project->routes.isEmpty());

    cSignalRecorder log(&manager);
    const QUuid first = project->id;
    manager.newProject();
    const QUuid second = project->id;
    manager.newProject();
    QVERIFY(first != second && second != project->id);
    QCOMPARE(log.names, (QStringList{"created", "created"}));
}

void tst_ProjectFile::emptyProjectTextAndRoundTrip()
{
    cProjectManager manager;
    const QUuid id = manager.project()->id;
    cSignalRecorder log(&manager);
    QVERIFY(manager.saveProject(path("empty.vosk")));
    QCOMPARE(readFile(path("empty.vosk")),
             "project =\n{\n  id = '" + id.toString().toLatin1() + "',\n  version = 1,\n\n  routes =\n  {\n\n  }\n}\n");

    manager.newProject();
    QVERIFY(manager.openProject(path("empty.vosk")));
    QCOMPARE(manager.project()->id, id);
    QCOMPARE(manager.project()->version, 1);
    QVERIFY(manager.project()->routes.isEmpty());
    QCOMPARE(log.names, (QStringList{"saved", "created", "created", "opened"}));
    // No temporary file is left beside the project.
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList{"empty.vosk"});
}

void tst_ProjectFile::projectWithRoutesRoundTrip()
{
    cProjectManager manager;
    cProject* project = manager.project();
    project->routes << sampleRoute() << sampleRoute();
    project->routes[1].id = QUuid::createUuid();
    project->routes[1].direct.stops.clear();
    const cProject saved = *project;
    QVERIFY(manager.saveProject(path("p.vosk")));
    // Text is stored in the local 8-bit encoding, UTF-8 here.
    QVERIFY(readFile(path("p.vosk")).contains(QStringLiteral("Депо — Вокзал").toUtf8()));

    cProjectManager other;
    QVERIFY(other.openProject(path("p.vosk")));
    QCOMPARE(difference(*other.project(), saved), QString());

    // Saving again over the same file gives the same bytes.
    const QByteArray first = readFile(path("p.vosk"));
    QVERIFY(other.saveProject(path("p.vosk")));
    QCOMPARE(readFile(path("p.vosk")), first);

    // As another editor may leave it: a byte-order mark and CR LF line ends.
    cProjectManager fromWindows;
    QVERIFY(fromWindows.openProject(writeProjectFile("\xEF\xBB\xBF" + QByteArray(first).replace("\n", "\r\n"))));
    QCOMPARE(difference(*fromWindows.project(), saved), QString());
}

void tst_ProjectFile::openFailures_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("signalNames");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("reset");

    const QStringList opened{"opened"};
    const QStringList createdOpened{"created", "opened"};
    QTest::newRow("syntax error") << QByteArray("project = {") << opened << QString() << false;
    QTest::newRow("run error") << QByteArray("project = { x = nothing.field }") << opened << QString() << false;
    QTest::newRow("library call") << QByteArray("print('hi') project = { id = '" + validId + "', version = 1, routes = {} }")
                                  << opened << QString() << false;
    QTest::newRow("empty file") << QByteArray() << opened << "No project table in Lua-state... nil" << false;
    QTest::newRow("project is a number") << QByteArray("project = 5") << opened
                                         << "No project table in Lua-state... number" << false;
    QTest::newRow("null id") << QByteArray("project = { version = 1, routes = {} }") << createdOpened
                             << "Project ID is NULL" << true;
    QTest::newRow("no routes") << QByteArray("project = { id = '" + validId + "', version = 1 }") << createdOpened
                               << "No routes table in project file" << true;
}

void tst_ProjectFile::openFailures()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, signalNames);
    QFETCH(QString, message);
    QFETCH(bool, reset);

    cProjectManager manager;
    manager.project()->routes << sampleRoute();
    const cProject before = *manager.project();
    cSignalRecorder log(&manager);
    cMessageCapture capture;
    QVERIFY(!manager.openProject(writeProjectFile(text)));
    QCOMPARE(log.names, signalNames);
    if (!message.isEmpty())
        QVERIFY2(capture.messages().contains(message), qPrintable(capture.messages().join('|')));
    if (reset) {
        QVERIFY(manager.project()->routes.isEmpty());
    } else {
        QCOMPARE(difference(*manager.project(), before), QString());
    }

    // A file that cannot be opened changes nothing and says nothing.
    log.names.clear();
    QVERIFY(!manager.openProject(path("missing.vosk")));
    QVERIFY(!manager.openProject(m_dir->path()));
    QVERIFY(log.names.isEmpty());
}

void tst_ProjectFile::versions_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<int>("stored");
    QTest::newRow("zero") << QByteArray("version = 0,") << true << 0;
    QTest::newRow("fraction") << QByteArray("version = 2.9,") << true << 2;
    QTest::newRow("numeric string") << QByteArray("version = '7',") << true << 7;
    QTest::newRow("negative") << QByteArray("version = -1,") << false << -1;
    QTest::newRow("text") << QByteArray("version = 'one',") << false << -1;
    QTest::newRow("missing") << QByteArray() << false << -1;
}

void tst_ProjectFile::versions()
{
    QFETCH(QByteArray, version);
    QFETCH(bool, opens);
    QFETCH(int, stored);

    cProjectManager manager;
    cSignalRecorder log(&manager);
    cMessageCapture capture;
    QCOMPARE(manager.openProject(writeProjectFile("project = { id = '" + validId + "', " + version + " routes = {} }")),
             opens);
    QCOMPARE(manager.project()->version, stored);
    QCOMPARE(manager.project()->id, QUuid(QString::fromLatin1(validId)));
    QCOMPARE(log.names, (QStringList{"created", "opened"}));
    QCOMPARE(capture.messages().contains("Invalid project version"), !opens);
    if (opens) {
        QVERIFY(manager.saveProject(path("out.vosk")));
        QVERIFY(readFile(path("out.vosk")).contains("  version = " + QByteArray::number(stored) + ",\n"));
    }
}

void tst_ProjectFile::routesTableSkipsNonTablesAndStopsAtAFailure()
{
    cProjectManager manager;
    QVERIFY(manager.openProject(writeProjectFile("project = { id = '" + validId + "', version = 1, routes = { "
                                                 + routeWithId + ", 42, 'text', { id = '" + validId + "' } } }")));
    QCOMPARE(manager.project()->routes.size(), 2);
    QCOMPARE(manager.project()->routes[0].name, QStringLiteral("r"));

    // A failing route ends the read; the routes before it stay.
    cSignalRecorder log(&manager);
    QVERIFY(!manager.openProject(writeProjectFile("project = { id = '" + validId + "', version = 3, routes = { "
                                                  + routeWithId + ", { name = 'bad' }, " + routeWithId + " } }")));
    QCOMPARE(log.names, (QStringList{"created", "opened"}));
    QCOMPARE(manager.project()->routes.size(), 2);
    QVERIFY(manager.project()->routes[1].id.isNull());
    QCOMPARE(manager.project()->version, 3);
}

void tst_ProjectFile::hostileFilesFailInTime_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("limit");
    QTest::newRow("endless loop") << QByteArray("while true do end project = {}") << "Lua instructions";
    QTest::newRow("growing string") << QByteArray("local s = 'x' while true do s = s .. s end") << "bytes of memory";
    QTest::newRow("growing table") << QByteArray("local t, i = {}, 0 while true do i = i + 1 t[i] = { i } end")
                                   << "bytes of memory";
    QTest::newRow("deep recursion") << QByteArray("local function f() return { f() } end project = f()") << QString();
    const QByteArray deep = QByteArray("{").repeated(200000) + QByteArray("}").repeated(200000);
    QTest::newRow("tables nested 200,000 deep") << "project = " + deep << QString();

    // Above the constant limit of one Lua function the file is run in
    // pieces, under the same bounds.
    QByteArray large = "pad = { ";
    for (int i = 0; i < 300000; ++i)
        large += QByteArray::number(i) + ',';
    large += "}\n";
    QTest::newRow("large: endless loop") << large + "project = { (function() while true do end end)() }"
                                         << "Lua instructions";
    QTest::newRow("large: growing string")
        << large + "project = { (function() local s = 'x' while true do s = s .. s end end)() }" << "bytes of memory";
    QTest::newRow("large: tables nested 200,000 deep") << large + "project = " + deep << QString();
}

// They fail like broken files; the log says which bound stopped them, so an
// honest file that hits one can be told apart.
void tst_ProjectFile::hostileFilesFailInTime()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, limit);
    cProjectManager manager;
    manager.project()->routes << sampleRoute();
    const cProject before = *manager.project();
    cSignalRecorder log(&manager);

    QElapsedTimer clock;
    clock.start();
    cMessageCapture capture;
    QVERIFY(!manager.openProject(writeProjectFile(text)));
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    const QStringList stopped = capture.messages().filter("File not read:");
    QCOMPARE(stopped.size(), limit.isEmpty() ? 0 : 1);
    QVERIFY(limit.isEmpty() || stopped.first().endsWith(limit));
    QCOMPARE(log.names, QStringList{"opened"});
    QCOMPARE(difference(*manager.project(), before), QString());

    // The manager keeps working afterwards.
    QVERIFY(manager.saveProject(path("after.vosk")));
    QVERIFY(manager.openProject(path("after.vosk")));
    QCOMPARE(difference(*manager.project(), before), QString());
}

// Saving over a project keeps the file it replaces as NAME.bak, one
// generation.
void tst_ProjectFile::savingKeepsThePreviousFile()
{
    cProjectManager manager;
    const QString file = path("p.vosk");
    QVERIFY(manager.saveProject(file));
    QVERIFY(!QFile::exists(file + ".bak"));
    const QByteArray first = readFile(file);
    manager.project()->routes << sampleRoute();
    QVERIFY(manager.saveProject(file));
    QCOMPARE(readFile(file + ".bak"), first);
    const QByteArray second = readFile(file);
    QVERIFY(manager.saveProject(file));
    QCOMPARE(readFile(file + ".bak"), second);
}

// In a folder where the file may be changed but nothing created, the save
// goes straight into the file; where the file may not be changed either, it
// fails and the file keeps its bytes.
void tst_ProjectFile::readOnlyFolders()
{
    honourFilePermissions();
    cProjectManager manager;
    QVERIFY(QDir(m_dir->path()).mkdir("locked"));
    const QString file = path("locked/p.vosk");
    QVERIFY(manager.saveProject(file));
    const QByteArray previous = readFile(file);
    const QFileDevice::Permissions readOnly = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
    QVERIFY(QFile::setPermissions(path("locked"), readOnly));

    manager.project()->routes << sampleRoute();
    cMessageCapture capture;
    QVERIFY(manager.saveProject(file));
    QVERIFY(readFile(file) != previous);
    QVERIFY(capture.messages().contains("Could not keep the previous project as " + file + ".bak"));

    const QByteArray saved = readFile(file);
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
    cSignalRecorder log(&manager);
    manager.project()->routes << sampleRoute();
    QVERIFY(!manager.saveProject(file));
    QVERIFY(log.names.isEmpty());
    QCOMPARE(readFile(file), saved);
    QCOMPARE(QDir(path("locked")).entryList(QDir::Files), QStringList{"p.vosk"});
    QFile::setPermissions(path("locked"), readOnly | QFileDevice::WriteOwner);
}

QTEST_GUILESS_MAIN(tst_ProjectFile)
#include "tst_projectfile.moc"
