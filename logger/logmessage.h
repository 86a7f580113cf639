#ifndef VOSK_LOGMESSAGE_H
#define VOSK_LOGMESSAGE_H

#include <QMetaType>
#include <QObject>
#include <QString>

Q_DECLARE_METATYPE(QtMsgType)

namespace logger {

// Carries messages from whichever thread raised them to the logger: the
// message handler only emits, and a queued connection does the rest.
class cLogMessage : public QObject
{
    Q_OBJECT

signals:
    void log(QtMsgType msgType, const QString& msg);

public slots:
    void writeToLog(QtMsgType msgType, const QString& msg);
};

// One bridge for the whole process; it exists before main so that no message
// can arrive ahead of it.
extern cLogMessage logMessageBridge;

} // namespace logger

#endif
