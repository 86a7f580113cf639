#include "geo.h"
#include "routecheck.h"
#include "soundprobe.h"
#include "textrules.h"
#include "testsupport.h"

#include <QtTest>

#include <cmath>

using namespace testsupport;

namespace {

const double baseLon = 30.3;
const double baseLat = 59.9;

cStop stopAt(const QString& name, double eastMetres, double northMetres = 0, int radius = 30)
{
    cStop stop;
    stop.id = QUuid::createUuid();
    stop.name = name;
    double lon = 0;
    double lat = 0;
    geo::destination(baseLon, baseLat, 90, eastMetres, &lon, &lat);
    geo::destination(lon, lat, 0, northMetres, &stop.lon, &stop.lat);
    stop.radius = radius;
    return stop;
}

cStop withCourse(cStop stop, int value, int diff)
{
    stop.course_enabled = true;
    stop.course_value = value;
    stop.course_diff = diff;
    return stop;
}

// A one-way route eastwards, stops 400 m apart, so that only what a case
// changes is reported.
cRoute lineRoute(const QString& name, int stops = 4)
{
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = name;
    route.short_name = name;
    route.type = QStringLiteral("line");
    for (int i = 0; i < stops; ++i)
        route.direct.stops << stopAt(QStringLiteral("Stop %1").arg(i + 1), 400.0 * i);
    return route;
}

// "code branch-and-stop" for each problem, e.g. "zone-overlap d2" or
// "empty-branch r", joined by commas.
QString found(const QList<cRoute>& routes, const cCheckOptions& options = {})
{
    QStringList list;
    for (const cProblem& p : cRouteCheck::run(routes, options)) {
        QString where = p.branch == Branch::Direct ? "d" : p.branch == Branch::Reverse ? "r" : "";
        if (p.stop > 0)
            where += QString::number(p.stop);
        list << (where.isEmpty() ? p.codeText() : p.codeText() + ' ' + where);
    }
    return list.join(", ");
}

QString found(const cRoute& route, const cCheckOptions& options = {})
{
    return found(QList<cRoute>{route}, options);
}

QString makeSound(const QString& path, const QStringList& extra = {})
{
    QStringList args{"-v", "error", "-y", "-f", "lavfi", "-i", "sine=duration=0.2"};
    QProcess::execute("ffmpeg", args + extra + QStringList(path));
    return QFileInfo(path).size() > 0 ? path : QString();
}

} // namespace

class tst_RouteCheck : public QObject
{
    Q_OBJECT

private slots:
    void cleanRouteHasNoProblems();
    void stopValuesAndTheirLimits();
    void neighbouringZones();
    void farJumpNeedsBothThresholds();
    void courseWindowsAgainstTravel();
    void directionsThatCannotBeToldApart();
    void emptyBranchesByRouteType();
    void textsOnTheDisplayAndInFiles();
    void soundFilesOnDisk();
    void soundsSharingACardName();
    void scriptNamesAndMissingConverter();
    void problemsKnowTheirPlace();
};

void tst_RouteCheck::cleanRouteHasNoProblems()
{
    cRoute route = lineRoute("5");
    route.type = "bidir";
    // The way back on the other side of the street, with windows that tell
    // the directions apart.
    for (int i = 3; i >= 0; --i) {
        route.direct.stops[i] = withCourse(route.direct.stops[i], 90, 90);
        route.reverse.stops << withCourse(stopAt(QString("Back %1").arg(i), 400.0 * i, 20), 270, 90);
    }
    route.base_text = {"Stop: ", "Next: ", ". Last"};
    QCOMPARE(found(route), QString());
}

void tst_RouteCheck::stopValuesAndTheirLimits()
{
    // Each stop alone in its route, so that neighbours do not count.
    const auto single = [](const std::function<void(cStop&)>& change) {
        cRoute route = lineRoute("1", 1);
        change(route.direct.stops[0]);
        return found(route);
    };
    QCOMPARE(single([](cStop& s) { s.lat = std::nan(""); }), QString("bad-coordinate d1"));
    QCOMPARE(single([](cStop& s) { s.lat = 90.5; }), QString("bad-coordinate d1"));
    QCOMPARE(single([](cStop& s) { s.lon = -180.0001; }), QString("bad-coordinate d1"));
    QCOMPARE(single([](cStop& s) { s.lon = -180; s.lat = 90; }), QString());
    QCOMPARE(single([](cStop& s) { s = cStop(); s.name = "New"; }), QString("unplaced-stop d1"));
    QCOMPARE(single([](cStop& s) { s.lon = cStop().lon + 0.000001; s.lat = cStop().lat; }), QString());
    QCOMPARE(single([](cStop& s) { s.radius = 0; }), QString("bad-radius d1"));
    QCOMPARE(single([](cStop& s) { s.radius = 1001; }), QString("bad-radius d1"));
    QCOMPARE(single([](cStop& s) { s.radius = 1000; }), QString());
    QCOMPARE(single([](cStop& s) { s = withCourse(s, 90, 0); }), QString("bad-course d1"));
    QCOMPARE(single([](cStop& s) { s = withCourse(s, 90, 361); }), QString("bad-course d1"));
    QCOMPARE(single([](cStop& s) { s = withCourse(s, 90, 360); }), QString());
    // Without a window its width does not matter.
    QCOMPARE(single([](cStop& s) { s.course_diff = 0; }), QString());
}

void tst_RouteCheck::neighbouringZones()
{
    cRoute route = lineRoute("3", 0);
    QList<cStop>& s = route.direct.stops;
    s << stopAt("A", 0, 0, 30) << stopAt("B", 70.5, 0, 40) // touch, do not overlap
      << stopAt("C", 140, 0, 40)                            // overlaps B
      << stopAt("D", 141.5, 0, 10)                          // 1.5 m from C
      << stopAt("E", 144, 0, 1)                             // 2.5 m from D: overlap, no duplicate
      << stopAt("F", 600) << stopAt("A", 0, 0, 30);         // back at A, same name
    QCOMPARE(found(route), QString("zone-overlap d3, duplicate-stop d4, zone-overlap d5, duplicate-stop d7"));

    // Unplaced stops are not compared with their neighbours.
    cRoute fresh = lineRoute("4", 0);
    fresh.direct.stops << cStop() << cStop();
    fresh.direct.stops[0].name = "X";
    fresh.direct.stops[1].name = "Y";
    QCOMPARE(found(fresh), QString("unplaced-stop d1, unplaced-stop d2"));
}

void tst_RouteCheck::farJumpNeedsBothThresholds()
{
    const auto jumpRoute = [](double spacing, double jump) {
        cRoute route = lineRoute("J", 0);
        for (int i = 0; i < 5; ++i)
            route.direct.stops << stopAt(QString::number(i), spacing * i);
        route.direct.stops << stopAt("far", spacing * 4 + jump);
        return route;
    };
    QCOMPARE(found(jumpRoute(400, 6000)), QString("far-jump d6"));
    // Ten times the usual spacing, but under 5 km.
    QCOMPARE(found(jumpRoute(300, 4500)), QString());
    // Over 5 km, but less than ten times the usual spacing.
    QCOMPARE(found(jumpRoute(1000, 6000)), QString());
}

void tst_RouteCheck::courseWindowsAgainstTravel()
{
    cRoute route = lineRoute("6", 4);
    QList<cStop>& s = route.direct.stops;
    s[0] = withCourse(s[0], 90, 20);  // first stop: towards the next one
    s[1] = withCourse(s[1], 270, 60); // the other direction's window
    s[2] = withCourse(s[2], 135, 90); // 45° off, just inside
    s[3] = withCourse(s[3], 140, 90); // 50° off, just outside
    QCOMPARE(found(route), QString("course-mismatch d2, course-mismatch d4"));
}

void tst_RouteCheck::directionsThatCannotBeToldApart()
{
    cRoute route = lineRoute("7", 4);
    route.type = "bidir";
    QList<cStop>& d = route.direct.stops;
    d[0] = withCourse(d[0], 90, 60);
    d[1] = withCourse(d[1], 90, 180);
    d[2] = withCourse(d[2], 90, 178);
    QList<cStop>& r = route.reverse.stops;
    r << withCourse(stopAt("r1", 1200, 20), 270, 60)  // d4 has no window
      << withCourse(stopAt("r2", 800, 20), 270, 180)  // a degree short of d3's window
      << withCourse(stopAt("r3", 400, 20), 270, 180)  // meets d2's window at 0° and 180°
      << withCourse(stopAt("r4", 0, 70), 270, 60);    // the zones do not reach each other
    QCOMPARE(found(route), QString("direction-ambiguous d2, direction-ambiguous d4"));
}

void tst_RouteCheck::emptyBranchesByRouteType()
{
    cRoute route = lineRoute("8", 2);
    QCOMPARE(found(route), QString());
    route.type = "bidir";
    QCOMPARE(found(route), QString("empty-branch r"));
    route.direct.stops.clear();
    route.type = "round";
    QCOMPARE(found(route), QString("empty-branch d"));
}

void tst_RouteCheck::textsOnTheDisplayAndInFiles()
{
    cRoute route = lineRoute("9", 8);
    QList<cStop>& s = route.direct.stops;
    s[0].name = "  ";
    s[1].name = " Лесная";
    s[2].full_name = "Площадь  Победы";
    s[3].other_text = "Пересадка\tна метро";
    s[4].name = "Zero\u200bwidth";
    s[5].name = "O'Hare";
    s[6].sound = "C:\\snd\\six.mp3";
    s[7].other_text = "100% и 5%d";         // a percent sign before a letter is harmless
    route.base_text = {"Остановка: ", "Далее %2", ". Конечная"}; // edges meant, but %2 is not
    route.direct.first = "Депо\n";
    QCOMPARE(found(route), QString("unsafe-text, unsafe-text d, empty-name d1, bad-text d2, bad-text d3, bad-text d4, "
                                   "bad-text d5, unsafe-text d6, unsafe-text d7, missing-sound d7"));

    // The save question names each unsafe field.
    const QList<cProblem> unsafe = cTextRules::unsafeTexts({route});
    QCOMPARE(unsafe.size(), 4);
    QVERIFY2(unsafe[0].message.contains("text of the next stop message") && unsafe[0].message.contains("percent"),
             qPrintable(unsafe[0].message));
    QVERIFY2(unsafe[3].message.contains("stop sound") && unsafe[3].message.contains("backslash"),
             qPrintable(unsafe[3].message));
}

void tst_RouteCheck::soundFilesOnDisk()
{
    QTemporaryDir dir;
    const QString mp3 = makeSound(dir.filePath("mp3.mp3"));
    // A tag far longer than the part first read: the frame behind it counts.
    const QString tagged = makeSound(dir.filePath("tagged.mp3"), {"-metadata", "comment=" + QString(3000, 'x')});
    const QString ogg = makeSound(dir.filePath("ogg.ogg"));
    const QString flac = makeSound(dir.filePath("flac.flac"));
    const QString wav = makeSound(dir.filePath("wav.wav"));
    const QString m4a = makeSound(dir.filePath("m4a.m4a"));
    QVERIFY(!mp3.isEmpty() && !tagged.isEmpty() && !ogg.isEmpty() && !flac.isEmpty() && !wav.isEmpty()
            && !m4a.isEmpty());
    QVERIFY(readFile(tagged).indexOf("\xff\xfb") > 3000 || readFile(tagged).indexOf("\xff\xf3") > 3000);
    QVERIFY(writeFile(dir.filePath("text.mp3"), QByteArray("This is not a sound.\n").repeated(40)));
    QVERIFY(writeFile(dir.filePath("empty.wav"), QByteArray()));
    QVERIFY(QDir(dir.path()).mkdir("folder.mp3"));

    cRoute route = lineRoute("10", 7);
    route.base_sound = {mp3, tagged, ogg};
    QList<cStop>& s = route.direct.stops;
    s[0].sound = flac;
    s[0].other_sounds = QStringList{wav, QString(), m4a};
    s[1].sound = dir.filePath("missing.mp3");
    s[2].sound = dir.filePath("text.mp3");
    s[3].sound = dir.filePath("empty.wav");
    s[4].sound = dir.filePath("folder.mp3");
    s[5].sound = mp3;
    s[6].sound = dir.filePath("text.mp3");

    cCheckOptions options;
    options.converter = "ffmpeg";
    const QList<cProblem> problems = cRouteCheck::run({route}, options);
    QCOMPARE(found(route, options), QString("missing-sound d2, undecodable-sound d3, undecodable-sound d4, "
                                            "missing-sound d5, undecodable-sound d7"));
    // ffmpeg's own words say why; an empty file needs no ffmpeg to tell.
    QVERIFY2(problems[1].message.contains("ffmpeg: "), qPrintable(problems[1].message));
    QVERIFY2(problems[2].message.contains("empty"), qPrintable(problems[2].message));

    // Recognised headers never reach the decoder: one that always fails
    // would report them.
    options.converter = "false";
    route.direct.stops = route.direct.stops.mid(0, 1);
    route.direct.stops[0].other_sounds = QStringList{wav};
    QCOMPARE(found(route, options), QString());

    // Without reading headers only existence counts.
    options.readSoundHeaders = false;
    route.direct.stops[0].sound = dir.filePath("text.mp3");
    route.direct.stops[0].other_sounds = QStringList{dir.filePath("missing.mp3")};
    QCOMPARE(found(route, options), QString("missing-sound d1"));
}

void tst_RouteCheck::soundsSharingACardName()
{
    QTemporaryDir dir;
    QDir root(dir.path());
    root.mkpath("a");
    root.mkpath("b");
    root.mkpath("out/voskdev");
    cRoute first = lineRoute("11", 3);
    first.direct.stops[0].sound = root.filePath("a/Gate.mp3");
    first.direct.stops[1].sound = root.filePath("a/./Gate.mp3"); // the same file as the stop before
    first.direct.stops[2].sound = root.filePath("out/voskdev/own.mp3");
    cRoute second = lineRoute("12", 2);
    second.direct.stops[0].sound = root.filePath("b/GATE.ogg"); // another file, same name on the card
    second.direct.stops[1].sound = root.filePath("out/voskdev2/other.mp3");

    cCheckOptions options;
    options.readSoundHeaders = false;
    options.outputDir = root.filePath("out");
    const QString expected("missing-sound d1, missing-sound d2, missing-sound d3, source-in-output d3, "
                           "missing-sound d1, sound-name-clash d1, missing-sound d2");
    QCOMPARE(found({first, second}, options), expected);
}

void tst_RouteCheck::scriptNamesAndMissingConverter()
{
    cRoute a = lineRoute("12/A");
    cRoute b = lineRoute("12_a");
    cRoute c = lineRoute("Ring");
    c.short_name.clear();
    QCOMPARE(found({a, b, c}), QString("script-name-clash"));
    // The names the user gave in the export dialog count.
    cCheckOptions options;
    options.scriptFileNames.insert(b.id, "12b.lua");
    QCOMPARE(found({a, b, c}, options), QString());

    // The converter is needed only when there are sounds to convert.
    options.converter = "voskantor-no-such-program";
    QCOMPARE(found({a}, options), QString());
    a.base_sound.current = "/nonexistent/stop.mp3";
    options.readSoundHeaders = false;
    QCOMPARE(found({a}, options), QString("no-ffmpeg, missing-sound"));
    options.converter = "ffmpeg";
    QCOMPARE(found({a}, options), QString("missing-sound"));
}

void tst_RouteCheck::problemsKnowTheirPlace()
{
    cRoute route = lineRoute("14", 3);
    route.name = "Депо — Вокзал";
    route.direct.stops[2].radius = -5;
    const QList<cProblem> problems = cRouteCheck::run({route}, {});
    QCOMPARE(problems.size(), 1);
    const cProblem& p = problems.first();
    QCOMPARE(p.severity(), Severity::Error);
    QCOMPARE(p.routeId, route.id);
    QCOMPARE(p.stopId, route.direct.stops[2].id);
    QCOMPARE(cProblemText::place(p), QString("Route \"Депо — Вокзал\", direct, stop 3 \"Stop 3\""));
    QVERIFY2(p.message.contains("-5 m"), qPrintable(p.message));
}

QTEST_GUILESS_MAIN(tst_RouteCheck)
#include "tst_routecheck.moc"
