#ifndef VOSK_EXPANDERWIDGET_H
#define VOSK_EXPANDERWIDGET_H

#include <QWidget>

class QPushButton;
class QStackedWidget;
class QVBoxLayout;

// A collapsible container: a flat button with an arrow and a title, and a
// stack of pages shown or hidden by it. Title and state are properties so
// that it can be set up in Designer forms.
class ExpanderWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString expanderTitle READ expanderTitle WRITE setExpanderTitle STORED true)
    Q_PROPERTY(bool isExpanded READ isExpanded WRITE setExpanded)

public:
    explicit ExpanderWidget(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    int count() const;
    int currentIndex() const;
    QWidget* widget(int index) const;
    QString expanderTitle() const;
    bool isExpanded() const { return expanded; }

signals:
    void currentIndexChanged(int index);
    void expanderChanged(bool flag);

public slots:
    void buttonPressed();
    void setExpanderTitle(const QString& title);
    void setExpanded(bool flag);
    void addPage(QWidget* page);
    void insertPage(int index, QWidget* page);
    void removePage(int index);
    void setCurrentIndex(int index);

private:
    bool expanded = true;
    QPushButton* button;
    QStackedWidget* stack;
    QVBoxLayout* layout;
};

#endif
