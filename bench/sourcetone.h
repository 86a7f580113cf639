#ifndef VOSK_BENCH_SOURCETONE_H
#define VOSK_BENCH_SOURCETONE_H

#include <QDir>
#include <QProcess>
#include <QString>

// A one-second 44.1 kHz stereo MP3 made by ffmpeg in the folder: a sound
// as operators bring them, for the conversion to work on.
inline QString writeSourceTone(const QDir& folder)
{
    const QString tone = folder.filePath(QStringLiteral("tone.mp3"));
    QProcess::execute(QStringLiteral("ffmpeg"), {"-v", "error", "-f", "lavfi", "-i", "sine=frequency=440:duration=1",
                                                 "-ar", "44100", "-ac", "2", "-b:a", "128k", tone});
    return tone;
}

#endif
