#include "autosavestore.h"

#include "projectfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegExp>
#include <QStandardPaths>
#include <QUrl>

namespace {

const char* const headerLine = "-- Voskantor autosave";
const char* const fileKey = "-- file:";
const char* const routesKey = "-- routes:";
const char* const stopsKey = "-- stops:";

// The id of the project in a file this program wrote; null for anything else.
QUuid projectIdIn(const QString& projectFile)
{
    QFile file(projectFile);
    if (!file.open(QIODevice::ReadOnly))
        return QUuid();
    const QString head = QString::fromLocal8Bit(file.read(256));
    QRegExp id(QStringLiteral("^project =\\s*\\{\\s*id = '([^']*)'"));
    return id.indexIn(head) == 0 ? QUuid(id.cap(1)) : QUuid();
}

// An autosave that only repeats its project file holds no lost work, as
// after an open that failed before it changed anything.
bool repeatsItsFile(const cAutosaveEntry& entry)
{
    QFile autosave(entry.path);
    QFile project(entry.projectFile);
    if (!autosave.open(QIODevice::ReadOnly) || !project.open(QIODevice::ReadOnly))
        return false;
    const QByteArray saved = autosave.readAll();
    return saved.mid(saved.indexOf("project =")) == project.readAll();
}

} // namespace

cAutosaveStore::cAutosaveStore(const QString& dir)
    : m_dir(dir.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/autosave")
                          : dir)
{
}

QString cAutosaveStore::pathFor(const QUuid& projectId) const
{
    return QDir(m_dir).filePath(projectId.toString(QUuid::WithoutBraces) + QStringLiteral(".vosk"));
}

bool cAutosaveStore::write(const cProject& project, const QString& projectFile)
{
    int stops = 0;
    for (const cRoute& route : project.routes)
        stops += route.direct.stops.size() + route.reverse.stops.size();
    // The path is percent-encoded so that any name fits on one comment line.
    const auto line = [](const char* key, const QString& value) {
        return QLatin1String(key) + QLatin1Char(' ') + value + QLatin1Char('\n');
    };
    const QString header = QLatin1String(headerLine) + QLatin1Char('\n')
        + line(fileKey, QString::fromLatin1(QUrl::toPercentEncoding(projectFile)))
        + line(routesKey, QString::number(project.routes.size())) + line(stopsKey, QString::number(stops));
    if (!QDir().mkpath(m_dir)
        || !writeFileAtomically(pathFor(project.id), (header + writeProject(project, false)).toLocal8Bit(), true))
        return false;
    const QList<cAutosaveEntry> all = entries();
    for (int i = maxKept; i < all.size(); ++i)
        QFile::remove(all[i].path);
    return true;
}

void cAutosaveStore::remove(const QUuid& projectId)
{
    QFile::remove(pathFor(projectId));
}

bool cAutosaveStore::readEntry(const QString& path, cAutosaveEntry* entry) const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text) || file.readLine().trimmed() != headerLine)
        return false;
    const QFileInfo info(path);
    entry->path = path;
    entry->time = info.lastModified();
    entry->projectId = QUuid(info.completeBaseName());
    for (;;) {
        const QByteArray line = file.readLine();
        const auto value = [&line](const char* key) { return line.mid(int(qstrlen(key))).trimmed(); };
        if (line.startsWith(fileKey))
            entry->projectFile = QUrl::fromPercentEncoding(value(fileKey));
        else if (line.startsWith(routesKey))
            entry->routes = value(routesKey).toInt();
        else if (line.startsWith(stopsKey))
            entry->stops = value(stopsKey).toInt();
        else
            return true;
    }
}

QList<cAutosaveEntry> cAutosaveStore::entries() const
{
    QList<cAutosaveEntry> found;
    const QDir dir(m_dir);
    for (const QString& name : dir.entryList({QStringLiteral("*.vosk")}, QDir::Files, QDir::Time)) {
        cAutosaveEntry entry;
        if (readEntry(dir.filePath(name), &entry))
            found << entry;
    }
    return found;
}

QList<cAutosaveEntry> cAutosaveStore::recoverable() const
{
    QList<cAutosaveEntry> found;
    for (const cAutosaveEntry& entry : entries()) {
        const QFileInfo project(entry.projectFile);
        if (entry.projectFile.isEmpty() || !project.exists() || projectIdIn(entry.projectFile) != entry.projectId
            || (project.lastModified() < entry.time && !repeatsItsFile(entry)))
            found << entry;
    }
    return found;
}
