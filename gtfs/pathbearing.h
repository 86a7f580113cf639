#ifndef VOSK_PATHBEARING_H
#define VOSK_PATHBEARING_H

#include "gtfsfeed.h"

#include <QVector>

// The direction of travel along a path (a vehicle's drawn route) where it
// passes a place. Stops are looked up in travel order: `fromSegment` is where
// the previous stop was found, so a path that passes the same street twice
// is matched on the right pass; it is moved to the segment found. False when
// the path has no segment near the place.
bool bearingAlongPath(const QVector<cGtfsPoint>& path, const cGtfsPoint& place, int* fromSegment, double* bearing);

#endif
