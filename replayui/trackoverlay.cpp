#include "trackoverlay.h"

#include "mapadapter.h"

#include <QPainter>
#include <QPolygonF>
#include <QtMath>

using namespace qmapcontrol;

void cTrackLine::setTrack(const QVector<QPointF>& coordinates)
{
    m_coordinates = coordinates;
    m_pixels.clear();
    m_pixelZoom = -1;
    m_box = QRectF();
    for (const QPointF& c : coordinates)
        m_box = m_box.isNull() ? QRectF(c, QSizeF()) : m_box.united(QRectF(c, QSizeF()));
}

void cTrackLine::draw(QPainter* painter, const MapAdapter* adapter, const QRect&, const QPoint) const
{
    if (!isVisible() || !painter || !adapter || m_coordinates.size() < 2)
        return;
    const int zoom = adapter->currentZoom();
    if (zoom != m_pixelZoom) {
        // Points closer than a pixel to the last one kept add nothing to the line.
        m_pixels.clear();
        for (const QPointF& c : m_coordinates) {
            const QPointF p = MapAdapter::worldPixel(c, zoom);
            if (m_pixels.isEmpty() || qAbs(p.x() - m_pixels.last().x()) + qAbs(p.y() - m_pixels.last().y()) >= 1)
                m_pixels << p;
        }
        m_pixelZoom = zoom;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(QColor(38, 50, 56, 190), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(m_pixels.constData(), m_pixels.size());
    painter->restore();
}

void cVehicleMarker::place(const QPointF& coordinate, double heading)
{
    m_placed = true;
    m_coordinate = coordinate;
    m_heading = heading;
}

void cVehicleMarker::draw(QPainter* painter, const MapAdapter* adapter, const QRect&, const QPoint) const
{
    if (!m_placed || !isVisible() || !painter || !adapter)
        return;
    const QPointF at(adapter->coordinateToDisplay(m_coordinate));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(Qt::white, 2));
    painter->setBrush(QColor(13, 71, 161));
    painter->drawEllipse(at, radius, radius);
    if (!std::isnan(m_heading)) {
        // Compass bearing: 0 up, clockwise; the arrow stays inside the disc.
        painter->translate(at);
        painter->rotate(m_heading);
        QPolygonF arrow;
        arrow << QPointF(0, -radius + 1) << QPointF(radius * 0.6, radius * 0.6) << QPointF(0, radius * 0.25)
              << QPointF(-radius * 0.6, radius * 0.6);
        painter->setPen(Qt::NoPen);
        painter->setBrush(Qt::white);
        painter->drawPolygon(arrow);
    }
    painter->restore();
}
