#ifndef VOSK_CHOSENMAPSOURCE_H
#define VOSK_CHOSENMAPSOURCE_H

#include <QList>

namespace qmapcontrol {
class MapAdapter;
class MapControl;
class MapLayer;
} // namespace qmapcontrol

// The tiles last chosen in the map window (a built-in service, a source of
// the user's own, or the offline map), for windows that show a map without
// a choice of their own. Owns its adapters and layers.
class cChosenMapSource
{
public:
    cChosenMapSource();
    ~cChosenMapSource();
    cChosenMapSource(const cChosenMapSource&) = delete;
    cChosenMapSource& operator=(const cChosenMapSource&) = delete;

    // Adds the layers to `map`, bottom first.
    void addTo(qmapcontrol::MapControl* map) const;
    // The topmost layer, the one to draw over.
    qmapcontrol::MapLayer* topLayer() const { return m_layers.last(); }

private:
    void add(qmapcontrol::MapAdapter* adapter);

    QList<qmapcontrol::MapAdapter*> m_adapters;
    QList<qmapcontrol::MapLayer*> m_layers;
};

#endif
