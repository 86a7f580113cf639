#include "tileloader.h"

#include "localtilesource.h"
#include "version.h"

#include <QDateTime>
#include <QDebug>
#include <QLocale>
#include <QMutex>
#include <QMutexLocker>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QScopedPointer>
#include <QThread>

namespace qmapcontrol {

// The disk cache is used as a store only, by the workers as well, one at a
// time: the loader decides itself what is fresh and what to ask for.
struct TileDiskCache
{
    QMutex mutex;
    QNetworkDiskCache cache;
};

namespace {

const char* const keyProperty = "tile";
const char* const hostProperty = "host";
// Decoded tiles held in memory, in kilobytes: some 500 tiles.
const int memoryCacheKb = 128 * 1024;
// Reads and decodes queued at a time, so that a fast pan does not pile up
// work for tiles long gone from the screen.
const int maxPending = 16;

QString hostOf(const QString& key)
{
    return QUrl(key).authority();
}

QDateTime httpDate(const QByteArray& text)
{
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(text).trimmed(),
                                             QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
    date.setTimeSpec(Qt::UTC);
    return date;
}

// How long the server lets the tile be used without asking again.
QDateTime expiryOf(const QNetworkReply* reply)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QByteArray control = reply->rawHeader("Cache-Control").toLower();
    static const QRegularExpression maxAge(QStringLiteral("max-age\\s*=\\s*(\\d+)"));
    const QRegularExpressionMatch match = maxAge.match(QString::fromLatin1(control));
    if (match.hasMatch())
        return now.addSecs(match.captured(1).toLongLong());
    if (control.contains("no-cache") || control.contains("no-store"))
        return now;
    if (reply->hasRawHeader("Expires")) {
        const QDateTime expires = httpDate(reply->rawHeader("Expires"));
        return expires.isValid() ? expires : now;
    }
    return now.addSecs(TileLoader::defaultLifetimeSeconds);
}

// The wait a server asks for, in seconds or as a date; -1 when it says none.
qint64 retryAfterMs(const QNetworkReply* reply)
{
    if (!reply->hasRawHeader("Retry-After"))
        return -1;
    const QByteArray value = reply->rawHeader("Retry-After").trimmed();
    bool isNumber = false;
    const qint64 seconds = value.toLongLong(&isNumber);
    qint64 wait = -1;
    if (isNumber)
        wait = seconds * 1000;
    else if (const QDateTime at = httpDate(value); at.isValid())
        wait = QDateTime::currentDateTimeUtc().msecsTo(at);
    return wait < 0 ? -1 : qMin<qint64>(wait, TileLoader::longestRetryAfterMs);
}

QString reasonOf(const QNetworkReply* reply)
{
    switch (reply->error()) {
    case QNetworkReply::ConnectionRefusedError: return TileLoader::tr("connection refused");
    case QNetworkReply::RemoteHostClosedError: return TileLoader::tr("connection closed by the server");
    case QNetworkReply::HostNotFoundError: return TileLoader::tr("server not found");
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: return TileLoader::tr("no answer in time");
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError: return TileLoader::tr("the proxy refuses the connection");
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return TileLoader::tr("the proxy asks for a user name and password");
    case QNetworkReply::SslHandshakeFailedError: return TileLoader::tr("secure connection failed");
    default: return reply->errorString();
    }
}

} // namespace

QImage decodeTile(const QByteArray& bytes)
{
    QImage tile;
    if (!tile.loadFromData(bytes))
        return QImage();
    return tile.convertToFormat(tile.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                       : QImage::Format_RGB32);
}

TileLoader::TileLoader(QObject* parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
    , m_memory(memoryCacheKb)
{
    // One core stays with the GUI thread, which paints meanwhile.
    m_workers.setMaxThreadCount(qMax(1, QThread::idealThreadCount() - 1));
    m_clock.start();
    m_resolveTimer.setSingleShot(true);
    m_resolveTimer.setInterval(0);
    m_retryTimer.setSingleShot(true);
    connect(&m_resolveTimer, &QTimer::timeout, this, &TileLoader::resolve);
    connect(&m_retryTimer, &QTimer::timeout, this, &TileLoader::resolve);
    connect(m_network, &QNetworkAccessManager::finished, this, &TileLoader::finished);
}

TileLoader::~TileLoader()
{
    // No worker may post to us once we are gone; replies die with the manager.
    m_workers.clear();
    m_workers.waitForDone();
    m_network->disconnect(this);
    delete m_network;
}

QByteArray TileLoader::userAgent()
{
    return QStringLiteral("%1/%2.%3 (bus stop announcer route editor; Qt)")
        .arg(QLatin1String(version::programName))
        .arg(version::major)
        .arg(version::minor)
        .toLatin1();
}

void TileLoader::setDiskCache(const QString& folder, qint64 maxBytes)
{
    m_workers.waitForDone();
    m_disk.reset(new TileDiskCache);
    m_disk->cache.setCacheDirectory(folder);
    m_disk->cache.setMaximumCacheSize(maxBytes);
    m_notOnDisk.clear();
}

void TileLoader::addLocalSource(LocalTileSource* source)
{
    if (!source || m_localSources.contains(source))
        return;
    m_localSources.append(source);
    connect(source, &LocalTileSource::loaded, this, [this](const QString& key, const QImage& image) {
        m_pending.remove(key);
        if (image.isNull())
            m_missing.insert(key);
        else
            keep(key, image);
        scheduleResolve();
    });
}

LocalTileSource* TileLoader::localSourceFor(const QString& key) const
{
    for (const QPointer<LocalTileSource>& source : m_localSources) {
        if (source && source->serves(key))
            return source;
    }
    return nullptr;
}

QImage TileLoader::image(const QString& key) const
{
    const QImage* tile = m_memory.object(key);
    return tile ? *tile : QImage();
}

void TileLoader::want(const QStringList& keys)
{
    m_wanted = keys;
    scheduleResolve();
}

QString TileLoader::problem(const QString& host) const
{
    const QString reason = m_hosts.value(host).problem;
    return reason.isEmpty() ? QString() : tr("Map tiles cannot be loaded: %1 (%2)").arg(reason, host);
}

void TileLoader::resolve()
{
    const QSet<QString> wanted(m_wanted.cbegin(), m_wanted.cend());
    for (auto it = m_running.begin(); it != m_running.end();) {
        if (wanted.contains(it.key())) {
            ++it;
            continue;
        }
        QNetworkReply* reply = it.value();
        it = m_running.erase(it);
        release(reply);
        reply->abort();
    }

    QStringList fetch;
    QStringList refresh;
    for (const QString& key : qAsConst(m_wanted)) {
        if (m_running.contains(key) || m_pending.contains(key) || m_missing.contains(key))
            continue;
        if (LocalTileSource* source = localSourceFor(key)) {
            if (!m_memory.contains(key) && m_pending.size() < maxPending) {
                m_pending.insert(key);
                QMetaObject::invokeMethod(source, [source, key] { source->load(key); }, Qt::QueuedConnection);
            }
            continue;
        }
        if (m_memory.contains(key)) {
            if (m_stale.contains(key))
                refresh << key;
            continue;
        }
        if (m_disk && !m_notOnDisk.contains(key)) {
            if (m_pending.size() < maxPending)
                readFromDisk(key);
            continue;
        }
        fetch << key;
    }

    // Missing tiles before refreshes; each in the order of importance.
    const qint64 now = m_clock.elapsed();
    qint64 nextRetry = -1;
    for (const QString& key : fetch + refresh) {
        const QString host = hostOf(key);
        const qint64 retryAt = m_hosts.value(host).retryAt;
        if (retryAt > now) {
            nextRetry = nextRetry < 0 ? retryAt : qMin(nextRetry, retryAt);
            continue;
        }
        if (m_perHost.value(host) < maxRequestsPerHost)
            start(key, host);
    }
    if (nextRetry >= 0)
        m_retryTimer.start(int(nextRetry - now));
}

void TileLoader::readFromDisk(const QString& key)
{
    m_pending.insert(key);
    const QSharedPointer<TileDiskCache> disk = m_disk;
    m_workers.start([this, disk, key] {
        const QUrl url(key);
        QByteArray bytes;
        QNetworkCacheMetaData meta;
        {
            QMutexLocker lock(&disk->mutex);
            QScopedPointer<QIODevice> data(disk->cache.data(url));
            if (data) {
                bytes = data->readAll();
                meta = disk->cache.metaData(url);
            }
        }
        const QImage image = decodeTile(bytes);
        if (image.isNull() && !bytes.isEmpty()) {
            QMutexLocker lock(&disk->mutex);
            disk->cache.remove(url);
        }
        const QDateTime expires = meta.expirationDate();
        const bool stale = expires.isValid() && expires < QDateTime::currentDateTimeUtc();
        Validators validators;
        for (const QNetworkCacheMetaData::RawHeader& header : meta.rawHeaders()) {
            if (header.first.compare("ETag", Qt::CaseInsensitive) == 0)
                validators.etag = header.second;
            else if (header.first.compare("Last-Modified", Qt::CaseInsensitive) == 0)
                validators.lastModified = header.second;
        }
        QMetaObject::invokeMethod(
            this, [this, key, image, stale, validators] { diskRead(key, image, stale, validators); },
            Qt::QueuedConnection);
    });
}

void TileLoader::diskRead(const QString& key, const QImage& image, bool stale, const Validators& validators)
{
    m_pending.remove(key);
    if (image.isNull()) {
        m_notOnDisk.insert(key);
    } else {
        keep(key, image);
        if (stale)
            m_stale.insert(key, validators);
    }
    scheduleResolve();
}

void TileLoader::keep(const QString& key, const QImage& image)
{
    m_memory.insert(key, new QImage(image), qMax(1, int(image.sizeInBytes() / 1024)));
    emit tileLoaded();
}

void TileLoader::start(const QString& key, const QString& host)
{
    QNetworkRequest request{QUrl(key)};
    request.setHeader(QNetworkRequest::UserAgentHeader, userAgent());
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(m_transferTimeoutMs);
    const auto stale = m_stale.constFind(key);
    if (stale != m_stale.cend()) {
        if (!stale->etag.isEmpty())
            request.setRawHeader("If-None-Match", stale->etag);
        if (!stale->lastModified.isEmpty())
            request.setRawHeader("If-Modified-Since", stale->lastModified);
    }
    QNetworkReply* reply = m_network->get(request);
    reply->setProperty(keyProperty, key);
    reply->setProperty(hostProperty, host);
    m_running.insert(key, reply);
    ++m_perHost[host];
}

void TileLoader::release(QNetworkReply* reply)
{
    const QString host = reply->property(hostProperty).toString();
    if (--m_perHost[host] <= 0)
        m_perHost.remove(host);
    reply->deleteLater();
}

void TileLoader::finished(QNetworkReply* reply)
{
    const QString key = reply->property(keyProperty).toString();
    // A dropped reply reports its abort here after it was let go.
    if (m_running.value(key) != reply)
        return;
    m_running.remove(key);
    release(reply);
    const QString host = reply->property(hostProperty).toString();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();

    if (status == 304) {
        succeeded(host);
        m_stale.remove(key);
        const QSharedPointer<TileDiskCache> disk = m_disk;
        const QDateTime expires = expiryOf(reply);
        if (disk) {
            m_workers.start([disk, key, expires] {
                QMutexLocker lock(&disk->mutex);
                QNetworkCacheMetaData meta = disk->cache.metaData(QUrl(key));
                meta.setExpirationDate(expires);
                disk->cache.updateMetaData(meta);
            });
        }
    } else if (reply->error() == QNetworkReply::NoError && status >= 200 && status < 300) {
        succeeded(host);
        received(reply, key);
    } else if (status == 404 || status == 410) {
        // The server works; it just has no such tile.
        succeeded(host);
        m_missing.insert(key);
    } else if (status == 429) {
        failed(host, tr("too many requests"), retryAfterMs(reply));
    } else if (status == 503) {
        failed(host, tr("service unavailable"), retryAfterMs(reply));
    } else if (status == 401 || status == 403) {
        failed(host, tr("access refused (HTTP %1)").arg(status), -1);
    } else if (status >= 400) {
        failed(host, tr("server error (HTTP %1)").arg(status), -1);
    } else {
        failed(host, reasonOf(reply), -1);
    }
    scheduleResolve();
}

void TileLoader::received(QNetworkReply* reply, const QString& key)
{
    const QByteArray bytes = reply->readAll();
    QNetworkCacheMetaData meta;
    meta.setUrl(QUrl(key));
    meta.setSaveToDisk(true);
    meta.setExpirationDate(expiryOf(reply));
    meta.setLastModified(reply->header(QNetworkRequest::LastModifiedHeader).toDateTime());
    QNetworkCacheMetaData::RawHeaderList validators;
    for (const char* name : {"ETag", "Last-Modified"}) {
        if (reply->hasRawHeader(name))
            validators.append({QByteArray(name), reply->rawHeader(name)});
    }
    meta.setRawHeaders(validators);
    m_stale.remove(key);
    m_pending.insert(key);
    const QSharedPointer<TileDiskCache> disk = m_disk;
    m_workers.start([this, disk, key, bytes, meta] {
        const QImage image = decodeTile(bytes);
        if (!image.isNull() && disk) {
            QMutexLocker lock(&disk->mutex);
            if (QIODevice* file = disk->cache.prepare(meta)) {
                file->write(bytes);
                disk->cache.insert(file);
            }
        }
        QMetaObject::invokeMethod(this, [this, key, image] { decoded(key, image); }, Qt::QueuedConnection);
    });
}

void TileLoader::decoded(const QString& key, const QImage& image)
{
    m_pending.remove(key);
    if (image.isNull()) {
        // Such as a login page of a network that wants a sign-in first.
        failed(hostOf(key), tr("the server sends no pictures"), -1);
    } else {
        m_notOnDisk.remove(key);
        keep(key, image);
    }
    scheduleResolve();
}

void TileLoader::succeeded(const QString& host)
{
    const auto it = m_hosts.constFind(host);
    if (it == m_hosts.cend())
        return;
    const bool hadProblem = !it->problem.isEmpty();
    m_hosts.erase(it);
    if (hadProblem)
        emit problemsChanged();
}

void TileLoader::failed(const QString& host, const QString& reason, qint64 waitMs)
{
    Host& state = m_hosts[host];
    const qint64 now = m_clock.elapsed();
    // Requests that were under way together fail together: one failure.
    if (waitMs >= 0 || state.retryAt <= now) {
        ++state.failures;
        const qint64 backOff = qMin<qint64>(qint64(firstBackOffMs) << qMin(state.failures - 1, 16), lastBackOffMs);
        state.retryAt = qMax(state.retryAt, now + (waitMs >= 0 ? waitMs : backOff));
    }
    if (state.problem != reason) {
        state.problem = reason;
        emit problemsChanged();
    }
    const QString logged = host + QLatin1Char('\n') + reason;
    if (!m_logged.contains(logged)) {
        m_logged.insert(logged);
        qWarning().noquote() << "Map tiles cannot be loaded from" << host + QLatin1Char(':') << reason;
    }
}

} // namespace qmapcontrol
