#ifndef VOSK_CONVERTPROGRESS_H
#define VOSK_CONVERTPROGRESS_H

#include <QDialog>
#include <QScopedPointer>
#include <QStringList>

namespace Ui {
class cConvertProgress;
}

// Shows how far a sound conversion has come (files done of the total and
// the file being converted) while the window behind it is disabled. It has
// no buttons: a conversion cannot be cancelled.
class cConvertProgress : public QDialog
{
    Q_OBJECT

public:
    explicit cConvertProgress(QWidget* parent = nullptr);
    ~cConvertProgress() override;

    // The files in the order the converter takes them.
    void start(const QStringList& sources);
    // A file may be reported twice in a row; it counts once.
    void fileProcessed(const QString& fn);
    void finish();

public slots:
    void reject() override;

private:
    void showState();

    QScopedPointer<Ui::cConvertProgress> ui;
    QStringList files;
    QString lastFile;
    int done = 0;
};

#endif
