#include "projectmanager.h"

#include "luastate.h"
#include "routetable.h"

bool cProjectManager::importLuaRoute(const QString& path, QString* error)
{
    bool read = false;
    const bool opened = cLuaState::runFile(path, "route", [this](lua_State* L) {
        cRoute route;
        if (readRoute(route, L, true))
            m_project.routes.append(route);
        return true;
    }, &read);
    if (!opened) {
        if (error)
            *error = tr("Failed to open file");
        return false;
    }
    emit projectOpened();
    return true;
}
