#include "projectmanager.h"

#include <QDebug>
#include <QFile>
#include <QHash>
#include <QRegExp>
#include <QStringList>

namespace {

// Event-list files are read with these patterns, not an XML parser. They are
// kept exactly as the format defines them, the odd shape class included.
// Every match ends at an occurrence of `tail` (plain text); where the end is
// more than that text, `tailPattern` is the pattern it ends with, starting
// at or before the tail. Text after the last tail cannot take part in a
// match and is cut off before searching: on a damaged file the patterns
// would otherwise rescan the rest of the text from every opening tag that is
// never closed, which takes hours on a megabyte. Patterns without a wildcard
// need no tail. The event list pattern has two wildcards: an `opening` must
// be followed by `inner` before the last tail, or no list starts there or
// later, and the search stops instead of rescanning from every opening.
struct cPattern
{
    const char* regExp;
    const char* tail;
    const char* tailPattern;
    const char* opening = nullptr;
    const char* inner = nullptr;
};

const cPattern kEventList{R"re((<eventlist.*>.*</eventlist>))re", "</eventlist>", nullptr, "<eventlist", ">"};
const cPattern kRouteName{R"re(^\s*<eventlist.*>\s*<name>(.*)</name>)re", "</name>", nullptr};
const cPattern kEvent{R"re((<event>.*</event>))re", "</event>", nullptr};
const cPattern kStopName{R"re(<name>(.*)</name>)re", "</name>", nullptr};
const cPattern kZone{R"re((<zone.*</zone>))re", "</zone>", nullptr};
const cPattern kShape{R"re(<zone\s+shape\s*=\s*([a-zA_Z]+)\s*>)re", nullptr, nullptr};
const cPattern kRadius{R"re(<radius>\s*(\d+)\s*</radius>)re", nullptr, nullptr};
const cPattern kLatitude{R"re(<point.+lat\s*=\s*([\d\.]+))re", "lat", R"re(lat\s*=\s*[\d\.]+)re"};
const cPattern kLongitude{R"re(<point.+lon\s*=\s*([\d\.]+))re", "lon", R"re(lon\s*=\s*[\d\.]+)re"};
const cPattern kReaction{R"re((<reaction\s+logic\s*=\s*rise\s*>.*</reaction>))re", "</reaction>", nullptr};
const cPattern kSound{R"re(<play\s+file\s*=\s*([a-zA-Z\d\_\.\/]+)\s+.*>\s*</play>)re", "</play>", R"re(>\s*</play>)re"};

enum class Matching { Minimal, Greedy };

// Qt keeps only a handful of compiled patterns, fewer than an import uses in
// turn for every event; each thread keeps its own compiled copies instead.
QRegExp& compiled(const char* pattern, Matching matching)
{
    thread_local QHash<const char*, QRegExp> cache;
    auto found = cache.find(pattern);
    if (found == cache.end())
        found = cache.insert(pattern, QRegExp(QString::fromLatin1(pattern), Qt::CaseSensitive, QRegExp::RegExp));
    found->setMinimal(matching == Matching::Minimal);
    return *found;
}

// The text up to the end of the last tail; empty when there is none, since
// then nothing can match.
QString searchable(const cPattern& pattern, const QString& text)
{
    if (!pattern.tail)
        return text;
    const QLatin1String tail(pattern.tail);
    int start = text.lastIndexOf(tail);
    int length = tail.size();
    if (start >= 0 && pattern.tailPattern) {
        // Searching back from the last plain tail finds the last full one.
        QRegExp& full = compiled(pattern.tailPattern, Matching::Greedy);
        start = full.lastIndexIn(text, start);
        length = full.matchedLength();
    }
    return start < 0 ? QString() : text.left(start + length);
}

bool anotherMatchCanStart(const cPattern& pattern, const QString& searched, int pos)
{
    if (!pattern.opening)
        return true;
    const QLatin1String opening(pattern.opening);
    const int open = searched.indexOf(opening, pos);
    const int inner = open < 0 ? -1 : searched.indexOf(QLatin1String(pattern.inner), open + opening.size());
    return inner >= 0 && inner < searched.size() - int(qstrlen(pattern.tail));
}

// None of the patterns can match empty text, so stepping past each match ends.
QStringList allCaptures(const cPattern& pattern, const QString& text)
{
    const QString searched = searchable(pattern, text);
    QRegExp& rx = compiled(pattern.regExp, Matching::Minimal);
    QStringList captures;
    int pos = 0;
    while (anotherMatchCanStart(pattern, searched, pos) && (pos = rx.indexIn(searched, pos)) != -1) {
        captures << rx.cap(1);
        pos += rx.matchedLength();
    }
    return captures;
}

bool firstCapture(const cPattern& pattern, Matching matching, const QString& text, QString* capture)
{
    const QString searched = searchable(pattern, text);
    QRegExp& rx = compiled(pattern.regExp, matching);
    if (rx.indexIn(searched) == -1)
        return false;
    *capture = rx.cap(1);
    return true;
}

bool parseEvent(const QString& eventText, cStop* stop)
{
    if (eventText.isEmpty() || !stop)
        return false;

    QString name;
    if (!firstCapture(kStopName, Matching::Minimal, eventText, &name))
        return false;
    // Route tables put names verbatim between single quotes; a bare quote
    // would end the Lua string early when the project is saved.
    stop->name = name.replace(QLatin1Char('\''), QLatin1String("\\'"));

    stop->id = QUuid::createUuid();
    stop->is_key_stop = false;
    stop->course_enabled = false;
    stop->course_value = 0;
    // Imported stops get a 35 degree window, not the 60 of new ones.
    stop->course_diff = 35;

    QString zone;
    if (!firstCapture(kZone, Matching::Minimal, eventText, &zone))
        return false;
    QString shape;
    if (!firstCapture(kShape, Matching::Minimal, zone, &shape)
        || shape != QLatin1String("circle"))
        return false;

    QString value;
    if (!firstCapture(kRadius, Matching::Minimal, zone, &value))
        return false;
    stop->radius = value.trimmed().toInt(nullptr, 10);

    // Greedy on purpose: a zone listing several points is centred on the last.
    if (!firstCapture(kLatitude, Matching::Greedy, zone, &value))
        return false;
    stop->lat = value.trimmed().toDouble();
    if (!firstCapture(kLongitude, Matching::Greedy, zone, &value))
        return false;
    stop->lon = value.trimmed().toDouble();

    QString reaction;
    if (!firstCapture(kReaction, Matching::Minimal, eventText, &reaction))
        return false;

    // Files name sounds relative to the device's card, some with a leading slash.
    const QStringList files = allCaptures(kSound, reaction);
    for (const QString& file : files) {
        QString path = QLatin1String("/sdmmc/") + file;
        path.replace(QLatin1String("//"), QLatin1String("/"));
        if (stop->sound.isEmpty())
            stop->sound = path;
        else
            stop->other_sounds << path;
    }
    return true;
}

void parseBranch(const QString& eventListText, cBranch* branch)
{
    const QStringList events = allCaptures(kEvent, eventListText);
    for (const QString& event : events) {
        cStop stop;
        if (parseEvent(event, &stop))
            branch->stops << stop;
    }
}

} // namespace

bool cProjectManager::importEvtRoute(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = tr("Failed to open file");
        return false;
    }

    const QString text = QString::fromLocal8Bit(file.readAll());
    qDebug().noquote() << text;

    const QStringList eventLists = allCaptures(kEventList, text);
    if (eventLists.size() != 1 && eventLists.size() != 2) {
        if (error)
            *error = tr("Route should have 1 or 2 branches, but found %1 branches.").arg(eventLists.size());
        return false;
    }

    cRoute route;
    QString routeName;
    if (firstCapture(kRouteName, Matching::Minimal, eventLists.at(0), &routeName)) {
        route.name = routeName;
        route.short_name = routeName;
        route.id = QUuid::createUuid();
        route.type = QStringLiteral("bidir");
        route.play_sound = true;
        route.display_text = true;
        route.base_text = defaultBaseTexts();
    }

    parseBranch(eventLists.at(0), &route.direct);
    if (eventLists.size() == 2)
        parseBranch(eventLists.at(1), &route.reverse);

    importRoutes({route});
    return true;
}
