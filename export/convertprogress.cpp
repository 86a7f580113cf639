#include "convertprogress.h"

#include "ui_convertprogress.h"

#include <QFileInfo>

cConvertProgress::cConvertProgress(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , ui(new Ui::cConvertProgress)
{
    ui->setupUi(this);
}

cConvertProgress::~cConvertProgress() = default;

void cConvertProgress::start(const QStringList& sources)
{
    files = sources;
    lastFile.clear();
    done = 0;
    ui->progressBar->setRange(0, files.size());
    showState();
    show();
    // Disabling the window behind disables this child window as well.
    setEnabled(true);
}

void cConvertProgress::fileProcessed(const QString& fn)
{
    if (fn == lastFile)
        return;
    lastFile = fn;
    ++done;
    showState();
}

void cConvertProgress::finish()
{
    hide();
}

// Escape must not hide the progress while the conversion goes on.
void cConvertProgress::reject()
{
}

void cConvertProgress::showState()
{
    ui->progressBar->setValue(done);
    ui->countLabel->setText(tr("%1 of %2 files converted").arg(done).arg(files.size()));
    const QString current = done < files.size() ? QFileInfo(files.at(done)).fileName() : QString();
    ui->fileLabel->setText(current.isEmpty() ? QString() : tr("Converting: %1").arg(current));
}
