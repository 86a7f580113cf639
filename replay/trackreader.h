#ifndef VOSK_TRACKREADER_H
#define VOSK_TRACKREADER_H

#include "track.h"

#include <QCoreApplication>

class QIODevice;

// Reads a recorded track file, GPX or NMEA 0183, telling them apart by
// their first character. Never changes anything but `file`.
class cTrackReader
{
    Q_DECLARE_TR_FUNCTIONS(cTrackReader)

public:
    static bool read(const QString& path, cTrackFile* file, QString* error);

    // Announcement times come from the points, so a track to replay needs a
    // time on every point or on none; some only means two recordings glued
    // together, or a damaged one.
    static bool checkTimes(const cTrack& track, QString* error);
};

// GPX 1.0 and 1.1: tracks (`trk`, their `trkseg` joined) and routes (`rte`).
class cGpxReader
{
    Q_DECLARE_TR_FUNCTIONS(cGpxReader)

public:
    static bool read(QIODevice* device, cTrackFile* file, QString* error);
};

// NMEA 0183 logs: RMC and GGA sentences of GPS or combined receivers.
class cNmeaReader
{
    Q_DECLARE_TR_FUNCTIONS(cNmeaReader)

public:
    static bool read(QIODevice* device, cTrackFile* file, QString* error);
};

#endif
