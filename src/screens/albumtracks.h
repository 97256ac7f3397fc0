#pragma once

// How an album page orders and describes its songs: grouped by disc only when there are two discs or more, each
// disc in server order; the line of year and length under the album's name; and how a list's selection moves by
// keyboard, which the playlist page shares.

#include "server/records.h"

#include <optional>

struct Disc {
    std::optional<qint64> number; // none when the album shows as one list
    QList<Song> songs;

    bool operator==(const Disc &) const = default;
};

namespace AlbumTracks {
// A song without a disc number counts as disc 1.
[[nodiscard]] QList<Disc> discs(const QList<Song> &songs);
[[nodiscard]] QList<Song> orderedSongs(const QList<Song> &songs);
// "1994 • 42 min": the pieces that exist; the length in whole minutes, at least 1, and only from a minute on.
[[nodiscard]] QString metadataLine(std::optional<qint64> year, std::optional<qint64> durationSeconds);
// "42 min", at least 1; empty without a length of a second or more.
[[nodiscard]] QString lengthInMinutes(std::optional<qint64> durationSeconds);
// The song `delta` rows from the selected one in `ordered`, held at the ends; from no selection, Down takes the
// first row and Up the last. None for an empty list.
[[nodiscard]] std::optional<QString> movedSelection(const QList<Song> &ordered, const QString &selectedId, int delta);
// The same by row in a list of `count` rows.
[[nodiscard]] std::optional<qsizetype> movedRow(std::optional<qsizetype> selected, qsizetype count, int delta);
// The same with -1 for no row, given or answered.
[[nodiscard]] int movedRow(int selectedRow, int count, int delta);
}
