// Album, artist and playlist details: served from the cache when held, fetched and kept otherwise. They leave
// the reachability alone and throw their failures to the caller, and a caller that goes may cancel its fetch.

#include "librarystore.h"

#include <algorithm>

namespace {
// A fetch through a copy of the client, which outlives the store if need be, kept in `cache` when the store
// is still there and the caller still wants it.
template<typename Record, typename Fetch>
QCoro::Task<Record> fetchDetail(QPointer<LibraryStore> store, QHash<QString, Record> *cache, QString id,
                                CancelToken token, Fetch fetch)
{
    if (const auto cached = cache->constFind(id); cached != cache->constEnd())
        co_return *cached;
    const SubsonicClient client = store->client();
    Record record = co_await fetch(client, id, token);
    if (token.isCancelled())
        throw TaskCancelled{};
    if (store)
        cache->insert(id, record);
    co_return record;
}
}

QList<Album> inDiscographyOrder(QList<Album> albums)
{
    std::stable_sort(albums.begin(), albums.end(),
                     [](const Album &a, const Album &b) { return a.year.value_or(0) > b.year.value_or(0); });
    return albums;
}

QCoro::Task<Album> LibraryStore::albumDetail(QString id, CancelToken token)
{
    return fetchDetail(QPointer(this), &m_albumDetails, std::move(id), std::move(token),
                       [](const SubsonicClient &client, const QString &id, CancelToken token) {
                           return client.album(id, token);
                       });
}

QCoro::Task<ArtistDetail> LibraryStore::artistDetail(QString id, CancelToken token)
{
    return fetchDetail(QPointer(this), &m_artistDetails, std::move(id), std::move(token),
                       [](const SubsonicClient &client, const QString &id, CancelToken token) {
                           return client.artist(id, token);
                       });
}

QCoro::Task<PlaylistDetail> LibraryStore::playlistDetail(QString id, CancelToken token)
{
    return fetchDetail(QPointer(this), &m_playlistDetails, std::move(id), std::move(token),
                       [](const SubsonicClient &client, const QString &id, CancelToken token) {
                           return client.playlist(id, token);
                       });
}

// Every song of an artist, newest album first; an album that cannot be fetched is left out silently.
QCoro::Task<QList<Song>> LibraryStore::artistDiscographySongs(QString id, CancelToken token)
{
    QPointer<LibraryStore> self(this);
    const ArtistDetail artist = co_await artistDetail(id, token);
    const QList<Album> albums = inDiscographyOrder(artist.album.value_or(QList<Album>()));
    QList<Song> songs;
    for (const Album &album : std::as_const(albums)) {
        if (token.isCancelled())
            throw TaskCancelled{};
        if (!self)
            break;
        try {
            const Album detail = co_await self->albumDetail(album.id, token);
            songs.append(detail.song.value_or(QList<Song>()));
        } catch (const TaskCancelled &) {
            throw;
        } catch (...) {
        }
    }
    co_return songs;
}
