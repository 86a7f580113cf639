#ifndef VOSK_GTFSFEED_H
#define VOSK_GTFSFEED_H

#include <QByteArray>
#include <QCoreApplication>
#include <QHash>
#include <QString>
#include <QVector>

#include <functional>

struct cGtfsRoute
{
    QString id;
    QString shortName;
    QString longName;
    int type = 3;
    int tripCount = 0;
};

struct cGtfsStop
{
    QString id;
    QString name;
    double lon = 0;
    double lat = 0;
};

// One distinct sequence of stops among a route's trips.
struct cGtfsPattern
{
    int direction = -1; // direction_id 0 or 1; -1 for trips without one
    QVector<int> stops; // indices into cGtfsFeed::stops(), in travel order
    int tripCount = 0;
    QString shapeId; // the path most of these trips follow; empty when none
};

struct cGtfsPoint
{
    double lon = 0;
    double lat = 0;
};

// Which patterns of a route become its branches: indices into
// cGtfsFeed::patterns(route), or -1 for an empty branch.
struct cGtfsRouteChoice
{
    int route = -1;
    int direct = -1;
    int reverse = -1;
};

// Told now and then how many bytes of the files a read step takes have been
// read; returning false cancels the read.
using cGtfsProgress = std::function<bool(qint64 done, qint64 total)>;

// A GTFS feed, read in two steps so that a city's millions of stop times are
// streamed once and only the routes the user picked are kept: open() lists
// the routes, loadPatterns() reads the stops and stop sequences of chosen
// ones. Each step changes nothing when it fails or is cancelled.
class cGtfsFeed
{
    Q_DECLARE_TR_FUNCTIONS(cGtfsFeed)

public:
    // Reads routes.txt and trips.txt of a zip file or folder, and checks that
    // the other files the import needs are there.
    bool open(const QString& path, const cGtfsProgress& progress, QString* error);
    const QVector<cGtfsRoute>& routes() const { return m_routes; }
    // Index of the route with this route_id, else of the first with this
    // short name; -1 when there is none.
    int findRoute(const QString& idOrShortName) const;

    // Reads stops.txt, stop_times.txt and shapes.txt for these routes
    // (indices into routes()). Patterns of routes loaded before are dropped.
    bool loadPatterns(const QVector<int>& routes, const cGtfsProgress& progress, QString* error);
    bool isLoaded(int route) const;
    // Patterns of a loaded route, the most trips first.
    const QVector<cGtfsPattern>& patterns(int route) const;
    const QVector<cGtfsStop>& stops() const { return m_stops; }
    // Points of a shape of a loaded pattern, in order; empty when unknown.
    QVector<cGtfsPoint> shape(const QString& shapeId) const;

    // The most frequent pattern with direction_id 0 as the direct branch and
    // with 1 as the reverse one; on a route whose trips carry no direction,
    // the most frequent pattern as the direct branch.
    cGtfsRouteChoice defaultChoice(int route) const;

private:
    struct cTrip
    {
        int route = -1;
        int direction = -1;
        int shape = -1; // index into m_shapeIds
    };

    // Sorts the chosen trips' stop sequences into the patterns of their
    // routes, each with the shape most of its trips follow.
    void groupPatterns(const QVector<int>& trips, const QVector<QVector<int>>& tripStops,
                       QHash<int, QVector<cGtfsPattern>>* patterns) const;

    QString m_path;
    QVector<cGtfsRoute> m_routes;
    QVector<cTrip> m_trips;
    QHash<QByteArray, int> m_tripIndex;
    QVector<QString> m_shapeIds;

    QVector<cGtfsStop> m_stops;
    QHash<int, QVector<cGtfsPattern>> m_patterns;
    QHash<QString, QVector<cGtfsPoint>> m_shapes;
};

#endif
