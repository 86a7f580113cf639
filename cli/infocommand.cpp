#include "command.h"
#include "commands.h"
#include "soundprobe.h"
#include "stopchecks.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>
#include <QTextStream>

#include <cmath>

namespace {

// The smallest box around every stop that has real coordinates.
struct cBounds
{
    double west = 0;
    double south = 0;
    double east = 0;
    double north = 0;
    bool empty = true;

    void add(const cStop& stop)
    {
        if (!std::isfinite(stop.lon) || !std::isfinite(stop.lat) || std::fabs(stop.lat) > 90
            || std::fabs(stop.lon) > 180)
            return;
        west = empty ? stop.lon : qMin(west, stop.lon);
        east = empty ? stop.lon : qMax(east, stop.lon);
        south = empty ? stop.lat : qMin(south, stop.lat);
        north = empty ? stop.lat : qMax(north, stop.lat);
        empty = false;
    }
};

class cInfoCommand : public cCommand
{
    Q_DECLARE_TR_FUNCTIONS(cInfoCommand)

public:
    QString name() const override { return QStringLiteral("info"); }
    QString summary() const override
    {
        return tr("Lists the routes with their stops, the sounds they use and where the stops lie.");
    }
    QList<QPair<QString, QString>> arguments() const override
    {
        return {{QStringLiteral("PROJECT"), tr("The project file (.vosk).")}};
    }
    int sharedOptions() const override { return RouteOption | FormatOption; }

    int run(cCliContext& context) const override
    {
        QList<cRoute> routes;
        if (!context.loadProject() || !context.selectRoutes(&routes))
            return ExitUsage;

        QStringList sounds;
        QSet<QString> seen;
        cBounds bounds;
        for (const cRoute& route : routes) {
            const QStringList fixed{route.base_sound.current, route.base_sound.next, route.base_sound.last};
            QStringList used = fixed;
            for (const cBranch* branch : {&route.direct, &route.reverse}) {
                for (const cStop& stop : branch->stops) {
                    used << stop.sound << stop.other_sounds;
                    bounds.add(stop);
                }
            }
            for (const QString& sound : qAsConst(used)) {
                if (!sound.isEmpty() && !seen.contains(sound)) {
                    seen.insert(sound);
                    sounds << sound;
                }
            }
        }
        const cSoundProbe probe(QString(), false);
        QStringList missing;
        for (const QString& sound : qAsConst(sounds)) {
            if (probe.probe(sound).status != cSoundProbe::Status::Ok)
                missing << sound;
        }

        if (context.json())
            context.printJson(json(context, routes, sounds.size(), missing, bounds));
        else
            printText(context, routes, sounds.size(), missing, bounds);
        return ExitOk;
    }

private:
    static QJsonObject json(const cCliContext& context, const QList<cRoute>& routes, int soundCount,
                            const QStringList& missing, const cBounds& bounds)
    {
        QJsonArray list;
        for (const cRoute& route : routes)
            list.append(QJsonObject{{QStringLiteral("name"), route.name},
                                    {QStringLiteral("short_name"), route.short_name},
                                    {QStringLiteral("type"), route.type},
                                    {QStringLiteral("direct_stops"), route.direct.stops.size()},
                                    {QStringLiteral("reverse_stops"), route.reverse.stops.size()}});
        QJsonObject info{{QStringLiteral("project"), context.projectPath()},
                         {QStringLiteral("routes"), list},
                         {QStringLiteral("sounds"),
                          QJsonObject{{QStringLiteral("referenced"), soundCount},
                                      {QStringLiteral("missing"), missing.size()},
                                      {QStringLiteral("missing_files"), QJsonArray::fromStringList(missing)}}}};
        info.insert(QStringLiteral("bounding_box"),
                    bounds.empty ? QJsonValue()
                                 : QJsonObject{{QStringLiteral("west"), bounds.west},
                                               {QStringLiteral("south"), bounds.south},
                                               {QStringLiteral("east"), bounds.east},
                                               {QStringLiteral("north"), bounds.north}});
        return info;
    }

    static void printText(cCliContext& context, const QList<cRoute>& routes, int soundCount,
                          const QStringList& missing, const cBounds& bounds)
    {
        QTextStream& out = context.out();
        out << tr("Project: %1").arg(context.projectPath()) << '\n' << tr("Routes: %1").arg(routes.size()) << '\n';
        for (const cRoute& route : routes)
            out << QStringLiteral("  ")
                << tr("%1 [%2, %3]: %4 direct and %5 reverse stops")
                       .arg(route.name, route.short_name, route.type, QString::number(route.direct.stops.size()),
                            QString::number(route.reverse.stops.size()))
                << '\n';
        out << tr("Sounds: %1 referenced, %2 missing").arg(soundCount).arg(missing.size()) << '\n';
        for (const QString& sound : missing)
            out << QStringLiteral("  ") << sound << '\n';
        if (bounds.empty)
            out << tr("No stops with coordinates.") << '\n';
        else
            out << tr("Stops lie within longitude %1 to %2, latitude %3 to %4.")
                       .arg(QString::number(bounds.west, 'g', 8), QString::number(bounds.east, 'g', 8),
                            QString::number(bounds.south, 'g', 8), QString::number(bounds.north, 'g', 8))
                << '\n';
    }
};

} // namespace

const cCommand& infoCommand()
{
    static const cInfoCommand command;
    return command;
}
