#include "headings.h"

#include "geo.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace headings {

namespace {

// Bounds the search back through a long standstill; a vehicle that stays
// within 5 m for this many points keeps the heading it had.
constexpr int lookBackPoints = 256;

} // namespace

QVector<double> along(const QVector<cTrackPoint>& points)
{
    QVector<double> result(points.size(), std::numeric_limits<double>::quiet_NaN());
    int segmentStart = 0;
    for (int i = 0; i < points.size(); ++i) {
        const cTrackPoint& point = points.at(i);
        if (point.segmentStart)
            segmentStart = i;
        if (point.course >= 0 && point.speed >= minimumCourseSpeed) {
            result[i] = point.course;
            continue;
        }
        if (i > segmentStart)
            result[i] = result.at(i - 1);
        for (int j = i - 1; j >= std::max(segmentStart, i - lookBackPoints); --j) {
            const cTrackPoint& earlier = points.at(j);
            if (geo::distanceMetres(earlier.lon, earlier.lat, point.lon, point.lat) >= minimumBaselineMetres) {
                result[i] = geo::bearingDegrees(earlier.lon, earlier.lat, point.lon, point.lat);
                break;
            }
        }
    }
    return result;
}

} // namespace headings
