#include "projecthistory.h"

#include "projectmanager.h"

#include <QApplication>
#include <QUndoStack>
#include <QWidget>

cProjectHistory::cProjectHistory(cProjectManager* manager, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
    , m_stack(new QUndoStack(this))
{
    // New and opened projects start a history of their own.
    connect(manager, &cProjectManager::projectCreated, this, &cProjectHistory::clear);
    connect(manager, &cProjectManager::projectSaved, m_stack, &QUndoStack::setClean);
    connect(m_stack, &QUndoStack::indexChanged, this, [this] {
        if (!m_quiet)
            emit cleanStateChanged(m_stack->isClean());
    });
    connect(qApp, &QApplication::focusChanged, this, [this] { ++m_mergeEpoch; });
}

cProject* cProjectHistory::project() const
{
    return m_manager->project();
}

void cProjectHistory::clear()
{
    m_quiet = true;
    m_stack->clear();
    m_quiet = false;
}

void cProjectHistory::record(cEditCommand* command)
{
    m_stack->push(command);
}

void cProjectHistory::reportApplied(const cEditPlace& place)
{
    emit applied(place);
}

void cProjectHistory::routeFieldsEdited(const QUuid& routeId, const cRouteFields& before,
                                        const cRouteFields& after)
{
    if (cRouteFieldsCommand::changedFields(before, after) != 0)
        record(new cRouteFieldsCommand(this, routeId, before, after));
}

void cProjectHistory::stopEdited(const cStopChange& change, const QString& text)
{
    if (cStopCommand::changedFields(change.before, change.after) != 0)
        record(new cStopCommand(this, change, text, false));
}

void cProjectHistory::stopWrittenBack(const cStopChange& change)
{
    if (cStopCommand::changedFields(change.before, change.after) != 0)
        record(new cStopCommand(this, change, QString(), true));
}

void cProjectHistory::branchNamesEdited(const QUuid& routeId, Branch branch, const QPair<QString, QString>& before,
                                        const QPair<QString, QString>& after)
{
    if (before != after)
        record(new cBranchNamesCommand(this, routeId, branch, before, after));
}

void cProjectHistory::branchStopsChanged(const QUuid& routeId, Branch branch, const cRowEntries<cStop>& removed,
                                         const cRowEntries<cStop>& inserted, const QString& text)
{
    if (!removed.isEmpty() || !inserted.isEmpty())
        record(new cBranchStopsCommand(this, routeId, branch, removed, inserted, text));
}

void cProjectHistory::routeListChanged(const cRowEntries<cRoute>& removed, const cRowEntries<cRoute>& inserted,
                                       const QString& text)
{
    if (!removed.isEmpty() || !inserted.isEmpty())
        record(new cRouteListCommand(this, removed, inserted, text));
}

cProjectHistory::cImportMark cProjectHistory::beginImport() const
{
    return {project()->routes.size(), project()->id};
}

void cProjectHistory::endImport(const cImportMark& mark)
{
    const QList<cRoute>& routes = project()->routes;
    if (routes.size() <= mark.routeCount)
        return;
    cRowEntries<cRoute> inserted;
    for (int row = mark.routeCount; row < routes.size(); ++row)
        inserted << qMakePair(row, routes.at(row));
    const QString text = inserted.size() == 1 ? tr("Import route '%1'").arg(inserted.first().second.name)
                                              : tr("Import %n routes", nullptr, inserted.size());
    // An import leaves the project unmodified, as after opening it; undoing
    // or redoing it is a change like any other.
    m_quiet = true;
    record(new cRouteListCommand(this, {}, inserted, text, mark.projectId, project()->id));
    m_quiet = false;
}
