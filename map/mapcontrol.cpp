#include "mapcontrol.h"

#include "mapadapter.h"
#include "maplayer.h"
#include "tileloader.h"

#include <QDir>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>

namespace qmapcontrol {

namespace {

const int wheelNotch = 120;

int floorDiv(int value, int divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

} // namespace

MapControl::MapControl(QWidget* parent, MouseMode mouseMode)
    : QWidget(parent)
    , m_loader(new TileLoader(this))
    , m_mouseMode(mouseMode)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    connect(m_loader, &TileLoader::tileLoaded, this, QOverload<>::of(&QWidget::update));
}

MapControl::~MapControl() = default;

void MapControl::addLayer(MapLayer* layer)
{
    if (!layer || m_layers.contains(layer))
        return;
    m_layers.append(layer);
    if (layer->mapadapter())
        layer->mapadapter()->setZoom(m_zoom);
    connect(layer, &MapLayer::updateRequest, this, QOverload<>::of(&QWidget::update));
    update();
}

void MapControl::removeLayer(MapLayer* layer)
{
    if (!layer || m_layers.removeAll(layer) == 0)
        return;
    layer->disconnect(this);
    update();
}

QList<MapLayer*> MapControl::layers() const
{
    QList<MapLayer*> list;
    for (const QPointer<MapLayer>& layer : m_layers) {
        if (layer)
            list.append(layer);
    }
    return list;
}

MapLayer* MapControl::layer(const QString& name) const
{
    for (MapLayer* candidate : layers()) {
        if (candidate->layername() == name)
            return candidate;
    }
    return nullptr;
}

void MapControl::setView(const QPointF& coordinate)
{
    moveView(coordinate, m_zoom);
}

void MapControl::setZoom(int zoom)
{
    moveView(m_centre, zoom);
}

void MapControl::showScale(bool visible)
{
    m_scale = visible;
    update();
}

void MapControl::showCrossHairs(bool visible)
{
    m_crossHairs = visible;
    update();
}

void MapControl::enablePersistentCache(const QDir& path, int diskSizeMB)
{
    m_loader->setDiskCache(path.absolutePath(), qint64(diskSizeMB) * 1024 * 1024);
}

QPoint MapControl::centrePixel() const
{
    const QPointF p = MapAdapter::worldPixel(m_centre, m_zoom);
    return QPoint(int(std::floor(p.x() + 0.5)), int(std::floor(p.y() + 0.5)));
}

QPointF MapControl::coordinateAt(const QPoint& pixel) const
{
    return MapAdapter::worldCoordinate(QPointF(centrePixel() + pixel - screenMiddle()), m_zoom);
}

QPoint MapControl::pixelAt(const QPointF& coordinate) const
{
    const QPointF p = MapAdapter::worldPixel(coordinate, m_zoom);
    return QPoint(int(std::floor(p.x() + 0.5)), int(std::floor(p.y() + 0.5))) - centrePixel() + screenMiddle();
}

void MapControl::moveView(const QPointF& coordinate, int zoom)
{
    const QPointF centre(qBound(-180.0, coordinate.x(), 180.0),
                         qBound(-MapAdapter::maxLatitude, coordinate.y(), MapAdapter::maxLatitude));
    zoom = qBound(MapAdapter::minZoom, zoom, MapAdapter::maxZoom);
    if (centre == m_centre && zoom == m_zoom)
        return;
    m_centre = centre;
    m_zoom = zoom;
    for (MapLayer* layer : layers()) {
        if (layer->mapadapter())
            layer->mapadapter()->setZoom(zoom);
    }
    update();
    emit viewChanged(m_centre, m_zoom);
}

void MapControl::zoomAt(const QPoint& pixel, int zoom)
{
    zoom = qBound(MapAdapter::minZoom, zoom, MapAdapter::maxZoom);
    if (zoom == m_zoom)
        return;
    // The coordinate under the cursor stays under it.
    const QPointF anchor = coordinateAt(pixel);
    const QPointF centre = MapAdapter::worldPixel(anchor, zoom) - QPointF(pixel - screenMiddle());
    moveView(MapAdapter::worldCoordinate(centre, zoom), zoom);
}

void MapControl::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(224, 224, 224));
    // Widget pixel = display point + offset; the whole widget is drawn and
    // its tiles wanted, whatever part needs repainting.
    const QPoint offset = screenMiddle() - centrePixel();
    const QRect viewport = rect().translated(-offset);
    QStringList wanted;
    for (MapLayer* layer : layers()) {
        MapAdapter* adapter = layer->mapadapter();
        if (!layer->isVisible() || !adapter)
            continue;
        adapter->setZoom(m_zoom);
        drawTiles(painter, *adapter, offset, viewport, &wanted);
        painter.save();
        painter.translate(offset);
        layer->drawGeometries(&painter, viewport, offset);
        painter.restore();
    }
    m_loader->want(wanted);
    if (m_scale)
        drawScale(painter);
    if (m_crossHairs)
        drawCrossHairs(painter);
}

void MapControl::drawTiles(QPainter& painter, const MapAdapter& adapter, const QPoint& offset,
                           const QRect& viewport, QStringList* wanted)
{
    const int size = MapAdapter::tileSize;
    const int last = MapAdapter::tilesPerSide(m_zoom) - 1;
    const int left = qMax(0, floorDiv(viewport.left(), size));
    const int right = qMin(last, floorDiv(viewport.right(), size));
    const int top = qMax(0, floorDiv(viewport.top(), size));
    const int bottom = qMin(last, floorDiv(viewport.bottom(), size));

    struct Tile
    {
        int x;
        int y;
        int distance;
    };
    QVector<Tile> tiles;
    const QPoint centre = viewport.center();
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x)
            tiles.append({x, y, (QPoint(x * size + size / 2, y * size + size / 2) - centre).manhattanLength()});
    }
    std::sort(tiles.begin(), tiles.end(), [](const Tile& a, const Tile& b) { return a.distance < b.distance; });
    for (const Tile& tile : qAsConst(tiles)) {
        const QString url = adapter.tileUrl(tile.x, tile.y, m_zoom).toString();
        wanted->append(url);
        const QPoint target = QPoint(tile.x * size, tile.y * size) + offset;
        const QImage image = m_loader->image(url);
        if (!image.isNull()) {
            painter.drawImage(target, image);
            continue;
        }
        // Until it comes, the quarter of the tile one level up stands in.
        const QImage parent =
            m_zoom > 0 ? m_loader->image(adapter.tileUrl(tile.x / 2, tile.y / 2, m_zoom - 1).toString()) : QImage();
        if (!parent.isNull())
            painter.drawImage(QRect(target, QSize(size, size)), parent,
                              QRect(tile.x % 2 * size / 2, tile.y % 2 * size / 2, size / 2, size / 2));
    }
}

void MapControl::drawScale(QPainter& painter)
{
    // Ground length of a pixel at the centre's latitude.
    const double metresPerPixel =
        156543.03392804097 * std::cos(qDegreesToRadians(m_centre.y())) / MapAdapter::tilesPerSide(m_zoom);
    const double limit = metresPerPixel * 100;
    const double power = std::pow(10.0, std::floor(std::log10(limit)));
    double distance = power;
    for (double step : {5.0, 2.0}) {
        if (power * step <= limit) {
            distance = power * step;
            break;
        }
    }
    const int length = qRound(distance / metresPerPixel);
    const QString text = distance >= 1000 ? tr("%1 km").arg(distance / 1000) : tr("%1 m").arg(distance);

    const int x = 10;
    const int y = height() - 10;
    painter.save();
    // A light backing keeps the bar readable on dark imagery.
    painter.fillRect(QRect(x - 4, y - 26, qMax(length, painter.fontMetrics().horizontalAdvance(text)) + 8, 30),
                     QColor(255, 255, 255, 160));
    painter.setPen(QPen(Qt::black, 2));
    painter.drawLine(x, y, x + length, y);
    painter.drawLine(x, y, x, y - 6);
    painter.drawLine(x + length, y, x + length, y - 6);
    painter.drawText(QRect(x, y - 24, length, 18), Qt::AlignHCenter | Qt::AlignBottom, text);
    painter.restore();
}

void MapControl::drawCrossHairs(QPainter& painter)
{
    const QPoint m = screenMiddle();
    painter.save();
    painter.setPen(QPen(Qt::black, 1));
    painter.drawLine(m.x() - 10, m.y(), m.x() + 10, m.y());
    painter.drawLine(m.x(), m.y() - 10, m.x(), m.y() + 10);
    painter.restore();
}

void MapControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressed = true;
        m_moved = false;
        m_lastPos = event->pos();
    }
    emit mouseEventCoordinate(event, coordinateAt(event->pos()));
}

void MapControl::mouseMoveEvent(QMouseEvent* event)
{
    if (m_pressed && (event->buttons() & Qt::LeftButton) && event->pos() != m_lastPos) {
        m_moved = true;
        if (m_mouseMode == Panning)
            moveView(MapAdapter::worldCoordinate(QPointF(centrePixel() + m_lastPos - event->pos()), m_zoom), m_zoom);
        m_lastPos = event->pos();
    }
    emit mouseEventCoordinate(event, coordinateAt(event->pos()));
}

void MapControl::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_pressed) {
        m_pressed = false;
        if (!m_moved) {
            const QPointF coordinate = coordinateAt(event->pos());
            for (MapLayer* layer : layers())
                layer->clicked(coordinate, event->pos());
        }
    }
    emit mouseEventCoordinate(event, coordinateAt(event->pos()));
}

void MapControl::wheelEvent(QWheelEvent* event)
{
    const int delta = event->angleDelta().y();
    event->accept();
    emit mouseWheel(delta);
    if (!m_wheelZoom || delta == 0)
        return;
    if ((m_wheelRest > 0) != (delta > 0))
        m_wheelRest = 0;
    m_wheelRest += delta;
    const int steps = m_wheelRest / wheelNotch;
    if (steps == 0)
        return;
    m_wheelRest -= steps * wheelNotch;
    zoomAt(event->position().toPoint(), m_zoom + steps);
}

} // namespace qmapcontrol
