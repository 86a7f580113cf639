#include "mapcontrol.h"

#include "localtilesource.h"
#include "mapadapter.h"
#include "maplayer.h"
#include "tileloader.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>

namespace qmapcontrol {

namespace {

const int wheelNotch = 120;
// More tiles than this for one layer means the map is zoomed out too far
// for its source's levels.
const int maxTilesInView = 400;
// Kept free around the places the view is fitted to.
const int fitMargin = 40;

QPoint rounded(const QPointF& p)
{
    return QPoint(int(std::floor(p.x() + 0.5)), int(std::floor(p.y() + 0.5)));
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
    connect(m_loader, &TileLoader::problemsChanged, this, QOverload<>::of(&QWidget::update));
}

MapControl::~MapControl() = default;

void MapControl::addLayer(MapLayer* layer)
{
    if (!layer || m_layers.contains(layer))
        return;
    m_layers.append(layer);
    if (MapAdapter* adapter = layer->mapadapter()) {
        adapter->setZoom(m_zoom);
        if (LocalTileSource* source = adapter->localSource()) {
            m_loader->addLocalSource(source);
            connect(source, &LocalTileSource::stateChanged, this, QOverload<>::of(&QWidget::update));
        }
    }
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

void MapControl::setViewAndZoomIn(const QList<QPointF>& coordinates)
{
    if (coordinates.isEmpty())
        return;
    QRectF box(MapAdapter::worldPixel(coordinates.first(), 0), QSizeF(0, 0));
    for (const QPointF& coordinate : coordinates) {
        const QPointF p = MapAdapter::worldPixel(coordinate, 0);
        box.setLeft(qMin(box.left(), p.x()));
        box.setRight(qMax(box.right(), p.x()));
        box.setTop(qMin(box.top(), p.y()));
        box.setBottom(qMax(box.bottom(), p.y()));
    }
    const double w = qMax(1, width() - 2 * fitMargin);
    const double h = qMax(1, height() - 2 * fitMargin);
    int zoom = MapAdapter::maxZoom;
    while (zoom > MapAdapter::minZoom
           && (box.width() * MapAdapter::tilesPerSide(zoom) > w || box.height() * MapAdapter::tilesPerSide(zoom) > h))
        --zoom;
    moveView(MapAdapter::worldCoordinate(box.center(), 0), zoom);
}

void MapControl::scroll(const QPoint& pixels)
{
    moveView(MapAdapter::worldCoordinate(QPointF(centrePixel() + pixels), m_zoom), m_zoom);
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
    return rounded(MapAdapter::worldPixel(m_centre, m_zoom));
}

QPointF MapControl::coordinateAt(const QPoint& pixel) const
{
    return MapAdapter::worldCoordinate(QPointF(centrePixel() + pixel - screenMiddle()), m_zoom);
}

QPoint MapControl::pixelAt(const QPointF& coordinate) const
{
    return rounded(MapAdapter::worldPixel(coordinate, m_zoom)) - centrePixel() + screenMiddle();
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

bool MapControl::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QPoint point = help->pos() - screenMiddle() + centrePixel();
    QString text;
    const QList<MapLayer*> all = layers();
    for (int i = all.size() - 1; i >= 0 && text.isEmpty(); --i) {
        if (all.at(i)->isVisible())
            text = all.at(i)->toolTipAt(point);
    }
    if (text.isEmpty() && m_attributionRect.contains(help->pos()))
        text = m_attribution;
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), text, this);
    return true;
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
    QStringList ring;
    QList<const MapAdapter*> shown;
    QList<const MapAdapter*> tooFar;
    QSet<QString> lacking;
    for (MapLayer* layer : layers()) {
        MapAdapter* adapter = layer->mapadapter();
        if (!layer->isVisible() || !adapter)
            continue;
        adapter->setZoom(m_zoom);
        shown << adapter;
        if (!drawTiles(painter, *adapter, offset, viewport, &wanted, &ring, &lacking))
            tooFar << adapter;
        painter.save();
        painter.translate(offset);
        layer->drawGeometries(&painter, viewport, offset);
        painter.restore();
    }
    m_loader->want(wanted + ring);
    const int scaleRight = m_scale ? drawScale(painter) : 0;
    if (m_crossHairs)
        drawCrossHairs(painter);
    drawAttribution(painter, shown, scaleRight);
    m_notices = collectNotices(shown, tooFar, lacking);
    drawNotices(painter);
}

bool MapControl::drawTiles(QPainter& painter, const MapAdapter& adapter, const QPoint& offset,
                           const QRect& viewport, QStringList* wanted, QStringList* ring, QSet<QString>* lacking)
{
    // On dense screens the next level's tiles at half size are as sharp as
    // the screen; beyond the source's levels the nearest one is scaled.
    const int crisp = devicePixelRatioF() > 1.0 ? 1 : 0;
    const int lowest = adapter.minimumZoom();
    const int zoom = qBound(lowest, m_zoom + crisp, adapter.maximumZoom());
    const double size = std::ldexp(double(MapAdapter::tileSize), m_zoom - zoom);
    const int last = MapAdapter::tilesPerSide(zoom) - 1;
    const int left = int(std::floor(viewport.left() / size));
    const int right = int(std::floor((viewport.left() + viewport.width() - 1) / size));
    const int top = int(std::floor(viewport.top() / size));
    const int bottom = int(std::floor((viewport.top() + viewport.height() - 1) / size));
    if (double(right - left + 1) * (bottom - top + 1) > maxTilesInView)
        return false;

    struct Tile
    {
        int x;
        int y;
        double distance;
    };
    QVector<Tile> tiles;
    const QPointF centre = QRectF(viewport).center();
    for (int y = qMax(0, top); y <= qMin(last, bottom); ++y) {
        for (int x = qMax(0, left); x <= qMin(last, right); ++x) {
            const QPointF middle((x + 0.5) * size, (y + 0.5) * size);
            tiles.append({x, y, (middle - centre).manhattanLength()});
        }
    }
    std::sort(tiles.begin(), tiles.end(), [](const Tile& a, const Tile& b) { return a.distance < b.distance; });

    painter.save();
    const bool stretched = size * devicePixelRatioF() != MapAdapter::tileSize;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, stretched);
    for (const Tile& tile : qAsConst(tiles)) {
        const QString key = adapter.tileKey(tile.x, tile.y, zoom);
        wanted->append(key);
        const QRectF target(offset.x() + tile.x * size, offset.y() + tile.y * size, size, size);
        const QImage image = m_loader->image(key);
        if (!image.isNull()) {
            if (size == MapAdapter::tileSize)
                painter.drawImage(target.topLeft().toPoint(), image);
            else
                painter.drawImage(target, image);
            continue;
        }
        lacking->insert(QUrl(key).authority());
        // Until it comes, the quarter of the tile one level up stands in.
        const QImage parent = zoom > lowest ? m_loader->image(adapter.tileKey(tile.x / 2, tile.y / 2, zoom - 1))
                                            : QImage();
        const int half = MapAdapter::tileSize / 2;
        if (!parent.isNull())
            painter.drawImage(target, parent, QRectF(tile.x % 2 * half, tile.y % 2 * half, half, half));
    }
    painter.restore();

    // One ring of tiles around the view, so that a short pan finds them.
    for (int y = top - 1; y <= bottom + 1; ++y) {
        for (int x = left - 1; x <= right + 1; ++x) {
            const bool inside = x >= left && x <= right && y >= top && y <= bottom;
            if (!inside && x >= 0 && y >= 0 && x <= last && y <= last)
                ring->append(adapter.tileKey(x, y, zoom));
        }
    }
    return true;
}

QStringList MapControl::collectNotices(const QList<const MapAdapter*>& adapters,
                                       const QList<const MapAdapter*>& tooFar, const QSet<QString>& lacking)
{
    const QPointF northWest = coordinateAt(QPoint(0, 0));
    const QPointF southEast = coordinateAt(QPoint(width(), height()));
    const QRectF view(QPointF(northWest.x(), southEast.y()), QPointF(southEast.x(), northWest.y()));
    QStringList lines;
    for (const MapAdapter* adapter : adapters) {
        const QString error = adapter->error();
        if (!error.isEmpty())
            lines << error;
        else if (tooFar.contains(adapter))
            lines << tr("Zoom in to see this map");
        else if (!adapter->bounds().intersects(view))
            lines << tr("No tiles here: this area lies outside the map");
    }
    // A server is named only while tiles on screen are missing for it.
    for (const QString& host : lacking) {
        const QString problem = m_loader->problem(host);
        if (!problem.isEmpty())
            lines << problem;
    }
    lines.removeDuplicates();
    return lines;
}

void MapControl::drawNotices(QPainter& painter)
{
    m_noticeRect = QRect();
    if (m_notices.isEmpty())
        return;
    const QString text = m_notices.join(QLatin1Char('\n'));
    const int room = qMax(50, width() - 40);
    QRect box = painter.fontMetrics().boundingRect(QRect(0, 0, room, height()), Qt::TextWordWrap, text);
    box.adjust(-10, -6, 10, 6);
    box.moveTo((width() - box.width()) / 2, 10);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(214, 158, 0), 1.5));
    painter.setBrush(QColor(255, 243, 205, 240));
    painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.setPen(QColor(70, 50, 0));
    painter.drawText(box.adjusted(10, 6, -10, -6), Qt::TextWordWrap | Qt::AlignCenter, text);
    painter.restore();
    m_noticeRect = box;
}

void MapControl::drawAttribution(QPainter& painter, const QList<const MapAdapter*>& adapters, int left)
{
    QStringList texts;
    m_attributionUrl = QUrl();
    for (const MapAdapter* adapter : adapters) {
        const QString text = adapter->attribution();
        if (!text.isEmpty() && !texts.contains(text))
            texts << text;
        if (m_attributionUrl.isEmpty())
            m_attributionUrl = adapter->attributionUrl();
    }
    m_attribution = texts.join(QStringLiteral(" | "));
    m_attributionRect = QRect();
    if (m_attribution.isEmpty())
        return;

    painter.save();
    QFont font = painter.font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    font.setUnderline(m_attributionUrl.isValid());
    painter.setFont(font);
    const QFontMetrics metrics(font);
    // Never over the scale: a narrow map shortens the text instead.
    const int room = qMax(0, width() - left - 4 - 12);
    const QString text = metrics.elidedText(m_attribution, Qt::ElideRight, room);
    const QSize size(metrics.horizontalAdvance(text) + 12, metrics.height() + 4);
    m_attributionRect = QRect(QPoint(width() - size.width(), height() - size.height()), size);
    painter.fillRect(m_attributionRect, QColor(255, 255, 255, 215));
    painter.setPen(m_attributionUrl.isValid() ? QColor(0, 70, 160) : QColor(40, 40, 40));
    painter.drawText(m_attributionRect, Qt::AlignCenter, text);
    painter.restore();
}

int MapControl::drawScale(QPainter& painter)
{
    // Ground length of a pixel at the centre's latitude.
    const double metresPerPixel = 1.0 / MapAdapter::metresToPixels(1.0, m_centre.y(), m_zoom);
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
    const QRect backing(x - 4, y - 26, qMax(length, painter.fontMetrics().horizontalAdvance(text)) + 8, 30);
    painter.save();
    // A light backing keeps the bar readable on dark imagery.
    painter.fillRect(backing, QColor(255, 255, 255, 160));
    painter.setPen(QPen(Qt::black, 2));
    painter.drawLine(x, y, x + length, y);
    painter.drawLine(x, y, x, y - 6);
    painter.drawLine(x + length, y, x + length, y - 6);
    painter.drawText(QRect(x, y - 24, length, 18), Qt::AlignHCenter | Qt::AlignBottom, text);
    painter.restore();
    return backing.right() + 1;
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

void MapControl::hideEvent(QHideEvent* event)
{
    // A map nobody sees fetches nothing.
    m_loader->want(QStringList());
    QWidget::hideEvent(event);
}

void MapControl::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    if (!m_keyboard || modifiers != Qt::NoModifier) {
        event->ignore();
        return;
    }
    const int step = qMax(32, qMin(width(), height()) / 4);
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
    case Qt::Key_PageUp: zoomIn(); break;
    case Qt::Key_Minus:
    case Qt::Key_PageDown: zoomOut(); break;
    case Qt::Key_Left: scroll(QPoint(-step, 0)); break;
    case Qt::Key_Right: scroll(QPoint(step, 0)); break;
    case Qt::Key_Up: scroll(QPoint(0, -step)); break;
    case Qt::Key_Down: scroll(QPoint(0, step)); break;
    default: event->ignore(); return;
    }
    event->accept();
}

void MapControl::mousePressEvent(QMouseEvent* event)
{
    // The attribution is a link, not a place on the map.
    if (m_attributionRect.contains(event->pos())) {
        if (event->button() == Qt::LeftButton && m_attributionUrl.isValid())
            QDesktopServices::openUrl(m_attributionUrl);
        return;
    }
    if (event->button() == Qt::LeftButton) {
        m_pressed = true;
        m_moved = false;
        m_pressPos = event->pos();
        m_lastPos = event->pos();
    }
    emit mouseEventCoordinate(event, coordinateAt(event->pos()));
}

void MapControl::mouseMoveEvent(QMouseEvent* event)
{
    if (m_pressed && (event->buttons() & Qt::LeftButton)) {
        // A hand's tremble is still a click.
        if (!m_moved && (event->pos() - m_pressPos).manhattanLength() >= QApplication::startDragDistance())
            m_moved = true;
        if (m_moved && event->pos() != m_lastPos) {
            if (m_mouseMode == Panning)
                moveView(MapAdapter::worldCoordinate(QPointF(centrePixel() + m_lastPos - event->pos()), m_zoom),
                         m_zoom);
            m_lastPos = event->pos();
        }
    } else if (m_attributionUrl.isValid() && m_attributionRect.contains(event->pos())) {
        setCursor(Qt::PointingHandCursor);
    } else {
        unsetCursor();
    }
    emit mouseEventCoordinate(event, coordinateAt(event->pos()));
}

void MapControl::mouseReleaseEvent(QMouseEvent* event)
{
    const bool pressedHere = m_pressed;
    if (event->button() == Qt::LeftButton && m_pressed) {
        m_pressed = false;
        if (!m_moved) {
            const QPointF coordinate = coordinateAt(event->pos());
            for (MapLayer* layer : layers())
                layer->clicked(coordinate, event->pos());
        }
    }
    // The release of a press on the attribution is no click on the map.
    if (pressedHere || event->button() != Qt::LeftButton)
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
    const bool aroundCentre = event->modifiers() & Qt::ControlModifier;
    zoomAt(aroundCentre ? screenMiddle() : event->position().toPoint(), m_zoom + steps);
}

} // namespace qmapcontrol
