#ifndef VOSK_REPLAYRESULT_H
#define VOSK_REPLAYRESULT_H

#include "track.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

#include <limits>

enum class eBranchKind { Direct, Reverse };

enum class eStopStatus { Announced, Missed, OutOfOrder, Repeated };

// A change to one stop that would have made the device announce it on this
// track. Only a proposal: a replay never changes the project.
struct cSuggestedFix
{
    enum class eKind { Radius, CourseValue };
    eKind kind = eKind::Radius;
    int value = 0;
};

// What happened to one stop of the branch during one pass along it.
struct cStopReplay
{
    int stop = 0;
    int pass = 0;
    QString name;
    eStopStatus status = eStopStatus::Missed;
    int announcements = 0;
    // The first announcement of the pass: its track point, time and heading.
    int announcedAt = -1;
    qint64 time = cTrackPoint::noTime;
    double heading = std::numeric_limits<double>::quiet_NaN();
    // The track point of the pass nearest to the stop's centre.
    int closestAt = -1;
    double closestMetres = 0;
    // Why the stop was missed or flagged; empty for a clean announcement.
    QString reason;
    QVector<cSuggestedFix> fixes;
};

// One branch replayed along one track: a row per stop and pass, passes in
// order, stops in branch order within a pass.
struct cReplayResult
{
    eBranchKind branch = eBranchKind::Direct;
    int passes = 1;
    QVector<cStopReplay> stops;

    int count(eStopStatus status) const;
    // Every stop announced once and in order in every pass.
    bool clean() const;
    QJsonObject toJson() const;
};

QString statusKey(eStopStatus status);
QString branchKey(eBranchKind branch);

#endif
