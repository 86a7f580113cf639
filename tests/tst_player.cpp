#include "audiobackend.h"
#include "player.h"
#include "testsupport.h"

#include <QtTest>

using testsupport::cMessageCapture;

namespace {

const int frequency = 8000;
const qint64 bytesPerSecond = frequency * cAudioBackend::channels * cAudioBackend::bytesPerSample;

} // namespace

// Sounds play through SDL's disk driver, which writes the mixed samples to a
// file at about real-time speed: the file's size tells that the whole sound
// went through an output opened afresh, and that the output closed after.
class tst_Player : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void playsEachFormatAndLogsEachStep_data();
    void playsEachFormatAndLogsEachStep();
    void secondPlayIsRefused();
    void missingFileStillFinishes();
    void soundArgumentChoosesDevice_data();
    void soundArgumentChoosesDevice();
    void destroyingMidSoundReturnsAtOnce();

private:
    QString sound(const QString& name) const { return m_dir.filePath(name); }
    qint64 outputBytes() const { return QFileInfo(m_output).size(); }
    // The sound, plus at most a poll interval and a few blocks of silence.
    bool outputHolds(double seconds) const
    {
        const qint64 extra = outputBytes() - qint64(seconds * bytesPerSecond);
        return extra >= 0 && extra <= bytesPerSecond * 6 / 10;
    }
    void playToEnd(cPlayer& player, const QString& file, double seconds) const
    {
        QSignalSpy finished(&player, &cPlayer::playFinished);
        QFile::remove(m_output);
        player.play(file);
        player.waitFinished();
        const qint64 bytes = outputBytes();
        QTest::qWait(300);
        QCOMPARE(outputBytes(), bytes);
        QCOMPARE(finished.count(), 1);
        QVERIFY2(outputHolds(seconds), qPrintable(QString::number(bytes)));
    }

    QTemporaryDir m_dir;
    QString m_output;
};

void tst_Player::initTestCase()
{
    m_output = sound("output.raw");
    // SDL reads these when its audio starts, at the first playback.
    qputenv("SDL_AUDIODRIVER", "disk");
    qputenv("SDL_DISKAUDIOFILE", m_output.toLocal8Bit());
    qputenv("SDL_DISKAUDIODELAY", QByteArray::number(cAudioBackend::blockFrames * 1000 / frequency));
    for (const QString name : {"0.5.wav", "0.5.mp3", "0.5.ogg", "0.5.flac", "1.wav", "5.wav"}) {
        const QString sine = "sine=duration=" + name.section('.', 0, -2);
        QCOMPARE(QProcess::execute("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i", sine, sound(name)}), 0);
    }
}

void tst_Player::playsEachFormatAndLogsEachStep_data()
{
    QTest::addColumn<QString>("file");
    for (const char* name : {"0.5.wav", "0.5.mp3", "0.5.ogg", "0.5.flac"})
        QTest::newRow(name) << sound(name);
}

void tst_Player::playsEachFormatAndLogsEachStep()
{
    QFETCH(QString, file);
    cMessageCapture log;
    cPlayer player(frequency);
    playToEnd(player, file, 0.5);
    // Every step logs its error code, empty when it worked.
    const QStringList messages = log.messages();
    QCOMPARE(messages.size(), 5);
    QCOMPARE(messages.mid(2).join('|').count("\"\""), 3);
}

void tst_Player::secondPlayIsRefused()
{
    cPlayer player(frequency);
    cMessageCapture log;
    // Arrives while waitFinished() handles events.
    QTimer::singleShot(100, &player, [&] { player.play(sound("0.5.wav")); });
    playToEnd(player, sound("1.wav"), 1.0);
    QCOMPARE(log.messages().filter("already"), QStringList{"Sound is already playing"});
}

void tst_Player::missingFileStillFinishes()
{
    cPlayer player(frequency);
    cMessageCapture log;
    playToEnd(player, sound("absent.wav"), 0);
    const QStringList messages = log.messages();
    QCOMPARE(messages.size(), 3);
    QVERIFY2(QRegularExpression("^0 \".+\"$").match(messages[1]).hasMatch(), qPrintable(messages[1]));
    QVERIFY(messages[2] != QStringLiteral("BASS_ChannelPlay: \"\""));
}

void tst_Player::soundArgumentChoosesDevice_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    // The disk driver has one output device, number 1.
    // The child runs with the Russian translation: the warnings stay as
    // they are, the device line is translated.
    QTest::newRow("last valid wins") << QStringList{"/sound:3", "/sound:x"}
                                     << "W:Error in setting sound device (convert)|D:BASS использует устройство: 3|"
                                        "D:BASS_Init: 0 \"No such device: 3\"";
    QTest::newRow("bad split, others ignored") << QStringList{"/SOUND:3", "sound:3", "/sound:1:2"}
                                               << "W:Error in setting sound device (param)|"
                                                  "D:BASS использует устройство: -1|D:BASS_Init: 1 \"\"";
    QTest::newRow("first device") << QStringList{"/sound:1"} << "D:BASS использует устройство: 1|D:BASS_Init: 1 \"\"";
}

// The player reads the process's command line, so each case runs in a child
// process (see main).
void tst_Player::soundArgumentChoosesDevice()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    QFile::remove(m_output);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_MESSAGE_PATTERN", "%{if-warning}W:%{endif}%{if-debug}D:%{endif}%{message}");
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), QStringList{"--play", sound("0.5.wav")} + arguments);
    QVERIFY(child.waitForFinished(30000));
    const QStringList lines = QString::fromLocal8Bit(child.readAllStandardError()).split('\n');
    QCOMPARE(lines.filter(QRegularExpression("^W:|устройство|BASS_Init")).join('|'), expected);
    QCOMPARE(outputHolds(0.5), expected.endsWith("BASS_Init: 1 \"\""));
}

void tst_Player::destroyingMidSoundReturnsAtOnce()
{
    auto* player = new cPlayer(frequency);
    QSignalSpy finished(player, &cPlayer::playFinished);
    player->play(sound("5.wav"));
    QTRY_VERIFY(outputBytes() > 0);
    QElapsedTimer timer;
    timer.start();
    delete player;
    QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(finished.count(), 0);
    // The cut playback left no output open behind it.
    cPlayer next(frequency);
    playToEnd(next, sound("0.5.flac"), 0.5);
}

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    // The child run of soundArgumentChoosesDevice.
    if (argc > 2 && qstrcmp(argv[1], "--play") == 0) {
        QTranslator russian;
        russian.load(QStringLiteral(":/tr/vosk.qm"));
        app.installTranslator(&russian);
        cPlayer player(frequency);
        player.play(QString::fromLocal8Bit(argv[2]));
        player.wait();
        return 0;
    }
    tst_Player test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_player.moc"
