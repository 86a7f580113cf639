#ifndef VOSK_LOCALTILESOURCE_H
#define VOSK_LOCALTILESOURCE_H

#include <QImage>
#include <QObject>
#include <QString>

namespace qmapcontrol {

// Tiles read from a store on this machine, on a thread of the source's own,
// so that a slow or locked store never stalls the map. Tiles are known by
// the keys of the adapter that owns the source.
class LocalTileSource : public QObject
{
    Q_OBJECT

public:
    // Whether `key` is one of this source's tiles; any thread may ask.
    virtual bool serves(const QString& key) const = 0;
    // Runs on the source's thread and answers with `loaded`.
    virtual void load(const QString& key) = 0;

signals:
    // A null image: the store has no such tile.
    void loaded(const QString& key, const QImage& image);
    // The source's zoom range, bounds or error changed.
    void stateChanged();
};

} // namespace qmapcontrol

#endif
