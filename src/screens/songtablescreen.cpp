#include "songtablescreen.h"

#include "albumtracks.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"

using namespace Qt::StringLiterals;

SongTableScreen::SongTableScreen(QObject *parent) : QObject(parent)
{
}

LibraryStore *SongTableScreen::library() const
{
    return m_library;
}

void SongTableScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        for (const auto signal : {&LibraryStore::starredSongsChanged, &LibraryStore::starredLoadedChanged,
                                  &LibraryStore::starredErrorChanged, &LibraryStore::songsReset,
                                  &LibraryStore::songsLoadedChanged, &LibraryStore::songsErrorChanged})
            connect(library, signal, this, &SongTableScreen::update);
        connect(library, &LibraryStore::songsAppended, this, &SongTableScreen::update);
    }
    Q_EMIT inputsChanged();
    start();
}

PlayerController *SongTableScreen::player() const
{
    return m_player;
}

void SongTableScreen::setPlayer(PlayerController *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (player) {
        connect(player, &PlayerController::currentSongChanged, this, &SongTableScreen::updateCurrent);
        connect(player, &PlayerController::isPlayingChanged, this, &SongTableScreen::updateCurrent);
    }
    updateCurrent();
    Q_EMIT inputsChanged();
}

void SongTableScreen::setLikedOnly(bool likedOnly)
{
    if (m_likedOnly == likedOnly)
        return;
    m_likedOnly = likedOnly;
    Q_EMIT inputsChanged();
    start();
}

void SongTableScreen::componentComplete()
{
    m_complete = true;
    start();
}

void SongTableScreen::start()
{
    if (!m_complete || !m_library)
        return;
    if (m_likedOnly)
        m_library->ensureStarredLoaded();
    else
        m_library->ensureSongsLoaded();
    update();
}

void SongTableScreen::update()
{
    if (!m_complete || !m_library)
        return;
    m_rows.setSongs(m_likedOnly ? m_library->starredSongs() : m_library->songs());
    const QString newState = state();
    if (newState != m_state || newState == u"message"_s) {
        m_state = newState;
        Q_EMIT stateChanged();
    }
    // Rows that left the list leave the selection; the rest keep theirs wherever they went.
    QSet<QString> kept;
    if (!m_rows.selection().isEmpty()) {
        for (const Song &song : m_rows.selectedSongs())
            kept.insert(song.id);
    }
    if (kept.size() != m_rows.selection().size())
        select(kept, m_rows.rowOf(m_cursorId) ? m_cursorId : QString(), true);
    else
        Q_EMIT selectionChanged(); // the cursor's row may have moved
}

void SongTableScreen::updateCurrent()
{
    const std::optional<Song> song = m_player ? m_player->currentSong() : std::nullopt;
    m_rows.setCurrent(song ? song->id : QString(), m_player && m_player->isPlaying());
}

bool SongTableScreen::isEmpty() const
{
    if (!m_library)
        return true;
    return m_likedOnly ? m_library->starredSongs().isEmpty() : m_library->songs().isEmpty();
}

// Judged on the store's list: the table may still be catching up with it.
QString SongTableScreen::state() const
{
    if (!m_library || !isEmpty())
        return u"table"_s;
    const bool loaded = m_likedOnly ? m_library->starredLoaded() : m_library->songsLoaded();
    return loaded ? u"message"_s : u"loading"_s;
}

QString SongTableScreen::messageTitle() const
{
    if (!m_library)
        return {};
    if (m_likedOnly)
        return m_library->starredError() ? tr("Couldn’t Load Liked Songs") : tr("No Liked Songs");
    return m_library->songsError() ? tr("Couldn’t Load Songs") : tr("No Songs");
}

QString SongTableScreen::messageSymbol() const
{
    if (!m_library)
        return {};
    if (m_likedOnly ? m_library->starredError().has_value() : m_library->songsError().has_value())
        return u"exclamationmark.triangle"_s;
    return m_likedOnly ? u"heart"_s : u"music.note.list"_s;
}

QString SongTableScreen::messageText() const
{
    if (!m_library)
        return {};
    if (m_likedOnly)
        return m_library->starredError().value_or(
            tr("Like songs with the heart in the playback bar or a song’s context menu."));
    return m_library->songsError().value_or(tr("Your library doesn’t have any songs yet."));
}

QStringList SongTableScreen::columnTitles() const
{
    QStringList titles;
    for (int column = 0; column < m_rows.columnCount(); ++column)
        titles.append(m_rows.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    return titles;
}

int SongTableScreen::cursorRow() const
{
    return m_cursorId.isEmpty() ? -1 : m_rows.rowOf(m_cursorId).value_or(-1);
}

QList<Song> SongTableScreen::selectedSongs() const
{
    return m_rows.selectedSongs();
}

void SongTableScreen::clickHeader(int column)
{
    if (column < 0 || column > int(SongColumn::Time))
        return;
    QList<SongSortKey> order = m_rows.sortOrder();
    if (order.constFirst().column == SongColumn(column)) {
        order.first().ascending = !order.constFirst().ascending;
    } else {
        order.removeIf([column](const SongSortKey &key) { return key.column == SongColumn(column); });
        order.prepend(SongSortKey{SongColumn(column), true});
    }
    ++m_tableGeneration;
    m_rows.setSortOrder(order);
    Q_EMIT sortChanged();
    Q_EMIT selectionChanged();
}

void SongTableScreen::clickRow(int row, int modifiers)
{
    if (row < 0 || row >= m_rows.rowCount())
        return;
    const QString id = m_rows.songAt(row).id;
    if (modifiers & Qt::ShiftModifier) {
        const std::optional<int> anchor = m_rows.rowOf(m_anchorId);
        select(idsBetween(anchor.value_or(row), row), id, anchor.has_value());
    } else if (modifiers & Qt::ControlModifier) {
        QSet<QString> ids = m_rows.selection();
        if (!ids.remove(id))
            ids.insert(id);
        select(ids, id, false);
    } else {
        select({id}, id, false);
    }
}

void SongTableScreen::pressRowForMenu(int row)
{
    if (row >= 0 && row < m_rows.rowCount() && !m_rows.selection().contains(m_rows.songAt(row).id))
        clickRow(row);
}

void SongTableScreen::selectAll()
{
    select(idsBetween(0, m_rows.rowCount() - 1), m_cursorId, true);
}

int SongTableScreen::moveCursor(int delta, bool extend)
{
    const int row = AlbumTracks::movedRow(cursorRow(), m_rows.rowCount(), delta);
    if (row < 0)
        return -1;
    if (extend && m_rows.rowOf(m_anchorId))
        select(idsBetween(*m_rows.rowOf(m_anchorId), row), m_rows.songAt(row).id, true);
    else
        clickRow(row);
    return row;
}

void SongTableScreen::playRow(int row)
{
    if (row < 0 || row >= m_rows.rowCount() || !m_player || !m_library)
        return;
    m_player->play(m_rows.sortedSongs(), row, m_library->client(), std::nullopt);
}

void SongTableScreen::playSelection()
{
    const int cursor = cursorRow();
    if (cursor >= 0 && m_rows.selection().contains(m_cursorId)) {
        playRow(cursor);
        return;
    }
    if (const QList<Song> selected = selectedSongs(); !selected.isEmpty())
        playRow(m_rows.rowOf(selected.constFirst().id).value_or(-1));
}

void SongTableScreen::playSelectionNext()
{
    if (m_player && m_library)
        m_player->playNext(selectedSongs(), m_library->client());
}

void SongTableScreen::playSelectionLast()
{
    if (m_player && m_library)
        m_player->playLast(selectedSongs(), m_library->client());
}

void SongTableScreen::unlikeSelection()
{
    if (!m_library)
        return;
    for (const Song &song : selectedSongs()) {
        if (m_library->starredIds().contains(song.id))
            m_library->toggleStar(song);
    }
}

QJsonArray SongTableScreen::selectedRecords() const
{
    QJsonArray records;
    for (const Song &song : selectedSongs())
        records.append(song.toJson());
    return records;
}

QJsonObject SongTableScreen::singleSelectedRecord() const
{
    const QList<Song> selected = selectedSongs();
    return selected.size() == 1 ? selected.constFirst().toJson() : QJsonObject();
}

void SongTableScreen::select(QSet<QString> ids, const QString &cursor, bool keepAnchor)
{
    m_rows.setSelection(ids);
    m_cursorId = cursor;
    if (!keepAnchor)
        m_anchorId = cursor;
    Q_EMIT selectionChanged();
}

QSet<QString> SongTableScreen::idsBetween(int from, int to) const
{
    QSet<QString> ids;
    for (int row = std::min(from, to); row <= std::max(from, to) && row < m_rows.rowCount(); ++row)
        ids.insert(m_rows.songAt(row).id);
    return ids;
}
