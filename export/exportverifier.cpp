#include "exportverifier.h"

#include "luastate.h"
#include "routetable.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {

const int headerSize = 44;

quint32 le32(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

quint16 le16(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

} // namespace

QString cExportVerifier::scriptDifference(const QString& path, const cRoute& route)
{
    cRoute read;
    bool readOk = false;
    QString error;
    if (!cLuaState::runFile(path, "route", [&read](lua_State* L) { return readRoute(read, L, true); }, &readOk,
                            &error))
        return tr("%1 cannot be read back.").arg(path);
    if (!readOk)
        return tr("%1 does not read back as a route: %2").arg(path, error.isEmpty() ? tr("a stop has no id") : error);

    // Both written again in device form: stop ids and the rounding of the
    // coordinates no longer count, every value does.
    const QStringList expected = writeRoute(route, true).split(QLatin1Char('\n'));
    const QStringList actual = writeRoute(read, true).split(QLatin1Char('\n'));
    for (int line = 0; line < qMax(expected.size(), actual.size()); ++line) {
        if (expected.value(line) != actual.value(line))
            return tr("%1 reads back differently: \"%2\" instead of \"%3\".")
                .arg(path, actual.value(line).trimmed(), expected.value(line).trimmed());
    }
    return QString();
}

QString cExportVerifier::wavDifference(const QString& path, const QDateTime& exportStart)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tr("%1 was not written.").arg(path);
    // An output left from an earlier export would pass every other test.
    if (QFileInfo(file).lastModified() < exportStart)
        return tr("%1 was not written by this export.").arg(path);
    const QByteArray header = file.read(headerSize);
    const qint64 size = file.size();
    if (header.size() < headerSize || !header.startsWith("RIFF") || header.mid(8, 8) != "WAVEfmt "
        || header.mid(36, 4) != "data")
        return tr("%1 has no WAV header.").arg(path);
    if (le16(header, 20) != 1 || le16(header, 22) != 1 || le32(header, 24) != 8000 || le16(header, 34) != 16)
        return tr("%1 is not 8000 Hz mono 16-bit PCM (%2 Hz, %3 channels, %4 bits).")
            .arg(path, QString::number(le32(header, 24)), QString::number(le16(header, 22)),
                 QString::number(le16(header, 34)));
    if (le32(header, 40) != size - headerSize || le32(header, 4) != size - 8)
        return tr("%1 states %2 bytes of sound, but holds %3.")
            .arg(path, QString::number(le32(header, 40)), QString::number(size - headerSize));
    return QString();
}
