#include "geo.h"
#include "guisupport.h"
#include "mapcontrol.h"
#include "projectmanager.h"
#include "replay.h"
#include "replaywindow.h"
#include "routeoverlay.h"
#include "stopfixer.h"
#include "testsupport.h"
#include "trackreader.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTableWidget>
#include <QtTest>

using namespace guisupport;

namespace {

const QString ridePath = QStringLiteral(VOSK_SHARED_DIR "/tracks/around-visnjan-with-car.gpx");

} // namespace

// The replay window over a recorded car ride, as the user works it.
class tst_ReplayWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void showsFindsAndFixesOneStop();
    void unreadableTrackKeepsTheLastRide();

private:
    QVector<QColor> stopColours() const;

    cIsolatedHome m_home;
    cProjectManager m_manager;
    cStopFixer* m_fixer = nullptr;
    cReplayWindow* m_window = nullptr;
    QVector<cTrackPoint> m_points;
};

void tst_ReplayWindow::initTestCase()
{
    // No tile service to reach: an offline map that is not there.
    QSettings().setValue("MapViewer/OfflineMapChosen", true);
    QSettings().setValue("MapViewer/OfflineMap", m_home.path() + "/none.mbtiles");

    cTrackFile file;
    QString error;
    QVERIFY2(cTrackReader::read(ridePath, &file, &error), qPrintable(error));
    m_points = file.tracks.at(0).points;
    cRoute route;
    route.id = QUuid::createUuid();
    route.name = "Višnjan";
    for (int index : {20, 50, 80}) {
        cStop stop;
        stop.id = QUuid::createUuid();
        stop.name = QString("P%1").arg(index);
        stop.lon = m_points.at(index).lon;
        stop.lat = m_points.at(index).lat;
        stop.radius = 30;
        route.direct.stops << stop;
    }
    // The middle stop drawn 60 m off the road.
    cStop& middle = route.direct.stops[1];
    geo::destination(middle.lon, middle.lat, 0, 60, &middle.lon, &middle.lat);
    route.reverse.stops << route.direct.stops.at(2) << route.direct.stops.at(0);
    m_manager.project()->routes << route;

    m_fixer = new cStopFixer(&m_manager, this);
    m_window = new cReplayWindow(&m_manager, m_fixer, nullptr);
    m_window->resize(1000, 700);
    m_window->show();
    m_window->setRoute(route.id);
    QVERIFY(m_window->loadTrack(ridePath));
}

QVector<QColor> tst_ReplayWindow::stopColours() const
{
    QVector<QColor> colours;
    for (const auto& stop : m_window->findChild<qmapcontrol::RouteOverlay*>()->stops())
        colours << stop.colour;
    return colours;
}

void tst_ReplayWindow::showsFindsAndFixesOneStop()
{
    auto* table = child<QTableWidget>(m_window, "stopTable");
    auto* summary = child<QLabel>(m_window, "summaryLabel");
    const QColor announced = cReplayWindow::statusColour(eStopStatus::Announced);
    const QColor missed = cReplayWindow::statusColour(eStopStatus::Missed);

    QCOMPARE(m_window->result().branch, eBranchKind::Direct);
    QCOMPARE(table->rowCount(), 3);
    QCOMPARE(stopColours(), (QVector<QColor>{announced, missed, announced}));
    QVERIFY2(table->item(1, 6)->text().startsWith(cReplay::tr("never inside the zone (closest %1 m, radius %2 m)")
                                                      .section('(', 0, 0)),
             qPrintable(table->item(1, 6)->text()));
    QVERIFY(summary->text().contains(cReplayWindow::tr("%1 (detected)").arg(cReplayWindow::tr("Direct branch"))));

    // A double-click takes the map to the stop and the vehicle to where it came closest.
    const QRect cell = table->visualItemRect(table->item(1, 0));
    for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                              QEvent::MouseButtonRelease}) {
        const bool down = type != QEvent::MouseButtonRelease;
        sendMouse(table->viewport(), type, cell.center(), down ? Qt::LeftButton : Qt::NoButton);
    }
    const cStop& middle = m_manager.project()->routes[0].direct.stops[1];
    const QPointF centre = child<qmapcontrol::MapControl>(m_window, "replayMap")->currentCoordinate();
    QVERIFY(geo::distanceMetres(centre.x(), centre.y(), middle.lon, middle.lat) < 1);
    QCOMPARE(child<QSlider>(m_window, "positionSlider")->value(), m_window->result().stops[1].closestAt);

    // The suggested radius, applied, changes that stop alone and catches the ride.
    const QList<cStop> before = m_manager.project()->routes[0].direct.stops;
    const cStopReplay row = m_window->result().stops[1];
    QCOMPARE(row.fixes.size(), 1);
    QPushButton* fix = table->cellWidget(1, 7)->findChild<QPushButton*>();
    QVERIFY(fix);
    QSignalSpy changed(m_fixer, &cStopFixer::stopChanged);
    fix->click();
    QCOMPARE(changed.count(), 1);
    QTRY_COMPARE(stopColours(), (QVector<QColor>{announced, announced, announced}));
    const QList<cStop>& after = m_manager.project()->routes[0].direct.stops;
    QCOMPARE(after[1].radius, row.fixes[0].value);
    QVERIFY(after[1].radius > row.closestMetres && after[1].radius < row.closestMetres + 10);
    QCOMPARE(after[0].radius, before[0].radius);
    QCOMPARE(after[2].radius, before[2].radius);
    QVERIFY(m_window->result().clean());

    // Chosen by hand, the reverse branch is replayed as it is: backwards.
    child<QComboBox>(m_window, "branchCombo")->setCurrentIndex(2);
    QCOMPARE(m_window->result().branch, eBranchKind::Reverse);
    QCOMPARE(table->rowCount(), 2);
    QVERIFY(!summary->text().contains(cReplayWindow::tr("%1 (detected)").arg(QString())));
    QCOMPARE(m_window->result().count(eStopStatus::OutOfOrder), 1);
    child<QComboBox>(m_window, "branchCombo")->setCurrentIndex(0);
}

void tst_ReplayWindow::unreadableTrackKeepsTheLastRide()
{
    QTemporaryDir dir;
    const QString cut = dir.filePath("cut.gpx");
    QVERIFY(testsupport::writeFile(cut, testsupport::readFile(ridePath).left(2000)));
    const cReplayResult kept = m_window->result();
    QString message;
    answerMessageBox(&message);
    QVERIFY(!m_window->loadTrack(cut));
    // The reader's message names the line.
    const QString line = cGpxReader::tr("Line %1: the file ends before the GPX document is complete").section("%1", 0, 0);
    QVERIFY2(message.contains(QRegularExpression(QRegularExpression::escape(line) + "\\d+: ")), qPrintable(message));
    QCOMPARE(m_window->result().stops.size(), kept.stops.size());
    QVERIFY(m_window->hasTrack());
}

QTEST_MAIN(tst_ReplayWindow)
#include "tst_replaywindow.moc"
