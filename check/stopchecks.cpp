#include "stopchecks.h"

#include "geo.h"
#include "problemlist.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace {

const cStop defaultStop;

bool validCoordinates(const cStop& stop)
{
    return std::isfinite(stop.lon) && std::isfinite(stop.lat) && std::fabs(stop.lat) <= 90.0
        && std::fabs(stop.lon) <= 180.0;
}

bool validCourse(const cStop& stop)
{
    return stop.course_diff >= 1 && stop.course_diff <= 360;
}

double distance(const cStop& a, const cStop& b)
{
    return geo::distanceMetres(a.lon, a.lat, b.lon, b.lat);
}

// Windows share a heading when their half-widths reach across the angle
// between them; a stop without a window accepts every heading.
bool windowsOverlap(const cStop& a, const cStop& b)
{
    if (!a.course_enabled || !b.course_enabled)
        return true;
    return geo::angleBetween(a.course_value, b.course_value) <= (a.course_diff + b.course_diff) / 2.0;
}

QString metres(double value)
{
    return QString::number(value, 'f', value < 10 ? 1 : 0);
}

QString number(double value)
{
    return QString::number(value, 'g', 10);
}

double median(QVector<double> values)
{
    const auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

bool cStopChecks::isPlaced(const cStop& stop)
{
    return validCoordinates(stop) && !(stop.lon == defaultStop.lon && stop.lat == defaultStop.lat);
}

void cStopChecks::checkStop(cProblemList& problems, Branch branch, int position, const cStop& stop)
{
    if (!validCoordinates(stop))
        problems.addForStop(ProblemCode::BadCoordinate, branch, position, stop,
                            tr("The stop's centre is not a place on the Earth (longitude %1, latitude %2).")
                                .arg(number(stop.lon), number(stop.lat)));
    else if (!isPlaced(stop))
        problems.addForStop(ProblemCode::UnplacedStop, branch, position, stop,
                            tr("The stop was never placed on the map: its centre is still the default point in "
                               "Moscow."));
    if (stop.radius <= 0 || stop.radius > largestRadius)
        problems.addForStop(ProblemCode::BadRadius, branch, position, stop,
                            tr("The zone radius is %1 m; it must be from 1 to %2 m.")
                                .arg(stop.radius)
                                .arg(largestRadius));
    if (stop.course_enabled && !validCourse(stop))
        problems.addForStop(ProblemCode::BadCourse, branch, position, stop,
                            tr("The course window is %1° wide; it must be from 1° to 360°.").arg(stop.course_diff));
}

void cStopChecks::checkBranch(cProblemList& problems, Branch branch, const QList<cStop>& stops)
{
    // Distances between neighbours that are both placed; -1 where either
    // is not, so that no judgement spans an unplaced stop.
    QVector<double> gaps(qMax(0, stops.size() - 1), -1.0);
    QVector<double> known;
    for (int i = 0; i + 1 < stops.size(); ++i) {
        if (isPlaced(stops.at(i)) && isPlaced(stops.at(i + 1))) {
            gaps[i] = distance(stops.at(i), stops.at(i + 1));
            known << gaps[i];
        }
    }
    const double usual = known.isEmpty() ? 0.0 : median(known);

    for (int i = 0; i < gaps.size(); ++i) {
        const double gap = gaps.at(i);
        if (gap < 0)
            continue;
        const cStop& previous = stops.at(i);
        const cStop& stop = stops.at(i + 1);
        if (gap < duplicateMetres) {
            problems.addForStop(ProblemCode::DuplicateStop, branch, i + 2, stop,
                                tr("The stop is only %1 m from the previous stop \"%2\": probably the same stop "
                                   "entered twice.")
                                    .arg(metres(gap), previous.name));
        } else if (gap < previous.radius + stop.radius) {
            problems.addForStop(ProblemCode::ZoneOverlap, branch, i + 2, stop,
                                tr("The zone overlaps that of the previous stop \"%1\" (%2 m apart, radii %3 m and "
                                   "%4 m): the device may announce them out of order.")
                                    .arg(previous.name, metres(gap), QString::number(previous.radius),
                                         QString::number(stop.radius)));
        }
        if (gap > farJumpFactor * usual && gap > farJumpMinimumMetres)
            problems.addForStop(ProblemCode::FarJump, branch, i + 2, stop,
                                tr("The stop is %1 km from the previous stop \"%2\", while stops of this branch are "
                                   "usually %3 m apart: check its coordinates.")
                                    .arg(QString::number(gap / 1000.0, 'f', 1), previous.name, metres(usual)));
    }

    // The same stop twice, further apart in the list.
    QHash<QString, int> firstAt;
    for (int i = 0; i < stops.size(); ++i) {
        const cStop& stop = stops.at(i);
        if (!isPlaced(stop))
            continue;
        const QString key = number(stop.lon) + QLatin1Char(' ') + number(stop.lat) + QLatin1Char(' ') + stop.name;
        const auto found = firstAt.constFind(key);
        if (found == firstAt.constEnd())
            firstAt.insert(key, i);
        else if (*found + 1 < i)
            problems.addForStop(ProblemCode::DuplicateStop, branch, i + 1, stop,
                                tr("The stop has the same centre and name as stop %1.").arg(*found + 1));
    }

    for (int i = 0; i < stops.size(); ++i) {
        const cStop& stop = stops.at(i);
        if (!stop.course_enabled || !validCourse(stop) || stop.course_diff >= 360 || !isPlaced(stop))
            continue;
        // The direction of travel through the stop: from the stop before it
        // to the one after, or from or to the stop itself at the ends.
        const cStop* from = i > 0 && gaps.at(i - 1) >= 0 ? &stops.at(i - 1) : &stop;
        const cStop* to = i + 1 < stops.size() && gaps.at(i) >= 0 ? &stops.at(i + 1) : &stop;
        if (distance(*from, *to) < duplicateMetres)
            continue;
        const double heading = geo::bearingDegrees(from->lon, from->lat, to->lon, to->lat);
        if (!geo::headingInCourse(heading, stop.course_value, stop.course_diff))
            problems.addForStop(ProblemCode::CourseMismatch, branch, i + 1, stop,
                                tr("Buses pass here heading %1°, outside the course window of %2° ± %3°: the "
                                   "window probably belongs to the other direction.")
                                    .arg(QString::number(qRound(heading)), QString::number(stop.course_value),
                                         number(stop.course_diff / 2.0)));
    }
}

void cStopChecks::checkDirections(cProblemList& problems, const cRoute& route)
{
    // Reverse stops sorted by latitude, so that each direct stop meets only
    // those near enough to matter.
    QVector<int> reverse;
    int widest = 0;
    for (int i = 0; i < route.reverse.stops.size(); ++i) {
        const cStop& stop = route.reverse.stops.at(i);
        if (isPlaced(stop) && stop.radius > 0) {
            reverse << i;
            widest = qMax(widest, stop.radius);
        }
    }
    if (reverse.isEmpty())
        return;
    const QList<cStop>& reverseStops = route.reverse.stops;
    const auto latitude = [&reverseStops](int i) { return reverseStops.at(i).lat; };
    std::sort(reverse.begin(), reverse.end(), [&](int a, int b) { return latitude(a) < latitude(b); });
    // A degree of latitude is never shorter than this.
    constexpr double metresPerDegree = 110000.0;

    for (int d = 0; d < route.direct.stops.size(); ++d) {
        const cStop& stop = route.direct.stops.at(d);
        if (!isPlaced(stop) || stop.radius <= 0)
            continue;
        const double reach = (stop.radius + widest) / metresPerDegree;
        auto it = std::lower_bound(reverse.begin(), reverse.end(), stop.lat - reach,
                                   [&](int i, double lat) { return latitude(i) < lat; });
        for (; it != reverse.end() && latitude(*it) <= stop.lat + reach; ++it) {
            const cStop& other = reverseStops.at(*it);
            if (distance(stop, other) < stop.radius + other.radius && windowsOverlap(stop, other))
                problems.addForStop(ProblemCode::DirectionAmbiguous, Branch::Direct, d + 1, stop,
                                    tr("The zone overlaps that of reverse stop %1 \"%2\" and their course windows do "
                                       "not tell the directions apart: the device may announce the wrong one.")
                                        .arg(QString::number(*it + 1), other.name));
        }
    }
}
