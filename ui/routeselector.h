#ifndef VOSK_ROUTESELECTOR_H
#define VOSK_ROUTESELECTOR_H

#include "problem.h"

#include <QDockWidget>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUuid>

class QAction;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QVBoxLayout;
class cConvertProgress;
class cRouteExport;
struct cExportItem;
struct cExportResult;
class cProjectHistory;
class cProjectManager;
class cSaveDialog;

// The dock with the project file commands, the list of the project's routes,
// the route imports and the export of routes to the device. It announces
// which route is selected and when routes or the project's file name change.
class cRouteSelector : public QDockWidget
{
    Q_OBJECT

public:
    cRouteSelector(cProjectManager* manager, QWidget* parent);

    // Opens the project named from outside the panel (on the command line)
    // as Open does once a file is chosen. The editor holds one project, so
    // more than one name fails the way an unreadable file does.
    void openProjectFiles(const QStringList& paths);
    // Makes the route the current one of the list, as a click on it does.
    void selectRoute(const QUuid& id);
    // The folder the export last wrote into, or was told to.
    QString exportFolder() const;
    // Opens an autosave in place of the project. The work belongs to
    // `projectFile` (empty for a project never saved), which Save writes.
    bool openRecovered(const QString& autosave, const QString& projectFile);
    // Edits are recorded there from now on.
    void setHistory(cProjectHistory* history);
    // Refills the list from the project and selects the route, after the
    // records changed behind the list (undo and redo).
    void showRoute(const QUuid& id);

signals:
    void routeChanged(const QUuid& id);
    void routeSelected(const QUuid& id);
    void routeAdded(const QUuid& id);
    void routeDeleted(const QUuid& id);
    void fileNameChanged(const QString& fileName);
    // The check before an export found errors and the user wants to see
    // them.
    void problemsFound(const QList<cProblem>& problems);
    // "Replay track…" was chosen for this route in the list's menu.
    void replayRequested(const QUuid& routeId);

public slots:
    void routeChangedSlot(const QUuid& id);
    // Offered in the window's File menu as well as in this panel.
    void importRouteGtfs();

private slots:
    void newProject();
    void openProject();
    void saveProject();
    void saveAsProject();
    void addRoute();
    void importRouteEvt();
    void importRouteLua();
    void projectOpened();
    void itemChanged(QListWidgetItem* item);
    void itemClicked(QListWidgetItem* item);
    void routeListContextMenu(const QPoint& p);
    void routeDeleteRequest();
    void routeImported(const QUuid& id);
    void saveRoute();
    void conversionStarted(const QStringList& sources);
    void exportFinished(const cExportResult& result);
    void fileProcessed(const QString& fn);

private:
    enum class ImportKind { Evt, Lua };

    void importRoute(ImportKind kind);
    void fillList();
    void moveRoutesTo(int destination);
    void openProjectFile(const QString& path);
    bool openWhileBusy(const QString& path);
    bool saveWhileBusy(const QString& path);
    void setError(bool error, const QString& message = QString());
    bool checkBeforeExport(const QList<cExportItem>& items);
    QString askProjectFile(bool forSaving);
    bool confirmUnsafeTexts();
    QListWidgetItem* itemFor(const QUuid& id) const;
    static QListWidgetItem* makeItem(const QString& name, const QUuid& id);
    static QUuid itemId(const QListWidgetItem* item);

    QListWidget* routeList;
    cProjectManager* projectManager;
    cProjectHistory* history = nullptr;
    QMenu* routeMenu;
    QAction* addAction;
    QAction* deleteAction;
    cRouteExport* routeExport;
    QAction* replayAction;
    QUuid menuRouteId;
    cSaveDialog* saveDialog;
    QString fileName;
    cConvertProgress* progress;
    // The window disabled while sounds convert; it is enabled again even if
    // another window became active meanwhile.
    QPointer<QWidget> blockedWindow;
};

#endif
