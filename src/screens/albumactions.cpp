#include "albumactions.h"

#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/json.h"
#include "shell/dragtypes.h"

#include <QJsonDocument>

namespace {
std::optional<Album> albumOf(const QJsonObject &record)
{
    try {
        return Album::fromJson(record);
    } catch (const Json::DecodeError &) {
        return std::nullopt;
    }
}
}

LibraryStore *AlbumActions::library() const
{
    return m_library;
}

void AlbumActions::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::starredAlbumIdsChanged, this, [this] {
            ++m_likesRevision;
            Q_EMIT likesChanged();
        });
    }
    Q_EMIT libraryChanged();
}

QString AlbumActions::dragType()
{
    return albumDragType;
}

bool AlbumActions::isLiked(const QString &albumId) const
{
    return m_library && m_library->starredAlbumIds().contains(albumId);
}

QString AlbumActions::likeText(const QString &albumId) const
{
    return isLiked(albumId) ? tr("Unlike Album") : tr("Like Album");
}

void AlbumActions::play(const QJsonObject &album)
{
    if (const std::optional<Album> record = albumOf(album); record && m_player && m_library)
        m_player->playAlbum(*record, m_library->client());
}

void AlbumActions::shuffle(const QJsonObject &album)
{
    if (const std::optional<Album> record = albumOf(album); record && m_player && m_library)
        m_player->playAlbum(*record, m_library->client(), AlbumStart{.startingAt = 0, .shuffled = true});
}

void AlbumActions::playNext(const QJsonObject &album)
{
    if (const std::optional<Album> record = albumOf(album); record && m_player && m_library)
        m_player->playAlbumNext(*record, m_library->client(), QueuePlacement::Next);
}

void AlbumActions::playLast(const QJsonObject &album)
{
    if (const std::optional<Album> record = albumOf(album); record && m_player && m_library)
        m_player->playAlbumNext(*record, m_library->client(), QueuePlacement::Last);
}

void AlbumActions::toggleLike(const QJsonObject &album)
{
    if (const std::optional<Album> record = albumOf(album); record && m_library)
        m_library->toggleStarAlbum(*record);
}

QString AlbumActions::dragData(const QJsonObject &album) const
{
    return QString::fromUtf8(QJsonDocument(album).toJson(QJsonDocument::Compact));
}
