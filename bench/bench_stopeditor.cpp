// Selecting a route of 500 stops in each branch, then one of its stops, in
// the real main window: both must take well under 100 ms.

#include "guisupport.h"
#include "mainwindow.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListView>
#include <QListWidget>
#include <QTest>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int runs = 5;

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
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
    *manager->project() = testsupport::generatedProject(2, 500);
    // The list refills from the project as after an import.
    emit manager->projectOpened();
    auto* routes = window.findChild<QListWidget*>(QStringLiteral("routeList"));
    auto* stops = window.findChild<QListView*>(QStringLiteral("stopList"));

    QVector<double> routeTimes;
    QVector<double> stopTimes;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        QListWidgetItem* item = routes->item(run % 2);
        QTest::mouseClick(routes->viewport(), Qt::LeftButton, {}, routes->visualItemRect(item).center());
        QCoreApplication::processEvents();
        routeTimes << clock.nsecsElapsed() / 1e6;

        clock.restart();
        const QModelIndex index = stops->model()->index(run * 7, 0);
        stops->scrollTo(index);
        QTest::mouseClick(stops->viewport(), Qt::LeftButton, {}, stops->visualRect(index).center());
        QCoreApplication::processEvents();
        stopTimes << clock.nsecsElapsed() / 1e6;
    }
    std::printf("route of %d + %d stops\n", manager->project()->routes[0].direct.stops.size(),
                manager->project()->routes[0].reverse.stops.size());
    std::printf("select route: median %.1f ms, max %.1f ms\n", median(routeTimes),
                *std::max_element(routeTimes.begin(), routeTimes.end()));
    std::printf("select stop:  median %.1f ms, max %.1f ms\n", median(stopTimes),
                *std::max_element(stopTimes.begin(), stopTimes.end()));
    return 0;
}
