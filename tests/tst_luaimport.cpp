#include "projectmanager.h"
#include "routetable.h"
#include "testsupport.h"

#include <QtTest>

using namespace testsupport;

class tst_LuaImport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void exportedScriptComesBack();
    void scriptsThatAddNothing_data();
    void scriptsThatAddNothing();
    void unreadableFile();

private:
    QString writeScript(const QByteArray& text)
    {
        const QString file = m_dir->filePath(QStringLiteral("route.lua"));
        writeFile(file, text);
        return file;
    }

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_LuaImport::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

void tst_LuaImport::exportedScriptComesBack()
{
    const cRoute route = sampleRoute();
    const QString script = writeScript("route =\n" + writeRoute(route, true).toLocal8Bit());

    cProjectManager manager;
    const cProject before = *manager.project();
    QSignalSpy opened(&manager, &cProjectManager::projectOpened);
    QSignalSpy created(&manager, &cProjectManager::projectCreated);
    QSignalSpy imported(&manager, &cProjectManager::routeImported);
    QString error;
    QVERIFY(manager.importLuaRoute(script, &error));
    QVERIFY(manager.importLuaRoute(script, &error));
    QCOMPARE(opened.count(), 2);
    QCOMPARE(created.count() + imported.count(), 0);

    const cProject* project = manager.project();
    QCOMPARE(project->id, before.id);
    QCOMPARE(project->version, 1);
    QCOMPARE(project->routes.size(), 2);
    QCOMPARE(project->routes[0].id, route.id);
    QCOMPARE(project->routes[1].id, route.id);

    QCOMPARE(deviceDifference(project->routes[0], route), QString());
    QVERIFY(project->routes[0].direct.stops[0].id != project->routes[1].direct.stops[0].id);
}

void tst_LuaImport::scriptsThatAddNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    QTest::newRow("project file") << QByteArray("project = { id = 'x', version = 1, routes = {} }")
                                  << "No route table in Lua-state... nil";
    QTest::newRow("route is text") << QByteArray("route = 'r'") << "No route table in Lua-state... string";
    QTest::newRow("syntax error") << QByteArray("route = { name = 'x'") << QString();
    QTest::newRow("library call") << QByteArray("route = { name = string.upper('x') }") << QString();
    QTest::newRow("endless loop") << QByteArray("repeat until false route = {}") << QString();
    QTest::newRow("growing string") << QByteArray("local s = 'x' while true do s = s .. s end") << QString();
}

void tst_LuaImport::scriptsThatAddNothing()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    cProjectManager manager;
    QSignalSpy opened(&manager, &cProjectManager::projectOpened);
    cMessageCapture capture;
    QString error;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(manager.importLuaRoute(writeScript(text), &error));
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(opened.count(), 1);
    QVERIFY(manager.project()->routes.isEmpty());
    QVERIFY(error.isEmpty());
    if (!message.isEmpty())
        QCOMPARE(capture.messages(), QStringList{message});
}

void tst_LuaImport::unreadableFile()
{
    cProjectManager manager;
    QSignalSpy opened(&manager, &cProjectManager::projectOpened);
    QString error;
    QVERIFY(!manager.importLuaRoute(m_dir->filePath("missing.lua"), &error));
    QCOMPARE(error, QStringLiteral("Failed to open file"));
    QCOMPARE(opened.count(), 0);
}

QTEST_GUILESS_MAIN(tst_LuaImport)
#include "tst_luaimport.moc"
