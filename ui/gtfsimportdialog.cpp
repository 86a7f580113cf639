#include "gtfsimportdialog.h"
#include "ui_gtfsimportdialog.h"

#include "gtfsroutebuilder.h"
#include "progresstask.h"

#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QAbstractItemView>
#include <QHeaderView>
#include <QMessageBox>
#include <QScrollBar>
#include <QSettings>
#include <QSignalBlocker>

#include <algorithm>

namespace {

const char* const settingsGroup = "RouteSelector";
const char* const lastFeedKey = "LastGtfsFeed";

QString lastFeed()
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    return settings.value(QLatin1String(lastFeedKey)).toString();
}

// Kept whether or not the feed then reads, as the other imports keep theirs.
void storeLastFeed(const QString& path)
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    settings.setValue(QLatin1String(lastFeedKey), QFileInfo(path).absoluteFilePath());
    settings.endGroup();
    settings.sync();
}

struct cTypeName
{
    int type;
    const char* name;
};

const cTypeName typeNames[] = {
    {0, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Tram")},
    {1, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Metro")},
    {2, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Rail")},
    {3, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Bus")},
    {4, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Ferry")},
    {5, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Cable tram")},
    {6, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Aerial lift")},
    {7, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Funicular")},
    {11, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Trolleybus")},
    {12, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Monorail")},
    {200, QT_TRANSLATE_NOOP("cGtfsImportDialog", "Coach")},
};

// Feeds use the basic route types or the extended ones, grouped by hundreds.
QString typeName(int type)
{
    static const QHash<int, int> basicOfGroup{{1, 2}, {2, 200}, {4, 1},  {7, 3},  {8, 11},
                                              {9, 0}, {10, 4},  {12, 4}, {13, 6}, {14, 7}};
    const int basic = type >= 100 ? basicOfGroup.value(type / 100, type) : type;
    for (const cTypeName& entry : typeNames) {
        if (entry.type == basic)
            return QCoreApplication::translate("cGtfsImportDialog", entry.name);
    }
    return QString::number(type);
}

// Items carry the route's index in the feed, so sorting and filtering the
// list never loses which route a row stands for.
constexpr int routeRole = Qt::UserRole;
enum Column { ShortNameColumn, LongNameColumn, TypeColumn, TripsColumn };

} // namespace

cGtfsImportDialog::cGtfsImportDialog(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui::cGtfsImportDialog)
{
    ui->setupUi(this);
    ui->routeTree->sortByColumn(ShortNameColumn, Qt::AscendingOrder);
    // Long names take what the other columns leave; the full name is in the tool-tip.
    ui->routeTree->header()->setStretchLastSection(false);
    ui->routeTree->header()->setSectionResizeMode(LongNameColumn, QHeaderView::Stretch);
    ui->splitter->setSizes({width() / 2, width() / 2});
    connect(ui->zipButton, &QPushButton::clicked, this, &cGtfsImportDialog::chooseZip);
    connect(ui->folderButton, &QPushButton::clicked, this, &cGtfsImportDialog::chooseFolder);
    connect(ui->filterEdit, &QLineEdit::textChanged, this, &cGtfsImportDialog::filterRoutes);
    connect(ui->routeTree, &QTreeWidget::itemSelectionChanged, this, &cGtfsImportDialog::selectionChanged);
    connect(ui->routeTree, &QTreeWidget::currentItemChanged, this, &cGtfsImportDialog::showPreview);
    connect(ui->showStopsButton, &QPushButton::clicked, this, &cGtfsImportDialog::showStops);
    connect(ui->directPatternCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &cGtfsImportDialog::patternChosen);
    connect(ui->reversePatternCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &cGtfsImportDialog::patternChosen);
    connect(ui->importButton, &QPushButton::clicked, this, &cGtfsImportDialog::importSelected);
    selectionChanged();
    showPreview();
}

cGtfsImportDialog::~cGtfsImportDialog()
{
    delete ui;
}

void cGtfsImportDialog::chooseZip()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("GTFS feed"), lastFeed(),
                                                      tr("GTFS feeds (*.zip);;All files (*.*)"));
    if (!path.isEmpty())
        openFeed(path);
}

void cGtfsImportDialog::chooseFolder()
{
    const QString path = QFileDialog::getExistingDirectory(this, tr("GTFS feed folder"), lastFeed());
    if (!path.isEmpty())
        openFeed(path);
}

void cGtfsImportDialog::openFeed(const QString& path)
{
    storeLastFeed(path);
    cGtfsFeed feed;
    QString error;
    const cProgressTask::Outcome outcome = cProgressTask::run(
        this, tr("Reading the routes and trips of the feed…"),
        [&feed, &path](const cProgressTask::Progress& progress, QString* error) {
            return feed.open(path, progress, error);
        },
        &error);
    if (!succeeded(outcome, error))
        return;
    m_feed = feed;
    m_feedPath = path;
    m_choices.clear();
    ui->feedEdit->setText(QDir::toNativeSeparators(path));
    fillRouteTree();
}

// Reads the stops of these routes; picks of routes read before are kept.
bool cGtfsImportDialog::loadRoutes(const QVector<int>& routes)
{
    cGtfsFeed feed = m_feed;
    QString error;
    const cProgressTask::Outcome outcome = cProgressTask::run(
        this, tr("Reading the stops and stop times of the selected routes…"),
        [&feed, &routes](const cProgressTask::Progress& progress, QString* error) {
            return feed.loadPatterns(routes, progress, error);
        },
        &error);
    if (!succeeded(outcome, error))
        return false;
    m_feed = feed;
    for (const int route : routes) {
        if (!m_choices.contains(route))
            m_choices.insert(route, m_feed.defaultChoice(route));
    }
    return true;
}

// A failed read is shown and logged; a cancelled one only logged.
bool cGtfsImportDialog::succeeded(cProgressTask::Outcome outcome, const QString& error)
{
    if (outcome == cProgressTask::Outcome::Cancelled)
        qDebug() << "Reading the GTFS feed was cancelled";
    else if (outcome == cProgressTask::Outcome::Failed)
        showError(error);
    return outcome == cProgressTask::Outcome::Done;
}

void cGtfsImportDialog::showError(const QString& error)
{
    qDebug().noquote() << "Error reading GTFS feed!" << error;
    QMessageBox::critical(this, tr("Error"), tr("Failed to read the GTFS feed:\n%1").arg(error), QMessageBox::Ok);
}

void cGtfsImportDialog::fillRouteTree()
{
    ui->routeTree->clear();
    ui->routeTree->setSortingEnabled(false);
    const QVector<cGtfsRoute>& routes = m_feed.routes();
    for (int i = 0; i < routes.size(); ++i) {
        const cGtfsRoute& route = routes.at(i);
        auto* item = new QTreeWidgetItem(ui->routeTree);
        item->setText(ShortNameColumn, route.shortName.isEmpty() ? route.id : route.shortName);
        item->setText(LongNameColumn, route.longName);
        item->setToolTip(LongNameColumn, route.longName);
        item->setText(TypeColumn, typeName(route.type));
        item->setData(TripsColumn, Qt::DisplayRole, route.tripCount);
        item->setData(ShortNameColumn, routeRole, i);
    }
    ui->routeTree->setSortingEnabled(true);
    for (const int column : {ShortNameColumn, TypeColumn, TripsColumn})
        ui->routeTree->resizeColumnToContents(column);
    filterRoutes(ui->filterEdit->text());
    selectionChanged();
    showPreview();
}

void cGtfsImportDialog::filterRoutes(const QString& text)
{
    const QString wanted = text.trimmed();
    for (int row = 0; row < ui->routeTree->topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = ui->routeTree->topLevelItem(row);
        const cGtfsRoute& route = m_feed.routes().at(item->data(ShortNameColumn, routeRole).toInt());
        const bool matches = route.id.contains(wanted, Qt::CaseInsensitive)
            || route.shortName.contains(wanted, Qt::CaseInsensitive)
            || route.longName.contains(wanted, Qt::CaseInsensitive);
        item->setHidden(!matches);
    }
}

// Routes hidden by the filter stay selected: narrowing the list to find the
// next route does not drop those already picked.
QVector<int> cGtfsImportDialog::selectedRoutes() const
{
    QVector<int> routes;
    for (const QTreeWidgetItem* item : ui->routeTree->selectedItems())
        routes << item->data(ShortNameColumn, routeRole).toInt();
    std::sort(routes.begin(), routes.end());
    return routes;
}

int cGtfsImportDialog::currentRoute() const
{
    const QTreeWidgetItem* item = ui->routeTree->currentItem();
    return item ? item->data(ShortNameColumn, routeRole).toInt() : -1;
}

void cGtfsImportDialog::selectionChanged()
{
    const QVector<int> routes = selectedRoutes();
    ui->selectedLabel->setText(tr("Selected routes: %1").arg(routes.size()));
    ui->importButton->setEnabled(!routes.isEmpty());
    ui->showStopsButton->setEnabled(
        std::any_of(routes.begin(), routes.end(), [this](int route) { return !m_feed.isLoaded(route); }));
}

void cGtfsImportDialog::showStops()
{
    if (loadRoutes(selectedRoutes())) {
        selectionChanged();
        showPreview();
    }
}

void cGtfsImportDialog::showPreview()
{
    const int route = currentRoute();
    const bool loaded = route >= 0 && m_feed.isLoaded(route);
    if (route < 0) {
        ui->previewTitle->setText(m_feedPath.isEmpty() ? tr("Choose a feed: a zip file or a folder.")
                                                       : tr("Select the routes to import."));
    } else {
        const cGtfsRoute& source = m_feed.routes().at(route);
        const QString title = QStringLiteral("%1 — %2").arg(source.shortName.isEmpty() ? source.id : source.shortName,
                                                           source.longName);
        ui->previewTitle->setText(loaded ? title : title + QLatin1Char('\n') + tr("Press Show stops to see its stops."));
    }
    const cGtfsRouteChoice choice = m_choices.value(route);
    fillBranch(ui->directPatternCombo, ui->directStopList, loaded ? route : -1, choice.direct);
    fillBranch(ui->reversePatternCombo, ui->reverseStopList, loaded ? route : -1, choice.reverse);
}

void cGtfsImportDialog::fillBranch(QComboBox* combo, QListWidget* stopList, int route, int chosen)
{
    // Filling is not a pick: the other branch's box may not be filled yet.
    const QSignalBlocker quiet(combo);
    combo->clear();
    combo->setEnabled(route >= 0);
    if (route < 0) {
        stopList->clear();
        return;
    }
    combo->addItem(tr("(empty branch)"), -1);
    const QVector<cGtfsPattern>& patterns = m_feed.patterns(route);
    for (int i = 0; i < patterns.size(); ++i)
        combo->addItem(patternText(patterns.at(i)), i);
    combo->setCurrentIndex(combo->findData(chosen));
    // The box is narrower than its texts; the list that drops down is not.
    QAbstractItemView* popup = combo->view();
    popup->setMinimumWidth(popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width());
    listStops(stopList, route, chosen);
}

QString cGtfsImportDialog::patternText(const cGtfsPattern& pattern) const
{
    const QString first = m_feed.stops().at(pattern.stops.first()).name;
    const QString last = m_feed.stops().at(pattern.stops.last()).name;
    return pattern.direction < 0
        ? tr("Trips: %1 · stops: %2 · %3 – %4").arg(pattern.tripCount).arg(pattern.stops.size()).arg(first, last)
        : tr("Direction %1 · trips: %2 · stops: %3 · %4 – %5")
              .arg(pattern.direction)
              .arg(pattern.tripCount)
              .arg(pattern.stops.size())
              .arg(first, last);
}

void cGtfsImportDialog::listStops(QListWidget* stopList, int route, int pattern)
{
    stopList->clear();
    if (pattern < 0)
        return;
    const QVector<int>& stops = m_feed.patterns(route).at(pattern).stops;
    for (int i = 0; i < stops.size(); ++i) {
        const cGtfsStop& stop = m_feed.stops().at(stops.at(i));
        auto* item = new QListWidgetItem(QStringLiteral("%1. %2").arg(i + 1).arg(stop.name), stopList);
        item->setToolTip(QStringLiteral("%1\n%2, %3")
                             .arg(stop.id, QString::number(stop.lat, 'f', 6), QString::number(stop.lon, 'f', 6)));
    }
}

void cGtfsImportDialog::patternChosen()
{
    const int route = currentRoute();
    if (route < 0 || !m_feed.isLoaded(route))
        return;
    cGtfsRouteChoice& choice = m_choices[route];
    choice.direct = ui->directPatternCombo->currentData().toInt();
    choice.reverse = ui->reversePatternCombo->currentData().toInt();
    listStops(ui->directStopList, route, choice.direct);
    listStops(ui->reverseStopList, route, choice.reverse);
}

void cGtfsImportDialog::importSelected()
{
    const QVector<int> routes = selectedRoutes();
    if (routes.isEmpty())
        return;
    const bool allLoaded =
        std::all_of(routes.begin(), routes.end(), [this](int route) { return m_feed.isLoaded(route); });
    if (!allLoaded && !loadRoutes(routes))
        return;
    QVector<cGtfsRouteChoice> choices;
    for (const int route : routes)
        choices << m_choices.value(route);
    cGtfsBuildOptions options;
    options.course = ui->courseCheck->isChecked();
    options.courseDiff = ui->courseDiffSpin->value();
    QString error;
    if (!cGtfsRouteBuilder(m_feed, options).buildAll(choices, &m_routes, &error)) {
        showError(error);
        return;
    }
    accept();
}
