#ifndef VOSK_MAPADAPTER_H
#define VOSK_MAPADAPTER_H

#include <QPoint>
#include <QPointF>
#include <QString>
#include <QUrl>

namespace qmapcontrol {

// One tile service on the Web Mercator grid of 256-pixel tiles. Coordinates
// are x = longitude, y = latitude in degrees; display points are pixels of
// the whole world at the adapter's current zoom, counted from its top-left
// corner. The map control keeps the zoom of its adapters in step with its own.
class MapAdapter
{
public:
    static constexpr int minZoom = 0;
    static constexpr int maxZoom = 19;
    static constexpr int tileSize = 256;
    // Mercator's limit: the latitude at which the world becomes square.
    static constexpr double maxLatitude = 85.0511287798066;

    virtual ~MapAdapter();

    int currentZoom() const { return m_zoom; }
    void setZoom(int zoom);

    // Display points are rounded to the nearest pixel; the inverse is exact,
    // so a pixel turned into a coordinate and back is the same pixel.
    QPoint coordinateToDisplay(const QPointF& coordinate) const;
    QPointF displayToCoordinate(const QPoint& point) const;

    // The same projection in unrounded world pixels at any zoom.
    static QPointF worldPixel(const QPointF& coordinate, int zoom);
    static QPointF worldCoordinate(const QPointF& pixel, int zoom);
    static int tilesPerSide(int zoom) { return 1 << zoom; }

    // Where tile x, y of `zoom` is fetched from: the service's own server, or
    // the one named by the environment variable below.
    QUrl tileUrl(int x, int y, int zoom) const;
    QString host() const { return m_server.host(); }

    // "scheme://host[:port][/prefix]": sends the tiles of every service to one
    // other server (a mirror, an offline installation, a test). Read when an
    // adapter is created.
    static const char* const serverVariable;

protected:
    // `server` is "scheme://host" of the service.
    explicit MapAdapter(const QString& server);
    // Path and query of a tile, starting with '/'.
    virtual QString query(int x, int y, int zoom) const = 0;

private:
    Q_DISABLE_COPY(MapAdapter)

    QUrl m_server;
    int m_zoom = minZoom;
};

} // namespace qmapcontrol

#endif
