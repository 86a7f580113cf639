#include "tileserver.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTimer>
#include <QUrlQuery>

namespace {

QByteArray tilePng(const QString& kind, int z, int x, int y)
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

} // namespace

cTileServer::cTileServer(QObject* parent)
    : QObject(parent)
{
    m_clock.start();
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
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
    const int agent = head.indexOf("\r\nUser-Agent: ");
    if (agent >= 0)
        m_userAgent = head.mid(agent + 14, head.indexOf("\r\n", agent + 2) - agent - 14);

    const QStringList zxy = tile.split(QLatin1Char('/'));
    const QByteArray body = m_failing || zxy.size() != 4
        ? QByteArray()
        : tilePng(zxy.at(0), zxy.at(1).toInt(), zxy.at(2).toInt(), zxy.at(3).toInt());
    const QByteArray status = m_failing ? "500 Internal Server Error" : body.isEmpty() ? "404 Not Found" : "200 OK";
    // Tiles come already expired, so the network layer will not answer for
    // them from its cache: a map that shows them offline read them itself.
    const QByteArray reply = "HTTP/1.1 " + status + "\r\nContent-Type: image/png\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\nExpires: Thu, 01 Jan 1970 00:00:00 GMT\r\nConnection: close\r\n\r\n"
        + body;
    const QPointer<QTcpSocket> target(socket);
    QTimer::singleShot(m_delay, this, [target, reply] {
        if (target && target->state() == QAbstractSocket::ConnectedState) {
            target->write(reply);
            target->disconnectFromHost();
        }
    });
}
