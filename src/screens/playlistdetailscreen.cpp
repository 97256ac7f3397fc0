#include "playlistdetailscreen.h"

#include "albumtracks.h"
#include "artwork/collectioncovers.h"
#include "library/connectionfault.h"
#include "library/librarystore.h"
#include "offline/downloadstore.h"
#include "playback/playercontroller.h"
#include "shell/dragtypes.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {
QCoro::Task<> renameThenReload(QPointer<LibraryStore> library, QString id, QString name,
                               QPointer<PlaylistDetailScreen> screen, std::function<void()> reload)
{
    co_await library->renamePlaylist(id, name);
    if (screen)
        reload();
}

QCoro::Task<> deleteThenLeave(QPointer<LibraryStore> library, QString id, QPointer<PlaylistDetailScreen> screen)
{
    const bool deleted = co_await library->deletePlaylist(id);
    if (deleted && screen)
        Q_EMIT screen->deleted();
}
}

PlaylistDetailScreen::PlaylistDetailScreen(QObject *parent) : QObject(parent)
{
    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelayMs);
    connect(&m_saveTimer, &QTimer::timeout, this, [this] { saveOrder(m_pendingOrder); });
}

PlaylistDetailScreen::~PlaylistDetailScreen()
{
    flushPendingSave();
}

LibraryStore *PlaylistDetailScreen::library() const
{
    return m_library;
}

void PlaylistDetailScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    flushPendingSave();
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::epochChanged, this, &PlaylistDetailScreen::load);
        connect(library, &LibraryStore::playlistRevisionChanged, this, &PlaylistDetailScreen::load);
        connect(library, &LibraryStore::reachabilityChanged, this, [this] {
            // The server is back: its copy replaces the downloaded one.
            if (m_isLocalOrder && m_library->reachability().isOk())
                load();
        });
    }
    Q_EMIT inputsChanged();
    load();
}

PlayerController *PlaylistDetailScreen::player() const
{
    return m_player;
}

void PlaylistDetailScreen::setPlayer(PlayerController *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (player) {
        for (const auto signal : {&PlayerController::currentSongChanged, &PlayerController::currentIndexChanged,
                                  &PlayerController::sourceChanged, &PlayerController::queueChanged})
            connect(player, signal, this, &PlaylistDetailScreen::updateCurrent);
        connect(player, &PlayerController::isPlayingChanged, this, &PlaylistDetailScreen::playingChanged);
    }
    updateCurrent();
    Q_EMIT inputsChanged();
    Q_EMIT playingChanged();
}

void PlaylistDetailScreen::setPlaylistId(const QString &id)
{
    if (m_playlistId == id)
        return;
    flushPendingSave();
    m_playlistId = id;
    m_draggingId.reset();
    m_detail.reset();
    m_errorMessage.clear();
    m_savedOrder.clear();
    m_loadedSongIds.clear();
    m_covers.clear();
    m_entries.setSongs({});
    setSelectedId({});
    m_isLocalOrder = false;
    Q_EMIT playlistIdChanged();
    Q_EMIT loadChanged();
    load();
}

void PlaylistDetailScreen::componentComplete()
{
    m_complete = true;
    load();
}

QString PlaylistDetailScreen::state() const
{
    if (!m_errorMessage.isEmpty())
        return u"error"_s;
    if (!m_detail)
        return u"loading"_s;
    return m_entries.rowCount() == 0 ? u"empty"_s : u"tracks"_s;
}

QString PlaylistDetailScreen::name() const
{
    return m_detail ? m_detail->name : QCoreApplication::translate("PlaylistDetail", "Playlist");
}

QString PlaylistDetailScreen::metadataLine() const
{
    if (!m_detail)
        return {};
    return PlaylistRules::metadataLine(m_detail->songCount, m_entries.rowCount(), m_detail->duration);
}

QString PlaylistDetailScreen::deleteTitle() const
{
    return QCoreApplication::translate("PlaylistDetail", "Delete “%1”?").arg(name());
}

int PlaylistDetailScreen::selectedRow() const
{
    return int(m_entries.rowOf(m_entries.selectedId()).value_or(-1));
}

QString PlaylistDetailScreen::dragType()
{
    return playlistEntryDragType;
}

bool PlaylistDetailScreen::isPlaying() const
{
    return m_player && m_player->isPlaying();
}

void PlaylistDetailScreen::load()
{
    if (!m_complete || !m_library || m_playlistId.isEmpty())
        return;
    // The rows on screen stay until the answer replaces them.
    if (!m_errorMessage.isEmpty()) {
        m_errorMessage.clear();
        Q_EMIT loadChanged();
    }
    m_load.start([this, library = m_library, downloads = m_downloads, id = m_playlistId](CancelToken token)
                     -> QCoro::Task<> {
        std::exception_ptr failure;
        try {
            QCoro::Task<PlaylistDetail> loading = library->playlistDetail(id, token);
            PlaylistDetail detail = co_await loading;
            if (token.isCancelled())
                co_return;
            setLoaded(detail, false);
            co_return;
        } catch (const TaskCancelled &) {
            co_return;
        } catch (...) {
            failure = std::current_exception();
        }
        if (token.isCancelled())
            co_return;
        if (std::optional<PlaylistDetail> local = downloads ? downloads->localPlaylist(id) : std::nullopt) {
            setLoaded(*local, true);
        } else {
            m_errorMessage = errorDescription(failure);
            Q_EMIT loadChanged();
        }
    });
}

void PlaylistDetailScreen::setLoaded(const PlaylistDetail &detail, bool localOrder)
{
    const QList<Song> songs = detail.entry.value_or(QList<Song>());
    m_detail = detail;
    m_errorMessage.clear();
    // Moves not yet saved, or saved but not yet answered, are newer than any order the server just gave.
    const bool keepMoves = !localOrder && !m_isLocalOrder && (m_saveTimer.isActive() || m_ordersInFlight > 0)
        && m_entries.rowCount() > 0;
    if (keepMoves) {
        Q_EMIT loadChanged();
        return;
    }
    applyEntries(songs, localOrder);
    m_loadedSongIds = m_entries.songIds();
    if (!localOrder)
        m_savedOrder = m_loadedSongIds;
    m_covers = albumCovers(songs);
    Q_EMIT loadChanged();
}

void PlaylistDetailScreen::applyEntries(const QList<Song> &songs, bool localOrder)
{
    const std::optional<qsizetype> previousRow = m_entries.rowOf(m_entries.selectedId());
    const std::optional<QString> previousSongId =
        previousRow ? std::optional<QString>(m_entries.items().at(*previousRow).song.id) : std::nullopt;
    m_entries.setSongs(songs);
    m_isLocalOrder = localOrder;
    const std::optional<qsizetype> row =
        PlaylistRules::resolvedSelection(previousRow, previousSongId, m_entries.songIds());
    m_entries.setSelectedId(row ? m_entries.items().at(*row).id : QUuid());
    if (row != previousRow)
        Q_EMIT selectionChanged();
    updateCurrent();
}

void PlaylistDetailScreen::setSelectedId(const QUuid &id)
{
    const int before = selectedRow();
    m_entries.setSelectedId(id);
    if (selectedRow() != before)
        Q_EMIT selectionChanged();
}

void PlaylistDetailScreen::updateCurrent()
{
    const std::optional<Song> song = m_player ? m_player->currentSong() : std::nullopt;
    if (!song) {
        m_entries.setCurrent({}, std::nullopt);
        return;
    }
    // Known to play this list as it stands: the playing row is the player's place, not every row of the song.
    std::optional<qsizetype> row;
    const std::optional<PlaybackSource> source = m_player->source();
    const std::optional<qsizetype> index = m_player->currentIndex();
    if (source && source->kind == PlaybackSource::Kind::Playlist && source->id == m_playlistId && index
        && m_player->queue().size() == m_entries.rowCount()) {
        const QList<Song> &queue = m_player->queue();
        const QList<PlaylistEntry> &entries = m_entries.items();
        bool same = true;
        for (qsizetype i = 0; same && i < queue.size(); ++i)
            same = queue.at(i).id == entries.at(i).song.id;
        if (same)
            row = index;
    }
    m_entries.setCurrent(song->id, row);
}

void PlaylistDetailScreen::select(int row)
{
    if (row >= 0 && row < m_entries.rowCount())
        setSelectedId(m_entries.items().at(row).id);
}

void PlaylistDetailScreen::play(int row)
{
    select(row);
    const QList<Song> songs = m_entries.songs();
    if (songs.isEmpty() || !m_player || !m_library)
        return;
    m_player->play(songs, std::clamp<qsizetype>(row, 0, songs.size() - 1), m_library->client(),
                   PlaybackSource::playlist(m_playlistId, name()));
}

void PlaylistDetailScreen::playAll()
{
    play(0);
}

void PlaylistDetailScreen::shuffle()
{
    const QList<Song> songs = m_entries.songs();
    if (!songs.isEmpty() && m_player && m_library)
        m_player->playShuffled(songs, m_library->client(), PlaybackSource::playlist(m_playlistId, name()));
}

void PlaylistDetailScreen::playNext()
{
    if (m_player && m_library)
        m_player->playNext(m_entries.songs(), m_library->client());
}

void PlaylistDetailScreen::playLast()
{
    if (m_player && m_library)
        m_player->playLast(m_entries.songs(), m_library->client());
}

void PlaylistDetailScreen::playRowNext(int row)
{
    if (row >= 0 && row < m_entries.rowCount() && m_player && m_library)
        m_player->playNext({m_entries.items().at(row).song}, m_library->client());
}

void PlaylistDetailScreen::playRowLast(int row)
{
    if (row >= 0 && row < m_entries.rowCount() && m_player && m_library)
        m_player->playLast({m_entries.items().at(row).song}, m_library->client());
}

int PlaylistDetailScreen::moveSelection(int delta)
{
    const int moved = AlbumTracks::movedRow(selectedRow(), m_entries.rowCount(), delta);
    select(moved);
    return moved;
}

void PlaylistDetailScreen::playSelected()
{
    if (const int row = selectedRow(); row >= 0)
        play(row);
}

void PlaylistDetailScreen::beginDrag(int row)
{
    if (row >= 0 && row < m_entries.rowCount())
        m_draggingId = m_entries.items().at(row).id;
}

void PlaylistDetailScreen::moveDraggedRow(int ontoRow)
{
    if (m_isLocalOrder || !m_draggingId || ontoRow < 0 || ontoRow >= m_entries.rowCount())
        return;
    if (m_entries.items().at(ontoRow).id == *m_draggingId)
        return;
    // A reload during the drag made new entries: the dragged one is gone and the drag means nothing more.
    const std::optional<qsizetype> from = m_entries.rowOf(*m_draggingId);
    if (!from)
        return;
    const int selectedBefore = selectedRow();
    m_entries.moveItem(*from, ontoRow);
    if (selectedRow() != selectedBefore)
        Q_EMIT selectionChanged();
    updateCurrent();
    scheduleSave();
}

void PlaylistDetailScreen::drop()
{
    m_draggingId.reset();
    persistOrder();
}

int PlaylistDetailScreen::moveSelectedRow(int delta)
{
    const int from = selectedRow();
    if (m_isLocalOrder || from < 0)
        return -1;
    const int to = std::clamp(from + delta, 0, m_entries.rowCount() - 1);
    if (to == from)
        return -1;
    m_entries.moveItem(from, to);
    Q_EMIT selectionChanged();
    updateCurrent();
    scheduleSave();
    return to;
}

void PlaylistDetailScreen::scheduleSave()
{
    if (m_isLocalOrder)
        return;
    m_pendingOrder = m_entries.songIds();
    m_saveTimer.start();
}

void PlaylistDetailScreen::persistOrder()
{
    if (m_isLocalOrder)
        return;
    m_saveTimer.stop();
    const QStringList order = m_entries.songIds();
    if (order != m_savedOrder)
        saveOrder(order);
}

void PlaylistDetailScreen::saveOrder(const QStringList &songIds)
{
    m_savedOrder = songIds;
    ++m_ordersInFlight;
    m_edits.add([library = m_library, id = m_playlistId, songIds, self = QPointer(this)]() -> QCoro::Task<> {
        bool saved = false;
        if (library)
            saved = co_await library->reorderPlaylist(id, songIds);
        if (self)
            --self->m_ordersInFlight;
        // Refused: the server's order comes back, from the copy the store still holds, and moves made since
        // go with it.
        if (!saved && library && self && self->m_playlistId == id) {
            self->m_saveTimer.stop();
            self->load();
        }
    });
}

void PlaylistDetailScreen::flushPendingSave()
{
    if (m_saveTimer.isActive()) {
        m_saveTimer.stop();
        saveOrder(m_pendingOrder);
    }
}

// After any move not yet saved: the index means something only in the order the server holds.
void PlaylistDetailScreen::remove(int row)
{
    if (m_isLocalOrder || row < 0 || row >= m_entries.rowCount() || !m_library)
        return;
    flushPendingSave();
    m_edits.add([library = m_library, id = m_playlistId, row, songIds = m_entries.songIds()]() -> QCoro::Task<> {
        if (library)
            co_await library->removeSong(row, songIds, id);
    });
}

int PlaylistDetailScreen::rowOfEntry(const QString &entryId) const
{
    return int(m_entries.rowOf(QUuid::fromString(entryId)).value_or(-1));
}

void PlaylistDetailScreen::removeSelected()
{
    remove(selectedRow());
}

void PlaylistDetailScreen::rename(const QString &name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty() || !m_library)
        return;
    // A rename leaves the revision alone, so the page asks again itself.
    renameThenReload(m_library, m_playlistId, trimmed, this, [this] { load(); });
}

void PlaylistDetailScreen::deletePlaylist()
{
    if (m_library)
        deleteThenLeave(m_library, m_playlistId, this);
}

QJsonArray PlaylistDetailScreen::songRecords() const
{
    QJsonArray records;
    for (const PlaylistEntry &entry : m_entries.items())
        records.append(entry.song.toJson());
    return records;
}
