#ifndef VOSK_SCRIPTPAGE_H
#define VOSK_SCRIPTPAGE_H

#include <QScopedPointer>
#include <QUuid>
#include <QWidget>

namespace Ui {
class cScriptPage;
}

// One tab of the save dialog: a route's script for display and the base
// name of its file, whose extension is fixed.
class cScriptPage : public QWidget
{
    Q_OBJECT

public:
    explicit cScriptPage(QWidget* parent = nullptr);
    ~cScriptPage() override;

    void setup(const QUuid& id, const QString& script, const QString& baseName);
    QString fileName() const;

    QUuid routeId;

private:
    QScopedPointer<Ui::cScriptPage> ui;
};

#endif
