#include "luafields.h"

#include <QDebug>

#include <cmath>
#include <climits>
#include <lua.hpp>

namespace luafields {

namespace {

// A double from an untrusted file may be anything; casting an out-of-range
// value to int is undefined, so clamp first.
int truncateToInt(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(value);
}

} // namespace

QString toText(lua_State* L, int index)
{
    size_t length = 0;
    const char* bytes = lua_tolstring(L, index, &length);
    return QString::fromLocal8Bit(bytes, static_cast<int>(length));
}

bool getText(lua_State* L, const char* key, QString* out)
{
    lua_getfield(L, -1, key);
    const int type = lua_type(L, -1);
    const bool found = type == LUA_TSTRING || type == LUA_TNUMBER;
    if (found)
        *out = toText(L, -1);
    lua_pop(L, 1);
    return found;
}

bool getBool(lua_State* L, const char* key, bool* out)
{
    lua_getfield(L, -1, key);
    const bool found = lua_type(L, -1) == LUA_TBOOLEAN;
    if (found)
        *out = lua_toboolean(L, -1) != 0;
    lua_pop(L, 1);
    return found;
}

bool getNumber(lua_State* L, const char* key, double* out)
{
    lua_getfield(L, -1, key);
    const bool found = lua_isnumber(L, -1) != 0;
    if (found)
        *out = lua_tonumber(L, -1);
    lua_pop(L, 1);
    return found;
}

bool getInt(lua_State* L, const char* key, int* out)
{
    double value = 0;
    if (!getNumber(L, key, &value))
        return false;
    *out = truncateToInt(value);
    return true;
}

void readText(lua_State* L, const char* key, QString* out, const char* missing)
{
    if (!getText(L, key, out))
        qDebug("%s", missing);
}

void readBool(lua_State* L, const char* key, bool* out, const char* missing)
{
    if (!getBool(L, key, out))
        qDebug("%s", missing);
}

void readInt(lua_State* L, const char* key, int* out, const char* missing)
{
    if (!getInt(L, key, out))
        qDebug("%s", missing);
}

QUuid getId(lua_State* L, bool createMissing, IdPresence* presence)
{
    lua_getfield(L, -1, "id");
    const bool isString = lua_type(L, -1) == LUA_TSTRING;
    QUuid id;
    if (isString)
        id = QUuid(toText(L, -1));
    lua_pop(L, 1);
    if (presence)
        *presence = isString ? IdPresence::Present : IdPresence::Missing;
    if (id.isNull() && createMissing)
        id = QUuid::createUuid();
    return id;
}

bool pushTable(lua_State* L, const char* key)
{
    lua_getfield(L, -1, key);
    if (lua_istable(L, -1))
        return true;
    lua_pop(L, 1);
    return false;
}

} // namespace luafields
