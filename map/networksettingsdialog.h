#ifndef VOSK_NETWORKSETTINGSDIALOG_H
#define VOSK_NETWORKSETTINGSDIALOG_H

#include "tilesources.h"

#include <QDialog>
#include <QScopedPointer>

namespace Ui {
class cNetworkSettingsDialog;
}

// Edits the map's proxy: none, the system's (host and port captured from
// the system when chosen), or a custom one; user and password for the
// latter two. Types: 0 no proxy, 1 system proxy, 2 custom proxy. Below the
// proxy, the user's own tile sources; OK takes them only when each is usable.
class cNetworkSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit cNetworkSettingsDialog(QWidget* parent = nullptr);
    ~cNetworkSettingsDialog() override;

    void setSettings(int type, const QString& host, int port, const QString& user, const QString& password);
    void getSettings(int* type, QString* host, int* port, QString* user, QString* password) const;
    void setTileSources(const QList<cTileSource>& sources);
    QList<cTileSource> tileSources() const;

public slots:
    void proxyTypeSelected();
    void accept() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void addSourceRow(const cTileSource& source);
    QScopedPointer<Ui::cNetworkSettingsDialog> ui;
};

#endif
