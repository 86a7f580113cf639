#include "routetable.h"
#include "testsupport.h"

#include <QtTest>

#include <lua.hpp>

using namespace testsupport;

namespace {

// A route with one key stop in the direct branch, an alternate first-stop
// name and an empty reverse branch.
cRoute exampleRoute()
{
    cRoute route;
    route.id = QUuid(QStringLiteral("{3243f6a8-885a-408d-8313-198a2e037073}"));
    route.name = QStringLiteral("Depot - Station");
    route.short_name = QStringLiteral("5");
    route.display_text = false;
    route.base_sound.current = QStringLiteral("C:/snd/stop.mp3");
    route.base_text = {QStringLiteral("Stop: "), QStringLiteral("Next: "), QStringLiteral(". Last")};
    route.direct.first = QStringLiteral("Depot");
    cStop central;
    central.id = QUuid(QStringLiteral("{2b7e1516-28ae-42a6-abf7-158809cf4f3c}"));
    central.name = QStringLiteral("Central");
    central.is_key_stop = true;
    central.sound = QStringLiteral("C:/snd/central.mp3");
    route.direct.stops << central;
    return route;
}

// Runs `route = <text>` and reads it back with the route reader.
bool readBack(const QString& text, bool deviceForm, cRoute* route, QStringList* log = nullptr)
{
    QString error;
    lua_State* L = runInStockLua("route = " + text.toLocal8Bit(), "route", &error);
    if (!L) {
        qWarning() << "Lua refused the route text:" << error;
        return false;
    }
    cMessageCapture capture;
    const int top = lua_gettop(L);
    const bool ok = readRoute(*route, L, deviceForm);
    const bool balanced = lua_gettop(L) == top;
    lua_close(L);
    if (log)
        *log = capture.messages();
    return ok && balanced;
}

} // namespace

class tst_RouteTable : public QObject
{
    Q_OBJECT

private slots:
    void formsAreExact();
    void devicePaths_data();
    void devicePaths();
    void placeholdersInValuesAreSubstituted();
    void missingFieldsKeepDefaultsAndAreLogged();
    void valueKinds();
    void idRules();
    void failingStopEndsTheRead();
};

void tst_RouteTable::formsAreExact()
{
    cRoute route = exampleRoute();
    route.base_sound.next = QStringLiteral("C:/snd/next.ogg");
    route.reverse.last = QStringLiteral("Depot");
    cStop& stop = route.direct.stops[0];
    stop.full_name = QStringLiteral("Central square");
    stop.is_key_stop = false;
    stop.lon = 30.5;
    stop.lat = -12.345678912;
    stop.radius = 40;
    stop.course_enabled = true;
    stop.course_value = 90;
    stop.course_diff = 20;
    stop.other_sounds = QStringList{QStringLiteral("a/one.mp3"), QString(), QStringLiteral("two.OGG")};
    stop.other_text = QStringLiteral("Metro");
    route.reverse.stops << cStop();

    const QString expected = QStringLiteral(
        "{\n  version = 1,\n\n  id = '{3243f6a8-885a-408d-8313-198a2e037073}',\n"
        "  name = 'Depot - Station',\n  short_name = '5',\n\n  type = 'bidir',\n\n"
        "  play_sound = true,\n  display_text = false,\n\n"
        "  base_sound =\n  {\n    current = '/sdmmc/voskdev/stop.wav',\n"
        "    next = '/sdmmc/voskdev/next.wav',\n    last = '',\n  },\n\n"
        "  base_text =\n  {\n    current = 'Stop: ',\n    next = 'Next: ',\n    last = '. Last',\n  },\n\n"
        "  stops =\n  {\n\n    direct =\n    {\n      first = 'Depot',\n\n"
        "      {\n        name  = 'Central',\n        full_name  = 'Central square',\n"
        "        sound = '/sdmmc/voskdev/central.wav',\n"
        "        other_sounds = { '/sdmmc/voskdev/one.wav', '/sdmmc/voskdev/two.wav' },\n"
        "        other_text = 'Metro',\n"
        "        zone  = \n        {\n          type = 'round',\n"
        "          center = { lon = 30.5 * 3600000.0, lat = -12.345679 * 3600000.0 },\n"
        "          radius = 40,\n          course = { value = 90, diff = 20 },\n        },\n      },\n\n"
        "    },\n\n    reverse =\n    {\n      last = 'Depot',\n\n"
        "      {\n        name  = '',\n        sound = '',\n"
        "        zone  = \n        {\n          type = 'round',\n"
        "          center = { lon = 37.619977 * 3600000.0, lat = 55.753697 * 3600000.0 },\n"
        "          radius = 35,\n        },\n      },\n\n"
        "    },\n\n  },\n\n  events =\n  {\n  },\n}\n");
    QCOMPARE(writeRoute(route, true), expected);

    // The project form differs only in stop ids, the stored paths (empty
    // entries kept) and plain degrees.
    QString projectForm = expected;
    projectForm.replace("      {\n        name  = 'Central'", "      {\n        id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}',\n        name  = 'Central'")
        .replace("      {\n        name  = ''", "      {\n        id = '{00000000-0000-0000-0000-000000000000}',\n        name  = ''")
        .replace("/sdmmc/voskdev/stop.wav", "C:/snd/stop.mp3")
        .replace("/sdmmc/voskdev/next.wav", "C:/snd/next.ogg")
        .replace("/sdmmc/voskdev/central.wav", "C:/snd/central.mp3")
        .replace("'/sdmmc/voskdev/one.wav', '/sdmmc/voskdev/two.wav'", "'a/one.mp3', '', 'two.OGG'")
        .replace(" * 3600000.0", "");
    QCOMPARE(writeRoute(route, false), projectForm);
}

void tst_RouteTable::devicePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("windows path with blank") << "C:/snd/Stop 1.mp3" << "/sdmmc/voskdev/Stop 1.wav";
    QTest::newRow("no extension") << "D:/a/b" << "/sdmmc/voskdev/b";
    QTest::newRow("last extension only") << "x.tar.gz" << "/sdmmc/voskdev/x.tar.wav";
    QTest::newRow("upper-case extension") << "/home/u/A.MP3" << "/sdmmc/voskdev/A.wav";
    QTest::newRow("backslashes") << "C:\\snd\\b.ogg" << "/sdmmc/voskdev/b.wav";
    QTest::newRow("dot in folder only") << "/snd.d/readme" << "/sdmmc/voskdev/readme";
    QTest::newRow("extension with blank is no extension") << "/a/b.m p3" << "/sdmmc/voskdev/b.m p3";
    QTest::newRow("cyrillic") << "/звуки/Остановка.flac" << "/sdmmc/voskdev/Остановка.wav";
}

void tst_RouteTable::devicePaths()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(devicePath(path), expected);
}

void tst_RouteTable::placeholdersInValuesAreSubstituted()
{
    // Templates are filled one argument at a time, so "%3" inside the name is
    // the lowest placeholder when the full-name line is substituted.
    cRoute route = exampleRoute();
    route.direct.stops[0].name = QStringLiteral("A%3B");
    const QString text = writeRoute(route, false);
    QVERIFY(text.contains(QStringLiteral("        name  = 'AB',\n        is_key_stop = true,\n")));
    QVERIFY(!text.contains(QStringLiteral("A%3B")));
}

void tst_RouteTable::missingFieldsKeepDefaultsAndAreLogged()
{
    cRoute route;
    QStringList log;
    QVERIFY(readBack(QStringLiteral("{ id = '{3243f6a8-885a-408d-8313-198a2e037073}',"
                                    "  base_sound = { next = 'n' }, base_text = 7,"
                                    "  stops = { direct = { { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}' },"
                                    "                       { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3d}', zone = { radius = 10 } } } } }"),
                     false, &route, &log));
    const QStringList expected{
        "name not found", "short_name not found", "type not found", "play_sound not found",
        "display_text not found", "current not found", "last not found",
        // the first stop has no zone
        "name not found", "full_name not found, skipping", "is_key_stop not found", "sound not found",
        "other_text not found", "other_sounds not found", "zone not found",
        // the second has a zone without centre and course: both report the centre
        "name not found", "full_name not found, skipping", "is_key_stop not found", "sound not found",
        "other_text not found", "other_sounds not found", "center not found", "center not found"};
    QCOMPARE(log, expected);
    const cRoute defaults;
    QCOMPARE(route.type, defaults.type);
    QVERIFY(route.play_sound && route.display_text);
    QCOMPARE(route.base_sound.next, QStringLiteral("n"));
    QCOMPARE(route.direct.stops.size(), 2);
    QCOMPARE(difference(route.direct.stops[0], [&] { cStop s; s.id = route.direct.stops[0].id; return s; }()), QString());
    QCOMPARE(route.direct.stops[1].radius, 10);
    QCOMPARE(route.direct.stops[1].lon, 37.619977);
    QVERIFY(!route.direct.stops[1].course_enabled);
    QCOMPARE(route.direct.stops[1].course_diff, 60);
}

void tst_RouteTable::valueKinds()
{
    cRoute route;
    QVERIFY(readBack(QStringLiteral("{ id = '3243f6a8-885a-408d-8313-198a2e037073', name = 42, short_name = {},"
                                    "  play_sound = 'false', display_text = false,"
                                    "  stops = { direct = { 'skip me', 5, first = 'F', last = 12,"
                                    "    { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}', is_key_stop = 1,"
                                    "      other_sounds = { 'x.mp3', 3, {}, 'y.mp3' },"
                                    "      zone = { radius = '42.9', center = { lon = '30.25', lat = {} },"
                                    "               course = { value = -12.7, diff = 1e300 } } } } } }"),
                     false, &route));
    QCOMPARE(route.id, QUuid(QStringLiteral("{3243f6a8-885a-408d-8313-198a2e037073}")));
    QCOMPARE(route.name, QStringLiteral("42"));
    QCOMPARE(route.short_name, QString());
    QVERIFY(route.play_sound);
    QVERIFY(!route.display_text);
    QCOMPARE(route.direct.first, QStringLiteral("F"));
    QCOMPARE(route.direct.last, QStringLiteral("12"));
    QCOMPARE(route.direct.stops.size(), 1);
    const cStop& stop = route.direct.stops[0];
    QVERIFY(!stop.is_key_stop);
    QCOMPARE(stop.other_sounds, (QStringList{"x.mp3", "y.mp3"}));
    QCOMPARE(stop.radius, 42);
    QCOMPARE(stop.lon, 30.25);
    QCOMPARE(stop.lat, 55.753697);
    QVERIFY(stop.course_enabled);
    QCOMPARE(stop.course_value, -12);
    QCOMPARE(stop.course_diff, std::numeric_limits<int>::max());
}

void tst_RouteTable::idRules()
{
    cRoute route;
    QStringList log;
    QVERIFY(!readBack(QStringLiteral("{ name = 'x' }"), false, &route, &log));
    QCOMPARE(log, (QStringList{"id not found", "No ID for route"}));

    route = cRoute();
    QVERIFY(!readBack(QStringLiteral("{ id = 'not a uuid' }"), false, &route, &log));
    QCOMPARE(log, QStringList{"No ID for route"});

    route = cRoute();
    QVERIFY(readBack(QStringLiteral("{ id = 'not a uuid', stops = { direct = { {}, {} } } }"), true, &route, &log));
    QVERIFY(!route.id.isNull());
    QCOMPARE(route.direct.stops.size(), 2);
    QVERIFY(!route.direct.stops[0].id.isNull() && route.direct.stops[0].id != route.direct.stops[1].id);
}

void tst_RouteTable::failingStopEndsTheRead()
{
    cRoute route;
    QStringList log;
    QVERIFY(!readBack(QStringLiteral("{ id = '{3243f6a8-885a-408d-8313-198a2e037073}',"
                                     "  stops = { direct = { { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3c}', name = 'a' },"
                                     "                       { name = 'b' }, { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3d}' } },"
                                     "            reverse = { { id = '{2b7e1516-28ae-42a6-abf7-158809cf4f3e}' } } } }"),
                      false, &route, &log));
    QCOMPARE(route.direct.stops.size(), 2);
    QCOMPARE(route.direct.stops[1].name, QString());
    QVERIFY(route.direct.stops[1].id.isNull());
    QCOMPARE(route.reverse.stops.size(), 0);
    QCOMPARE(log.last(), QStringLiteral("No id for stop"));
}

QTEST_GUILESS_MAIN(tst_RouteTable)
#include "tst_routetable.moc"
