#ifndef VOSK_TILESERVER_H
#define VOSK_TILESERVER_H

#include <QElapsedTimer>
#include <QObject>
#include <QRgb>
#include <QStringList>
#include <QTcpServer>

// A loopback HTTP server for the map's tile services. Every tile is a PNG
// showing its service and z/x/y, with a 16-pixel block in its top row that
// carries the numbers as colour (red x, green y, blue z, each modulo 256);
// the transparent hybrid overlay has its block 32 pixels further right.
// Requests are recorded as "kind/z/x/y": "osm", or Google's "m", "s", "h".
class cTileServer : public QObject
{
    Q_OBJECT

public:
    explicit cTileServer(QObject* parent = nullptr);

    bool start();
    // Stops listening and cuts every connection; start() reopens the port.
    void stop();
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }
    quint16 port() const { return m_port; }

    QStringList requests() const { return m_requests; }
    // When `tile` was asked for, in milliseconds since the server was made.
    QList<qint64> requestTimes(const QString& tile) const;
    void clearRequests()
    {
        m_requests.clear();
        m_times.clear();
    }
    QByteArray lastUserAgent() const { return m_userAgent; }

    void setDelay(int ms) { m_delay = ms; }
    void setFailing(bool failing) { m_failing = failing; }

    static QRgb blockColour(int z, int x, int y) { return qRgb(x & 255, y & 255, z & 255); }

private:
    void answer(QTcpSocket* socket);
    // "kind/z/x/y" of a request path, or an empty string.
    static QString tileOf(const QString& path);

    QTcpServer m_server;
    quint16 m_port = 0;
    QStringList m_requests;
    QList<qint64> m_times;
    QElapsedTimer m_clock;
    QByteArray m_userAgent;
    int m_delay = 0;
    bool m_failing = false;
};

#endif
