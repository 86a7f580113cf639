#ifndef VOSK_TILELOADER_H
#define VOSK_TILELOADER_H

#include <QCache>
#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QSharedPointer>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

class QNetworkAccessManager;
class QNetworkReply;

namespace qmapcontrol {

class LocalTileSource;
struct TileDiskCache;

// A tile picture in a format the raster engine draws without converting;
// null when the bytes are no picture.
QImage decodeTile(const QByteArray& bytes);

// Fetches the tiles the map shows, by key (their URL), as tile servers ask
// to be treated: a stable User-Agent, tiles kept on disk for as long as the
// server allows (a week when it says nothing) and then refreshed with a
// conditional request, only the tiles wanted now and at most two requests
// per server at a time. A server that fails, refuses or asks to slow down
// is left alone for a while as a whole; a tile it does not have is not asked
// for again. Disk reads and decoding run off the GUI thread. Requests go
// through the application-wide proxy.
class TileLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxRequestsPerHost = 2;
    static constexpr int firstBackOffMs = 1000;
    static constexpr int lastBackOffMs = 5 * 60 * 1000;
    static constexpr int longestRetryAfterMs = 60 * 60 * 1000;
    static constexpr qint64 defaultLifetimeSeconds = 7 * 24 * 3600;

    explicit TileLoader(QObject* parent = nullptr);
    ~TileLoader() override;

    void setDiskCache(const QString& folder, qint64 maxBytes);
    // How long a request may go without any data before it counts as failed.
    void setTransferTimeout(int ms) { m_transferTimeoutMs = ms; }
    // Tiles with keys the source serves are read from it, not fetched.
    void addLocalSource(LocalTileSource* source);

    // The decoded tile, or a null image while it is not loaded.
    QImage image(const QString& key) const;
    // The tiles to have, most important first. Loads of any other tile are
    // dropped; an empty list stops all fetching.
    void want(const QStringList& keys);
    // Why tiles of `host` cannot be had now, as the map says it; empty
    // while nothing is amiss.
    QString problem(const QString& host) const;

    // Tile servers ask for a User-Agent that names the program.
    static QByteArray userAgent();

signals:
    void tileLoaded();
    void problemsChanged();

private:
    struct Host
    {
        int failures = 0;
        qint64 retryAt = 0;
        QString problem;
    };
    // What a cached tile needs for a conditional refresh.
    struct Validators
    {
        QByteArray etag;
        QByteArray lastModified;
    };

    void scheduleResolve() { m_resolveTimer.start(); }
    void resolve();
    LocalTileSource* localSourceFor(const QString& key) const;
    void readFromDisk(const QString& key);
    void diskRead(const QString& key, const QImage& image, bool stale, const Validators& validators);
    void start(const QString& key, const QString& host);
    void finished(QNetworkReply* reply);
    void received(QNetworkReply* reply, const QString& key);
    void decoded(const QString& key, const QImage& image);
    void release(QNetworkReply* reply);
    void succeeded(const QString& host);
    void failed(const QString& host, const QString& reason, qint64 waitMs);
    void keep(const QString& key, const QImage& image);

    QNetworkAccessManager* m_network;
    QSharedPointer<TileDiskCache> m_disk;
    QThreadPool m_workers;
    QCache<QString, QImage> m_memory;
    QStringList m_wanted;
    QList<QPointer<LocalTileSource>> m_localSources;
    QHash<QString, QNetworkReply*> m_running;
    QHash<QString, int> m_perHost;
    QHash<QString, Host> m_hosts;
    // Reads and decodes under way on the workers or local sources.
    QSet<QString> m_pending;
    QSet<QString> m_notOnDisk;
    // Tiles the server or local source does not have: not asked for again.
    QSet<QString> m_missing;
    // Shown from the disk cache although expired: refreshed once.
    QHash<QString, Validators> m_stale;
    QSet<QString> m_logged;
    int m_transferTimeoutMs = 30 * 1000;
    QTimer m_resolveTimer;
    QTimer m_retryTimer;
    QElapsedTimer m_clock;
};

} // namespace qmapcontrol

#endif
