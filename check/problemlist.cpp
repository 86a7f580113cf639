#include "problemlist.h"

#include "textrules.h"

cProblem& cProblemList::append(ProblemCode code, const QString& message)
{
    cProblem problem;
    problem.code = code;
    problem.message = message;
    m_problems.append(problem);
    return m_problems.last();
}

void cProblemList::addForExport(ProblemCode code, const QString& message)
{
    append(code, message);
}

void cProblemList::addForRoute(ProblemCode code, const QString& message)
{
    cProblem& problem = append(code, message);
    problem.routeId = m_route->id;
    problem.routeName = m_route->name;
}

void cProblemList::addForBranch(ProblemCode code, Branch branch, const QString& message)
{
    addForRoute(code, message);
    m_problems.last().branch = branch;
}

void cProblemList::addForStop(ProblemCode code, Branch branch, int position, const cStop& stop,
                              const QString& message)
{
    addForBranch(code, branch, message);
    cProblem& problem = m_problems.last();
    problem.stop = position;
    problem.stopId = stop.id;
    problem.stopName = stop.name;
}

void cProblemList::add(ProblemCode code, const cTextPlace& place, const QString& message)
{
    if (place.stopRecord)
        addForStop(code, place.branch, place.stop, *place.stopRecord, message);
    else if (place.branch != Branch::None)
        addForBranch(code, place.branch, message);
    else
        addForRoute(code, message);
}

QList<cProblem> cProblemList::takeAll()
{
    QList<cProblem> all;
    all.swap(m_problems);
    return all;
}
