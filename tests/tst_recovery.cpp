#include "autosaver.h"
#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>
#include <QTreeWidget>

#include <signal.h>

using namespace guisupport;
using namespace testsupport;

namespace {

void typeReplacing(QWidget* window, const char* field, const char* text)
{
    auto* edit = child<QLineEdit>(window, field);
    edit->selectAll();
    QTest::keyClicks(edit, QString::fromLatin1(text));
    QCoreApplication::processEvents();
}

// The editor that gets killed: it edits a new project through the window's
// widgets, waits until the autosave holds the last edit, says so, and waits.
int editUntilKilled(int argc, char* argv[])
{
    setApplicationNames();
    QApplication app(argc, argv);
    cMainWindow window;
    window.show();
    child<QPushButton>(&window, "addRouteBtn")->click();
    typeReplacing(&window, "nameEdit", "Line 7");
    qobject_cast<QTabWidget*>(window.centralWidget())->setCurrentIndex(1);
    child<QToolButton>(&window, "addStopBtn")->click();
    typeReplacing(&window, "stopNameEdit", "Gate");
    typeReplacing(&window, "latEdit", "55.75");
    typeReplacing(&window, "lonEdit", "37.5");
    QTest::keyClick(child<QSpinBox>(&window, "radiusEdit"), Qt::Key_Up);
    QSignalSpy saved(window.findChild<cAutosaver*>(), &cAutosaver::autosaved);
    if (!saved.wait(3 * cAutosaver::defaultIntervalMs))
        return 1;
    std::printf("ready\n");
    std::fflush(stdout);
    return app.exec();
}

} // namespace

class tst_Recovery : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void storeListsWorkMissingFromItsFile();
    void autosaveFollowsTheProject();
    void failedOpenThenSaveLeavesBackupAndAutosave();
    void killedEditorIsRecovered();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    void newWindow()
    {
        m_window.reset(new cMainWindow);
        m_window->show();
        m_autosaver = m_window->findChild<cAutosaver*>();
        m_autosaver->setInterval(0);
    }
    void click(const char* button) { child<QPushButton>(m_window.data(), button)->click(); }
    cProject& project() { return *m_window->findChild<cProjectManager*>()->project(); }
    bool autosaved()
    {
        QSignalSpy saved(m_autosaver, &cAutosaver::autosaved);
        return saved.wait(5000) && QFile::exists(m_autosaver->currentPath());
    }
    // Answers the recovery dialog: lists its rows as "file|routes|stops" and
    // opens the one whose file ends with `open`, or cancels.
    void answerRecovery(QStringList* rows, const QString& open = QString());

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<cMainWindow> m_window;
    cAutosaver* m_autosaver = nullptr;
};

void tst_Recovery::init()
{
    QSettings().clear();
    m_dir.reset(new QTemporaryDir);
    QDir(QFileInfo(cAutosaveStore().pathFor(QUuid())).path()).removeRecursively();
}

void tst_Recovery::cleanup()
{
    const int unused = dropPendingAnswers();
    m_window.reset();
    QCOMPARE(unused, 0);
}

void tst_Recovery::answerRecovery(QStringList* rows, const QString& open)
{
    answerNextModal([rows, open](QWidget* dialog) {
        auto* list = child<QTreeWidget>(dialog, "autosaveList");
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            const QTreeWidgetItem* item = list->topLevelItem(row);
            *rows << item->text(1) + '|' + item->text(2) + '|' + item->text(3);
            if (!open.isEmpty() && item->text(1).endsWith(open))
                list->setCurrentItem(list->topLevelItem(row));
        }
        child<QPushButton>(dialog, open.isEmpty() ? "cancelButton" : "openButton")->click();
    });
}

void tst_Recovery::storeListsWorkMissingFromItsFile()
{
    cAutosaveStore store(path("autosave"));
    cProject untitled;
    untitled.routes << sampleRoute();
    QVERIFY(store.write(untitled, QString()));
    cProject named = untitled;
    named.id = QUuid::createUuid();
    const QString file = path("odd 100% name\n.vosk");
    QVERIFY(store.write(named, file));

    QList<cAutosaveEntry> entries = store.recoverable();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0].projectFile, file);
    QCOMPARE(QPoint(entries[0].routes, entries[0].stops), QPoint(1, 3));
    QVERIFY(entries[1].projectFile.isEmpty());

    // Saved later, or saved alike, the project file holds the work; a later
    // file that holds another project does not.
    QTest::qWait(20);
    cProjectManager manager;
    *manager.project() = named;
    QVERIFY(manager.saveProject(file));
    QCOMPARE(store.recoverable().size(), 1);
    QVERIFY(store.write(named, file));
    QCOMPARE(store.recoverable().size(), 1);
    manager.project()->id = QUuid::createUuid();
    QVERIFY(manager.saveProject(file));
    QCOMPARE(store.recoverable().size(), 2);

    // Only the newest are kept.
    for (int i = 0; i < cAutosaveStore::maxKept; ++i)
        QVERIFY(store.write(cProject(), QString()));
    entries = store.entries();
    QCOMPARE(entries.size(), cAutosaveStore::maxKept);
    QVERIFY(!QFile::exists(store.pathFor(untitled.id)));
}

void tst_Recovery::autosaveFollowsTheProject()
{
    newWindow();
    click("addRouteBtn");
    QVERIFY(autosaved());
    const QString first = m_autosaver->currentPath();
    answerFileDialog(path("a.vosk"));
    click("saveAsProjectBtn");
    QVERIFY(!QFile::exists(first));

    // New and Open ask nothing; what they drop stays in the autosave.
    click("addRouteBtn");
    QVERIFY(autosaved());
    click("newProjectBtn");
    QVERIFY(QFile::exists(first));

    // An import clears the unsaved mark, so closing asks nothing: the
    // imported route is kept for the next start.
    const QString evt = path("r.evt");
    QVERIFY(writeFile(evt, "<eventlist><name>Import</name></eventlist>"));
    answerFileDialog(evt);
    child<QPushButton>(m_window.data(), "importRouteBtn")->menu()->actions().at(0)->trigger();
    QVERIFY(autosaved());
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(m_window->close());

    newWindow();
    QStringList rows;
    answerRecovery(&rows);
    m_window->offerRecovery();
    QCOMPARE(rows, (QStringList{"(never saved)|1|0", QDir::toNativeSeparators(path("a.vosk")) + "|2|0"}));

    // Closing after agreeing to lose the changes drops their autosave.
    click("addRouteBtn");
    QVERIFY(autosaved());
    const QString dropped = m_autosaver->currentPath();
    answerMessageBox(nullptr, "Yes");
    QVERIFY(m_window->close());
    QVERIFY(!QFile::exists(dropped));
}

void tst_Recovery::failedOpenThenSaveLeavesBackupAndAutosave()
{
    newWindow();
    click("addRouteBtn");
    const QString a = path("A.vosk");
    answerFileDialog(a);
    click("saveAsProjectBtn");
    const QByteArray saved = readFile(a);
    click("addRouteBtn");
    QVERIFY(autosaved());
    const cProject edited = project();

    // B fails half-way, after the project was replaced; the file name is
    // still A's, so Save writes the remains of B over A.
    const QString b = path("B.vosk");
    QVERIFY(writeFile(b, "project = { id = '" + QUuid::createUuid().toByteArray()
                             + "', version = 1, routes = { { name = 'no id' } } }"));
    answerFileDialog(b);
    answerMessageBox();
    click("openProjectBtn");
    click("saveProjectBtn");
    QVERIFY(readFile(a) != saved);
    QCOMPARE(readFile(a + ".bak"), saved);

    QStringList rows;
    answerRecovery(&rows, "A.vosk");
    m_window->findChild<QAction*>("recoverAction")->trigger();
    QCOMPARE(rows, QStringList{QDir::toNativeSeparators(a) + "|2|0"});
    QCOMPARE(difference(project(), edited), QString());
    QVERIFY(m_window->isWindowModified());
    QVERIFY(m_window->windowTitle().endsWith(QDir::toNativeSeparators(a)));
}

void tst_Recovery::killedEditorIsRecovered()
{
    QProcess editor;
    editor.start(QCoreApplication::applicationFilePath(), {"--edit"});
    QVERIFY2(editor.waitForReadyRead(60000), editor.readAllStandardError().constData());
    QCOMPARE(editor.readAllStandardOutput(), QByteArray("ready\n"));
    ::kill(pid_t(editor.processId()), SIGKILL);
    QVERIFY(editor.waitForFinished());
    QCOMPARE(editor.exitStatus(), QProcess::CrashExit);

    newWindow();
    QStringList rows;
    answerRecovery(&rows, "(never saved)");
    m_window->offerRecovery();
    QCOMPARE(rows, QStringList{"(never saved)|1|1"});
    QCOMPARE(project().routes.size(), 1);
    QCOMPARE(project().routes[0].name, QStringLiteral("Line 7"));
    const cStop& stop = project().routes[0].direct.stops.value(0);
    QCOMPARE(stop.name, QStringLiteral("Gate"));
    QCOMPARE(QPointF(stop.lon, stop.lat), QPointF(37.5, 55.75));
    QCOMPARE(stop.radius, cStop().radius + 1);
    QVERIFY(m_window->isWindowModified());

    // The work on show is no longer listed as lost.
    QString message;
    answerMessageBox(&message);
    m_window->findChild<QAction*>("recoverAction")->trigger();
    QCOMPARE(message, QStringLiteral("Recover unsaved work|There is no unsaved work to recover."));
}

int main(int argc, char* argv[])
{
    // The child inherits the test's isolated folders.
    if (argc > 1 && qstrcmp(argv[1], "--edit") == 0)
        return editUntilKilled(argc, argv);
    cIsolatedHome home;
    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);
    tst_Recovery test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recovery.moc"
