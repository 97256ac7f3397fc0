#include "albumdetailscreen.h"

#include "albumtracks.h"
#include "library/connectionfault.h"
#include "library/librarystore.h"
#include "offline/downloadstore.h"
#include "playback/playercontroller.h"
#include "server/format.h"
#include "server/json.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

QVariant TrackListModel::data(const QModelIndex &index, int role) const
{
    const TrackRowItem *item = itemAt(index);
    if (!item)
        return {};
    const Song &song = item->song;
    switch (role) {
    case SongIdRole: return song.id;
    case RecordRole: return song.toJson();
    case TitleRole: return song.title;
    case TrackRole: return song.track ? QString::number(*song.track) : QString();
    case DurationRole: return Format::paddedDuration(song.duration);
    case DiscRole: return item->discHeading;
    default: return {};
    }
}

QHash<int, QByteArray> TrackListModel::roleNames() const
{
    return {{SongIdRole, "songId"},      {RecordRole, "record"},     {TitleRole, "title"},
            {TrackRole, "trackNumber"}, {DurationRole, "durationText"}, {DiscRole, "disc"}};
}

void TrackListModel::setTracks(const QList<Song> &songs)
{
    QList<TrackRowItem> rows;
    for (const Disc &disc : AlbumTracks::discs(songs)) {
        const QString heading = disc.number
            ? QCoreApplication::translate("AlbumDetail", "Disc %1").arg(*disc.number)
            : QString();
        for (const Song &song : disc.songs)
            rows.append({song, heading});
    }
    setItems(rows);
}

int TrackListModel::rowOf(const QString &songId) const
{
    const auto found = std::find_if(items().cbegin(), items().cend(),
                                    [&songId](const TrackRowItem &row) { return row.song.id == songId; });
    return found == items().cend() ? -1 : int(found - items().cbegin());
}

AlbumDetailScreen::AlbumDetailScreen(QObject *parent) : QObject(parent)
{
}

LibraryStore *AlbumDetailScreen::library() const
{
    return m_library;
}

void AlbumDetailScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::starredAlbumIdsChanged, this, &AlbumDetailScreen::likedChanged);
        connect(library, &LibraryStore::epochChanged, this, &AlbumDetailScreen::load);
    }
    Q_EMIT inputsChanged();
    Q_EMIT likedChanged();
    load();
}

PlayerController *AlbumDetailScreen::player() const
{
    return m_player;
}

void AlbumDetailScreen::setPlayer(PlayerController *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (player) {
        connect(player, &PlayerController::currentSongChanged, this, &AlbumDetailScreen::playingChanged);
        connect(player, &PlayerController::isPlayingChanged, this, &AlbumDetailScreen::playingChanged);
    }
    Q_EMIT inputsChanged();
    Q_EMIT playingChanged();
}

void AlbumDetailScreen::setAlbum(const QJsonObject &album)
{
    try {
        Album decoded = Album::fromJson(album);
        if (decoded == m_album)
            return;
        m_album = std::move(decoded);
    } catch (const Json::DecodeError &) {
        return;
    }
    Q_EMIT albumChanged();
    load();
}

void AlbumDetailScreen::componentComplete()
{
    m_complete = true;
    load();
}

QString AlbumDetailScreen::state() const
{
    if (m_loaded)
        return u"tracks"_s;
    return m_errorMessage.isEmpty() ? u"loading"_s : u"error"_s;
}

QString AlbumDetailScreen::metadataLine() const
{
    const Album &shown = m_loaded ? *m_loaded : m_album;
    return AlbumTracks::metadataLine(shown.year, shown.duration);
}

QString AlbumDetailScreen::currentSongId() const
{
    const std::optional<Song> current = m_player ? m_player->currentSong() : std::nullopt;
    return current ? current->id : QString();
}

bool AlbumDetailScreen::isPlaying() const
{
    return m_player && m_player->isPlaying();
}

bool AlbumDetailScreen::isLiked() const
{
    return m_library && m_library->starredAlbumIds().contains(m_album.id);
}

QList<Song> AlbumDetailScreen::songs() const
{
    return m_loaded ? m_loaded->song.value_or(QList<Song>()) : QList<Song>();
}

void AlbumDetailScreen::load()
{
    if (!m_complete || !m_library || m_album.id.isEmpty())
        return;
    setLoaded(std::nullopt, QString());
    m_library->ensureStarredLoaded();
    m_load.start([this, library = m_library, downloads = m_downloads, id = m_album.id](CancelToken token)
                     -> QCoro::Task<> {
        std::exception_ptr failure;
        try {
            QCoro::Task<Album> loading = library->albumDetail(id, token);
            Album album = co_await loading;
            if (token.isCancelled())
                co_return;
            setLoaded(std::move(album), QString());
            co_return;
        } catch (const TaskCancelled &) {
            co_return;
        } catch (...) {
            failure = std::current_exception();
        }
        if (token.isCancelled())
            co_return;
        // The copy on disk stands in for the server, without a word about the failure.
        if (std::optional<Album> local = downloads ? downloads->localAlbum(id) : std::nullopt)
            setLoaded(std::move(local), QString());
        else
            setLoaded(std::nullopt, errorDescription(failure));
    });
}

void AlbumDetailScreen::setLoaded(std::optional<Album> loaded, QString errorMessage)
{
    m_loaded = std::move(loaded);
    m_errorMessage = std::move(errorMessage);
    m_tracks.setTracks(songs());
    Q_EMIT loadChanged();
}

void AlbumDetailScreen::select(const QString &songId)
{
    if (m_selectedSongId == songId)
        return;
    m_selectedSongId = songId;
    Q_EMIT selectionChanged();
}

void AlbumDetailScreen::play(const QString &songId)
{
    select(songId);
    const QList<Song> all = songs();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&songId](const Song &song) { return song.id == songId; });
    if (found == all.cend() || !m_player || !m_library)
        return;
    m_player->play(all, found - all.cbegin(), m_library->client(), PlaybackSource::album(m_album.id, m_album.name));
}

void AlbumDetailScreen::playAll()
{
    if (m_player && m_library && !songs().isEmpty())
        m_player->play(songs(), 0, m_library->client(), PlaybackSource::album(m_album.id, m_album.name));
}

void AlbumDetailScreen::shuffle()
{
    if (m_player && m_library && !songs().isEmpty())
        m_player->playShuffled(songs(), m_library->client(), PlaybackSource::album(m_album.id, m_album.name));
}

void AlbumDetailScreen::playNext()
{
    if (m_player && m_library)
        m_player->playNext(songs(), m_library->client());
}

void AlbumDetailScreen::playLast()
{
    if (m_player && m_library)
        m_player->playLast(songs(), m_library->client());
}

void AlbumDetailScreen::playSongNext(const QString &songId)
{
    const QList<Song> all = songs();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&songId](const Song &song) { return song.id == songId; });
    if (found != all.cend() && m_player && m_library)
        m_player->playNext({*found}, m_library->client());
}

void AlbumDetailScreen::playSongLast(const QString &songId)
{
    const QList<Song> all = songs();
    const auto found = std::find_if(all.cbegin(), all.cend(), [&songId](const Song &song) { return song.id == songId; });
    if (found != all.cend() && m_player && m_library)
        m_player->playLast({*found}, m_library->client());
}

void AlbumDetailScreen::toggleLike()
{
    if (m_library)
        m_library->toggleStarAlbum(m_loaded ? *m_loaded : m_album);
}

int AlbumDetailScreen::moveSelection(int delta)
{
    const std::optional<QString> moved =
        AlbumTracks::movedSelection(AlbumTracks::orderedSongs(songs()), m_selectedSongId, delta);
    if (!moved)
        return -1;
    select(*moved);
    return m_tracks.rowOf(*moved);
}

void AlbumDetailScreen::playSelected()
{
    if (!m_selectedSongId.isEmpty())
        play(m_selectedSongId);
}
