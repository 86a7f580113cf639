// Time from process start to the main window shown, with an empty project,
// taking the same start-up steps as the editor. Run it under the display to
// be measured (for example xvfb-run).

#include "guisupport.h"
#include "mainwindow.h"
#include "startup.h"

#include <QApplication>
#include <QFile>
#include <QTest>
#include <QTranslator>

#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace {

double secondsSinceBoot()
{
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

// The kernel's record of when this process started, in seconds since boot.
double processStart()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    if (!stat.open(QIODevice::ReadOnly))
        return secondsSinceBoot();
    const QByteArray text = stat.readAll();
    // Fields after the command name, which is in parentheses; starttime is
    // field 22 of the whole line.
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    return fields.value(19).toDouble() / sysconf(_SC_CLK_TCK);
}

} // namespace

int main(int argc, char* argv[])
{
    const double started = processStart();
    // Settings and logs go to a scratch folder, so the figure is that of a
    // first start.
    guisupport::cIsolatedHome home;

    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);
    QTranslator* translator = installTranslation(app);
    const double applicationReady = secondsSinceBoot();

    auto* window = new cMainWindow(nullptr);
    const double windowBuilt = secondsSinceBoot();
    window->show();
    const bool exposed = QTest::qWaitForWindowExposed(window, 5000);
    const double shown = secondsSinceBoot();

    std::printf("platform:                %s\n", qPrintable(QApplication::platformName()));
    std::printf("process start to app:    %.0f ms\n", (applicationReady - started) * 1000);
    std::printf("main window built:       %.0f ms\n", (windowBuilt - applicationReady) * 1000);
    std::printf("shown and exposed:       %.0f ms\n", (shown - windowBuilt) * 1000);
    std::printf("process start to shown:  %.0f ms%s\n", (shown - started) * 1000, exposed ? "" : " (not exposed)");
    delete window;
    delete translator;
    return exposed ? 0 : 1;
}
