#include "mapviewer.h"

#include "anglepointer.h"
#include "geometry.h"
#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "mbtiles.h"
#include "networksettingsdialog.h"
#include "project.h"
#include "routeoverlay.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMessageBox>
#include <QNetworkProxy>
#include <QPushButton>
#include <QSettings>
#include <QToolButton>
#include <QToolTip>
#include <QVBoxLayout>
#include <QtMath>

using namespace qmapcontrol;

namespace {

// Credentials of the map services: deployment data. Empty ones are left out
// of the requests (the Bing key is 108 characters, the Google API key 39,
// the Google client identifier 26).
const QString bingMapsKey;
const QString googleApiKey;
const QString googleClientId;
const QString googleStaticMapsHost = QStringLiteral("maps.googleapis.com");

const int cacheLimitMb = 300;
const int initialZoom = 17;
const int builtInSources = 4;

const QColor branchColour(21, 101, 192);
const QColor otherBranchColour(142, 36, 170);
const QColor editedColour(230, 81, 0);

int wrapDegrees(int degrees)
{
    return ((degrees % 360) + 360) % 360;
}

QVector<RouteStop> routeStops(const cBranch& branch, const QColor& colour)
{
    QVector<RouteStop> stops;
    for (int i = 0; i < branch.stops.size(); ++i) {
        const cStop& stop = branch.stops.at(i);
        RouteStop shown;
        shown.coordinate = QPointF(stop.lon, stop.lat);
        shown.radius = stop.radius;
        shown.hasCourse = stop.course_enabled;
        shown.course = stop.course_value;
        shown.colour = colour;
        shown.label = QString::number(i + 1);
        shown.toolTip = cMapViewer::tr("%1. %2\nLongitude %3, latitude %4")
                            .arg(i + 1)
                            .arg(stop.name)
                            .arg(stop.lon, 0, 'g', 8)
                            .arg(stop.lat, 0, 'g', 8);
        stops << shown;
    }
    return stops;
}

} // namespace

cMapViewer::cMapViewer(QWidget* parent)
    : QMainWindow(parent)
{
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);

    auto* topRow = new QHBoxLayout;
    sourceSelector = new QComboBox(central);
    sourceSelector->setObjectName(QStringLiteral("mapSourceSelector"));
    connect(sourceSelector, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &cMapViewer::sourceSelected,
            Qt::QueuedConnection);
    // Choosing the offline map again asks for another file.
    connect(sourceSelector, QOverload<int>::of(&QComboBox::activated), this, [this](int index) {
        if (index == offlineItem() && index == shownItem)
            sourceSelected(index);
    });
    otherBranchButton = new QToolButton(central);
    otherBranchButton->setObjectName(QStringLiteral("otherBranchButton"));
    otherBranchButton->setText(tr("Other branch"));
    otherBranchButton->setToolTip(tr("Show the route's other branch too"));
    otherBranchButton->setCheckable(true);
    connect(otherBranchButton, &QToolButton::toggled, this, [this] {
        detachGeometries();
        attachGeometries();
    });
    auto* wholeRouteButton = new QToolButton(central);
    wholeRouteButton->setObjectName(QStringLiteral("wholeRouteButton"));
    wholeRouteButton->setText(tr("Whole route"));
    wholeRouteButton->setToolTip(tr("Show whole route (F)"));
    wholeRouteButton->setShortcut(QKeySequence(Qt::Key_F));
    connect(wholeRouteButton, &QToolButton::clicked, this, &cMapViewer::showWholeRoute);
    auto* settingsButton = new QToolButton(central);
    settingsButton->setObjectName(QStringLiteral("settingsButton"));
    settingsButton->setToolTip(tr("Settings"));
    settingsButton->setIcon(QIcon(QStringLiteral(":/icon/settings2.ico")));
    connect(settingsButton, &QToolButton::clicked, this, &cMapViewer::settingsSlot);
    topRow->addWidget(sourceSelector);
    topRow->addWidget(otherBranchButton);
    topRow->addWidget(wholeRouteButton);
    topRow->addStretch();
    topRow->addWidget(settingsButton);
    layout->addLayout(topRow);

    mapContainer = new QWidget(central);
    auto* containerLayout = new QVBoxLayout(mapContainer);
    containerLayout->setContentsMargins(0, 0, 0, 0);
    mapContainer->installEventFilter(this);
    layout->addWidget(mapContainer, 1);

    auto* bottomRow = new QHBoxLayout;
    auto* okButton = new QPushButton(tr("OK"), central);
    auto* cancelButton = new QPushButton(tr("Cancel"), central);
    connect(okButton, &QPushButton::clicked, this, &cMapViewer::okSlot);
    connect(cancelButton, &QPushButton::clicked, this, &cMapViewer::cancelSlot);
    bottomRow->addWidget(okButton);
    bottomRow->addWidget(cancelButton);
    bottomRow->addStretch();
    layout->addLayout(bottomRow);
    setCentralWidget(central);

    otherBranchOverlay = new RouteOverlay(QStringLiteral("OtherBranch"));
    otherBranchOverlay->setLineColour(otherBranchColour);
    otherBranchOverlay->setParent(this);
    branchOverlay = new RouteOverlay(QStringLiteral("Branch"));
    branchOverlay->setLineColour(branchColour);
    branchOverlay->setParent(this);
    editedZone = new RouteOverlay(QStringLiteral("EditedZone"));
    editedZone->setParent(this);

    createMap();
    applyProxy();
    restoreMapState();
}

cMapViewer::~cMapViewer()
{
    destroyMap();
    saveMapState();
}

ImagePoint* cMapViewer::newMarker(const QPointF& coord) const
{
    return new ImagePoint(coord.x(), coord.y(), QStringLiteral(":/icon/marker.png"), tr("Stop"), Point::BottomMiddle);
}

void cMapViewer::placeMarker(const QPointF& coord)
{
    dropMarker();
    marker = newMarker(coord);
    if (activeLayer)
        activeLayer->addGeometry(marker);
    updateEditedStop();
}

void cMapViewer::dropMarker()
{
    if (marker && activeLayer)
        activeLayer->removeGeometry(marker);
    delete marker;
    marker = nullptr;
}

void cMapViewer::createMap()
{
    endCourseEdit();
    const bool hadMarker = marker != nullptr;
    const QPointF markerCoord = hadMarker ? marker->coordinate() : QPointF();
    destroyMap();

    googleStreetAdapter = new GoogleMapAdapter(GoogleMapAdapter::Streets);
    googleSatAdapter = new GoogleMapAdapter(GoogleMapAdapter::Satellite);
    googleHybAdapter = new GoogleMapAdapter(GoogleMapAdapter::Hybrid);
    osmAdapter = new OSMMapAdapter;
    bingRoadAdapter = new bingApiMapadapter(QStringLiteral("Road"), bingMapsKey);
    bingAerialAdapter = new bingApiMapadapter(QStringLiteral("Aerial"), bingMapsKey);
    googleApiAdapter = new googleApiMapadapter(googleStaticMapsHost, googleApiKey, googleClientId);

    osmLayer = new MapLayer(QStringLiteral("OSM"), osmAdapter, true);
    googleLayer = new MapLayer(QStringLiteral("Google"), googleStreetAdapter, true);
    googleSatLayer = new MapLayer(QStringLiteral("GoogleSat"), googleSatAdapter, true);
    googleHybLayer = new MapLayer(QStringLiteral("GoogleHyb"), googleHybAdapter, true);
    bingLayer = new MapLayer(QStringLiteral("Bing"), bingRoadAdapter, true);
    bingSatLayer = new MapLayer(QStringLiteral("BingSat"), bingAerialAdapter, true);
    // Shows Google's static maps under the Bing name on purpose.
    bingHybLayer = new MapLayer(QStringLiteral("BingHyb"), googleApiAdapter, true);

    tileSources = cTileSource::load();
    for (const cTileSource& source : qAsConst(tileSources)) {
        const QStringList subdomains = source.subdomains.split(QLatin1Char(','), Qt::SkipEmptyParts);
        auto* adapter = new TemplateMapAdapter(source.url, subdomains, source.apiKey, source.maxZoom);
        adapter->setAttribution(source.attribution);
        extraAdapters << adapter;
        extraLayers << new MapLayer(source.name, adapter, true);
    }

    mapControl = new MapControl(mapContainer, MapControl::Panning);

    QDir cacheDir(QDir::tempPath());
    if (cacheDir.mkpath(QStringLiteral("vosk_map_cache")))
        cacheDir.setPath(cacheDir.filePath(QStringLiteral("vosk_map_cache")));
    mapControl->enablePersistentCache(cacheDir, cacheLimitMb);

    mapControl->showScale(true);
    mapControl->showCrossHairs(false);
    mapControl->setMouseTracking(true);
    mapContainer->layout()->addWidget(mapControl);
    mapControl->resize(mapContainer->width() - 1, mapContainer->height() - 1);

    connect(mapControl, &MapControl::mouseEventCoordinate, this, &cMapViewer::mouseEventCoordinate);
    connect(mapControl, &MapControl::mouseWheel, this, &cMapViewer::mouseWheelEvent);

    for (MapLayer* layer :
         {osmLayer, googleLayer, googleSatLayer, googleHybLayer, bingLayer, bingSatLayer, bingHybLayer})
        mapControl->addLayer(layer);
    for (MapLayer* layer : qAsConst(extraLayers))
        mapControl->addLayer(layer);

    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    lastCoord = settings.value(QStringLiteral("LastCoord"), QPointF(37.33437, 55.50882)).toPointF();
    currentZoom = settings.value(QStringLiteral("CurrentZoom"), initialZoom).toInt();
    mapControl->setView(lastCoord);
    mapControl->setZoom(currentZoom);

    // Shown directly, so that nothing is taken for the user's choice.
    fillSelector();
    showSelectedSource();
    if (hadMarker)
        showCoordinate(markerCoord, false);
    connect(mapControl, &MapControl::viewChanged, this, &cMapViewer::viewChanged);
    mapControl->setFocus();
}

void cMapViewer::destroyMap()
{
    detachGeometries();
    if (mapControl) {
        mapControl->disconnect();
        for (MapLayer* layer : mapControl->layers())
            mapControl->removeLayer(layer);
    }
    for (MapLayer** layer : {&osmLayer, &googleLayer, &googleSatLayer, &googleHybLayer, &bingLayer, &bingSatLayer,
                             &bingHybLayer, &offlineLayer}) {
        delete *layer;
        *layer = nullptr;
    }
    qDeleteAll(extraLayers);
    extraLayers.clear();
    qDeleteAll(extraAdapters);
    extraAdapters.clear();
    delete googleStreetAdapter;
    delete googleSatAdapter;
    delete googleHybAdapter;
    delete osmAdapter;
    delete bingRoadAdapter;
    delete bingAerialAdapter;
    delete googleApiAdapter;
    delete offlineAdapter;
    googleStreetAdapter = googleSatAdapter = googleHybAdapter = nullptr;
    osmAdapter = nullptr;
    bingRoadAdapter = bingAerialAdapter = nullptr;
    googleApiAdapter = nullptr;
    offlineAdapter = nullptr;
    delete anglePointer;
    anglePointer = nullptr;
    delete marker;
    marker = nullptr;
    delete mapControl;
    mapControl = nullptr;
    activeLayer = nullptr;
}

void cMapViewer::applyProxy()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer/Proxy"));
    QNetworkProxy proxy(QNetworkProxy::NoProxy);
    if (settings.value(QStringLiteral("ProxyType"), 0).toInt() != 0) {
        // The system choice uses the host and port captured when it was made.
        proxy.setType(QNetworkProxy::HttpProxy);
        proxy.setHostName(settings.value(QStringLiteral("Host")).toString());
        proxy.setPort(quint16(settings.value(QStringLiteral("Port"), 8080).toInt()));
        proxy.setUser(settings.value(QStringLiteral("User")).toString());
        proxy.setPassword(settings.value(QStringLiteral("Pass")).toString());
    }
    QNetworkProxy::setApplicationProxy(proxy);
}

void cMapViewer::showMapError()
{
    destroyMap();
    QMessageBox::critical(this, tr("Error"), tr("Critical error when creating map. Please try again."),
                          QMessageBox::Ok);
}

void cMapViewer::fillSelector()
{
    const QSignalBlocker blocker(sourceSelector);
    sourceSelector->clear();
    sourceSelector->addItems({tr("Google Maps (street)"), tr("Google Maps (satelite)"), tr("Google Maps (hybrid)"),
                              tr("OpenStreetMap (OSM)")});
    for (const cTileSource& source : qAsConst(tileSources))
        sourceSelector->addItem(source.name);
    sourceSelector->addItem(tr("Offline map (MBTiles)…"));

    // Online sources by index, the user's own by name, the offline map by
    // a flag of its own.
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    const int index = settings.value(QStringLiteral("CurrentMapIndex"), 0).toInt();
    int item = index >= 0 && index < builtInSources ? index : 0;
    const QString extra = settings.value(QStringLiteral("ExtraSource")).toString();
    for (int i = 0; i < tileSources.size(); ++i) {
        if (!extra.isEmpty() && tileSources.at(i).name == extra)
            item = builtInSources + i;
    }
    const QString offlineFile = settings.value(QStringLiteral("OfflineMap")).toString();
    if (settings.value(QStringLiteral("OfflineMapChosen"), false).toBool() && !offlineFile.isEmpty())
        item = offlineItem();
    sourceSelector->setItemData(offlineItem(), QDir::toNativeSeparators(offlineFile), Qt::ToolTipRole);
    sourceSelector->setCurrentIndex(item);
}

int cMapViewer::offlineItem() const
{
    return builtInSources + tileSources.size();
}

void cMapViewer::showSelectedSource()
{
    const int item = sourceSelector->currentIndex();
    shownItem = item;
    if (item < builtInSources)
        mapSourceChanged(item);
    else if (item < offlineItem())
        showOnly({extraLayers.at(item - builtInSources)});
    else
        showOfflineMap(QSettings().value(QStringLiteral("MapViewer/OfflineMap")).toString());
}

void cMapViewer::sourceSelected(int index)
{
    if (index < 0)
        return;
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    if (index == offlineItem()) {
        const QString previous = settings.value(QStringLiteral("OfflineMap")).toString();
        const QString file = QFileDialog::getOpenFileName(this, tr("Offline map"), QFileInfo(previous).path(),
                                                          tr("MBTiles files (*.mbtiles);;All files (*)"));
        if (file.isEmpty()) {
            const QSignalBlocker blocker(sourceSelector);
            sourceSelector->setCurrentIndex(shownItem);
            return;
        }
        settings.setValue(QStringLiteral("OfflineMap"), file);
        settings.setValue(QStringLiteral("OfflineMapChosen"), true);
        sourceSelector->setItemData(index, QDir::toNativeSeparators(file), Qt::ToolTipRole);
    } else {
        settings.setValue(QStringLiteral("OfflineMapChosen"), false);
        if (index < builtInSources) {
            // The last online source chosen keeps its index here.
            settings.setValue(QStringLiteral("CurrentMapIndex"), index);
            settings.remove(QStringLiteral("ExtraSource"));
        } else {
            settings.setValue(QStringLiteral("ExtraSource"), tileSources.at(index - builtInSources).name);
        }
    }
    settings.sync();
    showSelectedSource();
}

void cMapViewer::showOfflineMap(const QString& fileName)
{
    if (!mapControl)
        return;
    if (!offlineAdapter || offlineAdapter->fileName() != fileName) {
        if (activeLayer == offlineLayer) {
            detachGeometries();
            activeLayer = nullptr;
        }
        delete offlineLayer;
        delete offlineAdapter;
        offlineAdapter = new MBTilesMapAdapter(fileName);
        offlineLayer = new MapLayer(QStringLiteral("Offline"), offlineAdapter, true);
        mapControl->addLayer(offlineLayer);
    }
    showOnly({offlineLayer});
}

void cMapViewer::showOnly(const QList<MapLayer*>& visible)
{
    detachGeometries();
    activeLayer = nullptr;
    if (!mapControl || visible.isEmpty())
        return;
    for (MapLayer* layer : mapControl->layers())
        layer->setVisible(visible.contains(layer));
    activeLayer = visible.last();
    attachGeometries();
    mapControl->setFocus();
}

void cMapViewer::attachGeometries()
{
    if (!activeLayer)
        return;
    if (otherBranchButton->isChecked())
        activeLayer->addGeometry(otherBranchOverlay);
    activeLayer->addGeometry(branchOverlay);
    activeLayer->addGeometry(editedZone);
    if (anglePointer)
        activeLayer->addGeometry(anglePointer);
    else
        activeLayer->addGeometry(marker);
}

void cMapViewer::detachGeometries()
{
    if (!activeLayer)
        return;
    for (Geometry* geometry : std::initializer_list<Geometry*>{otherBranchOverlay, branchOverlay, editedZone,
                                                                 anglePointer, marker})
        activeLayer->removeGeometry(geometry);
}

void cMapViewer::showCoordinate(QPointF coord, bool resetZoom)
{
    placeMarker(coord);
    if (activeLayer) {
        const int zoom = resetZoom ? initialZoom : currentZoom;
        mapControl->setView(coord);
        mapControl->setZoom(zoom);
        viewChanged(coord, zoom);
        mapControl->update();
    }
    if (mapControl)
        mapControl->setFocus();
}

void cMapViewer::setCourse(int value, int diff)
{
    courseSet = true;
    courseValue = value;
    courseDiff = diff;
    updateEditedStop();
}

bool cMapViewer::course(int* value, int* diff) const
{
    if (value)
        *value = courseValue;
    if (diff)
        *diff = courseDiff;
    return courseSet;
}

void cMapViewer::clearCourse()
{
    courseSet = false;
    updateEditedStop();
}

QPointF cMapViewer::coordinate(bool* ok) const
{
    if (ok)
        *ok = true;
    return marker ? marker->coordinate() : lastCoord;
}

void cMapViewer::setRoute(const cRoute* route, bool reverse, const QUuid& stopId)
{
    endCourseEdit();
    courseSet = false;
    dropMarker();
    editedStopId = stopId;
    editedIndex = -1;
    zoneRadius = 0;
    QVector<RouteStop> shown;
    QVector<RouteStop> other;
    if (route) {
        const cBranch& branch = reverse ? route->reverse : route->direct;
        shown = routeStops(branch, branchColour);
        other = routeStops(reverse ? route->direct : route->reverse, otherBranchColour);
        for (int i = 0; i < branch.stops.size() && !stopId.isNull(); ++i) {
            if (branch.stops.at(i).id != stopId)
                continue;
            // Drawn by the marker and its own zone, wherever they go.
            editedIndex = i;
            zoneRadius = branch.stops.at(i).radius;
            shown[i].markerShown = false;
            shown[i].radius = 0;
            shown[i].hasCourse = false;
        }
    }
    branchOverlay->setStops(shown);
    otherBranchOverlay->setStops(other);
    updateEditedStop();
}

void cMapViewer::setZoneRadius(int metres)
{
    zoneRadius = metres;
    updateEditedStop();
}

void cMapViewer::updateEditedStop()
{
    QVector<RouteStop> zone;
    if (marker) {
        RouteStop edited;
        edited.coordinate = marker->coordinate();
        edited.radius = zoneRadius;
        // The course pointer shows the course while it is edited.
        edited.hasCourse = courseSet && !anglePointer;
        edited.course = courseValue;
        edited.colour = editedColour;
        edited.highlighted = true;
        edited.markerShown = false;
        zone << edited;
        if (editedIndex >= 0 && editedIndex < branchOverlay->stops().size()) {
            RouteStop inBranch = branchOverlay->stops().at(editedIndex);
            inBranch.coordinate = edited.coordinate;
            branchOverlay->setStop(editedIndex, inBranch);
        }
    }
    editedZone->setStops(zone);
    if (mapControl)
        mapControl->update();
}

void cMapViewer::showWholeRoute()
{
    if (!mapControl)
        return;
    QList<QPointF> places;
    for (const RouteStop& stop : branchOverlay->stops())
        places << stop.coordinate;
    if (marker)
        places << marker->coordinate();
    mapControl->setViewAndZoomIn(places);
}

void cMapViewer::mapSourceChanged(int src)
{
    QList<MapLayer*> visible;
    switch (src) {
    case 0: visible = {googleLayer}; break;
    case 1: visible = {googleSatLayer}; break;
    case 2: visible = {googleSatLayer, googleHybLayer}; break;
    case 3: visible = {osmLayer}; break;
    case 4: visible = {bingLayer}; break;
    case 5: visible = {bingSatLayer}; break;
    case 6: visible = {bingHybLayer}; break;
    default: break;
    }
    showOnly(visible);
    if (mapControl)
        mapControl->setFocus();
}

// The stop's last place becomes the map's starting point next time.
void cMapViewer::rememberMarker()
{
    if (!marker)
        return;
    lastCoord = marker->coordinate();
    QSettings settings;
    settings.setValue(QStringLiteral("MapViewer/LastCoord"), lastCoord);
    settings.sync();
}

void cMapViewer::okSlot()
{
    endCourseEdit();
    rememberMarker();
    hide();
    emit ok();
}

void cMapViewer::cancelSlot()
{
    endCourseEdit();
    rememberMarker();
    courseSet = false;
    hide();
}

void cMapViewer::closeEvent(QCloseEvent* event)
{
    cancelSlot();
    event->accept();
}

void cMapViewer::hideEvent(QHideEvent* event)
{
    endCourseEdit();
    QMainWindow::hideEvent(event);
}

void cMapViewer::changeEvent(QEvent* event)
{
    // Ctrl let go over another window never reaches us.
    if (event->type() == QEvent::ActivationChange && !isActiveWindow())
        endCourseEdit();
    QMainWindow::changeEvent(event);
}

void cMapViewer::settingsSlot()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer/Proxy"));
    int type = settings.value(QStringLiteral("ProxyType"), 0).toInt();
    QString host = settings.value(QStringLiteral("Host")).toString();
    int port = settings.value(QStringLiteral("Port"), 8080).toInt();
    QString user = settings.value(QStringLiteral("User")).toString();
    QString password = settings.value(QStringLiteral("Pass")).toString();

    cNetworkSettingsDialog dialog(this);
    dialog.setSettings(type, host, port, user, password);
    dialog.setTileSources(tileSources);
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.getSettings(&type, &host, &port, &user, &password);
    settings.setValue(QStringLiteral("ProxyType"), type);
    settings.setValue(QStringLiteral("Host"), host);
    settings.setValue(QStringLiteral("Port"), port);
    settings.setValue(QStringLiteral("User"), user);
    settings.setValue(QStringLiteral("Pass"), password);
    settings.sync();
    cTileSource::save(dialog.tileSources());
    createMap();
    applyProxy();
}

void cMapViewer::setCourseValue(int value)
{
    courseValue = wrapDegrees(value);
    anglePointer->setCourse(courseValue, courseDiff);
    mapControl->update();
}

void cMapViewer::mouseEventCoordinate(const QMouseEvent* e, QPointF coord)
{
    switch (e->type()) {
    case QEvent::MouseButtonPress:
        // The other buttons do nothing to the stop.
        if (e->button() != Qt::LeftButton)
            break;
        mousePressed = true;
        if (anglePointer && marker && activeLayer) {
            // Bearing from the stop to the click: dx over -dy, y downwards.
            const MapAdapter* adapter = activeLayer->mapadapter();
            const QPoint from = adapter->coordinateToDisplay(marker->coordinate());
            const QPoint to = adapter->coordinateToDisplay(coord);
            double degrees = qRadiansToDegrees(std::atan2(double(to.x() - from.x()), double(from.y() - to.y())));
            if (degrees < 0)
                degrees += 360;
            int diff = 0;
            anglePointer->course(nullptr, &diff);
            courseValue = wrapDegrees(int(std::floor(degrees + 0.5)));
            anglePointer->setCourse(courseValue, diff);
            mapControl->update();
        }
        break;
    case QEvent::MouseMove: {
        const int x = qRound(e->localPos().x());
        if (!anglePointer) {
            if (mousePressed && mapControl->isDragging())
                mouseDragged = true;
        } else if (x != lastMouseX) {
            // Faster moves turn faster; moving right turns anticlockwise.
            const int distance = qAbs(x - lastMouseX);
            const int step = distance < 5 ? 1 : distance < 10 ? 3 : 5;
            setCourseValue(courseValue + (x > lastMouseX ? -step : step));
        }
        lastMouseX = x;
        lastMouseY = qRound(e->localPos().y());
        break;
    }
    case QEvent::MouseButtonRelease:
        if (e->button() != Qt::LeftButton)
            break;
        if (mousePressed && !mouseDragged && !anglePointer && activeLayer) {
            // Another stop's marker tells about that stop; only the edited stop moves.
            const QString about = activeLayer->toolTipAt(activeLayer->mapadapter()->coordinateToDisplay(coord));
            if (!about.isEmpty()) {
                QToolTip::showText(e->globalPos(), about, mapControl);
            } else {
                lastCoord = coord;
                placeMarker(coord);
            }
        }
        mousePressed = false;
        mouseDragged = false;
        break;
    default:
        break;
    }
}

void cMapViewer::mouseWheelEvent(int delta)
{
    if (!anglePointer)
        return;
    if (delta > 0 && courseDiff < 180)
        ++courseDiff;
    else if (delta < 0 && courseDiff > 1)
        --courseDiff;
    anglePointer->setDiff(courseDiff);
    mapControl->update();
}

void cMapViewer::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Control) {
        if (event->isAutoRepeat())
            return;
        qDebug("Pressed!");
        if (marker && courseSet && activeLayer && !anglePointer) {
            activeLayer->removeGeometry(marker);
            anglePointer = new cAnglePointer;
            anglePointer->setCourse(courseValue, courseDiff);
            anglePointer->setCoordinate(marker->coordinate());
            activeLayer->addGeometry(anglePointer);
            // The course has the mouse, the wheel and the arrow keys now.
            mapControl->setMouseMode(MapControl::None);
            mapControl->enableMouseWheelEvents(false);
            mapControl->enableKeyboardNavigation(false);
            updateEditedStop();
        }
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        cancelSlot();
        return;
    }
    if (!anglePointer) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        setCourseValue(courseValue + 1);
        break;
    case Qt::Key_Right:
        setCourseValue(courseValue - 1);
        break;
    case Qt::Key_Up:
        if (courseDiff <= 179)
            ++courseDiff;
        setCourseValue(courseValue);
        break;
    case Qt::Key_Down:
        if (courseDiff >= 2)
            --courseDiff;
        setCourseValue(courseValue);
        break;
    default:
        QMainWindow::keyPressEvent(event);
        break;
    }
}

void cMapViewer::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Control || event->isAutoRepeat()) {
        QMainWindow::keyReleaseEvent(event);
        return;
    }
    qDebug("Released!");
    endCourseEdit();
}

// Ends course editing as letting go of Ctrl does, however it ends.
void cMapViewer::endCourseEdit()
{
    if (!anglePointer)
        return;
    courseSet = anglePointer->course(&courseValue, &courseDiff);
    if (activeLayer)
        activeLayer->removeGeometry(anglePointer);
    delete anglePointer;
    anglePointer = nullptr;
    if (activeLayer)
        activeLayer->addGeometry(marker);
    mapControl->setMouseMode(MapControl::Panning);
    mapControl->enableMouseWheelEvents(true);
    mapControl->enableKeyboardNavigation(true);
    updateEditedStop();
}

void cMapViewer::viewChanged(QPointF coordinate, int zoom)
{
    Q_UNUSED(coordinate)
    if (zoom == currentZoom)
        return;
    currentZoom = zoom;
    QSettings settings;
    settings.setValue(QStringLiteral("MapViewer/CurrentZoom"), currentZoom);
    settings.sync();
    qDebug() << "Map zoomed:" << zoom;
}

bool cMapViewer::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == mapContainer && event->type() == QEvent::Resize && mapControl)
        mapControl->resize(mapContainer->width() - 1, mapContainer->height() - 1);
    return QMainWindow::eventFilter(watched, event);
}

void cMapViewer::saveMapState()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    settings.beginGroup(QStringLiteral("State"));
    settings.setValue(QStringLiteral("State"), saveState(0));
    settings.setValue(QStringLiteral("IsMaximized"), isMaximized());
    // A maximized window keeps the size it returns to.
    settings.setValue(QStringLiteral("Geometry"), isMaximized() ? normalGeometry() : geometry());
    settings.endGroup();
    settings.setValue(QStringLiteral("LastCoord"), lastCoord);
    settings.setValue(QStringLiteral("CurrentZoom"), currentZoom);
    settings.endGroup();
    settings.sync();
}

void cMapViewer::restoreMapState()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer/State"));
    restoreState(settings.value(QStringLiteral("State")).toByteArray(), 0);
    setGeometry(settings.value(QStringLiteral("Geometry"), QRect(40, 40, 860, 650)).toRect());
    if (settings.value(QStringLiteral("IsMaximized"), false).toBool())
        showMaximized();
}
