#ifndef VOSK_STOPEDITOR_H
#define VOSK_STOPEDITOR_H

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

signals:
    void stopChanged(const QUuid& id);
    // Stops of the shown route were added, deleted or moved, or a branch's
    // alternate names edited; none of these is a stop's change.
    void branchChanged(const QUuid& routeId);

public slots:
    void clear(bool clearRoute);
    void clear();
    void routeSelected(const QUuid& id);

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
    void moveCurrentStop(int offset);
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
    cPlayer* player = nullptr;
    QLineEdit* firstNameEdit = nullptr;
    QLineEdit* lastNameEdit = nullptr;
    cSoundSelector* stopSound = nullptr;
    QList<cSoundSelector*> otherSounds;
};

#endif
