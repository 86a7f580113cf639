#include "trackreader.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <cmath>

namespace {

const QString gpx10Namespace = QStringLiteral("http://www.topografix.com/GPX/1/0");
const QString gpx11Namespace = QStringLiteral("http://www.topografix.com/GPX/1/1");

// Walks the document with the stream reader: whole files of 100,000 points
// are read without building a tree. Elements of other namespaces (vendor
// extensions) and GPX elements a replay does not need are skipped whole.
class cGpxParser
{
public:
    explicit cGpxParser(QIODevice* device)
        : m_xml(device)
    {
    }

    bool parse(cTrackFile* file, QString* error);

private:
    bool is(const char* name) const;
    bool readTrack(cTrack* track, const char* segmentName, const char* pointName);
    bool readSegment(cTrack* track, const char* pointName);
    bool readPoint(cTrack* track, bool segmentStart);
    bool readCoordinate(const QXmlStreamAttributes& attributes, const char* name, double limit, double* value);
    bool fail(const QString& text);
    bool failOnXmlError();

    QXmlStreamReader m_xml;
    QString m_namespace;
    QString m_error;
};

bool cGpxParser::is(const char* name) const
{
    return m_xml.name() == QLatin1String(name) && m_xml.namespaceUri() == m_namespace;
}

bool cGpxParser::fail(const QString& text)
{
    m_error = text;
    return false;
}

bool cGpxParser::failOnXmlError()
{
    if (m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError)
        return fail(
            cGpxReader::tr("Line %1: the file ends before the GPX document is complete").arg(m_xml.lineNumber()));
    return fail(
        cGpxReader::tr("Line %1: the XML is not well-formed: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString()));
}

bool cGpxParser::parse(cTrackFile* file, QString* error)
{
    file->format = QStringLiteral("GPX");
    bool ok = true;
    if (!m_xml.readNextStartElement()) {
        ok = failOnXmlError();
    } else if (m_xml.name() != QLatin1String("gpx")) {
        ok = fail(cGpxReader::tr("Line %1: this is not a GPX file, its first element is <%2>")
                      .arg(m_xml.lineNumber())
                      .arg(m_xml.qualifiedName()));
    } else {
        // A bare <gpx> without a namespace is accepted: some writers leave it out.
        m_namespace = m_xml.namespaceUri().toString();
        if (m_namespace == gpx10Namespace)
            file->format = QStringLiteral("GPX 1.0");
        else if (m_namespace == gpx11Namespace)
            file->format = QStringLiteral("GPX 1.1");
        else if (!m_namespace.isEmpty())
            ok = fail(cGpxReader::tr("Line %1: unknown GPX namespace \"%2\"; GPX 1.0 and 1.1 can be read")
                          .arg(m_xml.lineNumber())
                          .arg(m_namespace));
    }
    // Unnamed tracks and routes are called by their place in the file.
    int trackElements = 0;
    int routeElements = 0;
    while (ok && m_xml.readNextStartElement()) {
        cTrack track;
        if (is("trk")) {
            ++trackElements;
            ok = readTrack(&track, "trkseg", "trkpt");
            if (track.name.isEmpty())
                track.name = cGpxReader::tr("Track %1").arg(trackElements);
        } else if (is("rte")) {
            ++routeElements;
            ok = readTrack(&track, nullptr, "rtept");
            if (track.name.isEmpty())
                track.name = cGpxReader::tr("Route %1").arg(routeElements);
        } else {
            m_xml.skipCurrentElement();
        }
        if (ok && !track.points.isEmpty())
            file->tracks.append(track);
    }
    if (ok && m_xml.hasError())
        ok = failOnXmlError();
    if (ok && file->tracks.isEmpty())
        ok = fail(cGpxReader::tr("The file has no track or route points"));
    if (!ok && error)
        *error = m_error;
    return ok;
}

// A route is a track of one segment whose points sit directly in it.
bool cGpxParser::readTrack(cTrack* track, const char* segmentName, const char* pointName)
{
    while (m_xml.readNextStartElement()) {
        if (is("name")) {
            track->name = m_xml.readElementText().trimmed();
        } else if (segmentName && is(segmentName)) {
            if (!readSegment(track, pointName))
                return false;
        } else if (!segmentName && is(pointName)) {
            if (!readPoint(track, track->points.isEmpty()))
                return false;
        } else {
            m_xml.skipCurrentElement();
        }
    }
    return true;
}

bool cGpxParser::readSegment(cTrack* track, const char* pointName)
{
    bool first = true;
    while (m_xml.readNextStartElement()) {
        if (is(pointName)) {
            if (!readPoint(track, first))
                return false;
            first = false;
        } else {
            m_xml.skipCurrentElement();
        }
    }
    return true;
}

bool cGpxParser::readPoint(cTrack* track, bool segmentStart)
{
    cTrackPoint point;
    point.line = static_cast<int>(m_xml.lineNumber());
    point.segmentStart = segmentStart;
    const QXmlStreamAttributes attributes = m_xml.attributes();
    if (!readCoordinate(attributes, "lat", 90, &point.lat) || !readCoordinate(attributes, "lon", 180, &point.lon))
        return false;
    while (m_xml.readNextStartElement()) {
        if (!is("time")) {
            m_xml.skipCurrentElement();
            continue;
        }
        const QString text = m_xml.readElementText().trimmed();
        // A document cut off inside the time is reported as such, not as a bad time.
        if (m_xml.hasError())
            break;
        QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
        if (!time.isValid())
            return fail(cGpxReader::tr("Line %1: cannot read the time \"%2\"").arg(m_xml.lineNumber()).arg(text));
        // A time without a zone is taken as UTC, as GPS receivers keep it.
        if (time.timeSpec() == Qt::LocalTime)
            time.setTimeSpec(Qt::UTC);
        point.time = time.toMSecsSinceEpoch();
    }
    track->points.append(point);
    return true;
}

bool cGpxParser::readCoordinate(const QXmlStreamAttributes& attributes, const char* name, double limit, double* value)
{
    const QLatin1String attribute(name);
    if (!attributes.hasAttribute(attribute))
        return fail(cGpxReader::tr("Line %1: a point without \"%2\"").arg(m_xml.lineNumber()).arg(attribute));
    const QStringRef text = attributes.value(attribute);
    bool ok = false;
    *value = text.toDouble(&ok);
    if (!ok || !std::isfinite(*value))
        return fail(cGpxReader::tr("Line %1: %2 \"%3\" is not a number").arg(m_xml.lineNumber()).arg(attribute, text));
    if (std::fabs(*value) > limit)
        return fail(cGpxReader::tr("Line %1: %2 %3 is outside -%4 to %4")
                        .arg(m_xml.lineNumber())
                        .arg(attribute, text)
                        .arg(limit));
    return true;
}

} // namespace

bool cGpxReader::read(QIODevice* device, cTrackFile* file, QString* error)
{
    cGpxParser parser(device);
    return parser.parse(file, error);
}
