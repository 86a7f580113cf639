#include "gtfsroutebuilder.h"

#include "geo.h"
#include "pathbearing.h"
#include "projectmanager.h"

#include <QUuid>

#include <cmath>

QString routeTableText(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\\'))
            escaped += QLatin1String("\\\\");
        else if (c == QLatin1Char('\''))
            escaped += QLatin1String("\\'");
        else if (c == QLatin1Char('\n'))
            escaped += QLatin1String("\\n");
        else if (c == QLatin1Char('\r'))
            escaped += QLatin1String("\\r");
        else if (c == QLatin1Char('%') && i + 1 < text.size() && text.at(i + 1).isDigit())
            escaped += QLatin1String("\\037"); // Lua's decimal escape; takes at most three digits
        else
            escaped += c;
    }
    return escaped;
}

cGtfsRouteBuilder::cGtfsRouteBuilder(const cGtfsFeed& feed, const cGtfsBuildOptions& options)
    : m_feed(feed)
    , m_options(options)
{
}

bool cGtfsRouteBuilder::build(const cGtfsRouteChoice& choice, cRoute* route, QString* error) const
{
    const QVector<cGtfsPattern>& patterns = m_feed.patterns(choice.route);
    if (!m_feed.isLoaded(choice.route) || choice.direct >= patterns.size() || choice.reverse >= patterns.size()) {
        const QString name = choice.route >= 0 && choice.route < m_feed.routes().size()
            ? m_feed.routes().at(choice.route).id
            : QString::number(choice.route);
        *error = tr("The stops of route %1 have not been read from the feed.").arg(name);
        return false;
    }
    const cGtfsRoute& source = m_feed.routes().at(choice.route);
    cRoute built;
    built.id = QUuid::createUuid();
    const QString name = !source.longName.isEmpty() ? source.longName
        : !source.shortName.isEmpty()               ? source.shortName
                                                    : source.id;
    built.name = routeTableText(name);
    built.short_name = routeTableText(source.shortName);
    built.base_text = cProjectManager::defaultBaseTexts();
    if (choice.direct >= 0)
        built.direct = buildBranch(patterns.at(choice.direct));
    if (choice.reverse >= 0)
        built.reverse = buildBranch(patterns.at(choice.reverse));
    *route = built;
    return true;
}

bool cGtfsRouteBuilder::buildAll(const QVector<cGtfsRouteChoice>& choices, QList<cRoute>* routes,
                                 QString* error) const
{
    QList<cRoute> built;
    for (const cGtfsRouteChoice& choice : choices) {
        cRoute route;
        if (!build(choice, &route, error))
            return false;
        built << route;
    }
    *routes = built;
    return true;
}

cBranch cGtfsRouteBuilder::buildBranch(const cGtfsPattern& pattern) const
{
    cBranch branch;
    for (const int index : pattern.stops) {
        const cGtfsStop& source = m_feed.stops().at(index);
        cStop stop;
        stop.id = QUuid::createUuid();
        stop.name = routeTableText(source.name);
        stop.lon = source.lon;
        stop.lat = source.lat;
        branch.stops << stop;
    }
    if (m_options.course)
        setCourses(pattern, &branch);
    return branch;
}

namespace {

// Towards the next stop elsewhere; for the last stop, the way it was reached.
bool bearingBetweenStops(const QList<cStop>& stops, int index, double* bearing)
{
    const cStop& here = stops.at(index);
    const auto elsewhere = [&here](const cStop& other) { return other.lon != here.lon || other.lat != here.lat; };
    for (int next = index + 1; next < stops.size(); ++next) {
        if (elsewhere(stops.at(next))) {
            *bearing = geo::bearingDegrees(here.lon, here.lat, stops.at(next).lon, stops.at(next).lat);
            return true;
        }
    }
    for (int previous = index - 1; previous >= 0; --previous) {
        if (elsewhere(stops.at(previous))) {
            *bearing = geo::bearingDegrees(stops.at(previous).lon, stops.at(previous).lat, here.lon, here.lat);
            return true;
        }
    }
    return false;
}

} // namespace

void cGtfsRouteBuilder::setCourses(const cGtfsPattern& pattern, cBranch* branch) const
{
    const QVector<cGtfsPoint> path = m_feed.shape(pattern.shapeId);
    double along = 0;
    for (int i = 0; i < branch->stops.size(); ++i) {
        cStop& stop = branch->stops[i];
        double bearing = 0;
        if (!bearingAlongPath(path, {stop.lon, stop.lat}, &along, &bearing)
            && !bearingBetweenStops(branch->stops, i, &bearing))
            continue;
        stop.course_enabled = true;
        stop.course_value = int(std::lround(bearing)) % 360;
        stop.course_diff = m_options.courseDiff;
    }
}
