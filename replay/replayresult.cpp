#include "replayresult.h"

#include <QDateTime>
#include <QJsonArray>

#include <cmath>

int cReplayResult::count(eStopStatus status) const
{
    int result = 0;
    for (const cStopReplay& stop : stops)
        result += stop.status == status ? 1 : 0;
    return result;
}

bool cReplayResult::clean() const
{
    return !stops.isEmpty() && count(eStopStatus::Announced) == stops.size();
}

QString statusKey(eStopStatus status)
{
    switch (status) {
    case eStopStatus::Announced:
        return QStringLiteral("announced");
    case eStopStatus::Missed:
        return QStringLiteral("missed");
    case eStopStatus::OutOfOrder:
        return QStringLiteral("out-of-order");
    case eStopStatus::Repeated:
        return QStringLiteral("repeated");
    }
    return QString();
}

QString branchKey(eBranchKind branch)
{
    return branch == eBranchKind::Direct ? QStringLiteral("direct") : QStringLiteral("reverse");
}

namespace {

QJsonValue timeValue(qint64 time)
{
    if (time == cTrackPoint::noTime)
        return QJsonValue::Null;
    const QDateTime utc = QDateTime::fromMSecsSinceEpoch(time, Qt::UTC);
    return utc.toString(time % 1000 == 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

QJsonArray fixesValue(const QVector<cSuggestedFix>& fixes)
{
    QJsonArray array;
    for (const cSuggestedFix& fix : fixes) {
        const bool radius = fix.kind == cSuggestedFix::eKind::Radius;
        array.append(QJsonObject{{QStringLiteral("fix"), radius ? QStringLiteral("radius") : QStringLiteral("course")},
                                 {QStringLiteral("value"), fix.value}});
    }
    return array;
}

} // namespace

// Stops are numbered from 1 and passes from 1, as the user counts them.
QJsonObject cReplayResult::toJson() const
{
    QJsonArray rows;
    for (const cStopReplay& stop : stops) {
        QJsonObject row{
            {QStringLiteral("stop"), stop.stop + 1},
            {QStringLiteral("pass"), stop.pass + 1},
            {QStringLiteral("name"), stop.name},
            {QStringLiteral("status"), statusKey(stop.status)},
            {QStringLiteral("time"), timeValue(stop.time)},
            {QStringLiteral("heading"),
             std::isnan(stop.heading) ? QJsonValue() : QJsonValue(qRound(stop.heading) % 360)},
            {QStringLiteral("closest_m"), std::round(stop.closestMetres * 10) / 10},
            {QStringLiteral("reason"), stop.reason},
        };
        if (!stop.fixes.isEmpty())
            row.insert(QStringLiteral("fixes"), fixesValue(stop.fixes));
        rows.append(row);
    }
    return QJsonObject{{QStringLiteral("branch"), branchKey(branch)},
                       {QStringLiteral("passes"), passes},
                       {QStringLiteral("stops"), rows}};
}
