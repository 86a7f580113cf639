#ifndef VOSK_AUDIOBACKEND_H
#define VOSK_AUDIOBACKEND_H

#include <QByteArray>
#include <QString>
#include <QtGlobal>

// The few audio calls the player needs, on SDL2_mixer: an output opened at
// a sample rate on a device, one stream from a file played on it, and the
// text of the last call's error. One object serves one playback on one
// thread; whatever it opened and has not freed is freed when it goes away.
class cAudioBackend
{
public:
    // The output format: 16-bit samples, two channels, mixed in blocks of
    // this many sample frames.
    static constexpr int channels = 2;
    static constexpr int bytesPerSample = 2;
    static constexpr int blockFrames = 1024;

    using Stream = quintptr; // 0: no stream

    cAudioBackend() = default;
    ~cAudioBackend();
    cAudioBackend(const cAudioBackend&) = delete;
    cAudioBackend& operator=(const cAudioBackend&) = delete;

    // SDL_mixer's linked version as major * 1000 + minor * 100 + patch.
    static unsigned version();

    // `device` -1 is the default output; N >= 1 the N-th output device.
    bool initOutput(int device, int frequency);
    void freeOutput();
    Stream createStream(const QByteArray& path);
    bool play(Stream stream);
    bool isActive(Stream stream);
    void freeStream(Stream stream);

    // Empty when the last call succeeded.
    QString errorText() const;

private:
    bool audioStarted = false;
    bool outputOpen = false;
    Stream current = 0;
};

#endif
