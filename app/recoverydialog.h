#ifndef VOSK_RECOVERYDIALOG_H
#define VOSK_RECOVERYDIALOG_H

#include "autosavestore.h"

#include <QDialog>
#include <QList>

namespace Ui {
class cRecoveryDialog;
}

// Lists autosaves with unsaved work (time, file, routes, stops) and lets the
// user open one, or discard those not wanted any more.
class cRecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    cRecoveryDialog(cAutosaveStore* store, const QList<cAutosaveEntry>& entries, QWidget* parent);
    ~cRecoveryDialog() override;

    // The autosave chosen with Open.
    cAutosaveEntry chosen() const { return m_chosen; }

private slots:
    void openSelected();
    void discardSelected();
    void selectionChanged();

private:
    int selectedRow() const;

    Ui::cRecoveryDialog* ui;
    cAutosaveStore* m_store;
    QList<cAutosaveEntry> m_entries;
    cAutosaveEntry m_chosen;
};

#endif
