#include "trackreader.h"

#include <QDebug>
#include <QFile>

int cTrack::segmentCount() const
{
    int count = 0;
    for (const cTrackPoint& point : points)
        count += point.segmentStart ? 1 : 0;
    return count;
}

bool cTrack::hasTimes() const
{
    return !points.isEmpty() && points.first().hasTime();
}

namespace {

// A day of 10 Hz fixes is some 150 MB of NMEA. Larger files are refused
// unread: both readers hold all points, the NMEA reader the whole text too.
constexpr qint64 maxFileBytes = qint64(256) << 20;

} // namespace

bool cTrackReader::read(const QString& path, cTrackFile* file, QString* error)
{
    *file = cTrackFile();
    QString message;
    QFile device(path);
    bool ok = false;
    if (!device.open(QIODevice::ReadOnly)) {
        message = tr("Cannot open %1: %2").arg(path, device.errorString());
    } else if (device.size() > maxFileBytes) {
        message = tr("The file is larger than %1 MB, more than any recorded ride").arg(maxFileBytes >> 20);
    } else {
        // Skip a byte-order mark and blank lines to see what the file is.
        const QByteArray head = device.peek(4096);
        int start = head.startsWith("\xEF\xBB\xBF") ? 3 : 0;
        while (start < head.size() && QChar::isSpace(static_cast<unsigned char>(head.at(start))))
            ++start;
        const char first = start < head.size() ? head.at(start) : '\0';
        if (first == '<')
            ok = cGpxReader::read(&device, file, &message);
        else if (first == '$')
            ok = cNmeaReader::read(&device, file, &message);
        else if (start >= head.size())
            message = tr("The file is empty");
        else
            message = tr("This is neither a GPX file nor an NMEA 0183 log");
    }
    if (!ok) {
        qDebug() << "Track" << path << "not read:" << message;
        if (error)
            *error = message;
    }
    return ok;
}

bool cTrackReader::checkTimes(const cTrack& track, QString* error)
{
    if (track.points.isEmpty())
        return true;
    const bool timed = track.points.first().hasTime();
    for (const cTrackPoint& point : track.points) {
        if (point.hasTime() != timed) {
            const int line = timed ? point.line : track.points.first().line;
            if (error)
                *error = tr("Line %1: this point of \"%2\" has no time, but others have one").arg(line).arg(track.name);
            return false;
        }
    }
    return true;
}
