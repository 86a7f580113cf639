#include "logmessage.h"

namespace logger {

cLogMessage logMessageBridge;

void cLogMessage::writeToLog(QtMsgType msgType, const QString& msg)
{
    emit log(msgType, msg);
}

} // namespace logger
