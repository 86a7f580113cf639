#include "anglepointer.h"
#include "guisupport.h"
#include "mapadapter.h"
#include "mapcontrol.h"
#include "maplayer.h"
#include "mapviewer.h"
#include "startup.h"
#include "tileserver.h"

#include <QtTest>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QNetworkProxy>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolButton>

using namespace guisupport;
using namespace qmapcontrol;

namespace {

// The tiles of `kind` a map of `size` shows around `centre` ("kind/z/x/y"),
// with the map pixel of each tile's corner; the projection is written out
// again so that the map is not checked against its own arithmetic.
QMap<QString, QPoint> visibleTiles(const QString& kind, const QPointF& centre, int zoom, const QSize& size)
{
    const double world = 256.0 * (1 << zoom);
    const QPoint topLeft =
        QPoint(int(std::floor((centre.x() + 180.0) / 360.0 * world + 0.5)),
               int(std::floor((1.0 - std::asinh(std::tan(qDegreesToRadians(centre.y()))) / M_PI) / 2.0 * world + 0.5)))
        - QPoint(size.width() / 2, size.height() / 2);
    QMap<QString, QPoint> tiles;
    for (int y = topLeft.y() / 256; y <= (topLeft.y() + size.height() - 1) / 256; ++y) {
        for (int x = topLeft.x() / 256; x <= (topLeft.x() + size.width() - 1) / 256; ++x)
            tiles.insert(QStringLiteral("%1/%2/%3/%4").arg(kind).arg(zoom).arg(x).arg(y), QPoint(x, y) * 256 - topLeft);
    }
    return tiles;
}

// Whether each tile of `kind` whose colour block is wholly on screen (and
// clear of the scale bar) shows the block exactly in its place.
bool drawnInPlace(MapControl* map, const QString& kind, const QPointF& centre, int zoom)
{
    const QImage shot = map->grab().toImage();
    const QRect scaleBar(0, shot.height() - 40, 200, 40);
    int seen = 0;
    const QMap<QString, QPoint> tiles = visibleTiles(kind, centre, zoom, shot.size());
    for (auto it = tiles.cbegin(); it != tiles.cend(); ++it) {
        const QStringList zxy = it.key().split(QLatin1Char('/'));
        const QRgb colour = cTileServer::blockColour(zxy.at(1).toInt(), zxy.at(2).toInt(), zxy.at(3).toInt());
        const QRect block(it.value() + QPoint(kind == QLatin1String("h") ? 32 : 0, 0), QSize(16, 16));
        if (!shot.rect().contains(block.adjusted(0, 0, 1, 1)) || block.intersects(scaleBar))
            continue;
        if (shot.pixel(block.topLeft()) != colour || shot.pixel(block.bottomRight()) != colour
            || shot.pixel(block.bottomRight() + QPoint(1, 1)) == colour)
            return false;
        ++seen;
    }
    return seen > 0;
}

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
    void clickPlacesDragPansOkAndCancel();
    void courseEditingWithCtrl();
    void networkSettings();

private:
    void createViewer();
    MapControl* map() const { return m_viewer->findChild<MapControl*>(); }
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
    // Exactly the tiles on screen, each once, each in its place.
    const QStringList expected = visibleTiles(QStringLiteral("m"), place, 16, map()->size()).keys();
    const auto requested = [this] {
        QStringList tiles = m_server.requests();
        tiles.sort();
        return tiles;
    };
    QTRY_COMPARE_WITH_TIMEOUT(requested(), expected, 15000);
    QTRY_VERIFY_WITH_TIMEOUT(drawnInPlace(map(), QStringLiteral("m"), place, 16), 15000);
    m_viewer.reset();

    // Seen once, seen again without the server.
    m_server.stop();
    m_server.clearRequests();
    createViewer();
    QTRY_VERIFY_WITH_TIMEOUT(drawnInPlace(map(), QStringLiteral("m"), place, 16), 15000);
    QVERIFY(m_server.requests().isEmpty());
    QVERIFY(m_server.start());
}

void tst_MapViewer::sourcesAndTheirLayers()
{
    const QPointF place(37.6, 55.7);
    QSettings().setValue(QStringLiteral("MapViewer/LastCoord"), place);
    createViewer();

    // Hybrid: the overlay is drawn over the satellite tiles; the choice is kept.
    m_viewer->findChild<QComboBox*>(QStringLiteral("mapSourceSelector"))->setCurrentIndex(2);
    QTRY_COMPARE(visibleLayers().join(' '), QStringLiteral("OSM Google GOOGLESAT GOOGLEHYB Bing BingSat BingHyb"));
    QCOMPARE(setting("MapViewer/CurrentMapIndex").toInt(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(drawnInPlace(map(), QStringLiteral("s"), place, 17)
                                 && drawnInPlace(map(), QStringLiteral("h"), place, 17), 15000);

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
}

void tst_MapViewer::clickPlacesDragPansOkAndCancel()
{
    createViewer();
    const QPointF stop(30.1, 60.2);
    m_viewer->showCoordinate(stop, true);
    QCOMPARE(map()->currentCoordinate(), stop);
    QCOMPARE(map()->currentZoom(), 17);
    QSignalSpy accepted(m_viewer.data(), &cMapViewer::ok);

    // A drag pans and leaves the stop; a click moves it.
    sendMouse(map(), QEvent::MouseButtonPress, QPoint(100, 100), Qt::LeftButton);
    sendMouse(map(), QEvent::MouseMove, QPoint(140, 120), Qt::LeftButton);
    sendMouse(map(), QEvent::MouseButtonRelease, QPoint(140, 120));
    QCOMPARE(m_viewer->coordinate(), stop);
    QVERIFY(map()->currentCoordinate() != stop);
    click(map(), QPoint(200, 150));
    const QPointF clicked = map()->coordinateAt(QPoint(200, 150));
    QCOMPARE(m_viewer->coordinate(), clicked);
    QCOMPARE(map()->layer(QStringLiteral("Google"))->geometries().size(), 1);

    m_viewer->findChildren<QPushButton*>().value(0)->click(); // OK
    QCOMPARE(accepted.count(), 1);
    QVERIFY(!m_viewer->isVisible());
    QCOMPARE(setting("MapViewer/LastCoord").toPointF(), clicked);

    // Cancel keeps the place but drops the course, without a signal.
    m_viewer->setCourse(10, 20);
    click(map(), QPoint(250, 150));
    m_viewer->findChildren<QPushButton*>().value(1)->click(); // Cancel
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

void tst_MapViewer::networkSettings()
{
    qunsetenv("http_proxy");
    qunsetenv("all_proxy");
    createViewer();
    const QPointer<MapControl> firstMap = map();
    auto* settings = m_viewer->findChild<QToolButton*>();
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

    // The system's proxy fills host and port; accepting stores, rebuilds, applies.
    qputenv("http_proxy", "http://proxy.example:3129");
    answerNextModal([&](QWidget* dialog) {
        choose(dialog, "systemProxyRadioButton");
        QCOMPARE(static_cast<QLineEdit*>(find(dialog, "hostEdit"))->text(), QStringLiteral("proxy.example"));
        QCOMPARE(static_cast<QSpinBox*>(find(dialog, "portEdit"))->value(), 3129);
        static_cast<QLineEdit*>(find(dialog, "userEdit"))->setText(QStringLiteral("ivan"));
        static_cast<QLineEdit*>(find(dialog, "passEdit"))->setText(QStringLiteral("secret"));
        static_cast<QPushButton*>(find(dialog, "okBtn"))->click();
    });
    settings->click();
    qunsetenv("http_proxy");
    QCOMPARE(setting("MapViewer/Proxy/ProxyType").toInt(), 1);
    QCOMPARE(QStringList({setting("MapViewer/Proxy/Host").toString(), setting("MapViewer/Proxy/Port").toString(),
                          setting("MapViewer/Proxy/Pass").toString()}).join(' '), QStringLiteral("proxy.example 3129 secret"));
    QVERIFY(!firstMap);
    QVERIFY(visibleLayers().contains(QStringLiteral("GOOGLE")));
    const QNetworkProxy proxy = QNetworkProxy::applicationProxy();
    QCOMPARE(proxy.type(), QNetworkProxy::HttpProxy);
    QCOMPARE(proxy.hostName() + proxy.user() + proxy.password(), QStringLiteral("proxy.exampleivansecret"));
    QCOMPARE(proxy.port(), quint16(3129));
}

VOSK_GUI_TEST_MAIN(tst_MapViewer)
#include "tst_mapviewer.moc"
