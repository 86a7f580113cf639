#include "maplayer.h"

#include "geometry.h"
#include "mapadapter.h"

namespace qmapcontrol {

MapLayer::MapLayer(const QString& name, MapAdapter* adapter, bool takeEvents)
    : m_name(name)
    , m_adapter(adapter)
    , m_takeEvents(takeEvents)
{
}

void MapLayer::setVisible(bool visible)
{
    if (visible == m_visible)
        return;
    m_visible = visible;
    emit updateRequest();
}

void MapLayer::addGeometry(Geometry* geometry)
{
    if (!geometry || m_geometries.contains(geometry))
        return;
    m_geometries.append(geometry);
    emit updateRequest();
}

void MapLayer::removeGeometry(Geometry* geometry)
{
    if (geometry && m_geometries.removeAll(geometry) > 0)
        emit updateRequest();
}

void MapLayer::clearGeometries()
{
    m_geometries.clear();
    emit updateRequest();
}

QList<Geometry*> MapLayer::geometries() const
{
    QList<Geometry*> list;
    for (const QPointer<Geometry>& geometry : m_geometries) {
        if (geometry)
            list.append(geometry);
    }
    return list;
}

void MapLayer::drawGeometries(QPainter* painter, const QRect& viewport, const QPoint offset) const
{
    if (!m_adapter)
        return;
    for (Geometry* geometry : geometries())
        geometry->draw(painter, m_adapter, viewport, offset);
}

QString MapLayer::toolTipAt(const QPoint& point) const
{
    const QList<Geometry*> all = geometries();
    for (int i = all.size() - 1; i >= 0 && m_adapter; --i) {
        const QString text = all.at(i)->isVisible() ? all.at(i)->toolTipAt(point, m_adapter) : QString();
        if (!text.isEmpty())
            return text;
    }
    return QString();
}

void MapLayer::clicked(const QPointF& coordinate, const QPoint& point)
{
    if (!m_takeEvents || !m_visible || !m_adapter)
        return;
    Point click(coordinate.x(), coordinate.y());
    // A receiver may delete geometries while we go through them.
    const QList<QPointer<Geometry>> candidates = m_geometries;
    for (const QPointer<Geometry>& geometry : candidates) {
        if (geometry && geometry->Touches(&click, m_adapter))
            emit geometryClicked(geometry, point);
    }
}

} // namespace qmapcontrol
