#include "soundprobe.h"

#include <QFile>
#include <QProcess>
#include <QtEndian>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Enough for every recognised header and the usual short ID3 tag before an
// MP3's first frame.
constexpr int headBytes = 512;
constexpr int decoderTimeoutMs = 20000;

quint32 le32(const char* p)
{
    return qFromLittleEndian<quint32>(p);
}

quint16 le16(const char* p)
{
    return qFromLittleEndian<quint16>(p);
}

bool startsWith(const QByteArray& bytes, qint64 offset, const char* magic, int length)
{
    return bytes.size() >= offset + length && memcmp(bytes.constData() + offset, magic, size_t(length)) == 0;
}

// A WAV whose format chunk names a coding the converter reads, with at least
// one channel and a sample rate.
bool isWav(const QByteArray& head)
{
    if (!startsWith(head, 0, "RIFF", 4) || !startsWith(head, 8, "WAVE", 4))
        return false;
    qint64 pos = 12;
    while (pos + 8 <= head.size()) {
        const qint64 size = le32(head.constData() + pos + 4);
        if (startsWith(head, pos, "fmt ", 4)) {
            if (size < 16 || pos + 24 > head.size())
                return false;
            const char* fmt = head.constData() + pos + 8;
            const quint16 coding = le16(fmt);
            const bool known = coding == 1 || coding == 2 || coding == 3 || coding == 6 || coding == 7
                || coding == 0x11 || coding == 0xFFFE;
            return known && le16(fmt + 2) > 0 && le32(fmt + 4) > 0;
        }
        // Chunks are padded to an even length.
        pos += 8 + size + (size & 1);
    }
    return false;
}

bool isMpegFrame(const QByteArray& bytes, int pos)
{
    if (pos + 4 > bytes.size())
        return false;
    const auto b = [&bytes, pos](int i) { return quint8(bytes.at(pos + i)); };
    const int version = (b(1) >> 3) & 3;
    const int layer = (b(1) >> 1) & 3;
    const int bitrate = b(2) >> 4;
    const int rate = (b(2) >> 2) & 3;
    return b(0) == 0xFF && (b(1) & 0xE0) == 0xE0 && version != 1 && layer != 0 && bitrate != 15 && rate != 3;
}

// Length of an ID3v2 tag at the start, or 0 when there is none.
qint64 id3Length(const QByteArray& head)
{
    if (!startsWith(head, 0, "ID3", 3) || head.size() < 10)
        return 0;
    qint64 size = 0;
    for (int i = 6; i < 10; ++i) {
        const quint8 byte = quint8(head.at(i));
        if (byte & 0x80)
            return 0;
        size = (size << 7) | byte;
    }
    const bool footer = quint8(head.at(5)) & 0x10;
    return 10 + size + (footer ? 10 : 0);
}

bool isOgg(const QByteArray& head)
{
    if (!startsWith(head, 0, "OggS", 4) || head.size() < 28 || head.at(4) != 0)
        return false;
    const int segments = quint8(head.at(26));
    const int packet = 27 + segments;
    return startsWith(head, packet, "\x01vorbis", 7) || startsWith(head, packet, "OpusHead", 8)
        || startsWith(head, packet, "\x7f" "FLAC", 5) || startsWith(head, packet, "Speex   ", 8);
}

bool isFlac(const QByteArray& head, int pos)
{
    return startsWith(head, pos, "fLaC", 4) && head.size() > pos + 4 && (quint8(head.at(pos + 4)) & 0x7F) == 0;
}

// ffmpeg's last message without the file name it starts with.
QString decoderMessage(const QString& output, const QString& path)
{
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QString last = lines.isEmpty() ? QString() : lines.last().trimmed();
    const QString prefix = path + QStringLiteral(": ");
    if (last.startsWith(prefix))
        last = last.mid(prefix.size());
    return last;
}

} // namespace

cSoundProbe::cSoundProbe(const QString& decoder, bool readHeaders)
    : m_decoder(decoder)
    , m_readHeaders(readHeaders)
{
}

cSoundProbe::Header cSoundProbe::recognise(const QByteArray& head, qint64* tagEnd)
{
    if (isWav(head) || isOgg(head) || isFlac(head, 0) || isMpegFrame(head, 0))
        return Header::Audio;
    const qint64 tag = id3Length(head);
    if (tag == 0)
        return Header::Unknown;
    if (tag + 5 > head.size()) {
        if (tagEnd)
            *tagEnd = tag;
        return Header::Unknown;
    }
    return isMpegFrame(head, int(tag)) || isFlac(head, int(tag)) ? Header::Audio : Header::Unknown;
}

cSoundProbe::cResult cSoundProbe::probe(const QString& path) const
{
    // Plain system calls: with tens of thousands of files, QFile's own
    // bookkeeping would cost more than reading the headers.
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return {Status::Missing, QString()};
        return {Status::Unreadable, QString::fromLocal8Bit(strerror(errno))};
    }
    char buffer[headBytes];
    const ssize_t length = ::read(fd, buffer, m_readHeaders ? sizeof buffer : 1);
    const int readError = errno;
    cResult result;
    if (length < 0) {
        result = {Status::Unreadable, QString::fromLocal8Bit(strerror(readError))};
    } else if (length == 0) {
        result = {Status::Undecodable, tr("the file is empty")};
    } else if (m_readHeaders) {
        qint64 tagEnd = 0;
        Header header = recognise(QByteArray::fromRawData(buffer, int(length)), &tagEnd);
        if (header == Header::Unknown && tagEnd > 0) {
            const ssize_t frame = ::pread(fd, buffer, 8, off_t(tagEnd));
            if (frame > 0)
                header = recognise(QByteArray::fromRawData(buffer, int(frame)));
        }
        if (header == Header::Unknown) {
            ::close(fd);
            return askDecoder(path);
        }
    }
    ::close(fd);
    return result;
}

cSoundProbe::cResult cSoundProbe::askDecoder(const QString& path) const
{
    if (m_decoder.isEmpty())
        return {};
    // Reading a moment of the first audio stream shows whether the
    // converter would get any sound out of the file.
    QProcess decoder;
    decoder.start(m_decoder, {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                              QStringLiteral("-i"), path, QStringLiteral("-map"), QStringLiteral("0:a:0"),
                              QStringLiteral("-t"), QStringLiteral("0.1"), QStringLiteral("-f"),
                              QStringLiteral("null"), QStringLiteral("-")});
    // A decoder that cannot run is reported as a missing program, not here.
    if (!decoder.waitForStarted(-1))
        return {};
    if (!decoder.waitForFinished(decoderTimeoutMs)) {
        decoder.kill();
        decoder.waitForFinished(-1);
        return {Status::Undecodable, tr("ffmpeg did not finish reading it")};
    }
    if (decoder.exitStatus() == QProcess::NormalExit && decoder.exitCode() == 0)
        return {};
    const QString message = decoderMessage(QString::fromLocal8Bit(decoder.readAllStandardError()), path);
    return {Status::Undecodable, tr("ffmpeg: %1").arg(message.isEmpty() ? tr("no sound found") : message)};
}
