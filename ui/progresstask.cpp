#include "progresstask.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <memory>

namespace {

constexpr int kSteps = 1000;

// Stays on screen until the worker has stopped, so that nothing else can be
// started meanwhile: Cancel, Escape and the close button only ask it to stop.
class cStoppingProgressDialog : public QProgressDialog
{
public:
    cStoppingProgressDialog(const QString& label, QWidget* parent)
        : QProgressDialog(label, cProgressTask::tr("Cancel"), 0, kSteps, parent)
    {
        disconnect(this, &QProgressDialog::canceled, this, &QProgressDialog::cancel);
        setAutoClose(false);
        setAutoReset(false);
        setWindowModality(Qt::WindowModal);
        setMinimumDuration(0);
        setMinimumWidth(400);
    }

    void reject() override { emit canceled(); }

protected:
    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        emit canceled();
    }
};

} // namespace

cProgressTask::Outcome cProgressTask::run(QWidget* parent, const QString& label, const Job& job, QString* error)
{
    std::atomic<qint64> done{0};
    std::atomic<qint64> total{0};
    std::atomic<bool> cancelled{false};
    bool ok = false;
    QString jobError;
    const Progress progress = [&](qint64 doneNow, qint64 totalNow) {
        done = doneNow;
        total = totalNow;
        return !cancelled;
    };

    cStoppingProgressDialog dialog(label, parent);
    dialog.setWindowTitle(parent ? parent->windowTitle() : label);
    QObject::connect(&dialog, &QProgressDialog::canceled, &dialog, [&] {
        cancelled = true;
        dialog.setLabelText(tr("Cancelling…"));
        if (auto* button = dialog.findChild<QPushButton*>())
            button->setEnabled(false);
    });
    QTimer poll;
    poll.setInterval(100);
    QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
        if (total > 0)
            dialog.setValue(int(done * kSteps / total));
    });

    QEventLoop loop;
    const std::unique_ptr<QThread> worker(QThread::create([&] { ok = job(progress, &jobError); }));
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    dialog.show();
    worker->start();
    poll.start();
    loop.exec();
    worker->wait();

    if (cancelled)
        return Outcome::Cancelled;
    if (!ok) {
        *error = jobError;
        return Outcome::Failed;
    }
    return Outcome::Done;
}
