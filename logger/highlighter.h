#ifndef VOSK_HIGHLIGHTER_H
#define VOSK_HIGHLIGHTER_H

#include <QSyntaxHighlighter>

class QTextDocument;

namespace logger {

// Colours whole log lines by the level word that follows their time:
// errors red, warnings blue, info bold; debug lines stay plain.
class cHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    explicit cHighlighter(QObject* parent);
    explicit cHighlighter(QTextDocument* parent);

protected:
    void highlightBlock(const QString& text) override;
};

} // namespace logger

#endif
