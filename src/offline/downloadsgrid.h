#pragma once

// The Downloads screen's sections as rows of cells, so that a list view builds only the rows on screen, however
// many collections there are. Rows are positional: a change updates, appends or drops rows, never starts over.

#include "downloadedcollections.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

struct DownloadsGridRow {
    QString section;
    QList<DownloadedCollectionRow> cells;

    bool operator==(const DownloadsGridRow &) const = default;
};

// `cells` cut into rows of `columns`, each under `section`.
[[nodiscard]] QList<DownloadsGridRow> gridRows(const QString &section, const QList<DownloadedCollectionRow> &cells,
                                               int columns);

class DownloadsGridModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the downloads screen")

public:
    enum Role { SectionRole = Qt::UserRole, CellsRole };

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QList<DownloadsGridRow> &rows() const { return m_rows; }
    void apply(const QList<DownloadsGridRow> &rows);

private:
    QList<DownloadsGridRow> m_rows;
};
