#include "mapadapter.h"

#include <QtMath>

namespace qmapcontrol {

const char* const MapAdapter::serverVariable = "VOSK_TILE_SERVER";

MapAdapter::MapAdapter(const QString& server)
    : m_server(server)
{
    const QString redirect = QString::fromLocal8Bit(qgetenv(serverVariable)).trimmed();
    if (redirect.isEmpty())
        return;
    const QUrl url(redirect, QUrl::StrictMode);
    if (url.isValid() && !url.scheme().isEmpty() && !url.host().isEmpty())
        m_server = url.adjusted(QUrl::StripTrailingSlash);
    else
        qWarning("Ignoring %s: not a server URL", serverVariable);
}

MapAdapter::~MapAdapter() = default;

void MapAdapter::setZoom(int zoom)
{
    m_zoom = qBound(minZoom, zoom, maxZoom);
}

QPointF MapAdapter::worldPixel(const QPointF& coordinate, int zoom)
{
    const double size = double(tileSize) * tilesPerSide(zoom);
    const double lat = qDegreesToRadians(qBound(-maxLatitude, coordinate.y(), maxLatitude));
    const double x = (coordinate.x() + 180.0) / 360.0;
    const double y = (1.0 - std::log(std::tan(lat) + 1.0 / std::cos(lat)) / M_PI) / 2.0;
    return QPointF(x * size, y * size);
}

QPointF MapAdapter::worldCoordinate(const QPointF& pixel, int zoom)
{
    const double size = double(tileSize) * tilesPerSide(zoom);
    const double lon = pixel.x() / size * 360.0 - 180.0;
    const double lat = qRadiansToDegrees(std::atan(std::sinh(M_PI * (1.0 - 2.0 * pixel.y() / size))));
    return QPointF(lon, lat);
}

QPoint MapAdapter::coordinateToDisplay(const QPointF& coordinate) const
{
    const QPointF p = worldPixel(coordinate, m_zoom);
    return QPoint(int(std::floor(p.x() + 0.5)), int(std::floor(p.y() + 0.5)));
}

QPointF MapAdapter::displayToCoordinate(const QPoint& point) const
{
    return worldCoordinate(QPointF(point), m_zoom);
}

QUrl MapAdapter::tileUrl(int x, int y, int zoom) const
{
    return QUrl(m_server.toString() + query(x, y, zoom));
}

} // namespace qmapcontrol
