#ifndef VOSK_TRACKINDEX_H
#define VOSK_TRACKINDEX_H

#include "track.h"

#include <QHash>
#include <QVector>

// A track point near a place, and how far from it.
struct cNearPoint
{
    int index = -1;
    double metres = 0;
};

// Finds track points near a place without measuring the distance to every
// point: a grid of cells of about 100 m for the points within a distance,
// and boxes round runs of consecutive points for the nearest point of a
// stretch of the track.
class cTrackIndex
{
public:
    explicit cTrackIndex(const QVector<cTrackPoint>& points);

    // The points at most `metres` from the place, in track order.
    QVector<cNearPoint> pointsWithin(double lon, double lat, double metres) const;
    // The point of [first, end) nearest to the place; index -1 for an empty stretch.
    cNearPoint nearest(double lon, double lat, int first, int end) const;

private:
    struct cBox
    {
        double west = 0;
        double east = 0;
        double south = 0;
        double north = 0;
    };

    qint64 key(qint64 column, qint64 row) const;
    void addIfWithin(int index, double lon, double lat, double metres, QVector<cNearPoint>* near) const;
    static double lowerBoundMetres(double lon, double lat, const cBox& box);

    QVector<cTrackPoint> m_points;
    double m_cellLat = 0;
    double m_cellLon = 0;
    QHash<qint64, QVector<int>> m_cells;
    QVector<cBox> m_boxes;
};

#endif
