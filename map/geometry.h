#ifndef VOSK_GEOMETRY_H
#define VOSK_GEOMETRY_H

#include <QList>
#include <QObject>
#include <QPixmap>
#include <QPointF>
#include <QRectF>
#include <QString>

class QPainter;

namespace qmapcontrol {

class MapAdapter;
class Point;

// Something a layer draws over its tiles. The layer's painter works in
// display points of the adapter (world pixels at the current zoom);
// `viewport` is the visible part of the world in those points and `offset`
// is the translation from them to the map widget's pixels.
class Geometry : public QObject
{
    Q_OBJECT

public:
    explicit Geometry(const QString& name = QString());

    QString name() const { return m_name; }
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }

    virtual QRectF boundingBox() const = 0;
    // Whether a click, given as a point at its coordinate, hits the geometry.
    virtual bool Touches(Point* click, const MapAdapter* adapter) const = 0;
    virtual void draw(QPainter* painter, const MapAdapter* adapter, const QRect& viewport,
                      const QPoint offset) const = 0;
    virtual QList<Point*> points() = 0;
    // What to tell about the geometry under display point `point`, or empty.
    virtual QString toolTipAt(const QPoint& point, const MapAdapter* adapter) const;

private:
    QString m_name;
    bool m_visible = true;
};

// A coordinate, drawn as its pixmap (if any) placed by the alignment: the
// named corner or edge centre of the pixmap lies on the coordinate.
class Point : public Geometry
{
    Q_OBJECT

public:
    enum Alignment { TopLeft, TopRight, TopMiddle, BottomLeft, BottomRight, BottomMiddle, Middle };

    Point(qreal x, qreal y, const QString& name = QString(), Alignment alignment = Middle);

    QPointF coordinate() const { return m_coordinate; }
    void setCoordinate(const QPointF& coordinate) { m_coordinate = coordinate; }
    qreal longitude() const { return m_coordinate.x(); }
    qreal latitude() const { return m_coordinate.y(); }
    Alignment alignment() const { return m_alignment; }
    QPixmap pixmap() const { return m_pixmap; }

    QRectF boundingBox() const override;
    bool Touches(Point* click, const MapAdapter* adapter) const override;
    void draw(QPainter* painter, const MapAdapter* adapter, const QRect& viewport,
              const QPoint offset) const override;
    QList<Point*> points() override;

protected:
    void setPixmap(const QPixmap& pixmap) { m_pixmap = pixmap; }
    // Where the pixmap goes, in display points.
    QRect displayRect(const MapAdapter* adapter) const;

private:
    QPointF m_coordinate;
    Alignment m_alignment;
    QPixmap m_pixmap;
};

// A point shown as an image file; on high-density screens its "@2x"
// variant, where there is one, keeps it crisp.
class ImagePoint : public Point
{
    Q_OBJECT

public:
    ImagePoint(qreal x, qreal y, const QString& fileName, const QString& name = QString(),
               Alignment alignment = Middle);
};

// The base of line-shaped geometries; each draws itself.
class Curve : public Geometry
{
    Q_OBJECT

public:
    explicit Curve(const QString& name = QString());
};

} // namespace qmapcontrol

#endif
