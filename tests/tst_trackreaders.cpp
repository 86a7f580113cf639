#include "testsupport.h"
#include "trackreader.h"

#include "geo.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString tracksDir = QStringLiteral(VOSK_SHARED_DIR "/tracks/");

// "format|name:points:timed|..." in file order, to compare a whole listing at once.
QString listing(const cTrackFile& file)
{
    QStringList parts{file.format};
    for (const cTrack& track : file.tracks)
        parts << QStringLiteral("%1:%2:%3").arg(track.name).arg(track.points.size()).arg(track.hasTimes() ? "t" : "-");
    return parts.join(QLatin1Char('|'));
}

QByteArray sentence(const QByteArray& body)
{
    int sum = 0;
    for (char c : body)
        sum ^= static_cast<unsigned char>(c);
    return '$' + body + '*' + QByteArray::number(sum, 16).rightJustified(2, '0').toUpper() + "\r\n";
}

QString isoTime(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

} // namespace

class tst_TrackReaders : public QObject
{
    Q_OBJECT

private slots:
    void listsTheTracksOfRealFiles_data();
    void listsTheTracksOfRealFiles();
    void nmeaConversionsMatchTheirGpx();
    void tracksWithSomePointsUntimedAreRefused();
    void rejectsBadGpx_data();
    void rejectsBadGpx();
    void nmeaSkipsAndCountsWhatItCannotUse();
    void nmeaWithoutAnyFixIsAnError();
    void hostileFilesEndQuickly_data();
    void hostileFilesEndQuickly();

private:
    QTemporaryDir m_dir;
};

void tst_TrackReaders::listsTheTracksOfRealFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("expected");
    // Garmin extensions on every point, all on one line.
    QTest::newRow("car, GPX 1.1") << "around-visnjan-with-car.gpx"
                                  << "GPX 1.1|2020-12-18 07:24:29:104:t";
    // An empty first track is left out; waypoints are not a track.
    QTest::newRow("walk with waypoints, GPX 1.0")
        << "cerknicko-jezero.gpx"
        << "GPX 1.0|ACTIVE LOG #2:173:t|ACTIVE LOG #3:52:t|ACTIVE LOG #4:2:t|ACTIVE LOG #5:44:t|"
           "ACTIVE LOG #6:2:t|ACTIVE LOG #7:2:t|ACTIVE LOG #8:21:t";
    QTest::newRow("hike, GPX 1.0") << "korita-zbevnica.gpx"
                                   << "GPX 1.0|03-OCT-10 #2:358:-|ACTIVE LOG:176:t|ACTIVE LOG #2:337:t";
    QTest::newRow("planned route") << "route.gpx"
                                   << "GPX 1.0|Route 1:55:-";
    QTest::newRow("empty segment") << "track-with-empty-segment.gpx"
                                   << "GPX 1.1|2013-07-06T14:59:00Z:9:t";
    QTest::newRow("every GPX 1.0 element") << "gpx1.0_with_all_fields.gpx"
                                           << "GPX 1.0|example name:3:t|second route:2:-|example name t:1:t";
    QTest::newRow("every GPX 1.1 element") << "gpx1.1_with_all_fields.gpx"
                                           << "GPX 1.1|example name:3:t|second route:2:-|example name t:1:t";
    QTest::newRow("car, NMEA") << "around-visnjan-with-car.nmea"
                               << "NMEA 0183|Log part 1:104:t";
    // gpsbabel wrote the untimed track without times, then the timed ones.
    QTest::newRow("hike, NMEA") << "korita-zbevnica.nmea"
                                << "NMEA 0183|Log part 1:358:-|Log part 2:513:t";
}

void tst_TrackReaders::listsTheTracksOfRealFiles()
{
    QFETCH(QString, file);
    QFETCH(QString, expected);
    cTrackFile tracks;
    QString error;
    QVERIFY2(cTrackReader::read(tracksDir + file, &tracks, &error), qPrintable(error));
    QCOMPARE(listing(tracks), expected);
    QCOMPARE(tracks.badSentences + tracks.invalidFixes, 0);
    for (const cTrack& track : tracks.tracks)
        QCOMPARE(track.segmentCount(), 1);
}

// The same rides as GPX and as NMEA (minutes to three decimals, about a
// metre and a half) must be the same points at the same times.
void tst_TrackReaders::nmeaConversionsMatchTheirGpx()
{
    for (const QString& ride : {QStringLiteral("around-visnjan-with-car"), QStringLiteral("korita-zbevnica")}) {
        cTrackFile gpx;
        cTrackFile nmea;
        QString error;
        QVERIFY2(cTrackReader::read(tracksDir + ride + ".gpx", &gpx, &error), qPrintable(error));
        QVERIFY2(cTrackReader::read(tracksDir + ride + ".nmea", &nmea, &error), qPrintable(error));
        QVector<cTrackPoint> gpxPoints;
        QVector<cTrackPoint> nmeaPoints;
        for (const cTrack& track : gpx.tracks)
            gpxPoints += track.points;
        for (const cTrack& track : nmea.tracks)
            nmeaPoints += track.points;
        QCOMPARE(nmeaPoints.size(), gpxPoints.size());
        for (int i = 0; i < gpxPoints.size(); ++i) {
            const cTrackPoint& a = gpxPoints.at(i);
            const cTrackPoint& b = nmeaPoints.at(i);
            QVERIFY2(geo::distanceMetres(a.lon, a.lat, b.lon, b.lat) < 1.5, qPrintable(ride + QString::number(i)));
            QCOMPARE(isoTime(b.time), isoTime(a.time));
        }
    }
}

void tst_TrackReaders::tracksWithSomePointsUntimedAreRefused()
{
    cTrackFile file;
    QString error;
    // The "without times" copy still has times on the last track but its first points.
    QVERIFY(cTrackReader::read(tracksDir + "cerknicko-without-times.gpx", &file, &error));
    QCOMPARE(file.tracks.size(), 7);
    QVERIFY2(cTrackReader::checkTimes(file.tracks.first(), &error), qPrintable(error));
    QVERIFY(!cTrackReader::checkTimes(file.tracks.last(), &error));
    QCOMPARE(error, QStringLiteral("Line 928: this point of \"ACTIVE LOG #8\" has no time, but others have one"));

    QVERIFY(cTrackReader::read(tracksDir + "gpx1.1_with_all_fields.gpx", &file, &error));
    QVERIFY(!cTrackReader::checkTimes(file.tracks.first(), &error));
    QCOMPARE(error, QStringLiteral("Line 101: this point of \"example name\" has no time, but others have one"));
    QVERIFY(cTrackReader::checkTimes(file.tracks.last(), &error));
    QCOMPARE(isoTime(file.tracks.last().points.first().time), QStringLiteral("2013-01-01T12:00:04.000Z"));
}

void tst_TrackReaders::rejectsBadGpx_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");
    const QByteArray head
        = "<?xml version=\"1.0\"?>\n<gpx xmlns=\"http://www.topografix.com/GPX/1/1\">\n<trk><trkseg>\n";
    const QByteArray tail = "</trkseg></trk>\n</gpx>\n";
    QTest::newRow("truncated") << head + "<trkpt lat=\"45.1\" lon=\"13.7\"><time>2020-12-18T06:1"
                               << "Line 4: the file ends before the GPX document is complete";
    QTest::newRow("mismatched tags") << head + "<trkpt lat=\"45.1\" lon=\"13.7\"></trkseg>\n" + tail
                                     << "Line 4: the XML is not well-formed: ";
    QTest::newRow("wrong namespace") << QByteArray("<gpx xmlns=\"http://www.topografix.com/GPX/2/0\"><trk/></gpx>")
                                     << "Line 1: unknown GPX namespace \"http://www.topografix.com/GPX/2/0\"; "
                                        "GPX 1.0 and 1.1 can be read";
    QTest::newRow("not GPX") << QByteArray("<?xml version=\"1.0\"?>\n<kml><Placemark/></kml>")
                             << "Line 2: this is not a GPX file, its first element is <kml>";
    QTest::newRow("NaN") << head + "<trkpt lat=\"45.1\" lon=\"13.7\"/>\n<trkpt lat=\"NaN\" lon=\"13.7\"/>\n" + tail
                         << "Line 5: lat \"NaN\" is not a number";
    QTest::newRow("latitude too big") << head + "<trkpt lat=\"91\" lon=\"13.7\"/>\n" + tail
                                      << "Line 4: lat 91 is outside -90 to 90";
    QTest::newRow("longitude too small") << head + "<trkpt lat=\"45\" lon=\"-180.5\"/>\n" + tail
                                         << "Line 4: lon -180.5 is outside -180 to 180";
    QTest::newRow("no longitude") << head + "<trkpt lat=\"45\"/>\n" + tail << "Line 4: a point without \"lon\"";
    QTest::newRow("bad time") << head + "<trkpt lat=\"45\" lon=\"13\">\n<time>18.12.2020 06:16</time></trkpt>\n" + tail
                              << "Line 5: cannot read the time \"18.12.2020 06:16\"";
    // A byte-order mark is no error, but this file holds a waypoint only.
    const QByteArray withBom = testsupport::readFile(tracksDir + "unicode_with_bom.gpx");
    QVERIFY(withBom.startsWith("\xEF\xBB\xBF<?xml"));
    QTest::newRow("waypoint only, after a BOM") << withBom << "The file has no track or route points";
    QTest::newRow("only empty segments") << head + tail << "The file has no track or route points";
    QTest::newRow("empty file") << QByteArray("\n\n") << "The file is empty";
    QTest::newRow("something else") << QByteArray("lat,lon\n45,13\n")
                                    << "This is neither a GPX file nor an NMEA 0183 log";
}

void tst_TrackReaders::rejectsBadGpx()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    const QString path = m_dir.filePath(QStringLiteral("bad.gpx"));
    QVERIFY(testsupport::writeFile(path, content));
    cTrackFile file;
    QString error;
    QVERIFY(!cTrackReader::read(path, &file, &error));
    QVERIFY2(error.startsWith(expected), qPrintable(error));
}

void tst_TrackReaders::nmeaSkipsAndCountsWhatItCannotUse()
{
    QByteArray log;
    log += sentence("GPRMC,120000.00,A,5545.000,N,03737.000,E,10.0,90.0,010524,,,A");
    log += sentence("GPGGA,120000.00,5545.000,N,03737.000,E,1,08,1.0,150.0,M,14.0,M,,");
    log += "$GPRMC,120001.00,A,5545.000,N,03737.010,E,10.0,90.0,010524,,,A*00\r\n"; // checksum
    log += sentence("GPRMC,120002.00,V,,,,,,,010524,,,N");
    log += sentence("GPGGA,120003.00,,,,,0,00,,,M,,M,,");
    log += sentence("GPGSV,3,1,11,03,03,111,00,04,15,270,00,06,01,010,00,13,06,292,00");
    log += "garbage\r\n";
    log += sentence("GNRMC,120004.00,A,5545.000,S,03737.020,W,0.5,,010524,,,A");
    log += sentence("GPRMC,120005.00,A,5561.000,N,03737.030,E,10.0,90.0,010524,,,A"); // 61 minutes
    log += "$GPRMC,120006.00,A,5545.000,N\r\n";
    log += sentence("GNGGA,120007.00,5545.100,N,03737.000,E,2,08,1.0,150.0,M,14.0,M,,");
    log += sentence("GPRMC,235959.50,A,5545.200,N,03737.000,E,0.0,0.0,010524,,,A");
    log += sentence("GPRMC,000000.50,A,5545.200,N,03737.000,E,0.0,0.0,020524,,,A");
    log += sentence("GPRMC,110000.00,A,5545.300,N,03737.000,E,0.0,0.0,010524,,,A"); // an older log follows
    const QString path = m_dir.filePath(QStringLiteral("log.nmea"));
    QVERIFY(testsupport::writeFile(path, log));
    cTrackFile file;
    QString error;
    QVERIFY2(cTrackReader::read(path, &file, &error), qPrintable(error));
    QCOMPARE(listing(file), QStringLiteral("NMEA 0183|Log part 1:5:t|Log part 2:1:t"));
    QCOMPARE(file.invalidFixes, 2);
    QCOMPARE(file.badSentences, 4);
    QCOMPARE(file.firstBadLine, 3);

    const QVector<cTrackPoint>& points = file.tracks.first().points;
    QCOMPARE(points.at(0).lat, 55.75);
    QCOMPARE(points.at(0).lon, 37 + 37.0 / 60);
    QCOMPARE(points.at(0).course, 90.0);
    QCOMPARE(qRound(points.at(0).speed * 1000), 5144);
    QCOMPARE(points.at(0).line, 1);
    QCOMPARE(points.at(1).lat, -55.75);
    QVERIFY(points.at(1).lon < -37.6);
    QCOMPARE(points.at(1).course, -1.0);
    QCOMPARE(isoTime(points.at(1).time), QStringLiteral("2024-05-01T12:00:04.000Z"));
    // GGA alone takes the date of the RMC before it.
    QCOMPARE(isoTime(points.at(2).time), QStringLiteral("2024-05-01T12:00:07.000Z"));
    QCOMPARE(isoTime(points.at(4).time), QStringLiteral("2024-05-02T00:00:00.500Z"));
    QCOMPARE(isoTime(file.tracks.last().points.first().time), QStringLiteral("2024-05-01T11:00:00.000Z"));
}

void tst_TrackReaders::nmeaWithoutAnyFixIsAnError()
{
    const QString path = m_dir.filePath(QStringLiteral("nofix.nmea"));
    QVERIFY(testsupport::writeFile(path, sentence("GPRMC,120002.00,V,,,,,,,010524,,,N") + "$GPGGA,broken\r\n"));
    cTrackFile file;
    QString error;
    QVERIFY(!cTrackReader::read(path, &file, &error));
    QCOMPARE(error,
             QStringLiteral("The log has no valid RMC or GGA fix. Sentences without a fix: 1; "
                            "damaged or malformed: 1."));
}

void tst_TrackReaders::hostileFilesEndQuickly_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("expected");
    const QByteArray point = "<trkpt lat=\"45\" lon=\"13\"/>";
    QTest::newRow("nested 200,000 deep") << "<gpx><trk><trkseg>" + point + QByteArray("<x>").repeated(200000)
            + QByteArray("</x>").repeated(200000) + "</trkseg></trk></gpx>"
                                         << qint64(0) << QString();
    QByteArray laughs = "<?xml version=\"1.0\"?><!DOCTYPE gpx [<!ENTITY e0 \"laugh\">";
    for (int i = 1; i < 10; ++i)
        laughs += QStringLiteral("<!ENTITY e%1 \"%2\">").arg(i).arg(QStringLiteral("&e%1;").arg(i - 1).repeated(10)).toLatin1();
    QTest::newRow("entities expanding to 5 GB") << laughs + "]><gpx><trk><name>&e9;</name><trkseg>" + point
            + "</trkseg></trk></gpx>"
                                                << qint64(0) << "Line 1: the XML is not well-formed";
    // Sparse: the size is refused before a byte is read.
    QTest::newRow("larger than 256 MB") << sentence("GPRMC,120000.00,A,5545.000,N,03737.000,E,10.0,90.0,010524,,,A")
                                        << (qint64(256) << 20) + 1
                                        << "The file is larger than 256 MB, more than any recorded ride";
}

void tst_TrackReaders::hostileFilesEndQuickly()
{
    QFETCH(QByteArray, content);
    QFETCH(qint64, size);
    QFETCH(QString, expected);
    const QString path = m_dir.filePath(QStringLiteral("hostile"));
    QVERIFY(testsupport::writeFile(path, content));
    if (size)
        QVERIFY(QFile::resize(path, size));
    QElapsedTimer clock;
    clock.start();
    cTrackFile file;
    QString error;
    QCOMPARE(cTrackReader::read(path, &file, &error), expected.isEmpty());
    QVERIFY2(error.startsWith(expected), qPrintable(error));
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QFile::remove(path);
}

QTEST_GUILESS_MAIN(tst_TrackReaders)
#include "tst_trackreaders.moc"
