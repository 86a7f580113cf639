#include "command.h"
#include "commands.h"
#include "replay.h"
#include "trackreader.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QTextStream>

#include <cmath>

namespace {

const QString branchOption = QStringLiteral("branch");
const QString trackOption = QStringLiteral("track");

class cReplayCommand : public cCommand
{
    Q_DECLARE_TR_FUNCTIONS(cReplayCommand)

public:
    QString name() const override { return QStringLiteral("replay"); }
    QString summary() const override
    {
        return tr("Drives a recorded ride through a route and tells which stops the device would announce.");
    }
    QList<QPair<QString, QString>> arguments() const override
    {
        return {{QStringLiteral("PROJECT"), tr("The project file (.vosk).")},
                {QStringLiteral("TRACK"), tr("The recorded ride: GPX or an NMEA 0183 log.")}};
    }
    int sharedOptions() const override { return OneRouteOption | FormatOption; }

    void addOptions(QCommandLineParser& parser) const override
    {
        parser.addOption({branchOption, tr("direct or reverse; the one with more stops announced when not given."),
                          tr("BRANCH")});
        parser.addOption({trackOption, tr("The track of the file to replay, counted from 1; the first when not given."),
                          tr("N"), QStringLiteral("1")});
    }

    int run(cCliContext& context) const override
    {
        const QString branch = context.parser().value(branchOption);
        if (!branch.isEmpty() && branch != QLatin1String("direct") && branch != QLatin1String("reverse")) {
            context.complain(tr("The branch is direct or reverse, not \"%1\".").arg(branch));
            return ExitUsage;
        }
        if (context.parser().values(QStringLiteral("route")).size() != 1) {
            context.complain(tr("replay needs one route: --route NAME."));
            return ExitUsage;
        }
        QList<cRoute> routes;
        if (!context.loadProject() || !context.selectRoutes(&routes))
            return ExitUsage;
        if (routes.size() > 1) {
            context.complain(tr("Several routes are named \"%1\"; give the route's number instead.")
                                 .arg(context.parser().value(QStringLiteral("route"))));
            return ExitUsage;
        }
        const cRoute& route = routes.first();

        cTrack track;
        if (!readTrack(context, &track))
            return ExitUsage;

        const cReplay replay(track);
        cReplayResult result;
        if (branch == QLatin1String("direct"))
            result = replay.replayBranch(route.direct, eBranchKind::Direct);
        else if (branch == QLatin1String("reverse"))
            result = replay.replayBranch(route.reverse, eBranchKind::Reverse);
        else
            result = replay.replayRoute(route);
        if (result.stops.isEmpty()) {
            context.complain(tr("The route \"%1\" has no stops to replay.").arg(route.name));
            return ExitUsage;
        }

        if (context.json())
            context.printJson(result.toJson());
        else
            printText(context.out(), route, result, branch.isEmpty());
        return result.clean() ? ExitOk : ExitProblems;
    }

private:
    static bool readTrack(cCliContext& context, cTrack* track)
    {
        const QString path = context.argument(1);
        cTrackFile file;
        QString error;
        if (!cTrackReader::read(path, &file, &error)) {
            context.complain(tr("Cannot read the track %1: %2").arg(path, error));
            return false;
        }
        bool isNumber = false;
        const int number = context.parser().value(trackOption).toInt(&isNumber);
        if (!isNumber || number < 1 || number > file.tracks.size()) {
            context.complain(tr("%1: no track \"%2\" (tracks in the file: %3).")
                                 .arg(path, context.parser().value(trackOption))
                                 .arg(file.tracks.size()));
            return false;
        }
        *track = file.tracks.at(number - 1);
        if (!cTrackReader::checkTimes(*track, &error)) {
            context.complain(tr("Cannot replay the track %1: %2").arg(path, error));
            return false;
        }
        return true;
    }

    // One line per stop and pass, then the summary; times in UTC as the
    // receiver recorded them, so that runs on different machines agree.
    static void printText(QTextStream& out, const cRoute& route, const cReplayResult& result, bool detected)
    {
        const QString branch = result.branch == eBranchKind::Direct ? tr("direct branch") : tr("reverse branch");
        out << (detected ? tr("Route \"%1\", %2 (detected)") : tr("Route \"%1\", %2")).arg(route.name, branch) << '\n';
        for (const cStopReplay& stop : result.stops) {
            QStringList parts{cReplay::statusText(stop.status)};
            if (stop.time != cTrackPoint::noTime)
                parts << QDateTime::fromMSecsSinceEpoch(stop.time, Qt::UTC).toString(QStringLiteral("HH:mm:ss"));
            if (!std::isnan(stop.heading))
                parts << tr("heading %1°").arg(qRound(stop.heading) % 360);
            parts << tr("closest %1 m").arg(qRound(stop.closestMetres));
            QString line = result.passes > 1 ? tr("pass %1, ").arg(stop.pass + 1) : QString();
            line += QStringLiteral("%1. %2: %3").arg(stop.stop + 1).arg(stop.name, parts.join(QStringLiteral(", ")));
            if (!stop.reason.isEmpty())
                line += QStringLiteral(" — %1").arg(stop.reason);
            out << QStringLiteral("  ") << line << '\n';
        }
        out << tr("Announced %1 of %2, missed %3, out of order %4, repeated %5.")
                   .arg(result.count(eStopStatus::Announced))
                   .arg(result.stops.size())
                   .arg(result.count(eStopStatus::Missed))
                   .arg(result.count(eStopStatus::OutOfOrder))
                   .arg(result.count(eStopStatus::Repeated))
            << '\n';
    }
};

} // namespace

const cCommand& replayCommand()
{
    static const cReplayCommand command;
    return command;
}
