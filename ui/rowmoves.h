#ifndef VOSK_ROWMOVES_H
#define VOSK_ROWMOVES_H

#include <QList>
#include <QObject>
#include <QPair>

class QAbstractItemView;

// Records at their rows of a list, in ascending rows.
template <typename T>
using cRowEntries = QList<QPair<int, T>>;

// Takes out the entries of `take` (rows of the list before) and puts in
// those of `put` (rows of the list after).
template <typename T>
void spliceRows(QList<T>& list, const cRowEntries<T>& take, const cRowEntries<T>& put)
{
    for (int i = take.size() - 1; i >= 0; --i)
        list.removeAt(take.at(i).first);
    for (const auto& entry : put)
        list.insert(entry.first, entry.second);
}

// Where rows moved together end up: each one place up or down, or all
// together before `destination`, a row of the list as it was.
QList<int> shiftedRows(const QList<int>& rows, int offset);
QList<int> droppedRows(const QList<int>& rows, int destination);

// The splice that moves the records at `from` to the rows `to`.
template <typename T>
QPair<cRowEntries<T>, cRowEntries<T>> moveEntries(const QList<T>& list, const QList<int>& from, const QList<int>& to)
{
    QPair<cRowEntries<T>, cRowEntries<T>> entries;
    for (int i = 0; i < from.size(); ++i) {
        entries.first << qMakePair(from.at(i), list.at(from.at(i)));
        entries.second << qMakePair(to.at(i), list.at(from.at(i)));
    }
    return entries;
}

// Takes over drops inside a list view: the view's own move would change
// only its items, so the panel moves the records and refills the list.
class cListDropFilter : public QObject
{
    Q_OBJECT

public:
    explicit cListDropFilter(QAbstractItemView* view);

signals:
    // `destination` is the row of the list before the move.
    void dropped(int destination);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QAbstractItemView* m_view;
};

#endif
