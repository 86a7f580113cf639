#ifndef VOSK_TILELOADER_H
#define VOSK_TILELOADER_H

#include <QCache>
#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

class QNetworkAccessManager;
class QNetworkDiskCache;
class QNetworkReply;

namespace qmapcontrol {

// Fetches the tiles the map shows, by URL. Decoded tiles stay in memory;
// with a disk cache, a tile fetched once is later read from disk and never
// asked of the network again (an expired one is shown and refreshed once).
// Only the tiles currently wanted are fetched, nearest first, a few at a
// time per server; a tile that failed waits longer before each new try.
// Requests go through the application-wide proxy.
class TileLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxRequestsPerHost = 4;
    static constexpr int firstRetryMs = 2000;
    static constexpr int lastRetryMs = 5 * 60 * 1000;
    static constexpr int transferTimeoutMs = 30 * 1000;

    explicit TileLoader(QObject* parent = nullptr);
    ~TileLoader() override;

    void setDiskCache(const QString& folder, qint64 maxBytes);
    // The decoded tile, or a null image while it is not loaded.
    QImage image(const QString& url) const;
    // The tiles on screen now, most important first. Loads of any other
    // tile are dropped.
    void want(const QStringList& urls);

    // Tile servers ask for a User-Agent that names the program.
    static QByteArray userAgent();

signals:
    void tileLoaded();

private:
    void resolve();
    bool loadFromDisk(const QString& url);
    bool store(const QString& url, const QByteArray& bytes);
    void start(const QString& url, const QString& host);
    void finished(QNetworkReply* reply);
    void drop(QNetworkReply* reply);

    struct Failure
    {
        int attempts = 0;
        qint64 retryAt = 0;
    };

    QNetworkAccessManager* m_network;
    QNetworkDiskCache* m_disk = nullptr;
    QCache<QString, QImage> m_memory;
    QStringList m_wanted;
    QHash<QString, QNetworkReply*> m_running;
    QHash<QString, int> m_perHost;
    QHash<QString, Failure> m_failures;
    // Known to be missing from the disk cache, so not looked up again.
    QSet<QString> m_notOnDisk;
    // Shown from the disk cache although expired: fetched again once.
    QSet<QString> m_stale;
    QTimer m_resolveTimer;
    QTimer m_retryTimer;
    QElapsedTimer m_clock;
};

} // namespace qmapcontrol

#endif
