#include "logger.h"

#include "highlighter.h"
#include "logmessage.h"

#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTextCodec>
#include <QTime>

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace logger {

namespace {

QLatin1String levelWord(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1String("DEBUG");
    case QtInfoMsg:
        return QLatin1String("INFO");
    case QtWarningMsg:
        return QLatin1String("WARNING");
    case QtCriticalMsg:
    case QtFatalMsg:
        return QLatin1String("ERROR");
    }
    return QLatin1String("");
}

// One write call per line, so that whatever reaches the file is whole lines
// in order; a short write (a full disk) is retried with the rest.
void writeWhole(int fd, const char* data, size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        size -= size_t(written);
    }
}

} // namespace

const QByteArray& cLineClock::text()
{
    const qint64 second = QDateTime::currentSecsSinceEpoch();
    if (second != m_second) {
        m_second = second;
        m_text = QDateTime::fromSecsSinceEpoch(second).time().toString(Qt::TextDate).toLatin1();
    }
    return m_text;
}

cLogger::cLogger(QObject* parent, const QString& dir, bool byDate)
    : QObject(parent)
    , logDir(dir)
    , byDate(byDate)
{
    openLogFile();

    // The line crosses threads as a queued call, which needs the type by name.
    qRegisterMetaType<QtMsgType>("QtMsgType");
    connect(&logMessageBridge, &cLogMessage::log, this, &cLogger::log, Qt::QueuedConnection);
    qInstallMessageHandler(messageHandler);
}

cLogger::~cLogger()
{
    qInstallMessageHandler(nullptr);
    if (logFile.isOpen())
        logFile.close();
}

void cLogger::setLogDir(const QString& dir)
{
    logDir = dir;
    openLogFile();
}

void cLogger::setLogEdit(QPlainTextEdit* edit, bool highlight)
{
    if (!edit)
        return;
    logEdit = edit;
    if (highlight) {
        delete highlighter;
        highlighter = new cHighlighter(edit->document());
    }
}

void cLogger::log(QtMsgType type, const QString& msg)
{
    const QByteArray& time = clock.text();
    const QLatin1String word = levelWord(type);
    if (logEdit) {
        logEdit->appendPlainText(QString::fromLatin1(time) + QLatin1Char(' ') + word + QLatin1String("  ") + msg);
        QScrollBar* bar = logEdit->verticalScrollBar();
        bar->setValue(bar->maximum());
    }
    if (logFile.isOpen()) {
        // The buffer keeps its capacity from line to line.
        line.resize(0);
        line.append(time).append(' ').append(word.data(), word.size()).append("  ", 2);
        appendLocal8Bit(msg);
        line.append('\n');
        // Straight to the file, unbuffered: the line is in the file before
        // the next message is handled, even if the process dies then.
        writeWhole(logFile.handle(), line.constData(), size_t(line.size()));
    }
}

void cLogger::appendLocal8Bit(const QString& text)
{
    // Most messages are ASCII, which every local encoding this program runs
    // with keeps byte for byte; only the others go through the codec.
    const QChar* chars = text.constData();
    const int length = text.size();
    const int start = line.size();
    line.resize(start + length);
    char* out = line.data() + start;
    for (int i = 0; i < length; ++i) {
        const ushort unit = chars[i].unicode();
        if (unit >= 0x80) {
            line.resize(start);
            line.append(codec->fromUnicode(text));
            return;
        }
        out[i] = char(unit);
    }
}

void cLogger::openLogFile()
{
    if (logFile.isOpen())
        logFile.close();

    const QString baseName = QCoreApplication::applicationName().toLower().replace(QLatin1Char(' '), QLatin1Char('_'));
    const QString fileName = QStringLiteral("%1__%2.log")
                                 .arg(baseName, QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd__hh_mm_ss")));

    QString path;
    if (!logDir.isEmpty()) {
        if (QFileInfo(logDir).isDir()) {
            QDir d(logDir);
            if (!d.exists(logDir))
                qDebug() << "DIR create:" << d.mkpath(QStringLiteral("."));
            path = d.absoluteFilePath(fileName);
        } else {
            // Anything that is not an existing directory names the file itself.
            path = logDir;
        }
    } else {
        const QString dir = defaultLogDir(byDate);
        path = dir + fileName;
        qDebug() << dir;
        qDebug() << path;
        if (!QDir(dir).exists(dir))
            qDebug() << "DIR create:" << QDir(dir).mkpath(QStringLiteral("."));
    }

    logFile.setFileName(path);
    logFile.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text);
    codec = QTextCodec::codecForLocale();
    line.reserve(lineCapacity);

    if (logFile.isOpen())
        qDebug() << "Logs:" << path;
    else
        qDebug() << "No logs to file:" << path;
}

QString cLogger::defaultLogDir(bool byDate)
{
    QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/logs/");
    if (byDate)
        dir += QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('/');
    return dir;
}

void useLeanEventLoop()
{
    if (!qEnvironmentVariableIsSet("QT_NO_GLIB"))
        qputenv("QT_NO_GLIB", "1");
}

void messageHandler(QtMsgType type, const QMessageLogContext&, const QString& msg)
{
    switch (type) {
    case QtDebugMsg:
    case QtInfoMsg:
    case QtWarningMsg:
    case QtCriticalMsg:
        logMessageBridge.writeToLog(type, msg);
        break;
    case QtFatalMsg:
        logMessageBridge.writeToLog(type, msg);
        // The line is still queued, so a fatal message never reaches the file;
        // writing it here would mean I/O on an arbitrary thread.
        abort();
    }
}

} // namespace logger
