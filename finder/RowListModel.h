#pragma once

#include "platform/RowUpdate.h"

#include <QAbstractListModel>
#include <QList>

namespace lumaro {

/// A list that announces what differs when its rows change. Main thread.
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

    /// Puts `row` first: in place of the one at `from`, which moves there, so that a view keeps its
    /// focus and its place on it; a new one when `from` is negative. Costs the same however long
    /// the list is.
    void putFirst(qsizetype from, const Row &row)
    {
        if (from < 0) {
            beginInsertRows({}, 0, 0);
            m_rows.prepend(row);
            endInsertRows();
            return;
        }
        if (from > 0) {
            beginMoveRows({}, int(from), int(from), {}, 0);
            m_rows.prepend(m_rows.takeAt(from));
            endMoveRows();
        }
        if (m_rows.first() != row) {
            m_rows.first() = row;
            Q_EMIT dataChanged(index(0), index(0));
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
