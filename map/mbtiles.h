#ifndef VOSK_MBTILES_H
#define VOSK_MBTILES_H

#include "localtilesource.h"
#include "mapadapter.h"

#include <QMutex>
#include <QRectF>
#include <QThread>

namespace qmapcontrol {

// Reads an MBTiles file (an SQLite database: table `tiles` with the rows in
// TMS order, table `metadata` with format, zoom range, bounds and
// attribution) on a thread of its own, through Qt's SQLite driver.
class MBTilesReader : public LocalTileSource
{
    Q_OBJECT

public:
    struct Info
    {
        bool ready = false;
        // The whole notice when the file cannot be shown, else empty.
        QString error;
        int minZoom = MapAdapter::minZoom;
        int maxZoom = MapAdapter::maxZoom;
        QRectF bounds = QRectF(QPointF(-180.0, -MapAdapter::maxLatitude), QPointF(180.0, MapAdapter::maxLatitude));
        QString attribution;
        QUrl attributionUrl;
    };

    // How long a read waits for a writer's lock before it gives up.
    static constexpr int busyTimeoutMs = 1000;

    explicit MBTilesReader(const QString& fileName);
    ~MBTilesReader() override;

    QString keyPrefix() const { return m_prefix; }
    Info info() const;
    bool serves(const QString& key) const override { return key.startsWith(m_prefix); }
    void load(const QString& key) override;
    // On the reader's thread: opens the file and reads its metadata.
    void open();

private:
    void fail(const QString& reason);
    // Empty when the file is an MBTiles file, else why not.
    QString readMetadata();

    const QString m_fileName;
    const QString m_connection;
    const QString m_prefix;
    mutable QMutex m_mutex;
    Info m_info;
};

// An MBTiles file as a map source. Its tiles are known by keys of the form
// "mbtiles:<instance>:<file>#z/x/y" in the usual XYZ numbering.
class MBTilesMapAdapter : public MapAdapter
{
public:
    explicit MBTilesMapAdapter(const QString& fileName);
    ~MBTilesMapAdapter() override;

    QString fileName() const { return m_fileName; }
    QString tileKey(int x, int y, int zoom) const override;
    int minimumZoom() const override;
    int maximumZoom() const override;
    QRectF bounds() const override;
    QString error() const override;
    LocalTileSource* localSource() const override { return m_reader; }
    QString attribution() const override;
    QUrl attributionUrl() const override;

protected:
    QString query(int x, int y, int zoom) const override;

private:
    QString m_fileName;
    QThread m_thread;
    MBTilesReader* m_reader;
};

} // namespace qmapcontrol

#endif
