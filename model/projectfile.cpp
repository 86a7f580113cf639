#include "projectfile.h"

#include "luafields.h"
#include "routetable.h"

#include <QDebug>
#include <QSaveFile>

#include <lua.hpp>

using namespace luafields;

QString writeProject(const cProject& project, bool deviceForm)
{
    QString routes;
    for (const cRoute& route : project.routes)
        routes += QStringLiteral("%1,\n\n").arg(writeRoute(route, deviceForm));
    return QStringLiteral("project =\n{\n  id = '%1',\n  version = %2,\n\n  routes =\n  {\n\n%3  }\n}\n")
        .arg(project.id.toString())
        .arg(project.version)
        .arg(routes);
}

bool readProject(cProject& project, lua_State* L, bool deviceForm)
{
    project.id = getId(L, deviceForm);
    if (project.id.isNull()) {
        qDebug("Project ID is NULL");
        return false;
    }
    if (!getInt(L, "version", &project.version))
        project.version = -1;
    if (project.version < 0) {
        qDebug("Invalid project version");
        return false;
    }
    if (!pushTable(L, "routes")) {
        qDebug("No routes table in project file");
        return false;
    }
    bool ok = true;
    lua_pushnil(L);
    while (ok && lua_next(L, -2) != 0) {
        if (lua_istable(L, -1)) {
            cRoute route;
            ok = readRoute(route, L, deviceForm);
            project.routes.append(route);
        }
        lua_pop(L, 1);
    }
    if (!ok)
        lua_pop(L, 1);
    lua_pop(L, 1);
    return ok;
}

bool writeFileAtomically(const QString& path, const QByteArray& bytes, bool text)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    const QIODevice::OpenMode mode = text ? QIODevice::WriteOnly | QIODevice::Text : QIODevice::WriteOnly;
    return file.open(mode) && file.write(bytes) == bytes.size() && file.commit();
}
