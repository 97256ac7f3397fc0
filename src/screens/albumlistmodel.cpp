#include "albumlistmodel.h"

AlbumListModel::AlbumListModel(QObject *parent) : PositionalListModel(parent)
{
    connect(this, &QAbstractItemModel::rowsInserted, this, &AlbumListModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &AlbumListModel::countChanged);
}

QVariant AlbumListModel::data(const QModelIndex &index, int role) const
{
    const Album *album = itemAt(index);
    if (!album)
        return {};
    switch (role) {
    case RecordRole: return album->toJson();
    case IdRole: return album->id;
    case NameRole: return album->name;
    case ArtistRole: return album->artist.value_or(QString());
    case ArtistIdRole: return album->artistId.value_or(QString());
    case CoverArtRole: return album->coverArt.value_or(QString());
    default: return {};
    }
}

QHash<int, QByteArray> AlbumListModel::roleNames() const
{
    return {{RecordRole, "record"}, {IdRole, "albumId"},       {NameRole, "name"},
            {ArtistRole, "artist"}, {ArtistIdRole, "artistId"}, {CoverArtRole, "coverArt"}};
}
