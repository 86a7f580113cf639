#include "problemsdock.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

enum Column { SeverityColumn, RouteColumn, BranchColumn, StopColumn, MessageColumn, ColumnCount };

const int sortRole = Qt::UserRole;
const int routeRole = Qt::UserRole + 1;
const int branchRole = Qt::UserRole + 2;
const int stopRole = Qt::UserRole + 3;

// Sorts by a key of its own, so that icons sort by severity and stops by
// their place in the branch rather than by their text.
class cSortedItem : public QTableWidgetItem
{
public:
    cSortedItem(const QString& text, const QVariant& key)
        : QTableWidgetItem(text)
    {
        setData(sortRole, key);
        setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    }

    bool operator<(const QTableWidgetItem& other) const override
    {
        const QVariant a = data(sortRole);
        const QVariant b = other.data(sortRole);
        if (a.type() == QVariant::Int && b.type() == QVariant::Int)
            return a.toInt() < b.toInt();
        return QString::localeAwareCompare(a.toString(), b.toString()) < 0;
    }
};

} // namespace

cProblemsDock::cProblemsDock(QWidget* parent)
    : QDockWidget(tr("Problems"), parent)
    , summary(new QLabel)
    , table(new QTableWidget(0, ColumnCount))
{
    setObjectName(QStringLiteral("problemsDock"));
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(4, 4, 4, 4);
    summary->setObjectName(QStringLiteral("problemsSummary"));
    layout->addWidget(summary);

    table->setObjectName(QStringLiteral("problemTable"));
    table->setHorizontalHeaderLabels({QString(), tr("Route"), tr("Branch"), tr("Stop"), tr("Problem")});
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setSectionResizeMode(SeverityColumn, QHeaderView::ResizeToContents);
    table->horizontalHeader()->setStretchLastSection(true);
    table->setWordWrap(false);
    // The check's own order (route by route, stops in travel order) until
    // the user sorts by a column.
    table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    table->setSortingEnabled(true);
    layout->addWidget(table);
    connect(table, &QTableWidget::cellDoubleClicked, this, [this](int row) { rowActivated(row); });
    connect(table, &QTableWidget::cellActivated, this, [this](int row) { rowActivated(row); });
    setWidget(content);
    setProblems({});
}

void cProblemsDock::setProblems(const QList<cProblem>& problems)
{
    const int errors = errorCount(problems);
    summary->setText(problems.isEmpty() ? tr("No problems found")
                                        : tr("Errors: %1, warnings: %2").arg(errors).arg(problems.size() - errors));
    table->setVisible(!problems.isEmpty());

    const QIcon errorIcon = style()->standardIcon(QStyle::SP_MessageBoxCritical);
    const QIcon warningIcon = style()->standardIcon(QStyle::SP_MessageBoxWarning);
    table->setSortingEnabled(false);
    table->setRowCount(problems.size());
    for (int row = 0; row < problems.size(); ++row) {
        const cProblem& problem = problems.at(row);
        const bool error = problem.severity() == Severity::Error;
        auto* severity = new cSortedItem(QString(), error ? 0 : 1);
        severity->setIcon(error ? errorIcon : warningIcon);
        severity->setToolTip(cProblemText::severity(problem.severity()));
        severity->setData(routeRole, QVariant::fromValue(problem.routeId));
        severity->setData(branchRole, int(problem.branch));
        severity->setData(stopRole, QVariant::fromValue(problem.stopId));
        table->setItem(row, SeverityColumn, severity);
        table->setItem(row, RouteColumn, new cSortedItem(problem.routeName, problem.routeName));
        const QString branch = cProblemText::branch(problem.branch);
        table->setItem(row, BranchColumn, new cSortedItem(branch, branch));
        const QString stop = problem.stop > 0 ? QStringLiteral("%1. %2").arg(problem.stop).arg(problem.stopName)
                                              : QString();
        table->setItem(row, StopColumn, new cSortedItem(stop, problem.stop));
        auto* message = new cSortedItem(problem.message, problem.message);
        message->setToolTip(problem.message);
        table->setItem(row, MessageColumn, message);
    }
    table->setSortingEnabled(true);
    for (const int column : {RouteColumn, BranchColumn, StopColumn})
        table->resizeColumnToContents(column);
}

void cProblemsDock::rowActivated(int row)
{
    const QTableWidgetItem* item = table->item(row, SeverityColumn);
    if (!item)
        return;
    emit problemActivated(item->data(routeRole).value<QUuid>(), Branch(item->data(branchRole).toInt()),
                          item->data(stopRole).value<QUuid>());
}
