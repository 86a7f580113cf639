#ifndef VOSK_HEADINGS_H
#define VOSK_HEADINGS_H

#include "track.h"

#include <QVector>

namespace headings {

// Below this move GPS jitter decides the bearing, not the vehicle.
constexpr double minimumBaselineMetres = 5;
// A receiver's course over ground is trusted from walking pace up.
constexpr double minimumCourseSpeed = 1;

// The heading of the vehicle at every point, in degrees, NaN where unknown:
// the receiver's course when it moves fast enough, otherwise the bearing
// from the latest earlier point of the segment at least 5 m away; where
// there is none the heading so far is kept.
QVector<double> along(const QVector<cTrackPoint>& points);

} // namespace headings

#endif
