#include "audiobackend.h"

#include <QMutex>
#include <QMutexLocker>

#include <SDL.h>
#include <SDL_mixer.h>

namespace {

// SDL_mixer keeps one process-wide output and music slot; players on
// different threads take turns calling into it.
QMutex libraryMutex;

Mix_Music* music(cAudioBackend::Stream stream)
{
    return reinterpret_cast<Mix_Music*>(stream);
}

} // namespace

cAudioBackend::~cAudioBackend()
{
    // Only a playback cut short (its thread terminated) gets here with
    // anything still open.
    freeStream(current);
    freeOutput();
    // SDL frees its per-thread data (the error text) only for threads it
    // started itself.
    SDL_TLSCleanup();
}

unsigned cAudioBackend::version()
{
    const SDL_version* linked = Mix_Linked_Version();
    return SDL_VERSIONNUM(linked->major, linked->minor, linked->patch);
}

bool cAudioBackend::initOutput(int device, int frequency)
{
    QMutexLocker lock(&libraryMutex);
    // SDL's error text is sticky; clearing it makes it tell about this call.
    SDL_ClearError();
    if (outputOpen) {
        SDL_SetError("Output already initialised");
        return false;
    }
    if (!audioStarted) {
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0)
            return false;
        audioStarted = true;
    }
    const char* name = nullptr;
    if (device != -1) {
        // Numbered from 1 as on the command line; 0 and below name no device.
        name = device > 0 ? SDL_GetAudioDeviceName(device - 1, 0) : nullptr;
        if (!name) {
            SDL_SetError("No such device: %d", device);
            return false;
        }
    }
    if (Mix_OpenAudioDevice(frequency, AUDIO_S16SYS, channels, blockFrames, name, 0) != 0)
        return false;
    outputOpen = true;
    return true;
}

void cAudioBackend::freeOutput()
{
    QMutexLocker lock(&libraryMutex);
    SDL_ClearError();
    if (outputOpen)
        Mix_CloseAudio();
    if (audioStarted)
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    outputOpen = false;
    audioStarted = false;
}

cAudioBackend::Stream cAudioBackend::createStream(const QByteArray& path)
{
    QMutexLocker lock(&libraryMutex);
    SDL_ClearError();
    if (!outputOpen) {
        SDL_SetError("Output not initialised");
        return 0;
    }
    if (current) {
        SDL_SetError("A stream is already open");
        return 0;
    }
    current = reinterpret_cast<Stream>(Mix_LoadMUS(path.constData()));
    return current;
}

bool cAudioBackend::play(Stream stream)
{
    QMutexLocker lock(&libraryMutex);
    SDL_ClearError();
    if (!stream || stream != current) {
        SDL_SetError("Invalid stream");
        return false;
    }
    // Loop count 0: once through.
    return Mix_PlayMusic(music(stream), 0) == 0;
}

bool cAudioBackend::isActive(Stream stream)
{
    QMutexLocker lock(&libraryMutex);
    SDL_ClearError();
    return stream && stream == current && Mix_PlayingMusic() != 0;
}

void cAudioBackend::freeStream(Stream stream)
{
    QMutexLocker lock(&libraryMutex);
    SDL_ClearError();
    if (!stream || stream != current)
        return;
    Mix_FreeMusic(music(stream));
    current = 0;
}

QString cAudioBackend::errorText() const
{
    return QString::fromUtf8(SDL_GetError());
}
