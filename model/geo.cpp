#include "geo.h"

#include <cmath>

namespace geo {

namespace {

constexpr double pi = 3.14159265358979323846;

double radians(double degrees)
{
    return degrees * pi / 180.0;
}

double degrees(double radians)
{
    return radians * 180.0 / pi;
}

double normalized(double bearing)
{
    const double b = std::fmod(bearing, 360.0);
    return b < 0 ? b + 360.0 : b;
}

} // namespace

double distanceMetres(double lon1, double lat1, double lon2, double lat2)
{
    const double phi1 = radians(lat1);
    const double phi2 = radians(lat2);
    const double sinDPhi = std::sin((phi2 - phi1) / 2);
    const double sinDLambda = std::sin(radians(lon2 - lon1) / 2);
    const double h = sinDPhi * sinDPhi + std::cos(phi1) * std::cos(phi2) * sinDLambda * sinDLambda;
    // Haversine; clamping keeps rounding from taking asin out of its domain.
    return 2 * earthRadiusMetres * std::asin(std::sqrt(std::fmin(1.0, h)));
}

double bearingDegrees(double lon1, double lat1, double lon2, double lat2)
{
    const double phi1 = radians(lat1);
    const double phi2 = radians(lat2);
    const double dLambda = radians(lon2 - lon1);
    const double y = std::sin(dLambda) * std::cos(phi2);
    const double x = std::cos(phi1) * std::sin(phi2) - std::sin(phi1) * std::cos(phi2) * std::cos(dLambda);
    if (x == 0 && y == 0)
        return 0;
    return normalized(degrees(std::atan2(y, x)));
}

double angleBetween(double a, double b)
{
    const double d = normalized(a - b);
    return d > 180.0 ? 360.0 - d : d;
}

bool headingInCourse(double heading, int courseValue, int courseDiff)
{
    return angleBetween(heading, courseValue) <= courseDiff / 2.0;
}

void destination(double lon, double lat, double bearing, double metres, double* outLon, double* outLat)
{
    const double delta = metres / earthRadiusMetres;
    const double theta = radians(bearing);
    const double phi1 = radians(lat);
    const double lambda1 = radians(lon);
    const double phi2 = std::asin(std::sin(phi1) * std::cos(delta) + std::cos(phi1) * std::sin(delta) * std::cos(theta));
    const double lambda2 = lambda1
        + std::atan2(std::sin(theta) * std::sin(delta) * std::cos(phi1), std::cos(delta) - std::sin(phi1) * std::sin(phi2));
    *outLat = degrees(phi2);
    *outLon = normalized(degrees(lambda2) + 180.0) - 180.0;
}

} // namespace geo
