#include "downloadsgrid.h"

#include <QVariantList>

QList<DownloadsGridRow> gridRows(const QString &section, const QList<DownloadedCollectionRow> &cells, int columns)
{
    QList<DownloadsGridRow> rows;
    const int width = std::max(columns, 1);
    for (qsizetype start = 0; start < cells.size(); start += width)
        rows.append({section, cells.mid(start, width)});
    return rows;
}

int DownloadsGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant DownloadsGridModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DownloadsGridRow &row = m_rows.at(index.row());
    if (role == SectionRole)
        return row.section;
    if (role == CellsRole) {
        QVariantList cells;
        for (const DownloadedCollectionRow &cell : row.cells)
            cells.append(cellData(cell));
        return cells;
    }
    return {};
}

QHash<int, QByteArray> DownloadsGridModel::roleNames() const
{
    return {{SectionRole, "section"}, {CellsRole, "cells"}};
}

void DownloadsGridModel::apply(const QList<DownloadsGridRow> &rows)
{
    const int kept = int(std::min(rows.size(), m_rows.size()));
    if (m_rows.size() > rows.size()) {
        beginRemoveRows({}, kept, int(m_rows.size()) - 1);
        m_rows.resize(kept);
        endRemoveRows();
    }
    for (int i = 0; i < kept; ++i) {
        if (m_rows.at(i) != rows.at(i)) {
            m_rows[i] = rows.at(i);
            Q_EMIT dataChanged(index(i), index(i));
        }
    }
    if (rows.size() > kept) {
        beginInsertRows({}, kept, int(rows.size()) - 1);
        m_rows.append(rows.mid(kept));
        endInsertRows();
    }
}
