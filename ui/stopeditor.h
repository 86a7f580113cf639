#ifndef VOSK_STOPEDITOR_H
#define VOSK_STOPEDITOR_H

#include "problem.h"
#include "rowmoves.h"

#include <QPersistentModelIndex>
#include <QUuid>
#include <QWidget>

class QAction;
class QLineEdit;
class QMenu;
class QStandardItem;
class QStandardItemModel;
struct cBranch;
class cMapViewer;
class cPlayer;
class cProjectHistory;
class cProjectManager;
class cSoundSelector;
struct cRoute;
struct cStop;

namespace Ui {
class cStopEditor;
}

// The "Stops" page: both branches of the route on show, their stops with
// add, delete and move, the fields of the selected stop, and the map to
// place it. Edits go straight into the project's records.
class cStopEditor : public QWidget
{
    Q_OBJECT

public:
    cStopEditor(cProjectManager* manager, QWidget* parent);
    ~cStopEditor() override;

    // Shows the branch and makes the stop the current one, as a click on it
    // does.
    void selectStop(bool reverse, const QUuid& stopId);
    // Edits are recorded there from now on.
    void setHistory(cProjectHistory* history);
    // Shows the branch with these stops selected, after undo or redo put
    // them back.
    void showStops(bool reverse, const QList<QUuid>& stopIds);
    // While held, stops loaded into the form are not written back: after
    // undo or redo that write would be a new step and end the redo history.
    void holdFormWrites(bool hold);

signals:
    void stopChanged(const QUuid& id);
    // Stops of the shown route were added, deleted or moved, or a branch's
    // alternate names edited; none of these is a stop's change.
    void branchChanged(const QUuid& routeId);

public slots:
    void clear(bool clearRoute);
    void clear();
    void routeSelected(const QUuid& id);
    // A stop was written from elsewhere (a replay's fix): the form shows it
    // again when it is the stop on show, so a later edit cannot undo it.
    void showStopChange(const QUuid& id);

private slots:
    void showMap();
    void mapOk();
    void addStop();
    void delStop();
    void upStop();
    void downStop();
    void routeDirectionChanged(int val);
    void itemChanged(QStandardItem* item);
    void itemClicked(const QModelIndex& index);
    void stopListContextMenu(const QPoint& p);
    void currentChanged(const QModelIndex& curr, const QModelIndex& prev);
    void courseEnable(bool en);
    void stopEdited();
    void branchEdited();
    void clearEditors();
    void routeRenamed(const QString& oldName, const QString& newName);
    void mirrorBranch();
    void moveStopsTo(int destination);

protected:
    void changeEvent(QEvent* event) override;

private:
    void buildSoundFields();
    void buildExpander();
    void connectFieldsQueued();
    bool showsReverse() const;
    cRoute* shownRoute() const;
    cBranch* shownBranch() const;
    QStandardItemModel* shownModel() const;
    cStop* stopOf(const QModelIndex& index) const;
    void moveSelectedStops(const QList<int>& rows, const QList<int>& to);
    QList<int> selectedRows() const;
    Branch shownBranchKind() const;
    void fillModel(QStandardItemModel* model, const cBranch& branch);
    void selectRows(const QList<int>& rows);
    void recordBranchStops(const cRowEntries<cStop>& removed, const cRowEntries<cStop>& inserted,
                           const QString& text);
    void setCentrePending(bool pending);
    static QStandardItem* makeItem(const QString& name, const QUuid& id);

    Ui::cStopEditor* ui;
    cProjectManager* projectManager;
    QUuid routeId;
    QPersistentModelIndex directIndex;
    QPersistentModelIndex reverseIndex;
    cMapViewer* mapViewer;
    QStandardItemModel* directModel;
    QStandardItemModel* reverseModel;
    QMenu* menu = nullptr;
    QAction* addAction = nullptr;
    QAction* deleteAction = nullptr;
    QAction* mirrorAction = nullptr;
    cProjectHistory* history = nullptr;
    // Spin boxes set while a stop is loaded write it back once the event
    // loop runs; those writes are no edits of the user's.
    bool fillingForm = false;
    int pendingWriteBacks = 0;
    bool formWritesHeld = false;
    int droppedWrites = 0;
    cPlayer* player = nullptr;
    QLineEdit* firstNameEdit = nullptr;
    QLineEdit* lastNameEdit = nullptr;
    cSoundSelector* stopSound = nullptr;
    QList<cSoundSelector*> otherSounds;
};

#endif
