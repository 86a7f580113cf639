#include "guisupport.h"
#include "mainwindow.h"
#include "mapadapter.h"
#include "mapviewer.h"
#include "projectfile.h"
#include "projectmanager.h"
#include "routeselector.h"
#include "startup.h"
#include "stopeditor.h"
#include "stopfixer.h"
#include "testsupport.h"
#include "tileserver.h"

#include <QtTest>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QToolButton>
#include <QUndoStack>

using namespace guisupport;
using namespace testsupport;

namespace {

const char* const evtRoute =
    "<eventlist>\n<name>9</name>\n<event>\n<name>Вокзал</name>\n<zone shape=circle><radius>30</radius>"
    "<point lat=55.1 lon=37.2></point></zone>\n<reaction logic=rise></reaction>\n</event>\n</eventlist>\n";

} // namespace

class tst_History : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void randomEditsUndoAndRedoByteForByte();
    void typingMergesPerFieldUntilFocusLeaves();
    void saveMarksCleanAndOpenClears();
    void undoShowsWhatChanged();
    void mirrorAndMoveSeveralStops();

private:
    template <typename T = QWidget>
    T* find(const char* name) { return child<T>(m_window.data(), name); }
    cProjectManager* manager() { return m_window->findChild<cProjectManager*>(); }
    QUndoStack* stack() { return m_window->findChild<QUndoStack*>(); }
    cStopEditor* stopEditor() { return m_window->findChild<cStopEditor*>(); }
    cRouteSelector* selector() { return m_window->findChild<cRouteSelector*>(); }
    QListView* stopList() { return find<QListView>("stopList"); }
    QListWidget* routeList() { return find<QListWidget>("routeList"); }
    QString text() { return writeProject(*manager()->project(), false); }
    cRoute& route(int row) { return manager()->project()->routes[row]; }
    void openSample();
    void typeInto(const char* field, const QString& text);
    void selectStops(const QList<int>& rows);
    void dropOn(QAbstractItemView* view, int row);
    void randomEdit(QRandomGenerator& random, QMap<int, QString>& texts);

    QTabWidget* tabs() { return qobject_cast<QTabWidget*>(m_window->centralWidget()); }

    QTemporaryDir m_temp;
    cTileServer m_server;
    QScopedPointer<cMainWindow> m_window;
};

void tst_History::initTestCase()
{
    qputenv("TMPDIR", m_temp.path().toLocal8Bit());
    QVERIFY(m_server.start());
    qputenv(qmapcontrol::MapAdapter::serverVariable, m_server.url().toLatin1());
}

void tst_History::init()
{
    m_window.reset(new cMainWindow);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.data()));
}

void tst_History::cleanup()
{
    dropPendingAnswers();
    m_window.reset();
}

void tst_History::openSample()
{
    cProject project = generatedProject(3, 4);
    project.routes.insert(1, sampleRoute());
    const QString path = m_temp.filePath(QStringLiteral("sample.vosk"));
    QVERIFY(writeFile(path, writeProject(project, false).toLocal8Bit()));
    selector()->openProjectFiles({path});
    QCOMPARE(stack()->count(), 0);
}

void tst_History::typeInto(const char* field, const QString& text)
{
    QTest::keyClicks(find<QLineEdit>(field), text);
    QCoreApplication::processEvents();
}

void tst_History::selectStops(const QList<int>& rows)
{
    QItemSelection selection;
    for (int row : rows)
        selection.select(stopList()->model()->index(row, 0), stopList()->model()->index(row, 0));
    stopList()->setCurrentIndex(stopList()->model()->index(rows.first(), 0));
    stopList()->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
}

// A drop in the upper half of the row, so before it; past the rows, at the end.
void tst_History::dropOn(QAbstractItemView* view, int row)
{
    const QModelIndex index = view->model()->index(row, 0);
    const QPoint at = index.isValid() ? view->visualRect(index).topLeft() + QPoint(2, 1)
                                      : QPoint(2, view->viewport()->height() - 2);
    QMimeData data;
    data.setData(view->model()->mimeTypes().value(0), QByteArray());
    QDragEnterEvent enter(at, Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(at, Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &drop);
    QCoreApplication::processEvents();
}

// Selecting a stop may write it already (its centre as the form shows it),
// which is a step of its own.
void tst_History::randomEdit(QRandomGenerator& random, QMap<int, QString>& texts)
{
    const int routes = manager()->project()->routes.size();
    if (routes > 0 && random.bounded(4) == 0) {
        selector()->selectRoute(route(random.bounded(routes)).id);
        find<QSlider>("isReverse")->setValue(random.bounded(2));
    }
    const int rows = stopList()->model()->rowCount();
    const int row = rows > 0 ? random.bounded(rows) : -1;
    if (row >= 0)
        selectStops({row});
    texts[stack()->index()] = text();
    const QString letter = QString(QChar(QLatin1Char(char('a' + random.bounded(26)))));
    switch (random.bounded(20)) {
    case 0: find<QPushButton>("addRouteBtn")->click(); break;
    case 1: QMetaObject::invokeMethod(selector(), "routeDeleteRequest"); break;
    case 2: if (routes > 0) routeList()->currentItem()->setText(routeList()->currentItem()->text() + letter); break;
    case 3: typeInto("nameEdit", letter); break;
    case 4: typeInto("currentEdit", letter); break;
    case 5: find<QCheckBox>("playSound")->click(); break;
    case 6: find<QToolButton>("addStopBtn")->click(); break;
    case 7: find<QToolButton>("deleteStopBtn")->click(); break;
    case 8: find<QToolButton>(random.bounded(2) ? "upStopBtn" : "downStopBtn")->click(); break;
    case 9: typeInto("stopNameEdit", letter); break;
    case 10: typeInto("lonEdit", QString::number(random.bounded(10))); break;
    case 11: find<QSpinBox>("radiusEdit")->setValue(random.bounded(1, 300)); break;
    case 12: find<QCheckBox>("courseEnabled")->click(); break;
    case 13: typeInto("firstNameEdit", letter); break;
    case 14:
        if (rows > 2) {
            selectStops({0, rows - 1});
            texts[stack()->index()] = text();
            find<QToolButton>(random.bounded(2) ? "deleteStopBtn" : "downStopBtn")->click();
        }
        break;
    case 15: if (rows > 1) dropOn(stopList(), random.bounded(rows + 1)); break;
    case 16: if (routes > 1) dropOn(routeList(), random.bounded(routes + 1)); break;
    case 17:
        answerMessageBox(nullptr, QStringLiteral("Yes"));
        stopEditor()->findChild<QAction*>(QStringLiteral("mirrorBranchAction"))->trigger();
        dropPendingAnswers();
        break;
    case 18:
        if (row >= 0) {
            auto* map = stopEditor()->findChild<cMapViewer*>();
            map->showCoordinate(QPointF(37 + random.bounded(1000) / 1e4, 55.5), true);
            map->setCourse(random.bounded(360), 30);
            QMetaObject::invokeMethod(map, "okSlot");
        }
        break;
    default: {
        const QString evt = m_temp.filePath(QStringLiteral("route.evt"));
        QVERIFY(writeFile(evt, evtRoute));
        answerFileDialog(evt);
        find<QPushButton>("importRouteBtn")->menu()->actions().first()->trigger();
        break;
    }
    }
    QCoreApplication::processEvents();
}

// Every step undone gives back the project as it was before it, down to
// the bytes of its file, and redoing them all gives the last one again.
void tst_History::randomEditsUndoAndRedoByteForByte()
{
    openSample();
    QMap<int, QString> texts{{0, text()}};
    QRandomGenerator random(1616);
    for (int edit = 0; edit < 300; ++edit) {
        randomEdit(random, texts);
        texts[stack()->index()] = text();
    }
    const int steps = stack()->count();
    QVERIFY2(steps > 150, qPrintable(QString::number(steps)));
    const QString last = text();
    auto* undo = find<QAction>("undoAction");
    while (stack()->canUndo()) {
        undo->trigger();
        QCoreApplication::processEvents();
        QCOMPARE(text(), texts.value(stack()->index()));
    }
    QCOMPARE(stack()->count(), steps);
    auto* redo = find<QAction>("redoAction");
    while (stack()->canRedo()) {
        redo->trigger();
        QCoreApplication::processEvents();
    }
    QCOMPARE(text(), last);
}

void tst_History::typingMergesPerFieldUntilFocusLeaves()
{
    openSample();
    selector()->selectRoute(route(1).id);
    selectStops({1});
    const int before = stack()->count();
    find<QLineEdit>("stopNameEdit")->setFocus();
    typeInto("stopNameEdit", QStringLiteral("abc"));
    typeInto("stopFullNameEdit", QStringLiteral("de"));
    QCOMPARE(stack()->count(), before + 2);
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Edit stop 'Школаabc'"));
    find<QLineEdit>("stopNameEdit")->setFocus();
    typeInto("stopNameEdit", QStringLiteral("x"));
    QCOMPARE(stack()->count(), before + 3);
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Rename stop 'Школаabc'"));
    stack()->undo();
    stack()->undo();
    QCOMPARE(route(1).direct.stops[1].name, QStringLiteral("Школаabc"));
    QCOMPARE(find<QLineEdit>("stopNameEdit")->text(), QStringLiteral("Школаabc"));
    stack()->undo();
    QCOMPARE(route(1).direct.stops[1].name, QStringLiteral("Школа"));
    QCOMPARE(find<QAction>("redoAction")->text(), QStringLiteral("Redo Rename stop 'Школа'"));

    tabs()->setCurrentIndex(0);
    find<QLineEdit>("nameEdit")->setFocus();
    typeInto("nameEdit", QStringLiteral("12"));
    QCOMPARE(stack()->count(), before + 1);
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Rename route '%1'").arg(route(1).name.chopped(2)));
}

void tst_History::saveMarksCleanAndOpenClears()
{
    openSample();
    const QString path = m_temp.filePath(QStringLiteral("sample.vosk"));
    QVERIFY(!m_window->isWindowModified());
    selector()->selectRoute(route(0).id);
    typeInto("nameEdit", QStringLiteral("1"));
    QVERIFY(m_window->isWindowModified());
    find<QPushButton>("saveProjectBtn")->click();
    QVERIFY(stack()->isClean());
    QVERIFY(!m_window->isWindowModified());
    typeInto("shortNameEdit", QStringLiteral("2"));
    QVERIFY(m_window->isWindowModified());
    stack()->undo();
    QVERIFY(!m_window->isWindowModified());
    stack()->undo();
    QVERIFY(m_window->isWindowModified());
    stack()->redo();
    QVERIFY(!m_window->isWindowModified());

    find<QPushButton>("addRouteBtn")->click();
    selector()->openProjectFiles({path});
    QCOMPARE(stack()->count(), 0);
    QVERIFY(!m_window->isWindowModified());
    find<QPushButton>("addRouteBtn")->click();
    find<QPushButton>("newProjectBtn")->click();
    QCOMPARE(stack()->count(), 0);
    // A new project has never been saved.
    QVERIFY(m_window->isWindowModified());
}

void tst_History::undoShowsWhatChanged()
{
    openSample();
    selector()->selectRoute(route(1).id);
    tabs()->setCurrentWidget(stopEditor());
    find<QSlider>("isReverse")->setValue(1);
    selectStops({0});
    typeInto("stopNameEdit", QStringLiteral("z"));
    const cStop edited = route(1).reverse.stops[0];
    selector()->selectRoute(route(2).id);
    tabs()->setCurrentIndex(0);

    stack()->undo();
    QCOMPARE(routeList()->currentItem()->text(), route(1).name);
    QCOMPARE(tabs()->currentWidget(), stopEditor());
    QCOMPARE(find<QSlider>("isReverse")->value(), 1);
    QCOMPARE(stopList()->currentIndex().data(Qt::UserRole).value<QUuid>(), edited.id);
    QCOMPARE(find<QLineEdit>("stopNameEdit")->text(), route(1).reverse.stops[0].name);

    selector()->selectRoute(route(2).id);
    const QUuid deleted = route(2).id;
    QMetaObject::invokeMethod(selector(), "routeDeleteRequest");
    QCOMPARE(routeList()->count(), 3);
    stack()->undo();
    QCOMPARE(routeList()->count(), 4);
    QCOMPARE(routeList()->currentItem()->data(Qt::UserRole).value<QUuid>(), deleted);
    QCOMPARE(find<QLineEdit>("nameEdit")->text(), route(2).name);
    QCOMPARE(tabs()->currentIndex(), 0);

    // A fix suggested by a replay is one step that brings the stop back in view.
    const QString unfixed = text();
    const cStop target = route(3).direct.stops[1];
    QVERIFY(m_window->findChild<cStopFixer*>()->apply(target.id, {cSuggestedFix::eKind::Radius, 77}));
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Apply suggested fix to '%1'").arg(target.name));
    stack()->undo();
    QCOMPARE(text(), unfixed);
    QCOMPARE(routeList()->currentItem()->text(), route(3).name);
    QCOMPARE(stopList()->currentIndex().data(Qt::UserRole).value<QUuid>(), target.id);
}

void tst_History::mirrorAndMoveSeveralStops()
{
    openSample();
    selector()->selectRoute(route(1).id);
    const QString original = text();
    QString question;
    answerMessageBox(&question, QStringLiteral("No"));
    stopEditor()->findChild<QAction*>(QStringLiteral("mirrorBranchAction"))->trigger();
    QVERIFY2(question.contains(QStringLiteral("reverse branch has")), qPrintable(question));
    QCOMPARE(text(), original);

    answerMessageBox(nullptr, QStringLiteral("Yes"));
    stopEditor()->findChild<QAction*>(QStringLiteral("mirrorBranchAction"))->trigger();
    const cRoute& mirrored = route(1);
    const int count = mirrored.direct.stops.size();
    QCOMPARE(mirrored.reverse.stops.size(), count);
    for (int i = 0; i < count; ++i) {
        const cStop& from = mirrored.direct.stops[count - 1 - i];
        cStop to = mirrored.reverse.stops[i];
        QVERIFY(to.id != from.id && !to.id.isNull());
        QCOMPARE(to.course_value, from.course_enabled ? (from.course_value + 180) % 360 : from.course_value);
        to.id = from.id;
        to.course_value = from.course_value;
        QCOMPARE(difference(to, from), QString());
    }
    QCOMPARE(find<QSlider>("isReverse")->value(), 1);
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Make reverse from direct"));
    stack()->undo();
    QCOMPARE(text(), original);

    // Several stops move and go together, one step each.
    selector()->selectRoute(route(0).id);
    const QStringList names = testsupport::stopNames(route(0).direct.stops);
    selectStops({0, 2});
    find<QToolButton>("downStopBtn")->click();
    QCOMPARE(testsupport::stopNames(route(0).direct.stops), (QStringList{names[1], names[0], names[3], names[2]}));
    dropOn(stopList(), 4);
    QCOMPARE(testsupport::stopNames(route(0).direct.stops), (QStringList{names[1], names[3], names[0], names[2]}));
    find<QToolButton>("deleteStopBtn")->click();
    QCOMPARE(testsupport::stopNames(route(0).direct.stops), (QStringList{names[1], names[3]}));
    QCOMPARE(find<QAction>("undoAction")->text(), QStringLiteral("Undo Delete 2 stops"));
    stack()->undo();
    stack()->undo();
    stack()->undo();
    QCOMPARE(testsupport::stopNames(route(0).direct.stops), names);
}

VOSK_GUI_TEST_MAIN(tst_History)
#include "tst_history.moc"
