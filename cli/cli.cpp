#include "cli.h"

#include "command.h"

#include <QCommandLineParser>
#include <QMutex>
#include <QTextStream>

#include <cstdio>

namespace {

QMutex messagesMutex;
bool verboseMessages = false;
QString lastDebugLine;

void printMessage(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    QMutexLocker lock(&messagesMutex);
    if (type == QtDebugMsg || type == QtInfoMsg) {
        lastDebugLine = message;
        if (!verboseMessages)
            return;
    }
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    std::fflush(stderr);
}

QTextStream& complain(QTextStream& err)
{
    return err << QCoreApplication::applicationName() << QStringLiteral(": ");
}

} // namespace

void setVerboseMessages(bool verbose)
{
    QMutexLocker lock(&messagesMutex);
    verboseMessages = verbose;
    lastDebugLine.clear();
    qInstallMessageHandler(printMessage);
}

QString lastDebugMessage()
{
    QMutexLocker lock(&messagesMutex);
    return lastDebugLine;
}

QString cCli::overview()
{
    QString text = tr("Usage: voskantor-cli COMMAND [options] ARGUMENTS\n"
                      "Checks, describes and exports Voskantor projects and imports routes into them, without a "
                      "window.\n\n"
                      "Commands:\n");
    for (const cCommand* command : commandTable())
        text += QStringLiteral("  %1  %2\n").arg(command->name(), -11).arg(command->summary());
    text += tr("\nvoskantor-cli COMMAND --help describes a command's options.\n"
               "Exit codes: 0 done, 1 problems found, the ride misses a stop, the export failed or a route is not in "
               "the feed, 2 wrong arguments or an unreadable project or feed.\n");
    return text;
}

int cCli::run(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    // The command comes first; everything after it is the command's.
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QString());
    if (!parser.parse(arguments)) {
        complain(err) << parser.errorText() << '\n' << overview();
        return ExitUsage;
    }
    if (parser.isSet(help)) {
        out << overview();
        return ExitOk;
    }
    if (parser.isSet(version)) {
        out << QCoreApplication::applicationName() << ' ' << QCoreApplication::applicationVersion() << '\n';
        return ExitOk;
    }
    const QString name = parser.positionalArguments().value(0);
    for (const cCommand* command : commandTable()) {
        if (command->name() == name)
            return runCommand(*command, arguments, out, err);
    }
    if (!name.isEmpty())
        complain(err) << tr("Unknown command \"%1\".").arg(name) << '\n';
    err << overview();
    return ExitUsage;
}

int cCli::runCommand(const cCommand& command, const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(command.summary());
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption verbose(QStringLiteral("verbose"),
                                     tr("Print the debug lines of reading and converting on stderr."));
    parser.addOption(verbose);
    if (command.sharedOptions() & cCommand::RouteOption)
        parser.addOption({QStringLiteral("route"),
                          tr("Only the route with this name or number; may be given more than once."), tr("NAME")});
    else if (command.sharedOptions() & cCommand::OneRouteOption)
        parser.addOption({QStringLiteral("route"), tr("The route with this name or number; needed once."), tr("NAME")});
    if (command.sharedOptions() & cCommand::FormatOption)
        parser.addOption({QStringLiteral("format"), tr("Output as text or json; text when not given."), tr("FORMAT"),
                          QStringLiteral("text")});
    command.addOptions(parser);
    // The command's own name stands first, so that the usage line shows it.
    parser.addPositionalArgument(command.name(), tr("This command."), command.name());
    QStringList names;
    for (const auto& argument : command.arguments()) {
        parser.addPositionalArgument(argument.first, argument.second);
        names << argument.first;
    }

    if (!parser.parse(arguments)) {
        complain(err) << parser.errorText() << '\n';
        return ExitUsage;
    }
    if (parser.isSet(help)) {
        out << parser.helpText();
        return ExitOk;
    }
    if (parser.positionalArguments().size() != names.size() + 1) {
        complain(err) << tr("%1 needs: %2.").arg(command.name(), names.join(QLatin1Char(' '))) << '\n'
            << tr("voskantor-cli %1 --help describes its options.").arg(command.name()) << '\n';
        return ExitUsage;
    }
    if ((command.sharedOptions() & cCommand::FormatOption)
        && !QStringList{QStringLiteral("text"), QStringLiteral("json")}.contains(
            parser.value(QStringLiteral("format")))) {
        complain(err) << tr("The format is text or json, not \"%1\".").arg(parser.value(QStringLiteral("format"))) << '\n';
        return ExitUsage;
    }
    setVerboseMessages(parser.isSet(verbose));
    cCliContext context(parser, command.sharedOptions(), out, err);
    return command.run(context);
}
