#include "routetable.h"

#include "luafields.h"

#include <QDebug>

#include <algorithm>

#include <lua.hpp>

using namespace luafields;

namespace {

// Values go between the quotes unescaped and the templates are filled by
// successive single QString::arg() calls, so a value holding a %-digit
// sequence is itself substituted by later arguments. The file formats are
// defined by this exact text; keep it.

QString coordinate(double degrees, bool deviceForm)
{
    const QString number = QString::number(degrees, 'g', 8);
    return deviceForm ? QStringLiteral("%1 * 3600000.0").arg(number) : number;
}

QString writeZone(const cStop& stop, bool deviceForm)
{
    const QString course = stop.course_enabled
        ? QStringLiteral("          course = { value = %1, diff = %2 },\n")
              .arg(stop.course_value)
              .arg(stop.course_diff)
        : QString();
    return QStringLiteral("        zone  = \n"
                          "        {\n"
                          "          type = 'round',\n"
                          "          center = { lon = %1, lat = %2 },\n"
                          "          radius = %3,\n"
                          "%4        },\n")
        .arg(coordinate(stop.lon, deviceForm))
        .arg(coordinate(stop.lat, deviceForm))
        .arg(stop.radius)
        .arg(course);
}

QString writeOtherSounds(const QStringList& sounds, bool deviceForm)
{
    QStringList entries;
    if (deviceForm) {
        for (const QString& sound : sounds) {
            if (!sound.isEmpty())
                entries << devicePath(sound);
        }
    } else {
        entries = sounds;
    }
    if (entries.isEmpty())
        return QString();
    const QString quoted = QStringLiteral("'%1'").arg(entries.join(QStringLiteral("', '")));
    return QStringLiteral("        other_sounds = { %1 },\n").arg(quoted);
}

QString optionalLine(const QString& pattern, const QString& value)
{
    return value.isEmpty() ? QString() : pattern.arg(value);
}

QString writeStop(const cStop& stop, bool deviceForm)
{
    const QString id = deviceForm
        ? QString()
        : QStringLiteral("        id = '%1',\n").arg(stop.id.toString());
    return QStringLiteral("      {\n%1        name  = '%2',\n%3%4        sound = '%5',\n%6%7%8      },\n\n")
        .arg(id)
        .arg(stop.name)
        .arg(optionalLine(QStringLiteral("        full_name  = '%1',\n"), stop.full_name))
        .arg(stop.is_key_stop ? QStringLiteral("        is_key_stop = true,\n") : QString())
        .arg(deviceForm ? devicePath(stop.sound) : stop.sound)
        .arg(writeOtherSounds(stop.other_sounds, deviceForm))
        .arg(optionalLine(QStringLiteral("        other_text = '%1',\n"), stop.other_text))
        .arg(writeZone(stop, deviceForm));
}

QString writeBranch(const cBranch& branch, bool deviceForm)
{
    QString stops;
    for (const cStop& stop : branch.stops)
        stops += writeStop(stop, deviceForm);
    return QStringLiteral("    {\n%1%2\n%3    },\n")
        .arg(optionalLine(QStringLiteral("      first = '%1',\n"), branch.first))
        .arg(optionalLine(QStringLiteral("      last = '%1',\n"), branch.last))
        .arg(stops);
}

QString writeBaseTexts(const cBaseTexts& texts, bool asDevicePaths)
{
    const auto value = [asDevicePaths](const QString& text) {
        return asDevicePaths ? devicePath(text) : text;
    };
    return QStringLiteral("    current = '%1',\n    next = '%2',\n    last = '%3',\n")
        .arg(value(texts.current))
        .arg(value(texts.next))
        .arg(value(texts.last));
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

void readBaseTexts(lua_State* L, const char* key, cBaseTexts* texts)
{
    if (!pushTable(L, key))
        return;
    readText(L, "current", &texts->current, "current not found");
    readText(L, "next", &texts->next, "next not found");
    readText(L, "last", &texts->last, "last not found");
    lua_pop(L, 1);
}

void readOtherSounds(lua_State* L, QStringList* sounds)
{
    if (!pushTable(L, "other_sounds")) {
        qDebug("other_sounds not found");
        return;
    }
    lua_pushnil(L);
    while (lua_next(L, -2) != 0) {
        if (lua_type(L, -1) == LUA_TSTRING)
            sounds->append(toText(L, -1));
        lua_pop(L, 1);
    }
    lua_pop(L, 1);
}

void readZone(lua_State* L, cStop* stop, bool deviceForm)
{
    readInt(L, "radius", &stop->radius, "radius not found");
    if (pushTable(L, "center")) {
        const double scale = deviceForm ? 3600000.0 : 1.0;
        if (getNumber(L, "lon", &stop->lon))
            stop->lon /= scale;
        else
            qDebug("lon not found");
        if (getNumber(L, "lat", &stop->lat))
            stop->lat /= scale;
        else
            qDebug("lat not found");
        lua_pop(L, 1);
    } else {
        qDebug("center not found");
    }
    if (pushTable(L, "course")) {
        stop->course_enabled = true;
        readInt(L, "value", &stop->course_value, "value not found");
        readInt(L, "diff", &stop->course_diff, "diff not found");
        lua_pop(L, 1);
    } else {
        stop->course_enabled = false;
        // The missing course is reported in the centre's words on purpose.
        qDebug("center not found");
    }
}

bool readStop(lua_State* L, cStop* stop, bool deviceForm)
{
    stop->id = getId(L, deviceForm);
    if (stop->id.isNull()) {
        qDebug("No id for stop");
        return false;
    }
    readText(L, "name", &stop->name, "name not found");
    readText(L, "full_name", &stop->full_name, "full_name not found, skipping");
    readBool(L, "is_key_stop", &stop->is_key_stop, "is_key_stop not found");
    readText(L, "sound", &stop->sound, "sound not found");
    readText(L, "other_text", &stop->other_text, "other_text not found");
    readOtherSounds(L, &stop->other_sounds);
    if (!pushTable(L, "zone")) {
        qDebug("zone not found");
        return true;
    }
    readZone(L, stop, deviceForm);
    lua_pop(L, 1);
    return true;
}

bool readBranch(lua_State* L, cBranch* branch, bool deviceForm)
{
    getText(L, "first", &branch->first);
    getText(L, "last", &branch->last);
    lua_pushnil(L);
    while (lua_next(L, -2) != 0) {
        if (lua_istable(L, -1)) {
            lua_checkstack(L, LUA_MINSTACK);
            cStop stop;
            const bool ok = readStop(L, &stop, deviceForm);
            branch->stops.append(stop);
            if (!ok) {
                lua_pop(L, 2);
                return false;
            }
        }
        lua_pop(L, 1);
    }
    return true;
}

bool readBranchField(lua_State* L, const char* key, cBranch* branch, bool deviceForm)
{
    if (!pushTable(L, key))
        return true;
    const bool ok = readBranch(L, branch, deviceForm);
    lua_pop(L, 1);
    return ok;
}

} // namespace

QString deviceFileName(const QString& path)
{
    // Either separator, as projects made on Windows hold backslashes. The
    // extension is the last dot's letters and digits; checks run this for
    // every sound of a city's project, so no pattern is matched.
    const int separator = qMax(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    const auto isAsciiAlnum = [](QChar c) {
        return (c >= QLatin1Char('a') && c <= QLatin1Char('z')) || (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
    };
    if (dot > separator && dot + 1 < path.size() && std::all_of(path.begin() + dot + 1, path.end(), isAsciiAlnum))
        return path.mid(separator + 1, dot - separator - 1) + QStringLiteral(".wav");
    return path.mid(separator + 1);
}

QString devicePath(const QString& path)
{
    return path.isEmpty() ? path : QStringLiteral("/sdmmc/voskdev/%1").arg(deviceFileName(path));
}

QString writeRoute(const cRoute& route, bool deviceForm)
{
    return QStringLiteral(
               "{\n  version = 1,\n\n  id = '%1',\n  name = '%2',\n  short_name = '%3',\n\n"
               "  type = '%4',\n\n  play_sound = %5,\n  display_text = %6,\n\n"
               "  base_sound =\n  {\n%7  },\n\n  base_text =\n  {\n%8  },\n\n"
               "  stops =\n  {\n\n    direct =\n%9\n    reverse =\n%10\n  },\n\n"
               "  events =\n  {\n%11  },\n}\n")
        .arg(route.id.toString())
        .arg(route.name)
        .arg(route.short_name)
        .arg(route.type)
        .arg(boolText(route.play_sound))
        .arg(boolText(route.display_text))
        .arg(writeBaseTexts(route.base_sound, deviceForm))
        .arg(writeBaseTexts(route.base_text, false))
        .arg(writeBranch(route.direct, deviceForm))
        .arg(writeBranch(route.reverse, deviceForm))
        .arg(QString());
}

bool readRoute(cRoute& route, lua_State* L, bool deviceForm)
{
    const int top = lua_gettop(L);
    lua_checkstack(L, LUA_MINSTACK);
    IdPresence presence = IdPresence::Missing;
    route.id = getId(L, deviceForm, &presence);
    if (presence == IdPresence::Missing && !deviceForm)
        qDebug("id not found");
    if (route.id.isNull()) {
        qDebug("No ID for route");
        return false;
    }
    readText(L, "name", &route.name, "name not found");
    readText(L, "short_name", &route.short_name, "short_name not found");
    readText(L, "type", &route.type, "type not found");
    readBool(L, "play_sound", &route.play_sound, "play_sound not found");
    readBool(L, "display_text", &route.display_text, "display_text not found");
    readBaseTexts(L, "base_sound", &route.base_sound);
    readBaseTexts(L, "base_text", &route.base_text);
    if (!pushTable(L, "stops"))
        return true;
    bool ok = readBranchField(L, "direct", &route.direct, deviceForm);
    if (ok)
        ok = readBranchField(L, "reverse", &route.reverse, deviceForm);
    lua_settop(L, top);
    return ok;
}
