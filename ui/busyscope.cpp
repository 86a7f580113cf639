#include "busyscope.h"

#include <QApplication>
#include <QMainWindow>
#include <QStatusBar>

cBusyScope::cBusyScope(QWidget* widget, const QString& text)
{
    QApplication::setOverrideCursor(Qt::BusyCursor);
    if (auto* window = qobject_cast<QMainWindow*>(widget->window())) {
        m_statusBar = window->statusBar();
        m_statusBar->showMessage(text);
    }
    // Shown before the work starts, not once it is over.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    m_sincePaint.start();
}

cBusyScope::~cBusyScope()
{
    if (m_statusBar)
        m_statusBar->clearMessage();
    QApplication::restoreOverrideCursor();
}

void cBusyScope::keepPainting()
{
    if (m_sincePaint.elapsed() < paintIntervalMs)
        return;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    m_sincePaint.restart();
}
