#include "artistsscreen.h"

#include "albumtracks.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "shell/preferences.h"

using namespace Qt::StringLiterals;

QVariant ArtistListModel::data(const QModelIndex &index, int role) const
{
    const ArtistRow *row = itemAt(index);
    if (!row)
        return {};
    switch (role) {
    case IdRole: return row->artist.id;
    case NameRole: return row->artist.name;
    case CoverArtRole: return row->artist.coverArt.value_or(QString());
    case RecordRole: return row->artist.toJson();
    case SectionRole: return row->section;
    case IsLikedRole: return m_likedIds.contains(row->artist.id);
    default: return {};
    }
}

QHash<int, QByteArray> ArtistListModel::roleNames() const
{
    return {{IdRole, "artistId"}, {NameRole, "name"},       {CoverArtRole, "coverArt"},
            {RecordRole, "record"}, {SectionRole, "section"}, {IsLikedRole, "isLiked"}};
}

void ArtistListModel::setIndexes(const QList<ArtistIndex> &indexes)
{
    QList<ArtistRow> rows;
    for (const ArtistIndex &index : indexes) {
        for (const Artist &artist : index.artist)
            rows.append({artist, index.name});
    }
    setItems(rows);
}

void ArtistListModel::setLikedIds(const QSet<QString> &ids)
{
    if (ids == m_likedIds)
        return;
    const QSet<QString> before = std::exchange(m_likedIds, ids);
    for (int row = 0; row < rowCount(); ++row) {
        const QString &id = items().at(row).artist.id;
        if (before.contains(id) != ids.contains(id))
            Q_EMIT dataChanged(index(row), index(row), {IsLikedRole});
    }
}

int ArtistListModel::rowOf(const QString &id) const
{
    const auto found =
        std::find_if(items().cbegin(), items().cend(), [&id](const ArtistRow &row) { return row.artist.id == id; });
    return found == items().cend() ? -1 : int(found - items().cbegin());
}

namespace ArtistRules {
QCoro::Task<> playDiscography(QPointer<LibraryStore> library, QPointer<PlayerController> player, QString artistId,
                              bool shuffled, CancelToken token)
{
    QList<Song> songs;
    try {
        QCoro::Task<QList<Song>> collecting = library->artistDiscographySongs(artistId, token);
        songs = co_await collecting;
    } catch (...) {
        co_return;
    }
    if (token.isCancelled() || songs.isEmpty() || !library || !player)
        co_return;
    if (shuffled)
        player->playShuffled(songs, library->client(), std::nullopt);
    else
        player->play(songs, 0, library->client(), std::nullopt);
}

std::optional<QString> resolvedSelection(const std::optional<QString> &stored, const QList<Artist> &artists)
{
    if (stored && std::any_of(artists.cbegin(), artists.cend(), [&](const Artist &artist) { return artist.id == *stored; }))
        return stored;
    return artists.isEmpty() ? std::nullopt : std::optional<QString>(artists.constFirst().id);
}
}

ArtistsScreen::ArtistsScreen(QObject *parent) : QObject(parent)
{
}

LibraryStore *ArtistsScreen::library() const
{
    return m_library;
}

void ArtistsScreen::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        m_library->disconnect(this);
    m_library = library;
    if (library) {
        for (const auto signal : {&LibraryStore::artistsChanged, &LibraryStore::artistsLoadedChanged,
                                  &LibraryStore::artistsErrorChanged, &LibraryStore::starredArtistIdsChanged})
            connect(library, signal, this, &ArtistsScreen::update);
    }
    Q_EMIT inputsChanged();
    start();
}

Preferences *ArtistsScreen::preferences() const
{
    return m_preferences;
}

void ArtistsScreen::setPreferences(Preferences *preferences)
{
    if (m_preferences == preferences)
        return;
    m_preferences = preferences;
    if (preferences && !m_selectedId && !preferences->artistsSelectedId().isEmpty()) {
        m_selectedId = preferences->artistsSelectedId();
        m_lastSelectedId = m_selectedId;
    }
    Q_EMIT inputsChanged();
    update();
}

void ArtistsScreen::componentComplete()
{
    m_complete = true;
    start();
}

void ArtistsScreen::start()
{
    if (!m_complete || !m_library)
        return;
    m_library->ensureArtistsLoaded();
    m_library->ensureStarredLoaded();
    update();
}

void ArtistsScreen::update()
{
    if (!m_complete || !m_library)
        return;
    const int rowBefore = selectedRow();
    m_artists.setIndexes(m_library->artistIndexes());
    m_artists.setLikedIds(m_library->starredArtistIds());
    // An empty library leaves the choice as it was, for when the artists come.
    if (!m_library->allArtists().isEmpty())
        setSelectedId(ArtistRules::resolvedSelection(m_selectedId, m_library->allArtists()));
    // The same choice may stand elsewhere in a new list, or appear in it at last.
    if (selectedRow() != rowBefore)
        Q_EMIT selectionChanged();
    const QString newState = state();
    if (newState != m_state || newState == u"message"_s) {
        m_state = newState;
        Q_EMIT stateChanged();
    }
}

QString ArtistsScreen::state() const
{
    if (!m_library || !m_library->allArtists().isEmpty())
        return u"list"_s;
    return m_library->artistsLoaded() ? u"message"_s : u"loading"_s;
}

QString ArtistsScreen::messageTitle() const
{
    if (!m_library)
        return {};
    return m_library->artistsError() ? tr("Couldn’t Load Artists") : tr("No Artists");
}

QString ArtistsScreen::messageSymbol() const
{
    return m_library && m_library->artistsError() ? u"exclamationmark.triangle"_s : u"music.microphone"_s;
}

QString ArtistsScreen::messageText() const
{
    if (!m_library)
        return {};
    return m_library->artistsError().value_or(tr("Your library doesn’t have any artists yet."));
}

QJsonObject ArtistsScreen::selectedArtist() const
{
    const int row = selectedRow();
    return row < 0 ? QJsonObject() : m_artists.items().at(row).artist.toJson();
}

int ArtistsScreen::selectedRow() const
{
    return m_selectedId ? m_artists.rowOf(*m_selectedId) : -1;
}

void ArtistsScreen::select(const QString &id)
{
    setSelectedId(id.isEmpty() ? std::nullopt : std::optional<QString>(id));
}

int ArtistsScreen::moveSelection(int delta)
{
    const int moved = AlbumTracks::movedRow(selectedRow(), m_artists.rowCount(), delta);
    if (moved >= 0)
        select(m_artists.items().at(moved).artist.id);
    return moved;
}

void ArtistsScreen::setSelectedId(std::optional<QString> id)
{
    // The user cannot empty the choice: back to the last one.
    if (!id)
        id = m_lastSelectedId;
    if (id == m_selectedId)
        return;
    m_selectedId = id;
    if (id) {
        m_lastSelectedId = id;
        if (m_preferences)
            m_preferences->setArtistsSelectedId(*id);
    }
    Q_EMIT selectionChanged();
}

void ArtistsScreen::playArtist(const QString &id, bool shuffled)
{
    if (!m_library || !m_player)
        return;
    m_play.start([library = m_library, player = m_player, id, shuffled](CancelToken token) {
        return ArtistRules::playDiscography(library, player, id, shuffled, token);
    });
}

void ArtistsScreen::toggleLike(const QString &id)
{
    if (m_library && !id.isEmpty())
        m_library->toggleStarArtist(id);
}
