// A project file above Lua 5.1's 262,143 constants, which is read in
// pieces, damaged where the pieces meet. The input is a list of edits,
// each: a boundary (2 bytes), an offset from it of -256 to 255 (2 bytes),
// an operation and a length (1 byte each), and for insertions and
// overwrites that many bytes. Boundaries are where routes begin, which is
// where the reader cuts its pieces, past the point where Lua gives up on
// the whole file: damage before it would only meet Lua's own parser.
#include "fuzzsupport.h"
#include "projectfile.h"
#include "projectmanager.h"
#include "routechecks.h"

#include <QVector>

#include <lua.hpp>

namespace {

QByteArray base;
QVector<int> boundaries;
int routeCount = 0;

cRoute route(int stopsPerBranch, int soundsPerStop, int* serial)
{
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = QString::number(*serial, 36);
    for (QList<cStop>* stops : {&route.direct.stops, &route.reverse.stops}) {
        for (int s = 0; s < stopsPerBranch; ++s) {
            cStop stop;
            stop.id = QUuid::createUuid();
            stop.name = QString::number(++*serial, 36);
            for (int k = 0; k < soundsPerStop; ++k)
                stop.other_sounds << QString::number(++*serial, 36);
            *stops << stop;
        }
    }
    return route;
}

// Ten routes of stops with many other sounds, numbered apart, hold the
// constants (270,000, as short as the format writes them); the ordinary
// routes after them fill several pieces.
cProject largeProject()
{
    cProject project;
    int serial = 0;
    for (int r = 0; r < 10; ++r)
        project.routes << route(25, 530, &serial);
    for (int r = 0; r < 60; ++r)
        project.routes << route(10, 0, &serial);
    return project;
}

quint16 take16(const uint8_t*& data, const uint8_t* end)
{
    quint16 value = 0;
    for (int i = 0; i < 2 && data != end; ++i)
        value = quint16(value << 8 | *data++);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    fuzz::initialise(argc, argv);
    const cProject project = largeProject();
    routeCount = project.routes.size();
    base = writeProject(project, false).toLocal8Bit();
    int route = 0;
    for (int at = base.indexOf("{\n  version"); at >= 0; at = base.indexOf("{\n  version", at + 1)) {
        if (route++ >= 10)
            boundaries << at;
    }
    boundaries << base.size();
    // Too large for Lua at once, yet opened whole, or the harness tests nothing.
    lua_State* stock = luaL_newstate();
    const bool tooLarge = luaL_loadbuffer(stock, base.constData(), size_t(base.size()), "=chunk") != 0
        && QByteArray(lua_tostring(stock, -1)) == "constant table overflow";
    lua_close(stock);
    if (!tooLarge)
        fuzz::fail("the large project is not above the constant limit");
    cProjectManager manager;
    if (!manager.openProject(fuzz::writeInput(base)) || manager.project()->routes.size() != routeCount)
        fuzz::fail("the undamaged large project does not open");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray text = base;
    const uint8_t* end = data + size;
    for (int edit = 0; edit < 8 && end - data >= 6; ++edit) {
        const int boundary = boundaries.at(take16(data, end) % boundaries.size());
        const int at = qBound(0, boundary + take16(data, end) % 512 - 256, text.size());
        const int operation = data[0] % 4;
        const int length = qMin(int(data[1]), int(end - data - 2));
        data += 2;
        const QByteArray bytes = fuzz::bytes(data, size_t(length));
        switch (operation) {
        case 0:
            text.insert(at, bytes);
            data += length;
            break;
        case 1:
            text.replace(at, length, bytes);
            data += length;
            break;
        case 2:
            text.remove(at, length);
            break;
        default:
            text.truncate(at);
            break;
        }
    }
    cProjectManager manager;
    if (!manager.openProject(fuzz::writeInput(text)))
        return 0;
    fuzz::checkIds(manager.project()->routes);
    return 0;
}
