#include "stopeditor.h"
#include "ui_stopeditor.h"

#include "expanderwidget.h"
#include "mapviewer.h"
#include "player.h"
#include "projectmanager.h"
#include "soundselector.h"
#include "unsafetextmark.h"

#include <QDebug>
#include <QDoubleValidator>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QStandardItemModel>
#include <QVBoxLayout>

namespace {

const int otherSoundCount = 5;
const int playerFrequency = 8000;

QUuid idOf(const QModelIndex& index)
{
    return index.data(Qt::UserRole).value<QUuid>();
}

// Coordinates are shown by QString::number and read by QString::toDouble,
// both with a decimal point whatever the system's locale; typing follows
// them, and a comma typed out of habit becomes a point.
QString coordinateText(double degrees)
{
    return QString::number(degrees, 'g', 8);
}

class cCoordinateValidator : public QDoubleValidator
{
public:
    explicit cCoordinateValidator(QObject* parent)
        : QDoubleValidator(parent)
    {
        QLocale c = QLocale::c();
        c.setNumberOptions(QLocale::RejectGroupSeparator);
        setLocale(c);
    }

    State validate(QString& input, int& pos) const override
    {
        input.replace(QLatin1Char(','), QLatin1Char('.'));
        return QDoubleValidator::validate(input, pos);
    }
};

// Refilling the form must not move the caret of the field being typed in.
void showText(QLineEdit* edit, const QString& text)
{
    if (edit->text() != text)
        edit->setText(text);
}

} // namespace

cStopEditor::cStopEditor(cProjectManager* manager, QWidget* parent)
    : QWidget(parent)
    , ui(new Ui::cStopEditor)
    , projectManager(manager)
{
    ui->setupUi(this);
    auto* validator = new cCoordinateValidator(this);
    ui->latEdit->setValidator(validator);
    ui->lonEdit->setValidator(validator);

    mapViewer = new cMapViewer(this);
    mapViewer->setWindowTitle(tr("Map"));
    mapViewer->hide();

    connect(ui->mapBtn, &QPushButton::clicked, this, &cStopEditor::showMap);
    connect(ui->addStopBtn, &QToolButton::clicked, this, &cStopEditor::addStop);
    connect(ui->deleteStopBtn, &QToolButton::clicked, this, &cStopEditor::delStop);
    connect(ui->upStopBtn, &QToolButton::clicked, this, &cStopEditor::upStop);
    connect(ui->downStopBtn, &QToolButton::clicked, this, &cStopEditor::downStop);
    connect(mapViewer, &cMapViewer::ok, this, &cStopEditor::mapOk);
    connect(ui->radiusEdit, QOverload<int>::of(&QSpinBox::valueChanged), mapViewer, &cMapViewer::setZoneRadius);
    // Any write of the stop takes the coordinates as the fields show them.
    connect(this, &cStopEditor::stopChanged, this, [this] { setCentrePending(false); });
    connect(ui->isReverse, &QSlider::valueChanged, this, &cStopEditor::routeDirectionChanged);

    directModel = new QStandardItemModel(this);
    reverseModel = new QStandardItemModel(this);
    connect(directModel, &QStandardItemModel::itemChanged, this, &cStopEditor::itemChanged);
    connect(reverseModel, &QStandardItemModel::itemChanged, this, &cStopEditor::itemChanged);
    connect(ui->stopList, &QListView::clicked, this, &cStopEditor::itemClicked);
    connect(ui->stopList, &QListView::activated, this, &cStopEditor::itemClicked);
    connect(ui->stopList, &QListView::customContextMenuRequested, this, &cStopEditor::stopListContextMenu);

    buildSoundFields();
    routeDirectionChanged(0);
    ui->stopList->setContextMenuPolicy(Qt::CustomContextMenu);
    ui->stopList->setModel(directModel);

    menu = new QMenu(ui->stopList);
    addAction = menu->addAction(tr("Add"));
    deleteAction = menu->addAction(tr("Delete"));
    connect(addAction, &QAction::triggered, this, &cStopEditor::addStop);
    connect(deleteAction, &QAction::triggered, this, &cStopEditor::delStop);

    buildExpander();
    connect(ui->courseEnabled, &QCheckBox::clicked, this, &cStopEditor::courseEnable);
    connectFieldsQueued();
}

cStopEditor::~cStopEditor()
{
    delete ui;
}

void cStopEditor::buildSoundFields()
{
    player = new cPlayer(playerFrequency, this);
    stopSound = new cSoundSelector(player, this);
    ui->baseSoundLayout->insertWidget(0, stopSound);
    connect(stopSound, &cSoundSelector::edited, this, &cStopEditor::stopEdited);
    for (int row = 0; row < otherSoundCount; ++row) {
        auto* field = new cSoundSelector(player, this);
        ui->otherSoundsLayout->addWidget(field, row, 0);
        connect(field, &cSoundSelector::edited, this, &cStopEditor::stopEdited);
        otherSounds << field;
    }
}

void cStopEditor::buildExpander()
{
    auto* holder = new QVBoxLayout(ui->expanderWidget);
    holder->setContentsMargins(0, 0, 0, 0);
    auto* expander = new ExpanderWidget(ui->expanderWidget);
    expander->setObjectName(QStringLiteral("expander"));
    expander->setExpanded(false);
    expander->setExpanderTitle(tr("Extended branch settings"));
    holder->addWidget(expander);

    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("internalExpanderWidget"));
    auto* layout = new QVBoxLayout(page);
    firstNameEdit = new QLineEdit(page);
    firstNameEdit->setObjectName(QStringLiteral("firstNameEdit"));
    lastNameEdit = new QLineEdit(page);
    lastNameEdit->setObjectName(QStringLiteral("lastNameEdit"));
    layout->addWidget(new QLabel(tr("Alternate first stop name:"), page));
    layout->addWidget(firstNameEdit);
    layout->addWidget(new QLabel(tr("Alternate last stop name:"), page));
    layout->addWidget(lastNameEdit);
    layout->addStretch();
    expander->addPage(page);
}

// A stop is written back only once control is back in the event loop, never
// inside the widget's own signal: the write may refill the form.
void cStopEditor::connectFieldsQueued()
{
    const auto queued = Qt::QueuedConnection;
    for (QLineEdit* edit : {ui->stopNameEdit, ui->stopFullNameEdit, ui->lonEdit, ui->latEdit, ui->otherTextEdit})
        connect(edit, &QLineEdit::textEdited, this, &cStopEditor::stopEdited, queued);
    for (QSpinBox* spin : {ui->radiusEdit, ui->courseEdit, ui->diffEdit})
        connect(spin, QOverload<int>::of(&QSpinBox::valueChanged), this, &cStopEditor::stopEdited, queued);
    connect(ui->isKeyStop, &QCheckBox::clicked, this, &cStopEditor::stopEdited, queued);
    connect(ui->courseEnabled, &QCheckBox::clicked, this, &cStopEditor::stopEdited, queued);
    connect(firstNameEdit, &QLineEdit::textEdited, this, &cStopEditor::branchEdited, queued);
    connect(lastNameEdit, &QLineEdit::textEdited, this, &cStopEditor::branchEdited, queued);
    for (QLineEdit* edit :
         {ui->stopNameEdit, ui->stopFullNameEdit, ui->otherTextEdit, firstNameEdit, lastNameEdit})
        watchUnsafeText(edit);
}

bool cStopEditor::showsReverse() const
{
    return ui->isReverse->value() == 1;
}

cRoute* cStopEditor::shownRoute() const
{
    if (routeId.isNull())
        return nullptr;
    for (cRoute& route : projectManager->project()->routes) {
        if (route.id == routeId)
            return &route;
    }
    return nullptr;
}

cBranch* cStopEditor::shownBranch() const
{
    cRoute* route = shownRoute();
    if (!route)
        return nullptr;
    return showsReverse() ? &route->reverse : &route->direct;
}

QStandardItemModel* cStopEditor::shownModel() const
{
    return showsReverse() ? reverseModel : directModel;
}

cStop* cStopEditor::stopOf(const QModelIndex& index) const
{
    cBranch* branch = shownBranch();
    if (!branch || !index.isValid())
        return nullptr;
    const QUuid id = idOf(index);
    for (cStop& stop : branch->stops) {
        if (stop.id == id)
            return &stop;
    }
    return nullptr;
}

QStandardItem* cStopEditor::makeItem(const QString& name, const QUuid& id)
{
    auto* item = new QStandardItem(name);
    item->setData(QVariant::fromValue(id), Qt::UserRole);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled);
    return item;
}

void cStopEditor::clear(bool clearRoute)
{
    if (clearRoute)
        routeId = QUuid();
    clearEditors();
    ui->isReverse->setValue(0);
    directModel->clear();
    reverseModel->clear();
}

void cStopEditor::clear()
{
    clear(true);
}

void cStopEditor::routeSelected(const QUuid& id)
{
    clear(true);
    if (id.isNull())
        return;
    routeId = id;
    const cRoute* route = shownRoute();
    if (!route) {
        routeId = QUuid();
        return;
    }
    for (const cStop& stop : route->direct.stops)
        directModel->appendRow(makeItem(stop.name, stop.id));
    for (const cStop& stop : route->reverse.stops)
        reverseModel->appendRow(makeItem(stop.name, stop.id));
    routeDirectionChanged(ui->isReverse->value());
}

void cStopEditor::selectStop(bool reverse, const QUuid& stopId)
{
    ui->isReverse->setValue(reverse ? 1 : 0);
    QStandardItemModel* model = shownModel();
    for (int row = 0; row < model->rowCount(); ++row) {
        const QModelIndex index = model->index(row, 0);
        if (idOf(index) == stopId) {
            ui->stopList->setCurrentIndex(index);
            itemClicked(index);
            return;
        }
    }
}

void cStopEditor::routeDirectionChanged(int val)
{
    QItemSelectionModel* previous = ui->stopList->selectionModel();
    if (val == 1) {
        qDebug() << "direction changed to reverse";
        ui->stopList->setModel(reverseModel);
        ui->stopList->setCurrentIndex(reverseIndex);
    } else {
        qDebug() << "direction changed to direct";
        ui->stopList->setModel(directModel);
        ui->stopList->setCurrentIndex(directIndex);
    }
    // The view makes a new selection model for every model it is given.
    if (previous && previous != ui->stopList->selectionModel())
        previous->deleteLater();

    const QModelIndex current = ui->stopList->currentIndex();
    if (current.isValid())
        itemClicked(current);
    else
        clearEditors();

    if (const cRoute* route = shownRoute()) {
        const cBranch& branch = val == 1 ? route->reverse : route->direct;
        firstNameEdit->setText(branch.first);
        lastNameEdit->setText(branch.last);
    }

    QItemSelectionModel* selection = ui->stopList->selectionModel();
    if (!selection) {
        qWarning() << "No selection model";
        return;
    }
    connect(selection, &QItemSelectionModel::currentChanged, this, &cStopEditor::currentChanged,
            Qt::UniqueConnection);
}

void cStopEditor::currentChanged(const QModelIndex& curr, const QModelIndex&)
{
    qDebug() << "currentChanged!!!";
    itemClicked(curr);
}

void cStopEditor::itemClicked(const QModelIndex& index)
{
    if (showsReverse())
        reverseIndex = index;
    else
        directIndex = index;
    if (const cStop* stop = stopOf(index)) {
        qDebug() << "Clicked stop:" << stop->id;
        showText(ui->stopNameEdit, stop->name);
        showText(ui->stopFullNameEdit, stop->full_name);
        ui->isKeyStop->setChecked(stop->is_key_stop);
        showText(ui->lonEdit, coordinateText(stop->lon));
        showText(ui->latEdit, coordinateText(stop->lat));
        ui->radiusEdit->setValue(stop->radius);
        ui->courseEnabled->setChecked(stop->course_enabled);
        courseEnable(stop->course_enabled);
        ui->courseEdit->setValue(stop->course_value);
        ui->diffEdit->setValue(stop->course_diff);
        stopSound->setSoundFile(stop->sound);
        for (int i = 0; i < otherSoundCount; ++i)
            otherSounds[i]->setSoundFile(stop->other_sounds.value(i));
        showText(ui->otherTextEdit, stop->other_text);
    } else {
        clearEditors();
    }

    ui->upStopBtn->setEnabled(index.row() > 0);
    ui->downStopBtn->setEnabled(index.row() < shownModel()->rowCount() - 1);

    // An open map follows the list, so that its OK never lands on another stop.
    const cStop* shown = stopOf(index);
    if (mapViewer->isVisible() && shown && shown->id != mapViewer->editedStop())
        showMap();
}

void cStopEditor::clearEditors()
{
    stopSound->clear();
    for (cSoundSelector* field : qAsConst(otherSounds))
        field->clear();
    for (QLineEdit* edit : {ui->stopNameEdit, ui->stopFullNameEdit, ui->lonEdit, ui->latEdit, ui->otherTextEdit})
        edit->clear();
    ui->courseEnabled->setChecked(false);
    ui->isKeyStop->setChecked(false);
    courseEnable(false);
    setCentrePending(false);
}

void cStopEditor::stopEdited()
{
    const QModelIndex current = ui->stopList->currentIndex();
    cStop* stop = stopOf(current);
    if (!stop)
        return;
    // The whole form is written before the list learns the name: a changed
    // name refills the form from the record, which must hold the form by
    // then (a centre just taken from the map, say).
    const QUuid id = stop->id;
    stop->name = ui->stopNameEdit->text();
    stop->full_name = ui->stopFullNameEdit->text();
    stop->is_key_stop = ui->isKeyStop->isChecked();
    stop->lon = ui->lonEdit->text().toDouble();
    stop->lat = ui->latEdit->text().toDouble();
    stop->radius = ui->radiusEdit->value();
    stop->course_enabled = ui->courseEnabled->isChecked();
    stop->course_value = ui->courseEdit->value();
    stop->course_diff = ui->diffEdit->value();
    stop->sound = stopSound->soundFile();
    stop->other_sounds.clear();
    for (const cSoundSelector* field : qAsConst(otherSounds))
        stop->other_sounds << field->soundFile();
    stop->other_text = ui->otherTextEdit->text();
    shownModel()->setData(current, stop->name, Qt::DisplayRole);
    emit stopChanged(id);
    qDebug() << "Stop edited:" << id;
}

void cStopEditor::itemChanged(QStandardItem* item)
{
    const QModelIndex index = item->index();
    cStop* stop = stopOf(index);
    if (!stop)
        return;
    const QUuid id = stop->id;
    stop->name = item->text();
    itemClicked(index);
    emit stopChanged(id);
}

void cStopEditor::addStop()
{
    cBranch* branch = shownBranch();
    if (!branch)
        return;
    QStandardItemModel* model = shownModel();
    const QString base = tr("New stop");
    QString name = base;
    int counter = 0;
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->item(row)->text() == name) {
            name = base + QStringLiteral(" %1").arg(++counter);
            row = -1;
        }
    }

    cStop stop;
    stop.name = name;
    stop.id = QUuid::createUuid();
    const QPointF where = mapViewer->coordinate(nullptr);
    stop.lon = where.x();
    stop.lat = where.y();
    branch->stops.append(stop);

    model->appendRow(makeItem(stop.name, stop.id));
    const QModelIndex index = model->index(model->rowCount() - 1, 0);
    ui->stopList->setCurrentIndex(index);
    itemClicked(index);
    qDebug() << "Stop added:" << stop.id;
    emit branchChanged(routeId);
}

void cStopEditor::delStop()
{
    const QModelIndex current = ui->stopList->currentIndex();
    const cStop* stop = stopOf(current);
    if (!stop)
        return;
    const QUuid id = stop->id;
    qDebug() << "Deleting stop:" << id;
    cBranch* branch = shownBranch();
    branch->stops.erase(std::find_if(branch->stops.begin(), branch->stops.end(),
                                     [&id](const cStop& candidate) { return candidate.id == id; }));
    shownModel()->removeRow(current.row());
    if (shownModel()->rowCount() == 0)
        clearEditors();
    else
        itemClicked(ui->stopList->currentIndex());
    emit branchChanged(routeId);
}

void cStopEditor::upStop()
{
    const QModelIndex current = ui->stopList->currentIndex();
    if (current.isValid() && current.row() > 0)
        moveCurrentStop(-1);
}

void cStopEditor::downStop()
{
    const QModelIndex current = ui->stopList->currentIndex();
    if (current.isValid() && current.row() < shownModel()->rowCount() - 1)
        moveCurrentStop(+1);
}

void cStopEditor::moveCurrentStop(int offset)
{
    const QModelIndex current = ui->stopList->currentIndex();
    const cStop* stop = stopOf(current);
    if (!stop)
        return;
    cBranch* branch = shownBranch();
    const QUuid id = stop->id;
    const auto found = std::find_if(branch->stops.begin(), branch->stops.end(),
                                    [&id](const cStop& candidate) { return candidate.id == id; });
    const int position = static_cast<int>(found - branch->stops.begin());
    if (position + offset < 0 || position + offset >= branch->stops.size())
        return;
    branch->stops.swapItemsAt(position, position + offset);

    QStandardItemModel* model = shownModel();
    const int row = current.row();
    const QList<QStandardItem*> items = model->takeRow(row);
    model->insertRow(row + offset, items);
    const QModelIndex moved = model->index(row + offset, 0);
    ui->stopList->setCurrentIndex(moved);
    itemClicked(moved);
    emit branchChanged(routeId);
}

void cStopEditor::branchEdited()
{
    cBranch* branch = shownBranch();
    if (!branch)
        return;
    branch->first = firstNameEdit->text();
    branch->last = lastNameEdit->text();
    qDebug() << "Branch edited";
    emit branchChanged(routeId);
}

void cStopEditor::stopListContextMenu(const QPoint& p)
{
    deleteAction->setEnabled(ui->stopList->currentIndex().isValid());
    menu->popup(ui->stopList->viewport()->mapToGlobal(p));
}

void cStopEditor::courseEnable(bool en)
{
    ui->courseEdit->setEnabled(en);
    ui->diffEdit->setEnabled(en);
}

void cStopEditor::showMap()
{
    mapViewer->setRoute(shownRoute(), showsReverse(), idOf(ui->stopList->currentIndex()));
    if (!ui->latEdit->text().isEmpty() && !ui->lonEdit->text().isEmpty()) {
        mapViewer->showCoordinate(QPointF(ui->lonEdit->text().toDouble(), ui->latEdit->text().toDouble()), true);
        if (ui->courseEnabled->isChecked())
            mapViewer->setCourse(ui->courseEdit->value(), ui->diffEdit->value());
    }
    mapViewer->show();
}

void cStopEditor::mapOk()
{
    const QPointF where = mapViewer->coordinate(nullptr);
    ui->lonEdit->setText(coordinateText(where.x()));
    ui->latEdit->setText(coordinateText(where.y()));
    const cStop* stop = stopOf(ui->stopList->currentIndex());
    setCentrePending(stop
                     && (ui->lonEdit->text() != coordinateText(stop->lon)
                         || ui->latEdit->text() != coordinateText(stop->lat)));
    int value = 0;
    int diff = 0;
    if (mapViewer->course(&value, &diff)) {
        ui->courseEdit->setValue(value);
        ui->diffEdit->setValue(diff);
        mapViewer->clearCourse();
    }
}

// A centre picked on the map reaches the stop only with its next write;
// until then the fields say so.
void cStopEditor::setCentrePending(bool pending)
{
    const QString amberFrame = QStringLiteral("QLineEdit { border: 2px solid #e69500; padding: 1px; }");
    for (QLineEdit* edit : {ui->lonEdit, ui->latEdit}) {
        edit->setStyleSheet(pending ? amberFrame : QString());
        edit->setToolTip(pending ? tr("Not applied yet: the next edit of this stop writes it") : QString());
    }
}

void cStopEditor::routeRenamed(const QString& oldName, const QString& newName)
{
    if (QUuid(oldName) == routeId)
        routeId = QUuid(newName);
}

void cStopEditor::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        ui->retranslateUi(this);
    else
        QWidget::changeEvent(event);
}
