// Opens a project of 400 routes with 50 stops a branch the way a user does:
// Open in the main window, the file chosen in its dialog, the window's own
// logger writing its dated file; then saves it from the window. Each is timed
// until the window answers input again and compared with what the lua5.1
// interpreter needs to read the same file. Run it under the display to be
// measured (for example xvfb-run).

#include "guisupport.h"
#include "logger.h"
#include "mainwindow.h"
#include "memorypages.h"
#include "projectmanager.h"
#include "startup.h"
#include "testsupport.h"

#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int runs = 3;
const char windowMode[] = "--window";
const char modelMode[] = "--model";

void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

QByteArray statusField(const char* name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(int(qstrlen(name))).simplified();
    }
    return {};
}

// Low priority: delivered only once every event posted before it, and those
// its handlers post in turn, has been handled, which is when input gets
// through again.
void waitUntilIdle()
{
    struct cIdleMarker : QObject
    {
        bool arrived = false;
        bool event(QEvent* e) override
        {
            arrived = arrived || e->type() == QEvent::User;
            return QObject::event(e);
        }
    } marker;
    QCoreApplication::postEvent(&marker, new QEvent(QEvent::User), Qt::LowEventPriority);
    while (!marker.arrived)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

int countLines(const QString& dir)
{
    int lines = 0;
    QDirIterator files(dir, {QStringLiteral("*.log")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.open(QIODevice::ReadOnly))
            lines += file.readAll().count('\n');
    }
    return lines;
}

// Child mode: one window, one open and one save; prints
// "open-ms title-ms save-ms peak-kB log-lines".
int runWindow(int argc, char** argv)
{
    const QString file = QString::fromLocal8Bit(argv[2]);
    guisupport::cIsolatedHome home;
    logger::useLeanEventLoop();
    setApplicationNames();
    QApplication app(argc, argv);
    applyApplicationLook(app);
    QScopedPointer<QTranslator> translator(installTranslation(app));

    cMainWindow window;
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    waitUntilIdle();
    const int startLines = countLines(home.path());

    QElapsedTimer clock;
    qint64 titleMs = -1;
    QObject::connect(&window, &QWidget::windowTitleChanged, [&](const QString& title) {
        if (titleMs < 0 && title.contains(QFileInfo(file).fileName()))
            titleMs = clock.elapsed();
    });
    guisupport::answerNextModal([&](QWidget* dialog) {
        clock.start();
        guisupport::chooseFile(dialog, file);
    });
    window.findChild<QPushButton*>(QStringLiteral("openProjectBtn"))->click();
    waitUntilIdle();
    const qint64 openMs = clock.elapsed();
    const QByteArray peak = statusField("VmHWM:");

    clock.restart();
    window.findChild<QPushButton*>(QStringLiteral("saveProjectBtn"))->click();
    waitUntilIdle();
    const qint64 saveMs = clock.elapsed();

    const int routes = window.findChild<cProjectManager*>()->project()->routes.size();
    std::printf("%lld %lld %lld %d %d\n", static_cast<long long>(openMs), static_cast<long long>(titleMs),
                static_cast<long long>(saveMs), peak.split(' ').value(0).toInt(),
                routes == 400 ? countLines(home.path()) - startLines : -1);
    return 0;
}

// Child mode: the model alone opens the file in a fresh process, as the
// interpreter does; prints "open-ms".
int runModel(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // The reader's debug lines are produced but go nowhere.
    qInstallMessageHandler(dropMessage);
    cProjectManager manager;
    QElapsedTimer clock;
    clock.start();
    const bool opened = manager.openProject(QString::fromLocal8Bit(argv[2]));
    std::printf("%lld\n", static_cast<long long>(clock.elapsed()));
    return opened ? 0 : 1;
}

// Runs this program in `mode` on `file`; the figures it prints, or none.
QList<qint64> childFigures(const char* mode, const QString& file)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {QLatin1String(mode), file});
    QList<qint64> figures;
    if (child.waitForFinished(300000) && child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0) {
        for (const QByteArray& figure : child.readAllStandardOutput().simplified().split(' '))
            figures << figure.toLongLong();
    }
    return figures;
}

qint64 bestOf(const std::function<qint64()>& job)
{
    qint64 best = -1;
    for (int i = 0; i < runs; ++i) {
        const qint64 ms = job();
        if (ms < 0)
            return -1;
        best = best < 0 ? ms : std::min(best, ms);
    }
    return best;
}

double ratio(qint64 ms, qint64 base)
{
    return base > 0 ? double(ms) / base : 0.0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], windowMode) == 0)
        return runWindow(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], modelMode) == 0)
        return runModel(argc, argv);

    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("bench.vosk"));
    {
        cProjectManager writer;
        *writer.project() = testsupport::generatedProject(400, 50);
        if (!writer.saveProject(file)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
            return 1;
        }
    }

    const QString interpreter = QStandardPaths::findExecutable(QStringLiteral("lua5.1"));
    const qint64 luaMs = bestOf([&]() -> qint64 {
        QProcess lua;
        QElapsedTimer clock;
        clock.start();
        lua.start(interpreter, {QStringLiteral("-e"), QStringLiteral("dofile[[%1]]").arg(file)});
        return lua.waitForFinished(120000) && lua.exitCode() == 0 ? clock.elapsed() : -1;
    });

    const qint64 modelMs = bestOf([&]() -> qint64 { return childFigures(modelMode, file).value(0, -1); });

    QList<QList<qint64>> windowRuns;
    for (int i = 0; i < runs; ++i) {
        const QList<qint64> figures = childFigures(windowMode, file);
        if (figures.size() != 5 || figures[4] < 0) {
            std::fprintf(stderr, "window run failed\n");
            return 1;
        }
        windowRuns << figures;
    }
    const auto best = [&windowRuns](int column) {
        qint64 value = windowRuns[0][column];
        for (const QList<qint64>& figures : windowRuns)
            value = std::min(value, figures[column]);
        return value;
    };

    std::printf("allocator: %s\n", usesLargeMemoryPages() ? "mimalloc, large pages" : "system");
    std::printf("project: 400 routes, 40000 stops, %.1f MB\n", QFileInfo(file).size() / 1e6);
    std::printf("lua5.1 dofile:          %5lld ms (process, best of %d)\n", static_cast<long long>(luaMs), runs);
    std::printf("model open:             %5lld ms  %.2f x lua5.1 (best of %d)\n", static_cast<long long>(modelMs),
                ratio(modelMs, luaMs), runs);
    for (const QList<qint64>& figures : windowRuns)
        std::printf("window run:             open %lld ms %.2f x (title at %lld ms), save %lld ms %.2f x, %lld log lines\n",
                    figures[0], ratio(figures[0], luaMs), figures[1], figures[2], ratio(figures[2], luaMs), figures[4]);
    std::printf("window open until idle: %5lld ms  %.2f x lua5.1 (best of %d)\n", best(0), ratio(best(0), luaMs),
                runs);
    std::printf("title shows the file:   %5lld ms\n", best(1));
    std::printf("window save until idle: %5lld ms  %.2f x lua5.1\n", best(2), ratio(best(2), luaMs));
    std::printf("window peak (VmHWM):    %5.1f MB\n", best(3) / 1024.0);
    return 0;
}
