#include "highlighter.h"

#include <QColor>
#include <QFont>
#include <QRegExp>
#include <QTextCharFormat>

namespace logger {

namespace {

// Built once; only ever used on the GUI thread, where all highlighting runs.
const QRegExp& errorPattern()
{
    static const QRegExp rx(QStringLiteral("\\d+:\\d+:\\d+\\s+ERROR"));
    return rx;
}

const QRegExp& warningPattern()
{
    static const QRegExp rx(QStringLiteral("\\d+:\\d+:\\d+\\s+WARNING"));
    return rx;
}

const QRegExp& infoPattern()
{
    static const QRegExp rx(QStringLiteral("\\d+:\\d+:\\d+\\s+INFO"));
    return rx;
}

} // namespace

cHighlighter::cHighlighter(QObject* parent)
    : QSyntaxHighlighter(parent)
{
}

cHighlighter::cHighlighter(QTextDocument* parent)
    : QSyntaxHighlighter(parent)
{
}

void cHighlighter::highlightBlock(const QString& text)
{
    // Searched anywhere in the line, so a message quoting an earlier error
    // line is flagged as well.
    if (errorPattern().indexIn(text) >= 0) {
        setFormat(0, text.length(), QColor(Qt::red));
    } else if (warningPattern().indexIn(text) >= 0) {
        setFormat(0, text.length(), QColor(Qt::blue));
    } else if (infoPattern().indexIn(text) >= 0) {
        QTextCharFormat format;
        format.setFontWeight(QFont::Bold);
        format.setFontFamily(QStringLiteral("Courier"));
        setFormat(0, text.length(), format);
    }
}

} // namespace logger
