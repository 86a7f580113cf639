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
#include <QTime>

#include <cstdlib>

namespace logger {

namespace {

QString levelWord(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QStringLiteral("DEBUG");
    case QtInfoMsg:
        return QStringLiteral("INFO");
    case QtWarningMsg:
        return QStringLiteral("WARNING");
    case QtCriticalMsg:
    case QtFatalMsg:
        return QStringLiteral("ERROR");
    }
    return QString();
}

} // namespace

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
    const QString line = QTime::currentTime().toString(Qt::TextDate) + QLatin1Char(' ')
        + levelWord(type) + QLatin1String("  ") + msg;

    if (logEdit) {
        logEdit->appendPlainText(line);
        QScrollBar* bar = logEdit->verticalScrollBar();
        bar->setValue(bar->maximum());
    }
    if (logFile.isOpen()) {
        logFile.write((line + QLatin1Char('\n')).toLocal8Bit());
        // Flushed line by line so the file is complete even if the process dies.
        logFile.flush();
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
