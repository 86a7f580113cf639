#include "anglepointer.h"

#include "mapadapter.h"

#include <QPainter>

#include <cmath>

namespace {

const double radiansPerDegree = 0.017453292519943295;

// Nearest integer, halves upwards.
int roundUp(double x)
{
    return int(std::floor(x + 0.5));
}

// The point `length` pixels from `from` on the bearing `degrees`, y downwards.
QPoint along(const QPoint& from, double degrees, double length)
{
    const double a = degrees * radiansPerDegree;
    return QPoint(from.x() + roundUp(length * std::sin(a)), from.y() - roundUp(length * std::cos(a)));
}

} // namespace

cAnglePointer::cAnglePointer()
    : qmapcontrol::Curve(QString())
{
}

void cAnglePointer::setCoordinate(const QPointF& coordinate)
{
    this->coordinate = coordinate;
}

void cAnglePointer::setCourse(int value, int diff)
{
    courseSet = true;
    this->value = value;
    this->diff = diff;
}

void cAnglePointer::setDiff(int diff)
{
    this->diff = diff;
}

bool cAnglePointer::course(int* value, int* diff) const
{
    if (value)
        *value = this->value;
    if (diff)
        *diff = this->diff;
    return courseSet;
}

QRectF cAnglePointer::boundingBox() const
{
    return QRectF(coordinate, QSizeF(0.01, 0.01));
}

bool cAnglePointer::Touches(qmapcontrol::Point*, const qmapcontrol::MapAdapter*) const
{
    return false;
}

void cAnglePointer::draw(QPainter* painter, const qmapcontrol::MapAdapter* adapter, const QRect&,
                         const QPoint) const
{
    if (!courseSet || !painter || !adapter)
        return;
    painter->save();
    // Antialiasing is Qt's high-quality antialiasing too; the separate hint is obsolete.
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(Qt::red, 2, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));

    const QPoint centre = adapter->coordinateToDisplay(coordinate);
    const QPoint tip = along(centre, value, 70);
    painter->drawLine(centre, tip);
    painter->drawLine(tip, along(tip, value + 160, 13));
    painter->drawLine(tip, along(tip, value + 200, 13));

    painter->setPen(QPen(Qt::red, 1, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
    const double half = diff * 0.5;
    painter->drawLine(centre, along(centre, value + half, 50));
    painter->drawLine(centre, along(centre, value - half, 50));
    painter->restore();
}

QList<qmapcontrol::Point*> cAnglePointer::points()
{
    return {};
}
