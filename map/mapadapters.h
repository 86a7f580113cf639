#ifndef VOSK_MAPADAPTERS_H
#define VOSK_MAPADAPTERS_H

#include "mapadapter.h"

#include <QStringList>

namespace qmapcontrol {

// OpenStreetMap's standard tiles.
class OSMMapAdapter : public MapAdapter
{
public:
    OSMMapAdapter();

protected:
    QString query(int x, int y, int zoom) const override;
};

// Google's tiles; the layer type picks streets, satellite, terrain or the
// transparent hybrid overlay of roads and names drawn over satellite tiles.
class GoogleMapAdapter : public MapAdapter
{
public:
    enum LayerType { Streets = 0, Satellite = 1, Terrain = 2, Hybrid = 3 };
    explicit GoogleMapAdapter(int layerType = Streets);

protected:
    QString query(int x, int y, int zoom) const override;

private:
    QChar m_layer;
    QString m_language;
};

// Bing imagery addressed by quadkey: imagery set "Road", "Aerial" or
// "AerialWithLabels". The key is sent with each request when there is one.
class bingApiMapadapter : public MapAdapter
{
public:
    bingApiMapadapter(const QString& imagerySet, const QString& key);
    // The tile's path in Bing's quadtree: one digit per zoom level.
    static QString quadKey(int x, int y, int zoom);

protected:
    QString query(int x, int y, int zoom) const override;

private:
    QString m_prefix;
    QString m_suffix;
};

// Google's static-maps service used as a tile source: each tile is a
// 256 x 256 picture centred on the tile's centre at the tile's zoom, which
// covers exactly the tile. Empty credentials are left out of the request.
class googleApiMapadapter : public MapAdapter
{
public:
    googleApiMapadapter(const QString& host, const QString& apiKey, const QString& clientId,
                        const QString& mapType = QStringLiteral("hybrid"));

protected:
    QString query(int x, int y, int zoom) const override;

private:
    QString m_parameters;
};

// A tile service of the user's own, given as a URL template: {z}, {x}, {y}
// or {q} (Bing's quadkey) address the tile, {s} takes one of the
// sub-domains (always the same for a tile, so caches keep working) and
// {key} the API key. Its URL is taken as written, never redirected.
class TemplateMapAdapter : public MapAdapter
{
public:
    TemplateMapAdapter(const QString& urlTemplate, const QStringList& subdomains, const QString& apiKey,
                       int maximumZoom);

    QUrl tileUrl(int x, int y, int zoom) const override;
    int maximumZoom() const override { return m_maximumZoom; }

protected:
    QString query(int x, int y, int zoom) const override;

private:
    QString m_template;
    QStringList m_subdomains;
    int m_maximumZoom;
};

} // namespace qmapcontrol

#endif
