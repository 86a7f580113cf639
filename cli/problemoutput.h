#ifndef VOSK_CLI_PROBLEMOUTPUT_H
#define VOSK_CLI_PROBLEMOUTPUT_H

#include "problem.h"

#include <QCoreApplication>
#include <QJsonObject>

class QTextStream;

// The check's findings as the command line prints them.
class cProblemOutput
{
    Q_DECLARE_TR_FUNCTIONS(cProblemOutput)

public:
    // One line each, then how many errors and warnings there are.
    static void printText(QTextStream& stream, const QList<cProblem>& problems);
    static QJsonObject json(const QList<cProblem>& problems);
};

#endif
