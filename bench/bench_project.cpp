// Saves and opens a generated project of 400 routes with 50 stops a branch
// and compares the open with what bare Lua 5.1 needs for the same file.

#include "projectmanager.h"
#include "testsupport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <lua.hpp>
#include <sys/resource.h>

namespace {

constexpr int runs = 3;
int messageCount = 0;

void countMessage(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++messageCount;
}

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

// Child mode: what the interpreter does for `lua5.1 file`, timed in-process.
int runBareLua(const char* path)
{
    QElapsedTimer clock;
    clock.start();
    lua_State* L = luaL_newstate();
    luaL_openlibs(L);
    const int status = luaL_loadfile(L, path) || lua_pcall(L, 0, 0, 0);
    const qint64 ms = clock.elapsed();
    lua_close(L);
    std::printf("%lld %.1f\n", static_cast<long long>(ms), peakMegabytes());
    return status;
}

qint64 bestOf(const std::function<bool()>& job)
{
    qint64 best = -1;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer clock;
        clock.start();
        if (!job())
            return -1;
        const qint64 ms = clock.elapsed();
        best = best < 0 ? ms : std::min(best, ms);
    }
    return best;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--bare-lua") == 0)
        return runBareLua(argv[2]);

    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString file = dir.filePath("bench.vosk");

    cProjectManager manager;
    *manager.project() = testsupport::generatedProject(400, 50);
    const qint64 saveMs = bestOf([&] { return manager.saveProject(file); });

    // The reader logs every field the writer leaves out; count those lines
    // instead of printing them.
    qInstallMessageHandler(countMessage);
    const qint64 openMs = bestOf([&] { messageCount = 0; return manager.openProject(file); });
    qInstallMessageHandler(nullptr);
    if (saveMs < 0 || openMs < 0) {
        std::fprintf(stderr, "save or open failed\n");
        return 1;
    }

    qint64 bareMs = -1;
    double bareMb = 0;
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {"--bare-lua", file});
    if (child.waitForFinished(120000)) {
        const QList<QByteArray> figures = child.readAllStandardOutput().trimmed().split(' ');
        if (figures.size() == 2) {
            bareMs = figures[0].toLongLong();
            bareMb = figures[1].toDouble();
        }
    }
    qint64 interpreterMs = -1;
    const QString interpreter = QStandardPaths::findExecutable("lua5.1");
    if (!interpreter.isEmpty()) {
        interpreterMs = bestOf([&] {
            QProcess lua;
            lua.start(interpreter, {file});
            return lua.waitForFinished(120000) && lua.exitCode() == 0;
        });
    }

    std::printf("project: %d routes, %d stops, %.1f MB\n", manager.project()->routes.size(),
                manager.project()->routes.size() * 100, QFileInfo(file).size() / 1e6);
    std::printf("save:              %lld ms (best of %d)\n", static_cast<long long>(saveMs), runs);
    std::printf("open:              %lld ms (best of %d, %d debug lines)\n", static_cast<long long>(openMs), runs,
                messageCount);
    std::printf("bare Lua load+run: %lld ms in-process, %.1f MB peak\n", static_cast<long long>(bareMs), bareMb);
    if (interpreterMs >= 0)
        std::printf("lua5.1 interpreter: %lld ms (whole process, best of %d)\n",
                    static_cast<long long>(interpreterMs), runs);
    std::printf("open / bare Lua:   %.2f\n", bareMs > 0 ? double(openMs) / bareMs : 0.0);
    std::printf("peak memory:       %.1f MB\n", peakMegabytes());
    return 0;
}
