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
