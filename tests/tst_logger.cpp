#include "highlighter.h"
#include "logger.h"
#include "logmessage.h"
#include "logwidget.h"

#include <QApplication>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextLayout>
#include <QThread>
#include <QToolButton>
#include <QtTest>

#include <memory>

namespace {

const char fatalChildArg[] = "--fatal-child";
const char streamChildArg[] = "--stream-child";

// Lines of changing length, some not ASCII, so that a torn write would show.
QString streamedMessage(int index)
{
    return QStringLiteral("line %1 %2%3").arg(index).arg(QString(index % 7, QChar(0x00FC)), QString(index % 97, QLatin1Char('x')));
}

QStringList readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    return QString::fromLocal8Bit(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// Lines are queued to the logger; this is the event loop's turn.
QStringList writtenLines(const QString& path)
{
    QCoreApplication::sendPostedEvents();
    return readLines(path);
}

// What follows the time stamp.
QString tail(const QString& line) { return line.mid(8); }

// The one *.log file in dir, if it is named after the application and stamped
// with a time between the two given.
QString stampedLogFile(const QString& dir, QDateTime before, const QDateTime& after)
{
    const QStringList files = QDir(dir).entryList({QStringLiteral("*.log")}, QDir::Files);
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("^vosk_antor__(.{20})\\.log$")).match(files.value(0));
    const QDateTime stamp = QDateTime::fromString(m.captured(1), QStringLiteral("yyyy-MM-dd__hh_mm_ss"));
    before = before.addMSecs(-before.time().msec());
    const bool ok = files.size() == 1 && stamp.isValid() && before <= stamp && stamp <= after;
    return ok ? QDir(dir).filePath(files[0]) : QString();
}

// How the highlighter dressed a block: "plain", a colour name, "bold", or
// something it should never do.
QString look(const QTextBlock& block)
{
    const QVector<QTextLayout::FormatRange> ranges = block.layout()->formats();
    if (ranges.isEmpty())
        return QStringLiteral("plain");
    if (ranges.size() != 1 || ranges[0].start != 0 || ranges[0].length != block.length() - 1)
        return QStringLiteral("partial");
    const QTextCharFormat& f = ranges[0].format;
    if (f.hasProperty(QTextFormat::ForegroundBrush))
        return f.foreground().color().name();
    return f.fontWeight() == 75 && f.fontFamily() == QLatin1String("Courier") ? QStringLiteral("bold") : QStringLiteral("other");
}

// Runs in a child process: a fatal message must end it before its line is written.
[[noreturn]] void fatalChild(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    logger::cLogger logs(nullptr, QString::fromLocal8Bit(argv[2]), false);
    qWarning("before fatal");
    QCoreApplication::sendPostedEvents();
    qFatal("fatal line");
}

// Runs in a child process: logs in bursts, as a reader does, until killed.
[[noreturn]] void streamChild(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    logger::cLogger logs(nullptr, QString::fromLocal8Bit(argv[2]), false);
    for (int index = 0;;) {
        for (int burst = 0; burst < 50; ++burst, ++index)
            qDebug().noquote() << streamedMessage(index);
        QCoreApplication::processEvents();
    }
}

} // namespace

class tst_Logger : public QObject
{
    Q_OBJECT

    QTemporaryDir dataHome;
    QtMessageHandler testHandler = nullptr;

private slots:
    void initTestCase()
    {
        QVERIFY(dataHome.isValid());
        QCoreApplication::setOrganizationName(QStringLiteral("Norvalis"));
        QCoreApplication::setApplicationName(QStringLiteral("Vosk Antor"));
        testHandler = qInstallMessageHandler(nullptr);
        qInstallMessageHandler(testHandler);
    }

    // A logger puts back the default handler, not the test framework's.
    void cleanup() { qInstallMessageHandler(testHandler); }

    void fileInGivenDirectory()
    {
        QTemporaryDir dir;
        const QDateTime before = QDateTime::currentDateTime();
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QStringLiteral("^Logs: \"%1/vosk_antor__.+\\.log\"$")
                                                                .arg(QRegularExpression::escape(dir.path()))));
        logger::cLogger logs(nullptr, dir.path(), true);
        QVERIFY(!stampedLogFile(dir.path(), before, QDateTime::currentDateTime()).isEmpty());
    }

    void pathThatIsNoDirectoryIsTheFile()
    {
        QTemporaryDir dir;
        const QString missing = dir.filePath(QStringLiteral("not-a-dir"));
        const QString earlier = dir.filePath(QStringLiteral("earlier.log"));
        QFile file(earlier);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("earlier run\n") > 0);
        file.close();

        logger::cLogger logs(nullptr, missing, false);
        qWarning("first");
        QCOMPARE(tail(writtenLines(missing).value(0)), QStringLiteral(" WARNING  first"));
        logs.setLogDir(earlier);
        QCOMPARE(QFileInfo(earlier).size(), 0); // truncated, as by a run in the same second
        qWarning("second");
        QVERIFY(writtenLines(earlier).last().endsWith(QLatin1String(" WARNING  second")));
        QCOMPARE(readLines(missing).size(), 1);

        const int kept = readLines(earlier).size();
        const QString unopenable = dir.filePath(QStringLiteral("missing/x.log"));
        logs.setLogDir(unopenable); // the logger carries on without a file
        qWarning("third");
        QVERIFY(writtenLines(unopenable).isEmpty() && !QFile::exists(unopenable));
        QCOMPARE(readLines(earlier).size(), kept);
    }

    void defaultLocation_data()
    {
        QTest::addColumn<bool>("byDate");
        QTest::newRow("by date") << true;
        QTest::newRow("flat") << false;
    }

    void defaultLocation()
    {
        QFETCH(bool, byDate);
        qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome.filePath(QString::fromLatin1(QTest::currentDataTag()))));
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QVERIFY(data.startsWith(dataHome.path()));
        const QDateTime before = QDateTime::currentDateTime();
        const QString dir = data + QStringLiteral("/logs/") + (byDate ? before.toString(QStringLiteral("yyyy-MM-dd/")) : QString());
        QTest::ignoreMessage(QtDebugMsg, QStringLiteral("\"%1\"").arg(dir).toUtf8().constData());
        QTest::ignoreMessage(QtDebugMsg, "DIR create: true");

        logger::cLogger logs(nullptr, QString(), byDate);
        const QDateTime after = QDateTime::currentDateTime();
        if (after.date() != before.date())
            QSKIP("the date changed during the test");
        QVERIFY(!stampedLogFile(dir, before, after).isEmpty());
    }

    void lineFormat()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("lines.log"));
        logger::cLogger logs(nullptr, path, false);
        qDebug("plain");
        qInfo("told");
        qWarning("careful");
        qCritical("broken");
        qDebug("%s", "");
        qWarning("%s", "Остановка «Вокзал»");
        logger::logMessageBridge.writeToLog(QtFatalMsg, QStringLiteral("fatal word"));
        logger::logMessageBridge.writeToLog(static_cast<QtMsgType>(7), QStringLiteral("no word"));
        logger::messageHandler(static_cast<QtMsgType>(7), QMessageLogContext(), QStringLiteral("dropped"));
        QVERIFY(readLines(path).isEmpty());

        const QStringList lines = writtenLines(path);
        const QStringList expected = {" DEBUG  plain", " INFO  told", " WARNING  careful", " ERROR  broken",
                                      " DEBUG  ", " WARNING  Остановка «Вокзал»", " ERROR  fatal word", "   no word"};
        QCOMPARE(lines.size(), expected.size());
        for (int i = 0; i < lines.size(); ++i)
            QCOMPARE(QTime::fromString(lines[i].left(8), "hh:mm:ss").isValid() ? tail(lines[i]) : lines[i], expected[i]);
    }

    void messagesFromAnotherThread()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("threads.log"));
        logger::cLogger logs(nullptr, path, false);
        std::unique_ptr<QThread> worker(QThread::create([] {
            for (int i = 0; i < 100; ++i)
                qDebug("worker %d", i);
        }));
        worker->start();
        QVERIFY(worker->wait(30000));
        QVERIFY(readLines(path).isEmpty());
        const QStringList lines = writtenLines(path);
        QCOMPARE(lines.size(), 100);
        for (int i = 0; i < lines.size(); ++i)
            QCOMPARE(tail(lines[i]), QStringLiteral(" DEBUG  worker %1").arg(i));
    }

    void fatalEndsTheRunBeforeItsLine()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("fatal.log"));
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(fatalChildArg), path});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        const QStringList lines = readLines(path);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(tail(lines[0]), QStringLiteral(" WARNING  before fatal"));
    }

    // Whenever the process dies, the file holds whole lines, in order, with
    // nothing missing before the last one.
    void killedMidStreamLeavesWholeLines()
    {
        for (const qint64 bytesBeforeKill : {qint64(1), qint64(200000), qint64(3000000)}) {
            QTemporaryDir dir;
            const QString path = dir.filePath(QStringLiteral("stream.log"));
            QProcess child;
            child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(streamChildArg), path});
            QVERIFY(child.waitForStarted());
            QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() >= bytesBeforeKill, 60000);
            child.kill();
            QVERIFY(child.waitForFinished());

            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            QVERIFY(bytes.endsWith('\n'));
            const QStringList lines = QString::fromLocal8Bit(bytes).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            QVERIFY(!lines.isEmpty());
            for (int i = 0; i < lines.size(); ++i)
                QCOMPARE(tail(lines[i]), QStringLiteral(" DEBUG  ") + streamedMessage(i));
        }
    }

    void highlighting_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("error") << "14:05:09 ERROR  disk full" << "#ff0000";
        QTest::newRow("warning") << "14:05:09 WARNING  slow" << "#0000ff";
        QTest::newRow("info") << "14:05:09 INFO  started" << "bold";
        QTest::newRow("debug") << "14:05:09 DEBUG  state" << "plain";
        QTest::newRow("debug quoting an error") << "14:05:09 DEBUG  was: 13:00:01 ERROR  x" << "#ff0000";
        QTest::newRow("warning quoting an error") << "14:05:09 WARNING  was: 1:2:3\tERROR  x" << "#ff0000";
        QTest::newRow("info text starting with ERROR") << "14:05:09 INFO  ERROR in text" << "bold";
        QTest::newRow("no time") << "ERROR WARNING INFO" << "plain";
    }

    void highlighting()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QTextDocument doc(text);
        logger::cHighlighter highlighter(&doc);
        highlighter.rehighlight();
        QCOMPARE(look(doc.firstBlock()), expected);
    }

    void logWidget()
    {
        auto widget = std::make_unique<logger::cLogWidget>();
        QVERIFY(widget->logEdit->isReadOnly());
        const QList<QToolButton*> buttons = widget->widget()->findChildren<QToolButton*>();
        QCOMPARE(buttons.size(), 1);

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("view.log"));
        logger::cLogger logs(nullptr, path, false);
        logs.setLogEdit(nullptr, true); // nothing attached, nothing happens
        logs.setLogEdit(widget->logEdit, true);
        qCritical("kept in the file");
        writtenLines(path);
        QCOMPARE(look(widget->logEdit->document()->firstBlock()), QStringLiteral("#ff0000"));
        buttons[0]->click();
        QVERIFY(widget->logEdit->toPlainText().isEmpty());
        qWarning("after clearing");
        QCOMPARE(writtenLines(path).size(), 2);
        QCOMPARE(tail(widget->logEdit->toPlainText()), QStringLiteral(" WARNING  after clearing"));

        widget.reset(); // a view may go before the logger does
        qWarning("no view");
        QCOMPARE(writtenLines(path).size(), 3);
    }
};

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], fatalChildArg) == 0)
        fatalChild(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], streamChildArg) == 0)
        streamChild(argc, argv);
    QApplication app(argc, argv);
    tst_Logger test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_logger.moc"
