#include "chosenmapsource.h"

#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "mbtiles.h"
#include "tilesources.h"

#include <QSettings>

using namespace qmapcontrol;

cChosenMapSource::cChosenMapSource()
{
    // Read as the map window stores its choice: the offline map by its flag,
    // a source of the user's own by name, the built-in ones by index.
    QSettings settings;
    settings.beginGroup(QStringLiteral("MapViewer"));
    const QString offlineFile = settings.value(QStringLiteral("OfflineMap")).toString();
    if (settings.value(QStringLiteral("OfflineMapChosen"), false).toBool() && !offlineFile.isEmpty()) {
        add(new MBTilesMapAdapter(offlineFile));
        return;
    }
    const QString extra = settings.value(QStringLiteral("ExtraSource")).toString();
    for (const cTileSource& source : cTileSource::load()) {
        if (extra.isEmpty() || source.name != extra)
            continue;
        auto* adapter = new TemplateMapAdapter(source.url, source.subdomains.split(QLatin1Char(','), Qt::SkipEmptyParts),
                                               source.apiKey, source.maxZoom);
        adapter->setAttribution(source.attribution);
        add(adapter);
        return;
    }
    switch (settings.value(QStringLiteral("CurrentMapIndex"), 0).toInt()) {
    case 1:
        add(new GoogleMapAdapter(GoogleMapAdapter::Satellite));
        break;
    case 2:
        add(new GoogleMapAdapter(GoogleMapAdapter::Satellite));
        add(new GoogleMapAdapter(GoogleMapAdapter::Hybrid));
        break;
    case 3:
        add(new OSMMapAdapter);
        break;
    default:
        add(new GoogleMapAdapter(GoogleMapAdapter::Streets));
        break;
    }
}

cChosenMapSource::~cChosenMapSource()
{
    qDeleteAll(m_layers);
    qDeleteAll(m_adapters);
}

void cChosenMapSource::add(MapAdapter* adapter)
{
    m_adapters << adapter;
    m_layers << new MapLayer(QStringLiteral("Layer%1").arg(m_layers.size()), adapter, true);
}

void cChosenMapSource::addTo(MapControl* map) const
{
    for (MapLayer* layer : m_layers)
        map->addLayer(layer);
}
