#include "command.h"
#include "commands.h"
#include "converter.h"
#include "exportnames.h"
#include "problemoutput.h"
#include "routecheck.h"
#include "routeexport.h"

#include <QCommandLineParser>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QTextStream>

#include <unistd.h>

namespace {

const QString forceOption = QStringLiteral("force");

class cExportCommand : public cCommand
{
    Q_DECLARE_TR_FUNCTIONS(cExportCommand)

public:
    QString name() const override { return QStringLiteral("export"); }
    QString summary() const override
    {
        return tr("Writes the routes' scripts and converted sounds for the device, as the window's export does.");
    }
    QList<QPair<QString, QString>> arguments() const override
    {
        return {{QStringLiteral("PROJECT"), tr("The project file (.vosk).")},
                {QStringLiteral("OUTDIR"), tr("The folder to write into: scripts go to route, sounds to voskdev.")}};
    }
    int sharedOptions() const override { return RouteOption; }

    void addOptions(QCommandLineParser& parser) const override
    {
        parser.addOption({forceOption, tr("Export even when the check finds errors.")});
    }

    int run(cCliContext& context) const override
    {
        QList<cRoute> routes;
        if (!context.loadProject() || !context.selectRoutes(&routes))
            return ExitUsage;
        const QString outputDir = context.argument(1);

        cCheckOptions options;
        options.converter = cConverter::program();
        options.outputDir = outputDir;
        const QList<cProblem> problems = cRouteCheck::run(routes, options);
        if (!problems.isEmpty())
            cProblemOutput::printText(context.err(), problems);
        if (errorCount(problems) > 0 && !context.parser().isSet(forceOption)) {
            context.complain(tr("Nothing exported: the check found errors. --force exports all the same."));
            return ExitProblems;
        }

        // The window's dialog offers folders that exist; a script may name
        // a new one.
        if (!QDir().mkpath(outputDir)) {
            context.complain(tr("Cannot make the folder %1").arg(outputDir));
            return ExitProblems;
        }
        QList<cExportItem> items;
        for (const cRoute& route : qAsConst(routes))
            items << cExportItem{route, scriptFileName(route)};
        int soundCount = 0;
        const cExportResult result = exportRoutes(context, items, outputDir, &soundCount);
        for (const QString& file : result.failedFiles)
            context.complain(tr("Failed: %1").arg(file));
        for (const QString& difference : result.differences)
            context.complain(difference);
        if (!result.ok())
            return ExitProblems;
        context.out() << tr("Exported %1 routes and %2 sounds into %3.")
                             .arg(QString::number(items.size()), QString::number(soundCount),
                                  QFileInfo(outputDir).absoluteFilePath())
                      << '\n';
        return ExitOk;
    }

private:
    static cExportResult exportRoutes(cCliContext& context, const QList<cExportItem>& items,
                                      const QString& outputDir, int* soundCount)
    {
        cRouteExport routeExport;
        QEventLoop loop;
        cExportResult result;
        QObject::connect(&routeExport, &cRouteExport::scriptNotOpened, [&context](const QString& path) {
            context.complain(tr("Cannot write %1").arg(path));
        });
        // Progress is for a person watching, not for a log.
        const bool terminal = isatty(STDERR_FILENO);
        int done = 0;
        QString last;
        QObject::connect(&routeExport, &cRouteExport::fileProcessed, [&](const QString& fn) {
            // A file may be reported twice in a row; it counts once.
            if (!terminal || fn == last)
                return;
            last = fn;
            context.err() << QStringLiteral("\r\033[K")
                          << tr("Converted %1 of %2: %3")
                                 .arg(QString::number(++done), QString::number(routeExport.sounds().size()),
                                      QFileInfo(fn).fileName());
            context.err().flush();
        });
        QObject::connect(&routeExport, &cRouteExport::finished, [&](const cExportResult& finished) {
            result = finished;
            loop.quit();
        });
        routeExport.start(items, outputDir);
        *soundCount = routeExport.sounds().size();
        if (routeExport.isRunning())
            loop.exec();
        // The progress line goes before the result is printed on stdout.
        if (terminal && done > 0) {
            context.err() << QStringLiteral("\r\033[K");
            context.err().flush();
        }
        return result;
    }
};

} // namespace

const cCommand& exportCommand()
{
    static const cExportCommand command;
    return command;
}
