#ifndef VOSK_CLI_H
#define VOSK_CLI_H

#include <QCoreApplication>
#include <QStringList>

class QTextStream;
class cCommand;

// voskantor-cli's own part: finds the subcommand, parses its options, sets
// up what every subcommand shares and runs it. Returns the exit code.
class cCli
{
    Q_DECLARE_TR_FUNCTIONS(cCli)

public:
    static int run(const QStringList& arguments, QTextStream& out, QTextStream& err);

private:
    static QString overview();
    static int runCommand(const cCommand& command, const QStringList& arguments, QTextStream& out,
                          QTextStream& err);
};

// Debug lines (the project reader's among them) reach stderr only when
// asked for; the window's log folder is never written.
void setVerboseMessages(bool verbose);
// The last debug line sent, printed or not: the project reader says there
// why a project table could not be read.
QString lastDebugMessage();

#endif
