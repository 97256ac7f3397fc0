#include "queuerules.h"

#include <QHash>

#include <algorithm>
#include <vector>

namespace QueueRules {

namespace {
// The indexes that lie inside a list of `count`, ascending and each once.
QList<qsizetype> validIndexes(QList<qsizetype> indexes, qsizetype count)
{
    indexes.removeIf([count](qsizetype index) { return index < 0 || index >= count; });
    std::sort(indexes.begin(), indexes.end());
    indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
    return indexes;
}

// Moves the entries not marked in `drop` to the front, in order, and cuts the list after them.
void compact(QList<Song> &list, const std::vector<bool> &drop)
{
    qsizetype kept = 0;
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (drop[i])
            continue;
        if (kept != i)
            list[kept] = std::move(list[i]);
        ++kept;
    }
    list.resize(kept);
}
}

std::optional<qsizetype> nextIndex(qsizetype count, std::optional<qsizetype> current, RepeatMode mode)
{
    if (count == 0 || !current || *current < 0 || *current >= count)
        return std::nullopt;
    if (mode == RepeatMode::One)
        return current;
    if (*current + 1 < count)
        return *current + 1;
    if (mode == RepeatMode::All)
        return 0;
    return std::nullopt;
}

QList<Song> mirroringRemoval(const QList<Song> &removed, QList<Song> list)
{
    QHash<QString, qsizetype> pending;
    for (const Song &song : removed)
        ++pending[song.id];

    std::vector<bool> drop(list.size(), false);
    for (qsizetype i = list.size() - 1; i >= 0 && !pending.isEmpty(); --i) {
        const auto count = pending.find(list.at(i).id);
        if (count == pending.end())
            continue;
        drop[i] = true;
        if (--*count == 0)
            pending.erase(count);
    }
    compact(list, drop);
    return list;
}

std::optional<qsizetype> firstIndexOf(const QList<Song> &list, QStringView id)
{
    const auto found = std::find_if(list.cbegin(), list.cend(), [id](const Song &song) { return song.id == id; });
    if (found == list.cend())
        return std::nullopt;
    return found - list.cbegin();
}

QList<Song> inserting(QList<Song> list, qsizetype at, const QList<Song> &songs)
{
    at = std::clamp<qsizetype>(at, 0, list.size());
    const qsizetype end = list.size();
    list.append(songs);
    std::rotate(list.begin() + at, list.begin() + end, list.end());
    return list;
}

Removal removingIndexes(QList<Song> list, QList<qsizetype> indexes)
{
    indexes = validIndexes(std::move(indexes), list.size());
    Removal result;
    result.removed.reserve(indexes.size());
    std::vector<bool> drop(list.size(), false);
    for (const qsizetype index : indexes) {
        drop[index] = true;
        result.removed.append(list.at(index));
    }
    compact(list, drop);
    result.kept = std::move(list);
    return result;
}

QList<Song> moving(QList<Song> list, QList<qsizetype> offsets, qsizetype destination)
{
    offsets = validIndexes(std::move(offsets), list.size());
    destination = std::clamp<qsizetype>(destination, 0, list.size());
    std::vector<bool> moved(list.size(), false);
    for (const qsizetype offset : offsets)
        moved[offset] = true;

    // Before the destination the moved entries sink to its end, after it they rise to its start; both
    // partitions are stable, so every entry keeps its order among those that go the same way.
    QList<Song> result;
    result.reserve(list.size());
    const auto take = [&](qsizetype from, qsizetype to, bool wanted) {
        for (qsizetype i = from; i < to; ++i) {
            if (moved[i] == wanted)
                result.append(std::move(list[i]));
        }
    };
    take(0, destination, false);
    take(0, destination, true);
    take(destination, list.size(), true);
    take(destination, list.size(), false);
    return result;
}

QList<Song> shuffled(QList<Song> songs, std::mt19937_64 &random)
{
    std::shuffle(songs.begin(), songs.end(), random);
    return songs;
}

QList<Song> shuffledAround(QList<Song> songs, qsizetype kept, std::mt19937_64 &random)
{
    if (kept < 0 || kept >= songs.size())
        return shuffled(std::move(songs), random);
    songs.swapItemsAt(0, kept);
    std::shuffle(songs.begin() + 1, songs.end(), random);
    return songs;
}

}
