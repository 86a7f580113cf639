#include "guisupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

namespace guisupport {

namespace {

// Answers wait in line: each modal dialog that appears takes the next one.
struct cAnswerQueue
{
    QList<std::function<void(QWidget*)>> answers;
    QPointer<QWidget> lastAnswered;
    QTimer timer;

    cAnswerQueue()
    {
        timer.setInterval(10);
        QObject::connect(&timer, &QTimer::timeout, [this] { answerIfShown(); });
    }

    void answerIfShown()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible() || dialog == lastAnswered || answers.isEmpty())
            return;
        // A progress dialog goes away by itself once the work behind it ends.
        if (qobject_cast<QProgressDialog*>(dialog))
            return;
        lastAnswered = dialog;
        const auto answer = answers.takeFirst();
        if (answers.isEmpty())
            timer.stop();
        answer(dialog);
        // Only a dialog left open by its answer is skipped later: one that
        // closed may be shown again (dialogs kept for the window's life).
        if (lastAnswered && !lastAnswered->isVisible())
            lastAnswered.clear();
    }
};

cAnswerQueue& answerQueue()
{
    static cAnswerQueue queue;
    return queue;
}

} // namespace

void answerNextModal(const std::function<void(QWidget*)>& answer)
{
    answerQueue().answers << answer;
    answerQueue().timer.start();
}

int pendingAnswers()
{
    return answerQueue().answers.size();
}

int dropPendingAnswers()
{
    const int dropped = pendingAnswers();
    answerQueue().answers.clear();
    answerQueue().timer.stop();
    return dropped;
}

void answerFileDialog(const QString& path, QString* openedIn)
{
    answerNextModal([path, openedIn](QWidget* widget) {
        auto* dialog = qobject_cast<QFileDialog*>(widget);
        if (dialog && openedIn)
            *openedIn = dialog->directory().absolutePath();
        chooseFile(widget, path);
    });
}

void chooseFile(QWidget* widget, const QString& path)
{
    auto* dialog = qobject_cast<QFileDialog*>(widget);
    if (!dialog) {
        widget->close();
        return;
    }
    if (path.isEmpty()) {
        dialog->reject();
        return;
    }
    dialog->selectFile(path);
    // Once the name field has focus, selectFile no longer fills it.
    if (auto* nameEdit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        nameEdit->setText(path);
    static_cast<QDialog*>(dialog)->accept();
}

void answerMessageBox(QString* text, const QString& buttonText)
{
    answerNextModal([text, buttonText](QWidget* widget) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (!box) {
            widget->close();
            return;
        }
        if (text)
            *text = box->windowTitle() + QLatin1Char('|') + box->text();
        QAbstractButton* button = box->defaultButton();
        for (QAbstractButton* candidate : box->buttons()) {
            if (!buttonText.isEmpty() && candidate->text().remove(QLatin1Char('&')) == buttonText)
                button = candidate;
        }
        if (button)
            button->click();
        else
            box->close();
    });
}

void sendMouse(QWidget* widget, QEvent::Type type, const QPoint& pos, Qt::MouseButtons buttons,
               Qt::MouseButton button)
{
    QMouseEvent event(type, pos, widget->mapToGlobal(pos), type == QEvent::MouseMove ? Qt::NoButton : button,
                      buttons, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void click(QWidget* widget, const QPoint& pos)
{
    sendMouse(widget, QEvent::MouseButtonPress, pos, Qt::LeftButton);
    sendMouse(widget, QEvent::MouseButtonRelease, pos);
}

void sendWheel(QWidget* widget, const QPoint& pos, int delta, int times, Qt::KeyboardModifiers modifiers)
{
    for (int i = 0; i < times; ++i) {
        QWheelEvent event(pos, widget->mapToGlobal(pos), QPoint(), QPoint(0, delta), Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget, &event);
    }
}

cIsolatedHome::cIsolatedHome()
{
    qputenv("XDG_CONFIG_HOME", (m_dir.path() + QStringLiteral("/config")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", (m_dir.path() + QStringLiteral("/data")).toLocal8Bit());
}

} // namespace guisupport
