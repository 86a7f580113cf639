#include "mainwindow.h"

#include "converter.h"
#include "problemsdock.h"
#include "projectmanager.h"
#include "routecheck.h"
#include "routeeditor.h"
#include "routeselector.h"
#include "stopeditor.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QMessageBox>
#include <QSettings>
#include <QTabWidget>
#include <QStyle>
#include <QToolBar>

namespace {

const int versionMajor = 1;
const int versionMinor = 21;
const int versionBuild = 0;
const int versionRevision = 1;

const char* const settingsGroup = "MainWindow";

} // namespace

cMainWindow::cMainWindow(QWidget* parent)
    : QMainWindow(parent)
    // First, so that everything after it reaches the log file.
    , logger(this, QString(), true)
{
    setWindowTitle(QCoreApplication::applicationName());
    title = QStringLiteral("[*] %1 %2.%3").arg(windowTitle()).arg(versionMajor).arg(versionMinor);
    setWindowTitle(title);

    projectManager = new cProjectManager(this);
    routeSelector = new cRouteSelector(projectManager, this);
    addDockWidget(Qt::LeftDockWidgetArea, routeSelector);

    routeEditor = new cRouteEditor(projectManager, this);
    // A rename in the editor shows in the route list.
    connect(routeEditor, &cRouteEditor::routeChanged, routeSelector, &cRouteSelector::routeChangedSlot);
    stopEditor = new cStopEditor(projectManager, this);

    connect(routeSelector, &cRouteSelector::routeChanged, routeEditor, &cRouteEditor::routeChangedSlot);
    connect(routeSelector, &cRouteSelector::routeSelected, routeEditor, &cRouteEditor::routeSelected);
    connect(routeSelector, &cRouteSelector::routeSelected, stopEditor, &cStopEditor::routeSelected);
    connect(routeSelector, &cRouteSelector::routeSelected, this, &cMainWindow::routeSelected);
    connect(routeSelector, &cRouteSelector::routeChanged, this, &cMainWindow::changesDetectedSlot);
    connect(routeEditor, &cRouteEditor::routeChanged, this, &cMainWindow::changesDetectedSlot);
    connect(stopEditor, &cStopEditor::stopChanged, this, &cMainWindow::changesDetectedSlot);
    connect(projectManager, &cProjectManager::projectCreated, this, &cMainWindow::changesDetectedSlot);
    connect(projectManager, &cProjectManager::projectSaved, this, &cMainWindow::noChangesDetectedSlot);
    connect(projectManager, &cProjectManager::projectOpened, this, &cMainWindow::noChangesDetectedSlot);
    connect(routeSelector, &cRouteSelector::routeAdded, this, &cMainWindow::changesDetectedSlot);
    connect(routeSelector, &cRouteSelector::routeDeleted, this, &cMainWindow::changesDetectedSlot);
    connect(routeSelector, &cRouteSelector::fileNameChanged, this, &cMainWindow::projectFileNameChanged);

    tabWidget = new QTabWidget(this);
    tabWidget->setEnabled(false);
    tabWidget->addTab(routeEditor, QIcon(QStringLiteral(":icon/settings.ico")), tr("Main"));
    tabWidget->addTab(stopEditor, QIcon(QStringLiteral(":icon/bus_stop.ico")), tr("Stops"));
    tabWidget->addTab(new QWidget, QIcon(QStringLiteral(":icon/event.ico")), tr("Events"));
    setCentralWidget(tabWidget);
    createCheckCommands();

    restoreWindowSettings();

    const QString version = QStringLiteral("%1.%2.%3.%4")
                                .arg(versionMajor)
                                .arg(versionMinor)
                                .arg(versionBuild)
                                .arg(versionRevision);
    qDebug() << windowTitle() << "application started, version:" << version << ", build date:" << __DATE__
             << __TIME__;
    qDebug() << "Current date:" << QDateTime::currentDateTime();
}

cMainWindow::~cMainWindow()
{
    saveWindowSettings();
}

void cMainWindow::createCheckCommands()
{
    problemsDock = new cProblemsDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, problemsDock);
    problemsDock->hide();
    connect(problemsDock, &cProblemsDock::problemActivated, this, &cMainWindow::showProblem);

    checkAction = new QAction(style()->standardIcon(QStyle::SP_DialogApplyButton), tr("Check project"), this);
    checkAction->setObjectName(QStringLiteral("checkProjectAction"));
    checkAction->setShortcut(Qt::Key_F7);
    checkAction->setToolTip(tr("Look for what would make the device announce wrongly (F7)"));
    connect(checkAction, &QAction::triggered, this, &cMainWindow::checkProject);
    QToolBar* toolBar = addToolBar(tr("Check"));
    toolBar->setObjectName(QStringLiteral("checkToolBar"));
    toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolBar->addAction(checkAction);
}

void cMainWindow::restoreWindowSettings()
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    restoreState(settings.value(QStringLiteral("State")).toByteArray());
    setGeometry(settings.value(QStringLiteral("Geometry"), QRect(40, 40, 860, 650)).toRect());
    if (settings.value(QStringLiteral("IsMaximized"), false).toBool())
        showMaximized();
}

void cMainWindow::saveWindowSettings()
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    settings.setValue(QStringLiteral("State"), saveState());
    settings.setValue(QStringLiteral("IsMaximized"), isMaximized());
    settings.setValue(QStringLiteral("Geometry"), geometry());
    settings.endGroup();
    settings.sync();
}

void cMainWindow::closeEvent(QCloseEvent* event)
{
    if (modified
        && QMessageBox::question(this, tr("Exit?"), tr("Your project has unsaved changes. Exit?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes)
            != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    event->accept();
}

void cMainWindow::checkProject()
{
    cCheckOptions options;
    options.converter = cConverter::program();
    options.outputDir = routeSelector->exportFolder();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QList<cProblem> problems = cRouteCheck::run(projectManager->project()->routes, options);
    QApplication::restoreOverrideCursor();
    qDebug() << "Project checked:" << problems.size() << "problems," << errorCount(problems) << "errors";
    showProblems(problems);
}

void cMainWindow::showProblems(const QList<cProblem>& problems)
{
    problemsDock->setProblems(problems);
    if (problemsDock->isHidden()) {
        problemsDock->show();
        // A third of the window, enough for a few rows; the user may drag it.
        resizeDocks({problemsDock}, {height() / 3}, Qt::Vertical);
    }
    problemsDock->raise();
}

void cMainWindow::showProblem(const QUuid& routeId, Branch branch, const QUuid& stopId)
{
    if (routeId.isNull())
        return;
    routeSelector->selectRoute(routeId);
    if (branch == Branch::None) {
        tabWidget->setCurrentWidget(routeEditor);
        return;
    }
    tabWidget->setCurrentWidget(stopEditor);
    stopEditor->selectStop(branch == Branch::Reverse, stopId);
}

void cMainWindow::routeSelected(const QUuid& id)
{
    tabWidget->setEnabled(!id.isNull());
}

void cMainWindow::changesDetectedSlot()
{
    modified = true;
    setWindowModified(true);
}

void cMainWindow::noChangesDetectedSlot()
{
    modified = false;
    setWindowModified(false);
}

void cMainWindow::projectFileNameChanged(const QString& fn)
{
    setWindowTitle(fn.isEmpty() ? title : title + QStringLiteral(" - %1").arg(QDir::toNativeSeparators(fn)));
}
