#include "rowmoves.h"

#include <QAbstractItemView>
#include <QDropEvent>

#include <algorithm>

QList<int> shiftedRows(const QList<int>& rows, int offset)
{
    QList<int> shifted;
    for (int row : rows)
        shifted << row + offset;
    return shifted;
}

QList<int> droppedRows(const QList<int>& rows, int destination)
{
    const int first = destination - static_cast<int>(std::count_if(rows.begin(), rows.end(),
                                                                    [destination](int row) { return row < destination; }));
    QList<int> dropped;
    for (int i = 0; i < rows.size(); ++i)
        dropped << first + i;
    return dropped;
}

cListDropFilter::cListDropFilter(QAbstractItemView* view)
    : QObject(view)
    , m_view(view)
{
    view->setDragEnabled(true);
    view->setAcceptDrops(true);
    view->setDropIndicatorShown(true);
    // Not InternalMove, which the view carries out on its items itself.
    view->setDragDropMode(QAbstractItemView::DragDrop);
    view->setDragDropOverwriteMode(false);
    view->setDefaultDropAction(Qt::MoveAction);
    view->viewport()->installEventFilter(this);
}

bool cListDropFilter::eventFilter(QObject* watched, QEvent* event)
{
    // The type first: the viewport still sends events while the view is
    // being destroyed.
    if (event->type() != QEvent::Drop || watched != m_view->viewport())
        return false;
    auto* drop = static_cast<QDropEvent*>(event);
    // Only rows of this list move; anything else dropped is refused.
    if (drop->source() && drop->source() != m_view) {
        drop->ignore();
        return true;
    }
    const QModelIndex target = m_view->indexAt(drop->pos());
    int destination = m_view->model()->rowCount();
    if (target.isValid())
        destination = drop->pos().y() > m_view->visualRect(target).center().y() ? target.row() + 1 : target.row();
    // Nothing is left for the view to remove once the drag ends.
    drop->setDropAction(Qt::IgnoreAction);
    drop->accept();
    emit dropped(destination);
    return true;
}
