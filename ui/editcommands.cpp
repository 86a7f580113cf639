#include "editcommands.h"

#include "projecthistory.h"

#include <algorithm>
#include <typeinfo>
#include <initializer_list>

namespace {

// Bits of the stop fields, in the order of the record.
enum StopField : quint32 {
    StopName = 1u << 0,
    StopFullName = 1u << 1,
    StopKey = 1u << 2,
    StopLon = 1u << 3,
    StopLat = 1u << 4,
    StopRadius = 1u << 5,
    StopCourseEnabled = 1u << 6,
    StopCourseValue = 1u << 7,
    StopCourseDiff = 1u << 8,
    StopSound = 1u << 9,
    StopOtherSounds = 1u << 10,
    StopOtherText = 1u << 11,
};
// Fields a user types into, one step per field and focus.
const quint32 stopTypingFields =
    StopName | StopFullName | StopLon | StopLat | StopRadius | StopCourseValue | StopCourseDiff | StopOtherText;
// What the map sets.
const quint32 stopPlaceFields = StopLon | StopLat | StopCourseEnabled | StopCourseValue | StopCourseDiff;

enum RouteField : quint32 {
    RouteName = 1u << 0,
    RouteShortName = 1u << 1,
    RouteTextCurrent = 1u << 8,
    RouteTextNext = 1u << 9,
    RouteTextLast = 1u << 10,
};
const quint32 routeTypingFields = RouteName | RouteShortName | RouteTextCurrent | RouteTextNext | RouteTextLast;

quint32 maskOf(std::initializer_list<bool> differs)
{
    quint32 mask = 0;
    quint32 bit = 1;
    for (bool differ : differs) {
        if (differ)
            mask |= bit;
        bit <<= 1;
    }
    return mask;
}

bool isSingleField(quint32 mask)
{
    return mask != 0 && (mask & (mask - 1)) == 0;
}

cRoute* routeById(cProject* project, const QUuid& id)
{
    for (cRoute& route : project->routes) {
        if (route.id == id)
            return &route;
    }
    return nullptr;
}

cBranch* branchOf(cProject* project, const QUuid& routeId, Branch branch)
{
    cRoute* route = routeById(project, routeId);
    if (!route)
        return nullptr;
    return branch == Branch::Reverse ? &route->reverse : &route->direct;
}

// The records put in, or when only some were taken, the one that now
// stands where they were.
template <typename T>
QList<QUuid> placeAfterSplice(const QList<T>& list, const cRowEntries<T>& take, const cRowEntries<T>& put)
{
    QList<QUuid> ids;
    for (const auto& entry : put)
        ids << entry.second.id;
    if (ids.isEmpty() && !take.isEmpty() && !list.isEmpty())
        ids << list.at(std::min(take.first().first, list.size() - 1)).id;
    return ids;
}

} // namespace

cRouteFields cRouteFields::of(const cRoute& route)
{
    return {route.name,         route.short_name,       route.type, route.play_sound,
            route.display_text, route.base_sound, route.base_text};
}

void cRouteFields::applyTo(cRoute& route) const
{
    route.name = name;
    route.short_name = short_name;
    route.type = type;
    route.play_sound = play_sound;
    route.display_text = display_text;
    route.base_sound = base_sound;
    route.base_text = base_text;
}

void cStopChange::apply(cProject* project, bool forward) const
{
    cBranch* stops = branchOf(project, routeId, branch);
    if (!stops)
        return;
    for (cStop& stop : stops->stops) {
        if (stop.id == after.id) {
            stop = forward ? after : before;
            return;
        }
    }
}

cEditCommand::cEditCommand(cProjectHistory* history)
    : m_history(history)
    , m_mergeEpoch(history->mergeEpoch())
{
}

void cEditCommand::redo()
{
    if (m_recorded) {
        m_recorded = false;
        return;
    }
    const cEditPlace place = apply(true);
    for (const cStopChange& change : qAsConst(m_followUps))
        change.apply(project(), true);
    m_history->reportApplied(place);
}

void cEditCommand::undo()
{
    for (int i = m_followUps.size() - 1; i >= 0; --i)
        m_followUps.at(i).apply(project(), false);
    m_history->reportApplied(apply(false));
}

int cEditCommand::id() const
{
    return 1;
}

bool cEditCommand::mergeWith(const QUndoCommand* other)
{
    const auto* next = static_cast<const cEditCommand*>(other);
    if (const cStopChange* change = next->followUp()) {
        m_followUps << *change;
        return true;
    }
    return m_followUps.isEmpty() && typeid(*next) == typeid(*this) && mergeTyping(next);
}

bool cEditCommand::mergeTyping(const cEditCommand*)
{
    return false;
}

const cStopChange* cEditCommand::followUp() const
{
    return nullptr;
}

bool cEditCommand::sameTypingSession(const cEditCommand* other) const
{
    return other->m_mergeEpoch == m_mergeEpoch;
}

cProject* cEditCommand::project() const
{
    return m_history->project();
}

cRouteFieldsCommand::cRouteFieldsCommand(cProjectHistory* history, const QUuid& routeId, const cRouteFields& before,
                                         const cRouteFields& after)
    : cEditCommand(history)
    , m_routeId(routeId)
    , m_before(before)
    , m_after(after)
    , m_changed(changedFields(before, after))
{
    updateText();
}

quint32 cRouteFieldsCommand::changedFields(const cRouteFields& a, const cRouteFields& b)
{
    return maskOf({a.name != b.name, a.short_name != b.short_name, a.type != b.type, a.play_sound != b.play_sound,
                   a.display_text != b.display_text, a.base_sound.current != b.base_sound.current,
                   a.base_sound.next != b.base_sound.next, a.base_sound.last != b.base_sound.last,
                   a.base_text.current != b.base_text.current, a.base_text.next != b.base_text.next,
                   a.base_text.last != b.base_text.last});
}

bool cRouteFieldsCommand::mergeTyping(const cEditCommand* other)
{
    const auto* next = static_cast<const cRouteFieldsCommand*>(other);
    if (next->m_routeId != m_routeId || next->m_changed != m_changed || !isSingleField(m_changed)
        || (m_changed & routeTypingFields) == 0 || !sameTypingSession(next))
        return false;
    m_after = next->m_after;
    updateText();
    return true;
}

void cRouteFieldsCommand::updateText()
{
    setText(m_changed == RouteName ? tr("Rename route '%1'").arg(m_before.name)
                                   : tr("Edit route '%1'").arg(m_after.name));
}

cEditPlace cRouteFieldsCommand::apply(bool forward)
{
    if (cRoute* route = routeById(project(), m_routeId))
        (forward ? m_after : m_before).applyTo(*route);
    return {m_routeId, Branch::None, {}};
}

cStopCommand::cStopCommand(cProjectHistory* history, const cStopChange& change, const QString& text,
                           bool isFollowUp)
    : cEditCommand(history)
    , m_change(change)
    , m_changed(changedFields(change.before, change.after))
    , m_fixedText(!text.isEmpty())
    , m_followUp(isFollowUp)
{
    if (m_fixedText)
        setText(text);
    else
        updateText();
}

quint32 cStopCommand::changedFields(const cStop& a, const cStop& b)
{
    return maskOf({a.name != b.name, a.full_name != b.full_name, a.is_key_stop != b.is_key_stop, a.lon != b.lon,
                   a.lat != b.lat, a.radius != b.radius, a.course_enabled != b.course_enabled,
                   a.course_value != b.course_value, a.course_diff != b.course_diff, a.sound != b.sound,
                   a.other_sounds != b.other_sounds, a.other_text != b.other_text});
}

bool cStopCommand::mergeTyping(const cEditCommand* other)
{
    const auto* next = static_cast<const cStopCommand*>(other);
    if (m_fixedText || next->m_fixedText || next->m_change.routeId != m_change.routeId
        || next->m_change.branch != m_change.branch || next->m_change.after.id != m_change.after.id
        || next->m_changed != m_changed || !isSingleField(m_changed) || (m_changed & stopTypingFields) == 0
        || !sameTypingSession(next))
        return false;
    m_change.after = next->m_change.after;
    updateText();
    return true;
}

const cStopChange* cStopCommand::followUp() const
{
    return m_followUp ? &m_change : nullptr;
}

void cStopCommand::updateText()
{
    if (m_changed == StopName)
        setText(tr("Rename stop '%1'").arg(m_change.before.name));
    else if ((m_changed & (StopLon | StopLat)) != 0 && (m_changed & ~stopPlaceFields) == 0)
        setText(tr("Place stop '%1'").arg(m_change.after.name));
    else
        setText(tr("Edit stop '%1'").arg(m_change.after.name));
}

cEditPlace cStopCommand::apply(bool forward)
{
    m_change.apply(project(), forward);
    return {m_change.routeId, m_change.branch, {m_change.after.id}};
}

cBranchNamesCommand::cBranchNamesCommand(cProjectHistory* history, const QUuid& routeId, Branch branch,
                                         const QPair<QString, QString>& before, const QPair<QString, QString>& after)
    : cEditCommand(history)
    , m_routeId(routeId)
    , m_branch(branch)
    , m_before(before)
    , m_after(after)
{
    setText(tr("Edit branch names"));
}

bool cBranchNamesCommand::mergeTyping(const cEditCommand* other)
{
    const auto* next = static_cast<const cBranchNamesCommand*>(other);
    const auto changed = [](const cBranchNamesCommand* command) {
        return maskOf({command->m_before.first != command->m_after.first,
                       command->m_before.second != command->m_after.second});
    };
    if (next->m_routeId != m_routeId || next->m_branch != m_branch || changed(next) != changed(this)
        || !isSingleField(changed(this)) || !sameTypingSession(next))
        return false;
    m_after = next->m_after;
    return true;
}

cEditPlace cBranchNamesCommand::apply(bool forward)
{
    if (cBranch* branch = branchOf(project(), m_routeId, m_branch)) {
        const QPair<QString, QString>& names = forward ? m_after : m_before;
        branch->first = names.first;
        branch->last = names.second;
    }
    return {m_routeId, m_branch, {}};
}

cBranchStopsCommand::cBranchStopsCommand(cProjectHistory* history, const QUuid& routeId, Branch branch,
                                         const cRowEntries<cStop>& removed, const cRowEntries<cStop>& inserted,
                                         const QString& text)
    : cEditCommand(history)
    , m_routeId(routeId)
    , m_branch(branch)
    , m_removed(removed)
    , m_inserted(inserted)
{
    setText(text);
}

cEditPlace cBranchStopsCommand::apply(bool forward)
{
    cBranch* branch = branchOf(project(), m_routeId, m_branch);
    if (!branch)
        return {m_routeId, m_branch, {}};
    const cRowEntries<cStop>& take = forward ? m_removed : m_inserted;
    const cRowEntries<cStop>& put = forward ? m_inserted : m_removed;
    spliceRows(branch->stops, take, put);
    return {m_routeId, m_branch, placeAfterSplice(branch->stops, take, put)};
}

cRouteListCommand::cRouteListCommand(cProjectHistory* history, const cRowEntries<cRoute>& removed,
                                     const cRowEntries<cRoute>& inserted, const QString& text,
                                     const QUuid& projectIdBefore, const QUuid& projectIdAfter)
    : cEditCommand(history)
    , m_removed(removed)
    , m_inserted(inserted)
    , m_projectIdBefore(projectIdBefore)
    , m_projectIdAfter(projectIdAfter)
{
    setText(text);
}

cEditPlace cRouteListCommand::apply(bool forward)
{
    cProject* target = project();
    const cRowEntries<cRoute>& take = forward ? m_removed : m_inserted;
    const cRowEntries<cRoute>& put = forward ? m_inserted : m_removed;
    spliceRows(target->routes, take, put);
    const QUuid projectId = forward ? m_projectIdAfter : m_projectIdBefore;
    if (!projectId.isNull())
        target->id = projectId;
    return {placeAfterSplice(target->routes, take, put).value(0), Branch::None, {}};
}
