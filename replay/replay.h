#ifndef VOSK_REPLAY_H
#define VOSK_REPLAY_H

#include "trackindex.h"
#include "project.h"
#include "replayresult.h"
#include "track.h"

#include <QCoreApplication>
#include <QVector>

struct cZoneTrace;

// Drives a recorded track through a route's stops and tells which the
// device would announce, which it would miss, and why. The track is
// prepared once (headings, spatial index) and can be replayed against any
// number of branches; nothing it is given is changed.
class cReplay
{
    Q_DECLARE_TR_FUNCTIONS(cReplay)

public:
    // A missed stop's radius is proposed this much beyond the nearest point
    // that would have counted, so the next ride need not follow this one exactly.
    static constexpr int radiusMarginMetres = 5;

    explicit cReplay(const cTrack& track);

    cReplayResult replayBranch(const cBranch& branch, eBranchKind kind) const;
    // Replays both branches and keeps the one with more stops announced,
    // the direct one when they are even.
    cReplayResult replayRoute(const cRoute& route) const;

    // The status as the user reads it, in the user's language.
    static QString statusText(eStopStatus status);

    const QVector<cTrackPoint>& points() const { return m_points; }
    const QVector<double>& headings() const { return m_headings; }

private:
    struct cPass;

    cStopReplay describe(int stopIndex, const cStop& stop, const cPass& pass, int endPoint,
                         const cZoneTrace& trace) const;
    void explainMiss(const cStop& stop, const QVector<cNearPoint>& near, cStopReplay* row) const;

    QVector<cTrackPoint> m_points;
    QVector<double> m_headings;
    cTrackIndex m_index;
};

#endif
