#ifndef VOSK_ERRORDIALOG_H
#define VOSK_ERRORDIALOG_H

#include <QDialog>
#include <QScopedPointer>
#include <QStringList>

namespace Ui {
class cErrorDialog;
}

// Lists the sound files that could not be converted for the device.
class cErrorDialog : public QDialog
{
    Q_OBJECT

public:
    explicit cErrorDialog(QWidget* parent = nullptr);
    ~cErrorDialog() override;

    void setFiles(const QStringList& files);
    // What the read-back of the export found, below the files.
    void setDifferences(const QStringList& differences);

private:
    QScopedPointer<Ui::cErrorDialog> ui;
};

#endif
