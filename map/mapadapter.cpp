#include "mapadapter.h"

#include "geo.h"

#include <QtMath>

namespace qmapcontrol {

const char* const MapAdapter::serverVariable = "VOSK_TILE_SERVER";

MapAdapter::MapAdapter(const QString& server, bool redirectable)
    : m_server(server)
{
    const QString redirect =
        redirectable ? QString::fromLocal8Bit(qgetenv(serverVariable)).trimmed() : QString();
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

double MapAdapter::metresToPixels(double metres, double latitude, int zoom)
{
    // The world's width in pixels spans the circumference at the equator;
    // Mercator stretches a latitude's circle by 1 / cos to the same width.
    const double worldPixels = double(tileSize) * tilesPerSide(zoom);
    const double circumference = 2.0 * M_PI * geo::earthRadiusMetres
        * std::cos(qDegreesToRadians(qBound(-maxLatitude, latitude, maxLatitude)));
    return metres * worldPixels / circumference;
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

QString MapAdapter::tileKey(int x, int y, int zoom) const
{
    return tileUrl(x, y, zoom).toString();
}

QRectF MapAdapter::bounds() const
{
    return QRectF(QPointF(-180.0, -maxLatitude), QPointF(180.0, maxLatitude));
}

void MapAdapter::setAttribution(const QString& text, const QUrl& url)
{
    m_attribution = text;
    m_attributionUrl = url;
}

} // namespace qmapcontrol
