#include "logwidget.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QVBoxLayout>

// The library is static, so its resources are not registered on their own;
// the macro must be expanded outside any namespace.
static void initLoggerResources()
{
    Q_INIT_RESOURCE(logger);
}

namespace logger {

cLogWidget::cLogWidget(QWidget* parent)
    : QDockWidget(tr("Logs"), parent)
    , logEdit(new QPlainTextEdit(this))
{
    initLoggerResources();
    setObjectName(QStringLiteral("logWidget"));

    auto* clearButton = new QToolButton;
    clearButton->setAutoRaise(true);
    clearButton->setIconSize(QSize(16, 16));
    clearButton->setFixedSize(22, 22);
    clearButton->setIcon(QIcon(QStringLiteral(":/logger/broom.png")));
    clearButton->setToolTip(tr("Clear log"));

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(0, 0, 0, 0);
    bar->addStretch();
    bar->addWidget(clearButton);

    logEdit->setReadOnly(true);

    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(logEdit);
    setWidget(content);

    // Only the view is cleared; the log file keeps every line.
    connect(clearButton, &QToolButton::clicked, logEdit, &QPlainTextEdit::clear);
}

} // namespace logger
