#ifndef VOSK_STOPCHECKS_H
#define VOSK_STOPCHECKS_H

#include "problem.h"
#include "project.h"

#include <QCoreApplication>

class cProblemList;

// The checks of where stops are and how their zones and course windows sit
// against each other, as the device will judge them on the road.
class cStopChecks
{
    Q_DECLARE_TR_FUNCTIONS(cStopChecks)

public:
    // Thresholds after public transit feed validators.
    static constexpr double duplicateMetres = 2.0;
    static constexpr double farJumpFactor = 10.0;
    static constexpr double farJumpMinimumMetres = 5000.0;
    static constexpr int largestRadius = 1000;

    // The stop's own values: coordinates, radius, course window.
    static void checkStop(cProblemList& problems, Branch branch, int position, const cStop& stop);
    // Consecutive stops of one branch.
    static void checkBranch(cProblemList& problems, Branch branch, const QList<cStop>& stops);
    // Direct against reverse stops of one route.
    static void checkDirections(cProblemList& problems, const cRoute& route);

    // Whether the stop's centre is a real place on the map, so that distances
    // to it mean something.
    static bool isPlaced(const cStop& stop);
};

#endif
