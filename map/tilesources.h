#ifndef VOSK_TILESOURCES_H
#define VOSK_TILESOURCES_H

#include <QCoreApplication>
#include <QList>
#include <QString>

// A tile service of the user's own (a licensed service, an own tile server),
// kept in the settings group "TileSources" and shown after the built-in map
// sources.
struct cTileSource
{
    Q_DECLARE_TR_FUNCTIONS(cTileSource)

public:
    QString name;
    // With {z}, {x} and {y}, or {q}; optionally {s} and {key}.
    QString url;
    // Comma-separated, for {s}.
    QString subdomains;
    QString apiKey;
    int maxZoom = 19;
    QString attribution;

    // Empty when the source can be used, else what is wrong with it.
    QString problem() const;

    // Sources with a problem are left out, and logged.
    static QList<cTileSource> load();
    static void save(const QList<cTileSource>& sources);
};

#endif
