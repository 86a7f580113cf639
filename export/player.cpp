#include "player.h"

#include "audiobackend.h"

#include <QCoreApplication>
#include <QDebug>
#include <QMutexLocker>
#include <QStringList>

namespace {

const int pollInterval = 300; // ms

} // namespace

cPlayer::cPlayer(int frequency, QObject* parent)
    : QThread(parent)
    , frequency(frequency)
{
    qDebug() << "BASS Ver:" << cAudioBackend::version();

    const QStringList arguments = QCoreApplication::arguments();
    for (const QString& argument : arguments) {
        if (!argument.startsWith(QLatin1String(soundDeviceOption)))
            continue;
        const QStringList parts = argument.split(QLatin1Char(':'));
        if (parts.size() != 2) {
            qWarning("Error in setting sound device (param)");
            continue;
        }
        bool ok = false;
        const int number = parts.at(1).toInt(&ok, 10);
        if (!ok) {
            qWarning("Error in setting sound device (convert)");
            continue;
        }
        device = number;
    }
    qDebug().noquote() << tr("BASS is using device:") << device;
}

cPlayer::~cPlayer()
{
    if (isRunning()) {
        terminate();
        // Only until the cancellation lands, not until the sound ends:
        // QThread refuses to be destroyed while its thread still runs.
        wait();
    }
}

void cPlayer::play(const QString& file)
{
    if (isRunning()) {
        qWarning().noquote() << tr("Sound is already playing");
        return;
    }
    {
        QMutexLocker lock(&fileMutex);
        fileName = file;
    }
    start(QThread::InheritPriority);
}

void cPlayer::waitFinished()
{
    while (isRunning()) {
        QCoreApplication::processEvents();
        msleep(100);
    }
}

void cPlayer::run()
{
    // Results are only logged: a failed step makes the next ones fail too,
    // and the playback still ends with playFinished().
    cAudioBackend audio;
    const bool initialised = audio.initOutput(device, frequency);
    qDebug() << "BASS_Init:" << int(initialised) << audio.errorText();

    QByteArray path;
    {
        QMutexLocker lock(&fileMutex);
        path = fileName.toLocal8Bit();
    }
    const cAudioBackend::Stream stream = audio.createStream(path);
    qDebug() << stream << audio.errorText();

    audio.play(stream);
    qDebug() << "BASS_ChannelPlay:" << audio.errorText();

    while (audio.isActive(stream))
        msleep(pollInterval);

    audio.freeStream(stream);
    audio.freeOutput();
    emit playFinished();
}
