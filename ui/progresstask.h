#ifndef VOSK_PROGRESSTASK_H
#define VOSK_PROGRESSTASK_H

#include <QCoreApplication>
#include <QString>

#include <functional>

class QWidget;

// Runs a long read on a worker thread behind a modal progress dialog, so the
// window keeps painting and the user can cancel. The job is handed a progress
// callback that tells it to stop once Cancel was pressed; until run() returns
// it must touch nothing the GUI thread uses.
class cProgressTask
{
    Q_DECLARE_TR_FUNCTIONS(cProgressTask)

public:
    enum class Outcome { Done, Failed, Cancelled };
    using Progress = std::function<bool(qint64 done, qint64 total)>;
    using Job = std::function<bool(const Progress& progress, QString* error)>;

    // Failed leaves the job's message in `error`. Cancel wins over a job
    // that finished meanwhile, so its result is never taken.
    static Outcome run(QWidget* parent, const QString& label, const Job& job, QString* error);
};

#endif
