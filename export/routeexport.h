#ifndef VOSK_ROUTEEXPORT_H
#define VOSK_ROUTEEXPORT_H

#include "project.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

class cConverter;

// One route's part of an export: the route as it is now and the name of
// its script file.
struct cExportItem
{
    cRoute route;
    QString scriptFileName;
};

// How an export ended.
struct cExportResult
{
    // False when ffmpeg could not decode a sound.
    bool converted = true;
    // A script or sound reached the disk only in part.
    bool writesFailed = false;
    bool scriptNotOpened = false;
    // Scripts written in part and sounds that failed to convert, each time
    // one is reported.
    QStringList failedFiles;
    // What the read-back found different from what was meant.
    QStringList differences;

    bool ok() const
    {
        return converted && !writesFailed && !scriptNotOpened && failedFiles.isEmpty() && differences.isEmpty();
    }
};

// Exports routes for the device into a folder: each route's script into
// "route", every sound they use, once, converted into "voskdev", then every
// written file read back. The window's dialogs and voskantor-cli drive the
// same flow, so both write the same bytes.
class cRouteExport : public QObject
{
    Q_OBJECT

public:
    explicit cRouteExport(QObject* parent = nullptr);

    // Writes the scripts at once and starts converting the sounds; finished()
    // follows, at once when there are no sounds. Ignored while an export runs.
    void start(const QList<cExportItem>& items, const QString& outputDir);
    bool isRunning() const { return m_running; }
    // The sound files of the running export, in the order they are converted.
    QStringList sounds() const { return m_sounds; }

    // Every sound the device needs for the route, in the order the route uses
    // them; empty entries included.
    static QStringList routeSounds(const cRoute& route);
    static QString routeScript(const cRoute& route);

signals:
    // The script file could not be opened; the export goes on with the next.
    void scriptNotOpened(const QString& path);
    void conversionStarted(const QStringList& sources);
    void fileProcessed(const QString& fn, bool result);
    void finished(const cExportResult& result);

private:
    void writeScripts(const QString& outputDir);
    void convertFinished(bool ok);
    void fileConverted(const QString& fn, bool result);
    void verify();
    void finish();

    cConverter* m_converter;
    QList<cExportItem> m_items;
    QStringList m_scriptPaths;
    QStringList m_sounds;
    QString m_soundDir;
    QDateTime m_start;
    cExportResult m_result;
    bool m_running = false;
};

#endif
