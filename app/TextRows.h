#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>

namespace lumaro {

/// Rows of texts under headings, for views that only show them. Main thread.
class TextRows : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { SectionRole = Qt::UserRole + 1, TitleRole, TextRole };
    Q_ENUM(Role)

    struct Row
    {
        /// The heading that it stands under.
        QString section;
        QString title;
        QString text;
        bool operator==(const Row &) const = default;
    };

    using QAbstractListModel::QAbstractListModel;

    const QList<Row> &rows() const { return m_rows; }
    void setRows(const QList<Row> &rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    QList<Row> m_rows;
};

} // namespace lumaro
