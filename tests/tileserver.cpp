#include "tileserver.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QTimer>
#include <QUrlQuery>
#include <QWidget>
#include <QtMath>

QByteArray cTileServer::tilePng(const QString& kind, int z, int x, int y)
{
    const bool overlay = kind == QLatin1String("h");
    const bool photo = overlay || kind == QLatin1String("s");
    QImage image(256, 256, QImage::Format_ARGB32);
    image.fill(overlay ? QColor(Qt::transparent) : photo ? QColor(60, 90, 50) : QColor(236, 234, 226));
    QPainter painter(&image);
    painter.setPen(photo ? QColor(255, 220, 60) : QColor(90, 90, 90));
    // The overlay leaves the corners free, so the blocks beneath show whole.
    if (overlay)
        painter.drawLine(0, 128, 255, 128);
    else
        painter.drawRect(0, 0, 255, 255);
    painter.drawText(image.rect(), Qt::AlignCenter, QStringLiteral("%1\n%2/%3/%4").arg(kind).arg(z).arg(x).arg(y));
    painter.fillRect(overlay ? 32 : 0, 0, 16, 16, QColor(cTileServer::blockColour(z, x, y)));
    painter.end();
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    return png.data();
}

cTileServer::cTileServer(QObject* parent)
    : QObject(parent)
{
    m_clock.start();
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            m_lastActivity = m_clock.elapsed();
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                m_lastActivity = m_clock.elapsed();
                answer(socket);
            });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_lastActivity = m_clock.elapsed();
                if (socket->property("waiting").toBool())
                    --m_atOnce;
                socket->setProperty("waiting", false);
                socket->deleteLater();
            });
        }
    });
}

bool cTileServer::start()
{
    if (!m_server.listen(QHostAddress::LocalHost, m_port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

bool cTileServer::isQuiet(int ms) const
{
    for (const QTcpSocket* socket : findChildren<QTcpSocket*>()) {
        if (socket->state() == QAbstractSocket::ConnectedState)
            return false;
    }
    return m_clock.elapsed() - m_lastActivity >= ms;
}

void cTileServer::stop()
{
    m_server.close();
    for (QTcpSocket* socket : findChildren<QTcpSocket*>())
        socket->abort();
}

QList<qint64> cTileServer::requestTimes(const QString& tile) const
{
    QList<qint64> times;
    for (int i = 0; i < m_requests.size(); ++i) {
        if (m_requests.at(i) == tile)
            times << m_times.at(i);
    }
    return times;
}

QString cTileServer::tileOf(const QString& path)
{
    // Through a proxy the path is a whole URL; only its path and query count.
    const QUrl url(path);
    const QUrlQuery query(url);
    const auto item = [&query](const char* name) { return query.queryItemValue(QLatin1String(name)); };
    if (url.path() == QLatin1String("/vt"))
        return QStringLiteral("%1/%2/%3/%4").arg(item("lyrs"), item("z"), item("x"), item("y"));
    static const QRegularExpression osm(QStringLiteral("^/(\\d+)/(\\d+)/(\\d+)\\.png$"));
    const QRegularExpressionMatch match = osm.match(url.path());
    if (!match.hasMatch())
        return QString();
    return QStringLiteral("osm/%1/%2/%3").arg(match.captured(1), match.captured(2), match.captured(3));
}

void cTileServer::answer(QTcpSocket* socket)
{
    const QByteArray head = socket->peek(socket->bytesAvailable());
    const int end = head.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    socket->read(end + 4);
    const QString tile = tileOf(QString::fromLatin1(head.left(head.indexOf("\r\n")).split(' ').value(1)));
    m_requests << tile;
    m_times << m_clock.elapsed();
    m_heads << head.left(end);
    const auto header = [&head](const QByteArray& name) {
        const int at = head.indexOf("\r\n" + name + ": ");
        const int from = at + name.size() + 4;
        return at < 0 ? QByteArray() : head.mid(from, head.indexOf("\r\n", from) - from);
    };
    if (!header("User-Agent").isEmpty())
        m_userAgent = header("User-Agent");
    if (m_dropping) {
        socket->abort();
        return;
    }

    const QStringList zxy = tile.split(QLatin1Char('/'));
    const QByteArray etag = '"' + tile.toLatin1().replace('/', '-') + '"';
    QByteArray status = "200 OK";
    QByteArray headers = "ETag: " + etag + "\r\n" + m_tileHeaders;
    QByteArray body;
    if (m_status != 0) {
        status = QByteArray::number(m_status) + " Refused";
        headers = m_extraHeaders;
    } else if (zxy.size() != 4) {
        status = "404 Not Found";
        headers.clear();
    } else if (header("If-None-Match") == etag) {
        status = "304 Not Modified";
    } else {
        body = tilePng(zxy.at(0), zxy.at(1).toInt(), zxy.at(2).toInt(), zxy.at(3).toInt());
    }
    const QByteArray reply = "HTTP/1.1 " + status + "\r\nContent-Type: image/png\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n" + headers + "Connection: close\r\n\r\n" + body;
    m_mostAtOnce = qMax(m_mostAtOnce, ++m_atOnce);
    socket->setProperty("waiting", true);
    const QPointer<QTcpSocket> target(socket);
    QTimer::singleShot(m_delay, this, [this, target, reply] {
        if (!target || !target->property("waiting").toBool())
            return;
        target->setProperty("waiting", false);
        --m_atOnce;
        if (target->state() == QAbstractSocket::ConnectedState) {
            target->write(reply);
            target->disconnectFromHost();
        }
    });
}

QMap<QString, QPoint> visibleTiles(const QString& kind, const QPointF& centre, int zoom, const QSize& size, bool ring)
{
    const double world = 256.0 * (1 << zoom);
    const QPoint topLeft =
        QPoint(int(std::floor((centre.x() + 180.0) / 360.0 * world + 0.5)),
               int(std::floor((1.0 - std::asinh(std::tan(qDegreesToRadians(centre.y()))) / M_PI) / 2.0 * world + 0.5)))
        - QPoint(size.width() / 2, size.height() / 2);
    const int extra = ring ? 1 : 0;
    QMap<QString, QPoint> tiles;
    const int last = (1 << zoom) - 1;
    const QPoint first(qMax(0, topLeft.x() / 256 - extra), qMax(0, topLeft.y() / 256 - extra));
    const QPoint final(qMin(last, (topLeft.x() + size.width() - 1) / 256 + extra),
                       qMin(last, (topLeft.y() + size.height() - 1) / 256 + extra));
    for (int y = first.y(); y <= final.y(); ++y) {
        for (int x = first.x(); x <= final.x(); ++x)
            tiles.insert(QStringLiteral("%1/%2/%3/%4").arg(kind).arg(zoom).arg(x).arg(y), QPoint(x, y) * 256 - topLeft);
    }
    return tiles;
}

bool drawnInPlace(QWidget* map, const QString& kind, const QPointF& centre, int zoom)
{
    const QImage shot = map->grab().toImage();
    const QRect clear(0, 0, shot.width(), shot.height() - 40);
    int seen = 0;
    const QMap<QString, QPoint> tiles = visibleTiles(kind, centre, zoom, shot.size());
    for (auto it = tiles.cbegin(); it != tiles.cend(); ++it) {
        const QStringList zxy = it.key().split(QLatin1Char('/'));
        const QRgb colour = cTileServer::blockColour(zxy.at(1).toInt(), zxy.at(2).toInt(), zxy.at(3).toInt());
        const QRect block(it.value() + QPoint(kind == QLatin1String("h") ? 32 : 0, 0), QSize(16, 16));
        if (!clear.contains(block.adjusted(0, 0, 1, 1)))
            continue;
        if (shot.pixel(block.topLeft()) != colour || shot.pixel(block.bottomRight()) != colour
            || shot.pixel(block.bottomRight() + QPoint(1, 1)) == colour)
            return false;
        ++seen;
    }
    return seen > 0;
}

// Rows count from the south, as the format has them.
bool writeMbtiles(const QString& path, const QString& bounds, const QString& attribution)
{
    bool written = false;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("writer"));
        db.setDatabaseName(path);
        QSqlQuery query(db);
        written = db.open() && query.exec("CREATE TABLE metadata (name TEXT, value TEXT)")
            && query.exec("CREATE TABLE tiles (zoom_level INTEGER, tile_column INTEGER, tile_row INTEGER, "
                          "tile_data BLOB)");
        const QStringList metadata = {"format", "png", "minzoom", "1", "maxzoom", "2", "bounds", bounds,
                                      "attribution", attribution};
        for (int i = 0; written && i < metadata.size(); i += 2) {
            query.prepare("INSERT INTO metadata VALUES (?, ?)");
            query.addBindValue(metadata.at(i));
            query.addBindValue(metadata.at(i + 1));
            written = query.exec();
        }
        for (int z = 1; z <= 2; ++z) {
            for (int x = 0; written && x < (1 << z); ++x) {
                for (int y = 0; written && y < (1 << z); ++y) {
                    query.prepare("INSERT INTO tiles VALUES (?, ?, ?, ?)");
                    query.addBindValue(z);
                    query.addBindValue(x);
                    query.addBindValue((1 << z) - 1 - y);
                    query.addBindValue(cTileServer::tilePng(QStringLiteral("osm"), z, x, y));
                    written = query.exec();
                }
            }
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("writer"));
    return written;
}
