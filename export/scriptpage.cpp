#include "scriptpage.h"

#include "ui_scriptpage.h"

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
    // Route numbers like 12/A must not become folders or invalid names on
    // the device's card.
    QString name = baseName;
    for (const QChar c : QStringLiteral("\\/><:*|?\""))
        name.replace(c, QLatin1Char('_'));
    ui->fileNameEdit->setText(name);
}

QString cScriptPage::fileName() const
{
    return ui->fileNameEdit->text() + QStringLiteral(".lua");
}
