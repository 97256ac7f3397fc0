#include "albumgridscreen.h"

#include "library/librarystore.h"

using namespace Qt::StringLiterals;

AlbumGridScreen::AlbumGridScreen(QObject *parent) : QObject(parent)
{
}

LibraryStore *AlbumGridScreen::library() const
{
    return m_library;
}

void AlbumGridScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::albumListChanged, this, [this](AlbumListType changed) {
            if (type() == changed)
                update();
        });
        connect(library, &LibraryStore::starredAlbumsChanged, this, &AlbumGridScreen::update);
        connect(library, &LibraryStore::starredLoadedChanged, this, &AlbumGridScreen::update);
        connect(library, &LibraryStore::starredErrorChanged, this, &AlbumGridScreen::update);
        // A refresh empties the lists; a grid on screen asks again.
        connect(library, &LibraryStore::epochChanged, this, &AlbumGridScreen::start);
    }
    Q_EMIT libraryChanged();
    start();
}

void AlbumGridScreen::setListType(const QString &listType)
{
    if (m_listType == listType)
        return;
    m_listType = listType;
    Q_EMIT listTypeChanged();
    start();
}

void AlbumGridScreen::componentComplete()
{
    m_complete = true;
    start();
}

bool AlbumGridScreen::isLiked() const
{
    return m_listType == u"liked"_s;
}

std::optional<AlbumListType> AlbumGridScreen::type() const
{
    return albumListTypeFromName(m_listType);
}

void AlbumGridScreen::start()
{
    if (!m_complete || !m_library)
        return;
    m_library->ensureStarredLoaded();
    if (const std::optional<AlbumListType> listType = type(); listType && m_library->albumList(*listType).albums.isEmpty())
        m_library->loadMoreAlbums(*listType);
    update();
}

void AlbumGridScreen::update()
{
    if (!m_library || (!isLiked() && !type()))
        return;
    m_albums.setAlbums(isLiked() ? m_library->starredAlbums() : m_library->albumList(*type()).albums);
    const QString newState = state();
    if (newState != m_state || newState == u"message"_s) {
        m_state = newState;
        Q_EMIT stateChanged();
    }
}

QString AlbumGridScreen::state() const
{
    if (!m_library || m_albums.rowCount() > 0)
        return u"grid"_s;
    if (isLiked())
        return m_library->starredLoaded() ? u"message"_s : u"loading"_s;
    const AlbumListState list = type() ? m_library->albumList(*type()) : AlbumListState();
    return list.isLoading ? u"loading"_s : u"message"_s;
}

QString AlbumGridScreen::messageTitle() const
{
    if (!m_library)
        return {};
    if (isLiked())
        return m_library->starredError() ? tr("Couldn’t Load Liked Albums") : tr("No Liked Albums");
    return type() && m_library->albumList(*type()).errorMessage ? tr("Couldn’t Load Albums") : tr("No Albums");
}

QString AlbumGridScreen::messageSymbol() const
{
    if (!m_library)
        return {};
    const bool failed = isLiked() ? m_library->starredError().has_value()
                                  : type() && m_library->albumList(*type()).errorMessage.has_value();
    if (failed)
        return u"exclamationmark.triangle"_s;
    return isLiked() ? u"square.stack"_s : u"square.grid.2x2"_s;
}

QString AlbumGridScreen::messageText() const
{
    if (!m_library)
        return {};
    if (isLiked())
        return m_library->starredError().value_or(tr("Like an album with the heart on its page or its context menu."));
    const std::optional<QString> error = type() ? m_library->albumList(*type()).errorMessage : std::nullopt;
    return error.value_or(tr("Your library doesn’t have any albums yet."));
}

void AlbumGridScreen::cellShown(int index)
{
    if (m_library && !isLiked() && type() && index == m_albums.rowCount() - 1)
        m_library->loadMoreAlbums(*type());
}
