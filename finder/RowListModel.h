#pragma once

#include "platform/RowUpdate.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>

#include <algorithm>
#include <functional>

namespace lumaro {

/// A list whose rows are replaced as a whole and announced as what differs. Main thread.
template <typename Row>
class RowListModel : public QAbstractListModel
{
public:
    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : int(m_rows.size());
    }

protected:
    using QAbstractListModel::QAbstractListModel;

    const QList<Row> &rows() const { return m_rows; }

    void setRows(const QList<Row> &rows)
    {
        const RowUpdate change = RowUpdate::between(m_rows, rows);
        if (change.removed > 0) {
            beginRemoveRows({}, change.first, change.first + change.removed - 1);
            m_rows.remove(change.first, change.removed);
            endRemoveRows();
        }
        if (change.inserted > 0) {
            beginInsertRows({}, change.first, change.first + change.inserted - 1);
            m_rows = rows;
            endInsertRows();
        }
    }

    /// The same, announcing what only moves as moved, so that a view keeps its focus and its place
    /// there. `keyOf` tells which rows are for the same thing; a list's keys differ.
    template <typename KeyOf>
    void followRows(const QList<Row> &rows, KeyOf keyOf)
    {
        using Key = std::decay_t<std::invoke_result_t<KeyOf, const Row &>>;
        QSet<Key> kept;
        for (const Row &row : rows)
            kept.insert(std::invoke(keyOf, row));
        for (qsizetype i = m_rows.size() - 1; i >= 0; --i) {
            if (kept.contains(std::invoke(keyOf, m_rows[i])))
                continue;
            beginRemoveRows({}, int(i), int(i));
            m_rows.removeAt(i);
            endRemoveRows();
        }
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const auto from = std::ranges::find(m_rows.begin() + i, m_rows.end(),
                                                std::invoke(keyOf, rows[i]), keyOf)
                - m_rows.begin();
            if (from == m_rows.size()) {
                beginInsertRows({}, int(i), int(i));
                m_rows.insert(i, rows[i]);
                endInsertRows();
            } else if (from != i) {
                beginMoveRows({}, int(from), int(from), {}, int(i));
                m_rows.move(from, i);
                endMoveRows();
            }
        }
        const QList<Row> before = std::exchange(m_rows, rows);
        for (qsizetype i = 0; i < rows.size(); ++i) {
            if (before[i] != rows[i])
                Q_EMIT dataChanged(index(int(i)), index(int(i)));
        }
    }

    void resetRows(const QList<Row> &rows)
    {
        beginResetModel();
        m_rows = rows;
        endResetModel();
    }

private:
    QList<Row> m_rows;
};

} // namespace lumaro
