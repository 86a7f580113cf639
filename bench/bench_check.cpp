// Checks the 40,000-stop project of bench_project, with every sound file
// present and each one's header read, and compares the time with opening
// the same project in the same run.

#include "projectmanager.h"
#include "routecheck.h"
#include "testsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr int runs = 3;

void quiet(QtMsgType, const QMessageLogContext&, const QString&)
{
}

qint64 bestOf(const std::function<void()>& job)
{
    qint64 best = -1;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer clock;
        clock.start();
        job();
        const qint64 ms = clock.elapsed();
        best = best < 0 ? ms : std::min(best, ms);
    }
    return best;
}

// Points every sound of the project at a real MP3 in `dir`, one file per
// distinct path.
bool placeSounds(cProject& project, const QDir& dir, const QString& tone, int* fileCount)
{
    QHash<QString, QString> placed;
    const auto place = [&](QString& path) {
        if (path.isEmpty())
            return true;
        QString& local = placed[path];
        if (local.isEmpty()) {
            local = dir.filePath(path.section(QLatin1Char('/'), -1));
            if (!QFile::copy(tone, local))
                return false;
        }
        path = local;
        return true;
    };
    for (cRoute& route : project.routes) {
        for (QString* sound : {&route.base_sound.current, &route.base_sound.next, &route.base_sound.last})
            place(*sound);
        for (cBranch* branch : {&route.direct, &route.reverse}) {
            for (cStop& stop : branch->stops) {
                if (!place(stop.sound))
                    return false;
                for (QString& other : stop.other_sounds)
                    place(other);
            }
        }
    }
    *fileCount = placed.size();
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString tone = dir.filePath("tone.mp3");
    QProcess::execute("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=duration=0.2", "-b:a", "32k", tone});
    QDir sounds(dir.path());
    sounds.mkdir("snd");
    sounds.cd("snd");

    cProjectManager manager;
    *manager.project() = testsupport::generatedProject(400, 50);
    int fileCount = 0;
    if (!placeSounds(*manager.project(), sounds, tone, &fileCount)) {
        std::fprintf(stderr, "cannot make the sound files (is ffmpeg installed?)\n");
        return 1;
    }
    const QString file = dir.filePath("bench.vosk");
    if (!manager.saveProject(file)) {
        std::fprintf(stderr, "cannot save the project\n");
        return 1;
    }

    qInstallMessageHandler(quiet);
    bool opened = true;
    const qint64 openMs = bestOf([&] { opened = opened && manager.openProject(file); });
    qInstallMessageHandler(nullptr);
    if (!opened) {
        std::fprintf(stderr, "cannot open the project\n");
        return 1;
    }

    cCheckOptions options;
    options.converter = QStringLiteral("ffmpeg");
    QList<cProblem> problems;
    const qint64 checkMs = bestOf([&] { problems = cRouteCheck::run(manager.project()->routes, options); });

    std::printf("project: %d routes, %d stops, %d sound files\n", manager.project()->routes.size(),
                manager.project()->routes.size() * 100, fileCount);
    std::printf("open:          %lld ms (best of %d)\n", static_cast<long long>(openMs), runs);
    std::printf("check:         %lld ms (best of %d), %d problems, %d errors\n", static_cast<long long>(checkMs),
                runs, problems.size(), errorCount(problems));
    QMap<QString, int> byCode;
    for (const cProblem& p : problems)
        ++byCode[p.codeText()];
    for (auto it = byCode.begin(); it != byCode.end(); ++it)
        std::printf("  %s: %d\n", qPrintable(it.key()), it.value());
    std::printf("check / open:  %.2f (at most 1.5)\n", double(checkMs) / openMs);
    return checkMs <= openMs * 3 / 2 ? 0 : 1;
}
