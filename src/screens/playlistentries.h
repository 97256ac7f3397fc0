#pragma once

// The rows of a playlist's page. A playlist may list a song twice, so a row is named by an entry id of its own,
// made anew each time the rows are built, never by its song. The model also marks the selected row and the
// playing one, so that a delegate binds one role instead of comparing ids.

#include "common/positionallist.h"
#include "server/records.h"

#include <QtQml/qqmlregistration.h>
#include <QUuid>

#include <optional>

struct PlaylistEntry {
    QUuid id;
    Song song;

    bool operator==(const PlaylistEntry &) const = default;
};

namespace PlaylistRules {
// Where a selection lands when the rows are built anew from `songIds`: the same place if its song is still
// there, else the first place of its song, else about where it was. None without a selection or rows.
[[nodiscard]] std::optional<qsizetype> resolvedSelection(std::optional<qsizetype> previousIndex,
                                                         const std::optional<QString> &previousSongId,
                                                         const QStringList &songIds);
// "12 songs • 47 min": the server's count when it gives one, else the rows'; the length only from a second on.
[[nodiscard]] QString metadataLine(std::optional<qint64> songCount, qsizetype rows,
                                   std::optional<qint64> durationSeconds);
}

class PlaylistEntryModel : public PositionalListModel<PlaylistEntry>
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by a playlist page")

public:
    enum Role {
        EntryIdRole = Qt::UserRole,
        SongIdRole,
        RecordRole,
        TitleRole,
        ArtistRole,
        DurationRole,
        CoverArtRole,
        IsSelectedRole,
        IsCurrentRole
    };

    using PositionalListModel::PositionalListModel;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // Each song becomes an entry with a new id.
    void setSongs(const QList<Song> &songs);
    using PositionalListModel::moveItem;
    [[nodiscard]] QList<Song> songs() const;
    [[nodiscard]] QStringList songIds() const;
    [[nodiscard]] std::optional<qsizetype> rowOf(const QUuid &id) const;

    [[nodiscard]] const QUuid &selectedId() const { return m_selectedId; }
    void setSelectedId(const QUuid &id);
    // The playing row: `row` when the player is known to play this list there, else every row of the song.
    void setCurrent(const QString &songId, std::optional<qsizetype> row);

private:
    [[nodiscard]] bool isCurrent(qsizetype row) const;
    void markChanged(const std::optional<qsizetype> &row, int role);

    QUuid m_selectedId;
    QString m_currentSongId;
    std::optional<qsizetype> m_currentRow;
};
