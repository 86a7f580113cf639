#include "autosaver.h"

#include "projectmanager.h"

#include <QDebug>

cAutosaver::cAutosaver(cProjectManager* manager, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &cAutosaver::write);
    connect(m_manager, &cProjectManager::projectSaved, this, &cAutosaver::projectSaved);
    connect(m_manager, &cProjectManager::aboutToResetProject, this, &cAutosaver::aboutToResetProject);
}

QString cAutosaver::currentPath() const
{
    return m_store.pathFor(m_manager->project()->id);
}

void cAutosaver::projectChanged()
{
    m_pending = true;
    m_unsaved = true;
    if (m_timer.isActive())
        return;
    // The first change after a quiet spell is kept at once, later ones
    // together once the spacing is over.
    const qint64 waited = m_sinceWrite.isValid() ? m_sinceWrite.elapsed() : m_spacingMs;
    m_timer.start(int(qMax<qint64>(0, m_spacingMs - waited)));
}

void cAutosaver::setProjectFile(const QString& path)
{
    m_projectFile = path;
    if (path.isEmpty())
        return;
    m_timer.stop();
    m_pending = false;
    m_unsaved = false;
}

void cAutosaver::write()
{
    m_timer.stop();
    if (!m_pending)
        return;
    const cProject& project = *m_manager->project();
    if (!m_writtenId.isNull() && m_writtenId != project.id)
        m_store.remove(m_writtenId);
    m_sinceWrite.start();
    const bool written = m_store.write(project, m_projectFile);
    // A project of 100,000 stops takes seconds to write; the editor must
    // not spend more than a tenth of its time on that.
    m_spacingMs = qMax<qint64>(m_intervalMs, 10 * m_sinceWrite.elapsed());
    if (!written) {
        qWarning().noquote() << "Could not write the autosave" << m_store.pathFor(project.id);
        return;
    }
    m_pending = false;
    m_writtenId = project.id;
    emit autosaved(m_store.pathFor(project.id));
}

void cAutosaver::projectSaved()
{
    m_timer.stop();
    m_pending = false;
    m_unsaved = false;
    forgetProject();
}

void cAutosaver::finish(bool dropChanges)
{
    if (dropChanges || !m_unsaved)
        forgetProject();
    else
        write();
}

void cAutosaver::forgetProject()
{
    if (!m_writtenId.isNull())
        m_store.remove(m_writtenId);
    m_store.remove(m_manager->project()->id);
    m_writtenId = QUuid();
}

// The project on show is about to go; its autosave stays for recovery.
void cAutosaver::aboutToResetProject()
{
    write();
    m_timer.stop();
    m_pending = false;
    m_unsaved = false;
    m_writtenId = QUuid();
}
