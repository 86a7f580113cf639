#ifndef VOSK_MAINWINDOW_H
#define VOSK_MAINWINDOW_H

#include "logger.h"
#include "problem.h"

#include <QMainWindow>
#include <QString>
#include <QUuid>

class QAction;
class QTabWidget;
class cAutosaver;
struct cAutosaveEntry;
class cProblemsDock;
class cProjectManager;
class cRouteEditor;
class cRouteSelector;
class cStopEditor;

// The one main window: route selector dock on the left, editor tabs in the
// centre, the unsaved-changes mark in the title, the autosave of the open
// project and its recovery, and its state kept between runs.
class cMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit cMainWindow(QWidget* parent = nullptr);
    ~cMainWindow() override;

public slots:
    // At start: shows the unsaved work left by earlier runs, if there is any.
    void offerRecovery();
    // From the menu: the same list, or a word that there is nothing.
    void recoverUnsavedWork();

protected:
    void closeEvent(QCloseEvent* event) override;

private slots:
    void routeSelected(const QUuid& id);
    void changesDetectedSlot();
    void noChangesDetectedSlot();
    void projectFileNameChanged(const QString& fn);
    void checkProject();
    void showProblems(const QList<cProblem>& problems);
    void showProblem(const QUuid& routeId, Branch branch, const QUuid& stopId);

private:
    void buildMenus();
    void connectAutosave();
    void showRecovery(const QList<cAutosaveEntry>& entries);
    void createCheckCommands();
    void restoreWindowSettings();
    void saveWindowSettings();

    cRouteSelector* routeSelector = nullptr;
    QTabWidget* tabWidget = nullptr;
    cProjectManager* projectManager = nullptr;
    cRouteEditor* routeEditor = nullptr;
    cStopEditor* stopEditor = nullptr;
    cAutosaver* autosaver = nullptr;
    cProblemsDock* problemsDock = nullptr;
    QAction* checkAction = nullptr;
    bool modified = false;
    QString title;
    logger::cLogger logger;
};

#endif
