#include "projectmanager.h"

#include "luastate.h"
#include "projectfile.h"

#include <QDebug>
#include <QFile>
#include <QMetaType>

cProjectManager::cProjectManager(QObject* parent)
    : QObject(parent)
{
    // routeImported(QUuid) may cross threads through queued connections.
    qRegisterMetaType<QUuid>("QUuid");
    resetProject();
    emit projectCreated();
}

void cProjectManager::newProject()
{
    resetProject();
    emit projectCreated();
}

cProject* cProjectManager::project()
{
    return &m_project;
}

void cProjectManager::resetProject()
{
    emit aboutToResetProject();
    m_project.id = QUuid::createUuid();
    m_project.version = 1;
    m_project.routes.clear();
}

bool cProjectManager::saveProject(const QString& path)
{
    keepPreviousFile(path);
    if (!writeFileAtomically(path, writeProject(m_project, false).toLocal8Bit(), true))
        return false;
    emit projectSaved();
    return true;
}

// One generation of the project as it was before this save, so that saving
// the wrong project over a file can be undone by hand.
void cProjectManager::keepPreviousFile(const QString& path)
{
    QFile previous(path);
    if (!previous.exists())
        return;
    const QString backup = path + QStringLiteral(".bak");
    if (!previous.open(QIODevice::ReadOnly) || !writeFileAtomically(backup, previous.readAll(), false))
        qWarning().noquote() << "Could not keep the previous project as" << backup;
}

bool cProjectManager::openProject(const QString& path, QString* error)
{
    bool result = false;
    const bool opened = cLuaState::runFile(path, "project", [this](lua_State* L) {
        resetProject();
        emit projectCreated();
        return readProject(m_project, L, false);
    }, &result, error, [this]() { emit openInProgress(); });
    if (!opened)
        return false;
    emit projectOpened();
    return result;
}

cBaseTexts cProjectManager::defaultBaseTexts()
{
    cBaseTexts texts;
    texts.current = tr("Stop: ");
    texts.next = tr("Next: ");
    texts.last = tr(". Last");
    return texts;
}

void cProjectManager::importRoutes(const QList<cRoute>& routes)
{
    if (routes.isEmpty())
        return;
    // Renewed on every import on purpose: the project is no longer the one
    // that was last opened or saved.
    m_project.id = QUuid::createUuid();
    m_project.version = 1;
    for (const cRoute& route : routes) {
        m_project.routes << route;
        emit projectOpened();
        emit routeImported(route.id);
    }
}
