#include "command.h"
#include "commands.h"
#include "gtfsfeed.h"
#include "gtfsroutebuilder.h"
#include "projectmanager.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextStream>

namespace {

const QString routeOption = QStringLiteral("route");
const QString courseDiffOption = QStringLiteral("course-diff");

class cImportGtfsCommand : public cCommand
{
    Q_DECLARE_TR_FUNCTIONS(cImportGtfsCommand)

public:
    QString name() const override { return QStringLiteral("import-gtfs"); }
    QString summary() const override
    {
        return tr("Adds routes of a GTFS timetable feed to a project, creating the project if it does not exist.");
    }
    QList<QPair<QString, QString>> arguments() const override
    {
        return {{QStringLiteral("FEED"), tr("The feed: a zip file or an unpacked folder.")},
                {QStringLiteral("PROJECT"), tr("The project file (.vosk) the routes are added to.")}};
    }
    // Its --route names routes of the feed, not of the project.
    int sharedOptions() const override { return 0; }

    void addOptions(QCommandLineParser& parser) const override
    {
        parser.addOption({routeOption,
                          tr("Only the feed's route with this route_id or short name; may be given more than once. "
                             "Every route of the feed without it."),
                          tr("ID")});
        parser.addOption({courseDiffOption,
                          tr("Give every stop a course along the route, with this deviation in degrees (1 to 360)."),
                          tr("N")});
    }

    int run(cCliContext& context) const override
    {
        const QString feedPath = context.argument(0);
        const QString projectPath = context.argument(1);
        cGtfsBuildOptions options;
        if (context.parser().isSet(courseDiffOption) && !readCourseDiff(context, &options))
            return ExitUsage;

        cGtfsFeed feed;
        QString error;
        if (!feed.open(feedPath, nullptr, &error)) {
            complainAboutFeed(context, feedPath, error);
            return ExitUsage;
        }
        QVector<int> routes;
        if (!findRoutes(context, feed, &routes))
            return ExitProblems;

        // A project that cannot be read is never overwritten by a new one.
        cProjectManager manager;
        if (QFileInfo::exists(projectPath) && !context.openProject(&manager, projectPath))
            return ExitUsage;

        QList<cRoute> built;
        if (!buildRoutes(&feed, routes, options, &built, &error)) {
            complainAboutFeed(context, feedPath, error);
            return ExitUsage;
        }

        manager.importRoutes(built);
        if (!manager.saveProject(projectPath)) {
            context.complain(tr("Cannot write the project %1.").arg(projectPath));
            return ExitProblems;
        }
        for (const cRoute& route : qAsConst(built))
            context.out() << tr("Added %1 [%2]: %3 direct and %4 reverse stops")
                                 .arg(route.name, route.short_name)
                                 .arg(route.direct.stops.size())
                                 .arg(route.reverse.stops.size())
                          << '\n';
        context.out() << tr("Routes in the project: %1. Saved %2.")
                             .arg(manager.project()->routes.size())
                             .arg(projectPath)
                      << '\n';
        return ExitOk;
    }

private:
    static bool readCourseDiff(cCliContext& context, cGtfsBuildOptions* options)
    {
        const QString text = context.parser().value(courseDiffOption);
        bool ok = false;
        const int value = text.toInt(&ok);
        if (!ok || value < 1 || value > 360) {
            context.complain(tr("The course deviation is a whole number of degrees from 1 to 360, not \"%1\".")
                                 .arg(text));
            return false;
        }
        options->course = true;
        options->courseDiff = value;
        return true;
    }

    // Each named route once, in the order named; all of them when none is named.
    static bool findRoutes(cCliContext& context, const cGtfsFeed& feed, QVector<int>* routes)
    {
        const QStringList names = context.parser().values(routeOption);
        if (names.isEmpty()) {
            for (int route = 0; route < feed.routes().size(); ++route)
                *routes << route;
            return true;
        }
        bool found = true;
        for (const QString& name : names) {
            const int route = feed.findRoute(name);
            if (route < 0) {
                context.complain(tr("The feed has no route with the id or short name \"%1\".").arg(name));
                found = false;
            } else if (!routes->contains(route)) {
                *routes << route;
            }
        }
        return found;
    }

    // Each route with its usual branches: the most frequent stop sequence of
    // either direction.
    static bool buildRoutes(cGtfsFeed* feed, const QVector<int>& routes, const cGtfsBuildOptions& options,
                            QList<cRoute>* built, QString* error)
    {
        if (!feed->loadPatterns(routes, nullptr, error))
            return false;
        QVector<cGtfsRouteChoice> choices;
        for (const int route : routes)
            choices << feed->defaultChoice(route);
        return cGtfsRouteBuilder(*feed, options).buildAll(choices, built, error);
    }

    static void complainAboutFeed(cCliContext& context, const QString& path, const QString& error)
    {
        context.complain(tr("Cannot read the GTFS feed %1: %2").arg(path, error));
    }
};

} // namespace

const cCommand& importGtfsCommand()
{
    static const cImportGtfsCommand command;
    return command;
}
