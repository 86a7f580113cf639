#ifndef VOSK_MAPLAYER_H
#define VOSK_MAPLAYER_H

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QString>

class QPainter;

namespace qmapcontrol {

class Geometry;
class MapAdapter;

// The tiles of one adapter and the geometries drawn over them. A layer owns
// neither its adapter nor its geometries; a geometry deleted while in the
// layer simply drops out of it.
class MapLayer : public QObject
{
    Q_OBJECT

public:
    MapLayer(const QString& name, MapAdapter* adapter, bool takeEvents = true);

    QString layername() const { return m_name; }
    MapAdapter* mapadapter() const { return m_adapter; }
    bool takesMouseEvents() const { return m_takeEvents; }
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);

    void addGeometry(Geometry* geometry);
    void removeGeometry(Geometry* geometry);
    void clearGeometries();
    QList<Geometry*> geometries() const;

    void drawGeometries(QPainter* painter, const QRect& viewport, const QPoint offset) const;
    // The tool tip of the topmost geometry at display point `point`.
    QString toolTipAt(const QPoint& point) const;
    // A click at `coordinate` (widget pixel `point`): reports every
    // geometry it touches.
    void clicked(const QPointF& coordinate, const QPoint& point);

signals:
    void updateRequest();
    void geometryClicked(qmapcontrol::Geometry* geometry, QPoint point);

private:
    QString m_name;
    MapAdapter* m_adapter;
    bool m_takeEvents;
    bool m_visible = true;
    QList<QPointer<Geometry>> m_geometries;
};

} // namespace qmapcontrol

#endif
