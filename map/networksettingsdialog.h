#ifndef VOSK_NETWORKSETTINGSDIALOG_H
#define VOSK_NETWORKSETTINGSDIALOG_H

#include <QDialog>
#include <QScopedPointer>

namespace Ui {
class cNetworkSettingsDialog;
}

// Edits the map's proxy: none, the system's (host and port captured from
// the system when chosen), or a custom one; user and password for the
// latter two. Types: 0 no proxy, 1 system proxy, 2 custom proxy.
class cNetworkSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit cNetworkSettingsDialog(QWidget* parent = nullptr);
    ~cNetworkSettingsDialog() override;

    void setSettings(int type, const QString& host, int port, const QString& user, const QString& password);
    void getSettings(int* type, QString* host, int* port, QString* user, QString* password) const;

public slots:
    void proxyTypeSelected();

protected:
    void changeEvent(QEvent* event) override;

private:
    QScopedPointer<Ui::cNetworkSettingsDialog> ui;
};

#endif
