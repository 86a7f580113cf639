#include "pathbearing.h"

#include "geo.h"

#include <algorithm>
#include <cmath>

namespace {

// A stop further than this from the path belongs to another one; its course
// is better taken from the next stop.
constexpr double kMaxOffPathMetres = 100;
// Stops sit beside the road; the first pass within this much of the nearest
// one is the pass the vehicle makes first.
constexpr double kPassToleranceMetres = 25;

struct cLocal
{
    double x;
    double y;
};

// Metres east and north of the place: plenty accurate over a few hundred metres.
cLocal local(const cGtfsPoint& point, const cGtfsPoint& place)
{
    constexpr double metresPerDegree = geo::earthRadiusMetres * M_PI / 180.0;
    return {(point.lon - place.lon) * metresPerDegree * std::cos(place.lat * M_PI / 180.0),
            (point.lat - place.lat) * metresPerDegree};
}

struct cNearest
{
    double distance = -1; // -1: the segment has no length
    double fraction = 0;  // of the segment, where it comes nearest
};

// Only the part of the segment from `fromFraction` on counts.
cNearest nearestOnSegment(const cGtfsPoint& a, const cGtfsPoint& b, const cGtfsPoint& place, double fromFraction)
{
    const cLocal p = local(a, place);
    const cLocal q = local(b, place);
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    const double lengthSquared = dx * dx + dy * dy;
    cNearest nearest;
    if (lengthSquared <= 0)
        return nearest;
    nearest.fraction = std::clamp(-(p.x * dx + p.y * dy) / lengthSquared, fromFraction, 1.0);
    nearest.distance = std::hypot(p.x + nearest.fraction * dx, p.y + nearest.fraction * dy);
    return nearest;
}

} // namespace

bool bearingAlongPath(const QVector<cGtfsPoint>& path, const cGtfsPoint& place, double* along, double* bearing)
{
    const int segments = path.size() - 1;
    const int first = std::clamp(int(std::floor(*along)), 0, std::max(segments, 0));
    QVector<cNearest> nearest(std::max(segments - first, 0));
    double closest = -1;
    for (int i = first; i < segments; ++i) {
        const double fromFraction = i == first ? std::clamp(*along - first, 0.0, 1.0) : 0.0;
        nearest[i - first] = nearestOnSegment(path.at(i), path.at(i + 1), place, fromFraction);
        const double distance = nearest.at(i - first).distance;
        if (distance >= 0 && (closest < 0 || distance < closest))
            closest = distance;
    }
    if (closest < 0 || closest > kMaxOffPathMetres)
        return false;
    // The first run of segments near the place is the first pass; within it
    // the nearest segment, so a corner just before the stop does not count.
    int best = -1;
    for (int i = first; i < segments; ++i) {
        const double distance = nearest.at(i - first).distance;
        if (distance < 0)
            continue; // a repeated point neither starts nor ends a pass
        if (distance > closest + kPassToleranceMetres) {
            if (best >= 0)
                break;
            continue;
        }
        if (best < 0 || distance < nearest.at(best - first).distance)
            best = i;
    }
    *along = best + nearest.at(best - first).fraction;
    const cGtfsPoint& a = path.at(best);
    const cGtfsPoint& b = path.at(best + 1);
    *bearing = geo::bearingDegrees(a.lon, a.lat, b.lon, b.lat);
    return true;
}
