#include "networksettingsdialog.h"

#include "ui_networksettingsdialog.h"

#include <QButtonGroup>
#include <QMessageBox>
#include <QNetworkProxyFactory>

namespace {

enum SourceColumn { NameColumn, UrlColumn, SubdomainsColumn, KeyColumn, MaxZoomColumn, AttributionColumn };

} // namespace

cNetworkSettingsDialog::cNetworkSettingsDialog(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui::cNetworkSettingsDialog)
{
    ui->setupUi(this);
    auto* group = new QButtonGroup(this);
    group->setExclusive(true);
    for (QRadioButton* button : {ui->noProxyRadioButton, ui->systemProxyRadioButton, ui->customProxyRadioButton}) {
        group->addButton(button);
        connect(button, &QRadioButton::toggled, this, &cNetworkSettingsDialog::proxyTypeSelected);
    }
    connect(ui->okBtn, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->cancelBtn, &QPushButton::clicked, this, &QDialog::reject);

    ui->tileSourcesTable->setColumnWidth(UrlColumn, 260);
    connect(ui->addSourceBtn, &QPushButton::clicked, this, [this] {
        addSourceRow(cTileSource());
        ui->tileSourcesTable->setCurrentCell(ui->tileSourcesTable->rowCount() - 1, NameColumn);
        ui->tileSourcesTable->editItem(ui->tileSourcesTable->currentItem());
    });
    connect(ui->removeSourceBtn, &QPushButton::clicked, this,
            [this] { ui->tileSourcesTable->removeRow(ui->tileSourcesTable->currentRow()); });
    connect(ui->tileSourcesTable, &QTableWidget::itemSelectionChanged, this, [this] {
        ui->removeSourceBtn->setEnabled(!ui->tileSourcesTable->selectedItems().isEmpty());
    });
    ui->removeSourceBtn->setEnabled(false);
}

cNetworkSettingsDialog::~cNetworkSettingsDialog() = default;

void cNetworkSettingsDialog::setSettings(int type, const QString& host, int port, const QString& user,
                                         const QString& password)
{
    QRadioButton* const buttons[] = {ui->noProxyRadioButton, ui->systemProxyRadioButton, ui->customProxyRadioButton};
    if (type >= 0 && type <= 2) {
        buttons[type]->setChecked(true);
    } else {
        // An exclusive group keeps one button checked; lift that to clear all.
        auto* group = ui->noProxyRadioButton->group();
        group->setExclusive(false);
        for (QRadioButton* button : buttons)
            button->setChecked(false);
        group->setExclusive(true);
    }
    proxyTypeSelected();
    ui->hostEdit->setText(host);
    ui->portEdit->setValue(port);
    ui->userEdit->setText(user);
    ui->passEdit->setText(password);
}

void cNetworkSettingsDialog::getSettings(int* type, QString* host, int* port, QString* user, QString* password) const
{
    if (type) {
        if (ui->noProxyRadioButton->isChecked())
            *type = 0;
        else if (ui->systemProxyRadioButton->isChecked())
            *type = 1;
        else if (ui->customProxyRadioButton->isChecked())
            *type = 2;
    }
    if (host)
        *host = ui->hostEdit->text();
    if (port)
        *port = ui->portEdit->value();
    if (user)
        *user = ui->userEdit->text();
    if (password)
        *password = ui->passEdit->text();
}

void cNetworkSettingsDialog::setTileSources(const QList<cTileSource>& sources)
{
    ui->tileSourcesTable->setRowCount(0);
    for (const cTileSource& source : sources)
        addSourceRow(source);
}

void cNetworkSettingsDialog::addSourceRow(const cTileSource& source)
{
    QTableWidget* table = ui->tileSourcesTable;
    const int row = table->rowCount();
    table->insertRow(row);
    const QStringList cells = {source.name,   source.url, source.subdomains, source.apiKey,
                               QString::number(source.maxZoom), source.attribution};
    for (int column = 0; column < cells.size(); ++column)
        table->setItem(row, column, new QTableWidgetItem(cells.at(column)));
}

QList<cTileSource> cNetworkSettingsDialog::tileSources() const
{
    QList<cTileSource> sources;
    const QTableWidget* table = ui->tileSourcesTable;
    for (int row = 0; row < table->rowCount(); ++row) {
        const auto cell = [table, row](int column) {
            const QTableWidgetItem* item = table->item(row, column);
            return item ? item->text().trimmed() : QString();
        };
        cTileSource source;
        source.name = cell(NameColumn);
        source.url = cell(UrlColumn);
        source.subdomains = cell(SubdomainsColumn);
        source.apiKey = cell(KeyColumn);
        bool isNumber = false;
        source.maxZoom = cell(MaxZoomColumn).toInt(&isNumber);
        if (!isNumber)
            source.maxZoom = -1;
        source.attribution = cell(AttributionColumn);
        sources << source;
    }
    return sources;
}

void cNetworkSettingsDialog::accept()
{
    const QList<cTileSource> sources = tileSources();
    QStringList names;
    for (int i = 0; i < sources.size(); ++i) {
        QString problem = sources.at(i).problem();
        // Sources are remembered by name, so a name may be used once only.
        if (problem.isEmpty() && names.contains(sources.at(i).name))
            problem = tr("its name is used twice");
        names << sources.at(i).name;
        if (!problem.isEmpty()) {
            const QString text = tr("Tile source %1 cannot be used: %2.").arg(i + 1).arg(problem);
            qDebug().noquote() << text;
            QMessageBox::critical(this, tr("Error"), text, QMessageBox::Ok);
            ui->tileSourcesTable->selectRow(i);
            return;
        }
    }
    QDialog::accept();
}

void cNetworkSettingsDialog::proxyTypeSelected()
{
    // A change of choice toggles two buttons; the one switched on speaks.
    const auto* toggled = qobject_cast<const QAbstractButton*>(sender());
    if (toggled && !toggled->isChecked())
        return;
    if (ui->noProxyRadioButton->isChecked()) {
        ui->proxySettingsFrame->setEnabled(false);
    } else if (ui->systemProxyRadioButton->isChecked()) {
        ui->proxySettingsFrame->setEnabled(true);
        ui->hostEdit->setEnabled(false);
        ui->portEdit->setEnabled(false);
        // Where no proxy is configured the lookup answers with a "no proxy"
        // entry rather than with nothing.
        const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery());
        if (!proxies.isEmpty() && proxies.first().type() != QNetworkProxy::NoProxy) {
            ui->hostEdit->setText(proxies.first().hostName());
            ui->portEdit->setValue(proxies.first().port());
        } else {
            qDebug("No system proxy");
        }
    } else if (ui->customProxyRadioButton->isChecked()) {
        ui->proxySettingsFrame->setEnabled(true);
        ui->hostEdit->setEnabled(true);
        ui->portEdit->setEnabled(true);
    }
}

void cNetworkSettingsDialog::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        ui->retranslateUi(this);
    QDialog::changeEvent(event);
}
