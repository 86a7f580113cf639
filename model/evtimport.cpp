#include "projectmanager.h"

#include <QDebug>
#include <QFile>
#include <QRegExp>
#include <QStringList>

namespace {

// Event-list files are read with these patterns, not an XML parser. They stay
// exactly as written, the odd shape class included, so that existing files
// import the way they always have.
const char* const kEventListPattern = R"re((<eventlist.*>.*</eventlist>))re";
const char* const kRouteNamePattern = R"re(^\s*<eventlist.*>\s*<name>(.*)</name>)re";
const char* const kEventPattern = R"re((<event>.*</event>))re";
const char* const kStopNamePattern = R"re(<name>(.*)</name>)re";
const char* const kZonePattern = R"re((<zone.*</zone>))re";
const char* const kShapePattern = R"re(<zone\s+shape\s*=\s*([a-zA_Z]+)\s*>)re";
const char* const kRadiusPattern = R"re(<radius>\s*(\d+)\s*</radius>)re";
const char* const kLatitudePattern = R"re(<point.+lat\s*=\s*([\d\.]+))re";
const char* const kLongitudePattern = R"re(<point.+lon\s*=\s*([\d\.]+))re";
const char* const kReactionPattern = R"re((<reaction\s+logic\s*=\s*rise\s*>.*</reaction>))re";
const char* const kSoundPattern = R"re(<play\s+file\s*=\s*([a-zA-Z\d\_\.\/]+)\s+.*>\s*</play>)re";

enum class Matching { Minimal, Greedy };

QRegExp makeRegExp(const char* pattern, Matching matching)
{
    QRegExp rx(QString::fromLatin1(pattern), Qt::CaseSensitive, QRegExp::RegExp);
    rx.setMinimal(matching == Matching::Minimal);
    return rx;
}

// None of the patterns can match empty text, so stepping past each match ends.
QStringList allCaptures(const char* pattern, const QString& text)
{
    QRegExp rx = makeRegExp(pattern, Matching::Minimal);
    QStringList captures;
    int pos = 0;
    while ((pos = rx.indexIn(text, pos)) != -1) {
        captures << rx.cap(1);
        pos += rx.matchedLength();
    }
    return captures;
}

bool firstCapture(const char* pattern, Matching matching, const QString& text, QString* capture)
{
    QRegExp rx = makeRegExp(pattern, matching);
    if (rx.indexIn(text) == -1)
        return false;
    *capture = rx.cap(1);
    return true;
}

bool parseEvent(const QString& eventText, cStop* stop)
{
    if (eventText.isEmpty() || !stop)
        return false;

    QString name;
    if (!firstCapture(kStopNamePattern, Matching::Minimal, eventText, &name))
        return false;
    // Route tables put names verbatim between single quotes; a bare quote
    // would end the Lua string early when the project is saved.
    stop->name = name.replace(QLatin1Char('\''), QLatin1String("\\'"));

    stop->id = QUuid::createUuid();
    stop->is_key_stop = false;
    stop->course_enabled = false;
    stop->course_value = 0;
    // Imported stops have always carried a 35 degree window, not the 60 of new ones.
    stop->course_diff = 35;

    QString zone;
    if (!firstCapture(kZonePattern, Matching::Minimal, eventText, &zone))
        return false;
    QString shape;
    if (!firstCapture(kShapePattern, Matching::Minimal, zone, &shape)
        || shape != QLatin1String("circle"))
        return false;

    QString value;
    if (!firstCapture(kRadiusPattern, Matching::Minimal, zone, &value))
        return false;
    stop->radius = value.trimmed().toInt(nullptr, 10);

    // Greedy on purpose: a zone listing several points is centred on the last.
    if (!firstCapture(kLatitudePattern, Matching::Greedy, zone, &value))
        return false;
    stop->lat = value.trimmed().toDouble();
    if (!firstCapture(kLongitudePattern, Matching::Greedy, zone, &value))
        return false;
    stop->lon = value.trimmed().toDouble();

    QString reaction;
    if (!firstCapture(kReactionPattern, Matching::Minimal, eventText, &reaction))
        return false;

    // Files name sounds relative to the device's card, some with a leading slash.
    const QStringList files = allCaptures(kSoundPattern, reaction);
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
    const QStringList events = allCaptures(kEventPattern, eventListText);
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

    const QStringList eventLists = allCaptures(kEventListPattern, text);
    if (eventLists.size() != 1 && eventLists.size() != 2) {
        if (error)
            *error = tr("Route should have 1 or 2 branches, but found %1 branches.").arg(eventLists.size());
        return false;
    }

    cRoute route;
    QString routeName;
    if (firstCapture(kRouteNamePattern, Matching::Minimal, eventLists.at(0), &routeName)) {
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
