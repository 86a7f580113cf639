// The undo history in the real main window: what 1,000 stop edits on a
// 40,000-stop project add to the heap (under 20 MB), and how long undoing
// and redoing one step takes on a route of 500 + 500 stops (under 50 ms).

#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "routeselector.h"
#include "startup.h"
#include "stopeditor.h"
#include "testsupport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QUndoStack>

#include <malloc.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int edits = 1000;

double heapMegabytes()
{
    return mallinfo2().uordblks / 1048576.0;
}

void selectRow(QListView* stops, int row)
{
    stops->setCurrentIndex(stops->model()->index(row, 0));
    QCoreApplication::processEvents();
}

// The slowest of undo and redo, in milliseconds.
double undoRedoMs(QUndoStack* stack)
{
    double slowest = 0;
    for (bool undo : {true, false}) {
        QElapsedTimer clock;
        clock.start();
        undo ? stack->undo() : stack->redo();
        QCoreApplication::processEvents();
        slowest = std::max(slowest, clock.nsecsElapsed() / 1e6);
    }
    return slowest;
}

} // namespace

int main(int argc, char* argv[])
{
    guisupport::cIsolatedHome home;
    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);

    cMainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    auto* manager = window.findChild<cProjectManager*>();
    auto* selector = window.findChild<cRouteSelector*>();
    auto* stack = window.findChild<QUndoStack*>();
    auto* stops = window.findChild<QListView*>(QStringLiteral("stopList"));
    auto* name = window.findChild<QLineEdit*>(QStringLiteral("stopNameEdit"));
    auto* radius = window.findChild<QSpinBox*>(QStringLiteral("radiusEdit"));

    *manager->project() = testsupport::generatedProject(40, 500);
    emit manager->projectOpened();
    malloc_trim(0);
    const double heapBefore = heapMegabytes();
    for (int edit = 0; edit < edits; ++edit) {
        if (edit % 100 == 0)
            selector->selectRoute(manager->project()->routes.at(edit / 100).id);
        selectRow(stops, edit % 100);
        if (edit % 2)
            QTest::keyClicks(name, QStringLiteral("x"));
        else
            radius->setValue(radius->value() % 300 + 1);
        QCoreApplication::processEvents();
    }
    malloc_trim(0);
    const double added = heapMegabytes() - heapBefore;
    std::printf("%d stop edits on %d stops: %d steps, heap %+.1f MB (limit 20)\n", edits, 40 * 1000,
                stack->count(), added);

    *manager->project() = testsupport::generatedProject(2, 500);
    emit manager->projectOpened();
    stack->clear();
    selector->selectRoute(manager->project()->routes.at(0).id);
    selectRow(stops, 250);
    QTest::keyClicks(name, QStringLiteral("x"));
    QCoreApplication::processEvents();
    const double editMs = undoRedoMs(stack);
    window.findChild<QToolButton*>(QStringLiteral("downStopBtn"))->click();
    const double moveMs = undoRedoMs(stack);
    window.findChild<QToolButton*>(QStringLiteral("deleteStopBtn"))->click();
    const double deleteMs = undoRedoMs(stack);
    std::printf("undo/redo on 500 + 500 stops, slowest of the two: stop edit %.1f ms, move %.1f ms, "
                "delete %.1f ms (limit 50)\n",
                editMs, moveMs, deleteMs);
    const bool ok = added < 20 && std::max({editMs, moveMs, deleteMs}) < 50;
    return ok ? 0 : 1;
}
