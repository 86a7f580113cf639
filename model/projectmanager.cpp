#include "projectmanager.h"

#include "luastate.h"
#include "projectfile.h"

#include <QDebug>
#include <QFile>
#include <QMetaType>
#include <QSaveFile>
#include <QTextStream>

#include <lua.hpp>

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
    m_project.id = QUuid::createUuid();
    m_project.version = 1;
    m_project.routes.clear();
}

bool cProjectManager::saveProject(const QString& path)
{
    // Written aside and renamed over the old file, so a failed save never
    // leaves a truncated project behind.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream << writeProject(m_project, false);
    stream.flush();
    if (stream.status() != QTextStream::Ok || !file.commit())
        return false;
    emit projectSaved();
    return true;
}

bool cProjectManager::openProject(const QString& path, QString* error)
{
    const auto fail = [error](const QString& text) {
        if (error)
            *error = text;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        fail(file.errorString());
        return false;
    }
    const QString text = QTextStream(&file).readAll();
    file.close();

    bool result = false;
    {
        cLuaState lua;
        if (lua.run(text.toLocal8Bit())) {
            lua_State* L = lua.state();
            lua_getglobal(L, "project");
            if (lua_istable(L, -1)) {
                resetProject();
                emit projectCreated();
                result = readProject(m_project, L, false);
            } else {
                const QString message = QStringLiteral("No project table in Lua-state... %1")
                                            .arg(QLatin1String(luaL_typename(L, -1)));
                qDebug().noquote() << message;
                fail(message);
            }
            lua_pop(L, 1);
        } else {
            fail(lua.errorText());
        }
    }
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
