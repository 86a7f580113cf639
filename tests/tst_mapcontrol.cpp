#include "anglepointer.h"
#include "guisupport.h"
#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "mbtiles.h"
#include "routeoverlay.h"
#include "startup.h"
#include "testsupport.h"
#include "tileloader.h"
#include "tileserver.h"

#include <QtTest>
#include <QApplication>
#include <QNetworkProxy>
#include <QPaintEngine>
#include <QSqlDatabase>
#include <QSqlQuery>

using namespace guisupport;
using namespace qmapcontrol;

Q_DECLARE_METATYPE(const QMouseEvent*)

namespace {

// Keeps every line a painter draws, with the pen it was drawn with, and
// every ellipse and polyline.
class cLineRecorder : public QPaintDevice, public QPaintEngine
{
public:
    cLineRecorder() : QPaintEngine(AllFeatures) {}
    QPaintEngine* paintEngine() const override { return const_cast<cLineRecorder*>(this); }
    int metric(PaintDeviceMetric metric) const override { return metric == PdmDepth ? 32 : 400; }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState& state) override { pen = state.pen(); }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawLines(const QLine* lines, int count) override
    {
        for (int i = 0; i < count; ++i)
            drawn << qMakePair(QLineF(lines[i]), pen);
    }

    void drawLines(const QLineF* lines, int count) override
    {
        for (int i = 0; i < count; ++i)
            drawn << qMakePair(lines[i], pen);
    }
    void drawEllipse(const QRectF& rect) override { ellipses << rect; }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        if (mode == PolylineMode)
            polylines << QVector<QPointF>(points, points + count);
    }
    void drawTextItem(const QPointF&, const QTextItem&) override {}

    QPen pen;
    QList<QPair<QLineF, QPen>> drawn;
    QList<QRectF> ellipses;
    QList<QVector<QPointF>> polylines;
};

void drag(QWidget* widget, const QPoint& from, const QPoint& to)
{
    sendMouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseMove, to, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseButtonRelease, to);
}

// A shown control of OSM tiles from the test server, with a disk cache when
// a folder is given.
struct cOsmMap
{
    cOsmMap(const QPointF& centre, int zoom, const QSize& size, const QString& cache = QString())
    {
        if (!cache.isEmpty())
            map.enablePersistentCache(QDir(cache), 10);
        map.resize(size);
        map.addLayer(&layer);
        map.setView(centre);
        map.setZoom(zoom);
        map.show();
    }
    bool shows(const QPoint& at, int z, int x, int y)
    {
        return map.grab().toImage().pixel(at) == cTileServer::blockColour(z, x, y);
    }
    // Whether all these tiles ("osm/z/x/y") are loaded.
    bool holds(const QStringList& tiles) const
    {
        for (const QString& tile : tiles) {
            const QStringList zxy = tile.split(QLatin1Char('/'));
            const QString key = adapter.tileKey(zxy.at(2).toInt(), zxy.at(3).toInt(), zxy.at(1).toInt());
            if (map.tileLoader()->image(key).isNull())
                return false;
        }
        return true;
    }

    OSMMapAdapter adapter;
    MapLayer layer{QStringLiteral("OSM"), &adapter};
    MapControl map;
};

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

int warningsAbout(const QStringList& messages, const QString& text)
{
    return int(std::count_if(messages.cbegin(), messages.cend(),
                             [&text](const QString& message) { return message.contains(text); }));
}

} // namespace

class tst_MapControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void adaptersAddressTheirTiles();
    void mouseWheelAndKeys();
    void slowServerLeavesTheMapUsable();
    void politeRequests();
    void troubledServerIsLeftAlone_data();
    void troubledServerIsLeftAlone();
    void missingTilesAreNotAskedAgain();
    void applicationProxyCarriesTheTiles();
    void offlineMapFromMbtiles();
    void brokenOfflineMapsSayWhy_data();
    void brokenOfflineMapsSayWhy();
    void routeOverlayDrawsEveryStopToScale();
    void anglePointerDrawsTheCourse_data();
    void anglePointerDrawsTheCourse();

private:
    cTileServer server;
};

void tst_MapControl::initTestCase()
{
    qRegisterMetaType<const QMouseEvent*>();
    QVERIFY(server.start());
    qputenv(MapAdapter::serverVariable, server.url().toLatin1());
}

void tst_MapControl::init()
{
    server.setDelay(0);
    server.setStatus(0);
    server.setDropping(false);
    server.setTileHeaders(QByteArray());
    if (!server.isListening())
        QVERIFY(server.start());
    // Requests of the last test's map may still be on their way.
    QTRY_VERIFY(server.isQuiet(200));
    server.clearRequests();
}

void tst_MapControl::adaptersAddressTheirTiles()
{
    OSMMapAdapter osm;
    osm.setZoom(1);
    QCOMPARE(osm.coordinateToDisplay(QPointF(0, 0)), QPoint(256, 256));
    QCOMPARE(osm.coordinateToDisplay(QPointF(-180, 89)), QPoint(0, 0));
    osm.setZoom(25);
    QCOMPARE(osm.currentZoom(), MapAdapter::maxZoom);
    for (const QPoint& pixel : {QPoint(79227412, 41030618), QPoint(1, 2), QPoint(134217727, 134217727)})
        QCOMPARE(osm.coordinateToDisplay(osm.displayToCoordinate(pixel)), pixel);
    QCOMPARE(osm.attribution(), QStringLiteral("\u00a9 OpenStreetMap contributors"));

    // Each service addresses the tile asked for, on the redirected server.
    const auto url = [this](const MapAdapter& adapter, int x, int y, int z) {
        return QString::fromLatin1(adapter.tileUrl(x, y, z).toEncoded()).remove(server.url());
    };
    QCOMPARE(url(osm, 1234, 567, 12), QStringLiteral("/12/1234/567.png"));
    QVERIFY(url(GoogleMapAdapter(GoogleMapAdapter::Hybrid), 1234, 567, 12)
                .contains(QRegularExpression("^/vt\\?lyrs=h&hl=[-\\w]+&x=1234&y=567&z=12$")));
    QCOMPARE(url(bingApiMapadapter(QStringLiteral("Aerial"), QStringLiteral("k y")), 3, 5, 3),
             QStringLiteral("/tiles/a213.jpeg?g=1&key=k%20y")); // Bing's own quadkey example
    // The picture for tile 0, 0 at zoom 1 is centred on 90 W, 66.51326 N.
    QCOMPARE(url(googleApiMapadapter(QStringLiteral("maps.example"), QStringLiteral("key"), {}), 0, 0, 1),
             QStringLiteral("/maps/api/staticmap?center=66.5132604,-90.0000000&zoom=1&size=256x256&maptype=hybrid"
                            "&format=png&key=key"));

    // A source of the user's own is taken as written: sub-domain by tile, quadkey, key.
    const TemplateMapAdapter own(QStringLiteral("https://{s}.tiles.example/{q}/{z}-{x}-{y}.png?k={key}"),
                                 {QStringLiteral("a"), QStringLiteral("b")}, QStringLiteral("k&y"), 16);
    QCOMPARE(own.tileUrl(3, 5, 3).toString(), QStringLiteral("https://a.tiles.example/213/3-3-5.png?k=k%26y"));
    QCOMPARE(own.tileUrl(3, 4, 3).host(), QStringLiteral("b.tiles.example"));
    QCOMPARE(own.maximumZoom(), 16);

    // Without a usable redirect each service goes to its own host.
    const QByteArray redirect = qgetenv(MapAdapter::serverVariable);
    qputenv(MapAdapter::serverVariable, "not a server");
    QTest::ignoreMessage(QtWarningMsg, "Ignoring VOSK_TILE_SERVER: not a server URL");
    QCOMPARE(OSMMapAdapter().host(), QStringLiteral("tile.openstreetmap.org"));
    qunsetenv(MapAdapter::serverVariable);
    QCOMPARE(googleApiMapadapter(QStringLiteral("maps.example"), {}, {}).host(), QStringLiteral("maps.example"));
    qputenv(MapAdapter::serverVariable, redirect);
}

void tst_MapControl::mouseWheelAndKeys()
{
    MapControl map;
    map.resize(400, 300);
    map.setView(QPointF(30.3, 59.9));
    map.setZoom(10);
    QSignalSpy events(&map, &MapControl::mouseEventCoordinate);
    QSignalSpy wheels(&map, &MapControl::mouseWheel);
    QSignalSpy views(&map, &MapControl::viewChanged);

    // A drag keeps the grabbed place under the cursor; every event is reported.
    const QPointF grabbed = map.coordinateAt(QPoint(200, 150));
    drag(&map, QPoint(200, 150), QPoint(150, 120));
    QCOMPARE(map.pixelAt(grabbed), QPoint(150, 120));
    QCOMPARE(events.count(), 4);
    QCOMPARE(events.last().at(1).toPointF(), grabbed);
    QCOMPARE(views.count(), 2);
    // A hand's tremble within the drag distance stays a click.
    const QPointF still = map.currentCoordinate();
    const int tremble = QApplication::startDragDistance() - 1;
    drag(&map, QPoint(200, 150), QPoint(200 + tremble, 150));
    QCOMPARE(map.currentCoordinate(), still);

    // A notch zooms around the cursor, with Ctrl around the centre; half notches add up.
    const QPointF underCursor = map.coordinateAt(QPoint(100, 100));
    sendWheel(&map, QPoint(100, 100), 120);
    QCOMPARE(map.currentZoom(), 11);
    QVERIFY((map.pixelAt(underCursor) - QPoint(100, 100)).manhattanLength() <= 1);
    const QPointF centre = map.currentCoordinate();
    sendWheel(&map, QPoint(100, 100), -60, 2, Qt::ControlModifier);
    QCOMPARE(views.last().at(1).toInt(), 10);
    QVERIFY((map.pixelAt(centre) - QPoint(200, 150)).manhattanLength() <= 1);

    // Keys zoom around the centre and pan.
    QTest::keyClick(&map, Qt::Key_Plus);
    QTest::keyClick(&map, Qt::Key_PageUp);
    QTest::keyClick(&map, Qt::Key_Minus);
    QCOMPARE(map.currentZoom(), 11);
    QVERIFY((map.pixelAt(centre) - QPoint(200, 150)).manhattanLength() <= 1);
    QTest::keyClick(&map, Qt::Key_Right);
    QTest::keyClick(&map, Qt::Key_Up);
    QCOMPARE(map.pixelAt(centre), QPoint(200 - 75, 150 + 75));

    // Switched off, the wheel only reports, keys pass on; mode None reports without panning.
    map.enableMouseWheelEvents(false);
    map.enableKeyboardNavigation(false);
    map.setMouseMode(MapControl::None);
    const QPointF kept = map.currentCoordinate();
    sendWheel(&map, QPoint(100, 100), 120);
    QTest::keyClick(&map, Qt::Key_Plus);
    QTest::keyClick(&map, Qt::Key_Left);
    drag(&map, QPoint(200, 150), QPoint(100, 100));
    QCOMPARE(map.currentZoom(), 11);
    QCOMPARE(map.currentCoordinate(), kept);
    QCOMPARE(wheels.count(), 4);
    QCOMPARE(events.count(), 12);
}

void tst_MapControl::slowServerLeavesTheMapUsable()
{
    server.setDelay(60 * 1000);
    cOsmMap osm(QPointF(37.62, 55.75), 12, QSize(600, 400));
    // Twelve tiles are on screen; two are asked for at once.
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), TileLoader::maxRequestsPerHost, 10000);
    QTest::qWait(300);
    QCOMPARE(server.requests().size(), TileLoader::maxRequestsPerHost);
    const QStringList first = server.requests();

    // Far away, the waiting loads are dropped (freeing their places) and the
    // new place's tiles asked for.
    osm.map.setView(QPointF(-70.0, -30.0));
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 2 * TileLoader::maxRequestsPerHost, 10000);
    for (const QString& tile : server.requests().mid(first.size()))
        QVERIFY2(!first.contains(tile), qPrintable(tile));

    // The map keeps following the mouse meanwhile.
    const QPointF grabbed = osm.map.coordinateAt(QPoint(300, 200));
    drag(&osm.map, QPoint(300, 200), QPoint(250, 180));
    QCOMPARE(osm.map.pixelAt(grabbed), QPoint(250, 180));
}

void tst_MapControl::politeRequests()
{
    QTemporaryDir cache;
    const QPointF centre(37.62, 55.75);
    const QSize size(600, 400);
    const auto around = [&](int zoom) { return visibleTiles(QStringLiteral("osm"), centre, zoom, size, true).keys(); };
    server.setDelay(100);
    {
        // The view and one ring around it, each tile once, two at a time,
        // named, and without asking caches to step aside.
        cOsmMap osm(centre, 12, size, cache.path());
        QTRY_COMPARE_WITH_TIMEOUT(sorted(server.requests()), around(12), 20000);
        QCOMPARE(server.mostAtOnce(), TileLoader::maxRequestsPerHost);
        QVERIFY2(server.lastUserAgent().startsWith("Voskantor/1.21 (bus stop"), server.lastUserAgent().constData());
        for (const QByteArray& head : server.heads())
            QVERIFY2(!head.contains("Cache-Control") && !head.contains("Pragma"), head.constData());
        QTRY_VERIFY(osm.holds(around(12)) && drawnInPlace(&osm.map, QStringLiteral("osm"), centre, 12));

        // Hidden, it stops asking, though tiles are still missing.
        server.setDelay(400);
        server.clearRequests();
        osm.map.setView(QPointF(-70.0, -30.0));
        QTRY_COMPARE(server.requests().size(), TileLoader::maxRequestsPerHost);
        osm.map.hide();
        QTest::qWait(600);
        QCOMPARE(server.requests().size(), TileLoader::maxRequestsPerHost);
    }
    server.setDelay(0);
    QTRY_VERIFY(server.isQuiet(200));
    server.clearRequests();
    {
        // A tile the server said nothing about is good for a week.
        cOsmMap again(centre, 12, size, cache.path());
        QTRY_VERIFY(drawnInPlace(&again.map, QStringLiteral("osm"), centre, 12));
        QTest::qWait(200);
        QCOMPARE(server.requests(), QStringList());
    }

    // Expired tiles are shown from disk and asked after with their ETag;
    // the server's 304 keeps them, and nothing more is asked.
    server.setTileHeaders("Cache-Control: max-age=0\r\n");
    {
        cOsmMap first(centre, 13, size, cache.path());
        QTRY_VERIFY_WITH_TIMEOUT(first.holds(around(13)), 20000);
    }
    server.clearRequests();
    cOsmMap stale(centre, 13, size, cache.path());
    QTRY_VERIFY(drawnInPlace(&stale.map, QStringLiteral("osm"), centre, 13));
    QTRY_COMPARE_WITH_TIMEOUT(sorted(server.requests()), around(13), 20000);
    QTest::qWait(200);
    QCOMPARE(server.requests().size(), around(13).size());
    for (int i = 0; i < server.requests().size(); ++i) {
        const QByteArray etag = server.requests().at(i).toLatin1().replace('/', '-');
        QVERIFY2(server.heads().at(i).contains("\r\nIf-None-Match: \"" + etag + '"'), server.heads().at(i).constData());
    }
    QVERIFY(drawnInPlace(&stale.map, QStringLiteral("osm"), centre, 13));
}

void tst_MapControl::troubledServerIsLeftAlone_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<int>("leftAloneMs");
    QTest::newRow("429, seconds") << 429 << QByteArray("Retry-After: 1\r\n") << "" << "too many requests" << 1000;
    // The date is filled in when the row runs, two seconds ahead.
    QTest::newRow("503, a date") << 503 << QByteArray("Retry-After: %1\r\n") << ""
                                 << "service unavailable" << 1000;
    QTest::newRow("500") << 500 << QByteArray() << "" << "server error (HTTP 500)" << TileLoader::firstBackOffMs;
    QTest::newRow("dropped") << 0 << QByteArray() << "drop" << "connection closed by the server"
                             << TileLoader::firstBackOffMs;
    QTest::newRow("slow") << 0 << QByteArray() << "slow" << "no answer in time" << TileLoader::firstBackOffMs;
    QTest::newRow("refused") << 0 << QByteArray() << "stop" << "connection refused" << TileLoader::firstBackOffMs;
}

void tst_MapControl::troubledServerIsLeftAlone()
{
    QFETCH(int, status);
    QFETCH(QByteArray, headers);
    QFETCH(QString, trouble);
    QFETCH(QString, reason);
    QFETCH(int, leftAloneMs);
    const QString inTwoSeconds = QLocale::c().toString(QDateTime::currentDateTimeUtc().addSecs(2),
                                                       QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'"));
    server.setStatus(status, headers.replace("%1", inTwoSeconds.toLatin1()));
    server.setDropping(trouble == QLatin1String("drop"));
    server.setDelay(trouble == QLatin1String("slow") ? 60 * 1000 : 0);
    if (trouble == QLatin1String("stop"))
        server.stop();
    testsupport::cMessageCapture log;
    cOsmMap osm(QPointF(0.0, 0.0), 2, QSize(300, 300));
    osm.map.tileLoader()->setTransferTimeout(300);

    // Said in the map, logged once for all its tiles.
    const QString notice = QStringLiteral("Map tiles cannot be loaded: %1 (%2)").arg(reason, server.host());
    QTRY_COMPARE_WITH_TIMEOUT(osm.map.notices(), QStringList{notice}, 5000);
    const qint64 failedAt = server.elapsed();
    const int asked = server.requests().size();
    QVERIFY(server.mostAtOnce() <= TileLoader::maxRequestsPerHost);
    QCOMPARE(warningsAbout(log.messages(), QStringLiteral("Map tiles cannot be loaded from")), 1);

    // The server as a whole is left alone for the wait, then asked again;
    // the notice goes when tiles come.
    server.setStatus(0);
    server.setDropping(false);
    server.setDelay(0);
    if (trouble == QLatin1String("stop"))
        QVERIFY(server.start());
    QTRY_VERIFY_WITH_TIMEOUT(osm.shows(QPoint(150, 150), 2, 2, 2), 5000);
    QTRY_VERIFY(osm.map.notices().isEmpty());
    QVERIFY(server.requests().size() > asked);
    const qint64 waited = server.times().at(asked) - failedAt;
    QVERIFY2(waited >= leftAloneMs - 200, qPrintable(QString::number(waited)));
}

void tst_MapControl::missingTilesAreNotAskedAgain()
{
    server.setStatus(404);
    cOsmMap osm(QPointF(0.0, 0.0), 1, QSize(200, 200));
    const QStringList world = {"osm/1/0/0", "osm/1/0/1", "osm/1/1/0", "osm/1/1/1"};
    QTRY_VERIFY2(sorted(server.requests()) == world, qPrintable(server.requests().join(' ')));

    // Not in this run, though the server has them now; nothing is amiss.
    server.setStatus(0);
    osm.map.setZoom(2);
    QTRY_VERIFY(osm.shows(QPoint(100, 100), 2, 2, 2));
    osm.map.setZoom(1);
    QTest::qWait(300);
    QCOMPARE(sorted(server.requests().filter(QStringLiteral("osm/1/"))), world);
    QVERIFY(osm.map.notices().isEmpty());
}

void tst_MapControl::applicationProxyCarriesTheTiles()
{
    // Only the proxy (the test server) knows the tile host.
    const QByteArray redirect = qgetenv(MapAdapter::serverVariable);
    qputenv(MapAdapter::serverVariable, "http://tiles.invalid:8");
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), server.port()));
    {
        cOsmMap osm(QPointF(0.0, 0.0), 1, QSize(200, 200));
        QTRY_VERIFY_WITH_TIMEOUT(osm.shows(QPoint(100, 100), 1, 1, 1), 10000);
    }
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    qputenv(MapAdapter::serverVariable, redirect);
}

void tst_MapControl::offlineMapFromMbtiles()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("city.mbtiles"));
    QVERIFY(writeMbtiles(file, QStringLiteral("0,-60,180,60"),
                         QStringLiteral("<a href=\"https://example.org/copyright\">&copy; Example</a>")));
    MBTilesMapAdapter adapter(file);
    MapLayer layer(QStringLiteral("Offline"), &adapter);
    MapControl map;
    map.resize(600, 600);
    map.addLayer(&layer);
    map.setView(QPointF(0.0, 0.0));
    map.setZoom(2);
    map.show();
    const auto shows = [&map](const QPoint& at, int z, int x, int y) {
        return map.grab().toImage().pixel(at) == cTileServer::blockColour(z, x, y);
    };

    // Rows come back in the map's order; the file's notice is shown.
    QTRY_VERIFY(shows(QPoint(44, 44), 2, 1, 1) && shows(QPoint(300, 44), 2, 2, 1) && shows(QPoint(44, 300), 2, 1, 2)
                && shows(QPoint(300, 300), 2, 2, 2));
    QCOMPARE(map.attribution(), QStringLiteral("\u00a9 Example"));
    QVERIFY(map.notices().isEmpty());

    // Beyond its levels the nearest one is scaled; outside its bounds the map says so.
    map.setZoom(3);
    QTRY_VERIFY(shows(QPoint(330, 330), 2, 2, 2) && !shows(QPoint(333, 333), 2, 2, 2));
    map.setView(QPointF(-120.0, 0.0));
    QTRY_COMPARE(map.notices(), QStringList{QStringLiteral("No tiles here: this area lies outside the map")});
    QCOMPARE(server.requests(), QStringList());
}

void tst_MapControl::brokenOfflineMapsSayWhy_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "missing" << "the file does not exist";
    QTest::newRow("not SQLite") << "text" << "not an SQLite database";
    QTest::newRow("no tiles") << "schema" << "no table of tiles: not an MBTiles file";
    QTest::newRow("vector tiles") << "vector" << "its tiles are of the format \"pbf\", which cannot be shown";
    QTest::newRow("locked") << "locked" << "locked by another program";
}

void tst_MapControl::brokenOfflineMapsSayWhy()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("broken.mbtiles"));
    if (kind == QLatin1String("text"))
        QVERIFY(testsupport::writeFile(file, "Not a database, but long enough to be read as one's header."));
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
        db.setDatabaseName(file);
        QSqlQuery query(db);
        if (kind == QLatin1String("schema"))
            QVERIFY(db.open() && query.exec("CREATE TABLE places (name TEXT)"));
        if (kind == QLatin1String("vector"))
            QVERIFY(writeMbtiles(file, QString(), QString()) && db.open()
                    && query.exec("UPDATE metadata SET value = 'pbf' WHERE name = 'format'"));
        // Another program holds the file while it writes.
        if (kind == QLatin1String("locked"))
            QVERIFY(writeMbtiles(file, QString(), QString()) && db.open()
                    && query.exec("PRAGMA locking_mode = EXCLUSIVE") && query.exec("BEGIN EXCLUSIVE"));
    }
    testsupport::cMessageCapture log;
    cOsmMap osm(QPointF(0.0, 0.0), 2, QSize(300, 300));
    MBTilesMapAdapter adapter(file);
    MapLayer offline(QStringLiteral("Offline"), &adapter);
    osm.layer.setVisible(false);
    osm.map.addLayer(&offline);

    // Said in the map and the log, without holding anything up.
    const QString notice = QStringLiteral("Offline map cannot be read: %1 (broken.mbtiles)").arg(reason);
    QTRY_COMPARE_WITH_TIMEOUT(osm.map.notices(), QStringList{notice}, 5000);
    QCOMPARE(warningsAbout(log.messages(), notice), 1);

    // The other sources keep working.
    offline.setVisible(false);
    osm.layer.setVisible(true);
    QTRY_VERIFY(osm.shows(QPoint(150, 150), 2, 2, 2));
    QSqlDatabase::database(QStringLiteral("other"), false).close();
    QSqlDatabase::removeDatabase(QStringLiteral("other"));
}

void tst_MapControl::routeOverlayDrawsEveryStopToScale()
{
    OSMMapAdapter adapter;
    RouteOverlay route;
    route.setLineColour(Qt::blue);
    QVector<RouteStop> stops(3);
    stops[0].coordinate = QPointF(37.6000, 55.7500);
    stops[0].radius = 35;
    stops[1].coordinate = QPointF(37.6012, 55.7509);
    stops[1].radius = 120;
    stops[1].toolTip = QStringLiteral("Second");
    stops[2].coordinate = QPointF(37.6030, 55.7504);
    stops[2].hasCourse = true;
    stops[2].course = 90;
    route.setStops(stops);

    for (int zoom : {15, 17}) {
        adapter.setZoom(zoom);
        QVector<QPointF> centres;
        for (const RouteStop& stop : stops)
            centres << QPointF(adapter.coordinateToDisplay(stop.coordinate));
        cLineRecorder recorder;
        {
            QPainter painter(&recorder);
            route.draw(&painter, &adapter, QRect(centres.first().toPoint() - QPoint(500, 500), QSize(1000, 1000)),
                       QPoint());
        }
        // The zones to scale on the sphere of the mean Earth radius, then
        // a marker for every stop.
        QCOMPARE(recorder.ellipses.size(), 5);
        for (int i = 0; i < 2; ++i) {
            const double metresPerPixel =
                2 * M_PI * 6371008.8 * std::cos(qDegreesToRadians(stops[i].coordinate.y())) / (256.0 * (1 << zoom));
            QCOMPARE(recorder.ellipses.at(i).center(), centres.at(i));
            QVERIFY(qAbs(recorder.ellipses.at(i).width() / 2 - stops[i].radius / metresPerPixel) < 0.01);
        }
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(recorder.ellipses.at(2 + i).center(), centres.at(i));
            QCOMPARE(recorder.ellipses.at(2 + i).width(), 2.0 * RouteOverlay::markerRadius);
        }
        // One line through them in order; the course points east.
        QCOMPARE(recorder.polylines, QList<QVector<QPointF>>{centres});
        QVERIFY(std::any_of(recorder.drawn.cbegin(), recorder.drawn.cend(), [&](const QPair<QLineF, QPen>& line) {
            return line.first == QLineF(centres.at(2), centres.at(2) + QPointF(RouteOverlay::arrowLength, 0));
        }));
        QCOMPARE(route.toolTipAt(centres.at(1).toPoint() + QPoint(5, 5), &adapter), QStringLiteral("Second"));
        QCOMPARE(route.toolTipAt(centres.at(1).toPoint() + QPoint(15, 15), &adapter), QString());
    }
}

void tst_MapControl::anglePointerDrawsTheCourse_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("diff");
    // Tip, the two barbs, the two sector bounds; the stop is at (128, 128).
    QTest::addColumn<QList<QPoint>>("ends");
    QTest::newRow("up") << 0 << 30 << QList<QPoint>{{128, 58}, {132, 70}, {124, 70}, {141, 80}, {115, 80}};
    QTest::newRow("right") << 90 << 30 << QList<QPoint>{{198, 128}, {186, 132}, {186, 124}, {176, 141}, {176, 115}};
    QTest::newRow("down, odd") << 180 << 25
                               << QList<QPoint>{{128, 198}, {124, 186}, {132, 186}, {117, 177}, {139, 177}};
    QTest::newRow("widest") << 0 << 180 << QList<QPoint>{{128, 58}, {132, 70}, {124, 70}, {178, 128}, {78, 128}};
}

void tst_MapControl::anglePointerDrawsTheCourse()
{
    QFETCH(int, value);
    QFETCH(int, diff);
    QFETCH(QList<QPoint>, ends);
    OSMMapAdapter adapter;
    cAnglePointer pointer;
    pointer.setCoordinate(QPointF(0, 0));
    cLineRecorder recorder;
    const auto draw = [&] {
        QPainter painter(&recorder);
        pointer.draw(&painter, &adapter, QRect(0, 0, 256, 256), QPoint());
    };

    // Nothing is drawn before a course is set; the box is there anyway.
    draw();
    QVERIFY(recorder.drawn.isEmpty());
    QCOMPARE(pointer.boundingBox(), QRectF(0, 0, 0.01, 0.01));
    Point onTheStop(0, 0);
    QVERIFY(!pointer.Touches(&onTheStop, &adapter));

    pointer.setCourse(value, diff);
    draw();
    const QPoint stop(128, 128);
    const QList<QLineF> expected = {QLineF(stop, ends.at(0)), QLineF(ends.at(0), ends.at(1)),
                                    QLineF(ends.at(0), ends.at(2)), QLineF(stop, ends.at(3)), QLineF(stop, ends.at(4))};
    QCOMPARE(recorder.drawn.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(recorder.drawn.at(i).first, expected.at(i));
        QCOMPARE(recorder.drawn.at(i).second.color(), QColor(Qt::red));
        QCOMPARE(recorder.drawn.at(i).second.widthF(), i < 3 ? 2.0 : 1.0);
    }
}

VOSK_GUI_TEST_MAIN(tst_MapControl)
#include "tst_mapcontrol.moc"
