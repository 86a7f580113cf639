#ifndef VOSK_PROBLEMLIST_H
#define VOSK_PROBLEMLIST_H

#include "problem.h"
#include "project.h"

struct cTextPlace;

// Collects problems, filling in the route and stop they belong to.
class cProblemList
{
public:
    void setRoute(const cRoute& route) { m_route = &route; }

    void addForExport(ProblemCode code, const QString& message);
    void addForRoute(ProblemCode code, const QString& message);
    void addForBranch(ProblemCode code, Branch branch, const QString& message);
    // `position` counts from 1.
    void addForStop(ProblemCode code, Branch branch, int position, const cStop& stop, const QString& message);
    void add(ProblemCode code, const cTextPlace& place, const QString& message);

    QList<cProblem> takeAll();

private:
    cProblem& append(ProblemCode code, const QString& message);

    const cRoute* m_route = nullptr;
    QList<cProblem> m_problems;
};

#endif
