#include "routecheck.h"

#include "exportnames.h"
#include "problemlist.h"
#include "soundchecks.h"
#include "stopchecks.h"
#include "textrules.h"

#include <QStandardPaths>

#include <algorithm>

namespace {

bool isBaseText(TextField field)
{
    return field == TextField::CurrentText || field == TextField::NextText || field == TextField::LastText;
}

// Texts of one route: safe to write, fit for the display, stops named.
void checkTexts(cProblemList& problems, cSoundChecks& sounds, const cRoute& route)
{
    cTextRules::forEachText(route, [&](const cTextPlace& place) {
        const bool safe = cTextRules::checkSafe(problems, place);
        if (cTextRules::isSound(place.field)) {
            sounds.check(problems, place);
            return;
        }
        // An unsafe text is a worse fault of the same field.
        if (!safe)
            return;
        if (place.field == TextField::StopName && place.text.trimmed().isEmpty()) {
            problems.add(ProblemCode::EmptyName, place, cRouteCheck::tr("The stop has no name."));
            return;
        }
        if (!cTextRules::isDisplayed(place.field) && place.field != TextField::RouteName
            && place.field != TextField::ShortName)
            return;
        // The fixed messages are put before and after stop names, so their
        // edge spaces are meant.
        const QString bad = cTextRules::badTextReason(place.text, !isBaseText(place.field));
        if (!bad.isEmpty())
            problems.add(ProblemCode::BadText, place,
                         cRouteCheck::tr("The %1 \"%2\" has %3, which the passenger display shows as they are.")
                             .arg(cTextRules::label(place.field, place.index), place.text, bad));
    });
}

void checkBranches(cProblemList& problems, const cRoute& route)
{
    const bool bothWays = route.type == QLatin1String("bidir");
    if (route.direct.stops.isEmpty())
        problems.addForBranch(ProblemCode::EmptyBranch, Branch::Direct,
                              cRouteCheck::tr("The direct branch has no stops."));
    if (bothWays && route.reverse.stops.isEmpty())
        problems.addForBranch(ProblemCode::EmptyBranch, Branch::Reverse,
                              cRouteCheck::tr("The reverse branch has no stops, but a bidirectional route needs "
                                              "both."));
    for (const Branch branch : {Branch::Direct, Branch::Reverse}) {
        const QList<cStop>& stops = branch == Branch::Direct ? route.direct.stops : route.reverse.stops;
        for (int i = 0; i < stops.size(); ++i)
            cStopChecks::checkStop(problems, branch, i + 1, stops.at(i));
        cStopChecks::checkBranch(problems, branch, stops);
    }
    cStopChecks::checkDirections(problems, route);
}

void checkScriptNames(cProblemList& problems, const QList<cRoute>& routes, const cCheckOptions& options)
{
    QHash<QString, const cRoute*> owners;
    for (const cRoute& route : routes) {
        const QString name = options.scriptFileNames.value(route.id, scriptFileName(route));
        const cRoute*& owner = owners[name.toLower()];
        if (!owner) {
            owner = &route;
            continue;
        }
        problems.setRoute(route);
        problems.addForRoute(ProblemCode::ScriptNameClash,
                             cRouteCheck::tr("This route and route \"%1\" would both be written to route/%2: one "
                                             "script would replace the other.")
                                 .arg(owner->name, name));
    }
}

// Route by route, and within a route its own problems before its branches',
// each branch in travel order.
void sortByPlace(QList<cProblem>& problems, const QList<cRoute>& routes)
{
    QHash<QUuid, int> order;
    for (int i = 0; i < routes.size(); ++i)
        order.insert(routes.at(i).id, i);
    std::stable_sort(problems.begin(), problems.end(), [&order](const cProblem& a, const cProblem& b) {
        const auto key = [&order](const cProblem& p) {
            return std::make_tuple(p.routeId.isNull() ? -1 : order.value(p.routeId), int(p.branch), p.stop);
        };
        return key(a) < key(b);
    });
}

} // namespace

QList<cProblem> cRouteCheck::run(const QList<cRoute>& routes, const cCheckOptions& options)
{
    cProblemList problems;
    cSoundChecks sounds(options.converter, options.readSoundHeaders, options.outputDir);
    for (const cRoute& route : routes) {
        problems.setRoute(route);
        checkBranches(problems, route);
        checkTexts(problems, sounds, route);
    }
    checkScriptNames(problems, routes, options);
    if (sounds.sawSounds() && !options.converter.isEmpty()
        && QStandardPaths::findExecutable(options.converter).isEmpty())
        problems.addForExport(ProblemCode::NoFfmpeg,
                              tr("The program %1 is not installed or not on the search path: no sound would be "
                                 "converted.")
                                  .arg(options.converter));
    QList<cProblem> all = problems.takeAll();
    sortByPlace(all, routes);
    return all;
}
