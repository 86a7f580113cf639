#include "testsupport.h"

#include "geo.h"
#include "projectmanager.h"
#include "routetable.h"

#include <QDebug>
#include <QFile>
#include <QMutex>
#include <QStringList>

#include <cmath>
#include <linux/capability.h>
#include <lua.hpp>
#include <sys/syscall.h>
#include <unistd.h>

namespace testsupport {

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void honourFilePermissions()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    if (geteuid() != 0 || syscall(SYS_capget, &header, data) != 0)
        return;
    data[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
    if (syscall(SYS_capset, &header, data) != 0)
        qFatal("cannot give up root's file access");
}

namespace {

template <typename T>
QString compareField(const char* name, const T& a, const T& b)
{
    if (a == b)
        return QString();
    QString left;
    QString right;
    QDebug(&left) << a;
    QDebug(&right) << b;
    return QStringLiteral("%1: %2 != %3").arg(QLatin1String(name), left, right);
}

#define VOSK_COMPARE(field)                                   \
    do {                                                      \
        const QString d = compareField(#field, a.field, b.field); \
        if (!d.isEmpty())                                     \
            return d;                                         \
    } while (false)

QString difference(const cBaseTexts& a, const cBaseTexts& b)
{
    VOSK_COMPARE(current);
    VOSK_COMPARE(next);
    VOSK_COMPARE(last);
    return QString();
}

QString difference(const cBranch& a, const cBranch& b)
{
    VOSK_COMPARE(first);
    VOSK_COMPARE(last);
    VOSK_COMPARE(stops.size());
    for (int i = 0; i < a.stops.size(); ++i) {
        const QString d = testsupport::difference(a.stops[i], b.stops[i]);
        if (!d.isEmpty())
            return QStringLiteral("stop %1: %2").arg(i).arg(d);
    }
    return QString();
}

} // namespace

QString difference(const cStop& a, const cStop& b)
{
    VOSK_COMPARE(name);
    VOSK_COMPARE(full_name);
    VOSK_COMPARE(is_key_stop);
    VOSK_COMPARE(lon);
    VOSK_COMPARE(lat);
    VOSK_COMPARE(radius);
    VOSK_COMPARE(course_enabled);
    VOSK_COMPARE(course_value);
    VOSK_COMPARE(course_diff);
    VOSK_COMPARE(sound);
    VOSK_COMPARE(other_sounds);
    VOSK_COMPARE(other_text);
    VOSK_COMPARE(id);
    return QString();
}

QString difference(const cRoute& a, const cRoute& b)
{
    VOSK_COMPARE(name);
    VOSK_COMPARE(short_name);
    VOSK_COMPARE(type);
    VOSK_COMPARE(play_sound);
    VOSK_COMPARE(display_text);
    VOSK_COMPARE(id);
    QString d = difference(a.base_sound, b.base_sound);
    if (d.isEmpty())
        d = difference(a.base_text, b.base_text);
    if (!d.isEmpty())
        return QStringLiteral("base messages: ") + d;
    d = difference(a.direct, b.direct);
    if (!d.isEmpty())
        return QStringLiteral("direct: ") + d;
    d = difference(a.reverse, b.reverse);
    return d.isEmpty() ? d : QStringLiteral("reverse: ") + d;
}

QString difference(const cProject& a, const cProject& b)
{
    VOSK_COMPARE(id);
    VOSK_COMPARE(version);
    VOSK_COMPARE(routes.size());
    for (int i = 0; i < a.routes.size(); ++i) {
        const QString d = difference(a.routes[i], b.routes[i]);
        if (!d.isEmpty())
            return QStringLiteral("route %1: %2").arg(i).arg(d);
    }
    return QString();
}

#undef VOSK_COMPARE

QString deviceDifference(const cRoute& read, cRoute original)
{
    cBaseTexts& sounds = original.base_sound;
    sounds = {devicePath(sounds.current), devicePath(sounds.next), devicePath(sounds.last)};
    const QList<QPair<cBranch*, const cBranch*>> branches{{&original.direct, &read.direct},
                                                          {&original.reverse, &read.reverse}};
    for (const auto& branch : branches) {
        for (int i = 0; i < qMin(branch.first->stops.size(), branch.second->stops.size()); ++i) {
            cStop& stop = branch.first->stops[i];
            const cStop& got = branch.second->stops.at(i);
            if (got.id.isNull() || got.id == stop.id || qAbs(got.lon - stop.lon) > 1e-9 || qAbs(got.lat - stop.lat) > 1e-9)
                return QStringLiteral("id or place of stop ") + stop.name;
            stop.id = got.id;
            stop.lon = got.lon;
            stop.lat = got.lat;
            stop.sound = devicePath(stop.sound);
            const QStringList others = stop.other_sounds;
            stop.other_sounds.clear();
            for (const QString& other : others) {
                if (!other.isEmpty())
                    stop.other_sounds << devicePath(other);
            }
        }
    }
    return difference(read, original);
}

cRoute sampleRoute()
{
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = QStringLiteral("Депо — Вокзал");
    route.short_name = QStringLiteral("5к");
    route.type = QStringLiteral("round");
    route.play_sound = false;
    route.display_text = true;
    route.base_sound = {QStringLiteral("/snd/текущая.mp3"), QStringLiteral("/snd/next.ogg"), QString()};
    route.base_text = {QStringLiteral("Остановка: "), QStringLiteral("Следующая: "), QStringLiteral(". Конечная")};
    route.direct.first = QStringLiteral("Депо");

    cStop central;
    central.id = QUuid::createUuid();
    central.name = QStringLiteral("Центральная");
    central.full_name = QStringLiteral("Площадь Центральная");
    central.is_key_stop = true;
    central.lon = 30.5;
    central.lat = 59.938806;
    central.radius = 50;
    central.course_enabled = true;
    central.course_value = 270;
    central.course_diff = 45;
    central.sound = QStringLiteral("/snd/центральная.mp3");
    central.other_sounds = QStringList{QStringLiteral("/snd/a.ogg"), QStringLiteral("/snd/b.flac")};
    central.other_text = QStringLiteral("Пересадка на метро");
    route.direct.stops << central;

    cStop plain;
    plain.id = QUuid::createUuid();
    plain.name = QStringLiteral("Школа");
    plain.sound = QStringLiteral("/snd/school.wav");
    route.direct.stops << plain;

    cStop back;
    back.id = QUuid::createUuid();
    back.name = QStringLiteral("Рынок");
    back.lon = -0.1275;
    back.lat = 51.507222;
    back.radius = 120;
    route.reverse.stops << back;
    route.reverse.last = QStringLiteral("Парк");
    return route;
}

cProject generatedProject(int routeCount, int stopsPerBranch)
{
    cProject project;
    int serial = 0;
    for (int r = 0; r < routeCount; ++r) {
        cRoute route;
        route.id = QUuid::createUuid();
        route.name = QStringLiteral("Маршрут %1").arg(r);
        route.short_name = QString::number(r);
        route.base_sound = {QStringLiteral("C:/snd/current.mp3"), QStringLiteral("C:/snd/next.mp3"),
                            QStringLiteral("C:/snd/last.mp3")};
        route.base_text = {QStringLiteral("Остановка: "), QStringLiteral("Следующая: "), QStringLiteral(". Конечная")};
        // Each route runs straight from its own start across a city, stops
        // 400 m apart; the reverse branch comes back on the other side of the
        // street, 25 m away.
        const double startLon = 37.3 + (r % 20) * 0.02;
        const double startLat = 55.5 + (r / 20 % 20) * 0.02;
        const double heading = (r * 37) % 360;
        for (cBranch* branch : {&route.direct, &route.reverse}) {
            const bool back = branch == &route.reverse;
            for (int s = 0; s < stopsPerBranch; ++s, ++serial) {
                cStop stop;
                stop.id = QUuid::createUuid();
                stop.name = QStringLiteral("Остановка %1").arg(serial);
                double lon = 0;
                double lat = 0;
                const int place = back ? stopsPerBranch - 1 - s : s;
                geo::destination(startLon, startLat, heading, 400.0 * place, &lon, &lat);
                if (back)
                    geo::destination(lon, lat, heading + 90, 25, &lon, &lat);
                // Six decimals keep both coordinates within 8 significant digits.
                stop.lon = std::round(lon * 1e6) / 1e6;
                stop.lat = std::round(lat * 1e6) / 1e6;
                stop.radius = 20 + serial % 80;
                stop.course_enabled = serial % 3 == 0;
                stop.course_value = stop.course_enabled ? int(back ? heading + 180 : heading) % 360 : 0;
                stop.course_diff = stop.course_enabled ? 30 + serial % 60 : 60;
                stop.sound = QStringLiteral("C:/snd/stop_%1.mp3").arg(serial);
                if (serial % 5 == 0)
                    stop.other_sounds << QStringLiteral("C:/snd/transfer.mp3");
                branch->stops << stop;
            }
        }
        project.routes << route;
    }
    return project;
}

lua_State* runInStockLua(const QByteArray& text, const char* name, QString* error)
{
    lua_State* L = luaL_newstate();
    luaL_openlibs(L);
    if (luaL_loadbuffer(L, text.constData(), static_cast<size_t>(text.size()), "=test") != 0
        || lua_pcall(L, 0, 0, 0) != 0) {
        if (error)
            *error = QString::fromLocal8Bit(lua_tostring(L, -1));
        lua_close(L);
        return nullptr;
    }
    lua_getglobal(L, name);
    return L;
}

cSignalRecorder::cSignalRecorder(cProjectManager* manager)
{
    QObject::connect(manager, &cProjectManager::projectCreated, &m_context, [this] { names << "created"; });
    QObject::connect(manager, &cProjectManager::projectOpened, &m_context, [this] { names << "opened"; });
    QObject::connect(manager, &cProjectManager::projectSaved, &m_context, [this] { names << "saved"; });
    QObject::connect(manager, &cProjectManager::routeImported, &m_context, [this](QUuid) { names << "imported"; });
}

namespace {

QMutex capturedMutex;
QStringList captured;

void captureMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    QMutexLocker lock(&capturedMutex);
    captured << message;
}

} // namespace

cMessageCapture::cMessageCapture()
{
    clear();
    qInstallMessageHandler(captureMessage);
}

cMessageCapture::~cMessageCapture()
{
    qInstallMessageHandler(nullptr);
}

QStringList cMessageCapture::messages() const
{
    QMutexLocker lock(&capturedMutex);
    return captured;
}

void cMessageCapture::clear()
{
    QMutexLocker lock(&capturedMutex);
    captured.clear();
}

} // namespace testsupport
