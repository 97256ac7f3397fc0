#include "collectioncovers.h"

#include <QSet>

QStringList albumCovers(const QList<Song> &songs)
{
    QStringList covers;
    QSet<QString> albumsMet;
    for (const Song &song : songs) {
        if (!song.coverArt)
            continue;
        const QString album = song.albumId.value_or(song.id);
        if (albumsMet.contains(album))
            continue;
        albumsMet.insert(album);
        covers.append(*song.coverArt);
    }
    return covers;
}
