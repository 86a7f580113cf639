#ifndef VOSK_ANGLEPOINTER_H
#define VOSK_ANGLEPOINTER_H

#include "geometry.h"

// The course of a stop while it is edited on the map: a red arrow from the
// stop in the direction of travel and two thin lines bounding the accepted
// sector. Sizes are screen pixels at every zoom; nothing is drawn until a
// course is set.
class cAnglePointer : public qmapcontrol::Curve
{
public:
    cAnglePointer();

    void setCoordinate(const QPointF& coordinate);
    void setCourse(int value, int diff);
    void setDiff(int diff);
    bool course(int* value, int* diff) const;

    QRectF boundingBox() const override;
    bool Touches(qmapcontrol::Point* click, const qmapcontrol::MapAdapter* adapter) const override;
    void draw(QPainter* painter, const qmapcontrol::MapAdapter* adapter, const QRect& viewport,
              const QPoint offset) const override;
    QList<qmapcontrol::Point*> points() override;

private:
    QPointF coordinate;
    bool courseSet = false;
    // Compass bearing in degrees: 0 up (north), growing clockwise.
    int value = 0;
    // Full width of the sector in degrees.
    int diff = 0;
};

#endif
