#ifndef VOSK_GEO_H
#define VOSK_GEO_H

// Distances and directions on the Earth's surface, as the device judges
// zones and courses: great-circle distance on a sphere of the mean Earth
// radius, compass bearings in degrees (0 = north, clockwise).
namespace geo {

// Mean Earth radius (IUGG), in metres.
constexpr double earthRadiusMetres = 6371008.8;

// Great-circle distance between two points given in decimal degrees.
double distanceMetres(double lon1, double lat1, double lon2, double lat2);

// Initial bearing from the first point towards the second, in [0, 360).
// Zero for two equal points.
double bearingDegrees(double lon1, double lat1, double lon2, double lat2);

// The smaller angle between two directions, in [0, 180].
double angleBetween(double a, double b);

// Whether a heading lies in a course window: `courseDiff` is the full width
// of the accepted sector, centred on `courseValue`.
bool headingInCourse(double heading, int courseValue, int courseDiff);

// The point reached from a start point by going `metres` along a bearing.
void destination(double lon, double lat, double bearing, double metres, double* outLon, double* outLat);

} // namespace geo

#endif
