#include "mapviewer.h"

#include "anglepointer.h"
#include "geometry.h"
#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "networksettingsdialog.h"

#include <QComboBox>
#include <QDebug>
#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMessageBox>
#include <QNetworkProxy>
#include <QPushButton>
#include <QSettings>
#include <QToolButton>
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

int wrapDegrees(int degrees)
{
    return ((degrees % 360) + 360) % 360;
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
    sourceSelector->addItems({tr("Google Maps (street)"), tr("Google Maps (satelite)"), tr("Google Maps (hybrid)"),
                              tr("OpenStreetMap (OSM)")});
    connect(sourceSelector, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &cMapViewer::mapSourceChanged, Qt::QueuedConnection);
    auto* settingsButton = new QToolButton(central);
    settingsButton->setToolTip(tr("Settings"));
    settingsButton->setIcon(QIcon(QStringLiteral(":/icon/settings2.ico")));
    connect(settingsButton, &QToolButton::clicked, this, &cMapViewer::settingsSlot);
    topRow->addWidget(sourceSelector);
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

    const int index = QSettings().value(QStringLiteral("MapViewer/CurrentMapIndex"), 0).toInt();
    sourceSelector->setCurrentIndex(index >= 0 && index < sourceSelector->count() ? index : 0);

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

void cMapViewer::createMap()
{
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

    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    lastCoord = settings.value(QStringLiteral("LastCoord"), QPointF(37.33437, 55.50882)).toPointF();
    currentZoom = settings.value(QStringLiteral("CurrentZoom"), initialZoom).toInt();
    mapControl->setView(lastCoord);
    mapControl->setZoom(currentZoom);

    if (hadMarker)
        showCoordinate(markerCoord, true);

    mapSourceChanged(sourceSelector->currentIndex());
    connect(mapControl, &MapControl::viewChanged, this, &cMapViewer::viewChanged);
    mapControl->setFocus();
}

void cMapViewer::destroyMap()
{
    if (activeLayer) {
        activeLayer->removeGeometry(anglePointer);
        activeLayer->removeGeometry(marker);
    }
    if (mapControl) {
        mapControl->disconnect();
        for (MapLayer* layer : mapControl->layers())
            mapControl->removeLayer(layer);
    }
    for (MapLayer** layer : {&osmLayer, &googleLayer, &googleSatLayer, &googleHybLayer, &bingLayer, &bingSatLayer,
                             &bingHybLayer}) {
        delete *layer;
        *layer = nullptr;
    }
    delete googleStreetAdapter;
    delete googleSatAdapter;
    delete googleHybAdapter;
    delete osmAdapter;
    delete bingRoadAdapter;
    delete bingAerialAdapter;
    delete googleApiAdapter;
    googleStreetAdapter = googleSatAdapter = googleHybAdapter = nullptr;
    osmAdapter = nullptr;
    bingRoadAdapter = bingAerialAdapter = nullptr;
    googleApiAdapter = nullptr;
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

void cMapViewer::showCoordinate(QPointF coord, bool resetZoom)
{
    if (marker) {
        if (activeLayer)
            activeLayer->removeGeometry(marker);
        delete marker;
    }
    marker = newMarker(coord);
    if (activeLayer) {
        const int zoom = resetZoom ? initialZoom : currentZoom;
        activeLayer->addGeometry(marker);
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
}

QPointF cMapViewer::coordinate(bool* ok) const
{
    if (ok)
        *ok = true;
    return marker ? marker->coordinate() : lastCoord;
}

void cMapViewer::mapSourceChanged(int src)
{
    if (activeLayer)
        activeLayer->removeGeometry(marker);
    activeLayer = nullptr;
    if (!mapControl)
        return;

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
    if (!visible.isEmpty()) {
        for (MapLayer* layer : mapControl->layers())
            layer->setVisible(visible.contains(layer));
        activeLayer = visible.last();
        if (marker)
            activeLayer->addGeometry(marker);
    }
    mapControl->setFocus();

    // Only the user's choice is remembered, not the viewer's own calls.
    if (sender()) {
        QSettings settings;
        settings.setValue(QStringLiteral("MapViewer/CurrentMapIndex"), src);
        settings.sync();
    }
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
    rememberMarker();
    hide();
    emit ok();
}

void cMapViewer::cancelSlot()
{
    rememberMarker();
    courseSet = false;
    hide();
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
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.getSettings(&type, &host, &port, &user, &password);
    settings.setValue(QStringLiteral("ProxyType"), type);
    settings.setValue(QStringLiteral("Host"), host);
    settings.setValue(QStringLiteral("Port"), port);
    settings.setValue(QStringLiteral("User"), user);
    settings.setValue(QStringLiteral("Pass"), password);
    settings.sync();
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
            if (mousePressed)
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
        if (!mouseDragged && !anglePointer) {
            if (marker) {
                if (activeLayer)
                    activeLayer->removeGeometry(marker);
                delete marker;
            }
            lastCoord = coord;
            marker = newMarker(coord);
            if (activeLayer)
                activeLayer->addGeometry(marker);
            mapControl->update();
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
            mapControl->setMouseMode(MapControl::None);
            mapControl->enableMouseWheelEvents(false);
        }
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
