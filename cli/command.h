#ifndef VOSK_CLI_COMMAND_H
#define VOSK_CLI_COMMAND_H

#include "project.h"

#include <QCoreApplication>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class QCommandLineParser;
class QJsonObject;
class cProjectManager;
class QTextStream;

// Exit codes of every subcommand.
enum ExitCode { ExitOk = 0, ExitProblems = 1, ExitUsage = 2 };

// What a subcommand shares with the others: its parsed arguments, the
// project it reads, the routes chosen with --route, the output format and
// the two output streams.
class cCliContext
{
    Q_DECLARE_TR_FUNCTIONS(cCliContext)

public:
    cCliContext(const QCommandLineParser& parser, int sharedOptions, QTextStream& out, QTextStream& err);

    const QCommandLineParser& parser() const { return m_parser; }
    QString argument(int index) const;
    QTextStream& out() { return m_out; }
    QTextStream& err() { return m_err; }
    bool json() const;
    void printJson(const QJsonObject& object);
    // A line on stderr, after the program's name.
    void complain(const QString& text);

    // Reads the project named by the first argument. On failure the
    // reader's message is on stderr and the command ends with ExitUsage.
    bool loadProject();
    // The same for a project file that is read to be changed and saved.
    bool openProject(cProjectManager* manager, const QString& path);
    const cProject& project() const { return m_project; }
    QString projectPath() const { return argument(0); }
    // The routes named with --route (by name or number), in the project's
    // order; all of them without the option. An unknown name is reported
    // with the list of names.
    bool selectRoutes(QList<cRoute>* routes);

private:
    const QCommandLineParser& m_parser;
    int m_sharedOptions;
    QTextStream& m_out;
    QTextStream& m_err;
    cProject m_project;
};

// One subcommand of voskantor-cli: a name, its own options and what it does.
// Every subcommand is listed once, in commandTable().
class cCommand
{
public:
    // Options that the command line offers to the commands that want them:
    // --route repeatable, or given exactly once, and --format.
    enum SharedOption { RouteOption = 1, FormatOption = 2, OneRouteOption = 4 };

    virtual ~cCommand() = default;

    virtual QString name() const = 0;
    virtual QString summary() const = 0;
    // The arguments after the options, each with its description.
    virtual QList<QPair<QString, QString>> arguments() const = 0;
    virtual int sharedOptions() const = 0;
    virtual void addOptions(QCommandLineParser& parser) const;
    virtual int run(cCliContext& context) const = 0;
};

// Every subcommand, in the order the help lists them.
QList<const cCommand*> commandTable();

#endif
