#include "scriptpage.h"

#include "ui_scriptpage.h"

#include "exportnames.h"

cScriptPage::cScriptPage(QWidget* parent)
    : QWidget(parent)
    , ui(new Ui::cScriptPage)
{
    ui->setupUi(this);
}

cScriptPage::~cScriptPage() = default;

void cScriptPage::setup(const QUuid& id, const QString& script, const QString& baseName)
{
    routeId = id;
    ui->routeText->setPlainText(script);
    ui->fileNameEdit->setText(safeFileBaseName(baseName));
}

QString cScriptPage::fileName() const
{
    return ui->fileNameEdit->text() + QStringLiteral(".lua");
}
