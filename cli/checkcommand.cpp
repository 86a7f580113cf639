#include "command.h"
#include "commands.h"
#include "converter.h"
#include "problemoutput.h"
#include "routecheck.h"

#include <QCommandLineParser>
#include <QTextStream>

namespace {

const QString outputOption = QStringLiteral("output");
const QString noProbeOption = QStringLiteral("no-probe");

class cCheckCommand : public cCommand
{
    Q_DECLARE_TR_FUNCTIONS(cCheckCommand)

public:
    QString name() const override { return QStringLiteral("check"); }
    QString summary() const override
    {
        return tr("Looks for what would make the device announce a route wrongly or not at all.");
    }
    QList<QPair<QString, QString>> arguments() const override
    {
        return {{QStringLiteral("PROJECT"), tr("The project file (.vosk).")}};
    }
    int sharedOptions() const override { return RouteOption | FormatOption; }

    void addOptions(QCommandLineParser& parser) const override
    {
        parser.addOption({outputOption, tr("The folder the export will write into, to find sounds lying in it."),
                          tr("DIR")});
        parser.addOption({noProbeOption, tr("Only see that sound files exist; do not read them.")});
    }

    int run(cCliContext& context) const override
    {
        QList<cRoute> routes;
        if (!context.loadProject() || !context.selectRoutes(&routes))
            return ExitUsage;
        cCheckOptions options;
        options.converter = cConverter::program();
        options.outputDir = context.parser().value(outputOption);
        options.readSoundHeaders = !context.parser().isSet(noProbeOption);
        const QList<cProblem> problems = cRouteCheck::run(routes, options);
        if (context.json())
            context.printJson(cProblemOutput::json(problems));
        else
            cProblemOutput::printText(context.out(), problems);
        return errorCount(problems) > 0 ? ExitProblems : ExitOk;
    }
};

} // namespace

const cCommand& checkCommand()
{
    static const cCheckCommand command;
    return command;
}
