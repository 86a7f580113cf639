#include "unsafetextmark.h"

#include "textrules.h"

#include <QLineEdit>
#include <QStyle>

void markUnsafeText(QWidget* widget, const QString& text, const QString& plainToolTip)
{
    const QString warning = cTextRules::unsafeWarning(text);
    widget->setToolTip(warning.isEmpty() ? plainToolTip : warning);
    const bool unsafe = !warning.isEmpty();
    if (widget->property("unsafe").toBool() == unsafe)
        return;
    widget->setProperty("unsafe", unsafe);
    // Style sheet rules that test a property are applied on polishing.
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

void watchUnsafeText(QLineEdit* edit)
{
    const QString plainToolTip = edit->toolTip();
    QObject::connect(edit, &QLineEdit::textChanged, edit,
                     [edit, plainToolTip](const QString& text) { markUnsafeText(edit, text, plainToolTip); });
    markUnsafeText(edit, edit->text(), plainToolTip);
}
