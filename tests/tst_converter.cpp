#include "converter.h"
#include "testsupport.h"

#include <QtTest>

#include <signal.h>
#include <sys/resource.h>

using namespace testsupport;

namespace {

QByteArray run(const QString& program, const QStringList& args)
{
    QProcess process;
    process.start(program, args);
    process.waitForFinished(60000);
    return process.readAllStandardOutput();
}

QByteArray le32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// Empty when `wav` is in the device's format and holds exactly the samples
// ffmpeg decodes from `source`; otherwise what is wrong.
QString deviceWavProblem(const QString& wav, const QString& source, double seconds)
{
    const QByteArray bytes = readFile(wav);
    const quint32 size = quint32(bytes.size());
    const QByteArray header = "RIFF" + le32(size - 8) + "WAVEfmt "
                              + QByteArray::fromHex("1000000001000100401f0000803e000002001000") + "data"
                              + le32(size - 44);
    if (bytes.left(44) != header)
        return wav + ": header " + bytes.left(44).toHex();
    // A reader that is not ours must agree on format and length.
    const QString info = run("python3", {"-c", "import wave,sys;w=wave.open(sys.argv[1]);print(w.getnchannels(),"
                                               "w.getsampwidth(),w.getframerate(),w.getnframes())", wav})
                             .trimmed();
    const int frames = info.section(' ', 3).toInt();
    if (!info.startsWith("1 2 8000 ") || frames * 2 != int(size) - 44 || qAbs(frames / 8000.0 - seconds) > 0.03)
        return wav + ": python's wave says " + info;
    // Only ffmpeg's metadata chunks may go; the samples stay its own.
    if (bytes.mid(44) != run("ffmpeg", {"-v", "error", "-i", source, "-ar", "8000", "-ac", "1", "-f", "s16le", "-"}))
        return wav + ": samples differ";
    return QString();
}

} // namespace

class tst_Converter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { m_out.reset(new QTemporaryDir); }
    void cleanup() { qputenv("PATH", m_path); }
    void realSourcesBecomeDeviceWav();
    void keptOutputWithoutDataTagIsRewritten();
    void commandLineAndBusyConverter();
    void reportsWhatItCouldNotWrite();
    void destructorEndsAHungRun();

private:
    // Converts `sources`; returns the reports as "name=result", then
    // "finished=value".
    QStringList convert(cConverter& converter, const QStringList& sources);
    // A stand-in ffmpeg, first on the search path, that logs its arguments
    // and writes a tiny output.
    void useFakeFfmpeg();
    QString src(const QString& name) const { return m_sources.filePath(name); }
    QString out(const QString& name) const { return m_out->filePath(name); }

    QTemporaryDir m_sources;
    QScopedPointer<QTemporaryDir> m_out;
    QByteArray m_path = qgetenv("PATH");
};

void tst_Converter::initTestCase()
{
    const QList<QPair<QString, QStringList>> tones{
        {"Центральная.mp3", {"-ar", "22050"}},
        {"next.ogg", {"-ar", "48000", "-ac", "2", "-c:a", "libvorbis"}},
        {"tagged.wav", {"-ar", "16000", "-metadata", "title=Station", "-metadata", "artist=Norvalis"}},
        {"stereo 44k.wav", {"-ar", "44100", "-ac", "2"}}};
    const QStringList seconds{"1", "0.7", "0.5", "1.2"};
    for (int i = 0; i < tones.size(); ++i) {
        run("ffmpeg", QStringList{"-v", "error", "-f", "lavfi", "-i", "sine=duration=" + seconds[i]} + tones[i].second
                          + QStringList{src(tones[i].first)});
        QVERIFY(QFile::exists(src(tones[i].first)));
    }
    QVERIFY(readFile(src("tagged.wav")).contains("LIST"));
    QVERIFY(writeFile(src("broken.wav"), QByteArray("This is not a sound.\n").repeated(40)));
    QVERIFY(QDir(m_sources.path()).mkpath("a/b"));
    QVERIFY(QFile::copy(src("next.ogg"), src("a/b/track.final.MP3")));
    QVERIFY(QFile::copy(src("tagged.wav"), src("a/b/noext")));
}

QStringList tst_Converter::convert(cConverter& converter, const QStringList& sources)
{
    QStringList reports;
    QSignalSpy finished(&converter, &cConverter::convertFinished);
    const auto report = connect(&converter, &cConverter::fileProcessed, this, [&](const QString& fn, bool result) {
        reports << QFileInfo(fn).fileName() + '=' + QString::number(result);
    });
    converter.setOutputDir(m_out->path());
    converter.convert(sources);
    const bool done = QTest::qWaitFor([&finished] { return !finished.isEmpty(); }, 60000) && converter.wait();
    QCoreApplication::processEvents();
    disconnect(report);
    if (done)
        reports << "finished=" + QString::number(finished.at(0).at(0).toBool());
    return reports;
}

void tst_Converter::useFakeFfmpeg()
{
    QVERIFY(writeFile(out("ffmpeg"), "#!/bin/sh\n"
                                     "case \"$*\" in */hang.wav*) exec sleep 30;; esac\n"
                                     "printf '%s\\n' \"$@\" -- >> \"$(dirname \"$0\")/args\"\n"
                                     "for last; do :; done\n"
                                     "case \"$last\" in *.wav) echo RIFF > \"$last\";; esac\n"));
    QFile(out("ffmpeg")).setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    qputenv("PATH", m_out->path().toLocal8Bit() + ':' + m_path);
}

void tst_Converter::realSourcesBecomeDeviceWav()
{
    cConverter converter;
    converter.setFileSaveType(0);
    QCOMPARE(convert(converter, {}), QStringList{"finished=1"});

    const QStringList names{"Центральная.mp3", "next.ogg", "tagged.wav", "stereo 44k.wav", "a/b/track.final.MP3"};
    QStringList sources{src("broken.wav"), src("a/b/noext")};
    for (const QString& name : names)
        sources << src(name);
    testsupport::cMessageCapture log;
    // Reported twice: the undecodable source, and the one without an
    // extension, for which ffmpeg finds no output format; neither leaves an
    // output to rewrite.
    QCOMPARE(convert(converter, sources),
             (QStringList{"broken.wav=0", "broken.wav=0", "noext=0", "noext=1", "Центральная.mp3=1", "next.ogg=1",
                          "tagged.wav=1", "stereo 44k.wav=1", "track.final.MP3=1", "finished=0"}));
    QVERIFY(log.messages().contains("Exit code: 666"));
    QCOMPARE(QDir(m_out->path()).entryList(QDir::Files, QDir::Name),
             (QStringList{"next.wav", "stereo 44k.wav", "tagged.wav", "track.final.wav", "Центральная.wav"}));
    const QList<double> seconds{1.0, 0.7, 0.5, 1.2, 0.7};
    for (int i = 0; i < names.size(); ++i) {
        const QString problem =
            deviceWavProblem(out(QFileInfo(names[i]).completeBaseName() + ".wav"), src(names[i]), seconds[i]);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }
}

void tst_Converter::keptOutputWithoutDataTagIsRewritten()
{
    QVERIFY(writeFile(out("next.wav"), "0123456789ABCDEF"));
    cConverter converter;
    QCOMPARE(convert(converter, {src("next.ogg")}), (QStringList{"next.ogg=1", "finished=1"}));
    // No tag counts as position -1: the last 16 - 7 bytes are the data.
    const QByteArray bytes = readFile(out("next.wav"));
    QCOMPARE(bytes.mid(4, 4), le32(44 + 9 - 8));
    QCOMPARE(bytes.mid(36), "data" + le32(9) + "789ABCDEF");
}

void tst_Converter::commandLineAndBusyConverter()
{
    useFakeFfmpeg();
    cConverter converter;
    converter.setFileSaveType(1);
    converter.setFileNameType(1);
    converter.setOutputDir(m_out->path());
    QSignalSpy finished(&converter, &cConverter::convertFinished);
    converter.convert({src("a/b/track.final.MP3")});
    converter.convert({src("tagged.wav")});
    QTRY_VERIFY_WITH_TIMEOUT(!finished.isEmpty(), 60000);
    QVERIFY(converter.wait());
    QCOMPARE(QString::fromUtf8(readFile(out("args"))),
             "-n\n-i\n" + src("a/b/track.final.MP3") + "\n-ar\n8000\n-ac\n1\n" + out("track.final.MP3.wav") + "\n--\n");

    // Without ffmpeg the missing output is reported before the result.
    qputenv("PATH", m_sources.path().toLocal8Bit());
    QCOMPARE(convert(converter, {src("tagged.wav")}), (QStringList{"tagged.wav=0", "tagged.wav=1", "finished=1"}));
}

void tst_Converter::reportsWhatItCouldNotWrite()
{
    useFakeFfmpeg();
    cConverter converter;
    // An unknown naming rule gives ffmpeg no output, but the header rewrite
    // still looks for the source's name in the output folder.
    converter.setFileNameType(7);
    cMessageCapture log;
    QCOMPARE(convert(converter, {src("tagged.wav")}),
             (QStringList{"tagged.wav=0", "tagged.wav=0", "tagged.wav=1", "finished=1"}));
    QVERIFY(log.messages().contains("Out filename: " + out("tagged.wav")));

    // A card that takes no more than 20 bytes a file: the rewritten header
    // does not fit, which is reported, not taken for success.
    converter.setFileNameType(0);
    QSignalSpy unwritten(&converter, &cConverter::writeFailed);
    rlimit unlimited{};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    signal(SIGXFSZ, SIG_IGN);
    rlimit full = unlimited;
    full.rlim_cur = 20;
    setrlimit(RLIMIT_FSIZE, &full);
    const QStringList reports = convert(converter, {src("next.ogg")});
    setrlimit(RLIMIT_FSIZE, &unlimited);
    QCOMPARE(reports, (QStringList{"next.ogg=0", "next.ogg=1", "finished=1"}));
    QCOMPARE(unwritten.count(), 1);
    QCOMPARE(unwritten.at(0).at(0).toString(), out("next.wav"));
}

void tst_Converter::destructorEndsAHungRun()
{
    useFakeFfmpeg();
    auto* converter = new cConverter;
    converter->setOutputDir(m_out->path());
    converter->convert({src("hang.wav")});
    QTest::qWait(200);
    QElapsedTimer clock;
    clock.start();
    delete converter;
    QVERIFY2(clock.elapsed() >= 4900 && clock.elapsed() < 9000, qPrintable(QString::number(clock.elapsed())));
}

QTEST_GUILESS_MAIN(tst_Converter)
#include "tst_converter.moc"
