#pragma once

#include "platform/RowUpdate.h"

#include <QAbstractListModel>
#include <QList>

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

    /// As many rows as before, each for the same thing.
    void changeRows(const QList<Row> &rows)
    {
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
