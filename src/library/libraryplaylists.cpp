// Playlist edits go to the server first and the caches follow. A retry after a lost answer does not repeat
// the edit blindly: it reads the playlist again and works out what is still to do.

#include "librarystore.h"
#include "removalretrytarget.h"

namespace {
template<typename Action>
QCoro::Task<> runIfAlive(QPointer<LibraryStore> store, Action action)
{
    if (store)
        co_await action(store.data());
}

// A retry that holds the store weakly: run after the user signed out, it does nothing.
template<typename Action>
std::function<QCoro::Task<>()> weakRetry(LibraryStore *store, Action action)
{
    return [store = QPointer<LibraryStore>(store), action] { return runIfAlive(store, action); };
}

QCoro::Task<> fetchPlaylist(SubsonicClient client, QString id, PlaylistDetail *into)
{
    *into = co_await client.playlist(id);
}

QStringList idsOf(const QList<Song> &songs)
{
    QStringList ids;
    ids.reserve(songs.size());
    for (const Song &song : songs)
        ids.append(song.id);
    return ids;
}
}

QCoro::Task<std::optional<QString>> LibraryStore::createPlaylist(QString name)
{
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    // The playlists there were before, for a server that does not say which one it made. Only a list that
    // loaded can tell; otherwise it is asked for first.
    std::optional<QList<Playlist>> before;
    if (m_playlistsLoaded && !m_playlistsError)
        before = m_playlists;

    std::optional<PlaylistDetail> created;
    std::optional<QList<Playlist>> listed;
    std::exception_ptr failure;
    try {
        if (!before)
            before = (co_await client.playlists()).value_or(QList<Playlist>());
        created = co_await client.createPlaylist(name);
        // Servers older than API 1.14.0 do not say what they made: find the new playlist of that name.
        if (!created)
            listed = co_await client.playlists();
    } catch (...) {
        failure = std::current_exception();
    }
    if (!self)
        co_return std::nullopt;
    if (failure) {
        note(failure, QStringLiteral("create the playlist"), {});
        co_return std::nullopt;
    }
    setReachability(ServerReachability::ok());
    if (created) {
        co_await reloadPlaylists();
        co_return created->id;
    }
    QSet<QString> known;
    for (const Playlist &playlist : std::as_const(*before))
        known.insert(playlist.id);
    const QList<Playlist> playlists = listed.value_or(QList<Playlist>());
    setPlaylists(playlists);
    for (auto it = playlists.crbegin(); it != playlists.crend(); ++it) {
        if (it->name == name && !known.contains(it->id))
            co_return it->id;
    }
    note(std::make_exception_ptr(SubsonicError::invalidResponse()), QStringLiteral("create the playlist"), {});
    co_return std::nullopt;
}

QCoro::Task<bool> LibraryStore::sendEdit(QCoro::Task<> request, QString action,
                                         std::function<QCoro::Task<>()> retry)
{
    QPointer<LibraryStore> self(this);
    try {
        co_await std::move(request);
    } catch (...) {
        if (self)
            note(std::current_exception(), action, std::move(retry));
        co_return false;
    }
    if (!self)
        co_return false;
    setReachability(ServerReachability::ok());
    co_return true;
}

QCoro::Task<> LibraryStore::renamePlaylist(QString id, QString name)
{
    // The client is copied: the request may outlive the store.
    const SubsonicClient client = m_client;
    const QStringList noSongs;
    const QList<int> noIndexes;
    auto retry = weakRetry(this, [id, name](LibraryStore *store) { return store->renamePlaylist(id, name); });
    if (!co_await sendEdit(client.updatePlaylist(id, name, noSongs, noIndexes), QStringLiteral("rename the playlist"),
                           std::move(retry)))
        co_return;
    m_playlistDetails.remove(id);
    co_await reloadPlaylists();
}

QCoro::Task<bool> LibraryStore::deletePlaylist(QString id)
{
    const SubsonicClient client = m_client;
    auto retry = weakRetry(this, [id](LibraryStore *store) -> QCoro::Task<> { co_await store->deletePlaylist(id); });
    if (!co_await sendEdit(client.deletePlaylist(id), QStringLiteral("delete the playlist"), std::move(retry)))
        co_return false;
    m_playlistDetails.remove(id);
    QList<Playlist> playlists = m_playlists;
    playlists.removeIf([&](const Playlist &playlist) { return playlist.id == id; });
    setPlaylists(std::move(playlists));
    co_return true;
}

QCoro::Task<> LibraryStore::addSongs(QList<Song> songs, QString playlistId)
{
    if (songs.isEmpty())
        co_return;
    const SubsonicClient client = m_client;
    const QStringList songIds = idsOf(songs);
    const QList<int> noIndexes;
    auto retry = weakRetry(this, [songs, playlistId](LibraryStore *store) { return store->retryAdd(songs, playlistId); });
    if (!co_await sendEdit(client.updatePlaylist(playlistId, std::nullopt, songIds, noIndexes),
                           QStringLiteral("add to the playlist"), std::move(retry)))
        co_return;
    m_playlistDetails.remove(playlistId);
    setPlaylistRevision(m_playlistRevision + 1);
    co_await reloadPlaylists();
}

QCoro::Task<> LibraryStore::addAlbum(Album album, QString playlistId)
{
    QList<Song> songs;
    if (album.song) {
        songs = *album.song;
    } else {
        QPointer<LibraryStore> self(this);
        try {
            songs = (co_await albumDetail(album.id)).song.value_or(QList<Song>());
        } catch (...) {
            if (self) {
                note(std::current_exception(), QStringLiteral("add the album to the playlist"),
                     weakRetry(this, [album, playlistId](LibraryStore *store) { return store->addAlbum(album, playlistId); }));
            }
            co_return;
        }
        if (!self)
            co_return;
    }
    co_await addSongs(songs, playlistId);
}

QCoro::Task<> LibraryStore::removeSong(int index, QStringList songIds, QString playlistId)
{
    const SubsonicClient client = m_client;
    const QStringList noSongs;
    const QList<int> indexes{index};
    auto retry = weakRetry(this, [index, songIds, playlistId](LibraryStore *store) {
        return store->retryRemove(index, songIds, playlistId);
    });
    if (!co_await sendEdit(client.updatePlaylist(playlistId, std::nullopt, noSongs, indexes),
                           QStringLiteral("remove from the playlist"), std::move(retry)))
        co_return;
    m_playlistDetails.remove(playlistId);
    setPlaylistRevision(m_playlistRevision + 1);
    co_await reloadPlaylists();
}

QCoro::Task<bool> LibraryStore::reorderPlaylist(QString playlistId, QStringList songIds)
{
    const SubsonicClient client = m_client;
    // No retry: the next drag saves the whole order anyway.
    if (!co_await sendEdit(client.replacePlaylistSongs(playlistId, songIds), QStringLiteral("save the new order"), {}))
        co_return false;
    m_playlistDetails.remove(playlistId);
    co_return true;
}

// The first add may have reached the server although its answer was lost: add only what is not there yet.
QCoro::Task<> LibraryStore::retryAdd(QList<Song> songs, QString playlistId)
{
    PlaylistDetail fresh;
    auto retry = weakRetry(this, [songs, playlistId](LibraryStore *store) { return store->retryAdd(songs, playlistId); });
    if (!co_await sendEdit(fetchPlaylist(m_client, playlistId, &fresh), QStringLiteral("add to the playlist"),
                           std::move(retry)))
        co_return;
    m_playlistDetails.insert(playlistId, fresh);
    const QStringList present = idsOf(fresh.entry.value_or(QList<Song>()));
    QList<Song> left;
    for (const Song &song : std::as_const(songs)) {
        if (!present.contains(song.id))
            left.append(song);
    }
    if (!left.isEmpty())
        co_await addSongs(left, playlistId);
}

// An index means something only against the order it was taken from, and the first removal may have happened.
QCoro::Task<> LibraryStore::retryRemove(int index, QStringList before, QString playlistId)
{
    PlaylistDetail fresh;
    auto retry = weakRetry(this, [index, before, playlistId](LibraryStore *store) {
        return store->retryRemove(index, before, playlistId);
    });
    if (!co_await sendEdit(fetchPlaylist(m_client, playlistId, &fresh), QStringLiteral("remove from the playlist"),
                           std::move(retry)))
        co_return;
    m_playlistDetails.insert(playlistId, fresh);
    const QStringList current = idsOf(fresh.entry.value_or(QList<Song>()));
    const std::optional<int> target = removalRetryTarget(index, before, current);
    if (target)
        co_await removeSong(*target, current, playlistId);
}
