#ifndef VOSK_SAVEDIALOG_H
#define VOSK_SAVEDIALOG_H

#include <QDialog>
#include <QScopedPointer>
#include <QUuid>

namespace Ui {
class cSaveDialog;
}

// Shows one tab per exported route with its script and file name, and asks
// for the output folder, which is kept between runs.
class cSaveDialog : public QDialog
{
    Q_OBJECT

public:
    explicit cSaveDialog(QWidget* parent = nullptr);
    ~cSaveDialog() override;

    void clearPages();
    void addPage(const QUuid& id, const QString& tabTitle, const QString& script, const QString& baseName);
    QString outputDir() const;
    // The file name of the first page for the route; empty when it has none.
    QString fileName(const QUuid& id) const;

private slots:
    void outputBtnClicked();

private:
    QScopedPointer<Ui::cSaveDialog> ui;
};

#endif
