#ifndef VOSK_UNSAFETEXTMARK_H
#define VOSK_UNSAFETEXTMARK_H

class QLineEdit;
class QString;
class QWidget;

// Texts go into scripts and the project file unescaped, so a field whose
// text would read back differently is framed in red (by the style sheet's
// rule for the "unsafe" property) with a tool tip saying why.

// Marks `widget` for `text`; `plainToolTip` is its tool tip while the text
// is safe.
void markUnsafeText(QWidget* widget, const QString& text, const QString& plainToolTip);
// Keeps the edit marked for whatever text it holds, typed or loaded.
void watchUnsafeText(QLineEdit* edit);

#endif
