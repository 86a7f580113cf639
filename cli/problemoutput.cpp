#include "problemoutput.h"

#include <QJsonArray>
#include <QTextStream>

void cProblemOutput::printText(QTextStream& stream, const QList<cProblem>& problems)
{
    for (const cProblem& problem : problems)
        stream << QStringLiteral("%1: %2: %3 [%4]\n")
                      .arg(cProblemText::severity(problem.severity()), cProblemText::place(problem), problem.message,
                           problem.codeText());
    const int errors = errorCount(problems);
    if (problems.isEmpty())
        stream << tr("No problems found.") << '\n';
    else
        stream << tr("Errors: %1, warnings: %2.").arg(errors).arg(problems.size() - errors) << '\n';
}

QJsonObject cProblemOutput::json(const QList<cProblem>& problems)
{
    QJsonArray list;
    for (const cProblem& problem : problems) {
        QJsonObject item{{QStringLiteral("code"), problem.codeText()},
                         {QStringLiteral("severity"), problem.severity() == Severity::Error ? QStringLiteral("error")
                                                                                            : QStringLiteral("warning")},
                         {QStringLiteral("message"), problem.message}};
        if (!problem.routeId.isNull())
            item.insert(QStringLiteral("route"), problem.routeName);
        if (problem.branch != Branch::None)
            item.insert(QStringLiteral("branch"), problem.branch == Branch::Direct ? QStringLiteral("direct")
                                                                                   : QStringLiteral("reverse"));
        if (problem.stop > 0) {
            item.insert(QStringLiteral("stop"), problem.stop);
            item.insert(QStringLiteral("stop_name"), problem.stopName);
        }
        list.append(item);
    }
    return {{QStringLiteral("problems"), list}};
}
