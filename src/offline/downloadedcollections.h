#pragma once

// The albums and playlists on disk as rows of a view: the Downloads screen's sections and the storage rows of the
// settings. Rows come from one walk over the manifest (songsByCollection) each time it changes, and the model
// moves to the new rows by inserting, removing and updating, never by starting over.

#include "downloadmanifest.h"

#include <QAbstractListModel>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

struct DownloadedCollectionRow {
    DownloadCollection collection;
    int songCount = 0;
    qint64 bytes = 0;
    QStringList covers; // one per album, for the collage
    // An album is opened from its songs on disk; with none left it cannot be.
    bool canOpen = false;

    bool operator==(const DownloadedCollectionRow &) const = default;
};

// Sizes as the file manager writes them: "4.2 MB".
[[nodiscard]] QString fileSizeText(qint64 bytes);
// A row as views read it: "key", "name", "caption" ("12 songs · 4.2 MB"), "sizeText", "covers", "canOpen".
[[nodiscard]] QVariantMap cellData(const DownloadedCollectionRow &row);

namespace DownloadedCollections {
// The collections whose keys begin with `prefix`, by name as a file manager sorts them: "Mix 2" before "Mix 10".
[[nodiscard]] QList<DownloadedCollectionRow> byName(const DownloadManifest &manifest,
                                                    const QHash<QString, CollectionContents> &contents,
                                                    const QString &prefix);
// Every collection, the largest first.
[[nodiscard]] QList<DownloadedCollectionRow> bySize(const DownloadManifest &manifest,
                                                    const QHash<QString, CollectionContents> &contents);
}

class DownloadedCollectionsModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by a downloads screen")

public:
    enum Role { KeyRole = Qt::UserRole, NameRole, SizeRole };

    using QAbstractListModel::QAbstractListModel;
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QList<DownloadedCollectionRow> &rows() const { return m_rows; }
    void apply(const QList<DownloadedCollectionRow> &rows);

private:
    QList<DownloadedCollectionRow> m_rows;
};
