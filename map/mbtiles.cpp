#include "mbtiles.h"

#include "tileloader.h"

#include <QAtomicInteger>
#include <QDebug>
#include <QFileInfo>
#include <QMutexLocker>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace qmapcontrol {

namespace {

QAtomicInteger<int> readerCount;

// SQLite's result codes, as Qt's driver reports them.
const int sqliteBusy = 5;
const int sqliteLocked = 6;
const int sqliteNotADatabase = 26;

QString describe(const QSqlError& error)
{
    const int code = error.nativeErrorCode().toInt();
    if (code == sqliteNotADatabase)
        return MBTilesReader::tr("not an SQLite database");
    if (code == sqliteBusy || code == sqliteLocked)
        return MBTilesReader::tr("locked by another program");
    if (error.databaseText().contains(QLatin1String("no such table")))
        return MBTilesReader::tr("no table of tiles: not an MBTiles file");
    return error.text();
}

// "west,south,east,north" in degrees.
bool parseBounds(const QString& text, QRectF* bounds)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4)
        return false;
    double edges[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        edges[i] = parts.at(i).trimmed().toDouble(&ok);
        if (!ok)
            return false;
    }
    if (edges[0] >= edges[2] || edges[1] >= edges[3])
        return false;
    *bounds = QRectF(QPointF(edges[0], edges[1]), QPointF(edges[2], edges[3]));
    return true;
}

// Attributions are often HTML: the text is shown, the first link followed.
QString plainText(QString html, QUrl* link)
{
    static const QRegularExpression href(QStringLiteral("href\\s*=\\s*[\"']([^\"']+)[\"']"));
    const QRegularExpressionMatch match = href.match(html);
    if (match.hasMatch())
        *link = QUrl(match.captured(1));
    static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
    html.remove(tag);
    html.replace(QLatin1String("&copy;"), QStringLiteral("\u00a9"))
        .replace(QLatin1String("&nbsp;"), QLatin1String(" "))
        .replace(QLatin1String("&amp;"), QLatin1String("&"));
    return html.simplified();
}

} // namespace

MBTilesReader::MBTilesReader(const QString& fileName)
    : m_fileName(fileName)
    , m_connection(QStringLiteral("vosk-mbtiles-%1").arg(readerCount.fetchAndAddRelaxed(1)))
    , m_prefix(QStringLiteral("mbtiles:%1:%2#").arg(m_connection, fileName))
{
}

MBTilesReader::~MBTilesReader()
{
    // Deleted on its own thread as that ends, where the connection was made.
    if (!QSqlDatabase::contains(m_connection))
        return;
    QSqlDatabase::database(m_connection, false).close();
    QSqlDatabase::removeDatabase(m_connection);
}

MBTilesReader::Info MBTilesReader::info() const
{
    QMutexLocker lock(&m_mutex);
    return m_info;
}

void MBTilesReader::fail(const QString& reason)
{
    const QString message =
        tr("Offline map cannot be read: %1 (%2)").arg(reason, QFileInfo(m_fileName).fileName());
    {
        QMutexLocker lock(&m_mutex);
        if (m_info.error == message)
            return;
        m_info.ready = false;
        m_info.error = message;
    }
    qWarning().noquote() << message << m_fileName;
    emit stateChanged();
}

void MBTilesReader::open()
{
    if (!QFileInfo(m_fileName).isFile()) {
        fail(tr("the file does not exist"));
        return;
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(m_fileName);
    db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=%1").arg(busyTimeoutMs));
    if (!db.open()) {
        fail(describe(db.lastError()));
        return;
    }
    const QString problem = readMetadata();
    if (!problem.isEmpty()) {
        fail(problem);
        return;
    }
    const Info opened = info();
    qDebug().noquote() << "Offline map" << m_fileName << "zoom" << opened.minZoom << "to" << opened.maxZoom;
    emit stateChanged();
}

QString MBTilesReader::readMetadata()
{
    const QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("SELECT zoom_level, tile_column, tile_row, tile_data FROM tiles LIMIT 1")))
        return describe(query.lastError());
    QHash<QString, QString> metadata;
    // The metadata table is asked for, but files without it are common.
    if (query.exec(QStringLiteral("SELECT name, value FROM metadata"))) {
        while (query.next())
            metadata.insert(query.value(0).toString().trimmed().toLower(), query.value(1).toString());
    }

    const QString format = metadata.value(QStringLiteral("format"), QStringLiteral("png")).trimmed().toLower();
    static const QStringList pictures = {QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                         QStringLiteral("webp")};
    if (!pictures.contains(format))
        return tr("its tiles are of the format \"%1\", which cannot be shown").arg(format);

    Info read;
    read.ready = true;
    bool minOk = false;
    bool maxOk = false;
    read.minZoom = metadata.value(QStringLiteral("minzoom")).toInt(&minOk);
    read.maxZoom = metadata.value(QStringLiteral("maxzoom")).toInt(&maxOk);
    if (!minOk || !maxOk) {
        if (!query.exec(QStringLiteral("SELECT MIN(zoom_level), MAX(zoom_level) FROM tiles")) || !query.next())
            return describe(query.lastError());
        if (query.value(0).isNull())
            return tr("it holds no tiles");
        read.minZoom = query.value(0).toInt();
        read.maxZoom = query.value(1).toInt();
    }
    read.minZoom = qBound(MapAdapter::minZoom, read.minZoom, MapAdapter::maxZoom);
    read.maxZoom = qBound(read.minZoom, read.maxZoom, MapAdapter::maxZoom);
    parseBounds(metadata.value(QStringLiteral("bounds")), &read.bounds);
    read.attribution = plainText(metadata.value(QStringLiteral("attribution")), &read.attributionUrl);

    QMutexLocker lock(&m_mutex);
    m_info = read;
    return QString();
}

void MBTilesReader::load(const QString& key)
{
    QImage image;
    const QStringList zxy = key.mid(m_prefix.size()).split(QLatin1Char('/'));
    if (info().ready && zxy.size() == 3) {
        const int zoom = zxy.at(0).toInt();
        QSqlQuery query(QSqlDatabase::database(m_connection, false));
        query.prepare(QStringLiteral(
            "SELECT tile_data FROM tiles WHERE zoom_level = ? AND tile_column = ? AND tile_row = ?"));
        query.addBindValue(zoom);
        query.addBindValue(zxy.at(1).toInt());
        // Rows count from the south in MBTiles.
        query.addBindValue(MapAdapter::tilesPerSide(zoom) - 1 - zxy.at(2).toInt());
        if (!query.exec())
            fail(describe(query.lastError()));
        else if (query.next())
            image = decodeTile(query.value(0).toByteArray());
    }
    emit loaded(key, image);
}

MBTilesMapAdapter::MBTilesMapAdapter(const QString& fileName)
    : MapAdapter(QString(), false)
    , m_fileName(fileName)
    , m_reader(new MBTilesReader(fileName))
{
    m_reader->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::started, m_reader, &MBTilesReader::open);
    QObject::connect(&m_thread, &QThread::finished, m_reader, &QObject::deleteLater);
    m_thread.start();
}

MBTilesMapAdapter::~MBTilesMapAdapter()
{
    m_thread.quit();
    m_thread.wait();
}

QString MBTilesMapAdapter::tileKey(int x, int y, int zoom) const
{
    return m_reader->keyPrefix() + QStringLiteral("%1/%2/%3").arg(zoom).arg(x).arg(y);
}

int MBTilesMapAdapter::minimumZoom() const
{
    return m_reader->info().minZoom;
}

int MBTilesMapAdapter::maximumZoom() const
{
    return m_reader->info().maxZoom;
}

QRectF MBTilesMapAdapter::bounds() const
{
    return m_reader->info().bounds;
}

QString MBTilesMapAdapter::error() const
{
    return m_reader->info().error;
}

QString MBTilesMapAdapter::attribution() const
{
    return m_reader->info().attribution;
}

QUrl MBTilesMapAdapter::attributionUrl() const
{
    return m_reader->info().attributionUrl;
}

QString MBTilesMapAdapter::query(int, int, int) const
{
    return QString();
}

} // namespace qmapcontrol
