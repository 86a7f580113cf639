#include "guisupport.h"
#include "mainwindow.h"
#include "player.h"
#include "projectmanager.h"
#include "routeeditor.h"
#include "soundselector.h"
#include "startup.h"
#include "testsupport.h"

#include <QtTest>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>

#include <functional>

using namespace guisupport;
using namespace testsupport;

class tst_RouteEditor : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("SDL_AUDIODRIVER", "dummy"); }
    void init();
    void cleanup();
    void soundSelector();
    void loadingFillsTheFormAndEmitsNothing();
    void everyEditWritesTheWholeForm();
    void typeSelectorIsUnbound();
    void renamesFollowBothWays();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    cSoundSelector* sound(int row)
    {
        auto* grid = child<QGridLayout>(m_editor.data(), "soundLayout");
        return qobject_cast<cSoundSelector*>(grid->itemAtPosition(row, 2)->widget());
    }
    QLineEdit* edit(const char* name) { return child<QLineEdit>(m_editor.data(), name); }
    QCheckBox* box(const char* name) { return child<QCheckBox>(m_editor.data(), name); }
    cRoute& route(int index) { return m_manager->project()->routes[index]; }
    // What the form shows, as the fields of `route` it is bound to.
    cRoute shown(cRoute route)
    {
        route.name = edit("nameEdit")->text();
        route.short_name = edit("shortNameEdit")->text();
        route.play_sound = box("playSound")->isChecked();
        route.display_text = box("showText")->isChecked();
        route.base_text = {edit("currentEdit")->text(), edit("nextEdit")->text(), edit("lastEdit")->text()};
        route.base_sound = {sound(0)->soundFile(), sound(1)->soundFile(), sound(2)->soundFile()};
        return route;
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_present;
    QScopedPointer<cProjectManager> m_manager;
    QScopedPointer<cRouteEditor> m_editor;
};

void tst_RouteEditor::init()
{
    QSettings().clear();
    m_dir.reset(new QTemporaryDir);
    m_present = path("present.wav");
    QVERIFY(writeFile(m_present, "RIFF"));
    m_manager.reset(new cProjectManager);
    cRoute first = sampleRoute();
    first.id = QUuid::createUuid();
    first.type = QStringLiteral("line");
    first.display_text = false;
    first.base_sound = {m_present, path("missing.wav"), QString()};
    cRoute second;
    second.name = QStringLiteral("Второй");
    second.id = QUuid::createUuid();
    m_manager->project()->routes << first << second;
    m_editor.reset(new cRouteEditor(m_manager.data()));
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor.data()));
}

void tst_RouteEditor::cleanup()
{
    const int unused = dropPendingAnswers();
    m_editor.reset();
    m_manager.reset();
    QCOMPARE(unused, 0);
}

// The field every sound goes through: a missing file is shown but marked,
// the chosen folder is shared by all fields, and only the user's own choice
// or deletion counts as an edit.
void tst_RouteEditor::soundSelector()
{
    cPlayer player(8000);
    cSoundSelector selector(&player);
    cSoundSelector other(&player);
    QSignalSpy edited(&selector, &cSoundSelector::edited);
    auto* play = child<QToolButton>(&selector, "cPlayButton");
    QVERIFY(QDir(m_dir->path()).mkdir("sub"));
    const QString missing = path("sub/missing.wav");
    selector.setSoundFile(missing);
    QCOMPARE(selector.findChild<QLabel*>()->text(), QStringLiteral("missing.wav"));
    QVERIFY(play->isEnabled() && play->styleSheet().contains("red"));
    selector.setSoundFile(m_present);
    QVERIFY(play->styleSheet().isEmpty());
    selector.setSoundFile(QString());
    QVERIFY(!play->isEnabled() && !child<QToolButton>(&selector, "cDeleteButton")->isEnabled());

    QSettings().setValue("Sound/LastDir", path("sub"));
    QString openedIn;
    answerFileDialog(m_present, &openedIn);
    child<QToolButton>(&selector, "cSelectButton")->click();
    QCOMPARE(openedIn + "|" + selector.soundFile(), path("sub") + "|" + m_present);
    answerFileDialog(QString(), &openedIn);
    child<QToolButton>(&other, "cSelectButton")->click();
    QCOMPARE(openedIn + "|" + other.soundFile(), m_dir->path() + "|");
    // Disabled on an empty field, yet deleting still reports.
    selector.setSoundFile(QString());
    QMetaObject::invokeMethod(&selector, "deleteSoundFile");
    QCOMPARE(edited.count(), 2);
}

void tst_RouteEditor::loadingFillsTheFormAndEmitsNothing()
{
    QSignalSpy changed(m_editor.data(), &cRouteEditor::routeChanged);
    const cRoute first = route(0);
    m_editor->routeSelected(first.id);
    QCOMPARE(difference(shown(first), first), QString());
    QVERIFY(child<QToolButton>(sound(1), "cPlayButton")->styleSheet().contains("red"));
    QVERIFY(child<QToolButton>(sound(0), "cPlayButton")->styleSheet().isEmpty());

    // An unknown id keeps the route on show, and editable.
    m_editor->routeSelected(QUuid::createUuid());
    QCOMPARE(changed.count(), 0);
    QTest::keyClick(edit("nameEdit"), Qt::Key_Exclam);
    QCOMPARE(route(0).name, first.name + "!");
    QCOMPARE(changed.count(), 1);

    // A null id empties the form, and edits then go nowhere.
    const cProject before = *m_manager->project();
    m_editor->routeSelected(QUuid());
    cRoute empty;
    empty.play_sound = empty.display_text = false;
    QCOMPARE(difference(shown(empty), empty), QString());
    QTest::keyClick(edit("nameEdit"), Qt::Key_A);
    box("playSound")->click();
    QCOMPARE(difference(*m_manager->project(), before), QString());
    QCOMPARE(changed.count(), 1);
}

// The form is changed as loading changes it, which writes nothing; then one
// user action on any field writes every field.
void tst_RouteEditor::everyEditWritesTheWholeForm()
{
    const auto texts = {"nameEdit", "shortNameEdit", "currentEdit", "nextEdit", "lastEdit"};
    QList<QPair<const char*, std::function<void()>>> actions{
        {"playSound", [this] { box("playSound")->click(); }},
        {"showText", [this] { box("showText")->click(); }},
        {"delete", [this] { child<QToolButton>(sound(1), "cDeleteButton")->click(); }},
        {"choose", [this] { answerFileDialog(m_present); child<QToolButton>(sound(2), "cSelectButton")->click(); }}};
    for (const char* name : texts)
        actions.append({name, [this, name] { QTest::keyClick(edit(name), Qt::Key_Z); }});
    const cRoute other = route(1);
    for (int i = 0; i < actions.size(); ++i) {
        QSignalSpy changed(m_editor.data(), &cRouteEditor::routeChanged);
        const cRoute before = route(0);
        m_editor->routeSelected(before.id);
        const QString mark = QString::number(i);
        for (const char* name : texts)
            edit(name)->setText(edit(name)->text() + mark);
        box("playSound")->toggle();
        box("showText")->toggle();
        for (int row = 0; row < 3; ++row)
            sound(row)->setSoundFile(path(mark + QString::number(row)));
        QCOMPARE(difference(route(0), before), QString());

        actions[i].second();
        const cRoute expected = shown(before);
        QVERIFY(!difference(expected, before).isEmpty());
        QVERIFY2(difference(route(0), expected).isEmpty(), actions[i].first);
        QCOMPARE(difference(route(1), other), QString());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).value<QUuid>(), before.id);
    }
}

void tst_RouteEditor::typeSelectorIsUnbound()
{
    auto* type = child<QComboBox>(m_editor.data(), "typeSelector");
    QSignalSpy changed(m_editor.data(), &cRouteEditor::routeChanged);
    m_editor->routeSelected(route(0).id);
    QCOMPARE(type->currentIndex(), 0); // though the route is a "line"
    type->setFocus();
    QTest::keyClick(type, Qt::Key_Down);
    QCOMPARE(type->currentIndex(), 1);
    QCOMPARE(changed.count(), 0);
    QTest::keyClick(edit("nameEdit"), Qt::Key_Z);
    QCOMPARE(route(0).type, QStringLiteral("line"));

    m_editor->routeSelected(route(1).id);
    QCOMPARE(type->currentIndex(), 1);
    m_editor->clear();
    QCOMPARE(type->currentIndex(), 0);
}

void tst_RouteEditor::renamesFollowBothWays()
{
    // The slot takes the name of whichever route it is given, and writes
    // nothing back.
    QSignalSpy changed(m_editor.data(), &cRouteEditor::routeChanged);
    m_editor->routeSelected(route(0).id);
    m_editor->routeChangedSlot(route(1).id);
    QCOMPARE(edit("nameEdit")->text(), route(1).name);
    QCOMPARE(changed.count(), 0);

    cMainWindow window;
    window.show();
    auto* list = child<QListWidget>(&window, "routeList");
    auto* name = child<QLineEdit>(window.findChild<cRouteEditor*>(), "nameEdit");
    child<QPushButton>(&window, "addRouteBtn")->click();
    QCOMPARE(name->text(), QStringLiteral("New route"));
    answerFileDialog(path("p.vosk"));
    child<QPushButton>(&window, "saveAsProjectBtn")->click();
    QVERIFY(!window.isWindowModified());

    QTest::keyClick(name, Qt::Key_X);
    QCOMPARE(list->item(0)->text(), QStringLiteral("New routex"));
    QVERIFY(window.isWindowModified());
    list->item(0)->setText(QStringLiteral("Кольцо"));
    QCOMPARE(name->text(), QStringLiteral("Кольцо"));
    child<QPushButton>(&window, "newProjectBtn")->click();
    QVERIFY(name->text().isEmpty());
}

VOSK_GUI_TEST_MAIN(tst_RouteEditor)
#include "tst_routeeditor.moc"
