// Exports one route of 50 stops, each with a sound of its own, as the
// window and voskantor-cli do (check, scripts, conversion, read-back), and
// splits the time into ffmpeg's own runs and everything around them. The
// split comes from the converter's log lines, timestamped here.

#include "converter.h"
#include "exportnames.h"
#include "logmarks.h"
#include "sourcetone.h"
#include "routecheck.h"
#include "routeexport.h"
#include "testsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int stopCount = 50;

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QDir root(dir.path());
    root.mkdir("src");
    root.mkdir("out");
    const QString tone = writeSourceTone(root);

    // generatedProject's first route, cut to 50 stops, each sound a copy of
    // the tone.
    cRoute route = testsupport::generatedProject(1, stopCount / 2).routes.first();
    const auto place = [&](QString& sound) {
        const QString local = root.filePath("src/" + sound.section('/', -1));
        if (!QFile::exists(local) && !QFile::copy(tone, local))
            return false;
        sound = local;
        return true;
    };
    bool placed = place(route.base_sound.current) && place(route.base_sound.next) && place(route.base_sound.last);
    for (cBranch* branch : {&route.direct, &route.reverse}) {
        for (cStop& stop : branch->stops) {
            placed = placed && place(stop.sound);
            stop.other_sounds.clear();
        }
    }
    if (!placed) {
        std::fprintf(stderr, "cannot make the sources (is ffmpeg installed?)\n");
        return 1;
    }

    cRouteExport routeExport;
    QEventLoop loop;
    cExportResult result;
    QObject::connect(&routeExport, &cRouteExport::finished, [&](const cExportResult& r) {
        result = r;
        loop.quit();
    });

    logmarks::start();
    cCheckOptions options;
    options.converter = cConverter::program();
    options.outputDir = root.filePath("out");
    const QList<cProblem> problems = cRouteCheck::run({route}, options);
    const double check = logmarks::elapsedSeconds();
    routeExport.start({cExportItem{route, scriptFileName(route)}}, root.filePath("out"));
    if (routeExport.isRunning())
        loop.exec();
    const double total = logmarks::stop();

    const double ffmpeg = logmarks::spanSeconds("Process started:", "STD Output:");
    const double start = logmarks::spanSeconds("Running ffmpeg with args:", "Process started:");
    const double outside = total - ffmpeg;
    std::printf("exported one route of %d stops, %d sounds: %s, %d check errors\n", stopCount,
                routeExport.sounds().size(), result.ok() ? "all read back as written" : "FAILED",
                errorCount(problems));
    std::printf("total              %8.3f s\n", total);
    std::printf("inside ffmpeg      %8.3f s  %6.1f %%\n", ffmpeg, 100 * ffmpeg / total);
    std::printf("outside ffmpeg     %8.3f s  %6.1f %% (at most 10 %%)\n", outside, 100 * outside / total);
    std::printf("  check            %8.3f s  %6.1f %%\n", check, 100 * check / total);
    std::printf("  process starts   %8.3f s  %6.1f %%\n", start, 100 * start / total);
    for (const QString& file : qAsConst(result.failedFiles))
        std::printf("failed: %s\n", qPrintable(file));
    for (const QString& difference : qAsConst(result.differences))
        std::printf("%s\n", qPrintable(difference));
    return result.ok() && outside < 0.1 * total ? 0 : 1;
}
