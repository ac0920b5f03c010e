#include "app/TextRows.h"

namespace lumaro {

void TextRows::setRows(const QList<Row> &rows)
{
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int TextRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant TextRows::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row &row = m_rows[index.row()];
    switch (role) {
    case SectionRole:
        return row.section;
    case TitleRole:
        return row.title;
    case TextRole:
        return row.text;
    default:
        return {};
    }
}

QHash<int, QByteArray> TextRows::roleNames() const
{
    return {{SectionRole, "section"}, {TitleRole, "title"}, {TextRole, "text"}};
}

} // namespace lumaro
