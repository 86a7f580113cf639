#ifndef VOSK_PATHBEARING_H
#define VOSK_PATHBEARING_H

#include "gtfsfeed.h"

#include <QVector>

// The direction of travel along a path (the line a vehicle drives) where it
// passes a place. Stops are looked up in travel order: `along` is how far
// along the path the previous stop was found (segment index plus fraction,
// 0 at the start), so a path that runs down a street and back again is
// matched on the right pass; it is moved to where this place was found.
// False when the path does not pass near the place further on.
bool bearingAlongPath(const QVector<cGtfsPoint>& path, const cGtfsPoint& place, double* along, double* bearing);

#endif
