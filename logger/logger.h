#ifndef VOSK_LOGGER_H
#define VOSK_LOGGER_H

#include <QByteArray>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QString>

class QPlainTextEdit;
class QTextCodec;

namespace logger {

class cHighlighter;

// The time text of log lines, "hh:mm:ss" in local time, built once a second
// rather than once a line.
class cLineClock
{
public:
    const QByteArray& text();

private:
    qint64 m_second = -1;
    QByteArray m_text;
};

// Takes over the process-wide message handler and writes every message as one
// line into a log file that is new for each run, and into a view if one is
// attached. Lines are written on this object's thread by its event loop.
class cLogger : public QObject
{
    Q_OBJECT

public:
    cLogger(QObject* parent, const QString& dir, bool byDate);
    ~cLogger() override;

    // A directory gets a new time-stamped file; anything else is taken as the
    // file's own path.
    void setLogDir(const QString& dir);
    void setLogEdit(QPlainTextEdit* edit, bool highlight);

private slots:
    void log(QtMsgType type, const QString& msg);

private:
    void openLogFile();
    void appendLocal8Bit(const QString& text);
    static QString defaultLogDir(bool byDate);

    QFile logFile;
    // Guarded: the view and its document may go away before the logger does.
    QPointer<QPlainTextEdit> logEdit;
    QPointer<cHighlighter> highlighter;
    QString logDir;
    bool byDate;
    cLineClock clock;
    QTextCodec* codec = nullptr;
    // The file line being built; kept to spare an allocation per line.
    QByteArray line;
    static constexpr int lineCapacity = 4096;
};

// To be called before the application object exists. Qt's GLib event loop
// makes a system call for every event posted to it, and every log line is
// one; the plain Unix loop wakes once per batch. A choice the user made in
// the environment stands.
void useLeanEventLoop();

// Installed by cLogger; forwards every message to the bridge and never does
// any formatting or I/O itself.
void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& msg);

} // namespace logger

#endif
