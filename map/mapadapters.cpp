#include "mapadapters.h"

#include <QLocale>
#include <QUrlQuery>

namespace qmapcontrol {

namespace {

QString googleNotice()
{
    return QStringLiteral("\u00a9 Google");
}

} // namespace

OSMMapAdapter::OSMMapAdapter()
    : MapAdapter(QStringLiteral("https://tile.openstreetmap.org"))
{
    setAttribution(QStringLiteral("\u00a9 OpenStreetMap contributors"),
                   QUrl(QStringLiteral("https://www.openstreetmap.org/copyright")));
}

QString OSMMapAdapter::query(int x, int y, int zoom) const
{
    return QStringLiteral("/%1/%2/%3.png").arg(zoom).arg(x).arg(y);
}

GoogleMapAdapter::GoogleMapAdapter(int layerType)
    : MapAdapter(QStringLiteral("https://mt1.google.com"))
    , m_layer(QStringLiteral("msph").at(layerType >= Streets && layerType <= Hybrid ? layerType : Streets))
    , m_language(QLocale().bcp47Name())
{
    setAttribution(googleNotice());
}

QString GoogleMapAdapter::query(int x, int y, int zoom) const
{
    return QStringLiteral("/vt?lyrs=%1&hl=%2&x=%3&y=%4&z=%5").arg(m_layer).arg(m_language).arg(x).arg(y).arg(zoom);
}

bingApiMapadapter::bingApiMapadapter(const QString& imagerySet, const QString& key)
    : MapAdapter(QStringLiteral("https://ecn.t0.tiles.virtualearth.net"))
{
    setAttribution(QStringLiteral("\u00a9 Microsoft"));
    // Road tiles are drawings, the others photographs.
    const bool aerial = imagerySet == QLatin1String("Aerial");
    const bool labelled = imagerySet == QLatin1String("AerialWithLabels");
    m_prefix = QStringLiteral("/tiles/") + QLatin1Char(aerial ? 'a' : labelled ? 'h' : 'r');
    m_suffix = aerial || labelled ? QStringLiteral(".jpeg?g=1") : QStringLiteral(".png?g=1");
    if (!key.isEmpty())
        m_suffix += QStringLiteral("&key=") + QString::fromLatin1(QUrl::toPercentEncoding(key));
}

QString bingApiMapadapter::quadKey(int x, int y, int zoom)
{
    QString key;
    for (int level = zoom; level > 0; --level) {
        const int mask = 1 << (level - 1);
        key += QLatin1Char(char('0' + ((x & mask) ? 1 : 0) + ((y & mask) ? 2 : 0)));
    }
    return key;
}

QString bingApiMapadapter::query(int x, int y, int zoom) const
{
    return m_prefix + quadKey(x, y, zoom) + m_suffix;
}

googleApiMapadapter::googleApiMapadapter(const QString& host, const QString& apiKey, const QString& clientId,
                                         const QString& mapType)
    : MapAdapter(QStringLiteral("https://") + host)
{
    setAttribution(googleNotice());
    QUrlQuery parameters;
    parameters.addQueryItem(QStringLiteral("size"), QStringLiteral("%1x%1").arg(tileSize));
    parameters.addQueryItem(QStringLiteral("maptype"), mapType);
    parameters.addQueryItem(QStringLiteral("format"), QStringLiteral("png"));
    if (!apiKey.isEmpty())
        parameters.addQueryItem(QStringLiteral("key"), apiKey);
    if (!clientId.isEmpty())
        parameters.addQueryItem(QStringLiteral("client"), clientId);
    m_parameters = parameters.toString(QUrl::FullyEncoded);
}

QString googleApiMapadapter::query(int x, int y, int zoom) const
{
    const QPointF centre = worldCoordinate(QPointF((x + 0.5) * tileSize, (y + 0.5) * tileSize), zoom);
    return QStringLiteral("/maps/api/staticmap?center=%1,%2&zoom=%3&")
               .arg(centre.y(), 0, 'f', 7)
               .arg(centre.x(), 0, 'f', 7)
               .arg(zoom)
        + m_parameters;
}

TemplateMapAdapter::TemplateMapAdapter(const QString& urlTemplate, const QStringList& subdomains,
                                       const QString& apiKey, int maximumZoom)
    : MapAdapter(QString(), false)
    , m_template(urlTemplate)
    , m_subdomains(subdomains)
    , m_maximumZoom(qBound(minZoom, maximumZoom, maxZoom))
{
    m_template.replace(QLatin1String("{key}"), QString::fromLatin1(QUrl::toPercentEncoding(apiKey)));
}

QUrl TemplateMapAdapter::tileUrl(int x, int y, int zoom) const
{
    return QUrl(query(x, y, zoom));
}

QString TemplateMapAdapter::query(int x, int y, int zoom) const
{
    QString url = m_template;
    url.replace(QLatin1String("{z}"), QString::number(zoom))
        .replace(QLatin1String("{x}"), QString::number(x))
        .replace(QLatin1String("{y}"), QString::number(y));
    if (url.contains(QLatin1String("{q}")))
        url.replace(QLatin1String("{q}"), bingApiMapadapter::quadKey(x, y, zoom));
    if (!m_subdomains.isEmpty())
        url.replace(QLatin1String("{s}"), m_subdomains.at((x + y) % m_subdomains.size()));
    return url;
}

} // namespace qmapcontrol
