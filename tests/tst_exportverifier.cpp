#include "exportverifier.h"
#include "routeexport.h"
#include "testsupport.h"

#include <QtTest>
#include <QtEndian>

using namespace testsupport;

namespace {

// A device WAV header for `dataBytes` of sound, then the sound.
QByteArray wav(quint32 rate, quint16 channels, int dataBytes, int statedBytes = -1)
{
    QByteArray bytes("RIFF....WAVEfmt ");
    const auto put32 = [&bytes](quint32 v) { char raw[4]; qToLittleEndian(v, raw); bytes.append(raw, 4); };
    const auto put16 = [&bytes](quint16 v) { char raw[2]; qToLittleEndian(v, raw); bytes.append(raw, 2); };
    put32(16);
    put16(1);
    put16(channels);
    put32(rate);
    put32(rate * 2 * channels);
    put16(2 * channels);
    put16(16);
    bytes.append("data");
    put32(quint32(statedBytes < 0 ? dataBytes : statedBytes));
    bytes.append(QByteArray(dataBytes, '\x01'));
    qToLittleEndian<quint32>(quint32(bytes.size() - 8), bytes.data() + 4);
    return bytes;
}

} // namespace

// What an export wrote is read back as the device reads it.
class tst_ExportVerifier : public QObject
{
    Q_OBJECT

private slots:
    void scriptsReadBackAsWritten();
    void wavHeadersAsTheDevicePlaysThem();
};

void tst_ExportVerifier::scriptsReadBackAsWritten()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("5.lua");
    cRoute route = sampleRoute();
    QVERIFY(writeFile(path, cRouteExport::routeScript(route).toLocal8Bit()));
    QCOMPARE(cExportVerifier::scriptDifference(path, route), QString());

    // Lua takes a backslash for an escape.
    route.direct.stops[1].name = "Школа\\t5";
    QVERIFY(writeFile(path, cRouteExport::routeScript(route).toLocal8Bit()));
    QString difference = cExportVerifier::scriptDifference(path, route);
    QVERIFY2(difference.contains("reads back differently") && difference.contains("Школа\\t5"),
             qPrintable(difference));

    // A quote ends the string early: the script is no Lua at all.
    route.direct.stops[1].name = "O'Hare";
    QVERIFY(writeFile(path, cRouteExport::routeScript(route).toLocal8Bit()));
    difference = cExportVerifier::scriptDifference(path, route);
    QVERIFY2(difference.contains("does not read back as a route"), qPrintable(difference));

    QVERIFY(cExportVerifier::scriptDifference(dir.filePath("none.lua"), route).contains("cannot be read back"));
}

void tst_ExportVerifier::wavHeadersAsTheDevicePlaysThem()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a.wav");
    const QDateTime start = QDateTime::currentDateTime().addSecs(-2);
    const auto check = [&](const QByteArray& bytes) {
        writeFile(path, bytes);
        return cExportVerifier::wavDifference(path, start);
    };
    QCOMPARE(check(wav(8000, 1, 1000)), QString());
    QVERIFY(check(wav(44100, 1, 1000)).contains("44100 Hz, 1 channels"));
    QVERIFY(check(wav(8000, 2, 1000)).contains("8000 Hz, 2 channels"));
    QVERIFY(check(wav(8000, 1, 1000, 2000)).contains("states 2000 bytes of sound, but holds 1000"));
    QVERIFY(check(wav(8000, 1, 1000).left(40)).contains("no WAV header"));
    QVERIFY(check(QByteArray("This is not a sound.")).contains("no WAV header"));
    QVERIFY(cExportVerifier::wavDifference(dir.filePath("none.wav"), start).contains("was not written"));

    // A file left from an earlier export is not this export's sound.
    writeFile(path, wav(8000, 1, 1000));
    QFile old(path);
    QVERIFY(old.open(QIODevice::ReadWrite));
    QVERIFY(old.setFileTime(start.addSecs(-60), QFileDevice::FileModificationTime));
    old.close();
    QVERIFY(cExportVerifier::wavDifference(path, start).contains("not written by this export"));
}

QTEST_GUILESS_MAIN(tst_ExportVerifier)
#include "tst_exportverifier.moc"
