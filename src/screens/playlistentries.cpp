#include "playlistentries.h"

#include "albumtracks.h"
#include "common/plurals.h"
#include "server/format.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace PlaylistRules {
std::optional<qsizetype> resolvedSelection(std::optional<qsizetype> previousIndex,
                                           const std::optional<QString> &previousSongId, const QStringList &songIds)
{
    if (songIds.isEmpty() || !previousIndex || !previousSongId)
        return std::nullopt;
    if (*previousIndex >= 0 && *previousIndex < songIds.size() && songIds.at(*previousIndex) == *previousSongId)
        return previousIndex;
    if (const qsizetype found = songIds.indexOf(*previousSongId); found >= 0)
        return found;
    return std::clamp<qsizetype>(*previousIndex, 0, songIds.size() - 1);
}

QString metadataLine(std::optional<qint64> songCount, qsizetype rows, std::optional<qint64> durationSeconds)
{
    const int count = int(songCount.value_or(rows));
    QStringList pieces{inflected(QCoreApplication::translate("PlaylistDetail", "%n song(s)", nullptr, count), count)};
    if (const QString length = AlbumTracks::lengthInMinutes(durationSeconds); !length.isEmpty())
        pieces.append(length);
    return pieces.join(u" • "_s);
}
}

QVariant PlaylistEntryModel::data(const QModelIndex &index, int role) const
{
    const PlaylistEntry *entry = itemAt(index);
    if (!entry)
        return {};
    const Song &song = entry->song;
    switch (role) {
    case EntryIdRole: return entry->id.toString(QUuid::WithoutBraces);
    case SongIdRole: return song.id;
    case RecordRole: return song.toJson();
    case TitleRole: return song.title;
    case ArtistRole: return song.artistName();
    case DurationRole: return Format::paddedDuration(song.duration);
    case CoverArtRole: return song.coverArt.value_or(QString());
    case IsSelectedRole: return !m_selectedId.isNull() && entry->id == m_selectedId;
    case IsCurrentRole: return isCurrent(index.row());
    default: return {};
    }
}

QHash<int, QByteArray> PlaylistEntryModel::roleNames() const
{
    return {{EntryIdRole, "entryId"},         {SongIdRole, "songId"},       {RecordRole, "record"},
            {TitleRole, "title"},             {ArtistRole, "artist"},       {DurationRole, "durationText"},
            {CoverArtRole, "coverArt"},       {IsSelectedRole, "isSelected"}, {IsCurrentRole, "isCurrent"}};
}

void PlaylistEntryModel::setSongs(const QList<Song> &songs)
{
    QList<PlaylistEntry> entries;
    entries.reserve(songs.size());
    for (const Song &song : songs)
        entries.append({QUuid::createUuid(), song});
    setItems(entries);
}

QList<Song> PlaylistEntryModel::songs() const
{
    QList<Song> songs;
    songs.reserve(items().size());
    for (const PlaylistEntry &entry : items())
        songs.append(entry.song);
    return songs;
}

QStringList PlaylistEntryModel::songIds() const
{
    QStringList ids;
    ids.reserve(items().size());
    for (const PlaylistEntry &entry : items())
        ids.append(entry.song.id);
    return ids;
}

std::optional<qsizetype> PlaylistEntryModel::rowOf(const QUuid &id) const
{
    if (id.isNull())
        return std::nullopt;
    const auto found =
        std::find_if(items().cbegin(), items().cend(), [&id](const PlaylistEntry &entry) { return entry.id == id; });
    return found == items().cend() ? std::nullopt : std::optional<qsizetype>(found - items().cbegin());
}

void PlaylistEntryModel::setSelectedId(const QUuid &id)
{
    if (id == m_selectedId)
        return;
    const std::optional<qsizetype> before = rowOf(m_selectedId);
    m_selectedId = id;
    markChanged(before, IsSelectedRole);
    markChanged(rowOf(id), IsSelectedRole);
}

void PlaylistEntryModel::setCurrent(const QString &songId, std::optional<qsizetype> row)
{
    if (songId == m_currentSongId && row == m_currentRow)
        return;
    QList<qsizetype> touched;
    for (qsizetype i = 0; i < items().size(); ++i) {
        if (isCurrent(i))
            touched.append(i);
    }
    m_currentSongId = songId;
    m_currentRow = row;
    for (qsizetype i = 0; i < items().size(); ++i) {
        if (isCurrent(i) != touched.contains(i))
            markChanged(i, IsCurrentRole);
    }
}

bool PlaylistEntryModel::isCurrent(qsizetype row) const
{
    if (m_currentSongId.isEmpty())
        return false;
    if (m_currentRow)
        return row == *m_currentRow;
    return items().at(row).song.id == m_currentSongId;
}

void PlaylistEntryModel::markChanged(const std::optional<qsizetype> &row, int role)
{
    if (row)
        Q_EMIT dataChanged(index(int(*row)), index(int(*row)), {role});
}
