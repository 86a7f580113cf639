#include "anglepointer.h"
#include "guisupport.h"
#include "mapadapter.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "mapviewer.h"
#include "project.h"
#include "routeoverlay.h"
#include "startup.h"
#include "tileloader.h"
#include "tileserver.h"

#include <QtTest>
#include <QApplication>
#include <QComboBox>
#include <QDesktopServices>
#include <QLineEdit>
#include <QNetworkProxy>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QToolButton>

using namespace guisupport;
using namespace qmapcontrol;

namespace {

template <class T>
bool holds(MapLayer* layer)
{
    for (Geometry* geometry : layer->geometries()) {
        if (dynamic_cast<T*>(geometry))
            return true;
    }
    return false;
}

QVariant setting(const char* key) { return QSettings().value(QLatin1String(key)); }

// A branch of stops along a street in Saint Petersburg, some with a course.
cRoute streetRoute(int directStops, int reverseStops)
{
    cRoute route;
    route.id = QUuid::createUuid();
    for (int i = 0; i < directStops + reverseStops; ++i) {
        cStop stop;
        stop.id = QUuid::createUuid();
        stop.name = QStringLiteral("Stop %1").arg(i + 1);
        stop.lon = 30.30 + 0.0021 * (i % directStops);
        stop.lat = 59.93 + (i < directStops ? 0.0004 : -0.0004) * (i % 7);
        stop.radius = 30 + i;
        stop.course_enabled = i % 3 == 0;
        stop.course_value = 90;
        (i < directStops ? route.direct : route.reverse).stops << stop;
    }
    return route;
}

// Records the URLs the program asks the desktop to open.
class cUrlCatcher : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl& url) { urls << url; }

public:
    QList<QUrl> urls;
};

} // namespace

class tst_MapViewer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void firstStartAndKeptState();
    void tilesInPlaceAndOffline();
    void sourcesAndTheirLayers();
    void extraAndOfflineSources();
    void clickPlacesDragPansOkAndCancel();
    void courseEditingWithCtrl();
    void courseEditEndsWithTheWindow();
    void closingCancels();
    void routeAroundTheStop();
    void networkSettings();

private:
    void createViewer();
    MapControl* map() const { return m_viewer->findChild<MapControl*>(); }
    QComboBox* selector() const { return m_viewer->findChild<QComboBox*>(QStringLiteral("mapSourceSelector")); }
    QPushButton* button(int index) const { return m_viewer->findChildren<QPushButton*>().value(index); }
    RouteOverlay* overlay(const QString& name) const
    {
        for (RouteOverlay* overlay : m_viewer->findChildren<RouteOverlay*>()) {
            if (overlay->name() == name)
                return overlay;
        }
        return nullptr;
    }
    // Whether the active (last visible) layer carries the geometry.
    bool shown(Geometry* geometry) const
    {
        for (MapLayer* layer : map()->layers()) {
            if (layer->geometries().contains(geometry))
                return layer->isVisible();
        }
        return false;
    }
    QStringList visibleLayers() const;
    // The course after Ctrl is let go (and pressed again).
    QPair<int, int> course(bool pressAgain = true);

    QTemporaryDir m_temp;
    cTileServer m_server;
    QScopedPointer<cMapViewer> m_viewer;
};

void tst_MapViewer::initTestCase()
{
    // The viewer keeps its tiles in the temporary folder: a private one here.
    qputenv("TMPDIR", m_temp.path().toLocal8Bit());
    QVERIFY(m_server.start());
    qputenv(MapAdapter::serverVariable, m_server.url().toLatin1());
}

void tst_MapViewer::init()
{
    QSettings().clear();
    m_server.clearRequests();
}

void tst_MapViewer::cleanup()
{
    const int unused = dropPendingAnswers();
    m_viewer.reset();
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    QCOMPARE(unused, 0);
    // What the map sent before it went is recorded now, not in the next test.
    QTRY_VERIFY(m_server.isQuiet(200));
}

void tst_MapViewer::createViewer()
{
    m_viewer.reset(new cMapViewer);
    m_viewer->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_viewer.data()));
}

QStringList tst_MapViewer::visibleLayers() const
{
    QStringList names;
    for (MapLayer* layer : map()->layers())
        names << (layer->isVisible() ? layer->layername().toUpper() : layer->layername());
    return names;
}

QPair<int, int> tst_MapViewer::course(bool pressAgain)
{
    QTest::keyRelease(map(), Qt::Key_Control);
    QPair<int, int> course(-1, -1);
    m_viewer->course(&course.first, &course.second);
    if (pressAgain)
        QTest::keyPress(map(), Qt::Key_Control);
    return course;
}

void tst_MapViewer::firstStartAndKeptState()
{
    createViewer();
    QCOMPARE(m_viewer->geometry(), QRect(40, 40, 860, 650));
    QCOMPARE(visibleLayers().join(' '), QStringLiteral("OSM GOOGLE GoogleSat GoogleHyb Bing BingSat BingHyb"));
    QCOMPARE(map()->currentCoordinate(), QPointF(37.33437, 55.50882));
    QCOMPARE(map()->currentZoom(), 17);
    const QDir cache(m_temp.filePath(QStringLiteral("vosk_map_cache")));
    QTRY_VERIFY_WITH_TIMEOUT(!cache.isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot), 10000);

    // A zoom is written at once, the rest when the viewer goes.
    m_viewer->resize(700, 500);
    map()->setZoom(15);
    QCOMPARE(setting("MapViewer/CurrentZoom").toInt(), 15);
    m_viewer.reset();
    QCOMPARE(setting("MapViewer/State/Geometry").toRect(), QRect(40, 40, 700, 500));
    QCOMPARE(setting("MapViewer/State/IsMaximized").toBool(), false);
    QVERIFY(!setting("MapViewer/State/State").toByteArray().isEmpty());
    QCOMPARE(setting("MapViewer/LastCoord").toPointF(), QPointF(37.33437, 55.50882));

    // Kept values come back; an unknown map source falls back to the first.
    QSettings().setValue(QStringLiteral("MapViewer/CurrentMapIndex"), 9);
    QSettings().setValue(QStringLiteral("MapViewer/LastCoord"), QPointF(30.3, 59.9));
    createViewer();
    QCOMPARE(map()->currentZoom(), 15);
    QCOMPARE(map()->currentCoordinate(), QPointF(30.3, 59.9));
    QCOMPARE(m_viewer->geometry().size(), QSize(700, 500));
    QVERIFY(visibleLayers().contains(QStringLiteral("GOOGLE")));
}

void tst_MapViewer::tilesInPlaceAndOffline()
{
    const QPointF place(30.31413, 59.93863);
    QSettings().setValue(QStringLiteral("MapViewer/LastCoord"), place);
    QSettings().setValue(QStringLiteral("MapViewer/CurrentZoom"), 16);
    createViewer();
    // Exactly the tiles on screen and a ring around them, each once, each in its place.
    const QStringList expected = visibleTiles(QStringLiteral("m"), place, 16, map()->size(), true).keys();
    const auto requested = [this] {
        QStringList tiles = m_server.requests();
        tiles.sort();
        return tiles;
    };
    const auto loaded = [this, &expected] {
        const MapAdapter* adapter = map()->layer(QStringLiteral("Google"))->mapadapter();
        for (const QString& tile : expected) {
            const QStringList zxy = tile.split(QLatin1Char('/'));
            if (map()->tileLoader()->image(adapter->tileKey(zxy[2].toInt(), zxy[3].toInt(), 16)).isNull())
                return false;
        }
        return true;
    };
    QTRY_COMPARE_WITH_TIMEOUT(requested(), expected, 15000);
    QTRY_VERIFY_WITH_TIMEOUT(loaded() && drawnInPlace(map(), QStringLiteral("m"), place, 16), 15000);
    m_viewer.reset();

    // Seen once, seen again from disk without asking.
    m_server.clearRequests();
    createViewer();
    QTRY_VERIFY_WITH_TIMEOUT(drawnInPlace(map(), QStringLiteral("m"), place, 16), 15000);
    QTest::qWait(200);
    QCOMPARE(m_server.requests(), QStringList());
    QVERIFY(map()->notices().isEmpty());

    // Without the server, new places say why they stay grey.
    m_server.stop();
    map()->setView(QPointF(31.0, 59.5));
    QTRY_COMPARE(map()->notices(), QStringList{QStringLiteral("Map tiles cannot be loaded: connection refused (%1)")
                                                   .arg(m_server.host())});
    QVERIFY(m_server.start());
}

void tst_MapViewer::sourcesAndTheirLayers()
{
    const QPointF place(37.6, 55.7);
    QSettings().setValue(QStringLiteral("MapViewer/LastCoord"), place);
    createViewer();

    // Hybrid: the overlay is drawn over the satellite tiles; the choice is kept.
    selector()->setCurrentIndex(2);
    QTRY_COMPARE(visibleLayers().join(' '), QStringLiteral("OSM Google GOOGLESAT GOOGLEHYB Bing BingSat BingHyb"));
    QCOMPARE(setting("MapViewer/CurrentMapIndex").toInt(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(drawnInPlace(map(), QStringLiteral("s"), place, 17)
                                 && drawnInPlace(map(), QStringLiteral("h"), place, 17), 15000);
    QCOMPARE(map()->attribution(), QStringLiteral("\u00a9 Google"));

    // The marker goes with the last visible layer; the viewer's own calls
    // are not taken for the user's choice.
    m_viewer->showCoordinate(place, true);
    const QStringList shown = {"GOOGLE", "GOOGLESAT", "GOOGLESAT GOOGLEHYB", "OSM", "BING", "BINGSAT", "BINGHYB"};
    for (int src = 0; src <= shown.size(); ++src) {
        m_viewer->mapSourceChanged(src);
        const QStringList expected = shown.value(src, shown.last()).split(' ');
        for (MapLayer* layer : map()->layers()) {
            const QString name = layer->layername().toUpper();
            QCOMPARE(layer->isVisible(), expected.contains(name));
            QCOMPARE(holds<ImagePoint>(layer), src < shown.size() && name == expected.last());
        }
    }
    QCOMPARE(setting("MapViewer/CurrentMapIndex").toInt(), 2);

    // OpenStreetMap's notice links to its copyright page; a click on it
    // follows the link and leaves the stop alone.
    selector()->setCurrentIndex(3);
    QTRY_COMPARE(map()->attribution(), QStringLiteral("\u00a9 OpenStreetMap contributors"));
    const QRect notice = map()->attributionRect();
    QCOMPARE(notice.bottomRight(), map()->rect().bottomRight());
    cUrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("https"), &catcher, "open");
    click(map(), notice.center());
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
    QCOMPARE(catcher.urls, QList<QUrl>{QUrl(QStringLiteral("https://www.openstreetmap.org/copyright"))});
    QCOMPARE(m_viewer->coordinate(), place);
}

void tst_MapViewer::extraAndOfflineSources()
{
    cTileSource own;
    own.name = QStringLiteral("Own server");
    own.url = m_server.url() + QStringLiteral("/{z}/{x}/{y}.png");
    own.maxZoom = 15;
    own.attribution = QStringLiteral("\u00a9 Own");
    cTileSource::save({own});
    const QPointF place(30.31413, 59.93863);
    QSettings().setValue(QStringLiteral("MapViewer/LastCoord"), place);
    // Satellite tiles first, so that OSM-style paths come from the own source only.
    QSettings().setValue(QStringLiteral("MapViewer/CurrentMapIndex"), 1);
    createViewer();
    QCOMPARE(selector()->count(), 6);
    QCOMPARE(selector()->itemText(4), own.name);

    // The user's own source: its tiles, beyond its levels the last one scaled;
    // remembered by name, the online index left as it was.
    selector()->setCurrentIndex(4);
    QTRY_VERIFY(map()->layer(own.name)->isVisible() && map()->attribution() == own.attribution);
    const QPointF pixel = MapAdapter::worldPixel(place, 15) / 256;
    QTRY_VERIFY(m_server.requests().contains(QStringLiteral("osm/15/%1/%2").arg(int(pixel.x())).arg(int(pixel.y()))));
    QVERIFY(m_server.requests().filter(QStringLiteral("osm/17/")).isEmpty());
    QCOMPARE(setting("MapViewer/ExtraSource").toString(), own.name);
    QCOMPARE(setting("MapViewer/CurrentMapIndex").toInt(), 1);

    // The offline map: a file is asked for (none chosen: nothing changes),
    // then shown as a layer of its own and remembered apart.
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("city.mbtiles"));
    QVERIFY(writeMbtiles(file, QStringLiteral("-180,-85,180,85"), QStringLiteral("\u00a9 Offline")));
    answerFileDialog(QString());
    selector()->setCurrentIndex(5);
    QTRY_COMPARE(pendingAnswers(), 0);
    QTRY_COMPARE(selector()->currentIndex(), 4);
    QVERIFY(map()->layer(own.name)->isVisible());
    answerFileDialog(file);
    selector()->setCurrentIndex(5);
    QTRY_VERIFY(map()->layer(QStringLiteral("Offline")) && map()->layer(QStringLiteral("Offline"))->isVisible());
    QTRY_COMPARE(map()->attribution(), QStringLiteral("\u00a9 Offline"));
    QCOMPARE(setting("MapViewer/OfflineMap").toString(), file);
    QVERIFY(setting("MapViewer/OfflineMapChosen").toBool());
    QCOMPARE(setting("MapViewer/CurrentMapIndex").toInt(), 1);

    // The next viewer opens on it; a missing file says so, the others still work.
    m_viewer.reset();
    createViewer();
    QCOMPARE(selector()->currentIndex(), 5);
    QTRY_VERIFY(map()->attribution() == QStringLiteral("\u00a9 Offline") && map()->notices().isEmpty());
    m_viewer.reset();
    QSettings().setValue(QStringLiteral("MapViewer/OfflineMap"), dir.filePath(QStringLiteral("gone.mbtiles")));
    createViewer();
    QTRY_COMPARE(map()->notices(), QStringList{QStringLiteral("Offline map cannot be read: the file does not exist "
                                                              "(gone.mbtiles)")});
    selector()->setCurrentIndex(3);
    QTRY_VERIFY(map()->layer(QStringLiteral("OSM"))->isVisible() && map()->notices().isEmpty());
}

void tst_MapViewer::clickPlacesDragPansOkAndCancel()
{
    createViewer();
    const QPointF stop(30.1, 60.2);
    m_viewer->showCoordinate(stop, true);
    QCOMPARE(map()->currentCoordinate(), stop);
    QCOMPARE(map()->currentZoom(), 17);
    QSignalSpy accepted(m_viewer.data(), &cMapViewer::ok);

    // A drag pans and leaves the stop, and so does the right button; a
    // click moves it, though the hand trembles.
    sendMouse(map(), QEvent::MouseButtonPress, QPoint(100, 100), Qt::LeftButton);
    sendMouse(map(), QEvent::MouseMove, QPoint(140, 120), Qt::LeftButton);
    sendMouse(map(), QEvent::MouseButtonRelease, QPoint(140, 120));
    QCOMPARE(m_viewer->coordinate(), stop);
    QVERIFY(map()->currentCoordinate() != stop);
    sendMouse(map(), QEvent::MouseButtonPress, QPoint(200, 150), Qt::RightButton, Qt::RightButton);
    sendMouse(map(), QEvent::MouseButtonRelease, QPoint(200, 150), Qt::NoButton, Qt::RightButton);
    QCOMPARE(m_viewer->coordinate(), stop);
    const QPoint tremble(QApplication::startDragDistance() - 1, 0);
    sendMouse(map(), QEvent::MouseButtonPress, QPoint(200, 150), Qt::LeftButton);
    sendMouse(map(), QEvent::MouseMove, QPoint(200, 150) + tremble, Qt::LeftButton);
    sendMouse(map(), QEvent::MouseButtonRelease, QPoint(200, 150) + tremble);
    const QPointF clicked = map()->coordinateAt(QPoint(200, 150) + tremble);
    QCOMPARE(m_viewer->coordinate(), clicked);

    button(0)->click(); // OK
    QCOMPARE(accepted.count(), 1);
    QVERIFY(!m_viewer->isVisible());
    QCOMPARE(setting("MapViewer/LastCoord").toPointF(), clicked);

    // Cancel keeps the place but drops the course, without a signal.
    m_viewer->setCourse(10, 20);
    click(map(), QPoint(250, 150));
    button(1)->click(); // Cancel
    QCOMPARE(accepted.count(), 1);
    QVERIFY(!m_viewer->course(nullptr, nullptr));
    QCOMPARE(setting("MapViewer/LastCoord").toPointF(), map()->coordinateAt(QPoint(250, 150)));
}

void tst_MapViewer::courseEditingWithCtrl()
{
    createViewer();
    m_viewer->showCoordinate(QPointF(30.1, 60.2), true);
    MapLayer* google = map()->layer(QStringLiteral("Google"));

    // Without a course Ctrl shows nothing and the keys do nothing.
    QTest::ignoreMessage(QtDebugMsg, "Pressed!");
    QTest::keyPress(map(), Qt::Key_Control);
    QVERIFY(!holds<cAnglePointer>(google));
    QTest::keyClick(map(), Qt::Key_Left);
    QTest::ignoreMessage(QtDebugMsg, "Released!");
    QCOMPARE(course(false), qMakePair(0, 0));

    m_viewer->setCourse(350, 30);
    QTest::keyPress(map(), Qt::Key_Control);
    QVERIFY(holds<cAnglePointer>(google) && !holds<ImagePoint>(google));
    QCOMPARE(map()->mouseMode(), MapControl::None);
    for (int i = 0; i < 15; ++i)
        QTest::keyClick(map(), Qt::Key_Left);
    QCOMPARE(course(), qMakePair(5, 30));
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(map(), Qt::Key_Right);
    sendWheel(map(), QPoint(50, 50), 120, 200);
    QCOMPARE(course(), qMakePair(359, 180));
    QCOMPARE(map()->currentZoom(), 17);
    QTest::keyClick(map(), Qt::Key_Up);
    sendWheel(map(), QPoint(50, 50), -120, 200);
    QCOMPARE(course(), qMakePair(359, 1));
    QTest::keyClick(map(), Qt::Key_Down);
    QTest::keyClick(map(), Qt::Key_Up);
    QCOMPARE(course(), qMakePair(359, 2));

    // A click aims the course at the clicked place; moves sideways turn it.
    const QPoint stop = map()->pixelAt(m_viewer->coordinate());
    const QList<QPair<QPoint, int>> aims = {{{0, -40}, 0}, {{40, 0}, 90}, {{-40, 40}, 225}, {{-40, -1}, 271}};
    for (const auto& aim : aims) {
        click(map(), stop + aim.first);
        QCOMPARE(course().first, aim.second);
    }
    QCOMPARE(map()->pixelAt(m_viewer->coordinate()), stop);
    course(false);
    sendMouse(map(), QEvent::MouseMove, QPoint(100, 100));
    QTest::keyPress(map(), Qt::Key_Control);
    const QList<QPair<int, int>> moves = {{104, 270}, {109, 267}, {119, 262}, {115, 263}, {115, 263}, {105, 268}};
    for (const auto& move : moves) {
        sendMouse(map(), QEvent::MouseMove, QPoint(move.first, 90));
        QCOMPARE(course().first, move.second);
    }

    // Let go, the marker is back and the map pans and zooms again.
    course(false);
    QVERIFY(holds<ImagePoint>(google) && !holds<cAnglePointer>(google));
    QCOMPARE(map()->mouseMode(), MapControl::Panning);
    QVERIFY(map()->mouseWheelEventsEnabled());
}

void tst_MapViewer::courseEditEndsWithTheWindow()
{
    createViewer();
    m_viewer->showCoordinate(QPointF(30.1, 60.2), true);
    MapLayer* google = map()->layer(QStringLiteral("Google"));
    const auto editing = [&] { return holds<cAnglePointer>(google) || map()->mouseMode() != MapControl::Panning; };
    QWidget elsewhere;
    elsewhere.show();

    // Ctrl let go over another window, the window hidden, or OK clicked
    // with Ctrl held: the course edit ends as a release of Ctrl would.
    const QList<std::function<void()>> endings = {
        [&] { QApplication::setActiveWindow(&elsewhere); }, [&] { m_viewer->hide(); }, [&] { button(0)->click(); }};
    int value = 100;
    for (const auto& end : endings) {
        m_viewer->show();
        QApplication::setActiveWindow(m_viewer.data());
        m_viewer->setCourse(value, 30);
        QTest::keyPress(map(), Qt::Key_Control);
        QVERIFY(holds<cAnglePointer>(google));
        QTest::keyClick(map(), Qt::Key_Left);
        end();
        QVERIFY(!editing() && holds<ImagePoint>(google));
        QVERIFY(map()->mouseWheelEventsEnabled() && map()->keyboardNavigationEnabled());
        QCOMPARE(course(false), qMakePair(value + 1, 30));
        value += 10;
    }

    // The next stop shows its own marker and no course of the last one.
    m_viewer->setRoute(nullptr, false, QUuid::createUuid());
    m_viewer->showCoordinate(QPointF(30.2, 60.3), true);
    m_viewer->show();
    QTest::keyPress(map(), Qt::Key_Control);
    QVERIFY(!editing());
    QCOMPARE(m_viewer->coordinate(), QPointF(30.2, 60.3));
    QVERIFY(!m_viewer->course(nullptr, nullptr));
    QTest::keyRelease(map(), Qt::Key_Control);
}

void tst_MapViewer::closingCancels()
{
    createViewer();
    QSignalSpy accepted(m_viewer.data(), &cMapViewer::ok);
    // The window's close button and Escape both cancel.
    for (const bool escape : {false, true}) {
        m_viewer->show();
        m_viewer->showCoordinate(QPointF(30.1, 60.2), true);
        m_viewer->setCourse(10, 20);
        click(map(), QPoint(100, 100));
        if (escape)
            QTest::keyClick(map(), Qt::Key_Escape);
        else
            m_viewer->close();
        QVERIFY(!m_viewer->isVisible());
        QVERIFY(!m_viewer->course(nullptr, nullptr));
    }
    QCOMPARE(accepted.count(), 0);
}

void tst_MapViewer::routeAroundTheStop()
{
    const cRoute route = streetRoute(22, 5);
    const cStop& edited = route.direct.stops.at(4);
    createViewer();
    m_viewer->setRoute(&route, false, edited.id);
    m_viewer->showCoordinate(QPointF(edited.lon, edited.lat), true);
    RouteOverlay* branch = overlay(QStringLiteral("Branch"));
    RouteOverlay* other = overlay(QStringLiteral("OtherBranch"));
    RouteOverlay* zone = overlay(QStringLiteral("EditedZone"));

    // Every stop of the branch, numbered, its zone to scale; the edited one
    // is the marker with a highlighted zone that follows the radius.
    QCOMPARE(branch->stops().size(), 22);
    QVERIFY(shown(branch) && shown(zone) && !shown(other));
    QCOMPARE(branch->stops().at(21).label, QStringLiteral("22"));
    QCOMPARE(branch->stops().at(21).radius, 51.0);
    QVERIFY(!branch->stops().at(4).markerShown && branch->stops().at(3).markerShown);
    QCOMPARE(zone->stops().size(), 1);
    QCOMPARE(zone->stops().at(0).radius, double(edited.radius));
    m_viewer->setZoneRadius(80);
    QCOMPARE(zone->stops().at(0).radius, 80.0);

    // The other branch on request, drawn beneath the marker.
    m_viewer->findChild<QToolButton*>(QStringLiteral("otherBranchButton"))->click();
    QCOMPARE(other->stops().size(), 5);
    const QList<Geometry*> drawn = map()->layer(QStringLiteral("Google"))->geometries();
    QVERIFY(drawn.indexOf(other) >= 0 && drawn.indexOf(other) < drawn.indexOf(branch));
    QVERIFY(dynamic_cast<ImagePoint*>(drawn.last()));

    // F shows the whole branch (the button it presses takes a moment).
    QApplication::setActiveWindow(m_viewer.data());
    QTest::keyClick(map(), Qt::Key_F);
    QTRY_VERIFY(map()->currentZoom() < 17);
    for (const cStop& stop : route.direct.stops)
        QVERIFY(map()->rect().contains(map()->pixelAt(QPointF(stop.lon, stop.lat))));

    // A click on another stop tells about it and moves nothing; a click
    // beside it moves the edited stop, and the line with it.
    map()->setZoom(17);
    map()->setView(QPointF(route.direct.stops.at(6).lon, route.direct.stops.at(6).lat));
    const QPoint another = map()->pixelAt(QPointF(route.direct.stops.at(6).lon, route.direct.stops.at(6).lat));
    click(map(), another + QPoint(3, 3));
    QCOMPARE(m_viewer->coordinate(), QPointF(edited.lon, edited.lat));
    click(map(), another + QPoint(0, 60));
    const QPointF moved = map()->coordinateAt(another + QPoint(0, 60));
    QCOMPARE(m_viewer->coordinate(), moved);
    QCOMPARE(branch->stops().at(4).coordinate, moved);
    QCOMPARE(zone->stops().at(0).coordinate, moved);
}

void tst_MapViewer::networkSettings()
{
    qunsetenv("http_proxy");
    qunsetenv("all_proxy");
    createViewer();
    const QPointer<MapControl> firstMap = map();
    auto* settings = m_viewer->findChild<QToolButton*>(QStringLiteral("settingsButton"));
    const auto find = [](QWidget* dialog, const char* name) {
        return dialog->findChild<QWidget*>(QLatin1String(name));
    };
    const auto choose = [&](QWidget* dialog, const char* name) {
        static_cast<QRadioButton*>(find(dialog, name))->click();
    };

    // First run: no proxy. Without a system proxy its choice keeps the
    // fields. Cancelling stores and rebuilds nothing.
    answerNextModal([&](QWidget* dialog) {
        QVERIFY(static_cast<QRadioButton*>(find(dialog, "noProxyRadioButton"))->isChecked());
        QTest::ignoreMessage(QtDebugMsg, "No system proxy");
        choose(dialog, "systemProxyRadioButton");
        QCOMPARE(static_cast<QSpinBox*>(find(dialog, "portEdit"))->value(), 8080);
        static_cast<QPushButton*>(find(dialog, "cancelBtn"))->click();
    });
    settings->click();
    QCOMPARE(map(), firstMap.data());
    QVERIFY(!QSettings().contains(QStringLiteral("MapViewer/Proxy/ProxyType")));

    // The system's proxy fills host and port; a source of the user's own is
    // taken once it can be used. Accepting stores, rebuilds, applies.
    qputenv("http_proxy", "http://proxy.example:3129");
    QString error;
    answerNextModal([&](QWidget* dialog) {
        choose(dialog, "systemProxyRadioButton");
        QCOMPARE(static_cast<QLineEdit*>(find(dialog, "hostEdit"))->text(), QStringLiteral("proxy.example"));
        QCOMPARE(static_cast<QSpinBox*>(find(dialog, "portEdit"))->value(), 3129);
        static_cast<QLineEdit*>(find(dialog, "userEdit"))->setText(QStringLiteral("ivan"));
        static_cast<QLineEdit*>(find(dialog, "passEdit"))->setText(QStringLiteral("secret"));

        auto* table = static_cast<QTableWidget*>(find(dialog, "tileSourcesTable"));
        QWidget* remove = find(dialog, "removeSourceBtn");
        QVERIFY(!remove->isEnabled());
        static_cast<QPushButton*>(find(dialog, "addSourceBtn"))->click();
        QCOMPARE(table->rowCount(), 1);
        table->selectRow(0);
        QVERIFY(remove->isEnabled());
        table->item(0, 0)->setText(QStringLiteral("Licensed"));
        table->item(0, 1)->setText(QStringLiteral("https://{s}.tiles.example/{z}/{x}/{y}.png"));
        // Once this answer is done, so that the message box gets its own.
        answerMessageBox(&error);
        QTimer::singleShot(0, dialog, [=] {
            static_cast<QPushButton*>(find(dialog, "okBtn"))->click();
            QVERIFY(dialog->isVisible());
            table->item(0, 2)->setText(QStringLiteral("a,b"));
            static_cast<QPushButton*>(find(dialog, "okBtn"))->click();
        });
    });
    // The rebuild keeps the stop and its course, and takes no index for a choice.
    m_viewer->showCoordinate(QPointF(30.1, 60.2), true);
    m_viewer->setCourse(200, 40);
    QTest::keyPress(map(), Qt::Key_Control);
    QSettings().remove(QStringLiteral("MapViewer/CurrentMapIndex"));
    settings->click();
    qunsetenv("http_proxy");
    QCOMPARE(setting("MapViewer/Proxy/ProxyType").toInt(), 1);
    QCOMPARE(QStringList({setting("MapViewer/Proxy/Host").toString(), setting("MapViewer/Proxy/Port").toString(),
                          setting("MapViewer/Proxy/Pass").toString()}).join(' '), QStringLiteral("proxy.example 3129 secret"));
    QVERIFY(!firstMap);
    QVERIFY(visibleLayers().contains(QStringLiteral("GOOGLE")));
    QCOMPARE(error,
             QStringLiteral("Error|Tile source 1 cannot be used: its URL has {s} but no sub-domains are given."));
    QCOMPARE(selector()->itemText(4), QStringLiteral("Licensed"));
    QCOMPARE(cTileSource::load().value(0).subdomains, QStringLiteral("a,b"));
    QTest::qWait(50);
    QVERIFY(!QSettings().contains(QStringLiteral("MapViewer/CurrentMapIndex")));
    QCOMPARE(m_viewer->coordinate(), QPointF(30.1, 60.2));
    QVERIFY(holds<ImagePoint>(map()->layer(QStringLiteral("Google"))));
    QCOMPARE(course(false), qMakePair(200, 40));
    QCOMPARE(map()->mouseMode(), MapControl::Panning);
    const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
    QCOMPARE(proxy.type(), QNetworkProxy::HttpProxy);
    QCOMPARE(proxy.hostName() + proxy.user() + proxy.password(), QStringLiteral("proxy.exampleivansecret"));
    QCOMPARE(proxy.port(), quint16(3129));
}

VOSK_GUI_TEST_MAIN(tst_MapViewer)
#include "tst_mapviewer.moc"
