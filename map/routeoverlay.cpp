#include "routeoverlay.h"

#include "mapadapter.h"

#include <QFontMetrics>
#include <QPainter>
#include <QtMath>

namespace qmapcontrol {

namespace {

// The point `length` pixels from `from` on the compass bearing `degrees`.
QPointF along(const QPointF& from, double degrees, double length)
{
    const double a = qDegreesToRadians(degrees);
    return QPointF(from.x() + length * std::sin(a), from.y() - length * std::cos(a));
}

QFont labelFont()
{
    QFont font;
    font.setPixelSize(10);
    font.setBold(true);
    return font;
}

} // namespace

RouteOverlay::RouteOverlay(const QString& name)
    : Curve(name)
{
}

void RouteOverlay::setStop(int index, const RouteStop& stop)
{
    if (index >= 0 && index < m_stops.size())
        m_stops[index] = stop;
}

int RouteOverlay::markerRadiusFor(const RouteStop& stop) const
{
    // Long labels widen the marker rather than overflow it.
    return qMax(markerRadius, (QFontMetrics(labelFont()).horizontalAdvance(stop.label) + 7) / 2);
}

int RouteOverlay::stopAt(const QPoint& point, const MapAdapter* adapter) const
{
    if (!adapter || !isVisible())
        return -1;
    for (int i = m_stops.size() - 1; i >= 0; --i) {
        const RouteStop& stop = m_stops.at(i);
        const QPointF away = QPointF(point - adapter->coordinateToDisplay(stop.coordinate));
        const double r = markerRadiusFor(stop);
        if (stop.markerShown && QPointF::dotProduct(away, away) <= r * r)
            return i;
    }
    return -1;
}

QRectF RouteOverlay::boundingBox() const
{
    QRectF box;
    for (const RouteStop& stop : m_stops)
        box = box.isNull() ? QRectF(stop.coordinate, QSizeF()) : box.united(QRectF(stop.coordinate, QSizeF()));
    return box;
}

bool RouteOverlay::Touches(Point* click, const MapAdapter* adapter) const
{
    return click && adapter && stopAt(adapter->coordinateToDisplay(click->coordinate()), adapter) >= 0;
}

QList<Point*> RouteOverlay::points()
{
    return {};
}

QString RouteOverlay::toolTipAt(const QPoint& point, const MapAdapter* adapter) const
{
    const int index = stopAt(point, adapter);
    return index < 0 ? QString() : m_stops.at(index).toolTip;
}

void RouteOverlay::draw(QPainter* painter, const MapAdapter* adapter, const QRect& viewport, const QPoint) const
{
    if (!isVisible() || !painter || !adapter || m_stops.isEmpty())
        return;
    QVector<QPointF> centres;
    centres.reserve(m_stops.size());
    for (const RouteStop& stop : m_stops)
        centres << QPointF(adapter->coordinateToDisplay(stop.coordinate));

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF visible = QRectF(viewport).adjusted(-arrowLength, -arrowLength, arrowLength, arrowLength);

    // Zones first, so that nothing else hides under their fill.
    for (int i = 0; i < m_stops.size(); ++i) {
        const RouteStop& stop = m_stops.at(i);
        if (stop.radius <= 0)
            continue;
        const double r = MapAdapter::metresToPixels(stop.radius, stop.coordinate.y(), adapter->currentZoom());
        if (!visible.intersects(QRectF(centres.at(i) - QPointF(r, r), QSizeF(2 * r, 2 * r))))
            continue;
        QColor fill = stop.colour;
        fill.setAlpha(stop.highlighted ? 90 : 40);
        painter->setPen(QPen(stop.colour, stop.highlighted ? 3 : 1.5));
        painter->setBrush(fill);
        painter->drawEllipse(centres.at(i), r, r);
    }

    if (m_lineColour.isValid() && centres.size() > 1) {
        painter->setPen(QPen(m_lineColour, 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPolyline(centres.constData(), centres.size());
    }

    for (int i = 0; i < m_stops.size(); ++i) {
        const RouteStop& stop = m_stops.at(i);
        if (!stop.hasCourse || !visible.contains(centres.at(i)))
            continue;
        const QPointF tip = along(centres.at(i), stop.course, arrowLength);
        painter->setPen(QPen(stop.colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawLine(centres.at(i), tip);
        painter->drawLine(tip, along(tip, stop.course + 150, 8));
        painter->drawLine(tip, along(tip, stop.course - 150, 8));
    }

    painter->setFont(labelFont());
    for (int i = 0; i < m_stops.size(); ++i) {
        const RouteStop& stop = m_stops.at(i);
        if (!stop.markerShown || !visible.contains(centres.at(i)))
            continue;
        const int r = markerRadiusFor(stop);
        painter->setPen(QPen(Qt::white, 1.5));
        painter->setBrush(stop.colour);
        painter->drawEllipse(centres.at(i), r, r);
        // Text is laid out in fixed point, too short for display points of
        // the deeper zooms: it is placed from the marker's centre.
        painter->save();
        painter->translate(centres.at(i));
        painter->setPen(Qt::white);
        painter->drawText(QRectF(-r, -r, 2 * r, 2 * r), Qt::AlignCenter, stop.label);
        painter->restore();
    }
    painter->restore();
}

} // namespace qmapcontrol
