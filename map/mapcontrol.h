#ifndef VOSK_MAPCONTROL_H
#define VOSK_MAPCONTROL_H

#include <QList>
#include <QPointF>
#include <QPointer>
#include <QSet>
#include <QUrl>
#include <QWidget>

class QDir;

namespace qmapcontrol {

class MapAdapter;
class MapLayer;
class TileLoader;

// A slippy map: a Web Mercator view with a centre coordinate and an integer
// zoom, drawing its visible layers in the order they were added. A press
// that moves further than the platform's drag distance pans (in panning
// mode); the wheel zooms around the cursor, with Ctrl around the centre
// (unless switched off); +, -, Page Up and Page Down zoom and the arrow keys
// pan (unless switched off). Every press, move and release is reported with
// the coordinate under the cursor. The map names the source of its tiles in
// its lower right corner and says inside itself why tiles are missing.
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
    // Centres the coordinates and zooms in as far as they all stay in view.
    void setViewAndZoomIn(const QList<QPointF>& coordinates);
    // Moves the view by `pixels` of the widget.
    void scroll(const QPoint& pixels);

    MouseMode mouseMode() const { return m_mouseMode; }
    void setMouseMode(MouseMode mode) { m_mouseMode = mode; }
    bool mouseWheelEventsEnabled() const { return m_wheelZoom; }
    void enableMouseWheelEvents(bool enabled = true) { m_wheelZoom = enabled; }
    bool keyboardNavigationEnabled() const { return m_keyboard; }
    void enableKeyboardNavigation(bool enabled = true) { m_keyboard = enabled; }
    void showScale(bool visible);
    void showCrossHairs(bool visible);
    // Whether the current press has moved far enough to be a drag.
    bool isDragging() const { return m_pressed && m_moved; }

    // Keeps fetched tiles in `path`, up to `diskSizeMB` megabytes, across runs.
    void enablePersistentCache(const QDir& path, int diskSizeMB);
    TileLoader* tileLoader() const { return m_loader; }

    // Between the widget's pixels and coordinates, at the current view.
    QPointF coordinateAt(const QPoint& pixel) const;
    QPoint pixelAt(const QPointF& coordinate) const;

    // What the map says about missing tiles now, one line each (empty when
    // nothing is amiss), and the attribution it shows, with their places.
    QStringList notices() const { return m_notices; }
    QRect noticeRect() const { return m_noticeRect; }
    QString attribution() const { return m_attribution; }
    QRect attributionRect() const { return m_attributionRect; }

signals:
    void mouseEventCoordinate(const QMouseEvent* event, const QPointF coordinate);
    // Each wheel turn, whether or not it zooms.
    void mouseWheel(int delta);
    void viewChanged(const QPointF& coordinate, int zoom);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    QPoint centrePixel() const;
    QPoint screenMiddle() const { return QPoint(width() / 2, height() / 2); }
    void moveView(const QPointF& coordinate, int zoom);
    void zoomAt(const QPoint& pixel, int zoom);
    // Draws the layer's tiles for the viewport, appends their keys to
    // `wanted`, those of the ring around them to `ring` and the hosts of
    // tiles it lacks to `lacking`; false when there are too many to draw.
    bool drawTiles(QPainter& painter, const MapAdapter& adapter, const QPoint& offset, const QRect& viewport,
                   QStringList* wanted, QStringList* ring, QSet<QString>* lacking);
    QStringList collectNotices(const QList<const MapAdapter*>& adapters, const QList<const MapAdapter*>& tooFar,
                               const QSet<QString>& lacking);
    void drawNotices(QPainter& painter);
    void drawAttribution(QPainter& painter, const QList<const MapAdapter*>& adapters, int left);
    int drawScale(QPainter& painter);
    void drawCrossHairs(QPainter& painter);

    QList<QPointer<MapLayer>> m_layers;
    TileLoader* m_loader;
    QPointF m_centre;
    int m_zoom = 0;
    MouseMode m_mouseMode;
    bool m_wheelZoom = true;
    bool m_keyboard = true;
    bool m_scale = false;
    bool m_crossHairs = false;
    // Wheel turns smaller than a notch add up until they make one.
    int m_wheelRest = 0;
    bool m_pressed = false;
    bool m_moved = false;
    QPoint m_pressPos;
    QPoint m_lastPos;
    QStringList m_notices;
    QRect m_noticeRect;
    QString m_attribution;
    QUrl m_attributionUrl;
    QRect m_attributionRect;
};

} // namespace qmapcontrol

#endif
