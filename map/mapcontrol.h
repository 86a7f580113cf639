#ifndef VOSK_MAPCONTROL_H
#define VOSK_MAPCONTROL_H

#include <QList>
#include <QPointF>
#include <QPointer>
#include <QWidget>

class QDir;

namespace qmapcontrol {

class MapAdapter;
class MapLayer;
class TileLoader;

// A slippy map: a Web Mercator view with a centre coordinate and an integer
// zoom, drawing its visible layers in the order they were added. Dragging
// pans (in panning mode), the wheel zooms around the cursor (unless switched
// off); every press, move and release is reported with the coordinate under
// the cursor. Keys are left to the parent widgets.
class MapControl : public QWidget
{
    Q_OBJECT

public:
    enum MouseMode { Panning, None };

    explicit MapControl(QWidget* parent = nullptr, MouseMode mouseMode = Panning);
    ~MapControl() override;

    // The control owns no layer; a layer deleted while added drops out.
    void addLayer(MapLayer* layer);
    void removeLayer(MapLayer* layer);
    QList<MapLayer*> layers() const;
    MapLayer* layer(const QString& name) const;

    QPointF currentCoordinate() const { return m_centre; }
    int currentZoom() const { return m_zoom; }
    void setView(const QPointF& coordinate);
    void setZoom(int zoom);
    void zoomIn() { setZoom(m_zoom + 1); }
    void zoomOut() { setZoom(m_zoom - 1); }

    MouseMode mouseMode() const { return m_mouseMode; }
    void setMouseMode(MouseMode mode) { m_mouseMode = mode; }
    bool mouseWheelEventsEnabled() const { return m_wheelZoom; }
    void enableMouseWheelEvents(bool enabled = true) { m_wheelZoom = enabled; }
    void showScale(bool visible);
    void showCrossHairs(bool visible);

    // Keeps fetched tiles in `path`, up to `diskSizeMB` megabytes, across runs.
    void enablePersistentCache(const QDir& path, int diskSizeMB);

    // Between the widget's pixels and coordinates, at the current view.
    QPointF coordinateAt(const QPoint& pixel) const;
    QPoint pixelAt(const QPointF& coordinate) const;

signals:
    void mouseEventCoordinate(const QMouseEvent* event, const QPointF coordinate);
    // Each wheel turn, whether or not it zooms.
    void mouseWheel(int delta);
    void viewChanged(const QPointF& coordinate, int zoom);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QPoint centrePixel() const;
    QPoint screenMiddle() const { return QPoint(width() / 2, height() / 2); }
    void moveView(const QPointF& coordinate, int zoom);
    void zoomAt(const QPoint& pixel, int zoom);
    void drawTiles(QPainter& painter, const MapAdapter& adapter, const QPoint& offset, const QRect& viewport,
                   QStringList* wanted);
    void drawScale(QPainter& painter);
    void drawCrossHairs(QPainter& painter);

    QList<QPointer<MapLayer>> m_layers;
    TileLoader* m_loader;
    QPointF m_centre;
    int m_zoom = 0;
    MouseMode m_mouseMode;
    bool m_wheelZoom = true;
    bool m_scale = false;
    bool m_crossHairs = false;
    // Wheel turns smaller than a notch add up until they make one.
    int m_wheelRest = 0;
    bool m_pressed = false;
    bool m_moved = false;
    QPoint m_lastPos;
};

} // namespace qmapcontrol

#endif
