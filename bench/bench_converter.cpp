// Converts 100 one-second MP3 files for the device and splits the time into
// ffmpeg's own run and what the converter adds around it: starting the
// process, rewriting the header, and the rest (queue, signals, logging).
// The split comes from the converter's own log lines, timestamped here.

#include "converter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMutex>
#include <QProcess>
#include <QTemporaryDir>
#include <QVector>

#include <cstdio>

namespace {

constexpr int fileCount = 100;

QElapsedTimer runClock;
QMutex marksMutex;
QVector<QPair<qint64, QString>> marks;

void markMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    const qint64 now = runClock.nsecsElapsed();
    QMutexLocker lock(&marksMutex);
    marks.append({now, message.left(32)});
}

// Sum of the spans from each line starting with `from` to the next line
// starting with `to`.
double spanSeconds(const char* from, const char* to)
{
    qint64 sum = 0;
    qint64 start = -1;
    for (const auto& mark : qAsConst(marks)) {
        if (mark.second.startsWith(QLatin1String(from)))
            start = mark.first;
        else if (start >= 0 && mark.second.startsWith(QLatin1String(to))) {
            sum += mark.first - start;
            start = -1;
        }
    }
    return sum / 1e9;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QDir root(dir.path());
    root.mkdir("src");
    root.mkdir("out");

    const QString tone = root.filePath("tone.mp3");
    QProcess::execute("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=frequency=440:duration=1", "-ar", "44100",
                                 "-ac", "2", "-b:a", "128k", tone});
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

    qInstallMessageHandler(markMessage);
    runClock.start();
    converter.convert(files);
    loop.exec();
    const double total = runClock.nsecsElapsed() / 1e9;
    qInstallMessageHandler(nullptr);
    converter.wait();

    const double ffmpeg = spanSeconds("Process started:", "STD Output:");
    const double start = spanSeconds("Running ffmpeg with args:", "Process started:");
    const double rewrite = spanSeconds("Exit code:", "File done!");
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
