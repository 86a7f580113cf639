#include "gtfsfeed.h"

#include "csvreader.h"
#include "feedarchive.h"

#include <QIODevice>
#include <QSet>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

namespace {

const QString kRoutes = QStringLiteral("routes.txt");
const QString kTrips = QStringLiteral("trips.txt");
const QString kStops = QStringLiteral("stops.txt");
const QString kStopTimes = QStringLiteral("stop_times.txt");
const QString kShapes = QStringLiteral("shapes.txt");

// Progress is reported about this often, in bytes read.
constexpr qint64 kProgressStep = 1 << 20;

QByteArray ownCopy(const QByteArray& field)
{
    return QByteArray(field.constData(), field.size());
}

QByteArray trimmedBlanks(const QByteArray& field)
{
    const char* begin = field.constData();
    const char* end = begin + field.size();
    while (begin != end && (*begin == ' ' || *begin == '\t'))
        ++begin;
    while (end != begin && (end[-1] == ' ' || end[-1] == '\t'))
        --end;
    return QByteArray::fromRawData(begin, int(end - begin));
}

// Hand-written: it runs once for each of a city's millions of stop times.
bool parseWhole(const QByteArray& field, int* out)
{
    const QByteArray digits = trimmedBlanks(field);
    if (digits.isEmpty())
        return false;
    qint64 value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + (c - '0');
        if (value > INT_MAX)
            return false;
    }
    *out = int(value);
    return true;
}

bool parseNumber(const QByteArray& field, double* out)
{
    bool ok = false;
    *out = ownCopy(trimmedBlanks(field)).toDouble(&ok);
    return ok && std::isfinite(*out);
}

// A column a table read needs, resolved from the header into `index`.
struct cColumn
{
    const char* name;
    int* index;
    bool required;
};

// The files one read step takes, read one after the other with progress
// counted over all of them.
class cReadStep
{
    Q_DECLARE_TR_FUNCTIONS(cGtfsFeed)

public:
    cReadStep(const cFeedArchive& archive, const QStringList& files, const cGtfsProgress& progress)
        : m_archive(archive)
        , m_progress(progress)
    {
        for (const QString& file : files)
            m_total += archive.size(file);
    }

    // Hands every record of `name` to `row(reader, error)`, which returns
    // false with an error to stop the read.
    template <typename Row>
    bool read(const QString& name, std::initializer_list<cColumn> columns, Row row, QString* error)
    {
        std::unique_ptr<QIODevice> file = m_archive.openFile(name, error);
        if (!file)
            return false;
        cCsvReader reader(file.get(), name);
        if (!reader.readHeader(error))
            return false;
        for (const cColumn& column : columns) {
            *column.index = reader.column(QLatin1String(column.name));
            if (column.required && *column.index < 0) {
                *error = reader.lineError(tr("the column %1 is missing.").arg(QLatin1String(column.name)));
                return false;
            }
        }
        qint64 reported = 0;
        while (reader.readRecord(error)) {
            if (!row(reader, error))
                return false;
            if (reader.position() - reported >= kProgressStep) {
                reported = reader.position();
                if (!report(m_done + reported, error))
                    return false;
            }
        }
        if (!error->isEmpty() || !m_archive.closeFile(file.get(), name, error))
            return false;
        m_done += reader.position();
        return report(m_done, error);
    }

private:
    bool report(qint64 done, QString* error)
    {
        if (!m_progress || m_progress(done, std::max(m_total, done)))
            return true;
        *error = tr("Reading the feed was cancelled.");
        return false;
    }

    const cFeedArchive& m_archive;
    cGtfsProgress m_progress;
    qint64 m_total = 0;
    qint64 m_done = 0;
};

} // namespace

namespace {

QString fieldText(const QByteArray& field)
{
    return QString::fromUtf8(field.constData(), field.size());
}

QString invalidNumber(const cCsvReader& reader, const char* column, const QByteArray& value)
{
    return reader.lineError(QCoreApplication::translate("cGtfsFeed", "%1 \"%2\" is not a valid number.")
                                .arg(QLatin1String(column), fieldText(value)));
}

QString notWhole(const cCsvReader& reader, const char* column, const QByteArray& value)
{
    return reader.lineError(QCoreApplication::translate("cGtfsFeed", "%1 \"%2\" is not a whole number.")
                                .arg(QLatin1String(column), fieldText(value)));
}

QString undefined(const cCsvReader& reader, const char* column, const QByteArray& value, const QString& file)
{
    return reader.lineError(QCoreApplication::translate("cGtfsFeed", "%1 \"%2\" is not defined in %3.")
                                .arg(QLatin1String(column), fieldText(value), file));
}

QString definedTwice(const cCsvReader& reader, const char* column, const QByteArray& value)
{
    return reader.lineError(QCoreApplication::translate("cGtfsFeed", "%1 \"%2\" is defined twice.")
                                .arg(QLatin1String(column), fieldText(value)));
}

// A coordinate in degrees within ±limit; NaN when the field is empty, as
// stations and entrances may leave it.
bool readCoordinate(const cCsvReader& reader, int column, const char* name, double limit, double* out,
                    QString* error)
{
    const QByteArray value = reader.field(column);
    if (trimmedBlanks(value).isEmpty()) {
        *out = std::nan("");
        return true;
    }
    if (parseNumber(value, out) && std::abs(*out) <= limit)
        return true;
    *error = invalidNumber(reader, name, value);
    return false;
}

struct cStopTime
{
    int sequence;
    int stop;
};

struct cShapePoint
{
    int sequence;
    cGtfsPoint point;
};

} // namespace

bool cGtfsFeed::open(const QString& path, const cGtfsProgress& progress, QString* error)
{
    cFeedArchive archive;
    if (!archive.open(path, error))
        return false;
    for (const QString& name : {kRoutes, kTrips, kStops, kStopTimes}) {
        if (!archive.contains(name)) {
            *error = tr("The feed has no %1.").arg(name);
            return false;
        }
    }

    cReadStep step(archive, {kRoutes, kTrips}, progress);
    QVector<cGtfsRoute> routes;
    QHash<QByteArray, int> routeIndex;
    int idColumn, shortColumn, longColumn, typeColumn;
    const bool routesRead = step.read(
        kRoutes,
        {{"route_id", &idColumn, true},
         {"route_short_name", &shortColumn, false},
         {"route_long_name", &longColumn, false},
         {"route_type", &typeColumn, true}},
        [&](const cCsvReader& reader, QString* error) {
            const QByteArray id = reader.field(idColumn);
            if (routeIndex.contains(id)) {
                *error = definedTwice(reader, "route_id", id);
                return false;
            }
            cGtfsRoute route;
            route.id = fieldText(id);
            route.shortName = reader.text(shortColumn);
            route.longName = reader.text(longColumn);
            if (!parseWhole(reader.field(typeColumn), &route.type)) {
                *error = notWhole(reader, "route_type", reader.field(typeColumn));
                return false;
            }
            routeIndex.insert(ownCopy(id), routes.size());
            routes << route;
            return true;
        },
        error);
    if (!routesRead)
        return false;

    QVector<cTrip> trips;
    QHash<QByteArray, int> tripIndex;
    QVector<QString> shapeIds;
    QHash<QByteArray, int> shapeIndex;
    int routeColumn, tripColumn, directionColumn, shapeColumn;
    const bool tripsRead = step.read(
        kTrips,
        {{"route_id", &routeColumn, true},
         {"trip_id", &tripColumn, true},
         {"direction_id", &directionColumn, false},
         {"shape_id", &shapeColumn, false}},
        [&](const cCsvReader& reader, QString* error) {
            cTrip trip;
            const QByteArray routeId = reader.field(routeColumn);
            trip.route = routeIndex.value(routeId, -1);
            if (trip.route < 0) {
                *error = undefined(reader, "route_id", routeId, kRoutes);
                return false;
            }
            const QByteArray direction = trimmedBlanks(reader.field(directionColumn));
            if (direction == "0" || direction == "1") {
                trip.direction = direction.at(0) - '0';
            } else if (!direction.isEmpty()) {
                *error = reader.lineError(tr("direction_id \"%1\" is neither 0 nor 1.").arg(fieldText(direction)));
                return false;
            }
            const QByteArray shapeId = reader.field(shapeColumn);
            if (!shapeId.isEmpty()) {
                trip.shape = shapeIndex.value(shapeId, -1);
                if (trip.shape < 0) {
                    trip.shape = shapeIds.size();
                    shapeIndex.insert(ownCopy(shapeId), trip.shape);
                    shapeIds << fieldText(shapeId);
                }
            }
            const QByteArray tripId = reader.field(tripColumn);
            if (tripIndex.contains(tripId)) {
                *error = definedTwice(reader, "trip_id", tripId);
                return false;
            }
            tripIndex.insert(ownCopy(tripId), trips.size());
            trips << trip;
            ++routes[trip.route].tripCount;
            return true;
        },
        error);
    if (!tripsRead)
        return false;

    m_path = path;
    m_routes = routes;
    m_trips = trips;
    m_tripIndex = tripIndex;
    m_shapeIds = shapeIds;
    m_stops.clear();
    m_patterns.clear();
    m_shapes.clear();
    return true;
}

int cGtfsFeed::findRoute(const QString& idOrShortName) const
{
    for (int i = 0; i < m_routes.size(); ++i) {
        if (m_routes.at(i).id == idOrShortName)
            return i;
    }
    for (int i = 0; i < m_routes.size(); ++i) {
        if (m_routes.at(i).shortName == idOrShortName)
            return i;
    }
    return -1;
}

namespace {

bool readStops(cReadStep& step, QVector<cGtfsStop>* stops, QHash<QByteArray, int>* stopIndex, QString* error)
{
    int idColumn, nameColumn, latColumn, lonColumn;
    return step.read(
        kStops,
        {{"stop_id", &idColumn, true},
         {"stop_name", &nameColumn, false},
         {"stop_lat", &latColumn, true},
         {"stop_lon", &lonColumn, true}},
        [&](const cCsvReader& reader, QString* error) {
            const QByteArray id = reader.field(idColumn);
            if (stopIndex->contains(id)) {
                *error = definedTwice(reader, "stop_id", id);
                return false;
            }
            cGtfsStop stop;
            stop.id = fieldText(id);
            stop.name = reader.text(nameColumn);
            if (!readCoordinate(reader, latColumn, "stop_lat", 90, &stop.lat, error)
                || !readCoordinate(reader, lonColumn, "stop_lon", 180, &stop.lon, error))
                return false;
            stopIndex->insert(ownCopy(id), stops->size());
            *stops << stop;
            return true;
        },
        error);
}

// The stops each chosen trip runs, in order. `slotOfTrip` numbers the
// chosen trips; the stop times of all others are passed over.
bool readStopTimes(cReadStep& step, const QHash<QByteArray, int>& tripIndex, const QVector<int>& slotOfTrip,
                   const QVector<cGtfsStop>& stops, const QHash<QByteArray, int>& stopIndex,
                   QVector<QVector<int>>* tripStops, QString* error)
{
    QVector<QVector<cStopTime>> times(tripStops->size());
    // Stop times come grouped by trip in practice; looking the trip up only
    // when it changes keeps the millions of rows cheap.
    QByteArray lastTripId;
    int lastSlot = -1;
    bool firstRow = true;
    int tripColumn, stopColumn, sequenceColumn;
    const bool read = step.read(
        kStopTimes,
        {{"trip_id", &tripColumn, true}, {"stop_id", &stopColumn, true}, {"stop_sequence", &sequenceColumn, true}},
        [&](const cCsvReader& reader, QString* error) {
            const QByteArray tripId = reader.field(tripColumn);
            if (firstRow || tripId != lastTripId) {
                firstRow = false;
                lastTripId = ownCopy(tripId);
                lastSlot = slotOfTrip.value(tripIndex.value(tripId, -1), -1);
            }
            if (lastSlot < 0)
                return true;
            cStopTime time;
            if (!parseWhole(reader.field(sequenceColumn), &time.sequence)) {
                *error = notWhole(reader, "stop_sequence", reader.field(sequenceColumn));
                return false;
            }
            const QByteArray stopId = reader.field(stopColumn);
            time.stop = stopIndex.value(stopId, -1);
            if (time.stop < 0) {
                *error = undefined(reader, "stop_id", stopId, kStops);
                return false;
            }
            const cGtfsStop& stop = stops.at(time.stop);
            if (std::isnan(stop.lat) || std::isnan(stop.lon)) {
                *error = reader.lineError(
                    QCoreApplication::translate("cGtfsFeed", "stop_id \"%1\" has no position in %2.")
                        .arg(stop.id, kStops));
                return false;
            }
            times[lastSlot] << time;
            return true;
        },
        error);
    if (!read)
        return false;
    for (int slot = 0; slot < times.size(); ++slot) {
        QVector<cStopTime>& tripTimes = times[slot];
        std::stable_sort(tripTimes.begin(), tripTimes.end(),
                         [](const cStopTime& a, const cStopTime& b) { return a.sequence < b.sequence; });
        QVector<int>& sequence = (*tripStops)[slot];
        sequence.reserve(tripTimes.size());
        for (const cStopTime& time : qAsConst(tripTimes))
            sequence << time.stop;
        tripTimes = QVector<cStopTime>();
    }
    return true;
}

// The points of the named shapes, each in order.
bool readShapes(cReadStep& step, const QSet<QString>& wanted, QHash<QString, QVector<cGtfsPoint>>* shapes,
                QString* error)
{
    QHash<QByteArray, QVector<cShapePoint>> points;
    for (const QString& id : wanted)
        points.insert(id.toUtf8(), {});
    int shapeColumn, latColumn, lonColumn, sequenceColumn;
    const bool read = step.read(
        kShapes,
        {{"shape_id", &shapeColumn, true},
         {"shape_pt_lat", &latColumn, true},
         {"shape_pt_lon", &lonColumn, true},
         {"shape_pt_sequence", &sequenceColumn, true}},
        [&](const cCsvReader& reader, QString* error) {
            const auto found = points.find(reader.field(shapeColumn));
            if (found == points.end())
                return true;
            cShapePoint point;
            if (!parseWhole(reader.field(sequenceColumn), &point.sequence)) {
                *error = notWhole(reader, "shape_pt_sequence", reader.field(sequenceColumn));
                return false;
            }
            if (!readCoordinate(reader, latColumn, "shape_pt_lat", 90, &point.point.lat, error)
                || !readCoordinate(reader, lonColumn, "shape_pt_lon", 180, &point.point.lon, error))
                return false;
            if (std::isnan(point.point.lat) || std::isnan(point.point.lon)) {
                *error = invalidNumber(reader, "shape_pt_lat", reader.field(latColumn));
                return false;
            }
            found.value() << point;
            return true;
        },
        error);
    if (!read)
        return false;
    for (auto it = points.begin(); it != points.end(); ++it) {
        std::stable_sort(it.value().begin(), it.value().end(),
                         [](const cShapePoint& a, const cShapePoint& b) { return a.sequence < b.sequence; });
        QVector<cGtfsPoint> path;
        path.reserve(it.value().size());
        for (const cShapePoint& point : qAsConst(it.value()))
            path << point.point;
        if (!path.isEmpty())
            shapes->insert(QString::fromUtf8(it.key()), path);
    }
    return true;
}

} // namespace

bool cGtfsFeed::loadPatterns(const QVector<int>& routes, const cGtfsProgress& progress, QString* error)
{
    cFeedArchive archive;
    if (!archive.open(m_path, error))
        return false;
    const bool hasShapes = archive.contains(kShapes);
    QStringList files{kStops, kStopTimes};
    if (hasShapes)
        files << kShapes;
    cReadStep step(archive, files, progress);

    QVector<cGtfsStop> stops;
    QHash<QByteArray, int> stopIndex;
    if (!readStops(step, &stops, &stopIndex, error))
        return false;

    // Only the trips of the chosen routes keep their stop times.
    QVector<bool> chosen(m_routes.size(), false);
    for (const int route : routes) {
        if (route >= 0 && route < m_routes.size())
            chosen[route] = true;
    }
    QVector<int> slotOfTrip(m_trips.size(), -1);
    QVector<int> chosenTrips;
    for (int trip = 0; trip < m_trips.size(); ++trip) {
        if (chosen.at(m_trips.at(trip).route)) {
            slotOfTrip[trip] = chosenTrips.size();
            chosenTrips << trip;
        }
    }
    QVector<QVector<int>> tripStops(chosenTrips.size());
    if (!readStopTimes(step, m_tripIndex, slotOfTrip, stops, stopIndex, &tripStops, error))
        return false;

    QHash<int, QVector<cGtfsPattern>> patterns;
    for (int route = 0; route < m_routes.size(); ++route) {
        if (chosen.at(route))
            patterns.insert(route, {});
    }
    groupPatterns(chosenTrips, tripStops, &patterns);

    QHash<QString, QVector<cGtfsPoint>> shapes;
    if (hasShapes) {
        QSet<QString> wanted;
        for (const QVector<cGtfsPattern>& routePatterns : qAsConst(patterns)) {
            for (const cGtfsPattern& pattern : routePatterns) {
                if (!pattern.shapeId.isEmpty())
                    wanted.insert(pattern.shapeId);
            }
        }
        if (!readShapes(step, wanted, &shapes, error))
            return false;
    }

    m_stops = stops;
    m_patterns = patterns;
    m_shapes = shapes;
    return true;
}

void cGtfsFeed::groupPatterns(const QVector<int>& trips, const QVector<QVector<int>>& tripStops,
                              QHash<int, QVector<cGtfsPattern>>* patterns) const
{
    // Route, direction and stops of a pattern -> its index in the route's list.
    QHash<QVector<int>, int> patternOf;
    // Trips of each pattern by shape, to name the path most of them follow.
    QHash<int, QVector<QHash<int, int>>> shapeCounts;
    for (int slot = 0; slot < trips.size(); ++slot) {
        if (tripStops.at(slot).isEmpty())
            continue;
        const cTrip& trip = m_trips.at(trips.at(slot));
        const QVector<int> key = QVector<int>{trip.route, trip.direction} + tripStops.at(slot);
        QVector<cGtfsPattern>& routePatterns = (*patterns)[trip.route];
        auto found = patternOf.find(key);
        if (found == patternOf.end()) {
            cGtfsPattern pattern;
            pattern.direction = trip.direction;
            pattern.stops = tripStops.at(slot);
            found = patternOf.insert(key, routePatterns.size());
            routePatterns << pattern;
            shapeCounts[trip.route].append(QHash<int, int>());
        }
        ++routePatterns[found.value()].tripCount;
        if (trip.shape >= 0)
            ++shapeCounts[trip.route][found.value()][trip.shape];
    }

    for (auto it = patterns->begin(); it != patterns->end(); ++it) {
        QVector<cGtfsPattern>& routePatterns = it.value();
        for (int i = 0; i < routePatterns.size(); ++i) {
            const QHash<int, int>& counts = shapeCounts.value(it.key()).at(i);
            int best = -1;
            for (auto count = counts.begin(); count != counts.end(); ++count) {
                if (best < 0 || count.value() > counts.value(best)
                    || (count.value() == counts.value(best) && count.key() < best))
                    best = count.key();
            }
            if (best >= 0)
                routePatterns[i].shapeId = m_shapeIds.at(best);
        }
        std::stable_sort(routePatterns.begin(), routePatterns.end(),
                         [](const cGtfsPattern& a, const cGtfsPattern& b) { return a.tripCount > b.tripCount; });
    }
}

bool cGtfsFeed::isLoaded(int route) const
{
    return m_patterns.contains(route);
}

const QVector<cGtfsPattern>& cGtfsFeed::patterns(int route) const
{
    static const QVector<cGtfsPattern> none;
    const auto found = m_patterns.constFind(route);
    return found == m_patterns.constEnd() ? none : found.value();
}

QVector<cGtfsPoint> cGtfsFeed::shape(const QString& shapeId) const
{
    return m_shapes.value(shapeId);
}

cGtfsRouteChoice cGtfsFeed::defaultChoice(int route) const
{
    cGtfsRouteChoice choice;
    choice.route = route;
    const QVector<cGtfsPattern>& routePatterns = patterns(route);
    const bool hasDirections = std::any_of(routePatterns.begin(), routePatterns.end(),
                                           [](const cGtfsPattern& p) { return p.direction >= 0; });
    if (!hasDirections) {
        choice.direct = routePatterns.isEmpty() ? -1 : 0;
        return choice;
    }
    // Patterns are ordered by trips, so the first of a direction is its most frequent.
    for (int i = routePatterns.size() - 1; i >= 0; --i) {
        if (routePatterns.at(i).direction == 0)
            choice.direct = i;
        else if (routePatterns.at(i).direction == 1)
            choice.reverse = i;
    }
    return choice;
}
