// Likes change the cache at once and are put back if the server refuses. A retry toggles again from the state
// as it then is, so it always flips rather than remembering which way the failed change went.

#include "librarystore.h"

namespace {
const QString likesAction = QStringLiteral("update your likes");

// The retries hold the store weakly: one that outlives its store does nothing.
QCoro::Task<> retryToggleStar(QPointer<LibraryStore> store, Song song)
{
    if (store)
        store->toggleStar(song);
    co_return;
}

QCoro::Task<> retryToggleStarAlbum(QPointer<LibraryStore> store, Album album)
{
    if (store)
        store->toggleStarAlbum(album);
    co_return;
}

QCoro::Task<> retryToggleStarArtist(QPointer<LibraryStore> store, QString id)
{
    if (store)
        store->toggleStarArtist(id);
    co_return;
}

template<typename T>
void toggleIn(QSet<T> &set, const T &value, bool present)
{
    if (present)
        set.insert(value);
    else
        set.remove(value);
}
}

void LibraryStore::toggleStar(const Song &song)
{
    const bool starred = !m_starredIds.contains(song.id);
    applyStar(song, starred);
    QPointer<LibraryStore> store(this);
    sendLike(
        store, {StarTarget::Kind::Song, song.id}, starred,
        [song, starred](LibraryStore *s) { s->applyStar(song, !starred); },
        [store, song] { return retryToggleStar(store, song); });
}

void LibraryStore::toggleStarAlbum(const Album &album)
{
    const bool starred = !m_starredAlbumIds.contains(album.id);
    applyAlbumStar(album, starred);
    QPointer<LibraryStore> store(this);
    sendLike(
        store, {StarTarget::Kind::Album, album.id}, starred,
        [album, starred](LibraryStore *s) { s->applyAlbumStar(album, !starred); },
        [store, album] { return retryToggleStarAlbum(store, album); });
}

void LibraryStore::toggleStarArtist(const QString &id)
{
    const bool starred = !m_starredArtistIds.contains(id);
    applyArtistStar(id, starred);
    QPointer<LibraryStore> store(this);
    sendLike(
        store, {StarTarget::Kind::Artist, id}, starred,
        [id, starred](LibraryStore *s) { s->applyArtistStar(id, !starred); },
        [store, id] { return retryToggleStarArtist(store, id); });
}

QCoro::Task<> LibraryStore::sendLike(QPointer<LibraryStore> store, StarTarget target, bool starred,
                                     std::function<void(LibraryStore *)> rollBack,
                                     std::function<QCoro::Task<>()> retry)
{
    const SubsonicClient client = store->client();
    std::exception_ptr failure;
    try {
        if (starred)
            co_await client.star(target);
        else
            co_await client.unstar(target);
    } catch (...) {
        failure = std::current_exception();
    }
    if (!store)
        co_return;
    if (!failure) {
        store->setReachability(ServerReachability::ok());
        co_return;
    }
    rollBack(store);
    store->note(failure, likesAction, std::move(retry));
}

// Liking puts a song first unless it is already held; unliking removes every copy. Order is otherwise kept.
void LibraryStore::applyStar(const Song &song, bool starred)
{
    QList<Song> songs = m_starredSongs;
    const bool held = std::any_of(songs.cbegin(), songs.cend(), [&](const Song &s) { return s.id == song.id; });
    if (starred && !held)
        songs.prepend(song);
    if (!starred)
        songs.removeIf([&](const Song &s) { return s.id == song.id; });
    setStarredSongs(std::move(songs)); // the id set follows
}

void LibraryStore::applyAlbumStar(const Album &album, bool starred)
{
    QList<Album> albums = m_starredAlbums;
    const bool held = std::any_of(albums.cbegin(), albums.cend(), [&](const Album &a) { return a.id == album.id; });
    if (starred && !held)
        albums.prepend(album);
    if (!starred)
        albums.removeIf([&](const Album &a) { return a.id == album.id; });
    setStarredAlbums(std::move(albums)); // the id set follows
}

void LibraryStore::applyArtistStar(const QString &id, bool starred)
{
    QSet<QString> ids = m_starredArtistIds;
    toggleIn(ids, id, starred);
    setStarredArtistIds(std::move(ids));
}
