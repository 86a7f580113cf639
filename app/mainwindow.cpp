#include "mainwindow.h"

#include "autosaver.h"
#include "converter.h"
#include "problemsdock.h"
#include "projecthistory.h"
#include "projectmanager.h"
#include "recoverydialog.h"
#include "replaywindow.h"
#include "routecheck.h"
#include "routeeditor.h"
#include "routeselector.h"
#include "stopeditor.h"
#include "stopfixer.h"
#include "version.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QDockWidget>
#include <QKeySequence>
#include <QTabWidget>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QUndoStack>
#include <QUndoView>

#include <algorithm>

namespace {

const char* const settingsGroup = "MainWindow";

} // namespace

cMainWindow::cMainWindow(QWidget* parent)
    : QMainWindow(parent)
    // First, so that everything after it reaches the log file.
    , logger(this, QString(), true)
{
    setWindowTitle(QCoreApplication::applicationName());
    title = QStringLiteral("[*] %1 %2.%3").arg(windowTitle()).arg(version::major).arg(version::minor);
    setWindowTitle(title);

    projectManager = new cProjectManager(this);
    routeSelector = new cRouteSelector(projectManager, this);
    addDockWidget(Qt::LeftDockWidgetArea, routeSelector);

    routeEditor = new cRouteEditor(projectManager, this);
    // A rename in the editor shows in the route list.
    connect(routeEditor, &cRouteEditor::routeChanged, routeSelector, &cRouteSelector::routeChangedSlot);
    stopEditor = new cStopEditor(projectManager, this);
    // Fixes from a replay are stop writes like the editor's own.
    stopFixer = new cStopFixer(projectManager, this);
    connect(stopFixer, &cStopFixer::stopChanged, stopEditor, &cStopEditor::showStopChange);
    connect(stopFixer, &cStopFixer::stopChanged, this, &cMainWindow::changesDetectedSlot);
    connect(stopFixer, &cStopFixer::stopFixed, this,
            [this](const QUuid& routeId, bool reverse, const cStop& before, const cStop& after) {
                history->stopEdited({routeId, reverse ? Branch::Reverse : Branch::Direct, before, after},
                                    tr("Apply suggested fix to '%1'").arg(after.name));
            });
    connect(routeSelector, &cRouteSelector::replayRequested, this, &cMainWindow::showReplay);

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
    // There from the start, so that a long open or save does not resize the
    // window when it first says what it is doing.
    statusBar();
    createCheckCommands();
    createHistory();

    autosaver = new cAutosaver(projectManager, this);
    connectAutosave();
    buildMenus();
    restoreWindowSettings();

    const QString fullVersion = QStringLiteral("%1.%2.%3.%4")
                                    .arg(version::major)
                                    .arg(version::minor)
                                    .arg(version::build)
                                    .arg(version::revision);
    qDebug() << windowTitle() << "application started, version:" << fullVersion << ", build date:" << __DATE__
             << __TIME__;
    qDebug() << "Current date:" << QDateTime::currentDateTime();
}

cMainWindow::~cMainWindow()
{
    saveWindowSettings();
}

void cMainWindow::createHistory()
{
    history = new cProjectHistory(projectManager, this);
    routeSelector->setHistory(history);
    routeEditor->setHistory(history);
    stopEditor->setHistory(history);
    connect(history, &cProjectHistory::applied, this, &cMainWindow::showEditPlace);
    connect(history, &cProjectHistory::cleanStateChanged, this, &cMainWindow::historyCleanChanged);
}

void cMainWindow::createCheckCommands()
{
    problemsDock = new cProblemsDock(this);
    addDockWidget(Qt::BottomDockWidgetArea, problemsDock);
    problemsDock->hide();
    connect(problemsDock, &cProblemsDock::problemActivated, this, &cMainWindow::showProblem);
    connect(routeSelector, &cRouteSelector::problemsFound, this, &cMainWindow::showProblems);

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

// One place for the menus, so that further commands join the same bar.
void cMainWindow::buildMenus()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    fileMenu->setObjectName(QStringLiteral("fileMenu"));
    QAction* importGtfs = fileMenu->addAction(tr("Import from GTFS…"));
    importGtfs->setObjectName(QStringLiteral("importGtfsAction"));
    connect(importGtfs, &QAction::triggered, routeSelector, &cRouteSelector::importRouteGtfs);
    fileMenu->addSeparator();
    QAction* recover = fileMenu->addAction(tr("Recover unsaved work…"));
    recover->setObjectName(QStringLiteral("recoverAction"));
    connect(recover, &QAction::triggered, this, &cMainWindow::recoverUnsavedWork);
    buildEditMenu();

    QMenu* routeMenu = menuBar()->addMenu(tr("&Route"));
    routeMenu->setObjectName(QStringLiteral("routeMenu"));
    replayAction = routeMenu->addAction(tr("Replay track…"), this, [this] { showReplay(currentRouteId); });
    replayAction->setObjectName(QStringLiteral("replayMenuAction"));
    replayAction->setEnabled(!currentRouteId.isNull());

    QMenu* toolsMenu = menuBar()->addMenu(tr("&Tools"));
    toolsMenu->setObjectName(QStringLiteral("toolsMenu"));
    toolsMenu->addAction(checkAction);
}

void cMainWindow::buildEditMenu()
{
    QMenu* editMenu = menuBar()->addMenu(tr("&Edit"));
    editMenu->setObjectName(QStringLiteral("editMenu"));
    QUndoStack* stack = history->stack();

    QAction* undo = editMenu->addAction(style()->standardIcon(QStyle::SP_ArrowBack), tr("Undo"));
    undo->setObjectName(QStringLiteral("undoAction"));
    undo->setShortcuts(QKeySequence::Undo);
    undo->setEnabled(false);
    connect(undo, &QAction::triggered, stack, &QUndoStack::undo);
    connect(stack, &QUndoStack::canUndoChanged, undo, &QAction::setEnabled);
    connect(stack, &QUndoStack::undoTextChanged, undo, [this, undo](const QString& step) {
        undo->setText(step.isEmpty() ? tr("Undo") : tr("Undo %1").arg(step));
    });

    QAction* redo = editMenu->addAction(style()->standardIcon(QStyle::SP_ArrowForward), tr("Redo"));
    redo->setObjectName(QStringLiteral("redoAction"));
    // Ctrl+Y as well, which not every desktop lists among its redo keys.
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    const QKeySequence ctrlY(Qt::CTRL | Qt::Key_Y);
    if (!redoKeys.contains(ctrlY))
        redoKeys << ctrlY;
    redo->setShortcuts(redoKeys);
    redo->setEnabled(false);
    connect(redo, &QAction::triggered, stack, &QUndoStack::redo);
    connect(stack, &QUndoStack::canRedoChanged, redo, &QAction::setEnabled);
    connect(stack, &QUndoStack::redoTextChanged, redo, [this, redo](const QString& step) {
        redo->setText(step.isEmpty() ? tr("Redo") : tr("Redo %1").arg(step));
    });

    auto* historyDock = new QDockWidget(tr("History"), this);
    historyDock->setObjectName(QStringLiteral("historyDock"));
    auto* view = new QUndoView(stack, historyDock);
    view->setEmptyLabel(tr("Project as opened"));
    historyDock->setWidget(view);
    // Under the editors, as a tab beside the problems: the editors leave no
    // width to spare on a 1280-pixel screen, and a dock at the side would
    // push the window past it.
    addDockWidget(Qt::BottomDockWidgetArea, historyDock);
    tabifyDockWidget(problemsDock, historyDock);
    historyDock->hide();
    editMenu->addSeparator();
    QAction* showHistory = historyDock->toggleViewAction();
    showHistory->setText(tr("History"));
    editMenu->addAction(showHistory);
}

// Every edit reaches the autosave, also those that leave the modified mark
// alone (stops added, moved or deleted, alternate branch names) and the
// imports and failed opens that clear it.
void cMainWindow::connectAutosave()
{
    connect(routeSelector, &cRouteSelector::routeChanged, autosaver, &cAutosaver::projectChanged);
    connect(routeSelector, &cRouteSelector::routeAdded, autosaver, &cAutosaver::projectChanged);
    connect(routeSelector, &cRouteSelector::routeDeleted, autosaver, &cAutosaver::projectChanged);
    connect(routeEditor, &cRouteEditor::routeChanged, autosaver, &cAutosaver::projectChanged);
    connect(stopEditor, &cStopEditor::stopChanged, autosaver, &cAutosaver::projectChanged);
    connect(stopEditor, &cStopEditor::branchChanged, autosaver, &cAutosaver::projectChanged);
    connect(stopFixer, &cStopFixer::stopChanged, autosaver, &cAutosaver::projectChanged);
    connect(projectManager, &cProjectManager::projectOpened, autosaver, &cAutosaver::projectChanged);
    connect(routeSelector, &cRouteSelector::fileNameChanged, autosaver, &cAutosaver::setProjectFile);
    connect(history, &cProjectHistory::applied, autosaver, &cAutosaver::projectChanged);
}

void cMainWindow::offerRecovery()
{
    const QList<cAutosaveEntry> entries = autosaver->store().recoverable();
    if (!entries.isEmpty())
        showRecovery(entries);
}

void cMainWindow::recoverUnsavedWork()
{
    QList<cAutosaveEntry> entries = autosaver->store().recoverable();
    // The project on show is no work to recover.
    const QString current = autosaver->currentPath();
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [&current](const cAutosaveEntry& entry) { return entry.path == current; }),
                  entries.end());
    if (entries.isEmpty()) {
        QMessageBox::information(this, tr("Recover unsaved work"), tr("There is no unsaved work to recover."));
        return;
    }
    showRecovery(entries);
}

void cMainWindow::showRecovery(const QList<cAutosaveEntry>& entries)
{
    cRecoveryDialog dialog(&autosaver->store(), entries, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const cAutosaveEntry chosen = dialog.chosen();
    if (!routeSelector->openRecovered(chosen.path, chosen.projectFile))
        return;
    // Recovered work is not in its project file until the user saves it.
    changesDetectedSlot();
    autosaver->projectChanged();
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
    autosaver->finish(modified);
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

// Undo and redo show what they changed: the route, and for stops the
// branch and the stops, on the tab that holds them.
void cMainWindow::showEditPlace(const cEditPlace& place)
{
    stopEditor->holdFormWrites(true);
    routeSelector->showRoute(place.routeId);
    if (place.branch == Branch::None) {
        tabWidget->setCurrentWidget(routeEditor);
    } else {
        tabWidget->setCurrentWidget(stopEditor);
        stopEditor->showStops(place.branch == Branch::Reverse, place.stopIds);
    }
    stopEditor->holdFormWrites(false);
}

void cMainWindow::historyCleanChanged(bool clean)
{
    if (clean)
        noChangesDetectedSlot();
    else
        changesDetectedSlot();
}

void cMainWindow::routeSelected(const QUuid& id)
{
    tabWidget->setEnabled(!id.isNull());
    currentRouteId = id;
    if (replayAction)
        replayAction->setEnabled(!id.isNull());
}

void cMainWindow::showReplay(const QUuid& routeId)
{
    if (routeId.isNull())
        return;
    if (!replayWindow) {
        replayWindow = new cReplayWindow(projectManager, stopFixer, this);
        // What the editors change is replayed again.
        connect(stopEditor, &cStopEditor::stopChanged, replayWindow, &cReplayWindow::projectChanged);
        connect(stopEditor, &cStopEditor::branchChanged, replayWindow, &cReplayWindow::projectChanged);
        connect(routeSelector, &cRouteSelector::routeDeleted, replayWindow, &cReplayWindow::projectChanged);
    }
    replayWindow->setRoute(routeId);
    replayWindow->show();
    replayWindow->raise();
    replayWindow->activateWindow();
    if (!replayWindow->hasTrack())
        replayWindow->openTrack();
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
