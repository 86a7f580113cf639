#ifndef VOSK_ROUTEEDITOR_H
#define VOSK_ROUTEEDITOR_H

#include <QUuid>
#include <QWidget>

#include <memory>

namespace Ui {
class cRouteEditor;
}
class cPlayer;
class cProjectHistory;
class cProjectManager;
struct cRoute;
class cSoundSelector;

// Edits one route's own properties: names, switches, and the three fixed
// messages as sounds and texts. Every user edit writes the whole form into
// the route at once and is announced with routeChanged.
class cRouteEditor : public QWidget
{
    Q_OBJECT

public:
    cRouteEditor(cProjectManager* manager, QWidget* parent = nullptr);
    ~cRouteEditor() override;

    // Edits are recorded there from now on.
    void setHistory(cProjectHistory* history);

signals:
    void routeChanged(const QUuid& id);

public slots:
    void routeSelected(const QUuid& id);
    // Refreshes only the name, from whichever route has this id.
    void routeChangedSlot(const QUuid& id);
    void clear();

private slots:
    void routeEdited();

protected:
    void changeEvent(QEvent* event) override;

private:
    cRoute* findRoute(const QUuid& id) const;

    std::unique_ptr<Ui::cRouteEditor> ui;
    cProjectManager* projectManager;
    QUuid routeId;
    cProjectHistory* history = nullptr;
    cPlayer* player;
    cSoundSelector* currentSound;
    cSoundSelector* nextSound;
    cSoundSelector* lastSound;
};

#endif
