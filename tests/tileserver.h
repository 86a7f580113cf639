#ifndef VOSK_TILESERVER_H
#define VOSK_TILESERVER_H

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QRgb>
#include <QStringList>
#include <QTcpServer>

// A loopback HTTP server for the map's tile services. Every tile is a PNG
// showing its service and z/x/y, with a 16-pixel block in its top row that
// carries the numbers as colour (red x, green y, blue z, each modulo 256);
// the transparent hybrid overlay has its block 32 pixels further right.
// Requests are recorded as "kind/z/x/y": "osm", or Google's "m", "s", "h".
// Tiles carry an ETag and are answered 304 when it is sent back.
class cTileServer : public QObject
{
    Q_OBJECT

public:
    explicit cTileServer(QObject* parent = nullptr);

    bool start();
    bool isListening() const { return m_server.isListening(); }
    // Stops listening and cuts every connection; start() reopens the port.
    void stop();
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }
    QString host() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }
    quint16 port() const { return m_port; }

    QStringList requests() const { return m_requests; }
    // No connection open and none opened, used or closed for `ms`. A map's
    // network thread winds down after the map is gone, so its last requests
    // can come late; wait for this before clearing what the next check reads.
    bool isQuiet(int ms) const;
    // The request lines and headers, in the order of `requests()`.
    QList<QByteArray> heads() const { return m_heads; }
    // When `tile` was asked for, in milliseconds since the server was made.
    QList<qint64> requestTimes(const QString& tile) const;
    QList<qint64> times() const { return m_times; }
    qint64 elapsed() const { return m_clock.elapsed(); }
    void clearRequests()
    {
        m_requests.clear();
        m_times.clear();
        m_heads.clear();
        m_mostAtOnce = 0;
    }
    QByteArray lastUserAgent() const { return m_userAgent; }
    // The most requests it had unanswered at one time since cleared.
    int mostAtOnce() const { return m_mostAtOnce; }

    void setDelay(int ms) { m_delay = ms; }
    // Answers every tile with this status and extra header lines ("Name:
    // value\r\n" each); 0 serves the tiles.
    void setStatus(int status, const QByteArray& headers = QByteArray())
    {
        m_status = status;
        m_extraHeaders = headers;
    }
    // Closes each connection without an answer.
    void setDropping(bool dropping) { m_dropping = dropping; }
    // Header lines sent with every tile, such as "Cache-Control: max-age=0\r\n".
    void setTileHeaders(const QByteArray& headers) { m_tileHeaders = headers; }

    static QRgb blockColour(int z, int x, int y) { return qRgb(x & 255, y & 255, z & 255); }
    static QByteArray tilePng(const QString& kind, int z, int x, int y);

private:
    void answer(QTcpSocket* socket);
    // "kind/z/x/y" of a request path, or an empty string.
    static QString tileOf(const QString& path);

    QTcpServer m_server;
    quint16 m_port = 0;
    QStringList m_requests;
    QList<qint64> m_times;
    QList<QByteArray> m_heads;
    QElapsedTimer m_clock;
    qint64 m_lastActivity = 0;
    QByteArray m_userAgent;
    int m_delay = 0;
    int m_status = 0;
    QByteArray m_extraHeaders;
    QByteArray m_tileHeaders;
    bool m_dropping = false;
    int m_atOnce = 0;
    int m_mostAtOnce = 0;
};

// The tiles of `kind` a view of `size` shows around `centre` ("kind/z/x/y"),
// with the widget pixel of each tile's corner, and with `ring` one ring of
// tiles around them; the projection is written out again so that the map
// is not checked against its own arithmetic.
QMap<QString, QPoint> visibleTiles(const QString& kind, const QPointF& centre, int zoom, const QSize& size,
                                   bool ring = false);

// Whether each tile of `kind` whose colour block is wholly on the map (and
// clear of the bottom band with the scale and the attribution) shows the
// block exactly in its place.
bool drawnInPlace(QWidget* map, const QString& kind, const QPointF& centre, int zoom);

// Writes an MBTiles file of the server's OSM pictures for zoom 1 and 2.
bool writeMbtiles(const QString& path, const QString& bounds, const QString& attribution);

#endif
