#include "recoverydialog.h"
#include "ui_recoverydialog.h"

#include <QDir>
#include <QLocale>
#include <QMessageBox>

cRecoveryDialog::cRecoveryDialog(cAutosaveStore* store, const QList<cAutosaveEntry>& entries, QWidget* parent)
    : QDialog(parent)
    , ui(new Ui::cRecoveryDialog)
    , m_store(store)
    , m_entries(entries)
{
    ui->setupUi(this);
    for (const cAutosaveEntry& entry : entries) {
        const QString file = entry.projectFile.isEmpty() ? tr("(never saved)")
                                                         : QDir::toNativeSeparators(entry.projectFile);
        auto* item = new QTreeWidgetItem(ui->autosaveList, {QLocale().toString(entry.time, QLocale::ShortFormat), file,
                                                            QString::number(entry.routes),
                                                            QString::number(entry.stops)});
        item->setToolTip(1, file);
    }
    for (int column = 0; column < ui->autosaveList->columnCount(); ++column)
        ui->autosaveList->resizeColumnToContents(column);
    connect(ui->autosaveList, &QTreeWidget::itemSelectionChanged, this, &cRecoveryDialog::selectionChanged);
    connect(ui->autosaveList, &QTreeWidget::itemActivated, this, &cRecoveryDialog::openSelected);
    connect(ui->openButton, &QPushButton::clicked, this, &cRecoveryDialog::openSelected);
    connect(ui->discardButton, &QPushButton::clicked, this, &cRecoveryDialog::discardSelected);
    connect(ui->cancelButton, &QPushButton::clicked, this, &cRecoveryDialog::reject);
    ui->autosaveList->setCurrentItem(ui->autosaveList->topLevelItem(0));
    selectionChanged();
}

cRecoveryDialog::~cRecoveryDialog()
{
    delete ui;
}

int cRecoveryDialog::selectedRow() const
{
    const QList<QTreeWidgetItem*> selected = ui->autosaveList->selectedItems();
    return selected.isEmpty() ? -1 : ui->autosaveList->indexOfTopLevelItem(selected.first());
}

void cRecoveryDialog::selectionChanged()
{
    const bool any = selectedRow() >= 0;
    ui->openButton->setEnabled(any);
    ui->discardButton->setEnabled(any);
}

void cRecoveryDialog::openSelected()
{
    const int row = selectedRow();
    if (row < 0)
        return;
    m_chosen = m_entries.at(row);
    accept();
}

void cRecoveryDialog::discardSelected()
{
    const int row = selectedRow();
    if (row < 0
        || QMessageBox::question(this, tr("Discard"), tr("Discard this unsaved work? It cannot be recovered afterwards."),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
            != QMessageBox::Yes)
        return;
    m_store->remove(m_entries.takeAt(row).projectId);
    delete ui->autosaveList->takeTopLevelItem(row);
    if (m_entries.isEmpty())
        reject();
}
