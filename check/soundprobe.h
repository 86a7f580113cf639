#ifndef VOSK_SOUNDPROBE_H
#define VOSK_SOUNDPROBE_H

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

// Tells whether sound files exist and hold audio the converter can decode.
// Starting the decoder for every file would take minutes on a city's
// project, so the common formats (WAV, MP3, Ogg, FLAC) are recognised by
// their first bytes here and only other files are handed to the decoder.
class cSoundProbe
{
    Q_DECLARE_TR_FUNCTIONS(cSoundProbe)

public:
    enum class Status { Ok, Missing, Unreadable, Undecodable };
    struct cResult
    {
        Status status = Status::Ok;
        QString reason;
    };
    enum class Header { Audio, Unknown };

    // `decoder` is the converter's program, asked about files whose header is
    // not recognised; when empty such files pass. With `readHeaders` false
    // only whether each file can be read is checked.
    cSoundProbe(const QString& decoder, bool readHeaders);

    cResult probe(const QString& path) const;

    // `head` is the start of a file. For an MP3 behind an ID3 tag longer than
    // `head`, `tagEnd` is set to where its first frame lies.
    static Header recognise(const QByteArray& head, qint64* tagEnd = nullptr);

private:
    cResult askDecoder(const QString& path) const;

    QString m_decoder;
    bool m_readHeaders;
};

#endif
