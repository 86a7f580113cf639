#ifndef VOSK_TRACK_H
#define VOSK_TRACK_H

#include <QString>
#include <QVector>

#include <limits>

// One recorded position. Times are UTC milliseconds since the epoch.
struct cTrackPoint
{
    static constexpr qint64 noTime = std::numeric_limits<qint64>::min();

    double lon = 0;
    double lat = 0;
    qint64 time = noTime;
    // Course over ground in degrees and speed in m/s as the receiver
    // reported them; negative when the source has none.
    double course = -1;
    double speed = -1;
    // Line of the source file, for messages about this point.
    int line = 0;
    // First point after a gap in the recording: no heading is taken across it.
    bool segmentStart = false;

    bool hasTime() const { return time != noTime; }
};

// One track of a file (a GPX track or route, or a part of an NMEA log),
// its segments joined in order.
struct cTrack
{
    QString name;
    QVector<cTrackPoint> points;

    int segmentCount() const;
    // Whether its points carry times; cTrackReader::checkTimes tells
    // whether all of them do.
    bool hasTimes() const;
};

// Everything a track file holds that a replay can use. Empty tracks are left
// out, so every listed track has points.
struct cTrackFile
{
    QString format;
    QVector<cTrack> tracks;
    // NMEA only: sentences skipped because the receiver had no fix, and
    // sentences skipped because they were damaged or malformed.
    int invalidFixes = 0;
    int badSentences = 0;
    int firstBadLine = 0;
};

#endif
