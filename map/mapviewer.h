#ifndef VOSK_MAPVIEWER_H
#define VOSK_MAPVIEWER_H

#include "tilesources.h"

#include <QMainWindow>
#include <QPointF>
#include <QUuid>

class QComboBox;
class QMouseEvent;
class QToolButton;
class cAnglePointer;
struct cRoute;

namespace qmapcontrol {
class GoogleMapAdapter;
class ImagePoint;
class MBTilesMapAdapter;
class MapAdapter;
class MapControl;
class MapLayer;
class OSMMapAdapter;
class RouteOverlay;
class bingApiMapadapter;
class googleApiMapadapter;
} // namespace qmapcontrol

// The window in which a stop's position, and optionally its course, is
// picked on a map, with the other stops of its route in view. A click places
// the stop, a drag pans; while Ctrl is held the course is edited with the
// mouse, the wheel and the arrow keys. Closing the window cancels.
class cMapViewer : public QMainWindow
{
    Q_OBJECT

public:
    explicit cMapViewer(QWidget* parent = nullptr);
    ~cMapViewer() override;

    void showCoordinate(QPointF coord, bool resetZoom);
    void setCourse(int value, int diff);
    bool course(int* value, int* diff) const;
    void clearCourse();
    QPointF coordinate(bool* ok = nullptr) const;

    // Starts editing the stop `stopId` of the route's direct or reverse
    // branch: the branch and, on request, the other one are drawn around it;
    // no marker or course of an earlier stop is kept. The route is copied.
    void setRoute(const cRoute* route, bool reverse, const QUuid& stopId);
    QUuid editedStop() const { return editedStopId; }
    // The edited stop's zone follows the radius while it is edited.
    void setZoneRadius(int metres);

signals:
    void ok();

public slots:
    void mapSourceChanged(int src);
    void okSlot();
    void cancelSlot();
    void settingsSlot();
    void mouseEventCoordinate(const QMouseEvent* e, QPointF coord);
    void mouseWheelEvent(int delta);
    void saveMapState();
    void restoreMapState();
    void viewChanged(QPointF coordinate, int zoom);
    void showWholeRoute();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private slots:
    void sourceSelected(int index);

private:
    void rememberMarker();
    void createMap();
    void destroyMap();
    void applyProxy();
    void showMapError();
    qmapcontrol::ImagePoint* newMarker(const QPointF& coord) const;
    void placeMarker(const QPointF& coord);
    void dropMarker();
    void setCourseValue(int value);
    void endCourseEdit();
    // The selector: the built-in sources, the user's own, the offline map.
    void fillSelector();
    int offlineItem() const;
    void showSelectedSource();
    void showOfflineMap(const QString& fileName);
    void showOnly(const QList<qmapcontrol::MapLayer*>& visible);
    // The marker, the pointer and the route overlays go with the active layer.
    void attachGeometries();
    void detachGeometries();
    void updateEditedStop();

    qmapcontrol::MapControl* mapControl = nullptr;

    qmapcontrol::GoogleMapAdapter* googleStreetAdapter = nullptr;
    qmapcontrol::GoogleMapAdapter* googleSatAdapter = nullptr;
    qmapcontrol::GoogleMapAdapter* googleHybAdapter = nullptr;
    qmapcontrol::OSMMapAdapter* osmAdapter = nullptr;
    qmapcontrol::bingApiMapadapter* bingRoadAdapter = nullptr;
    qmapcontrol::bingApiMapadapter* bingAerialAdapter = nullptr;
    qmapcontrol::googleApiMapadapter* googleApiAdapter = nullptr;

    qmapcontrol::MapLayer* osmLayer = nullptr;
    qmapcontrol::MapLayer* googleLayer = nullptr;
    qmapcontrol::MapLayer* googleSatLayer = nullptr;
    qmapcontrol::MapLayer* googleHybLayer = nullptr;
    qmapcontrol::MapLayer* bingLayer = nullptr;
    qmapcontrol::MapLayer* bingSatLayer = nullptr;
    qmapcontrol::MapLayer* bingHybLayer = nullptr;

    // The layer that carries the marker.
    qmapcontrol::MapLayer* activeLayer = nullptr;
    qmapcontrol::ImagePoint* marker = nullptr;
    QWidget* mapContainer = nullptr;
    QComboBox* sourceSelector = nullptr;
    bool mousePressed = false;
    bool mouseDragged = false;
    // x = longitude, y = latitude in degrees.
    QPointF lastCoord;
    int currentZoom = 17;
    // Shown only while Ctrl is held during course editing.
    cAnglePointer* anglePointer = nullptr;
    bool courseSet = false;
    // Compass bearing 0..359, and the width of the accepted sector.
    int courseValue = 0;
    int courseDiff = 0;
    int lastMouseX = 0;
    int lastMouseY = 0;

    QList<cTileSource> tileSources;
    QList<qmapcontrol::MapAdapter*> extraAdapters;
    QList<qmapcontrol::MapLayer*> extraLayers;
    qmapcontrol::MBTilesMapAdapter* offlineAdapter = nullptr;
    qmapcontrol::MapLayer* offlineLayer = nullptr;
    // The selector item on show, to go back to when no file is chosen.
    int shownItem = 0;

    qmapcontrol::RouteOverlay* otherBranchOverlay = nullptr;
    qmapcontrol::RouteOverlay* branchOverlay = nullptr;
    // The edited stop's zone and course, wherever its marker stands.
    qmapcontrol::RouteOverlay* editedZone = nullptr;
    QUuid editedStopId;
    // Its place in `branchOverlay`, or -1.
    int editedIndex = -1;
    int zoneRadius = 0;
    QToolButton* otherBranchButton = nullptr;
};

#endif
