#ifndef VOSK_BENCH_LOGMARKS_H
#define VOSK_BENCH_LOGMARKS_H

// Times what happens inside a component from its own log lines: every line
// is stamped on arrival, and spans between two kinds of line are summed.

#include <QElapsedTimer>
#include <QMutex>
#include <QPair>
#include <QString>
#include <QVector>

namespace logmarks {

inline QElapsedTimer runClock;
inline QMutex marksMutex;
inline QVector<QPair<qint64, QString>> marks;

inline void markMessage(QtMsgType, const QMessageLogContext&, const QString& message)
{
    const qint64 now = runClock.nsecsElapsed();
    QMutexLocker lock(&marksMutex);
    marks.append({now, message.left(32)});
}

// Starts the clock and stamps every log line from now on.
inline void start()
{
    qInstallMessageHandler(markMessage);
    runClock.start();
}

// Seconds since start(); stops the stamping.
inline double stop()
{
    const double seconds = runClock.nsecsElapsed() / 1e9;
    qInstallMessageHandler(nullptr);
    return seconds;
}

inline double elapsedSeconds()
{
    return runClock.nsecsElapsed() / 1e9;
}

// Sum of the spans from each line starting with `from` to the next line
// starting with `to`.
inline double spanSeconds(const char* from, const char* to)
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

} // namespace logmarks

#endif
