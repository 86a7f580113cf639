#include "geometry.h"

#include "mapadapter.h"

#include <QPainter>

namespace qmapcontrol {

Geometry::Geometry(const QString& name)
    : m_name(name)
{
}

Point::Point(qreal x, qreal y, const QString& name, Alignment alignment)
    : Geometry(name)
    , m_coordinate(x, y)
    , m_alignment(alignment)
{
}

QRectF Point::boundingBox() const
{
    return QRectF(m_coordinate, QSizeF(0, 0));
}

QRect Point::displayRect(const MapAdapter* adapter) const
{
    const QPoint at = adapter->coordinateToDisplay(m_coordinate);
    const int w = m_pixmap.width();
    const int h = m_pixmap.height();
    switch (m_alignment) {
    case TopLeft: return QRect(at.x(), at.y(), w, h);
    case TopRight: return QRect(at.x() - w, at.y(), w, h);
    case TopMiddle: return QRect(at.x() - w / 2, at.y(), w, h);
    case BottomLeft: return QRect(at.x(), at.y() - h, w, h);
    case BottomRight: return QRect(at.x() - w, at.y() - h, w, h);
    case BottomMiddle: return QRect(at.x() - w / 2, at.y() - h, w, h);
    case Middle: break;
    }
    return QRect(at.x() - w / 2, at.y() - h / 2, w, h);
}

bool Point::Touches(Point* click, const MapAdapter* adapter) const
{
    if (!click || !adapter || !isVisible())
        return false;
    const QPoint at = adapter->coordinateToDisplay(click->coordinate());
    // A point without an image is hit within a few pixels.
    if (m_pixmap.isNull())
        return (at - adapter->coordinateToDisplay(m_coordinate)).manhattanLength() <= 4;
    return displayRect(adapter).contains(at);
}

void Point::draw(QPainter* painter, const MapAdapter* adapter, const QRect& viewport, const QPoint) const
{
    if (!isVisible() || m_pixmap.isNull())
        return;
    const QRect target = displayRect(adapter);
    if (target.intersects(viewport))
        painter->drawPixmap(target.topLeft(), m_pixmap);
}

QList<Point*> Point::points()
{
    return {this};
}

ImagePoint::ImagePoint(qreal x, qreal y, const QString& fileName, const QString& name, Alignment alignment)
    : Point(x, y, name, alignment)
{
    const QPixmap image(fileName);
    if (image.isNull())
        qWarning("Cannot load the image %s", qPrintable(fileName));
    setPixmap(image);
}

Curve::Curve(const QString& name)
    : Geometry(name)
{
}

} // namespace qmapcontrol
