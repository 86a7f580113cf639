#ifndef VOSK_PROJECTHISTORY_H
#define VOSK_PROJECTHISTORY_H

#include "editcommands.h"

#include <QObject>

class QUndoStack;
class cProjectManager;

// The undo history of the open project. Panels change the records as
// before and then record the step here; undo and redo change the records
// and report the place, for the window to show it.
class cProjectHistory : public QObject
{
    Q_OBJECT

public:
    cProjectHistory(cProjectManager* manager, QObject* parent);

    QUndoStack* stack() const { return m_stack; }
    cProject* project() const;
    int mergeEpoch() const { return m_mergeEpoch; }

    void routeFieldsEdited(const QUuid& routeId, const cRouteFields& before, const cRouteFields& after);
    // `text` names the step when it is not a plain edit in the stop editor.
    void stopEdited(const cStopChange& change, const QString& text = QString());
    // The stop as a form just loaded writes it back: part of the step before.
    void stopWrittenBack(const cStopChange& change);
    void branchNamesEdited(const QUuid& routeId, Branch branch, const QPair<QString, QString>& before,
                           const QPair<QString, QString>& after);
    void branchStopsChanged(const QUuid& routeId, Branch branch, const cRowEntries<cStop>& removed,
                            const cRowEntries<cStop>& inserted, const QString& text);
    void routeListChanged(const cRowEntries<cRoute>& removed, const cRowEntries<cRoute>& inserted,
                          const QString& text);

    // Brackets any import, of one route or several: the routes appended
    // between the two calls become one step.
    struct cImportMark
    {
        int routeCount = 0;
        QUuid projectId;
    };
    cImportMark beginImport() const;
    void endImport(const cImportMark& mark);

    void reportApplied(const cEditPlace& place);

signals:
    void applied(const cEditPlace& place);
    // After every step done, undone or redone, but not when the history is
    // cleared (a new project counts as modified although nothing is
    // undoable) nor for an import (which leaves the mark cleared).
    void cleanStateChanged(bool clean);

private:
    void record(cEditCommand* command);
    void clear();

    cProjectManager* m_manager;
    QUndoStack* m_stack;
    int m_mergeEpoch = 0;
    bool m_quiet = false;
};

#endif
