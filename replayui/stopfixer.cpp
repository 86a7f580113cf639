#include "stopfixer.h"

#include "projectmanager.h"

#include <QDebug>

cStopFixer::cStopFixer(cProjectManager* manager, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
{
}

bool cStopFixer::apply(const QUuid& stopId, const cSuggestedFix& fix)
{
    for (cRoute& route : m_manager->project()->routes) {
        for (cBranch* branch : {&route.direct, &route.reverse}) {
            for (cStop& stop : branch->stops) {
                if (stop.id != stopId)
                    continue;
                const cStop before = stop;
                if (fix.kind == cSuggestedFix::eKind::Radius)
                    stop.radius = fix.value;
                else
                    stop.course_value = fix.value;
                qDebug() << "Stop fixed:" << stopId << (fix.kind == cSuggestedFix::eKind::Radius ? "radius" : "course")
                         << fix.value;
                emit stopFixed(route.id, branch == &route.reverse, before, stop);
                emit stopChanged(stopId);
                return true;
            }
        }
    }
    return false;
}
