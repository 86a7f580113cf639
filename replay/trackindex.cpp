#include "trackindex.h"

#include "geo.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double cellMetres = 100;
constexpr int boxPoints = 64;
constexpr double metresPerDegree = geo::earthRadiusMetres * pi / 180;
// Keeps cells and search boxes finite next to the poles.
constexpr double minimumCosine = 0.01;

double cosineOfLatitude(double lat)
{
    return std::max(minimumCosine, std::cos(std::min(90.0, std::fabs(lat)) * pi / 180));
}

} // namespace

cTrackIndex::cTrackIndex(const QVector<cTrackPoint>& points)
    : m_points(points)
{
    // Cells are square at the track's first latitude; elsewhere they are
    // only less even, the search box below is measured where it lies.
    m_cellLat = cellMetres / metresPerDegree;
    m_cellLon = m_cellLat / cosineOfLatitude(points.isEmpty() ? 0 : points.first().lat);
    for (int i = 0; i < points.size(); ++i) {
        const cTrackPoint& point = points.at(i);
        m_cells[key(static_cast<qint64>(std::floor(point.lon / m_cellLon)),
                    static_cast<qint64>(std::floor(point.lat / m_cellLat)))]
            .append(i);
        if (i % boxPoints == 0)
            m_boxes.append({point.lon, point.lon, point.lat, point.lat});
        cBox& box = m_boxes.last();
        box.west = std::min(box.west, point.lon);
        box.east = std::max(box.east, point.lon);
        box.south = std::min(box.south, point.lat);
        box.north = std::max(box.north, point.lat);
    }
}

qint64 cTrackIndex::key(qint64 column, qint64 row) const
{
    // Shifted as unsigned: west and south of zero the column and row are negative.
    return static_cast<qint64>((static_cast<quint64>(column) << 32) ^ (static_cast<quint64>(row) & 0xffffffffu));
}

void cTrackIndex::addIfWithin(int index, double lon, double lat, double metres, QVector<cNearPoint>* near) const
{
    const cTrackPoint& point = m_points.at(index);
    const double distance = geo::distanceMetres(lon, lat, point.lon, point.lat);
    if (distance <= metres)
        near->append({index, distance});
}

QVector<cNearPoint> cTrackIndex::pointsWithin(double lon, double lat, double metres) const
{
    QVector<cNearPoint> near;
    // The box around the circle, widened in longitude at its poleward edge.
    const double dLat = metres / metresPerDegree;
    const double dLon = std::min(180.0, metres / (metresPerDegree * cosineOfLatitude(std::fabs(lat) + dLat)));
    const qint64 firstColumn = static_cast<qint64>(std::floor((lon - dLon) / m_cellLon));
    const qint64 lastColumn = static_cast<qint64>(std::floor((lon + dLon) / m_cellLon));
    const qint64 firstRow = static_cast<qint64>(std::floor((lat - dLat) / m_cellLat));
    const qint64 lastRow = static_cast<qint64>(std::floor((lat + dLat) / m_cellLat));
    // A box of more cells than there are points is cheaper to scan point by point.
    if ((lastColumn - firstColumn + 1) * (lastRow - firstRow + 1) > m_points.size()) {
        for (int i = 0; i < m_points.size(); ++i)
            addIfWithin(i, lon, lat, metres, &near);
        return near;
    }
    for (qint64 column = firstColumn; column <= lastColumn; ++column) {
        for (qint64 row = firstRow; row <= lastRow; ++row) {
            const auto cell = m_cells.constFind(key(column, row));
            if (cell == m_cells.constEnd())
                continue;
            for (int index : *cell)
                addIfWithin(index, lon, lat, metres, &near);
        }
    }
    std::sort(near.begin(), near.end(), [](const cNearPoint& a, const cNearPoint& b) { return a.index < b.index; });
    return near;
}

// No point in the box is nearer than this: the haversine term of the
// smallest latitude and longitude differences, with the smallest product of
// cosines any point of the box can give.
double cTrackIndex::lowerBoundMetres(double lon, double lat, const cBox& box)
{
    const double dLat = lat < box.south ? box.south - lat : (lat > box.north ? lat - box.north : 0);
    double dLon = lon < box.west ? box.west - lon : (lon > box.east ? lon - box.east : 0);
    dLon = std::min(dLon, 360 - dLon);
    const double farthestLat = std::max(std::fabs(box.south), std::fabs(box.north));
    const double sinLat = std::sin(dLat * pi / 360);
    const double sinLon = std::sin(dLon * pi / 360);
    const double h = sinLat * sinLat + std::cos(lat * pi / 180) * std::cos(farthestLat * pi / 180) * sinLon * sinLon;
    return 2 * geo::earthRadiusMetres * std::asin(std::sqrt(std::min(1.0, std::max(0.0, h))));
}

cNearPoint cTrackIndex::nearest(double lon, double lat, int first, int end) const
{
    cNearPoint best;
    if (first >= end)
        return best;
    const auto scan = [&](int box) {
        for (int i = std::max(first, box * boxPoints); i < std::min(end, (box + 1) * boxPoints); ++i) {
            const double metres = geo::distanceMetres(lon, lat, m_points.at(i).lon, m_points.at(i).lat);
            if (best.index < 0 || metres < best.metres)
                best = {i, metres};
        }
    };
    // Start in the box that may come nearest, then look only into boxes
    // that could still hold a nearer point.
    const int firstBox = first / boxPoints;
    QVector<double> bounds;
    for (int box = firstBox; box <= (end - 1) / boxPoints; ++box)
        bounds.append(lowerBoundMetres(lon, lat, m_boxes.at(box)));
    const int start = static_cast<int>(std::min_element(bounds.begin(), bounds.end()) - bounds.begin());
    scan(firstBox + start);
    for (int b = 0; b < bounds.size(); ++b) {
        if (b != start && bounds.at(b) < best.metres)
            scan(firstBox + b);
    }
    return best;
}
