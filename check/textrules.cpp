#include "textrules.h"

#include "problemlist.h"

void cTextRules::forEachText(const cRoute& route, const std::function<void(const cTextPlace&)>& visit)
{
    const auto routeText = [&](TextField field, const QString& text) {
        visit({field, Branch::None, 0, nullptr, 0, text});
    };
    routeText(TextField::RouteName, route.name);
    routeText(TextField::ShortName, route.short_name);
    routeText(TextField::Type, route.type);
    routeText(TextField::CurrentSound, route.base_sound.current);
    routeText(TextField::NextSound, route.base_sound.next);
    routeText(TextField::LastSound, route.base_sound.last);
    routeText(TextField::CurrentText, route.base_text.current);
    routeText(TextField::NextText, route.base_text.next);
    routeText(TextField::LastText, route.base_text.last);
    for (const Branch branch : {Branch::Direct, Branch::Reverse}) {
        const cBranch& stops = branch == Branch::Direct ? route.direct : route.reverse;
        visit({TextField::FirstName, branch, 0, nullptr, 0, stops.first});
        visit({TextField::LastName, branch, 0, nullptr, 0, stops.last});
        for (int i = 0; i < stops.stops.size(); ++i) {
            const cStop& stop = stops.stops.at(i);
            visit({TextField::StopName, branch, i + 1, &stop, 0, stop.name});
            visit({TextField::FullName, branch, i + 1, &stop, 0, stop.full_name});
            visit({TextField::StopSound, branch, i + 1, &stop, 0, stop.sound});
            for (int k = 0; k < stop.other_sounds.size(); ++k)
                visit({TextField::OtherSound, branch, i + 1, &stop, k + 1, stop.other_sounds.at(k)});
            visit({TextField::OtherText, branch, i + 1, &stop, 0, stop.other_text});
        }
    }
}

bool cTextRules::isSound(TextField field)
{
    switch (field) {
    case TextField::CurrentSound:
    case TextField::NextSound:
    case TextField::LastSound:
    case TextField::StopSound:
    case TextField::OtherSound:
        return true;
    default:
        return false;
    }
}

bool cTextRules::isDisplayed(TextField field)
{
    switch (field) {
    case TextField::CurrentText:
    case TextField::NextText:
    case TextField::LastText:
    case TextField::FirstName:
    case TextField::LastName:
    case TextField::StopName:
    case TextField::FullName:
    case TextField::OtherText:
        return true;
    default:
        return false;
    }
}

QString cTextRules::label(TextField field, int index)
{
    switch (field) {
    case TextField::RouteName:
        return tr("route name");
    case TextField::ShortName:
        return tr("route number");
    case TextField::Type:
        return tr("route type");
    case TextField::CurrentSound:
        return tr("sound of the current stop message");
    case TextField::NextSound:
        return tr("sound of the next stop message");
    case TextField::LastSound:
        return tr("sound of the last stop message");
    case TextField::CurrentText:
        return tr("text of the current stop message");
    case TextField::NextText:
        return tr("text of the next stop message");
    case TextField::LastText:
        return tr("text of the last stop message");
    case TextField::FirstName:
        return tr("alternate first stop name");
    case TextField::LastName:
        return tr("alternate last stop name");
    case TextField::StopName:
        return tr("stop name");
    case TextField::FullName:
        return tr("full stop name");
    case TextField::StopSound:
        return tr("stop sound");
    case TextField::OtherSound:
        return tr("other sound %1").arg(index);
    case TextField::OtherText:
        return tr("other text");
    }
    return QString();
}

QString cTextRules::unsafeReason(const QString& text)
{
    const int size = text.size();
    for (int i = 0; i < size; ++i) {
        switch (text.at(i).unicode()) {
        case '\'':
            return tr("a single quote");
        case '\\':
            return tr("a backslash");
        case '\n':
        case '\r':
            return tr("a line break");
        case '%':
            if (i + 1 < size && text.at(i + 1).isDigit())
                return tr("a percent sign followed by a digit");
            break;
        default:
            break;
        }
    }
    return QString();
}

QString cTextRules::unsafeWarning(const QString& text)
{
    const QString reason = unsafeReason(text);
    return reason.isEmpty() ? reason
                            : tr("This text holds %1: the device script and the project file would read it back "
                                 "differently.")
                                  .arg(reason);
}

QString cTextRules::badTextReason(const QString& text, bool edgesCount)
{
    if (text.isEmpty())
        return QString();
    if (edgesCount && (text.front().isSpace() || text.back().isSpace()))
        return tr("spaces at the start or end");
    if (text.contains(QLatin1String("  ")))
        return tr("doubled spaces");
    for (int i = 0; i < text.size(); ++i) {
        uint c = text.at(i).unicode();
        if (c >= 0x20 && c < 0x7f)
            continue;
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text.at(i), text.at(i + 1));
            ++i;
        }
        // Line breaks are unsafe, a worse fault reported on its own.
        if (c != '\n' && c != '\r' && !QChar::isPrint(c))
            return tr("control or invisible characters");
    }
    return QString();
}

bool cTextRules::checkSafe(cProblemList& problems, const cTextPlace& place)
{
    const QString reason = unsafeReason(place.text);
    if (reason.isEmpty())
        return true;
    problems.add(ProblemCode::UnsafeText, place,
                 tr("The %1 \"%2\" holds %3: the device script and the project file would read it back "
                    "differently.")
                     .arg(label(place.field, place.index), place.text, reason));
    return false;
}

QList<cProblem> cTextRules::unsafeTexts(const QList<cRoute>& routes)
{
    cProblemList problems;
    for (const cRoute& route : routes) {
        problems.setRoute(route);
        forEachText(route, [&problems](const cTextPlace& place) { checkSafe(problems, place); });
    }
    return problems.takeAll();
}
