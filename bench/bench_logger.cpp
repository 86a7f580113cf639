// The logger the window uses, 200,000 lines: from the message sent to its
// line flushed in the file, per line, with all of them sent at once (as a
// reader's burst) and one at a time (each waiting for its line).

#include "logger.h"
#include "memorypages.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr int lines = 200000;

int countWholeLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray bytes = file.readAll();
    return bytes.endsWith('\n') ? bytes.count('\n') : -1;
}

} // namespace

int main(int argc, char** argv)
{
    logger::useLeanEventLoop();
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString burstPath = dir.filePath(QStringLiteral("burst.log"));
    const QString singlePath = dir.filePath(QStringLiteral("single.log"));
    double burstUs = 0;
    double singleUs = 0;
    {
        logger::cLogger logs(nullptr, burstPath, false);
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < lines; ++i)
            qDebug("stop %d: sound not found", i);
        QCoreApplication::processEvents();
        burstUs = clock.nsecsElapsed() / 1e3 / lines;
    }
    {
        logger::cLogger logs(nullptr, singlePath, false);
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < lines; ++i) {
            qDebug("stop %d: sound not found", i);
            QCoreApplication::processEvents();
        }
        singleUs = clock.nsecsElapsed() / 1e3 / lines;
    }
    const int burstLines = countWholeLines(burstPath);
    const int singleLines = countWholeLines(singlePath);
    std::printf("allocator: %s\n", usesLargeMemoryPages() ? "mimalloc, large pages" : "system");
    std::printf("burst of %d lines:  %.2f us per line (%d in the file)\n", lines, burstUs, burstLines);
    std::printf("one line at a time: %.2f us per line (%d in the file)\n", singleUs, singleLines);
    return burstLines == lines && singleLines == lines ? 0 : 1;
}
