#ifndef VOSK_GTFSROUTEBUILDER_H
#define VOSK_GTFSROUTEBUILDER_H

#include "gtfsfeed.h"
#include "project.h"

#include <QCoreApplication>
#include <QList>
#include <QVector>

struct cGtfsBuildOptions
{
    // Give every stop a course window along the route's path.
    bool course = false;
    int courseDiff = 60;
};

// Turns chosen routes of a loaded feed into project routes: one route per
// feed route, its branches from the chosen patterns, every stop centred on
// the feed's position with the default radius and fresh ids.
class cGtfsRouteBuilder
{
    Q_DECLARE_TR_FUNCTIONS(cGtfsRouteBuilder)

public:
    cGtfsRouteBuilder(const cGtfsFeed& feed, const cGtfsBuildOptions& options);

    bool build(const cGtfsRouteChoice& choice, cRoute* route, QString* error) const;
    // All or nothing: every route is built before any is handed out, so a
    // failure leaves `routes` untouched.
    bool buildAll(const QVector<cGtfsRouteChoice>& choices, QList<cRoute>* routes, QString* error) const;

private:
    cBranch buildBranch(const cGtfsPattern& pattern) const;
    void setCourses(const cGtfsPattern& pattern, cBranch* branch) const;

    const cGtfsFeed& m_feed;
    cGtfsBuildOptions m_options;
};

// Route tables hold texts verbatim between single quotes and are filled
// through %-placeholders. Escaped like this, a text reads back from a saved
// project exactly as the feed gave it.
QString routeTableText(const QString& text);

#endif
