#pragma once

// Albums as the cells of a grid or a strip read them. A page that arrives is appended as inserted rows, so a grid
// keeps its cells and its scroll position while a long list loads.

#include "common/positionallist.h"
#include "server/records.h"

#include <QtQml/qqmlregistration.h>

class AlbumListModel : public PositionalListModel<Album>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by a screen")
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)

public:
    enum Role { RecordRole = Qt::UserRole, IdRole, NameRole, ArtistRole, ArtistIdRole, CoverArtRole };

    explicit AlbumListModel(QObject *parent = nullptr);
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    void setAlbums(const QList<Album> &albums) { setItems(albums); }

Q_SIGNALS:
    void countChanged();
};
