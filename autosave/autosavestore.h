#ifndef VOSK_AUTOSAVESTORE_H
#define VOSK_AUTOSAVESTORE_H

#include "project.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

struct cAutosaveEntry
{
    QString path;
    QDateTime time;
    QUuid projectId;
    // The file the project was last opened from or saved to; empty for one
    // never saved.
    QString projectFile;
    int routes = 0;
    int stops = 0;
};

// The autosave files: one per project, named by its id, each a project file
// with a comment header saying where the project belongs and how large it
// is. Files only, no timing and no widgets.
class cAutosaveStore
{
public:
    static constexpr int maxKept = 20;

    // "autosave" in the application's data folder unless `dir` is given.
    explicit cAutosaveStore(const QString& dir = QString());

    QString pathFor(const QUuid& projectId) const;
    // Replaces the project's previous autosave atomically; the oldest beyond
    // maxKept are removed.
    bool write(const cProject& project, const QString& projectFile);
    void remove(const QUuid& projectId);

    // Every autosave, newest first.
    QList<cAutosaveEntry> entries() const;
    // Those holding work that is not in their project file: the file is
    // missing, now holds another project, or is older than the autosave and
    // differs from it.
    QList<cAutosaveEntry> recoverable() const;

private:
    bool readEntry(const QString& path, cAutosaveEntry* entry) const;

    QString m_dir;
};

#endif
