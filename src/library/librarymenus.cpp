#include "librarymenus.h"

#include "librarystore.h"
#include "server/json.h"

using namespace Qt::StringLiterals;

LibraryStore *LikeAction::library() const
{
    return m_library;
}

void LikeAction::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library)
        connect(library, &LibraryStore::starredIdsChanged, this, &LikeAction::textChanged);
    Q_EMIT libraryChanged();
    Q_EMIT textChanged();
}

void LikeAction::setSong(const QJsonObject &song)
{
    if (song == m_song)
        return;
    m_song = song;
    Q_EMIT songChanged();
    Q_EMIT textChanged();
}

QString LikeAction::text() const
{
    const bool liked = m_library && m_library->starredIds().contains(m_song.value("id"_L1).toString());
    return liked ? u"Unlike"_s : u"Like"_s;
}

void LikeAction::toggle()
{
    if (!m_library)
        return;
    try {
        m_library->toggleStar(Song::fromJson(m_song));
    } catch (const Json::DecodeError &) {
    }
}

LibraryStore *AddToPlaylistAction::library() const
{
    return m_library;
}

void AddToPlaylistAction::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library)
        connect(library, &LibraryStore::playlistsChanged, this, &AddToPlaylistAction::playlistsChanged);
    Q_EMIT libraryChanged();
    Q_EMIT playlistsChanged();
}

QVariantList AddToPlaylistAction::playlists() const
{
    QVariantList rows;
    for (const Playlist &playlist : m_library ? m_library->playlists() : QList<Playlist>())
        rows.append(QVariantMap{{u"id"_s, playlist.id}, {u"name"_s, playlist.name}});
    return rows;
}

void AddToPlaylistAction::add(const QString &playlistId)
{
    if (!m_library)
        return;
    try {
        if (!m_album.isEmpty()) {
            m_library->addAlbum(Album::fromJson(m_album), playlistId);
            return;
        }
        QList<Song> songs;
        for (const QJsonValue &song : m_songs)
            songs.append(Song::fromJson(Json::asObject(song)));
        m_library->addSongs(songs, playlistId);
    } catch (const Json::DecodeError &) {
    }
}

void AddToPlaylistAction::addToNewPlaylist(const QString &name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty() && m_library)
        addToNew(trimmed);
}

QCoro::Task<> AddToPlaylistAction::addToNew(QString name)
{
    QPointer<AddToPlaylistAction> self(this);
    QPointer<LibraryStore> library = m_library;
    const std::optional<QString> id = co_await library->createPlaylist(name);
    if (id && self)
        add(*id);
}
