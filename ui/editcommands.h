#ifndef VOSK_EDITCOMMANDS_H
#define VOSK_EDITCOMMANDS_H

#include "problem.h"
#include "project.h"
#include "rowmoves.h"

#include <QCoreApplication>
#include <QList>
#include <QPair>
#include <QUndoCommand>
#include <QUuid>

class cProjectHistory;

// What an undone or redone step touched, so that the window can show it:
// the route, and for stops the branch and the stops themselves.
struct cEditPlace
{
    QUuid routeId;
    Branch branch = Branch::None;
    QList<QUuid> stopIds;
};

// A route's own properties, everything but its id and branches.
struct cRouteFields
{
    QString name;
    QString short_name;
    QString type;
    bool play_sound = true;
    bool display_text = true;
    cBaseTexts base_sound;
    cBaseTexts base_text;

    static cRouteFields of(const cRoute& route);
    void applyTo(cRoute& route) const;
};

// One stop record before and after a change.
struct cStopChange
{
    QUuid routeId;
    Branch branch = Branch::None;
    cStop before;
    cStop after;

    void apply(cProject* project, bool forward) const;
};

// A step keeps only the values it changes. It is recorded after the panel
// has changed the records, so its first redo has nothing left to do.
class cEditCommand : public QUndoCommand
{
public:
    explicit cEditCommand(cProjectHistory* history);

    void undo() override;
    void redo() override;
    // All steps share one id, so that any of them can take in the write
    // that follows it (see cStopCommand's follow-up).
    int id() const final;
    bool mergeWith(const QUndoCommand* other) final;

protected:
    virtual cEditPlace apply(bool forward) = 0;
    // Continued typing of the same kind of step.
    virtual bool mergeTyping(const cEditCommand* next);
    // Typing merges only while the focus stays where it was.
    bool sameTypingSession(const cEditCommand* other) const;
    cProject* project() const;
    virtual const cStopChange* followUp() const;

private:
    cProjectHistory* m_history;
    int m_mergeEpoch;
    bool m_recorded = true;
    QList<cStopChange> m_followUps;
};

class cRouteFieldsCommand : public cEditCommand
{
    Q_DECLARE_TR_FUNCTIONS(cRouteFieldsCommand)

public:
    cRouteFieldsCommand(cProjectHistory* history, const QUuid& routeId, const cRouteFields& before,
                        const cRouteFields& after);
    static quint32 changedFields(const cRouteFields& a, const cRouteFields& b);

protected:
    cEditPlace apply(bool forward) override;
    bool mergeTyping(const cEditCommand* next) override;

private:
    void updateText();

    QUuid m_routeId;
    cRouteFields m_before;
    cRouteFields m_after;
    quint32 m_changed;
};

// Replaces one stop record in place; also the way a fix suggested from
// outside the editors is applied. A follow-up is the write of a form just
// loaded (its spin boxes write the stop back as shown): it belongs to the
// step before it, not to a step of its own.
class cStopCommand : public cEditCommand
{
    Q_DECLARE_TR_FUNCTIONS(cStopCommand)

public:
    cStopCommand(cProjectHistory* history, const cStopChange& change, const QString& text, bool isFollowUp);
    static quint32 changedFields(const cStop& a, const cStop& b);

protected:
    cEditPlace apply(bool forward) override;
    bool mergeTyping(const cEditCommand* next) override;
    const cStopChange* followUp() const override;

private:
    void updateText();

    cStopChange m_change;
    quint32 m_changed;
    bool m_fixedText;
    bool m_followUp;
};

// The alternate first and last stop names of one branch.
class cBranchNamesCommand : public cEditCommand
{
    Q_DECLARE_TR_FUNCTIONS(cBranchNamesCommand)

public:
    cBranchNamesCommand(cProjectHistory* history, const QUuid& routeId, Branch branch,
                        const QPair<QString, QString>& before, const QPair<QString, QString>& after);

protected:
    cEditPlace apply(bool forward) override;
    bool mergeTyping(const cEditCommand* next) override;

private:
    QUuid m_routeId;
    Branch m_branch;
    QPair<QString, QString> m_before;
    QPair<QString, QString> m_after;
};

// Stops taken out of a branch at their rows and others put in at theirs:
// adding, deleting, moving and mirroring stops alike.
class cBranchStopsCommand : public cEditCommand
{
public:
    cBranchStopsCommand(cProjectHistory* history, const QUuid& routeId, Branch branch,
                        const cRowEntries<cStop>& removed, const cRowEntries<cStop>& inserted,
                        const QString& text);

protected:
    cEditPlace apply(bool forward) override;

private:
    QUuid m_routeId;
    Branch m_branch;
    cRowEntries<cStop> m_removed;
    cRowEntries<cStop> m_inserted;
};

// Routes taken out of the project's list and others put in: adding,
// deleting, moving and importing routes. An import also renews the project's
// id, which this step keeps.
class cRouteListCommand : public cEditCommand
{
public:
    cRouteListCommand(cProjectHistory* history, const cRowEntries<cRoute>& removed,
                      const cRowEntries<cRoute>& inserted, const QString& text,
                      const QUuid& projectIdBefore = QUuid(), const QUuid& projectIdAfter = QUuid());

protected:
    cEditPlace apply(bool forward) override;

private:
    cRowEntries<cRoute> m_removed;
    cRowEntries<cRoute> m_inserted;
    QUuid m_projectIdBefore;
    QUuid m_projectIdAfter;
};

#endif
