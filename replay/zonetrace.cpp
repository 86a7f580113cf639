#include "zonetrace.h"

#include "geo.h"

#include <cmath>

bool cZoneTrace::headingFits(const cStop& stop, double heading)
{
    return !stop.course_enabled
        || (!std::isnan(heading) && geo::headingInCourse(heading, stop.course_value, stop.course_diff));
}

// The device announces a stop once per entry into its zone: on entering when
// the heading fits the course, else at the first later point inside whose
// heading does. Leaving the zone arms it again.
cZoneTrace cZoneTrace::follow(int stopIndex, const cStop& stop, const QVector<double>& headings,
                              const cTrackIndex& index)
{
    cZoneTrace trace;
    trace.near = index.pointsWithin(stop.lon, stop.lat, stop.radius + visitMarginMetres);
    bool inZone = false;
    bool inVisit = false;
    bool announced = false;
    int previous = -2;
    for (const cNearPoint& near : trace.near) {
        // A gap in the near points means the track went beyond the margin.
        if (near.index != previous + 1) {
            inZone = false;
            inVisit = false;
        }
        previous = near.index;
        if (near.metres > stop.radius) {
            inZone = false;
            continue;
        }
        if (!inZone) {
            inZone = true;
            announced = false;
            if (!inVisit) {
                inVisit = true;
                trace.visitStarts.append(near.index);
            }
        }
        if (!announced && headingFits(stop, headings.at(near.index))) {
            trace.announcements.append({stopIndex, near.index, trace.visitStarts.size() - 1});
            announced = true;
        }
    }
    return trace;
}
