#include "projectmanager.h"

#include "luastate.h"
#include "routetable.h"

#include <QDebug>
#include <QFile>
#include <QTextStream>

#include <lua.hpp>

bool cProjectManager::importLuaRoute(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = tr("Failed to open file");
        return false;
    }
    const QString text = QTextStream(&file).readAll();
    file.close();

    {
        cLuaState lua;
        if (lua.run(text.toLocal8Bit())) {
            lua_State* L = lua.state();
            lua_getglobal(L, "route");
            if (lua_istable(L, -1)) {
                cRoute route;
                if (readRoute(route, L, true))
                    m_project.routes.append(route);
            } else {
                qDebug().noquote() << "No route table in Lua-state..." << luaL_typename(L, -1);
            }
            lua_pop(L, 1);
        }
    }
    emit projectOpened();
    return true;
}
