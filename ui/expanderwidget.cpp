#include "expanderwidget.h"

#include <QIcon>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

const char* const collapsedIcon = ":/arrow.png";
const char* const expandedIcon = ":/arrow-expanded.png";
const int collapsedHeight = 20;

} // namespace

ExpanderWidget::ExpanderWidget(QWidget* parent)
    : QWidget(parent)
    , button(new QPushButton)
    , stack(new QStackedWidget)
    , layout(new QVBoxLayout)
{
    // The style sheet draws this button as a plain link-like header.
    button->setObjectName(QStringLiteral("__qt__passive_button"));
    button->setText(QStringLiteral("Expander"));
    button->setIcon(QIcon(QLatin1String(expandedIcon)));
    button->setFlat(true);
    connect(button, &QPushButton::clicked, this, &ExpanderWidget::buttonPressed);

    // Pages above the button: expanding grows the area over the header.
    layout->addWidget(stack);
    layout->addWidget(button, 0, Qt::AlignBottom);
    layout->setContentsMargins(0, 0, 0, 0);
    // Collapsing resizes the widget to the header's height, which may be
    // below what the button asks for.
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    setLayout(layout);
}

QSize ExpanderWidget::sizeHint() const
{
    return QSize(200, collapsedHeight);
}

int ExpanderWidget::count() const
{
    return stack->count();
}

int ExpanderWidget::currentIndex() const
{
    return stack->currentIndex();
}

QWidget* ExpanderWidget::widget(int index) const
{
    return stack->widget(index);
}

QString ExpanderWidget::expanderTitle() const
{
    return button->text();
}

void ExpanderWidget::buttonPressed()
{
    expanded = !expanded;
    if (expanded) {
        button->setIcon(QIcon(QLatin1String(expandedIcon)));
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
        stack->show();
    } else {
        button->setIcon(QIcon(QLatin1String(collapsedIcon)));
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        stack->hide();
        resize(width(), collapsedHeight);
    }
    updateGeometry();
    emit expanderChanged(expanded);
}

void ExpanderWidget::setExpanderTitle(const QString& title)
{
    button->setText(title);
}

void ExpanderWidget::setExpanded(bool flag)
{
    if (flag != expanded)
        buttonPressed();
}

void ExpanderWidget::addPage(QWidget* page)
{
    insertPage(stack->count(), page);
}

void ExpanderWidget::insertPage(int index, QWidget* page)
{
    page->setParent(stack);
    stack->insertWidget(index, page);
}

void ExpanderWidget::removePage(int)
{
    // Pages stay in the stack: forms built around the widget keep them.
}

void ExpanderWidget::setCurrentIndex(int index)
{
    if (index == stack->currentIndex())
        return;
    stack->setCurrentIndex(index);
    emit currentIndexChanged(index);
}
