#include "routeeditor.h"

#include "ui_routeeditor.h"

#include "player.h"
#include "projectmanager.h"
#include "soundselector.h"
#include "unsafetextmark.h"

#include <QEvent>

namespace {

// The rate of the device's own sounds.
const int playerFrequency = 8000;
const int soundColumn = 2;

} // namespace

cRouteEditor::cRouteEditor(cProjectManager* manager, QWidget* parent)
    : QWidget(parent)
    , ui(new Ui::cRouteEditor)
    , projectManager(manager)
{
    ui->setupUi(this);

    // The selector only offers the kinds: the route's type belongs to the
    // files it was read from, so the selector is neither filled nor read.
    ui->typeSelector->addItem(tr("Bidirectional"), QStringLiteral("bidir"));
    ui->typeSelector->addItem(tr("Ring"), QStringLiteral("round"));
    ui->typeSelector->addItem(tr("Line"), QStringLiteral("line"));

    // Signals that only the user's typing and clicking raise, so that filling
    // the form from a route never writes back.
    for (QLineEdit* edit : {ui->nameEdit, ui->shortNameEdit, ui->currentEdit, ui->nextEdit, ui->lastEdit}) {
        connect(edit, &QLineEdit::textEdited, this, &cRouteEditor::routeEdited);
        watchUnsafeText(edit);
    }
    connect(ui->playSound, &QCheckBox::released, this, &cRouteEditor::routeEdited);
    connect(ui->showText, &QCheckBox::released, this, &cRouteEditor::routeEdited);

    player = new cPlayer(playerFrequency, this);
    currentSound = new cSoundSelector(player, this);
    nextSound = new cSoundSelector(player, this);
    lastSound = new cSoundSelector(player, this);
    ui->soundLayout->addWidget(currentSound, 0, soundColumn);
    ui->soundLayout->addWidget(nextSound, 1, soundColumn);
    ui->soundLayout->addWidget(lastSound, 2, soundColumn);
    for (cSoundSelector* sound : {currentSound, nextSound, lastSound})
        connect(sound, &cSoundSelector::edited, this, &cRouteEditor::routeEdited);

    clear();
}

cRouteEditor::~cRouteEditor() = default;

cRoute* cRouteEditor::findRoute(const QUuid& id) const
{
    if (id.isNull())
        return nullptr;
    QList<cRoute>& routes = projectManager->project()->routes;
    for (int i = 0; i < routes.size(); ++i) {
        if (routes[i].id == id)
            return &routes[i];
    }
    return nullptr;
}

void cRouteEditor::routeSelected(const QUuid& id)
{
    if (id.isNull()) {
        clear();
        return;
    }
    // An unknown id leaves the route on show as it was.
    const cRoute* route = findRoute(id);
    if (!route)
        return;
    routeId = id;
    ui->nameEdit->setText(route->name);
    ui->shortNameEdit->setText(route->short_name);
    ui->playSound->setChecked(route->play_sound);
    ui->showText->setChecked(route->display_text);
    ui->currentEdit->setText(route->base_text.current);
    ui->nextEdit->setText(route->base_text.next);
    ui->lastEdit->setText(route->base_text.last);
    currentSound->setSoundFile(route->base_sound.current);
    nextSound->setSoundFile(route->base_sound.next);
    lastSound->setSoundFile(route->base_sound.last);
}

void cRouteEditor::routeChangedSlot(const QUuid& id)
{
    if (const cRoute* route = findRoute(id))
        ui->nameEdit->setText(route->name);
}

void cRouteEditor::clear()
{
    routeId = QUuid();
    ui->typeSelector->setCurrentIndex(0);
    currentSound->clear();
    nextSound->clear();
    lastSound->clear();
    ui->nameEdit->clear();
    ui->shortNameEdit->clear();
    ui->currentEdit->clear();
    ui->nextEdit->clear();
    ui->lastEdit->clear();
    ui->playSound->setChecked(false);
    ui->showText->setChecked(false);
}

void cRouteEditor::routeEdited()
{
    // The route may have been deleted while on show: then edits go nowhere.
    cRoute* route = findRoute(routeId);
    if (!route)
        return;
    // The whole form, whichever field changed.
    route->name = ui->nameEdit->text();
    route->short_name = ui->shortNameEdit->text();
    route->play_sound = ui->playSound->isChecked();
    route->display_text = ui->showText->isChecked();
    route->base_text.current = ui->currentEdit->text();
    route->base_text.next = ui->nextEdit->text();
    route->base_text.last = ui->lastEdit->text();
    route->base_sound.current = currentSound->soundFile();
    route->base_sound.next = nextSound->soundFile();
    route->base_sound.last = lastSound->soundFile();
    emit routeChanged(routeId);
}

void cRouteEditor::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        ui->retranslateUi(this);
    else
        QWidget::changeEvent(event);
}
