#ifndef VOSK_BUSYSCOPE_H
#define VOSK_BUSYSCOPE_H

#include <QElapsedTimer>
#include <QPointer>
#include <QString>

class QStatusBar;
class QWidget;

// While a long file operation runs on the GUI thread: the busy cursor and a
// status bar text saying what is going on, from its start to its end, and
// the window keeps painting whenever the operation calls keepPainting().
class cBusyScope
{
public:
    cBusyScope(QWidget* widget, const QString& text);
    ~cBusyScope();
    cBusyScope(const cBusyScope&) = delete;
    cBusyScope& operator=(const cBusyScope&) = delete;

    // Lets pending paint and timer events through, a few times a second at
    // most; user input waits until the operation is over.
    void keepPainting();

private:
    static constexpr qint64 paintIntervalMs = 50;

    QPointer<QStatusBar> m_statusBar;
    QElapsedTimer m_sincePaint;
};

#endif
