#ifndef VOSK_LOGWIDGET_H
#define VOSK_LOGWIDGET_H

#include <QDockWidget>

class QPlainTextEdit;

namespace logger {

// A dock showing log lines; attach its view with cLogger::setLogEdit.
class cLogWidget : public QDockWidget
{
    Q_OBJECT

public:
    explicit cLogWidget(QWidget* parent = nullptr);

    QPlainTextEdit* const logEdit;
};

} // namespace logger

#endif
