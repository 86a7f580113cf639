#ifndef VOSK_TRACKOVERLAY_H
#define VOSK_TRACKOVERLAY_H

#include "geometry.h"

#include <QVector>

#include <cmath>

// A recorded track drawn as a line over the map.
class cTrackLine : public qmapcontrol::Curve
{
public:
    // x = longitude, y = latitude in degrees.
    void setTrack(const QVector<QPointF>& coordinates);

    QRectF boundingBox() const override { return m_box; }
    bool Touches(qmapcontrol::Point*, const qmapcontrol::MapAdapter*) const override { return false; }
    void draw(QPainter* painter, const qmapcontrol::MapAdapter* adapter, const QRect& viewport,
              const QPoint offset) const override;
    QList<qmapcontrol::Point*> points() override { return {}; }

private:
    QVector<QPointF> m_coordinates;
    QRectF m_box;
    // The line in display points of the zoom it was last drawn at: a long
    // ride is projected once per zoom, not on every repaint.
    mutable QVector<QPointF> m_pixels;
    mutable int m_pixelZoom = -1;
};

// The vehicle at one point of the track: a disc with an arrow along its
// heading (without one when the heading is unknown).
class cVehicleMarker : public qmapcontrol::Curve
{
public:
    static constexpr int radius = 10;

    bool isPlaced() const { return m_placed; }
    QPointF coordinate() const { return m_coordinate; }
    void place(const QPointF& coordinate, double heading);

    QRectF boundingBox() const override { return QRectF(m_coordinate, QSizeF()); }
    bool Touches(qmapcontrol::Point*, const qmapcontrol::MapAdapter*) const override { return false; }
    void draw(QPainter* painter, const qmapcontrol::MapAdapter* adapter, const QRect& viewport,
              const QPoint offset) const override;
    QList<qmapcontrol::Point*> points() override { return {}; }

private:
    bool m_placed = false;
    QPointF m_coordinate;
    double m_heading = std::nan("");
};

#endif
