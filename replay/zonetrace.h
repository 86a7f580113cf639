#ifndef VOSK_ZONETRACE_H
#define VOSK_ZONETRACE_H

#include "trackindex.h"
#include "project.h"

#include <QVector>

// One announcement the device would make: at which track point, and during
// which visit of the stop (visits are counted from 0).
struct cAnnouncement
{
    int stop = 0;
    int point = 0;
    int visit = 0;
};

// How a track met one stop. A visit begins when the vehicle enters the zone
// and ends when it is more than `visitMarginMetres` beyond the zone's edge,
// so GPS jitter across the edge stays one visit while driving round the
// block and back makes two.
struct cZoneTrace
{
    static constexpr double visitMarginMetres = 100;

    // Points within the zone's radius plus the margin, in track order.
    QVector<cNearPoint> near;
    QVector<cAnnouncement> announcements;
    // The point at which each visit entered the zone.
    QVector<int> visitStarts;

    static bool headingFits(const cStop& stop, double heading);
    static cZoneTrace follow(int stopIndex, const cStop& stop, const QVector<double>& headings,
                             const cTrackIndex& index);
};

#endif
