#include "songtablemodel.h"

#include "server/format.h"

#include <QCoreApplication>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {
constexpr int columnCount = 4;
// Past this many rows one signal for the whole table is cheaper for a view than one per row.
constexpr qsizetype manyRows = 64;
}

SongTableModel::SongTableModel(QObject *parent) : QAbstractTableModel(parent)
{
}

int SongTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int SongTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ::columnCount;
}

QVariant SongTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Song &song = *m_rows[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        switch (SongColumn(index.column())) {
        case SongColumn::Title: return song.title;
        case SongColumn::Artist: return song.artistName();
        case SongColumn::Album: return song.albumName();
        case SongColumn::Time: return Format::paddedDuration(song.duration);
        }
        return {};
    case SongIdRole: return song.id;
    case RecordRole: return song.toJson();
    case IsSelectedRole: return m_selection.contains(song.id);
    case MarkerRole:
        if (index.column() != int(SongColumn::Title) || m_currentSongId.isEmpty() || song.id != m_currentSongId)
            return QString();
        return m_isPlaying ? u"speaker.wave.2.fill"_s : u"speaker.fill"_s;
    default: return {};
    }
}

QVariant SongTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (SongColumn(section)) {
    case SongColumn::Title: return QCoreApplication::translate("SongTable", "Title");
    case SongColumn::Artist: return QCoreApplication::translate("SongTable", "Artist");
    case SongColumn::Album: return QCoreApplication::translate("SongTable", "Album");
    case SongColumn::Time: return QCoreApplication::translate("SongTable", "Time");
    }
    return {};
}

QHash<int, QByteArray> SongTableModel::roleNames() const
{
    return {{Qt::DisplayRole, "display"}, {SongIdRole, "songId"}, {RecordRole, "record"},
            {IsSelectedRole, "isSelected"}, {MarkerRole, "marker"}};
}

void SongTableModel::setSongs(const QList<Song> &songs)
{
    // The very same list again: nothing to do.
    if (songs.constData() == m_songs.constData() && songs.size() == m_songs.size())
        return;
    // The rows point into the old list until the change is told: it stays alive until then.
    const QList<Song> previous = m_songs;
    // A page added at the end keeps the ranks of the texts before it; any other change ranks everything anew, so
    // the ranks hold only the texts of this list.
    const bool appended = songs.size() >= previous.size()
        && std::equal(previous.cbegin(), previous.cend(), songs.cbegin(), [](const Song &a, const Song &b) {
               return a.id == b.id && a.title == b.title && a.artist == b.artist && a.album == b.album;
           });
    m_songs = songs;
    if (!appended) {
        m_keys.clear();
        m_titles = CollationRanks(false);
        m_artists = CollationRanks(true);
        m_albums = CollationRanks(true);
    }
    m_keys.reserve(size_t(m_songs.size()));
    for (qsizetype i = qsizetype(m_keys.size()); i < m_songs.size(); ++i) {
        const Song &song = m_songs.at(i);
        m_keys.push_back({m_titles.idOf(song.title), m_artists.idOf(song.artistName()), m_albums.idOf(song.albumName())});
    }
    m_titles.settle();
    m_artists.settle();
    m_albums.settle();
    std::vector<const Song *> rows;
    rows.reserve(size_t(m_songs.size()));
    for (const int i : sortedOrder())
        rows.push_back(&m_songs.at(i));
    showRows(std::move(rows));
}

void SongTableModel::setSortOrder(const QList<SongSortKey> &order)
{
    if (order == m_sortOrder)
        return;
    m_sortOrder = order;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList persistent = persistentIndexList();
    QStringList persistentIds;
    for (const QModelIndex &index : persistent)
        persistentIds.append(m_rows[size_t(index.row())]->id);
    std::vector<const Song *> rows;
    rows.reserve(m_rows.size());
    for (const int i : sortedOrder())
        rows.push_back(&m_songs.at(i));
    m_rows = std::move(rows);
    QModelIndexList moved;
    for (qsizetype i = 0; i < persistent.size(); ++i)
        moved.append(index(rowOf(persistentIds.at(i)).value_or(0), persistent.at(i).column()));
    changePersistentIndexList(persistent, moved);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// A walk through the rows, which costs less than an index kept for every song of a library.
std::optional<int> SongTableModel::rowOf(const QString &songId) const
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [&songId](const Song *song) { return song->id == songId; });
    return found == m_rows.cend() ? std::nullopt : std::optional<int>(int(found - m_rows.cbegin()));
}

QList<Song> SongTableModel::selectedSongs() const
{
    QList<Song> songs;
    for (const Song *song : m_rows) {
        if (m_selection.contains(song->id))
            songs.append(*song);
    }
    return songs;
}

QList<Song> SongTableModel::sortedSongs() const
{
    QList<Song> songs;
    songs.reserve(qsizetype(m_rows.size()));
    for (const Song *song : m_rows)
        songs.append(*song);
    return songs;
}

void SongTableModel::setSelection(const QSet<QString> &ids)
{
    if (ids == m_selection)
        return;
    QSet<QString> changed = ids;
    changed.unite(m_selection);
    changed.subtract(QSet<QString>(ids).intersect(m_selection));
    m_selection = ids;
    markRows(changed, IsSelectedRole);
}

void SongTableModel::setCurrent(const QString &songId, bool isPlaying)
{
    if (songId == m_currentSongId && isPlaying == m_isPlaying)
        return;
    const QSet<QString> changed{m_currentSongId, songId};
    m_currentSongId = songId;
    m_isPlaying = isPlaying;
    markRows(changed, MarkerRole);
}

// Indices into the songs, in table order. Equal rows keep the list's own order.
std::vector<int> SongTableModel::sortedOrder() const
{
    std::vector<int> order(size_t(m_songs.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [this](int a, int b) { return before(a, b); });
    return order;
}

bool SongTableModel::before(int a, int b) const
{
    const Keys &ka = m_keys[size_t(a)];
    const Keys &kb = m_keys[size_t(b)];
    for (const SongSortKey &key : m_sortOrder) {
        qint64 left = 0;
        qint64 right = 0;
        switch (key.column) {
        case SongColumn::Title: left = m_titles.rank(ka.title), right = m_titles.rank(kb.title); break;
        case SongColumn::Artist: left = m_artists.rank(ka.artist), right = m_artists.rank(kb.artist); break;
        case SongColumn::Album: left = m_albums.rank(ka.album), right = m_albums.rank(kb.album); break;
        case SongColumn::Time:
            left = m_songs.at(a).durationSeconds();
            right = m_songs.at(b).durationSeconds();
            break;
        }
        if (left != right)
            return key.ascending ? left < right : left > right;
    }
    return false;
}

// Rows that stayed the same at both ends keep their place; between them rows are updated, and the difference in
// number is inserted or removed, so a view keeps its delegates and its scroll position.
void SongTableModel::showRows(std::vector<const Song *> rows)
{
    const size_t oldCount = m_rows.size();
    const size_t newCount = rows.size();
    size_t prefix = 0;
    while (prefix < oldCount && prefix < newCount && *m_rows[prefix] == *rows[prefix])
        ++prefix;
    size_t suffix = 0;
    while (suffix < oldCount - prefix && suffix < newCount - prefix
           && *m_rows[oldCount - 1 - suffix] == *rows[newCount - 1 - suffix])
        ++suffix;
    const size_t oldMiddle = oldCount - prefix - suffix;
    const size_t newMiddle = newCount - prefix - suffix;
    const size_t replaced = std::min(oldMiddle, newMiddle);
    if (oldMiddle > newMiddle) {
        beginRemoveRows({}, int(prefix + replaced), int(prefix + oldMiddle - 1));
        m_rows.erase(m_rows.begin() + qsizetype(prefix + replaced), m_rows.begin() + qsizetype(prefix + oldMiddle));
        endRemoveRows();
    } else if (newMiddle > oldMiddle) {
        beginInsertRows({}, int(prefix + replaced), int(prefix + newMiddle - 1));
        m_rows.insert(m_rows.begin() + qsizetype(prefix + replaced), rows.begin() + qsizetype(prefix + replaced),
                      rows.begin() + qsizetype(prefix + newMiddle));
        endInsertRows();
    }
    // Every row now takes its record from the new list; only those between the ends show something else.
    m_rows = std::move(rows);
    if (replaced > 0)
        Q_EMIT dataChanged(index(int(prefix), 0), index(int(prefix + replaced - 1), ::columnCount - 1));
    if (oldCount != newCount)
        Q_EMIT countChanged();
}

void SongTableModel::markRows(const QSet<QString> &ids, int role)
{
    if (m_rows.empty())
        return;
    if (ids.size() > manyRows) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ::columnCount - 1), {role});
        return;
    }
    for (size_t row = 0; row < m_rows.size(); ++row) {
        if (ids.contains(m_rows[row]->id))
            Q_EMIT dataChanged(index(int(row), 0), index(int(row), ::columnCount - 1), {role});
    }
}
