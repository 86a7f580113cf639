#include "feedarchive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <quazip.h>
#include <quazipfile.h>

bool cFeedArchive::open(const QString& path, QString* error)
{
    m_entries.clear();
    m_path = path;
    const QFileInfo info(path);
    const QString shownName = info.fileName();
    if (!info.exists()) {
        *error = tr("%1 does not exist.").arg(shownName);
        return false;
    }

    m_isZip = !info.isDir();
    if (!m_isZip) {
        const QFileInfoList files = QDir(path).entryInfoList(QDir::Files);
        for (const QFileInfo& file : files)
            m_entries.insert(file.fileName(), {file.filePath(), file.size()});
        return true;
    }

    // The central directory sits at the end of a zip, so an archive cut short
    // fails here, before anything is read from it.
    QuaZip zip(path);
    if (!zip.open(QuaZip::mdUnzip)) {
        *error = tr("%1 is not a readable zip archive; it may be damaged or cut short.").arg(shownName);
        return false;
    }
    const QList<QuaZipFileInfo64> infos = zip.getFileInfoList64();
    zip.close();
    if (zip.getZipError() != UNZ_OK) {
        *error = tr("%1 is not a readable zip archive; it may be damaged or cut short.").arg(shownName);
        return false;
    }
    // Some publishers pack the files inside a folder; files at the top win.
    for (const QuaZipFileInfo64& entry : infos) {
        if (entry.name.endsWith(QLatin1Char('/')))
            continue;
        const QString name = entry.name.section(QLatin1Char('/'), -1);
        const bool atTop = !entry.name.contains(QLatin1Char('/'));
        if (atTop || !m_entries.contains(name))
            m_entries.insert(name, {entry.name, qint64(entry.uncompressedSize)});
    }
    return true;
}

bool cFeedArchive::contains(const QString& name) const
{
    return m_entries.contains(name);
}

qint64 cFeedArchive::size(const QString& name) const
{
    return m_entries.value(name).size;
}

std::unique_ptr<QIODevice> cFeedArchive::openFile(const QString& name, QString* error) const
{
    const cEntry entry = m_entries.value(name);
    std::unique_ptr<QIODevice> file;
    if (m_isZip)
        file = std::make_unique<QuaZipFile>(m_path, entry.path);
    else
        file = std::make_unique<QFile>(entry.path);
    if (entry.path.isEmpty() || !file->open(QIODevice::ReadOnly)) {
        *error = tr("%1 could not be read.").arg(name);
        return nullptr;
    }
    return file;
}

bool cFeedArchive::closeFile(QIODevice* file, const QString& name, QString* error) const
{
    file->close();
    const auto* zipped = qobject_cast<QuaZipFile*>(file);
    if (zipped && zipped->getZipError() != UNZ_OK) {
        *error = tr("%1 is damaged in the archive.").arg(name);
        return false;
    }
    return true;
}
