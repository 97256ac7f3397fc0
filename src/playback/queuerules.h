#pragma once

// The pure rules of the play queue: which song comes next, and how the lists change when songs are added,
// removed, moved or shuffled. Song identity here is Song::id; the same song may stand in a list several times.
// Lists are taken by value so that a caller who moves one in pays no copy for an edit of 20,000 songs.

#include "repeatmode.h"
#include "server/records.h"

#include <QList>

#include <optional>
#include <random>

namespace QueueRules {

// The index that plays after `current` in a queue of `count` songs when a song ends by itself; none when the
// queue should stop there.
[[nodiscard]] std::optional<qsizetype> nextIndex(qsizetype count, std::optional<qsizetype> current,
                                                 RepeatMode mode);

// `list` without one entry for each song of `removed`, counted by id and taken from the end of `list` first.
// Keeps the unshuffled order in step with removals made in the shuffled one.
[[nodiscard]] QList<Song> mirroringRemoval(const QList<Song> &removed, QList<Song> list);

[[nodiscard]] std::optional<qsizetype> firstIndexOf(const QList<Song> &list, QStringView id);

// `list` with `songs` inserted before the entry at `at`.
[[nodiscard]] QList<Song> inserting(QList<Song> list, qsizetype at, const QList<Song> &songs);

struct Removal {
    QList<Song> kept;
    QList<Song> removed;
};

// Splits `list` into the entries at `indexes` and the others, both in list order. Indexes outside the list
// are skipped and repeated ones count once.
[[nodiscard]] Removal removingIndexes(QList<Song> list, QList<qsizetype> indexes);

// Moves the entries at `offsets` to just before the entry now at `destination`, keeping their relative order.
// The destination is counted before the move; the list's count puts them at the end.
[[nodiscard]] QList<Song> moving(QList<Song> list, QList<qsizetype> offsets, qsizetype destination);

// A uniformly random permutation: every order is equally likely.
[[nodiscard]] QList<Song> shuffled(QList<Song> songs, std::mt19937_64 &random);

// The entry at `kept` first, then all the others in a uniformly random order.
[[nodiscard]] QList<Song> shuffledAround(QList<Song> songs, qsizetype kept, std::mt19937_64 &random);

}
