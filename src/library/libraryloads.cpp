// The background loads. Each one: call the server; if cancelled meanwhile, drop everything and touch nothing
// (the store may be gone); otherwise mark the server reachable and store the data, or store the error text.
// A load lets go of its own task before it tells anyone of the result, so that a view answering the news
// with the next request finds nothing under way.

#include "librarystore.h"
#include "textpool.h"

QString LibraryStore::failLoad(std::exception_ptr error)
{
    const ConnectionFault fault = ConnectionFault::from(error);
    if (fault.kind == ConnectionFault::Kind::Offline || fault.kind == ConnectionFault::Kind::Unauthorized)
        setReachability(ServerReachability::failing(fault));
    return errorDescription(error);
}

template<typename T>
QCoro::Task<std::optional<LibraryStore::Settled<T>>> LibraryStore::settle(QCoro::Task<T> request, CancelToken token)
{
    Settled<T> settled;
    std::exception_ptr failure;
    try {
        settled.value = co_await std::move(request);
    } catch (...) {
        failure = std::current_exception();
    }
    if (token.isCancelled())
        co_return std::nullopt;
    if (failure)
        settled.error = failLoad(failure);
    else
        setReachability(ServerReachability::ok());
    co_return settled;
}

void LibraryStore::loadMoreAlbums(AlbumListType type)
{
    AlbumListState state = albumList(type);
    if (state.reachedEnd || m_albumTasks.contains(type))
        return;
    state.isLoading = true;
    state.errorMessage = std::nullopt;
    // Registered before anyone hears of the load. The request cannot end before it has been sent, so the task
    // is still there when the list is stored.
    m_albumTasks[type].start([this, type](CancelToken token) { return loadAlbumPage(type, token); });
    setAlbumList(type, std::move(state));
}

QCoro::Task<> LibraryStore::loadAlbumPage(AlbumListType type, CancelToken token)
{
    const SubsonicClient client = m_client;
    const qsizetype held = albumList(type).albums.size();
    const auto page = co_await settle(client.albums(type, albumPageSize, static_cast<int>(held), token), token);
    if (!page)
        co_return;

    AlbumListState state = albumList(type);
    state.isLoading = false;
    if (page->value) {
        // The known ids are taken once, so two equal ids inside one page both stay.
        QSet<QString> known;
        for (const Album &album : std::as_const(state.albums))
            known.insert(album.id);
        for (const Album &album : std::as_const(*page->value)) {
            if (!known.contains(album.id))
                state.albums.append(album);
        }
        state.reachedEnd = page->value->size() < albumPageSize;
    } else {
        state.errorMessage = page->error;
    }
    m_albumTasks.erase(type);
    setAlbumList(type, std::move(state));
}

void LibraryStore::ensureHomeRandomLoaded()
{
    if (m_homeRandomTask.isActive())
        return;
    if (m_homeRandomLoaded && !m_homeRandomError)
        return;
    m_homeRandomTask.start([this](CancelToken token) { return loadHomeRandom(token); });
    setHomeRandom(m_homeRandomAlbums, std::nullopt, m_homeRandomLoaded);
    Q_EMIT homeRandomChanged(); // isLoading of the row changed
}

QCoro::Task<> LibraryStore::loadHomeRandom(CancelToken token)
{
    const SubsonicClient client = m_client;
    const auto albums = co_await settle(client.albums(AlbumListType::Random, homeRandomCount, 0, token), token);
    if (!albums)
        co_return;
    m_homeRandomTask.cancel(); // the row no longer reads as loading
    if (albums->value)
        setHomeRandom(std::move(*albums->value), std::nullopt, true);
    else
        setHomeRandom(m_homeRandomAlbums, albums->error, true);
    Q_EMIT homeRandomChanged();
}

void LibraryStore::ensureArtistsLoaded()
{
    if (m_artistsLoaded || m_artistsTask.isActive())
        return;
    m_artistsTask.start([this](CancelToken token) { return loadArtists(token); });
}

QCoro::Task<> LibraryStore::loadArtists(CancelToken token)
{
    const SubsonicClient client = m_client;
    const auto indexes = co_await settle(client.artists(token), token);
    if (!indexes)
        co_return;
    if (indexes->value)
        setArtists(indexes->value->value_or(QList<ArtistIndex>()));
    else
        setArtistsError(indexes->error);
    setArtistsLoaded(true);
}

void LibraryStore::ensureSongsLoaded()
{
    if (m_songsLoaded || m_songsTask.isActive())
        return;
    m_songsTask.start([this](CancelToken token) { return loadSongs(token); });
}

// One walk in pages of 500 up to 20,000 songs. Each page is appended where it lands, so a table shows the first
// rows at once, and a failure keeps what earlier pages brought.
QCoro::Task<> LibraryStore::loadSongs(CancelToken token)
{
    const SubsonicClient client = m_client;
    TextPool texts;
    qsizetype held = 0;
    while (held < songLimit) {
        auto page = co_await settle(client.songs(songPageSize, static_cast<int>(held), token), token);
        if (!page)
            co_return;
        if (!page->value) {
            setSongsError(page->error);
            setSongsLoaded(true);
            co_return;
        }
        if (!page->value->isEmpty()) {
            const qsizetype first = m_songs.size();
            for (Song &song : *page->value)
                texts.share(song);
            m_songs.append(*page->value);
            Q_EMIT songsAppended(first, page->value->size());
        }
        held += page->value->size();
        if (page->value->size() < songPageSize)
            break;
    }
    // The list grew by doubling; the room it will not use goes back.
    m_songs.squeeze();
    setSongsLoaded(true);
}

void LibraryStore::ensureStarredLoaded()
{
    if (m_starredLoaded || m_starredTask.isActive())
        return;
    m_starredTask.start([this](CancelToken token) { return loadStarred(token); });
}

QCoro::Task<> LibraryStore::loadStarred(CancelToken token)
{
    const SubsonicClient client = m_client;
    const auto starred = co_await settle(client.starred(token), token);
    if (!starred)
        co_return;
    if (starred->value) {
        setStarredSongs(starred->value->song.value_or(QList<Song>()));
        setStarredAlbums(starred->value->album.value_or(QList<Album>()));
        QSet<QString> artistIds;
        for (const Artist &artist : starred->value->artist.value_or(QList<Artist>()))
            artistIds.insert(artist.id);
        setStarredArtistIds(std::move(artistIds));
    } else {
        setStarredError(starred->error);
    }
    setStarredLoaded(true);
}

void LibraryStore::ensurePlaylistsLoaded()
{
    if (m_playlistsLoaded || m_playlistsTask.isActive())
        return;
    m_playlistsTask.start([this](CancelToken token) { return loadPlaylists(token); });
}

QCoro::Task<> LibraryStore::loadPlaylists(CancelToken token)
{
    const SubsonicClient client = m_client;
    const auto playlists = co_await settle(client.playlists(token), token);
    if (!playlists)
        co_return;
    if (playlists->value)
        setPlaylists(playlists->value->value_or(QList<Playlist>()));
    else
        setPlaylistsError(playlists->error);
    setPlaylistsLoaded(true);
}

// Refreshes the summaries after an edit. Silent on failure, and no judge of reachability.
QCoro::Task<> LibraryStore::reloadPlaylists()
{
    QPointer<LibraryStore> self(this);
    const SubsonicClient client = m_client;
    try {
        const auto playlists = co_await client.playlists();
        if (self)
            self->setPlaylists(playlists.value_or(QList<Playlist>()));
    } catch (...) {
    }
}
