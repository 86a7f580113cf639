#include "problem.h"

namespace {

struct cCodeInfo
{
    const char* text;
    Severity severity;
};

// In the order of ProblemCode.
const cCodeInfo codeInfo[] = {
    {"missing-sound", Severity::Error},
    {"undecodable-sound", Severity::Error},
    {"sound-name-clash", Severity::Error},
    {"script-name-clash", Severity::Error},
    {"unplaced-stop", Severity::Error},
    {"bad-coordinate", Severity::Error},
    {"bad-radius", Severity::Error},
    {"bad-course", Severity::Error},
    {"empty-branch", Severity::Warning},
    {"zone-overlap", Severity::Warning},
    {"course-mismatch", Severity::Warning},
    {"direction-ambiguous", Severity::Warning},
    {"far-jump", Severity::Warning},
    {"duplicate-stop", Severity::Warning},
    {"empty-name", Severity::Warning},
    {"bad-text", Severity::Warning},
    {"unsafe-text", Severity::Error},
    {"source-in-output", Severity::Error},
    {"no-ffmpeg", Severity::Error},
};

static_assert(sizeof(codeInfo) / sizeof(codeInfo[0]) == int(ProblemCode::NoFfmpeg) + 1,
              "every problem code has its text and severity");

} // namespace

Severity cProblem::severity() const
{
    return codeInfo[int(code)].severity;
}

QString cProblem::codeText() const
{
    return QLatin1String(codeInfo[int(code)].text);
}

QString cProblemText::severity(Severity severity)
{
    return severity == Severity::Error ? tr("Error") : tr("Warning");
}

QString cProblemText::branch(Branch branch)
{
    switch (branch) {
    case Branch::Direct:
        return tr("direct");
    case Branch::Reverse:
        return tr("reverse");
    case Branch::None:
        break;
    }
    return QString();
}

QString cProblemText::place(const cProblem& problem)
{
    if (problem.routeId.isNull())
        return tr("All routes");
    QString place = tr("Route \"%1\"").arg(problem.routeName);
    if (problem.branch != Branch::None)
        place += QStringLiteral(", ") + branch(problem.branch);
    if (problem.stop > 0)
        place += QStringLiteral(", ") + tr("stop %1 \"%2\"").arg(problem.stop).arg(problem.stopName);
    return place;
}

int errorCount(const QList<cProblem>& problems)
{
    return int(std::count_if(problems.begin(), problems.end(),
                             [](const cProblem& p) { return p.severity() == Severity::Error; }));
}
