#pragma once

// The rows of a song table: a list of songs sorted by the columns the user chose, which may be the whole library.
// Sorting compares ranks worked out once per text, so a click on a header stays instant at any size; a change of
// the songs inserts, removes or updates rows around what stayed, so the view keeps its place while a library
// loads. Rows are selected by song id and the playing song is marked, so both survive every re-sort.

#include "collationranks.h"
#include "server/records.h"

#include <QAbstractTableModel>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <optional>
#include <vector>

enum class SongColumn { Title, Artist, Album, Time };

struct SongSortKey {
    SongColumn column = SongColumn::Title;
    bool ascending = true;

    bool operator==(const SongSortKey &) const = default;
};

class SongTableModel : public QAbstractTableModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by a song table's screen")
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { SongIdRole = Qt::UserRole, RecordRole, IsSelectedRole, MarkerRole, SortIndicatorRole };

    explicit SongTableModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
    [[nodiscard]] int count() const { return rowCount(); }

    // The songs in the order their list has them; the rows show them sorted.
    void setSongs(const QList<Song> &songs);
    [[nodiscard]] const QList<SongSortKey> &sortOrder() const { return m_sortOrder; }
    void setSortOrder(const QList<SongSortKey> &order);

    [[nodiscard]] const Song &songAt(int row) const { return *m_rows[size_t(row)]; }
    [[nodiscard]] std::optional<int> rowOf(const QString &songId) const;
    // Every row's song, top to bottom; the selected ones.
    [[nodiscard]] QList<Song> sortedSongs() const;
    [[nodiscard]] QList<Song> selectedSongs() const;

    [[nodiscard]] const QSet<QString> &selection() const { return m_selection; }
    void setSelection(const QSet<QString> &ids);
    // The playing song's row shows a speaker, sounding while it plays.
    void setCurrent(const QString &songId, bool isPlaying);

Q_SIGNALS:
    void countChanged();

private:
    struct Keys {
        int title;
        int artist;
        int album;
    };

    [[nodiscard]] std::vector<int> sortedOrder() const;
    [[nodiscard]] bool before(int a, int b) const;
    void showRows(std::vector<const Song *> rows);
    void markRows(const QSet<QString> &ids, int role);

    QList<Song> m_songs;
    std::vector<Keys> m_keys; // by place in m_songs
    // Titles are mostly each a song's own; artists and albums repeat.
    CollationRanks m_titles{false};
    CollationRanks m_artists{true};
    CollationRanks m_albums{true};
    QList<SongSortKey> m_sortOrder{SongSortKey{}};
    std::vector<const Song *> m_rows;
    QSet<QString> m_selection;
    QString m_currentSongId;
    bool m_isPlaying = false;
};
