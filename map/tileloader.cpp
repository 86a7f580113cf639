#include "tileloader.h"

#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QScopedPointer>

namespace qmapcontrol {

namespace {

const char* const tileProperty = "tile";
const char* const hostProperty = "host";
// Decoded tiles held in memory, in kilobytes: some 500 tiles.
const int memoryCacheKb = 128 * 1024;

QString hostOf(const QString& url)
{
    return QUrl(url).authority();
}

} // namespace

TileLoader::TileLoader(QObject* parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
    , m_memory(memoryCacheKb)
{
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
    // Replies die with the manager; none of them may call back into us.
    m_network->disconnect(this);
    delete m_network;
}

QByteArray TileLoader::userAgent()
{
    return QByteArrayLiteral("Voskantor/1.21 (bus stop announcer route editor; Qt)");
}

void TileLoader::setDiskCache(const QString& folder, qint64 maxBytes)
{
    auto* cache = new QNetworkDiskCache;
    cache->setCacheDirectory(folder);
    cache->setMaximumCacheSize(maxBytes);
    m_network->setCache(cache);
    m_disk = cache;
    m_notOnDisk.clear();
}

QImage TileLoader::image(const QString& url) const
{
    const QImage* tile = m_memory.object(url);
    return tile ? *tile : QImage();
}

void TileLoader::want(const QStringList& urls)
{
    m_wanted = urls;
    m_resolveTimer.start();
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
        drop(reply);
    }

    const qint64 now = m_clock.elapsed();
    qint64 nextRetry = -1;
    bool loaded = false;
    QStringList missing;
    QStringList refresh;
    for (const QString& url : m_wanted) {
        if (m_running.contains(url))
            continue;
        const bool inMemory = m_memory.contains(url);
        if (inMemory || loadFromDisk(url)) {
            loaded = loaded || !inMemory;
            if (m_stale.contains(url))
                refresh << url;
            continue;
        }
        const auto failure = m_failures.constFind(url);
        if (failure != m_failures.cend() && failure->retryAt > now) {
            nextRetry = nextRetry < 0 ? failure->retryAt : qMin(nextRetry, failure->retryAt);
            continue;
        }
        missing << url;
    }

    // Missing tiles before refreshes; each in the order of importance.
    for (const QString& url : missing + refresh) {
        const QString host = hostOf(url);
        if (!m_running.contains(url) && m_perHost.value(host) < maxRequestsPerHost)
            start(url, host);
    }
    if (nextRetry >= 0)
        m_retryTimer.start(int(qMax<qint64>(0, nextRetry - now)));
    if (loaded)
        emit tileLoaded();
}

bool TileLoader::loadFromDisk(const QString& url)
{
    if (!m_disk || m_notOnDisk.contains(url))
        return false;
    const QUrl key(url);
    QScopedPointer<QIODevice> data(m_disk->data(key));
    if (!data || !store(url, data->readAll())) {
        if (data)
            m_disk->remove(key);
        m_notOnDisk.insert(url);
        return false;
    }
    const QDateTime expires = m_disk->metaData(key).expirationDate();
    if (expires.isValid() && expires < QDateTime::currentDateTimeUtc())
        m_stale.insert(url);
    return true;
}

bool TileLoader::store(const QString& url, const QByteArray& bytes)
{
    QImage tile;
    if (!tile.loadFromData(bytes))
        return false;
    // Formats the raster engine draws without converting each frame.
    tile = tile.convertToFormat(tile.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                       : QImage::Format_RGB32);
    m_memory.insert(url, new QImage(tile), qMax(1, int(tile.sizeInBytes() / 1024)));
    m_failures.remove(url);
    return true;
}

void TileLoader::start(const QString& url, const QString& host)
{
    QNetworkRequest request{QUrl(url)};
    request.setHeader(QNetworkRequest::UserAgentHeader, userAgent());
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(transferTimeoutMs);
    QNetworkReply* reply = m_network->get(request);
    reply->setProperty(tileProperty, url);
    reply->setProperty(hostProperty, host);
    m_running.insert(url, reply);
    ++m_perHost[host];
    m_stale.remove(url);
}

void TileLoader::drop(QNetworkReply* reply)
{
    const QString host = reply->property(hostProperty).toString();
    if (--m_perHost[host] <= 0)
        m_perHost.remove(host);
    reply->abort();
    reply->deleteLater();
}

void TileLoader::finished(QNetworkReply* reply)
{
    const QString url = reply->property(tileProperty).toString();
    // A dropped reply reports its abort here after it was let go.
    if (m_running.value(url) != reply)
        return;
    m_running.remove(url);
    const QString host = reply->property(hostProperty).toString();
    if (--m_perHost[host] <= 0)
        m_perHost.remove(host);
    reply->deleteLater();

    if (reply->error() == QNetworkReply::NoError && store(url, reply->readAll())) {
        m_notOnDisk.remove(url);
        emit tileLoaded();
    } else if (!m_memory.contains(url)) {
        // A failed refresh keeps the old tile; a missing tile waits, and
        // waits longer each time.
        Failure& failure = m_failures[url];
        ++failure.attempts;
        const qint64 wait = qMin<qint64>(qint64(firstRetryMs) << qMin(failure.attempts - 1, 16), lastRetryMs);
        failure.retryAt = m_clock.elapsed() + wait;
    }
    resolve();
}

} // namespace qmapcontrol
