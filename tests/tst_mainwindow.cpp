#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QApplication>
#include <QContextMenuEvent>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>

using namespace guisupport;
using namespace testsupport;

namespace {

const char* const oneBranchEvt =
    "<eventlist>\n<name>7</name>\n<event>\n<name>Вокзал</name>\n<zone shape=circle><radius>30</radius>"
    "<point lat=55.1 lon=37.2></point></zone>\n<reaction logic=rise></reaction>\n</event>\n</eventlist>\n";

QStringList itemTexts(const QListWidget* list)
{
    QStringList texts;
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

QString settingsValue(const QString& key) { return QSettings().value(key).toString(); }

} // namespace

class tst_MainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void newSaveAsAndOpenDriveTheMark();
    void failedOpenKeepsFileNameAndFramesList();
    void failedSaveFramesList();
    void addRouteNaming();
    void renameAndDeleteThroughTheList();
    void importsSelectTheImportedRoute();
    void closeAsksOnlyWhenModified();
    void windowStateIsKept();

private:
    QPushButton* button(const char* name) { return m_window->findChild<QPushButton*>(QLatin1String(name)); }
    QListWidget* routeList() { return m_window->findChild<QListWidget*>(QStringLiteral("routeList")); }
    QTabWidget* tabs() { return qobject_cast<QTabWidget*>(m_window->centralWidget()); }
    cProjectManager* manager() { return m_window->findChild<cProjectManager*>(); }
    QString path(const QString& name) const { return m_dir->filePath(name); }
    // `message`, when given, takes the text of the message box that follows.
    void clickWithFile(const char* buttonName, const QString& file, QString* message = nullptr)
    {
        answerFileDialog(file);
        if (message)
            answerMessageBox(message);
        button(buttonName)->click();
    }
    QString contextMenu(const QPoint& at, const QString& actionText);

    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<cMainWindow> m_window;
};

void tst_MainWindow::init()
{
    QSettings().clear();
    m_dir.reset(new QTemporaryDir);
    m_window.reset(new cMainWindow);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.data()));
}

void tst_MainWindow::cleanup()
{
    const int unused = dropPendingAnswers();
    m_window.reset();
    QCOMPARE(unused, 0);
}

// Opens the route list's context menu at `at`, triggers the action named
// `actionText` if it is enabled, and returns the names of enabled actions.
QString tst_MainWindow::contextMenu(const QPoint& at, const QString& actionText)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, routeList()->viewport()->mapToGlobal(at));
    QApplication::sendEvent(routeList()->viewport(), &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu)
        return QStringLiteral("no menu");
    QStringList enabled;
    for (QAction* action : menu->actions()) {
        if (action->isEnabled() && !action->isSeparator())
            enabled << action->text();
        if (action->text() == actionText && action->isEnabled())
            action->trigger();
    }
    menu->hide();
    return enabled.join(QLatin1Char(','));
}

void tst_MainWindow::newSaveAsAndOpenDriveTheMark()
{
    QVERIFY(!m_window->isWindowModified() && !tabs()->isEnabled());
    button("newProjectBtn")->click();
    QVERIFY(m_window->isWindowModified());

    button("addRouteBtn")->click();
    button("addRouteBtn")->click();
    const QString file = path("first.vosk");
    clickWithFile("saveAsProjectBtn", file);
    QVERIFY(QFile::exists(file));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21 - ") + QDir::toNativeSeparators(file));
    QCOMPARE(settingsValue("RouteSelector/LastProjectDir"), file);

    button("addRouteBtn")->click();
    QVERIFY(m_window->isWindowModified());
    button("saveProjectBtn")->click();
    QVERIFY(!m_window->isWindowModified());

    button("newProjectBtn")->click();
    QCOMPARE(routeList()->count(), 0);
    QVERIFY(!tabs()->isEnabled());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21"));

    // Save with no file name asks like Save as; a cancelled dialog changes
    // nothing, not even the remembered file.
    QSettings().remove("RouteSelector/LastProjectDir");
    clickWithFile("saveProjectBtn", QString());
    QVERIFY(m_window->isWindowModified());
    QVERIFY(settingsValue("RouteSelector/LastProjectDir").isEmpty());

    clickWithFile("openProjectBtn", file);
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(itemTexts(routeList()), (QStringList{"New route", "New route 1", "New route 2"}));
    QCOMPARE(routeList()->currentRow(), 0);
    QVERIFY(tabs()->isEnabled());
}

void tst_MainWindow::failedOpenKeepsFileNameAndFramesList()
{
    const QString good = path("good.vosk");
    button("addRouteBtn")->click();
    clickWithFile("saveAsProjectBtn", good);
    const QString titleWithFile = m_window->windowTitle();

    const QString bad = path("bad.vosk");
    writeFile(bad, "project = { id = ");
    QString message;
    clickWithFile("openProjectBtn", bad, &message);
    QTRY_COMPARE(message, QStringLiteral("Error|Project has some errors, failed to open."));
    QCOMPARE(m_window->windowTitle(), titleWithFile);
    QVERIFY(routeList()->styleSheet().contains("red"));
    QCOMPARE(settingsValue("RouteSelector/LastProjectDir"), bad);
    // A Lua error leaves the project as it was.
    QCOMPARE(routeList()->count(), 1);
    QCOMPARE(manager()->project()->routes.size(), 1);

    clickWithFile("openProjectBtn", good);
    QVERIFY(routeList()->styleSheet().isEmpty());
}

void tst_MainWindow::failedSaveFramesList()
{
    QString message;
    clickWithFile("saveAsProjectBtn", path("missing-folder/p.vosk"), &message);
    QTRY_COMPARE(message, QStringLiteral("Error|Failed to save project."));
    QVERIFY(routeList()->styleSheet().contains("red"));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("[*] Voskantor 1.21"));
}

void tst_MainWindow::addRouteNaming()
{
    button("addRouteBtn")->click();
    button("addRouteBtn")->click();
    routeList()->item(0)->setText("Other");
    button("addRouteBtn")->click();
    QCOMPARE(itemTexts(routeList()), (QStringList{"Other", "New route 1", "New route"}));
    button("addRouteBtn")->click();
    QCOMPARE(routeList()->item(3)->text(), QStringLiteral("New route 2"));
    QCOMPARE(routeList()->currentRow(), 3);

    const cRoute& added = manager()->project()->routes.last();
    QCOMPARE(added.base_text.current + added.base_text.next + added.base_text.last, QStringLiteral("Stop: Next: . Last"));

    // The context menu adds too, and offers Delete only over an item.
    const QString offered = contextMenu(QPoint(5, routeList()->viewport()->height() - 3), "Add");
    QCOMPARE(offered, QStringLiteral("Add,Import from GTFS…"));
    QCOMPARE(routeList()->count(), 5);
}

void tst_MainWindow::renameAndDeleteThroughTheList()
{
    const QString file = path("p.vosk");
    button("addRouteBtn")->click();
    button("addRouteBtn")->click();
    clickWithFile("saveAsProjectBtn", file);

    routeList()->item(1)->setText(QStringLiteral("Маршрут 5"));
    QCOMPARE(manager()->project()->routes[1].name, QStringLiteral("Маршрут 5"));
    QVERIFY(m_window->isWindowModified());

    // Only the current item goes, even with several selected.
    routeList()->selectAll();
    routeList()->setCurrentRow(0, QItemSelectionModel::NoUpdate);
    const QRect first = routeList()->visualItemRect(routeList()->item(0));
    QCOMPARE(contextMenu(first.center(), "Delete"), QStringLiteral("Add,Delete,Import from GTFS…"));
    QCOMPARE(itemTexts(routeList()), QStringList{"Маршрут 5"});
    QCOMPARE(manager()->project()->routes.size(), 1);
    QVERIFY(tabs()->isEnabled());

    routeList()->setCurrentRow(0);
    contextMenu(routeList()->visualItemRect(routeList()->item(0)).center(), "Delete");
    QCOMPARE(routeList()->count(), 0);
    QVERIFY(manager()->project()->routes.isEmpty());
    QVERIFY(!tabs()->isEnabled());
}

void tst_MainWindow::importsSelectTheImportedRoute()
{
    button("addRouteBtn")->click();
    const QString evt = path("route.evt");
    writeFile(evt, oneBranchEvt);
    auto* importMenu = button("importRouteBtn")->menu();
    QVERIFY(importMenu);
    answerFileDialog(evt);
    importMenu->actions().at(0)->trigger();
    QCOMPARE(itemTexts(routeList()), (QStringList{"New route", "7"}));
    QCOMPARE(routeList()->currentRow(), 1);
    QVERIFY(tabs()->isEnabled());
    QCOMPARE(settingsValue("RouteSelector/LastImportDir"), evt);

    const QString broken = path("broken.evt");
    writeFile(broken, "no event lists here");
    QString message;
    answerFileDialog(broken);
    answerMessageBox(&message);
    importMenu->actions().at(0)->trigger();
    QTRY_COMPARE(message, QStringLiteral("Error|Failed to import route to project:\n"
                                         "Route should have 1 or 2 branches, but found 0 branches."));
    QVERIFY(routeList()->styleSheet().isEmpty());
    QCOMPARE(routeList()->count(), 2);

    // A Lua import reloads the list and selects its first route.
    const QString script = path("route.lua");
    cRoute route = sampleRoute();
    writeFile(script, "route =\n" + QByteArray("{ id = '") + route.id.toString().toLatin1() + "', name = 'Lua' }");
    answerFileDialog(script);
    importMenu->actions().at(1)->trigger();
    QCOMPARE(itemTexts(routeList()), (QStringList{"New route", "7", "Lua"}));
    QCOMPARE(routeList()->currentRow(), 0);
}

void tst_MainWindow::closeAsksOnlyWhenModified()
{
    QVERIFY(m_window->close());
    m_window->show();

    button("newProjectBtn")->click();
    QString question;
    answerMessageBox(&question, "No");
    QVERIFY(!m_window->close());
    QCOMPARE(question, QStringLiteral("Exit?|Your project has unsaved changes. Exit?"));
    QVERIFY(m_window->isVisible());

    answerMessageBox(nullptr, "Yes");
    QVERIFY(m_window->close());
}

void tst_MainWindow::windowStateIsKept()
{
    m_window->setGeometry(QRect(70, 80, 700, 500));
    const QRect geometry = m_window->geometry();
    m_window.reset();
    QCOMPARE(QSettings().value("MainWindow/Geometry").toRect(), geometry);
    QVERIFY(!QSettings().value("MainWindow/State").toByteArray().isEmpty());

    m_window.reset(new cMainWindow);
    QCOMPARE(m_window->geometry(), geometry);

    // Without settings the window starts at its default place and size.
    m_window.reset();
    QSettings().clear();
    m_window.reset(new cMainWindow);
    QCOMPARE(m_window->geometry(), QRect(40, 40, 860, 650));
}

VOSK_GUI_TEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
