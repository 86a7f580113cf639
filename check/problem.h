#ifndef VOSK_PROBLEM_H
#define VOSK_PROBLEM_H

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QUuid>

// One finding of the route checks. Codes are stable: scripts and the
// command line's JSON rely on their text.
enum class ProblemCode {
    MissingSound,
    UndecodableSound,
    SoundNameClash,
    ScriptNameClash,
    UnplacedStop,
    BadCoordinate,
    BadRadius,
    BadCourse,
    EmptyBranch,
    ZoneOverlap,
    CourseMismatch,
    DirectionAmbiguous,
    FarJump,
    DuplicateStop,
    EmptyName,
    BadText,
    UnsafeText,
    SourceInOutput,
    NoFfmpeg,
};

// Errors make the device announce wrongly or not at all; warnings are
// likely mistakes that a person should look at.
enum class Severity { Error, Warning };

enum class Branch { None, Direct, Reverse };

struct cProblem
{
    ProblemCode code = ProblemCode::MissingSound;
    // Null for a problem of the whole export rather than of one route.
    QUuid routeId;
    QString routeName;
    Branch branch = Branch::None;
    // Position in the branch, from 1; 0 when the problem is not a stop's.
    int stop = 0;
    QUuid stopId;
    QString stopName;
    QString message;

    Severity severity() const;
    QString codeText() const;
};

// Texts for people, translated.
class cProblemText
{
    Q_DECLARE_TR_FUNCTIONS(cProblemText)

public:
    static QString severity(Severity severity);
    static QString branch(Branch branch);
    // Where the problem is: route, branch and stop, as far as it has them.
    static QString place(const cProblem& problem);
};

int errorCount(const QList<cProblem>& problems);

#endif
