#include "geometry.h"

#include "mapadapter.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>

namespace qmapcontrol {

Geometry::Geometry(const QString& name)
    : m_name(name)
{
}

QString Geometry::toolTipAt(const QPoint&, const MapAdapter*) const
{
    return QString();
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
    const QSize size = (QSizeF(m_pixmap.size()) / m_pixmap.devicePixelRatio()).toSize();
    const int w = size.width();
    const int h = size.height();
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
    QString chosen = fileName;
    const int dot = fileName.lastIndexOf(QLatin1Char('.'));
    const QString sharp = fileName.left(dot) + QStringLiteral("@2x") + fileName.mid(dot);
    if (qGuiApp && qGuiApp->devicePixelRatio() > 1.0 && dot > 0 && QFile::exists(sharp))
        chosen = sharp;
    // Qt reads the density of an "@2x" file from its name.
    const QPixmap image(chosen);
    if (image.isNull())
        qWarning("Cannot load the image %s", qPrintable(fileName));
    setPixmap(image);
}

Curve::Curve(const QString& name)
    : Geometry(name)
{
}

} // namespace qmapcontrol
