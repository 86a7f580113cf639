#include "trackreader.h"

#include "geo.h"

#include <QDateTime>
#include <QDebug>
#include <QIODevice>

#include <cmath>

namespace {

constexpr double metresPerSecondPerKnot = 1852.0 / 3600.0;
// RMC and GGA of one fix agree on the position to the last digit; this
// only allows for receivers that print them with different precision.
constexpr double sameFixMetres = 2.0;

enum eSentence { Rmc = 1, Gga = 2 };

// What one RMC or GGA sentence says about a fix.
struct cSentence
{
    eSentence kind = Rmc;
    cTrackPoint point;
    QByteArray timeText;
    qint64 timeOfDay = -1;
    bool validFix = true;
};

bool parseChecksummed(const QByteArray& line, QList<QByteArray>* fields)
{
    const int star = line.lastIndexOf('*');
    if (!line.startsWith('$') || star < 0 || star + 3 != line.size())
        return false;
    bool ok = false;
    const int expected = line.mid(star + 1, 2).toInt(&ok, 16);
    if (!ok)
        return false;
    int sum = 0;
    for (int i = 1; i < star; ++i)
        sum ^= static_cast<unsigned char>(line.at(i));
    if (sum != expected)
        return false;
    *fields = line.mid(1, star - 1).split(',');
    return true;
}

// ddmm.mmmm (latitude) or dddmm.mmmm (longitude) with its hemisphere letter.
bool parseCoordinate(const QByteArray& text, const QByteArray& hemisphere, char negative, char positive, double limit,
                     double* value)
{
    if (hemisphere.size() != 1 || (hemisphere.at(0) != negative && hemisphere.at(0) != positive))
        return false;
    bool ok = false;
    const double raw = text.toDouble(&ok);
    if (!ok || !std::isfinite(raw) || raw < 0)
        return false;
    const double degrees = std::floor(raw / 100);
    const double minutes = raw - degrees * 100;
    *value = degrees + minutes / 60;
    if (minutes >= 60 || *value > limit)
        return false;
    if (hemisphere.at(0) == negative)
        *value = -*value;
    return true;
}

// hhmmss(.sss) as milliseconds of the day.
bool parseTimeOfDay(const QByteArray& text, qint64* msecs)
{
    bool ok = false;
    const double raw = text.toDouble(&ok);
    // Checked before the conversion to int, which is undefined out of range.
    if (!ok || text.size() < 6 || !(raw >= 0 && raw < 240000))
        return false;
    const int whole = static_cast<int>(raw);
    const int hours = whole / 10000;
    const int minutes = whole / 100 % 100;
    const double seconds = raw - hours * 10000 - minutes * 100;
    if (hours > 23 || minutes > 59 || seconds >= 61)
        return false;
    *msecs = (hours * 3600 + minutes * 60) * 1000LL + qRound64(seconds * 1000);
    return true;
}

// ddmmyy; two-digit years are 1980 to 2079.
bool parseDate(const QByteArray& text, QDate* date)
{
    bool ok = false;
    const int raw = text.toInt(&ok);
    if (!ok || text.size() != 6)
        return false;
    const int year = raw % 100;
    *date = QDate(year < 80 ? 2000 + year : 1900 + year, raw / 100 % 100, raw / 10000);
    return date->isValid();
}

bool parseOptionalNumber(const QByteArray& text, double scale, double* value)
{
    if (text.isEmpty())
        return true;
    bool ok = false;
    *value = text.toDouble(&ok) * scale;
    return ok && std::isfinite(*value) && *value >= 0;
}

class cNmeaParser
{
public:
    bool parse(QIODevice* device, cTrackFile* file, QString* error);

private:
    bool parseSentence(const QList<QByteArray>& fields, cSentence* sentence);
    bool parseRmc(const QList<QByteArray>& fields, cSentence* sentence);
    bool parseGga(const QList<QByteArray>& fields, cSentence* sentence);
    void add(const cSentence& sentence);
    void splitIntoTracks(cTrackFile* file) const;

    QVector<cTrackPoint> m_points;
    QByteArray m_lastTimeText;
    int m_lastKinds = 0;
    // GGA carries no date: it takes the one of the last RMC.
    QDate m_date;
};

bool cNmeaParser::parseSentence(const QList<QByteArray>& fields, cSentence* sentence)
{
    if (!(sentence->kind == Rmc ? parseRmc(fields, sentence) : parseGga(fields, sentence)))
        return false;
    return !sentence->validFix || sentence->timeText.isEmpty()
        || parseTimeOfDay(sentence->timeText, &sentence->timeOfDay);
}

bool cNmeaParser::parseRmc(const QList<QByteArray>& fields, cSentence* sentence)
{
    if (fields.size() < 10)
        return false;
    const QByteArray& status = fields.at(2);
    // NMEA 2.3 adds a mode letter; N means no fix whatever the status says.
    if (status == "V" || (fields.size() > 12 && fields.at(12).startsWith('N'))) {
        sentence->validFix = false;
        return true;
    }
    cTrackPoint& point = sentence->point;
    if (status != "A" || !parseCoordinate(fields.at(3), fields.at(4), 'S', 'N', 90, &point.lat)
        || !parseCoordinate(fields.at(5), fields.at(6), 'W', 'E', 180, &point.lon)
        || !parseOptionalNumber(fields.at(7), metresPerSecondPerKnot, &point.speed)
        || !parseOptionalNumber(fields.at(8), 1, &point.course) || point.course >= 360)
        return false;
    if (!fields.at(9).isEmpty() && !parseDate(fields.at(9), &m_date))
        return false;
    sentence->timeText = fields.at(1);
    return true;
}

bool cNmeaParser::parseGga(const QList<QByteArray>& fields, cSentence* sentence)
{
    if (fields.size() < 7)
        return false;
    const QByteArray& quality = fields.at(6);
    if (quality.isEmpty() || quality == "0") {
        sentence->validFix = false;
        return true;
    }
    bool ok = false;
    quality.toInt(&ok);
    if (!ok)
        return false;
    sentence->timeText = fields.at(1);
    cTrackPoint& point = sentence->point;
    return parseCoordinate(fields.at(2), fields.at(3), 'S', 'N', 90, &point.lat)
        && parseCoordinate(fields.at(4), fields.at(5), 'W', 'E', 180, &point.lon);
}

// A receiver sends RMC and GGA for every fix; the pair becomes one point.
void cNmeaParser::add(const cSentence& sentence)
{
    cTrackPoint point = sentence.point;
    if (sentence.timeOfDay >= 0 && m_date.isValid())
        point.time = QDateTime(m_date, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch() + sentence.timeOfDay;
    if (!m_points.isEmpty() && !(m_lastKinds & sentence.kind) && sentence.timeText == m_lastTimeText) {
        cTrackPoint& last = m_points.last();
        if (geo::distanceMetres(last.lon, last.lat, point.lon, point.lat) <= sameFixMetres) {
            if (sentence.kind == Rmc) {
                last.time = point.time;
                last.course = point.course;
                last.speed = point.speed;
            }
            m_lastKinds |= sentence.kind;
            return;
        }
    }
    m_points.append(point);
    m_lastTimeText = sentence.timeText;
    m_lastKinds = sentence.kind;
}

// A log has no track structure. It is cut where timed fixes meet untimed
// ones and where the clock goes back: both mean another recording follows.
void cNmeaParser::splitIntoTracks(cTrackFile* file) const
{
    for (int i = 0; i < m_points.size(); ++i) {
        cTrackPoint point = m_points.at(i);
        const bool newPart = i == 0 || point.hasTime() != m_points.at(i - 1).hasTime()
            || (point.hasTime() && point.time < m_points.at(i - 1).time);
        if (newPart) {
            file->tracks.append(cTrack());
            file->tracks.last().name = cNmeaReader::tr("Log part %1").arg(file->tracks.size());
        }
        point.segmentStart = newPart;
        file->tracks.last().points.append(point);
    }
}

bool cNmeaParser::parse(QIODevice* device, cTrackFile* file, QString* error)
{
    file->format = QStringLiteral("NMEA 0183");
    const QList<QByteArray> lines = device->readAll().split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QByteArray line = lines.at(i).trimmed();
        if (line.isEmpty())
            continue;
        // Other sentences of the log are not about the position: passed over.
        const QByteArray type = line.mid(1, 5);
        const bool wanted = type == "GPRMC" || type == "GNRMC" || type == "GPGGA" || type == "GNGGA";
        if (line.startsWith('$') && !wanted)
            continue;
        cSentence sentence;
        sentence.point.line = i + 1;
        sentence.kind = type.endsWith("RMC") ? Rmc : Gga;
        QList<QByteArray> fields;
        if (!parseChecksummed(line, &fields) || !parseSentence(fields, &sentence)) {
            if (file->badSentences++ == 0)
                file->firstBadLine = i + 1;
            continue;
        }
        if (!sentence.validFix) {
            ++file->invalidFixes;
            continue;
        }
        add(sentence);
    }
    if (file->invalidFixes || file->badSentences)
        qDebug() << "NMEA log:" << file->invalidFixes << "sentences without a fix," << file->badSentences
                 << "damaged, the first at line" << file->firstBadLine;
    if (m_points.isEmpty()) {
        if (error)
            *error = cNmeaReader::tr("The log has no valid RMC or GGA fix. Sentences without a fix: %1; "
                                     "damaged or malformed: %2.")
                         .arg(file->invalidFixes)
                         .arg(file->badSentences);
        return false;
    }
    splitIntoTracks(file);
    return true;
}

} // namespace

bool cNmeaReader::read(QIODevice* device, cTrackFile* file, QString* error)
{
    cNmeaParser parser;
    return parser.parse(device, file, error);
}
