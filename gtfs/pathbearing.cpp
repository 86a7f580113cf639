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

double distanceToSegment(const cGtfsPoint& a, const cGtfsPoint& b, const cGtfsPoint& place)
{
    const cLocal p = local(a, place);
    const cLocal q = local(b, place);
    const double dx = q.x - p.x;
    const double dy = q.y - p.y;
    const double lengthSquared = dx * dx + dy * dy;
    const double t = lengthSquared > 0 ? std::clamp(-(p.x * dx + p.y * dy) / lengthSquared, 0.0, 1.0) : 0.0;
    return std::hypot(p.x + t * dx, p.y + t * dy);
}

bool sameSpot(const cGtfsPoint& a, const cGtfsPoint& b)
{
    return a.lon == b.lon && a.lat == b.lat;
}

} // namespace

bool bearingAlongPath(const QVector<cGtfsPoint>& path, const cGtfsPoint& place, int* fromSegment, double* bearing)
{
    const int first = std::max(*fromSegment, 0);
    const int segments = path.size() - 1;
    QVector<double> distances(std::max(segments - first, 0), -1);
    double nearest = -1;
    for (int i = first; i < segments; ++i) {
        if (sameSpot(path.at(i), path.at(i + 1)))
            continue;
        const double distance = distanceToSegment(path.at(i), path.at(i + 1), place);
        distances[i - first] = distance;
        if (nearest < 0 || distance < nearest)
            nearest = distance;
    }
    if (nearest < 0 || nearest > kMaxOffPathMetres)
        return false;
    // The first run of segments near the place is the first pass; within it
    // the nearest segment, so a corner just before the stop does not count.
    int best = -1;
    for (int i = first; i < segments; ++i) {
        const double distance = distances.at(i - first);
        if (distance < 0)
            continue; // a repeated point neither starts nor ends a pass
        if (distance > nearest + kPassToleranceMetres) {
            if (best >= 0)
                break;
            continue;
        }
        if (best < 0 || distance < distances.at(best - first))
            best = i;
    }
    *fromSegment = best;
    const cGtfsPoint& a = path.at(best);
    const cGtfsPoint& b = path.at(best + 1);
    *bearing = geo::bearingDegrees(a.lon, a.lat, b.lon, b.lat);
    return true;
}
