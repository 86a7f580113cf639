#include "projectmanager.h"
#include "replay.h"
#include "routetable.h"
#include "testsupport.h"
#include "trackreader.h"

#include <QtTest>

#include <cmath>
#include <functional>
#include <random>

using namespace testsupport;

namespace {

// Inputs per reader; VOSK_FUZZ_INPUTS raises it for a longer hunt.
int inputCount()
{
    const int fromEnvironment = qEnvironmentVariableIntValue("VOSK_FUZZ_INPUTS");
    return fromEnvironment > 0 ? fromEnvironment : 1500;
}

const char* const evtSeed =
    "<eventlist name=direct>\n<name>5</name>\n"
    "<event>\n<name>Центральная</name>\n<zone shape=circle>\n<radius>35</radius>\n"
    "<point lat=55.753697 lon=37.619977></point>\n</zone>\n"
    "<reaction logic=rise>\n<play file=/voskdev/a.wav volume=5></play>\n<play file=b.wav ></play>\n</reaction>\n</event>\n"
    "</eventlist>\n<eventlist name=reverse>\n<name>5</name>\n"
    "<event>\n<name>O'Hara</name>\n<zone shape=circle><radius>40</radius><point lat=1.5 lon=2.5></point></zone>\n"
    "<reaction logic=rise></reaction>\n</event>\n</eventlist>\n";

// Byte-level damage of the kinds real files suffer: cut off, bytes flipped,
// runs duplicated or dropped, stray NULs and invalid UTF-8.
QByteArray mutate(const QByteArray& seed, std::mt19937& random)
{
    QByteArray data = seed;
    const int edits = 1 + static_cast<int>(random() % 4);
    for (int e = 0; e < edits && !data.isEmpty(); ++e) {
        const int at = static_cast<int>(random() % static_cast<unsigned>(data.size()));
        const int span = 1 + static_cast<int>(random() % 64);
        switch (random() % 7) {
        case 0:
            data.truncate(at);
            break;
        case 1:
            data[at] = static_cast<char>(random() % 256);
            break;
        case 2:
            data.insert(at, data.mid(at, span));
            break;
        case 3:
            data.remove(at, span);
            break;
        case 4:
            data.insert(at, '\0');
            break;
        case 5:
            data.insert(at, "\xff\xfe\xc3");
            break;
        default:
            data.insert(at, "{'}\"[[,=");
            break;
        }
    }
    return data;
}


} // namespace

class tst_FuzzReaders : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void mutatedProjects();
    void mutatedRouteScripts();
    void mutatedEvtFiles();
    void mutatedTracks_data();
    void mutatedTracks();
    void fuzzerFindings_data();
    void fuzzerFindings();

private:
    // Feeds mutated seeds through one reader; `check` judges each outcome.
    void run(const QByteArray& seed, const std::function<void(const QString&)>& check);

    // What each reader promises for any file.
    void checkProject(const QString& file);
    void checkRouteScript(const QString& file);
    void checkEvtFile(const QString& file);
    void checkTrack(const QString& file);

    QTemporaryDir m_dir;
    QByteArray m_projectSeed;
    QByteArray m_scriptSeed;
    cProjectManager m_manager;
};

void tst_FuzzReaders::initTestCase()
{
    QVERIFY(m_dir.isValid());
    cProjectManager manager;
    manager.project()->routes << sampleRoute() << sampleRoute();
    const QString file = m_dir.filePath("seed.vosk");
    QVERIFY(manager.saveProject(file));
    m_projectSeed = readFile(file);
    m_scriptSeed = "route =\n" + writeRoute(sampleRoute(), true).toLocal8Bit();
}

void tst_FuzzReaders::run(const QByteArray& seed, const std::function<void(const QString&)>& check)
{
    std::mt19937 random(20261121);
    const QString file = m_dir.filePath("input");
    cMessageCapture quiet;
    for (int i = 0; i < inputCount(); ++i) {
        QVERIFY(writeFile(file, mutate(seed, random)));
        check(file);
        if (QTest::currentTestFailed()) {
            QFile::copy(file, m_dir.filePath("failing"));
            qInstallMessageHandler(nullptr);
            qWarning() << "failing input kept as" << m_dir.filePath("failing") << "at iteration" << i;
            m_dir.setAutoRemove(false);
            return;
        }
    }
}

void tst_FuzzReaders::checkProject(const QString& file)
{
    m_manager.project()->routes = {sampleRoute()};
    const cProject before = *m_manager.project();
    cSignalRecorder recorder(&m_manager);
    // Either refused before anything changed, or (even when failing
    // later) announced as a new project.
    if (!m_manager.openProject(file) && recorder.names == QStringList{"opened"})
        QCOMPARE(difference(*m_manager.project(), before), QString());
    else
        QCOMPARE(recorder.names, (QStringList{"created", "opened"}));
}

void tst_FuzzReaders::checkRouteScript(const QString& file)
{
    const int routes = m_manager.project()->routes.size();
    cSignalRecorder recorder(&m_manager);
    QString error;
    QVERIFY(m_manager.importLuaRoute(file, &error));
    QCOMPARE(recorder.names, QStringList{"opened"});
    QVERIFY(m_manager.project()->routes.size() - routes <= 1);
    if (m_manager.project()->routes.size() > routes)
        QVERIFY(!m_manager.project()->routes.last().id.isNull());
}

void tst_FuzzReaders::checkEvtFile(const QString& file)
{
    const int routes = m_manager.project()->routes.size();
    cSignalRecorder recorder(&m_manager);
    QString error;
    if (m_manager.importEvtRoute(file, &error)) {
        QCOMPARE(m_manager.project()->routes.size(), routes + 1);
        QCOMPARE(recorder.names, (QStringList{"opened", "imported"}));
    } else {
        QVERIFY(!error.isEmpty());
        QCOMPARE(m_manager.project()->routes.size(), routes);
        QVERIFY(recorder.names.isEmpty());
    }
}

// Whatever is read is a usable track, and replaying it through stops on
// and off it holds.
void tst_FuzzReaders::checkTrack(const QString& file)
{
    cBranch branch;
    branch.stops << cStop() << cStop();
    branch.stops[0].lon = 13.7142;
    branch.stops[0].lat = 45.2735;
    branch.stops[1].course_enabled = true;
    cTrackFile tracks;
    QString error;
    if (!cTrackReader::read(file, &tracks, &error)) {
        QVERIFY(!error.isEmpty());
        return;
    }
    QVERIFY(!tracks.tracks.isEmpty());
    for (const cTrack& track : tracks.tracks) {
        QVERIFY(!track.points.isEmpty());
        for (const cTrackPoint& point : track.points)
            QVERIFY(std::fabs(point.lat) <= 90 && std::fabs(point.lon) <= 180);
        QCOMPARE(cReplay(track).replayBranch(branch, eBranchKind::Direct).stops.size() % 2, 0);
    }
}

void tst_FuzzReaders::mutatedProjects()
{
    run(m_projectSeed, [&](const QString& file) { checkProject(file); });
}

void tst_FuzzReaders::mutatedRouteScripts()
{
    run(m_scriptSeed, [&](const QString& file) { checkRouteScript(file); });
}

void tst_FuzzReaders::mutatedEvtFiles()
{
    run(evtSeed, [&](const QString& file) { checkEvtFile(file); });
}

void tst_FuzzReaders::mutatedTracks_data()
{
    QTest::addColumn<QString>("seed");
    QTest::newRow("GPX") << "around-visnjan-with-car.gpx";
    QTest::newRow("NMEA") << "around-visnjan-with-car.nmea";
}

void tst_FuzzReaders::mutatedTracks()
{
    QFETCH(QString, seed);
    const QByteArray seedBytes = readFile(QStringLiteral(VOSK_SHARED_DIR "/tracks/") + seed);
    QVERIFY(!seedBytes.isEmpty());
    run(seedBytes, [&](const QString& file) { checkTrack(file); });
}

// Inputs the fuzzers (fuzz/) found to break a reader, one folder per reader.
void tst_FuzzReaders::fuzzerFindings_data()
{
    QTest::addColumn<QString>("file");
    const QDir root(QStringLiteral(VOSK_SOURCE_DIR "/tests/fuzz-regressions"));
    const QStringList readers = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QVERIFY(!readers.isEmpty());
    for (const QString& reader : readers) {
        for (const QFileInfo& input : QDir(root.filePath(reader)).entryInfoList(QDir::Files))
            QTest::newRow(qPrintable(reader + '/' + input.fileName())) << input.filePath();
    }
}

void tst_FuzzReaders::fuzzerFindings()
{
    QFETCH(QString, file);
    const QString reader = QFileInfo(file).dir().dirName();
    cMessageCapture quiet;
    if (reader == "project")
        checkProject(file);
    else if (reader == "luaroute")
        checkRouteScript(file);
    else if (reader == "evt")
        checkEvtFile(file);
    else if (reader == "track")
        checkTrack(file);
    else
        QFAIL("no reader for this folder");
}

QTEST_GUILESS_MAIN(tst_FuzzReaders)
#include "tst_fuzzreaders.moc"
