// Converts 100 one-second MP3 files for the device and splits the time into
// ffmpeg's own run and what the converter adds around it: starting the
// process, rewriting the header, and the rest (queue, signals, logging).
// The split comes from the converter's own log lines, timestamped here.

#include "converter.h"
#include "logmarks.h"
#include "sourcetone.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int fileCount = 100;

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QDir root(dir.path());
    root.mkdir("src");
    root.mkdir("out");

    const QString tone = writeSourceTone(root);
    QStringList files;
    for (int i = 0; i < fileCount; ++i) {
        files << root.filePath(QStringLiteral("src/stop_%1.mp3").arg(i, 3, 10, QLatin1Char('0')));
        if (!QFile::copy(tone, files.last())) {
            std::fprintf(stderr, "cannot make the sources (is ffmpeg installed?)\n");
            return 1;
        }
    }

    cConverter converter;
    converter.setFileSaveType(0);
    converter.setFileNameType(0);
    converter.setOutputDir(root.filePath("out"));
    int failed = 0;
    QEventLoop loop;
    QObject::connect(&converter, &cConverter::fileProcessed, [&failed](const QString&, bool ok) { failed += !ok; });
    QObject::connect(&converter, &cConverter::convertFinished, &loop, &QEventLoop::quit);

    logmarks::start();
    converter.convert(files);
    loop.exec();
    const double total = logmarks::stop();
    converter.wait();

    const double ffmpeg = logmarks::spanSeconds("Process started:", "STD Output:");
    const double start = logmarks::spanSeconds("Running ffmpeg with args:", "Process started:");
    const double rewrite = logmarks::spanSeconds("Exit code:", "File done!");
    const double outside = total - ffmpeg;
    std::printf("converted %d one-second MP3 files, %d failed\n", fileCount, failed);
    std::printf("total              %8.3f s  %7.1f files/s\n", total, fileCount / total);
    std::printf("inside ffmpeg      %8.3f s  %6.1f %%\n", ffmpeg, 100 * ffmpeg / total);
    std::printf("outside ffmpeg     %8.3f s  %6.1f %%\n", outside, 100 * outside / total);
    std::printf("  process start    %8.3f s  %6.1f %%\n", start, 100 * start / total);
    std::printf("  header rewrite   %8.3f s  %6.1f %%\n", rewrite, 100 * rewrite / total);
    std::printf("  the rest         %8.3f s  %6.1f %%\n", outside - start - rewrite,
                100 * (outside - start - rewrite) / total);
    return failed == 0 ? 0 : 1;
}
