#ifndef VOSK_ROUTEOVERLAY_H
#define VOSK_ROUTEOVERLAY_H

#include "geometry.h"

#include <QColor>
#include <QVector>

namespace qmapcontrol {

// One stop of a route as the map shows it.
struct RouteStop
{
    // x = longitude, y = latitude in degrees.
    QPointF coordinate;
    // Zone radius in metres; 0 draws no zone.
    double radius = 0;
    bool hasCourse = false;
    // Compass bearing of travel in degrees: 0 north, clockwise.
    int course = 0;
    QColor colour = QColor(21, 101, 192);
    // Drawn inside the marker, such as the stop's number.
    QString label;
    QString toolTip;
    // A zone that stands out from the others.
    bool highlighted = false;
    // False where something else marks the stop.
    bool markerShown = true;
};

// The stops of a route: their zones to scale, a line through them in order,
// a short arrow for each course and a small labelled marker for each. All
// but the zones keep their size in pixels at every zoom.
class RouteOverlay : public Curve
{
    Q_OBJECT

public:
    static constexpr int markerRadius = 9;
    static constexpr int arrowLength = 26;

    explicit RouteOverlay(const QString& name = QString());

    const QVector<RouteStop>& stops() const { return m_stops; }
    void setStops(const QVector<RouteStop>& stops) { m_stops = stops; }
    void setStop(int index, const RouteStop& stop);
    // Without a line colour no line is drawn.
    void setLineColour(const QColor& colour) { m_lineColour = colour; }
    // The stop whose marker covers display point `point` (the one drawn
    // last wins), or -1.
    int stopAt(const QPoint& point, const MapAdapter* adapter) const;

    QRectF boundingBox() const override;
    bool Touches(Point* click, const MapAdapter* adapter) const override;
    void draw(QPainter* painter, const MapAdapter* adapter, const QRect& viewport,
              const QPoint offset) const override;
    QList<Point*> points() override;
    QString toolTipAt(const QPoint& point, const MapAdapter* adapter) const override;

private:
    int markerRadiusFor(const RouteStop& stop) const;

    QVector<RouteStop> m_stops;
    QColor m_lineColour;
};

} // namespace qmapcontrol

#endif
