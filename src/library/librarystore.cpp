#include "librarystore.h"

#include "common/observable.h"

#include <QDebug>

LibraryStore::LibraryStore(SubsonicClient client, QObject *parent)
    : QObject(parent)
    , m_client(std::move(client))
{
}

LibraryStore::~LibraryStore() = default;

AlbumListState LibraryStore::albumList(AlbumListType type) const
{
    const auto found = m_albumLists.find(type);
    return found == m_albumLists.end() ? AlbumListState{} : found->second;
}

AlbumListState LibraryStore::homeRowState(AlbumListType type) const
{
    if (type != AlbumListType::Random)
        return albumList(type);
    return AlbumListState{
        .albums = m_homeRandomAlbums,
        .reachedEnd = true,
        .isLoading = m_homeRandomTask.isActive(),
        .errorMessage = m_homeRandomError,
    };
}

void LibraryStore::ensureHomeRow(AlbumListType type)
{
    if (type == AlbumListType::Random) {
        ensureHomeRandomLoaded();
        return;
    }
    if (albumList(type).albums.isEmpty() && !m_albumTasks.contains(type))
        loadMoreAlbums(type);
}

bool LibraryStore::hasCachedContent() const
{
    for (const auto &[type, state] : m_albumLists) {
        if (!state.albums.isEmpty())
            return true;
    }
    return !m_homeRandomAlbums.isEmpty() || !m_allArtists.isEmpty() || !m_songs.isEmpty()
        || !m_starredSongs.isEmpty() || !m_starredAlbums.isEmpty() || !m_playlists.isEmpty();
}

// Runs without suspending: every task is cancelled before the fields it would write are cleared, so a late
// answer finds itself cancelled and changes nothing. The playlists keep their rows for the sidebar.
void LibraryStore::refresh()
{
    m_albumTasks.clear();
    m_artistsTask.cancel();
    m_songsTask.cancel();
    m_starredTask.cancel();
    m_playlistsTask.cancel();

    const auto lists = m_albumLists;
    m_albumLists.clear();
    for (const auto &[type, state] : lists) {
        if (state != AlbumListState{})
            Q_EMIT albumListChanged(type);
    }
    m_homeRandomTask.cancel();
    setHomeRandom({}, std::nullopt, false);
    setArtists({});
    setArtistsLoaded(false);
    setArtistsError(std::nullopt);
    if (!m_songs.isEmpty()) {
        m_songs.clear();
        Q_EMIT songsReset();
    }
    setSongsLoaded(false);
    setSongsError(std::nullopt);
    setStarredSongs({});
    setStarredLoaded(false);
    setStarredError(std::nullopt);
    setStarredAlbums({});
    setStarredArtistIds({});
    setPlaylistsLoaded(false);
    setPlaylistsError(std::nullopt);
    m_albumDetails.clear();
    m_artistDetails.clear();
    m_playlistDetails.clear();
    setEpoch(m_epoch + 1);
}

void LibraryStore::note(std::exception_ptr error, const QString &action, std::function<QCoro::Task<>()> retry)
{
    const ConnectionFault fault = ConnectionFault::from(error);
    if (fault.kind == ConnectionFault::Kind::Offline || fault.kind == ConnectionFault::Kind::Unauthorized)
        setReachability(ServerReachability::failing(fault));
    setLastFailure(StoreFailure{.action = action, .fault = fault, .retry = std::move(retry)});
    qWarning().noquote() << action + QStringLiteral(" failed: ") + errorDescription(error);
}

QCoro::Task<> LibraryStore::retryConnection()
{
    if (m_isRetrying)
        co_return;
    setIsRetrying(true);
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    std::exception_ptr failure;
    try {
        co_await client.ping();
    } catch (...) {
        failure = std::current_exception();
    }
    if (!self)
        co_return;
    if (failure) {
        const ConnectionFault fault = ConnectionFault::from(failure);
        if (fault.kind == ConnectionFault::Kind::Offline || fault.kind == ConnectionFault::Kind::Unauthorized)
            setReachability(ServerReachability::failing(fault));
    } else {
        setReachability(ServerReachability::ok());
        setLastFailure(std::nullopt);
        refresh();
    }
    setIsRetrying(false);
}

QCoro::Task<> LibraryStore::retryLastFailure()
{
    if (!m_lastFailure || !m_lastFailure->retry)
        co_return;
    // A copy: clearing the failure destroys the closure this task is about to run.
    const std::function<QCoro::Task<>()> retry = m_lastFailure->retry;
    setLastFailure(std::nullopt);
    co_await retry();
}

void LibraryStore::setLastFailure(std::optional<StoreFailure> failure)
{
    assignField(this, m_lastFailure, std::move(failure), &LibraryStore::lastFailureChanged);
}

void LibraryStore::setEpoch(int value)
{
    assignField(this, m_epoch, value, &LibraryStore::epochChanged);
}

void LibraryStore::setReachability(ServerReachability value)
{
    assignField(this, m_reachability, std::move(value), &LibraryStore::reachabilityChanged);
}

void LibraryStore::setIsRetrying(bool value)
{
    assignField(this, m_isRetrying, value, &LibraryStore::isRetryingChanged);
}

void LibraryStore::setPlaylistRevision(int value)
{
    assignField(this, m_playlistRevision, value, &LibraryStore::playlistRevisionChanged);
}

void LibraryStore::setAlbumList(AlbumListType type, AlbumListState state)
{
    AlbumListState &current = m_albumLists[type];
    if (current == state)
        return;
    current = std::move(state);
    Q_EMIT albumListChanged(type);
}

void LibraryStore::setHomeRandom(QList<Album> albums, std::optional<QString> error, bool loaded)
{
    if (albums == m_homeRandomAlbums && error == m_homeRandomError && loaded == m_homeRandomLoaded)
        return;
    m_homeRandomAlbums = std::move(albums);
    m_homeRandomError = std::move(error);
    m_homeRandomLoaded = loaded;
    Q_EMIT homeRandomChanged();
}

void LibraryStore::setArtists(QList<ArtistIndex> indexes)
{
    if (indexes == m_artistIndexes)
        return;
    m_artistIndexes = std::move(indexes);
    m_allArtists.clear();
    for (const ArtistIndex &group : std::as_const(m_artistIndexes))
        m_allArtists.append(group.artist);
    Q_EMIT artistsChanged();
}

void LibraryStore::setArtistsLoaded(bool value)
{
    assignField(this, m_artistsLoaded, value, &LibraryStore::artistsLoadedChanged);
}

void LibraryStore::setArtistsError(std::optional<QString> value)
{
    assignField(this, m_artistsError, std::move(value), &LibraryStore::artistsErrorChanged);
}

void LibraryStore::setSongsLoaded(bool value)
{
    assignField(this, m_songsLoaded, value, &LibraryStore::songsLoadedChanged);
}

void LibraryStore::setSongsError(std::optional<QString> value)
{
    assignField(this, m_songsError, std::move(value), &LibraryStore::songsErrorChanged);
}

// The id sets follow their lists, so the two can never disagree.
void LibraryStore::setStarredSongs(QList<Song> songs)
{
    if (assignField(this, m_starredSongs, std::move(songs), &LibraryStore::starredSongsChanged)) {
        QSet<QString> ids;
        for (const Song &song : std::as_const(m_starredSongs))
            ids.insert(song.id);
        assignField(this, m_starredIds, std::move(ids), &LibraryStore::starredIdsChanged);
    }
}

void LibraryStore::setStarredAlbums(QList<Album> albums)
{
    if (assignField(this, m_starredAlbums, std::move(albums), &LibraryStore::starredAlbumsChanged)) {
        QSet<QString> ids;
        for (const Album &album : std::as_const(m_starredAlbums))
            ids.insert(album.id);
        assignField(this, m_starredAlbumIds, std::move(ids), &LibraryStore::starredAlbumIdsChanged);
    }
}

void LibraryStore::setStarredArtistIds(QSet<QString> ids)
{
    assignField(this, m_starredArtistIds, std::move(ids), &LibraryStore::starredArtistIdsChanged);
}

void LibraryStore::setStarredLoaded(bool value)
{
    assignField(this, m_starredLoaded, value, &LibraryStore::starredLoadedChanged);
}

void LibraryStore::setStarredError(std::optional<QString> value)
{
    assignField(this, m_starredError, std::move(value), &LibraryStore::starredErrorChanged);
}

void LibraryStore::setPlaylists(QList<Playlist> value)
{
    assignField(this, m_playlists, std::move(value), &LibraryStore::playlistsChanged);
}

void LibraryStore::setPlaylistsLoaded(bool value)
{
    assignField(this, m_playlistsLoaded, value, &LibraryStore::playlistsLoadedChanged);
}

void LibraryStore::setPlaylistsError(std::optional<QString> value)
{
    assignField(this, m_playlistsError, std::move(value), &LibraryStore::playlistsErrorChanged);
}
