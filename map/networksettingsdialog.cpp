#include "networksettingsdialog.h"

#include "ui_networksettingsdialog.h"

#include <QButtonGroup>
#include <QNetworkProxyFactory>

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
