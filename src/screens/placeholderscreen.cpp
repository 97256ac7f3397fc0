#include "placeholderscreen.h"

#include "library/cachedcontent.h"
#include "library/librarystore.h"

LibraryStore *PlaceholderScreen::library() const
{
    return m_library;
}

void PlaceholderScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library) {
        onCachedContentChange(library, this, [this] { update(); });
        connect(library, &LibraryStore::playlistRevisionChanged, this, &PlaceholderScreen::loadPlaylist);
    }
    update();
    loadPlaylist();
    Q_EMIT libraryChanged();
}

void PlaceholderScreen::update()
{
    const bool empty = !m_library || !m_library->hasCachedContent();
    if (empty == m_isEmpty)
        return;
    m_isEmpty = empty;
    Q_EMIT isEmptyChanged();
}

void PlaceholderScreen::setPlaylistId(const QString &id)
{
    if (m_playlistId == id)
        return;
    m_playlistId = id;
    loadPlaylist();
    Q_EMIT playlistIdChanged();
}

void PlaceholderScreen::loadPlaylist()
{
    if (!m_library || m_playlistId.isEmpty()) {
        m_playlistLoad.cancel();
        return;
    }
    m_playlistLoad.start([this, library = m_library, id = m_playlistId](CancelToken token) -> QCoro::Task<> {
        QCoro::Task<PlaylistDetail> loading = library->playlistDetail(id, token);
        const PlaylistDetail detail = co_await loading;
        if (token.isCancelled())
            co_return;
        QStringList ids;
        for (const Song &song : detail.entry.value_or(QList<Song>()))
            ids.append(song.id);
        if (ids != m_playlistSongIds) {
            m_playlistSongIds = ids;
            Q_EMIT playlistSongIdsChanged();
        }
    });
}
