#ifndef VOSK_MAPADAPTER_H
#define VOSK_MAPADAPTER_H

#include <QPoint>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QUrl>

namespace qmapcontrol {

class LocalTileSource;

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
    // A ground length at `latitude` in pixels at `zoom`, on the sphere the
    // stop zones are judged on.
    static double metresToPixels(double metres, double latitude, int zoom);

    // Where tile x, y of `zoom` is fetched from: the service's own server, or
    // the one named by the environment variable below.
    virtual QUrl tileUrl(int x, int y, int zoom) const;
    // What the tile loader knows the tile by.
    virtual QString tileKey(int x, int y, int zoom) const;
    QString host() const { return m_server.host(); }

    // The zoom levels the service has tiles for; the map scales the nearest
    // of them beyond these.
    virtual int minimumZoom() const { return minZoom; }
    virtual int maximumZoom() const { return maxZoom; }
    // The area with tiles: x from west to east, y from south to north.
    virtual QRectF bounds() const;
    // Why the service shows nothing at all, or empty.
    virtual QString error() const { return QString(); }
    // Tiles read on the spot instead of fetched, or null.
    virtual LocalTileSource* localSource() const { return nullptr; }

    // The notice the service asks to be shown with its tiles, and where a
    // click on it leads (may be empty).
    virtual QString attribution() const { return m_attribution; }
    virtual QUrl attributionUrl() const { return m_attributionUrl; }
    void setAttribution(const QString& text, const QUrl& url = QUrl());

    // "scheme://host[:port][/prefix]": sends the tiles of every built-in
    // service to one other server (a mirror, an offline installation, a
    // test). Read when an adapter is created.
    static const char* const serverVariable;

protected:
    // `server` is "scheme://host" of the service.
    explicit MapAdapter(const QString& server, bool redirectable = true);
    // Path and query of a tile, starting with '/'.
    virtual QString query(int x, int y, int zoom) const = 0;

private:
    Q_DISABLE_COPY(MapAdapter)

    QUrl m_server;
    int m_zoom = minZoom;
    QString m_attribution;
    QUrl m_attributionUrl;
};

} // namespace qmapcontrol

#endif
