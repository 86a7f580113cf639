#include "anglepointer.h"
#include "guisupport.h"
#include "mapadapters.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "startup.h"
#include "tileloader.h"
#include "tileserver.h"

#include <QtTest>
#include <QApplication>
#include <QNetworkProxy>
#include <QPaintEngine>

using namespace guisupport;
using namespace qmapcontrol;

Q_DECLARE_METATYPE(const QMouseEvent*)

namespace {

// Keeps every line a painter draws, with the pen it was drawn with.
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

    QPen pen;
    QList<QPair<QLineF, QPen>> drawn;
};

void drag(QWidget* widget, const QPoint& from, const QPoint& to)
{
    sendMouse(widget, QEvent::MouseButtonPress, from, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseMove, to, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseButtonRelease, to);
}

// A shown control of OSM tiles from the test server.
struct cOsmMap
{
    cOsmMap(const QPointF& centre, int zoom, const QSize& size)
    {
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

    OSMMapAdapter adapter;
    MapLayer layer{QStringLiteral("OSM"), &adapter};
    MapControl map;
};

} // namespace

class tst_MapControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void adaptersAddressTheirTiles();
    void mouseAndWheel();
    void slowServerLeavesTheMapUsable();
    void failedTilesAreRetriedLater();
    void applicationProxyCarriesTheTiles();
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
    server.setFailing(false);
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

    // Without a usable redirect each service goes to its own host.
    const QByteArray redirect = qgetenv(MapAdapter::serverVariable);
    qputenv(MapAdapter::serverVariable, "not a server");
    QTest::ignoreMessage(QtWarningMsg, "Ignoring VOSK_TILE_SERVER: not a server URL");
    QCOMPARE(OSMMapAdapter().host(), QStringLiteral("tile.openstreetmap.org"));
    qunsetenv(MapAdapter::serverVariable);
    QCOMPARE(googleApiMapadapter(QStringLiteral("maps.example"), {}, {}).host(), QStringLiteral("maps.example"));
    qputenv(MapAdapter::serverVariable, redirect);
}

void tst_MapControl::mouseAndWheel()
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

    // A notch zooms around the cursor; half notches add up.
    const QPointF underCursor = map.coordinateAt(QPoint(100, 100));
    sendWheel(&map, QPoint(100, 100), 120);
    QCOMPARE(map.currentZoom(), 11);
    QVERIFY((map.pixelAt(underCursor) - QPoint(100, 100)).manhattanLength() <= 1);
    sendWheel(&map, QPoint(100, 100), -60);
    QCOMPARE(map.currentZoom(), 11);
    sendWheel(&map, QPoint(100, 100), -60);
    QCOMPARE(views.last().at(1).toInt(), 10);

    // Switched off, the wheel only reports; mode None reports without panning.
    map.enableMouseWheelEvents(false);
    map.setMouseMode(MapControl::None);
    const QPointF centre = map.currentCoordinate();
    sendWheel(&map, QPoint(100, 100), 120);
    drag(&map, QPoint(200, 150), QPoint(100, 100));
    QCOMPARE(map.currentZoom(), 10);
    QCOMPARE(map.currentCoordinate(), centre);
    QCOMPARE(wheels.count(), 4);
    QCOMPARE(events.count(), 8);
}

void tst_MapControl::slowServerLeavesTheMapUsable()
{
    server.setDelay(60 * 1000);
    cOsmMap osm(QPointF(37.62, 55.75), 12, QSize(600, 400));
    // Twelve tiles are on screen; a few are asked for at once.
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

void tst_MapControl::failedTilesAreRetriedLater()
{
    server.setFailing(true);
    cOsmMap osm(QPointF(0.0, 0.0), 1, QSize(200, 200));
    const QStringList tiles = {"osm/1/0/0", "osm/1/0/1", "osm/1/1/0", "osm/1/1/1"};
    const auto allTried = [&](int times) {
        for (const QString& tile : tiles) {
            if (server.requestTimes(tile).size() < times)
                return false;
        }
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(allTried(1), 10000);
    server.setFailing(false);

    // Drawn once a later try succeeds; the try waited, and came only once.
    QTRY_VERIFY_WITH_TIMEOUT(allTried(2), 15000);
    QTRY_VERIFY_WITH_TIMEOUT(osm.shows(QPoint(100, 100), 1, 1, 1), 5000);
    for (const QString& tile : tiles) {
        const QList<qint64> times = server.requestTimes(tile);
        QCOMPARE(times.size(), 2);
        QVERIFY2(times.at(1) - times.at(0) >= TileLoader::firstRetryMs - 100, qPrintable(tile));
    }
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
    QVERIFY2(server.lastUserAgent().startsWith("Voskantor/1."), server.lastUserAgent().constData());
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
