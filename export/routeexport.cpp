#include "routeexport.h"

#include "converter.h"
#include "exportverifier.h"
#include "routetable.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QTextStream>

namespace {

// False when the script did not reach the disk whole, as on a full card,
// which takes the open but not all of the bytes.
bool writeScript(QFile& file, const QString& script)
{
    QTextStream stream(&file);
    stream << script;
    stream.flush();
    const bool flushed = stream.status() == QTextStream::Ok && file.flush();
    file.close();
    return flushed && file.error() == QFileDevice::NoError;
}

// A file system stamps files by a clock coarser than the one asked here, so
// a file written just after the export started may seem a little older.
const int fileClockSlackSeconds = 2;

} // namespace

cRouteExport::cRouteExport(QObject* parent)
    : QObject(parent)
    , m_converter(new cConverter(this))
{
    m_converter->setFileSaveType(0);
    m_converter->setFileNameType(0);
    connect(m_converter, &cConverter::convertFinished, this, &cRouteExport::convertFinished);
    connect(m_converter, &cConverter::fileProcessed, this, &cRouteExport::fileConverted);
    connect(m_converter, &cConverter::writeFailed, this, [this] { m_result.writesFailed = true; });
}

QString cRouteExport::routeScript(const cRoute& route)
{
    return QStringLiteral("route =\n%1").arg(writeRoute(route, true));
}

QStringList cRouteExport::routeSounds(const cRoute& route)
{
    QStringList sounds{route.base_sound.current, route.base_sound.next, route.base_sound.last};
    for (const cBranch* branch : {&route.direct, &route.reverse}) {
        for (const cStop& stop : branch->stops)
            sounds << stop.sound << stop.other_sounds;
    }
    return sounds;
}

void cRouteExport::start(const QList<cExportItem>& items, const QString& outputDir)
{
    if (m_running)
        return;
    m_running = true;
    m_items = items;
    m_result = cExportResult();
    m_start = QDateTime::currentDateTime().addSecs(-fileClockSlackSeconds);
    writeScripts(outputDir);

    m_sounds.clear();
    for (const cExportItem& item : qAsConst(m_items))
        m_sounds << routeSounds(item.route);
    m_sounds.removeDuplicates();
    // Null and empty strings compare equal: this drops both.
    m_sounds.removeAll(QString());
    qDebug().noquote() << "Sound files:" << m_sounds;

    // Folders that cannot be made or entered leave the files in the output
    // folder itself.
    QDir soundDir(outputDir);
    soundDir.mkdir(QStringLiteral("voskdev"));
    soundDir.cd(QStringLiteral("voskdev"));
    m_soundDir = soundDir.absolutePath();
    m_converter->setOutputDir(m_soundDir);
    if (m_sounds.isEmpty()) {
        finish();
        return;
    }
    emit conversionStarted(m_sounds);
    m_converter->convert(m_sounds);
}

void cRouteExport::writeScripts(const QString& outputDir)
{
    QDir scriptDir(outputDir);
    scriptDir.mkdir(QStringLiteral("route"));
    scriptDir.cd(QStringLiteral("route"));
    m_scriptPaths.clear();
    for (const cExportItem& item : qAsConst(m_items)) {
        const QString path = scriptDir.absoluteFilePath(item.scriptFileName);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
            qDebug().noquote() << "File was not opened:" << path;
            m_result.scriptNotOpened = true;
            m_scriptPaths << QString();
            emit scriptNotOpened(path);
            continue;
        }
        m_scriptPaths << path;
        if (!writeScript(file, routeScript(item.route))) {
            qDebug().noquote() << "File was not written whole:" << path;
            m_result.failedFiles << path;
            m_result.writesFailed = true;
        }
    }
}

void cRouteExport::fileConverted(const QString& fn, bool result)
{
    if (!result) {
        m_result.failedFiles << fn;
        qDebug().noquote() << "Error converting sound file:" << fn;
    }
    emit fileProcessed(fn, result);
}

void cRouteExport::convertFinished(bool ok)
{
    m_result.converted = ok;
    if (!ok)
        qDebug() << "Error converting sound files";
    finish();
}

void cRouteExport::verify()
{
    // A script of a later route with the same name replaced an earlier one:
    // only the last script written to a path is what the device gets. One
    // written in part is listed already.
    for (int i = 0; i < m_items.size(); ++i) {
        const QString& path = m_scriptPaths.at(i);
        if (path.isEmpty() || m_scriptPaths.lastIndexOf(path) != i || m_result.failedFiles.contains(path))
            continue;
        const QString difference = cExportVerifier::scriptDifference(path, m_items.at(i).route);
        if (!difference.isEmpty())
            m_result.differences << difference;
    }
    const QDir soundDir(m_soundDir);
    // Failed sounds too: a missing ffmpeg or source reports no failure of
    // its own, and only the missing output shows it.
    for (const QString& sound : qAsConst(m_sounds)) {
        const QString difference =
            cExportVerifier::wavDifference(soundDir.absoluteFilePath(deviceFileName(sound)), m_start);
        if (!difference.isEmpty())
            m_result.differences << difference;
    }
    for (const QString& difference : qAsConst(m_result.differences))
        qDebug().noquote() << "Export read back:" << difference;
}

void cRouteExport::finish()
{
    verify();
    m_running = false;
    emit finished(m_result);
}
