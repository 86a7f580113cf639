#ifndef VOSK_STOPFIXER_H
#define VOSK_STOPFIXER_H

#include "project.h"
#include "replayresult.h"

#include <QObject>
#include <QUuid>

class cProjectManager;

// Writes suggested fixes into the project's stops: the one way a replay
// changes the project. Each write is announced as the stop editor announces
// its own, so the modified mark, the autosave and the open editors follow.
class cStopFixer : public QObject
{
    Q_OBJECT

public:
    explicit cStopFixer(cProjectManager* manager, QObject* parent = nullptr);

    // Sets the radius or the course value of the stop with this id; false,
    // and nothing announced, when the project has no such stop.
    bool apply(const QUuid& stopId, const cSuggestedFix& fix);

signals:
    void stopChanged(const QUuid& id);
    // The record before and after a fix, so the edit history can take it
    // back as one step.
    void stopFixed(const QUuid& routeId, bool reverse, const cStop& before, const cStop& after);

private:
    cProjectManager* m_manager;
};

#endif
