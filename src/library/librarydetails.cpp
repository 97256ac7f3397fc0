// Album, artist and playlist details: served from the cache when held, fetched and kept otherwise. They leave
// the reachability alone and throw their failures to the caller.

#include "librarystore.h"

#include <algorithm>

QCoro::Task<Album> LibraryStore::albumDetail(QString id)
{
    if (const auto cached = m_albumDetails.constFind(id); cached != m_albumDetails.constEnd())
        co_return *cached;
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    Album album = co_await client.album(id);
    if (self)
        self->m_albumDetails.insert(id, album);
    co_return album;
}

QCoro::Task<ArtistDetail> LibraryStore::artistDetail(QString id)
{
    if (const auto cached = m_artistDetails.constFind(id); cached != m_artistDetails.constEnd())
        co_return *cached;
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    ArtistDetail artist = co_await client.artist(id);
    if (self)
        self->m_artistDetails.insert(id, artist);
    co_return artist;
}

QCoro::Task<PlaylistDetail> LibraryStore::playlistDetail(QString id)
{
    if (const auto cached = m_playlistDetails.constFind(id); cached != m_playlistDetails.constEnd())
        co_return *cached;
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    PlaylistDetail playlist = co_await client.playlist(id);
    if (self)
        self->m_playlistDetails.insert(id, playlist);
    co_return playlist;
}

// Every song of an artist, newest album first; an album that cannot be fetched is left out silently.
QCoro::Task<QList<Song>> LibraryStore::artistDiscographySongs(QString id)
{
    QPointer<LibraryStore> self(this);
    const ArtistDetail artist = co_await artistDetail(id);
    QList<Album> albums = artist.album.value_or(QList<Album>());
    std::stable_sort(albums.begin(), albums.end(),
                     [](const Album &a, const Album &b) { return a.year.value_or(0) > b.year.value_or(0); });
    QList<Song> songs;
    for (const Album &album : std::as_const(albums)) {
        if (!self)
            break;
        try {
            const Album detail = co_await self->albumDetail(album.id);
            songs.append(detail.song.value_or(QList<Song>()));
        } catch (...) {
        }
    }
    co_return songs;
}
