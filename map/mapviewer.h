#ifndef VOSK_MAPVIEWER_H
#define VOSK_MAPVIEWER_H

#include <QMainWindow>
#include <QPointF>

class QComboBox;
class QMouseEvent;
class cAnglePointer;

namespace qmapcontrol {
class GoogleMapAdapter;
class ImagePoint;
class MapControl;
class MapLayer;
class OSMMapAdapter;
class bingApiMapadapter;
class googleApiMapadapter;
} // namespace qmapcontrol

// The window in which a stop's position, and optionally its course, is
// picked on a map. A click places the stop, a drag pans; while Ctrl is held
// the course is edited with the mouse, the wheel and the arrow keys.
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

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rememberMarker();
    void createMap();
    void destroyMap();
    void applyProxy();
    void showMapError();
    qmapcontrol::ImagePoint* newMarker(const QPointF& coord) const;
    void setCourseValue(int value);

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

    // The layer that carries the marker; one of the seven.
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
};

#endif
