#ifndef VOSK_FEEDARCHIVE_H
#define VOSK_FEEDARCHIVE_H

#include <QCoreApplication>
#include <QHash>
#include <QString>

#include <memory>

class QIODevice;

// The files of a GTFS feed, in a zip archive or an unpacked folder. Files are
// handed out as streams, so a feed is never unpacked whole into memory.
class cFeedArchive
{
    Q_DECLARE_TR_FUNCTIONS(cFeedArchive)

public:
    bool open(const QString& path, QString* error);

    bool contains(const QString& name) const;
    // Unpacked size in bytes, for progress; 0 for a file the feed lacks.
    qint64 size(const QString& name) const;

    std::unique_ptr<QIODevice> openFile(const QString& name, QString* error) const;
    // Ends the reading of a file read to its end. Fails when the archive's
    // checksum shows the file damaged.
    bool closeFile(QIODevice* file, const QString& name, QString* error) const;

private:
    struct cEntry
    {
        QString path; // inside the archive, or on disk for a folder
        qint64 size = 0;
    };

    QString m_path;
    bool m_isZip = false;
    QHash<QString, cEntry> m_entries;
};

#endif
