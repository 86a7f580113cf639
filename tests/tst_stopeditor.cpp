#include "expanderwidget.h"
#include "guisupport.h"
#include "mainwindow.h"
#include "mapadapter.h"
#include "mapcontrol.h"
#include "mapviewer.h"
#include "projectmanager.h"
#include "startup.h"
#include "stopeditor.h"
#include "testsupport.h"
#include "tileserver.h"

#include <QtTest>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QToolButton>

using namespace guisupport;
using namespace testsupport;

class tst_StopEditor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void freshRouteShowsEmptyDirectBranch();
    void newStopNamesPerBranch();
    void moveButtonsFollowTheRow();
    void anyEditStoresTheWholeForm();
    void branchesKeepRowsAndAlternateNames();
    void deletingTheLastStopEmptiesTheForm();
    void expanderToggles();
    void onlyEditsMarkTheProject();
    void placingOnTheMap();

private:
    template <typename T>
    T* child(const char* name) { return m_editor->findChild<T*>(QLatin1String(name)); }
    QListView* list() { return child<QListView>("stopList"); }
    cRoute& route() { return m_manager->project()->routes[0]; }
    QStringList listTexts()
    {
        QStringList texts;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            texts << list()->model()->index(row, 0).data().toString();
        return texts;
    }
    void selectRow(int row)
    {
        const QModelIndex index = list()->model()->index(row, 0);
        list()->setCurrentIndex(index);
        QCoreApplication::processEvents();
    }
    // Types into a field as the user would; the write lands once the event
    // loop has run.
    void typeInto(const char* field, const QString& text)
    {
        QTest::keyClicks(child<QLineEdit>(field), text);
        QCoreApplication::processEvents();
    }
    void click(const char* button)
    {
        child<QToolButton>(button)->click();
        QCoreApplication::processEvents();
    }

    QScopedPointer<cProjectManager> m_manager;
    QScopedPointer<cStopEditor> m_editor;
    QTemporaryDir m_temp;
    cTileServer m_server;
};

void tst_StopEditor::initTestCase()
{
    // The map keeps its tiles in the temporary folder and fetches them here.
    qputenv("TMPDIR", m_temp.path().toLocal8Bit());
    QVERIFY(m_server.start());
    qputenv(qmapcontrol::MapAdapter::serverVariable, m_server.url().toLatin1());
}

void tst_StopEditor::init()
{
    m_manager.reset(new cProjectManager);
    cRoute route = sampleRoute();
    m_manager->project()->routes << route;
    m_editor.reset(new cStopEditor(m_manager.data(), nullptr));
    m_editor->show();
    m_editor->routeSelected(route.id);
    QCoreApplication::processEvents();
}

void tst_StopEditor::cleanup()
{
    m_editor.reset();
    m_manager.reset();
}

void tst_StopEditor::freshRouteShowsEmptyDirectBranch()
{
    QCOMPARE(child<QSlider>("isReverse")->value(), 0);
    QCOMPARE(listTexts(), (QStringList{"Центральная", "Школа"}));
    QVERIFY(!list()->currentIndex().isValid());
    QVERIFY(child<QLineEdit>("stopNameEdit")->text().isEmpty());
    QVERIFY(!child<QSpinBox>("courseEdit")->isEnabled());
    QCOMPARE(child<QLineEdit>("firstNameEdit")->text(), QStringLiteral("Депо"));

    m_editor->routeSelected(QUuid());
    QCOMPARE(list()->model()->rowCount(), 0);
}

void tst_StopEditor::newStopNamesPerBranch()
{
    route().direct.stops.clear();
    m_editor->routeSelected(route().id);
    for (int i = 0; i < 3; ++i)
        click("addStopBtn");
    QCOMPARE(listTexts(), (QStringList{"New stop", "New stop 1", "New stop 2"}));
    QCOMPARE(route().direct.stops.size(), 3);
    QCOMPARE(route().direct.stops[2].name, QStringLiteral("New stop 2"));
    QCOMPARE(list()->currentIndex().row(), 2);

    auto* model = qobject_cast<QStandardItemModel*>(list()->model());
    model->item(0)->setText("Депо");
    QCOMPARE(route().direct.stops[0].name, QStringLiteral("Депо"));
    click("addStopBtn");
    QCOMPARE(listTexts().last(), QStringLiteral("New stop"));

    // The reverse branch has its own names.
    child<QSlider>("isReverse")->setValue(1);
    click("addStopBtn");
    QCOMPARE(listTexts(), (QStringList{"Рынок", "New stop"}));
    QCOMPARE(route().reverse.stops.last().name, QStringLiteral("New stop"));
}

void tst_StopEditor::moveButtonsFollowTheRow()
{
    auto* up = child<QToolButton>("upStopBtn");
    auto* down = child<QToolButton>("downStopBtn");
    click("addStopBtn");
    selectRow(0);
    QVERIFY(!up->isEnabled() && down->isEnabled());
    selectRow(2);
    QVERIFY(up->isEnabled() && !down->isEnabled());

    click("upStopBtn");
    QCOMPARE(listTexts(), (QStringList{"Центральная", "New stop", "Школа"}));
    QCOMPARE(route().direct.stops[1].name, QStringLiteral("New stop"));
    QCOMPARE(list()->currentIndex().row(), 1);
    click("downStopBtn");
    click("downStopBtn");
    QCOMPARE(route().direct.stops[2].name, QStringLiteral("New stop"));

    child<QSlider>("isReverse")->setValue(1);
    selectRow(0);
    QVERIFY(!up->isEnabled() && !down->isEnabled());
}

void tst_StopEditor::anyEditStoresTheWholeForm()
{
    cStop& stop = route().direct.stops[0];
    stop.lon = 37.6199771234;
    stop.other_sounds = QStringList{"1.mp3", "2.mp3", "3.mp3", "4.mp3", "5.mp3", "6.mp3", "7.mp3"};
    QSignalSpy changed(m_editor.data(), &cStopEditor::stopChanged);
    selectRow(0);
    QCOMPARE(child<QLineEdit>("lonEdit")->text(), QStringLiteral("37.619977"));
    changed.clear();

    typeInto("otherTextEdit", "!");
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).value<QUuid>(), stop.id);
    QCOMPARE(stop.lon, 37.619977);
    QCOMPARE(stop.other_sounds, (QStringList{"1.mp3", "2.mp3", "3.mp3", "4.mp3", "5.mp3"}));
    QCOMPARE(stop.other_text, QStringLiteral("Пересадка на метро!"));

    // A rename in the name field reaches the list as well.
    typeInto("stopNameEdit", "2");
    QCOMPARE(stop.name, QStringLiteral("Центральная2"));
    QCOMPARE(listTexts().first(), QStringLiteral("Центральная2"));

    // Course off still keeps the values of the spin boxes.
    child<QCheckBox>("courseEnabled")->click();
    QCoreApplication::processEvents();
    QVERIFY(!stop.course_enabled);
    QCOMPARE(stop.course_value, 270);
    QVERIFY(!child<QSpinBox>("diffEdit")->isEnabled());
}

void tst_StopEditor::branchesKeepRowsAndAlternateNames()
{
    // Alternate names go to the branch on show, and are no stop's change.
    QSignalSpy changed(m_editor.data(), &cStopEditor::stopChanged);
    child<QSlider>("isReverse")->setValue(1);
    typeInto("firstNameEdit", "X");
    QCOMPARE(route().reverse.first, QStringLiteral("X"));
    QCOMPARE(route().reverse.last, QStringLiteral("Парк"));
    QCOMPARE(route().direct.first, QStringLiteral("Депо"));
    QCOMPARE(changed.count(), 0);

    child<QSlider>("isReverse")->setValue(0);
    selectRow(1);
    child<QSlider>("isReverse")->setValue(1);
    QVERIFY(!list()->currentIndex().isValid());
    selectRow(0);
    QCOMPARE(child<QLineEdit>("stopNameEdit")->text(), QStringLiteral("Рынок"));
    QCOMPARE(child<QLineEdit>("lastNameEdit")->text(), QStringLiteral("Парк"));

    child<QSlider>("isReverse")->setValue(0);
    QCOMPARE(list()->currentIndex().row(), 1);
    QCOMPARE(child<QLineEdit>("stopNameEdit")->text(), QStringLiteral("Школа"));
    child<QSlider>("isReverse")->setValue(1);
    QCOMPARE(list()->currentIndex().row(), 0);
}

void tst_StopEditor::deletingTheLastStopEmptiesTheForm()
{
    child<QSlider>("isReverse")->setValue(1);
    selectRow(0);
    QVERIFY(!child<QLineEdit>("stopNameEdit")->text().isEmpty());
    click("deleteStopBtn");
    QVERIFY(route().reverse.stops.isEmpty());
    QVERIFY(child<QLineEdit>("stopNameEdit")->text().isEmpty());
    QVERIFY(!child<QSpinBox>("courseEdit")->isEnabled());
    QCOMPARE(route().direct.stops.size(), 2);
}

void tst_StopEditor::expanderToggles()
{
    ExpanderWidget expander;
    expander.addPage(new QWidget);
    QSignalSpy changed(&expander, &ExpanderWidget::expanderChanged);
    expander.show();
    expander.setExpanded(true);
    QCOMPARE(changed.count(), 0);
    expander.setExpanded(false);
    QCOMPARE(changed.count(), 1);
    QVERIFY(!expander.widget(0)->isVisible());
    expander.setProperty("isExpanded", true);
    QVERIFY(expander.widget(0)->isVisible());

    // In the editor the branch settings start collapsed.
    auto* inEditor = m_editor->findChild<ExpanderWidget*>("expander");
    QVERIFY(inEditor && !inEditor->isExpanded());
}

void tst_StopEditor::onlyEditsMarkTheProject()
{
    QTemporaryDir dir;
    const QString file = dir.filePath("p.vosk");
    {
        cProjectManager manager;
        cRoute plain = sampleRoute();
        // Stops with the form's defaults, so selecting them changes no spin box.
        for (cStop& stop : plain.direct.stops)
            stop = [&stop] { cStop fresh; fresh.id = stop.id; fresh.name = stop.name; return fresh; }();
        manager.project()->routes << plain;
        QVERIFY(manager.saveProject(file));
    }
    cMainWindow window;
    window.show();
    answerFileDialog(file);
    window.findChild<QPushButton*>("openProjectBtn")->click();
    auto* editor = window.findChild<cStopEditor*>();
    auto* stops = editor->findChild<QListView*>("stopList");
    stops->setCurrentIndex(stops->model()->index(0, 0));
    QCoreApplication::processEvents();
    window.findChild<QPushButton*>("saveProjectBtn")->click();
    QVERIFY(!window.isWindowModified());

    for (const char* button : {"addStopBtn", "upStopBtn", "downStopBtn", "deleteStopBtn"}) {
        editor->findChild<QToolButton*>(button)->click();
        QCoreApplication::processEvents();
        QVERIFY2(!window.isWindowModified(), button);
    }
    QTest::keyClicks(editor->findChild<QLineEdit*>("stopNameEdit"), "x");
    QCoreApplication::processEvents();
    QVERIFY(window.isWindowModified());
}

void tst_StopEditor::placingOnTheMap()
{
    auto* viewer = m_editor->findChild<cMapViewer*>();
    auto* map = viewer->findChild<qmapcontrol::MapControl*>();
    const auto openMap = [&] {
        child<QPushButton>("mapBtn")->click();
        QVERIFY(QTest::qWaitForWindowExposed(viewer));
    };
    const auto press = [&](const char* text) {
        for (QPushButton* button : viewer->findChildren<QPushButton*>()) {
            if (button->text() == QLatin1String(text))
                button->click();
        }
        QCoreApplication::processEvents();
    };
    const auto shownAt = [](const cStop& stop) { return QPointF(stop.lon, stop.lat); };
    cStop& central = route().direct.stops[0];
    cStop& school = route().direct.stops[1];
    auto* lon = child<QLineEdit>("lonEdit");
    selectRow(0);

    // Opened on the stop with its course; moved and turned with Ctrl held
    // while OK is clicked: the course write takes the centre along.
    openMap();
    QCOMPARE(viewer->coordinate(), shownAt(central));
    guisupport::click(map, QPoint(100, 100));
    const QPointF picked = viewer->coordinate();
    QTest::keyPress(map, Qt::Key_Control);
    QTest::keyClick(map, Qt::Key_Left);
    press("OK");
    QTest::keyRelease(map, Qt::Key_Control);
    QCOMPARE(central.course_value, 271);
    QCOMPARE(central.course_diff, 45);
    QCOMPARE(lon->text(), QString::number(picked.x(), 'g', 8));
    QCOMPARE(central.lon, lon->text().toDouble());
    QVERIFY(lon->toolTip().isEmpty());

    // A move alone waits for the next write, and the fields say so.
    const double applied = central.lon;
    openMap();
    guisupport::click(map, QPoint(200, 120));
    const QPointF moved = viewer->coordinate();
    press("OK");
    QCOMPARE(lon->text(), QString::number(moved.x(), 'g', 8));
    QCOMPARE(central.lon, applied);
    QCOMPARE(lon->toolTip(), QStringLiteral("Not applied yet: the next edit of this stop writes it"));
    typeInto("otherTextEdit", "!");
    QCOMPARE(central.lon, lon->text().toDouble());
    QVERIFY(lon->toolTip().isEmpty() && lon->styleSheet().isEmpty());

    // Cancel and the close button keep the stop as it is.
    const cStop before = central;
    for (bool closeButton : {false, true}) {
        openMap();
        guisupport::click(map, QPoint(50, 50));
        QTest::keyPress(map, Qt::Key_Control);
        QTest::keyClick(map, Qt::Key_Right);
        if (closeButton)
            viewer->close();
        else
            press("Cancel");
        QTest::keyRelease(map, Qt::Key_Control);
        QCOMPARE(difference(central, before), QString());
        QCOMPARE(lon->text(), QString::number(before.lon, 'g', 8));
    }

    // The map follows the list to the next stop: its own marker, no course
    // of the last one, and its OK lands there.
    openMap();
    QTest::keyPress(map, Qt::Key_Control);
    selectRow(1);
    QCOMPARE(viewer->editedStop(), school.id);
    QCOMPARE(viewer->coordinate(), shownAt(school));
    QVERIFY(!viewer->course(nullptr, nullptr));
    QTest::keyRelease(map, Qt::Key_Control);
    press("OK");
    QVERIFY(!school.course_enabled && !child<QCheckBox>("courseEnabled")->isChecked());
    QCOMPARE(difference(central, before), QString());
}

VOSK_GUI_TEST_MAIN(tst_StopEditor)
#include "tst_stopeditor.moc"
