#include "replaywindow.h"
#include "ui_replaywindow.h"

#include "chosenmapsource.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "projectmanager.h"
#include "replay.h"
#include "routeoverlay.h"
#include "stopfixer.h"
#include "trackoverlay.h"
#include "trackreader.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QSettings>

#include <cmath>

using namespace qmapcontrol;

namespace {

enum Column { StopColumn, PassColumn, StatusColumn, TimeColumn, HeadingColumn, ClosestColumn, ReasonColumn, FixColumn };

const char* const lastTrackKey = "ReplayWindow/LastTrackFile";
// Stops are first seen close enough to tell their zones apart.
const int stopZoom = 17;
// Enough of a long ride's points to frame it.
const int framingPoints = 2000;

QIcon swatch(const QColor& colour)
{
    QPixmap pixmap(12, 12);
    pixmap.fill(colour);
    return QIcon(pixmap);
}

QString headingText(double heading)
{
    return std::isnan(heading) ? QString() : cReplayWindow::tr("%1°").arg(qRound(heading) % 360);
}

QString localTime(qint64 time, const QString& format)
{
    return QDateTime::fromMSecsSinceEpoch(time).toLocalTime().toString(format);
}

} // namespace

cReplayWindow::cReplayWindow(cProjectManager* manager, cStopFixer* fixer, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , ui(new Ui::cReplayWindow)
    , m_manager(manager)
    , m_fixer(fixer)
{
    ui->setupUi(this);
    ui->splitter->setStretchFactor(0, 3);
    ui->splitter->setStretchFactor(1, 2);

    m_map = new MapControl(ui->mapContainer, MapControl::Panning);
    m_map->setObjectName(QStringLiteral("replayMap"));
    // The map window's tile cache, so that tiles seen there need no fetching.
    QDir cacheDir(QDir::tempPath());
    if (cacheDir.mkpath(QStringLiteral("vosk_map_cache")))
        cacheDir.setPath(cacheDir.filePath(QStringLiteral("vosk_map_cache")));
    m_map->enablePersistentCache(cacheDir, 300);
    m_map->showScale(true);
    ui->mapContainer->layout()->addWidget(m_map);
    m_source.reset(new cChosenMapSource);
    m_source->addTo(m_map);

    m_trackLine = new cTrackLine;
    m_trackLine->setParent(this);
    m_stopsOverlay = new RouteOverlay(QStringLiteral("ReplayStops"));
    m_stopsOverlay->setLineColour(QColor(96, 96, 96, 140));
    m_stopsOverlay->setParent(this);
    m_vehicle = new cVehicleMarker;
    m_vehicle->setParent(this);
    // Zones over the track, which they say most about; the vehicle on top.
    for (Geometry* geometry : std::initializer_list<Geometry*>{m_trackLine, m_stopsOverlay, m_vehicle})
        m_source->topLayer()->addGeometry(geometry);

    QHeaderView* header = ui->stopTable->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(ReasonColumn, QHeaderView::Stretch);
    buildLegend();

    connect(ui->openTrackBtn, &QPushButton::clicked, this, &cReplayWindow::openTrack);
    connect(ui->trackCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &cReplayWindow::trackChosen);
    connect(ui->branchCombo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &cReplayWindow::replay);
    connect(ui->positionSlider, &QSlider::valueChanged, this, &cReplayWindow::showPosition);
    connect(ui->stopTable, &QTableWidget::cellDoubleClicked, this, &cReplayWindow::rowDoubleClicked);
    connect(ui->stopTable, &QTableWidget::currentCellChanged, this, &cReplayWindow::rowSelected);
    connect(m_fixer, &cStopFixer::stopChanged, this, &cReplayWindow::projectChanged);
    connect(m_manager, &cProjectManager::projectOpened, this, &cReplayWindow::projectChanged);
    connect(m_manager, &cProjectManager::projectCreated, this, &cReplayWindow::projectChanged);

    ui->positionSlider->setEnabled(false);
    clearResult(tr("Open a recorded ride to see which stops the device would announce on it."));
}

cReplayWindow::~cReplayWindow()
{
    delete ui;
}

QColor cReplayWindow::statusColour(eStopStatus status)
{
    switch (status) {
    case eStopStatus::Announced: return QColor(46, 125, 50);
    case eStopStatus::Missed: return QColor(198, 40, 40);
    case eStopStatus::OutOfOrder: return QColor(239, 108, 0);
    case eStopStatus::Repeated: return QColor(106, 27, 154);
    }
    return QColor();
}

void cReplayWindow::buildLegend()
{
    for (eStopStatus status :
         {eStopStatus::Announced, eStopStatus::Missed, eStopStatus::OutOfOrder, eStopStatus::Repeated}) {
        auto* mark = new QLabel(this);
        mark->setPixmap(swatch(statusColour(status)).pixmap(12, 12));
        ui->legendLayout->addWidget(mark);
        ui->legendLayout->addWidget(new QLabel(cReplay::statusText(status), this));
        ui->legendLayout->addSpacing(12);
    }
    ui->legendLayout->addStretch();
}

void cReplayWindow::setRoute(const QUuid& routeId)
{
    m_routeId = routeId;
    const cRoute* shown = route();
    setWindowTitle(tr("Replay track: %1").arg(shown ? shown->name : QString()));
    replay();
    if (m_replay)
        showWholeRide();
}

const cRoute* cReplayWindow::route() const
{
    for (const cRoute& candidate : m_manager->project()->routes) {
        if (candidate.id == m_routeId)
            return &candidate;
    }
    return nullptr;
}

const cBranch* cReplayWindow::shownBranch() const
{
    const cRoute* shown = route();
    if (!shown)
        return nullptr;
    return m_result.branch == eBranchKind::Direct ? &shown->direct : &shown->reverse;
}

void cReplayWindow::openTrack()
{
    QSettings settings;
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Open track"), settings.value(QLatin1String(lastTrackKey)).toString(),
                                     tr("Tracks (*.gpx *.nmea *.txt *.log);;All files (*)"));
    if (path.isEmpty())
        return;
    settings.setValue(QLatin1String(lastTrackKey), path);
    settings.sync();
    loadTrack(path);
}

bool cReplayWindow::loadTrack(const QString& path)
{
    cTrackFile file;
    QString error;
    if (!cTrackReader::read(path, &file, &error)) {
        QMessageBox::critical(this, tr("Error"), tr("The track could not be read:\n%1").arg(error), QMessageBox::Ok);
        return false;
    }
    if (file.invalidFixes > 0 || file.badSentences > 0)
        qDebug() << "Track" << path << "skipped" << file.invalidFixes << "invalid fixes and" << file.badSentences
                 << "damaged sentences";
    m_file = file;
    {
        const QSignalBlocker blocker(ui->trackCombo);
        ui->trackCombo->clear();
        for (const cTrack& track : qAsConst(m_file.tracks))
            ui->trackCombo->addItem(tr("%1 (%n points)", nullptr, track.points.size()).arg(track.name));
        ui->trackCombo->setToolTip(QDir::toNativeSeparators(path));
        ui->trackCombo->setEnabled(m_file.tracks.size() > 1);
    }
    trackChosen(0);
    return true;
}

void cReplayWindow::trackChosen(int index)
{
    m_replay.reset();
    if (index < 0 || index >= m_file.tracks.size())
        return;
    const cTrack& track = m_file.tracks.at(index);
    QString error;
    if (!cTrackReader::checkTimes(track, &error)) {
        m_trackLine->setTrack({});
        m_vehicle->setVisible(false);
        ui->positionSlider->setEnabled(false);
        ui->positionLabel->clear();
        clearResult(tr("This track cannot be replayed: %1").arg(error));
        QMessageBox::critical(this, tr("Error"), error, QMessageBox::Ok);
        return;
    }
    m_replay.reset(new cReplay(track));
    QVector<QPointF> line;
    line.reserve(track.points.size());
    for (const cTrackPoint& point : track.points)
        line << QPointF(point.lon, point.lat);
    m_trackLine->setTrack(line);
    m_vehicle->setVisible(true);
    {
        const QSignalBlocker blocker(ui->positionSlider);
        ui->positionSlider->setRange(0, track.points.size() - 1);
        ui->positionSlider->setValue(0);
        ui->positionSlider->setEnabled(true);
    }
    replay();
    showPosition(0);
    showWholeRide();
}

void cReplayWindow::projectChanged()
{
    if (m_replayPending)
        return;
    m_replayPending = true;
    QMetaObject::invokeMethod(this, &cReplayWindow::replay, Qt::QueuedConnection);
}

void cReplayWindow::replay()
{
    m_replayPending = false;
    if (!m_replay)
        return;
    const cRoute* shown = route();
    if (!shown) {
        clearResult(tr("The route is no longer in the project."));
        return;
    }
    const int choice = ui->branchCombo->currentIndex();
    if (choice == 1)
        m_result = m_replay->replayBranch(shown->direct, eBranchKind::Direct);
    else if (choice == 2)
        m_result = m_replay->replayBranch(shown->reverse, eBranchKind::Reverse);
    else
        m_result = m_replay->replayRoute(*shown);
    fillTable();
    showStops();
    showSummary(choice == 0);
}

void cReplayWindow::clearResult(const QString& why)
{
    m_result = cReplayResult();
    ui->stopTable->setRowCount(0);
    m_stopsOverlay->setStops({});
    ui->summaryLabel->setText(why);
    m_map->update();
}

void cReplayWindow::fillTable()
{
    const int keptRow = ui->stopTable->currentRow();
    const QSignalBlocker blocker(ui->stopTable);
    ui->stopTable->clearContents();
    ui->stopTable->setRowCount(m_result.stops.size());
    for (int row = 0; row < m_result.stops.size(); ++row) {
        const cStopReplay& stop = m_result.stops.at(row);
        const auto set = [this, row](int column, const QString& text) {
            auto* item = new QTableWidgetItem(text);
            ui->stopTable->setItem(row, column, item);
            return item;
        };
        set(StopColumn, QStringLiteral("%1. %2").arg(stop.stop + 1).arg(stop.name));
        set(PassColumn, QString::number(stop.pass + 1));
        set(StatusColumn, cReplay::statusText(stop.status))->setIcon(swatch(statusColour(stop.status)));
        if (stop.time != cTrackPoint::noTime)
            set(TimeColumn, localTime(stop.time, QStringLiteral("HH:mm:ss")))
                ->setToolTip(localTime(stop.time, QStringLiteral("yyyy-MM-dd HH:mm:ss")));
        else if (stop.announcedAt >= 0)
            set(TimeColumn, tr("point %1").arg(stop.announcedAt + 1));
        set(HeadingColumn, headingText(stop.heading));
        if (stop.closestAt >= 0)
            set(ClosestColumn, tr("%1 m").arg(qRound(stop.closestMetres)));
        set(ReasonColumn, stop.reason)->setToolTip(stop.reason);
        addFixButtons(row, stop);
    }
    ui->stopTable->setColumnHidden(PassColumn, m_result.passes < 2);
    if (keptRow >= 0 && keptRow < m_result.stops.size())
        ui->stopTable->setCurrentCell(keptRow, StopColumn);
}

void cReplayWindow::addFixButtons(int row, const cStopReplay& stop)
{
    const cBranch* branch = shownBranch();
    if (stop.fixes.isEmpty() || !branch || stop.stop >= branch->stops.size())
        return;
    const cStop& record = branch->stops.at(stop.stop);
    auto* cell = new QWidget;
    auto* layout = new QHBoxLayout(cell);
    layout->setContentsMargins(2, 0, 2, 0);
    layout->setSpacing(4);
    for (const cSuggestedFix& fix : stop.fixes) {
        auto* button = new QPushButton(cell);
        if (fix.kind == cSuggestedFix::eKind::Radius) {
            button->setText(tr("Radius %1 m").arg(fix.value));
            button->setToolTip(tr("Set the zone's radius to %1 m instead of %2 m").arg(fix.value).arg(record.radius));
        } else {
            button->setText(tr("Course %1°").arg(fix.value));
            button->setToolTip(tr("Reverse the course: %1° instead of %2°").arg(fix.value).arg(record.course_value));
        }
        const int stopIndex = stop.stop;
        connect(button, &QPushButton::clicked, this, [this, stopIndex, fix] { applyFix(stopIndex, fix); });
        layout->addWidget(button);
    }
    layout->addStretch();
    ui->stopTable->setCellWidget(row, FixColumn, cell);
}

// The replay runs again when the fixer announces the write.
void cReplayWindow::applyFix(int stopIndex, const cSuggestedFix& fix)
{
    const cBranch* branch = shownBranch();
    if (branch && stopIndex < branch->stops.size())
        m_fixer->apply(branch->stops.at(stopIndex).id, fix);
}

void cReplayWindow::showStops()
{
    const cBranch* branch = shownBranch();
    QVector<RouteStop> shown;
    if (branch) {
        // One pass at a time, the selected row's: a later partial pass, such
        // as the drive back to the depot, must not paint over the first.
        const int currentRow = ui->stopTable->currentRow();
        const bool rowChosen = currentRow >= 0 && currentRow < m_result.stops.size();
        const int current = rowChosen ? m_result.stops.at(currentRow).stop : -1;
        const int pass = rowChosen ? m_result.stops.at(currentRow).pass : 0;
        QVector<const cStopReplay*> shownRows(branch->stops.size(), nullptr);
        for (const cStopReplay& row : qAsConst(m_result.stops)) {
            if (row.pass == pass)
                shownRows[row.stop] = &row;
        }
        for (int i = 0; i < branch->stops.size(); ++i) {
            const cStop& stop = branch->stops.at(i);
            RouteStop mark;
            mark.coordinate = QPointF(stop.lon, stop.lat);
            mark.radius = stop.radius;
            mark.hasCourse = stop.course_enabled;
            mark.course = stop.course_value;
            mark.label = QString::number(i + 1);
            mark.highlighted = i == current;
            mark.toolTip = QStringLiteral("%1. %2").arg(i + 1).arg(stop.name);
            if (const cStopReplay* row = shownRows.at(i)) {
                mark.colour = statusColour(row->status);
                mark.toolTip += QLatin1Char('\n');
                if (m_result.passes > 1)
                    mark.toolTip += tr("Pass %1: ").arg(pass + 1);
                mark.toolTip += cReplay::statusText(row->status);
                if (!row->reason.isEmpty())
                    mark.toolTip += QStringLiteral(": ") + row->reason;
            }
            shown << mark;
        }
    }
    m_stopsOverlay->setStops(shown);
    m_map->update();
}

void cReplayWindow::showSummary(bool detected)
{
    const QString branch = m_result.branch == eBranchKind::Direct ? tr("Direct branch") : tr("Reverse branch");
    const QString named = detected ? tr("%1 (detected)").arg(branch) : branch;
    if (m_result.stops.isEmpty()) {
        ui->summaryLabel->setText(tr("%1: no stops to replay.").arg(named));
        return;
    }
    const int announced = m_result.count(eStopStatus::Announced);
    const int missed = m_result.count(eStopStatus::Missed);
    const int outOfOrder = m_result.count(eStopStatus::OutOfOrder);
    const int repeated = m_result.count(eStopStatus::Repeated);
    QString text;
    if (m_result.passes > 1)
        text = tr("%1, %2 passes: %3 of %4 stop visits announced, %5 missed, %6 out of order, %7 repeated.")
                   .arg(named)
                   .arg(m_result.passes)
                   .arg(announced)
                   .arg(m_result.stops.size())
                   .arg(missed)
                   .arg(outOfOrder)
                   .arg(repeated);
    else
        text = tr("%1: %2 of %3 stops announced, %4 missed, %5 out of order, %6 repeated.")
                   .arg(named)
                   .arg(announced)
                   .arg(m_result.stops.size())
                   .arg(missed)
                   .arg(outOfOrder)
                   .arg(repeated);
    ui->summaryLabel->setText(text);
}

void cReplayWindow::showPosition(int point)
{
    if (!m_replay || point < 0 || point >= m_replay->points().size())
        return;
    const cTrackPoint& at = m_replay->points().at(point);
    const double heading = m_replay->headings().at(point);
    const QPointF coordinate(at.lon, at.lat);
    m_vehicle->place(coordinate, heading);
    QStringList parts;
    if (at.hasTime())
        parts << localTime(at.time, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    parts << (std::isnan(heading) ? tr("heading unknown") : tr("heading %1").arg(headingText(heading)));
    parts << tr("point %1 of %2").arg(point + 1).arg(m_replay->points().size());
    ui->positionLabel->setText(parts.join(QStringLiteral(" · ")));
    // The vehicle stays in sight while it is moved.
    if (!m_map->rect().contains(m_map->pixelAt(coordinate)))
        m_map->setView(coordinate);
    m_map->update();
}

void cReplayWindow::rowSelected(int)
{
    showStops();
}

void cReplayWindow::rowDoubleClicked(int row)
{
    const cBranch* branch = shownBranch();
    if (!branch || row < 0 || row >= m_result.stops.size())
        return;
    const cStopReplay& stop = m_result.stops.at(row);
    const int point = stop.announcedAt >= 0 ? stop.announcedAt : stop.closestAt;
    if (point >= 0)
        ui->positionSlider->setValue(point);
    const cStop& record = branch->stops.at(stop.stop);
    m_map->setView(QPointF(record.lon, record.lat));
    if (m_map->currentZoom() < stopZoom - 1)
        m_map->setZoom(stopZoom);
}

void cReplayWindow::showWholeRide()
{
    QList<QPointF> places;
    if (const cBranch* branch = shownBranch()) {
        for (const cStop& stop : branch->stops)
            places << QPointF(stop.lon, stop.lat);
    }
    if (m_replay) {
        const QVector<cTrackPoint>& points = m_replay->points();
        const int step = qMax(1, points.size() / framingPoints);
        for (int i = 0; i < points.size(); i += step)
            places << QPointF(points.at(i).lon, points.at(i).lat);
        places << QPointF(points.last().lon, points.last().lat);
    }
    m_map->setViewAndZoomIn(places);
}
