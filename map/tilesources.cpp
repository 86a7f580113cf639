#include "tilesources.h"

#include <QDebug>
#include <QSettings>

namespace {

const char* const group = "TileSources";

} // namespace

QString cTileSource::problem() const
{
    if (name.trimmed().isEmpty())
        return tr("it has no name");
    // A template with {s} in its host is no valid URL yet.
    if (!url.startsWith(QLatin1String("http://")) && !url.startsWith(QLatin1String("https://")))
        return tr("its URL does not start with http:// or https://");
    const bool xyz = url.contains(QLatin1String("{z}")) && url.contains(QLatin1String("{x}"))
        && url.contains(QLatin1String("{y}"));
    if (!xyz && !url.contains(QLatin1String("{q}")))
        return tr("its URL needs {z}, {x} and {y}, or {q}");
    if (url.contains(QLatin1String("{s}")) && subdomains.trimmed().isEmpty())
        return tr("its URL has {s} but no sub-domains are given");
    if (maxZoom < 0 || maxZoom > 19)
        return tr("its maximum zoom is not a number from 0 to 19");
    return QString();
}

QList<cTileSource> cTileSource::load()
{
    QList<cTileSource> sources;
    QSettings settings;
    const int count = settings.beginReadArray(QLatin1String(group));
    for (int i = 0; i < count; ++i) {
        settings.setArrayIndex(i);
        cTileSource source;
        source.name = settings.value(QStringLiteral("Name")).toString();
        source.url = settings.value(QStringLiteral("Url")).toString();
        source.subdomains = settings.value(QStringLiteral("Subdomains")).toString();
        source.apiKey = settings.value(QStringLiteral("ApiKey")).toString();
        source.maxZoom = settings.value(QStringLiteral("MaxZoom"), 19).toInt();
        source.attribution = settings.value(QStringLiteral("Attribution")).toString();
        const QString problem = source.problem();
        if (problem.isEmpty())
            sources << source;
        else
            qWarning().noquote() << "Tile source" << i + 1 << "left out:" << problem;
    }
    settings.endArray();
    return sources;
}

void cTileSource::save(const QList<cTileSource>& sources)
{
    QSettings settings;
    settings.remove(QLatin1String(group));
    settings.beginWriteArray(QLatin1String(group), sources.size());
    for (int i = 0; i < sources.size(); ++i) {
        settings.setArrayIndex(i);
        const cTileSource& source = sources.at(i);
        settings.setValue(QStringLiteral("Name"), source.name);
        settings.setValue(QStringLiteral("Url"), source.url);
        settings.setValue(QStringLiteral("Subdomains"), source.subdomains);
        settings.setValue(QStringLiteral("ApiKey"), source.apiKey);
        settings.setValue(QStringLiteral("MaxZoom"), source.maxZoom);
        settings.setValue(QStringLiteral("Attribution"), source.attribution);
    }
    settings.endArray();
    settings.sync();
}
