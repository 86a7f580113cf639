#include "savedialog.h"

#include "scriptpage.h"
#include "ui_savedialog.h"

#include <QFileDialog>
#include <QSettings>

namespace {

const char* const settingsGroup = "SaveDialog";
const char* const outputKey = "Output";

} // namespace

cSaveDialog::cSaveDialog(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui::cSaveDialog)
{
    ui->setupUi(this);
    connect(ui->outputBtn, &QPushButton::clicked, this, &cSaveDialog::outputBtnClicked);

    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    ui->outputDir->setText(settings.value(QLatin1String(outputKey)).toString());
}

// The folder is saved once, at exit, so that a folder chosen during a run is
// offered to every later export of that run and of the next.
cSaveDialog::~cSaveDialog()
{
    QSettings settings;
    settings.beginGroup(QLatin1String(settingsGroup));
    settings.setValue(QLatin1String(outputKey), ui->outputDir->text());
    settings.endGroup();
    settings.sync();
}

void cSaveDialog::clearPages()
{
    while (ui->tabWidget->count() > 0) {
        QWidget* page = ui->tabWidget->widget(0);
        ui->tabWidget->removeTab(0);
        delete page;
    }
}

void cSaveDialog::addPage(const QUuid& id, const QString& tabTitle, const QString& script, const QString& baseName)
{
    auto* page = new cScriptPage;
    page->setup(id, script, baseName);
    ui->tabWidget->addTab(page, tabTitle);
}

QString cSaveDialog::outputDir() const
{
    return ui->outputDir->text();
}

QString cSaveDialog::fileName(const QUuid& id) const
{
    for (int i = 0; i < ui->tabWidget->count(); ++i) {
        const auto* page = qobject_cast<const cScriptPage*>(ui->tabWidget->widget(i));
        if (page && page->routeId == id)
            return page->fileName();
    }
    return QString();
}

void cSaveDialog::outputBtnClicked()
{
    const QString dir =
        QFileDialog::getExistingDirectory(this, tr("Open directory"), QString(), QFileDialog::ShowDirsOnly);
    if (!dir.isEmpty())
        ui->outputDir->setText(dir);
}
