#ifndef VOSK_PROBLEMSDOCK_H
#define VOSK_PROBLEMSDOCK_H

#include "problem.h"

#include <QDockWidget>
#include <QUuid>

class QLabel;
class QTableWidget;

// The findings of the last check: one row per problem with its severity,
// route, branch, stop and message. A double-click asks the window to show
// the place.
class cProblemsDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit cProblemsDock(QWidget* parent);

    void setProblems(const QList<cProblem>& problems);

signals:
    void problemActivated(const QUuid& routeId, Branch branch, const QUuid& stopId);

private:
    void rowActivated(int row);

    QLabel* summary;
    QTableWidget* table;
};

#endif
