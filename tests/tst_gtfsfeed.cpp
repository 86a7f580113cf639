#include "gtfsfeed.h"
#include "gtfssupport.h"
#include "testsupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace gtfssupport;

namespace {

// The stop ids of a pattern, to compare with the feed's text.
QStringList stopIds(const cGtfsFeed& feed, const cGtfsPattern& pattern)
{
    QStringList ids;
    for (const int stop : pattern.stops)
        ids << feed.stops().at(stop).id;
    return ids;
}

QVector<int> allRoutes(const cGtfsFeed& feed)
{
    QVector<int> routes;
    for (int i = 0; i < feed.routes().size(); ++i)
        routes << i;
    return routes;
}

} // namespace

class tst_GtfsFeed : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_feeds = 0;

    QString folder(const cFeedFiles& files)
    {
        const QString path = m_dir.filePath(QStringLiteral("feed%1").arg(++m_feeds));
        return writeFolder(path, files) ? path : QString();
    }

    // The error of opening a feed and reading every route; empty on success.
    QString readError(const QString& path)
    {
        cGtfsFeed feed;
        QString error;
        if (feed.open(path, nullptr, &error))
            feed.loadPatterns(allRoutes(feed), nullptr, &error);
        return error;
    }

private slots:
    void patternsByDirection()
    {
        cGtfsFeed feed;
        QString error;
        QVERIFY2(feed.open(folder(smallFeed()), nullptr, &error), qPrintable(error));
        QCOMPARE(feed.routes().size(), 2);
        QCOMPARE(feed.routes().at(0).longName, QStringLiteral("Вокзал — Центр"));
        QCOMPARE(feed.routes().at(0).tripCount, 8);
        QCOMPARE(feed.findRoute("2"), 1);
        QCOMPARE(feed.findRoute("R1"), 0);
        QCOMPARE(feed.findRoute("R9"), -1);

        QVERIFY2(feed.loadPatterns({0, 1}, nullptr, &error), qPrintable(error));
        const QVector<cGtfsPattern>& patterns = feed.patterns(0);
        QCOMPARE(patterns.size(), 3);
        QCOMPARE(stopIds(feed, patterns.at(0)), QStringList({"S4", "S3", "S2", "S1"}));
        QCOMPARE(patterns.at(0).tripCount, 4);
        QCOMPARE(patterns.at(0).direction, 1);
        QCOMPARE(stopIds(feed, patterns.at(1)), QStringList({"S1", "S2", "S3", "S4"}));
        QCOMPARE(patterns.at(1).tripCount, 3);
        QCOMPARE(stopIds(feed, patterns.at(2)), QStringList({"S1", "S3"}));
        // The busier direction 1 does not take the direct branch.
        QCOMPARE(feed.defaultChoice(0).direct, 1);
        QCOMPARE(feed.defaultChoice(0).reverse, 0);

        // Trips without direction_id: the most frequent pattern, no reverse.
        QCOMPARE(feed.patterns(1).size(), 1);
        QCOMPARE(feed.patterns(1).at(0).direction, -1);
        QCOMPARE(feed.defaultChoice(1).direct, 0);
        QCOMPARE(feed.defaultChoice(1).reverse, -1);

        // Reading another selection drops what is not chosen any more.
        QVERIFY(feed.loadPatterns({1}, nullptr, &error));
        QVERIFY(!feed.isLoaded(0));
        QVERIFY(feed.isLoaded(1));
    }

    void badFeeds_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("contents"); // null: the file is left out
        QTest::addColumn<QString>("error");

        QTest::newRow("missing file") << "stop_times.txt" << QByteArray() << "The feed has no stop_times.txt.";
        QTest::newRow("missing column")
            << "stops.txt" << QByteArray("stop_id,stop_name,stop_lon\nS1,A,37\n")
            << "stops.txt, line 1: the column stop_lat is missing.";
        QTest::newRow("stop not defined")
            << "stop_times.txt" << QByteArray("trip_id,stop_id,stop_sequence\nT1,S1,1\nT1,S9,2\n")
            << "stop_times.txt, line 3: stop_id \"S9\" is not defined in stops.txt.";
        QTest::newRow("route not defined") << "trips.txt" << QByteArray("route_id,trip_id\nR1,T1\nR7,T2\n")
                                           << "trips.txt, line 3: route_id \"R7\" is not defined in routes.txt.";
        QTest::newRow("malformed coordinate")
            << "stops.txt" << QByteArray("stop_id,stop_lat,stop_lon\nS1,55.75,37.61\nS2,\"55,76\",37.62\n")
            << "stops.txt, line 3: stop_lat \"55,76\" is not a valid number.";
        QTest::newRow("malformed sequence")
            << "stop_times.txt" << QByteArray("trip_id,stop_id,stop_sequence\r\nT1,S1,1\r\nT1,S2,2a\r\n")
            << "stop_times.txt, line 3: stop_sequence \"2a\" is not a whole number.";
        QTest::newRow("direction other than 0 or 1")
            << "trips.txt" << QByteArray("route_id,trip_id,direction_id\nR1,T1,2\n")
            << "trips.txt, line 2: direction_id \"2\" is neither 0 nor 1.";
        QTest::newRow("used stop without position")
            << "stops.txt" << QByteArray("stop_id,stop_lat,stop_lon\nS1,,\nS2,1,1\nS3,1,1\nS4,1,1\n")
            << "stop_times.txt, line 2: stop_id \"S1\" has no position in stops.txt.";
        QTest::newRow("quote not closed")
            << "stops.txt" << QByteArray("stop_id,stop_name,stop_lat,stop_lon\nS1,\"Open,1,1\nS2,B,1,1\n")
            << "stops.txt, line 2: a quoted field is not closed.";
        QTest::newRow("bad shape point")
            << "shapes.txt" << QByteArray("shape_id,shape_pt_lat,shape_pt_lon,shape_pt_sequence\nP,1,x,1\n")
            << "shapes.txt, line 2: shape_pt_lon \"x\" is not a valid number.";
    }

    void badFeeds()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, contents);
        cFeedFiles files = smallFeed();
        files["trips.txt"].replace("R2,W,T6,,", "R2,W,T6,,P");
        if (contents.isNull())
            files.remove(file);
        else
            files[file] = contents;
        QTEST(readError(folder(files)), "error");
    }

    // The good archive keeps its feed in a folder, as some publishers do.
    void damagedZips()
    {
        cFeedFiles nested;
        const cFeedFiles files = smallFeed();
        for (auto it = files.begin(); it != files.end(); ++it)
            nested.insert("city/" + it.key(), it.value());
        const QString good = m_dir.filePath("good.zip");
        QVERIFY(writeZip(good, nested, Packing::Stored));
        QCOMPARE(readError(good), QString());
        QByteArray bytes = testsupport::readFile(good);

        const QString truncated = m_dir.filePath("truncated.zip");
        QVERIFY(testsupport::writeFile(truncated, bytes.left(bytes.size() * 2 / 3)));
        QCOMPARE(readError(truncated),
                 QStringLiteral("truncated.zip is not a readable zip archive; it may be damaged or cut short."));

        // Stored entries: the changed byte reaches the reader as a plausible
        // sequence number; only the checksum tells.
        const QString damaged = m_dir.filePath("damaged.zip");
        const int at = bytes.indexOf("T4,,,S3,2");
        QVERIFY(at > 0);
        bytes[at + 8] = '3';
        QVERIFY(testsupport::writeFile(damaged, bytes));
        QCOMPARE(readError(damaged), QStringLiteral("stop_times.txt is damaged in the archive."));
    }

    // Progress runs up to the total; a cancelled read keeps the state before it.
    void progressAndCancel()
    {
        const QString path = folder(smallFeed());
        cGtfsFeed feed;
        QString error;
        QVERIFY(feed.open(path, nullptr, &error));
        QVERIFY(feed.loadPatterns({0}, nullptr, &error));

        qint64 last = -1;
        qint64 total = 0;
        bool monotonic = true;
        const cGtfsProgress watch = [&](qint64 done, qint64 all) {
            monotonic = monotonic && done >= last;
            last = done;
            total = all;
            return true;
        };
        QVERIFY(feed.loadPatterns({0, 1}, watch, &error));
        QVERIFY(monotonic);
        QCOMPARE(last, total);
        QCOMPARE(total, qint64(smallFeed()["stops.txt"].size() + smallFeed()["stop_times.txt"].size()));

        QVERIFY(!feed.loadPatterns({1}, [](qint64, qint64) { return false; }, &error));
        QCOMPARE(error, QStringLiteral("Reading the feed was cancelled."));
        QVERIFY(feed.isLoaded(0));
        QVERIFY(!feed.open(folder({}), nullptr, &error));
        QCOMPARE(feed.routes().size(), 2);
    }
};

QTEST_GUILESS_MAIN(tst_GtfsFeed)
#include "tst_gtfsfeed.moc"
