#ifndef VOSK_AUTOSAVER_H
#define VOSK_AUTOSAVER_H

#include "autosavestore.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUuid>

class cProjectManager;

// Keeps an autosave of the open project while it holds work that is in no
// project file: written shortly after a change, at most once per interval,
// and before the project is replaced by a new or opened one, so that what
// New and Open drop without asking can still be recovered. A save removes
// the autosave; so does closing when the user agreed to drop the changes.
class cAutosaver : public QObject
{
    Q_OBJECT

public:
    static constexpr int defaultIntervalMs = 5000;

    explicit cAutosaver(cProjectManager* manager, QObject* parent = nullptr);

    void setInterval(int ms) { m_intervalMs = m_spacingMs = ms; }
    cAutosaveStore& store() { return m_store; }
    // The autosave that belongs to the project on show.
    QString currentPath() const;

public slots:
    // The project differs from its file: an edit, an import, a failed open.
    void projectChanged();
    // The project is the one in `path`, just opened or saved; empty for a
    // new project, which matches no file.
    void setProjectFile(const QString& path);
    // At a clean exit: drops the autosave when the user agreed to lose the
    // changes or there are none; otherwise (an import or a failed open clears
    // the unsaved mark without asking) writes what is still pending.
    void finish(bool dropChanges);

signals:
    void autosaved(const QString& path);

private slots:
    void write();
    void projectSaved();
    void aboutToResetProject();

private:
    void forgetProject();

    cProjectManager* m_manager;
    cAutosaveStore m_store;
    QTimer m_timer;
    QElapsedTimer m_sinceWrite;
    int m_intervalMs = defaultIntervalMs;
    // The interval, or longer for a project that takes long to write.
    qint64 m_spacingMs = defaultIntervalMs;
    // Changes not yet in the autosave, and changes not in the project file.
    bool m_pending = false;
    bool m_unsaved = false;
    QString m_projectFile;
    // The id the autosave was written under; an import renews the project's
    // id, and the autosave follows it.
    QUuid m_writtenId;
};

#endif
