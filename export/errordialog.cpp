#include "errordialog.h"

#include "ui_errordialog.h"

cErrorDialog::cErrorDialog(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui::cErrorDialog)
{
    ui->setupUi(this);
}

cErrorDialog::~cErrorDialog() = default;

void cErrorDialog::setFiles(const QStringList& files)
{
    ui->fileList->setPlainText(files.join(QStringLiteral(",\n")));
}

void cErrorDialog::setDifferences(const QStringList& differences)
{
    if (differences.isEmpty())
        return;
    const QString heading = tr("Not as written:");
    if (ui->fileList->toPlainText().isEmpty()) {
        ui->label->setText(heading);
        ui->fileList->setPlainText(differences.join(QLatin1Char('\n')));
    } else {
        ui->fileList->appendPlainText(QStringLiteral("\n") + heading + QLatin1Char('\n')
                                      + differences.join(QLatin1Char('\n')));
    }
}
