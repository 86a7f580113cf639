#include "expanderwidget.h"
#include "guisupport.h"
#include "mapadapter.h"
#include "mapcontrol.h"
#include "mapviewer.h"
#include "projectmanager.h"
#include "soundselector.h"
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

#include <functional>

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
    void everyActionWritesTheWholeRecord();
    void coordinatesTakeAPointInAnyLocale();
    void renameKeepsMapCentreAndCaret();
    void branchesKeepRowsAndAlternateNames();
    void deletingTheLastStopEmptiesTheForm();
    void expanderToggles();
    void placingOnTheMap();

private:
    template <typename T>
    T* child(const char* name) { return m_editor->findChild<T*>(QLatin1String(name)); }
    QLineEdit* edit(const char* name) { return child<QLineEdit>(name); }
    QListView* list() { return child<QListView>("stopList"); }
    cRoute& route() { return m_manager->project()->routes[0]; }
    QList<cSoundSelector*> sounds() { return m_editor->findChildren<cSoundSelector*>(); }
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
        QTest::keyClicks(edit(field), text);
        QCoreApplication::processEvents();
    }
    void click(const char* button)
    {
        child<QToolButton>(button)->click();
        QCoreApplication::processEvents();
    }
    // What the form shows, as the fields of `stop` it is bound to.
    cStop shown(cStop stop)
    {
        stop.name = edit("stopNameEdit")->text();
        stop.full_name = edit("stopFullNameEdit")->text();
        stop.is_key_stop = child<QCheckBox>("isKeyStop")->isChecked();
        stop.lon = edit("lonEdit")->text().toDouble();
        stop.lat = edit("latEdit")->text().toDouble();
        stop.radius = child<QSpinBox>("radiusEdit")->value();
        stop.course_enabled = child<QCheckBox>("courseEnabled")->isChecked();
        stop.course_value = child<QSpinBox>("courseEdit")->value();
        stop.course_diff = child<QSpinBox>("diffEdit")->value();
        stop.sound = sounds().at(0)->soundFile();
        stop.other_sounds.clear();
        for (const cSoundSelector* field : sounds().mid(1))
            stop.other_sounds << field->soundFile();
        stop.other_text = edit("otherTextEdit")->text();
        return stop;
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
    // Without a route the alternate names go nowhere, silently.
    cMessageCapture log;
    QSignalSpy branch(m_editor.data(), &cStopEditor::branchChanged);
    typeInto("firstNameEdit", "X");
    QCOMPARE(log.messages().filter("Branch"), QStringList());
    QCOMPARE(branch.count(), 0);
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

// Adding and moving stops is no stop's change; Школа holds the new stop's
// course and radius, so no spin box changes on the way either.
void tst_StopEditor::moveButtonsFollowTheRow()
{
    auto* up = child<QToolButton>("upStopBtn");
    auto* down = child<QToolButton>("downStopBtn");
    selectRow(1);
    QSignalSpy changed(m_editor.data(), &cStopEditor::stopChanged);
    click("addStopBtn");
    QVERIFY(up->isEnabled() && !down->isEnabled());
    click("upStopBtn");
    QCOMPARE(listTexts(), (QStringList{"Центральная", "New stop", "Школа"}));
    QCOMPARE(route().direct.stops[1].name, QStringLiteral("New stop"));
    QCOMPARE(list()->currentIndex().row(), 1);
    click("downStopBtn");
    click("downStopBtn");
    QCOMPARE(route().direct.stops[2].name, QStringLiteral("New stop"));
    QCOMPARE(changed.count(), 0);
    selectRow(0);
    QVERIFY(!up->isEnabled() && down->isEnabled());

    child<QSlider>("isReverse")->setValue(1);
    selectRow(0);
    QVERIFY(!up->isEnabled() && !down->isEnabled());
}

// The form is changed as loading changes it, which writes nothing; then one
// user action on any field writes every field.
void tst_StopEditor::everyActionWritesTheWholeRecord()
{
    const auto texts = {"stopNameEdit", "stopFullNameEdit", "lonEdit", "latEdit", "otherTextEdit"};
    const auto spins = {"radiusEdit", "courseEdit", "diffEdit"};
    QList<QPair<QString, std::function<void()>>> actions{
        {"isKeyStop", [this] { child<QCheckBox>("isKeyStop")->click(); }},
        {"courseEnabled", [this] { child<QCheckBox>("courseEnabled")->click(); }},
        {"sound", [this] { sounds().at(0)->findChild<QToolButton*>("cDeleteButton")->click(); }},
        {"other sound", [this] { sounds().at(3)->findChild<QToolButton*>("cDeleteButton")->click(); }}};
    for (const char* name : texts)
        actions.append({name, [this, name] { QTest::keyClick(edit(name), Qt::Key_1); }});
    for (const char* name : spins)
        actions.append({name, [this, name] { QTest::keyClick(child<QSpinBox>(name), Qt::Key_Up); }});

    route().direct.stops[0].other_sounds = QStringList{"1.mp3", "2.mp3", "3.mp3", "4.mp3", "5.mp3", "6.mp3", "7.mp3"};
    for (int i = 0; i < actions.size(); ++i) {
        cStop& stop = route().direct.stops[0];
        // Loaded with the course on, its spin boxes take keys.
        stop.course_enabled = true;
        selectRow(1);
        selectRow(0);
        const cStop other = route().direct.stops[1];
        // Spin boxes write as they are filled, so they come first.
        int value = 10 + i;
        for (const char* name : spins)
            child<QSpinBox>(name)->setValue(value++);
        QCoreApplication::processEvents();
        const cStop before = stop;
        const QString mark = QString::number(i);
        // All but the name: a rename refills the form from the record, which
        // would hide a field that was not written.
        for (const char* name : {"stopFullNameEdit", "otherTextEdit"})
            edit(name)->setText(edit(name)->text() + mark);
        edit("lonEdit")->setText("3" + mark + ".5");
        edit("latEdit")->setText("5" + mark + ".25");
        for (const char* name : {"isKeyStop", "courseEnabled"})
            child<QCheckBox>(name)->toggle();
        for (int field = 0; field < sounds().size(); ++field)
            sounds().at(field)->setSoundFile(mark + QString::number(field) + ".wav");
        QCOMPARE(difference(stop, before), QString());

        QSignalSpy changed(m_editor.data(), &cStopEditor::stopChanged);
        actions[i].second();
        QCoreApplication::processEvents();
        QVERIFY2(difference(stop, shown(before)).isEmpty(), qPrintable(actions[i].first + ": " + difference(stop, shown(before))));
        QCOMPARE(stop.other_sounds.size(), 5);
        QVERIFY(!changed.isEmpty() && changed.last().at(0).value<QUuid>() == stop.id);
        QCOMPARE(difference(route().direct.stops[1], other), QString());
    }
}

// Whatever the system's decimal separator, a coordinate is typed, shown and
// stored with a point; a comma typed out of habit becomes one.
void tst_StopEditor::coordinatesTakeAPointInAnyLocale()
{
    selectRow(0);
    edit("latEdit")->clear();
    typeInto("latEdit", "55.75");
    edit("lonEdit")->clear();
    typeInto("lonEdit", "37,5");
    QCOMPARE(edit("lonEdit")->text(), QStringLiteral("37.5"));
    const cStop& stop = route().direct.stops[0];
    QCOMPARE(QPointF(stop.lon, stop.lat), QPointF(37.5, 55.75));
    selectRow(1);
    selectRow(0);
    QCOMPARE(edit("latEdit")->text() + ' ' + edit("lonEdit")->text(), QStringLiteral("55.75 37.5"));
}

// A centre taken from the map reaches the stop with the next edit, even when
// that edit renames the stop; the caret stays where the user types.
void tst_StopEditor::renameKeepsMapCentreAndCaret()
{
    selectRow(0);
    auto* viewer = m_editor->findChild<cMapViewer*>();
    viewer->showCoordinate(QPointF(30.25, 59.5), true);
    emit viewer->ok();
    QCOMPARE(edit("lonEdit")->text(), QStringLiteral("30.25"));

    QLineEdit* name = edit("stopNameEdit");
    name->setCursorPosition(0);
    typeInto("stopNameEdit", "A");
    typeInto("stopNameEdit", "B");
    QCOMPARE(name->text(), QStringLiteral("ABЦентральная"));
    QCOMPARE(name->cursorPosition(), 2);
    const cStop& stop = route().direct.stops[0];
    QCOMPARE(stop.name, name->text());
    QCOMPARE(QPointF(stop.lon, stop.lat), QPointF(30.25, 59.5));
}

void tst_StopEditor::branchesKeepRowsAndAlternateNames()
{
    // Alternate names go to the branch on show, and are no stop's change.
    QSignalSpy changed(m_editor.data(), &cStopEditor::stopChanged);
    QSignalSpy branch(m_editor.data(), &cStopEditor::branchChanged);
    child<QSlider>("isReverse")->setValue(1);
    typeInto("firstNameEdit", "X");
    QCOMPARE(route().reverse.first, QStringLiteral("X"));
    QCOMPARE(route().reverse.last, QStringLiteral("Парк"));
    QCOMPARE(route().direct.first, QStringLiteral("Депо"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(branch.count(), 1);

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
    // The branch settings start collapsed; only a change is announced.
    auto* expander = m_editor->findChild<ExpanderWidget*>("expander");
    QVERIFY(!expander->isExpanded());
    QSignalSpy changed(expander, &ExpanderWidget::expanderChanged);
    expander->setExpanded(false);
    expander->setExpanded(true);
    QCOMPARE(changed.count(), 1);
    QVERIFY(expander->widget(0)->isVisible());
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
