#include "albumtracks.h"

#include <QCoreApplication>

#include <map>

using namespace Qt::StringLiterals;

namespace AlbumTracks {
QList<Disc> discs(const QList<Song> &songs)
{
    std::map<qint64, QList<Song>> byDisc;
    for (const Song &song : songs)
        byDisc[song.discNumber.value_or(1)].append(song);
    if (byDisc.size() < 2)
        return {Disc{std::nullopt, songs}};
    QList<Disc> result;
    for (const auto &[number, discSongs] : byDisc)
        result.append(Disc{number, discSongs});
    return result;
}

QList<Song> orderedSongs(const QList<Song> &songs)
{
    QList<Song> ordered;
    for (const Disc &disc : discs(songs))
        ordered.append(disc.songs);
    return ordered;
}

QString metadataLine(std::optional<qint64> year, std::optional<qint64> durationSeconds)
{
    QStringList pieces;
    if (year)
        pieces.append(QString::number(*year));
    if (const QString length = lengthInMinutes(durationSeconds); !length.isEmpty())
        pieces.append(length);
    return pieces.join(u" • "_s);
}

QString lengthInMinutes(std::optional<qint64> durationSeconds)
{
    if (!durationSeconds || *durationSeconds < 1)
        return {};
    const qint64 minutes = std::max<qint64>(*durationSeconds / 60, 1);
    return QCoreApplication::translate("AlbumTracks", "%1 min").arg(minutes);
}

std::optional<QString> movedSelection(const QList<Song> &ordered, const QString &selectedId, int delta)
{
    const auto found = std::find_if(ordered.cbegin(), ordered.cend(),
                                    [&selectedId](const Song &song) { return song.id == selectedId; });
    const std::optional<qsizetype> selected =
        found != ordered.cend() ? std::optional<qsizetype>(found - ordered.cbegin()) : std::nullopt;
    const std::optional<qsizetype> moved = movedRow(selected, ordered.size(), delta);
    return moved ? std::optional<QString>(ordered.at(*moved).id) : std::nullopt;
}

int movedRow(int selectedRow, int count, int delta)
{
    const std::optional<qsizetype> moved =
        movedRow(selectedRow >= 0 ? std::optional<qsizetype>(selectedRow) : std::nullopt, count, delta);
    return moved ? int(*moved) : -1;
}

std::optional<qsizetype> movedRow(std::optional<qsizetype> selected, qsizetype count, int delta)
{
    if (count == 0)
        return std::nullopt;
    const qsizetype from = selected ? *selected : (delta < 1 ? count : -1);
    return std::clamp<qsizetype>(from + delta, 0, count - 1);
}
}
