#include "replay.h"

#include "geo.h"
#include "headings.h"
#include "zonetrace.h"

#include <algorithm>
#include <cmath>

// The announcements of one run along the branch. A stop announced again on
// a later visit starts the next pass; announced again on the same visit it
// is a repeat.
struct cReplay::cPass
{
    cPass(int stopCount, int start)
        : firstPoint(start)
        , count(stopCount, 0)
        , visit(stopCount, -1)
        , order(stopCount, -1)
        , point(stopCount, -1)
    {
    }

    int firstPoint = 0;
    int lastPoint = 0;
    int announced = 0;
    // Per stop: announcements, the visit and sequence number of the first
    // one, and its track point.
    QVector<int> count;
    QVector<int> visit;
    QVector<int> order;
    QVector<int> point;
};

cReplay::cReplay(const cTrack& track)
    : m_points(track.points)
    , m_headings(headings::along(m_points))
    , m_index(m_points)
{
}

QString cReplay::statusText(eStopStatus status)
{
    switch (status) {
    case eStopStatus::Announced: return tr("announced");
    case eStopStatus::Missed: return tr("missed");
    case eStopStatus::OutOfOrder: return tr("out of order");
    case eStopStatus::Repeated: return tr("repeated");
    }
    return QString();
}

cReplayResult cReplay::replayRoute(const cRoute& route) const
{
    const cReplayResult direct = replayBranch(route.direct, eBranchKind::Direct);
    if (route.reverse.stops.isEmpty())
        return direct;
    const cReplayResult reverse = replayBranch(route.reverse, eBranchKind::Reverse);
    if (direct.stops.isEmpty())
        return reverse;
    return reverse.count(eStopStatus::Announced) > direct.count(eStopStatus::Announced) ? reverse : direct;
}

cReplayResult cReplay::replayBranch(const cBranch& branch, eBranchKind kind) const
{
    const int stopCount = branch.stops.size();
    QVector<cZoneTrace> traces;
    QVector<cAnnouncement> announcements;
    for (int s = 0; s < stopCount; ++s) {
        traces.append(cZoneTrace::follow(s, branch.stops.at(s), m_headings, m_index));
        announcements += traces.last().announcements;
    }
    std::sort(announcements.begin(), announcements.end(), [](const cAnnouncement& a, const cAnnouncement& b) {
        return a.point != b.point ? a.point < b.point : a.stop < b.stop;
    });

    QVector<cPass> passes{cPass(stopCount, 0)};
    for (const cAnnouncement& announcement : announcements) {
        const int s = announcement.stop;
        cPass* pass = &passes.last();
        if (pass->count.at(s) > 0 && pass->visit.at(s) == announcement.visit) {
            ++pass->count[s];
            continue;
        }
        if (pass->count.at(s) > 0) {
            const int start = std::max(traces.at(s).visitStarts.at(announcement.visit), pass->lastPoint);
            passes.append(cPass(stopCount, start));
            pass = &passes.last();
        }
        pass->count[s] = 1;
        pass->visit[s] = announcement.visit;
        pass->order[s] = pass->announced++;
        pass->point[s] = announcement.point;
        pass->lastPoint = announcement.point;
    }

    cReplayResult result;
    result.branch = kind;
    result.passes = passes.size();
    for (int p = 0; p < passes.size(); ++p) {
        const int endPoint = p + 1 < passes.size() ? passes.at(p + 1).firstPoint : m_points.size();
        // An announcement is out of order when an earlier stop of the branch
        // is announced after it in the same pass.
        int latestEarlier = -1;
        for (int s = 0; s < stopCount; ++s) {
            const cStop& stop = branch.stops.at(s);
            cStopReplay row = describe(s, stop, passes.at(p), endPoint, traces.at(s));
            row.pass = p;
            const int order = passes.at(p).order.at(s);
            if (order >= 0 && latestEarlier >= 0 && passes.at(p).order.at(latestEarlier) > order) {
                row.status = eStopStatus::OutOfOrder;
                const QString before = tr("announced before stop %1, %2")
                                           .arg(latestEarlier + 1)
                                           .arg(branch.stops.at(latestEarlier).name);
                row.reason = row.reason.isEmpty() ? before : before + QStringLiteral("; ") + row.reason;
            }
            if (order >= 0 && (latestEarlier < 0 || passes.at(p).order.at(latestEarlier) < order))
                latestEarlier = s;
            result.stops.append(row);
        }
    }
    return result;
}

cStopReplay cReplay::describe(int stopIndex, const cStop& stop, const cPass& pass, int endPoint,
                              const cZoneTrace& trace) const
{
    cStopReplay row;
    row.stop = stopIndex;
    row.name = stop.name;

    const auto consider = [&row](int index, double metres) {
        if (row.closestAt < 0 || metres < row.closestMetres) {
            row.closestAt = index;
            row.closestMetres = metres;
        }
    };
    QVector<cNearPoint> near;
    for (const cNearPoint& point : trace.near) {
        if (point.index >= pass.firstPoint && point.index < endPoint) {
            near.append(point);
            consider(point.index, point.metres);
        }
    }
    if (near.isEmpty()) {
        const cNearPoint nearest = m_index.nearest(stop.lon, stop.lat, pass.firstPoint, endPoint);
        if (nearest.index >= 0)
            consider(nearest.index, nearest.metres);
    }
    row.announcements = pass.count.at(stopIndex);
    if (row.announcements == 0) {
        explainMiss(stop, near, &row);
        return row;
    }
    row.announcedAt = pass.point.at(stopIndex);
    row.time = m_points.at(row.announcedAt).time;
    row.heading = m_headings.at(row.announcedAt);
    row.status = row.announcements > 1 ? eStopStatus::Repeated : eStopStatus::Announced;
    if (row.announcements > 1)
        row.reason = tr("announced %n times on one pass", nullptr, row.announcements);
    return row;
}

void cReplay::explainMiss(const cStop& stop, const QVector<cNearPoint>& near, cStopReplay* row) const
{
    row->status = eStopStatus::Missed;
    const cNearPoint* insideWithHeading = nullptr;
    const cNearPoint* nearestFitting = nullptr;
    bool inside = false;
    bool reversedFits = false;
    const int reversed = ((stop.course_value + 180) % 360 + 360) % 360;
    for (const cNearPoint& point : near) {
        const double heading = m_headings.at(point.index);
        if (cZoneTrace::headingFits(stop, heading) && (!nearestFitting || point.metres < nearestFitting->metres))
            nearestFitting = &point;
        if (point.metres > stop.radius)
            continue;
        inside = true;
        if (std::isnan(heading))
            continue;
        if (!insideWithHeading || point.metres < insideWithHeading->metres)
            insideWithHeading = &point;
        reversedFits = reversedFits || geo::headingInCourse(heading, reversed, stop.course_diff);
    }

    if (!inside) {
        // Rounded, but never shown as close as the radius it stayed outside of.
        row->reason = tr("never inside the zone (closest %1 m, radius %2 m)")
                          .arg(std::max(qRound(row->closestMetres), stop.radius + 1))
                          .arg(stop.radius);
    } else if (insideWithHeading) {
        row->reason = tr("inside the zone, heading %1° outside %2° ± %3°")
                          .arg(qRound(m_headings.at(insideWithHeading->index)) % 360)
                          .arg(stop.course_value)
                          .arg(stop.course_diff / 2.0);
    } else {
        row->reason = tr("inside the zone, but the heading is unknown: the vehicle had not yet moved 5 m");
    }

    if (nearestFitting && nearestFitting->metres > stop.radius)
        row->fixes.append(
            {cSuggestedFix::eKind::Radius, static_cast<int>(std::ceil(nearestFitting->metres)) + radiusMarginMetres});
    if (stop.course_enabled && reversedFits)
        row->fixes.append({cSuggestedFix::eKind::CourseValue, reversed});
}
