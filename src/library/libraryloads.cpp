// The background loads. Each one: call the server; if cancelled meanwhile, drop everything and touch nothing
// (the store may be gone); otherwise mark the server reachable and store the data, or store the error text.

#include "librarystore.h"

QString LibraryStore::failLoad(std::exception_ptr error)
{
    const ConnectionFault fault = ConnectionFault::from(error);
    if (fault.kind == ConnectionFault::Kind::Offline || fault.kind == ConnectionFault::Kind::Unauthorized)
        setReachability(ServerReachability::failing(fault));
    return errorDescription(error);
}

void LibraryStore::loadMoreAlbums(AlbumListType type)
{
    AlbumListState state = albumList(type);
    if (state.reachedEnd || m_albumTasks.contains(type))
        return;
    state.isLoading = true;
    state.errorMessage = std::nullopt;
    setAlbumList(type, std::move(state));
    m_albumTasks[type].start([this, type](CancelToken token) { return loadAlbumPage(type, token); });
}

QCoro::Task<> LibraryStore::loadAlbumPage(AlbumListType type, CancelToken token)
{
    const qsizetype held = albumList(type).albums.size();
    QList<Album> page;
    std::exception_ptr failure;
    try {
        page = co_await m_client.albums(type, albumPageSize, static_cast<int>(held), token);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return;

    AlbumListState state = albumList(type);
    state.isLoading = false;
    if (failure) {
        state.errorMessage = failLoad(failure);
    } else {
        setReachability(ServerReachability::ok());
        // The known ids are taken once, so two equal ids inside one page both stay.
        QSet<QString> known;
        for (const Album &album : std::as_const(state.albums))
            known.insert(album.id);
        for (const Album &album : std::as_const(page)) {
            if (!known.contains(album.id))
                state.albums.append(album);
        }
        state.reachedEnd = page.size() < albumPageSize;
    }
    setAlbumList(type, std::move(state));
    m_albumTasks.erase(type); // cancels nothing that still runs: this is the task's last act
}

void LibraryStore::ensureHomeRandomLoaded()
{
    if (m_homeRandomTask.isRunning())
        return;
    if (m_homeRandomLoaded && !m_homeRandomError)
        return;
    setHomeRandom(m_homeRandomAlbums, std::nullopt, m_homeRandomLoaded);
    m_homeRandomTask.start([this](CancelToken token) { return loadHomeRandom(token); });
    Q_EMIT homeRandomChanged(); // isLoading of the row changed
}

QCoro::Task<> LibraryStore::loadHomeRandom(CancelToken token)
{
    QList<Album> albums;
    std::exception_ptr failure;
    try {
        albums = co_await m_client.albums(AlbumListType::Random, homeRandomCount, 0, token);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return;
    m_homeRandomTask.cancel(); // the task is over: the row no longer reads as loading
    if (failure) {
        setHomeRandom(m_homeRandomAlbums, failLoad(failure), true);
    } else {
        setReachability(ServerReachability::ok());
        setHomeRandom(std::move(albums), std::nullopt, true);
    }
    Q_EMIT homeRandomChanged();
}

void LibraryStore::ensureArtistsLoaded()
{
    if (m_artistsLoaded || m_artistsTask.isRunning())
        return;
    m_artistsTask.start([this](CancelToken token) { return loadArtists(token); });
}

QCoro::Task<> LibraryStore::loadArtists(CancelToken token)
{
    std::optional<QList<ArtistIndex>> indexes;
    std::exception_ptr failure;
    try {
        indexes = co_await m_client.artists(token);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return;
    if (failure) {
        setArtistsError(failLoad(failure));
    } else {
        setReachability(ServerReachability::ok());
        setArtists(indexes.value_or(QList<ArtistIndex>()));
    }
    setArtistsLoaded(true);
}

void LibraryStore::ensureSongsLoaded()
{
    if (m_songsLoaded || m_songsTask.isRunning())
        return;
    m_songsTask.start([this](CancelToken token) { return loadSongs(token); });
}

// One walk in pages of 500 up to 20,000 songs. Each page is appended where it lands, so a table shows the first
// rows at once, and a failure keeps what earlier pages brought.
QCoro::Task<> LibraryStore::loadSongs(CancelToken token)
{
    qsizetype held = 0;
    while (held < songLimit) {
        QList<Song> page;
        std::exception_ptr failure;
        try {
            page = co_await m_client.songs(songPageSize, static_cast<int>(held), token);
        } catch (...) {
            failure = std::current_exception();
        }
        if (token.isCancelled())
            co_return;
        if (failure) {
            setSongsError(failLoad(failure));
            setSongsLoaded(true);
            co_return;
        }
        if (!page.isEmpty()) {
            const qsizetype first = m_songs.size();
            m_songs.append(page);
            Q_EMIT songsAppended(first, page.size());
        }
        held += page.size();
        if (page.size() < songPageSize)
            break;
    }
    setReachability(ServerReachability::ok());
    setSongsLoaded(true);
}

void LibraryStore::ensureStarredLoaded()
{
    if (m_starredLoaded || m_starredTask.isRunning())
        return;
    m_starredTask.start([this](CancelToken token) { return loadStarred(token); });
}

QCoro::Task<> LibraryStore::loadStarred(CancelToken token)
{
    SearchResult starred;
    std::exception_ptr failure;
    try {
        starred = co_await m_client.starred(token);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return;
    if (failure) {
        setStarredError(failLoad(failure));
    } else {
        setReachability(ServerReachability::ok());
        setStarredSongs(starred.song.value_or(QList<Song>()));
        setStarredAlbums(starred.album.value_or(QList<Album>()));
        QSet<QString> artistIds;
        for (const Artist &artist : starred.artist.value_or(QList<Artist>()))
            artistIds.insert(artist.id);
        setStarredArtistIds(std::move(artistIds));
    }
    setStarredLoaded(true);
}

void LibraryStore::ensurePlaylistsLoaded()
{
    if (m_playlistsLoaded || m_playlistsTask.isRunning())
        return;
    m_playlistsTask.start([this](CancelToken token) { return loadPlaylists(token); });
}

QCoro::Task<> LibraryStore::loadPlaylists(CancelToken token)
{
    std::optional<QList<Playlist>> playlists;
    std::exception_ptr failure;
    try {
        playlists = co_await m_client.playlists(token);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return;
    if (failure) {
        setPlaylistsError(failLoad(failure));
    } else {
        setReachability(ServerReachability::ok());
        setPlaylists(playlists.value_or(QList<Playlist>()));
    }
    setPlaylistsLoaded(true);
}

// Refreshes the summaries after an edit. Silent on failure, and no judge of reachability.
QCoro::Task<> LibraryStore::reloadPlaylists()
{
    QPointer<LibraryStore> self(this);
    try {
        const auto playlists = co_await m_client.playlists();
        if (self)
            self->setPlaylists(playlists.value_or(QList<Playlist>()));
    } catch (...) {
    }
}
