#ifndef VOSK_PLAYER_H
#define VOSK_PLAYER_H

#include <QRecursiveMutex>
#include <QString>
#include <QThread>

// Command-line prefix of the sound output device choice, as in "/sound:2".
inline constexpr char soundDeviceOption[] = "/sound:";

// Previews one sound file at a time on a thread of its own, so the editor
// stays responsive while it plays. A sound always plays to its end; a new
// request while one plays is dropped.
class cPlayer : public QThread
{
    Q_OBJECT

public:
    cPlayer(int frequency, QObject* parent = nullptr);
    ~cPlayer() override;

    void play(const QString& file);
    // Returns once the playback thread has ended, handling events meanwhile.
    void waitFinished();

signals:
    // Emitted from the playback thread at the end of every playback, played
    // or not.
    void playFinished();

protected:
    void run() override;

private:
    int frequency;
    int device = -1;
    QRecursiveMutex fileMutex;
    QString fileName;
};

#endif
