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
    if (durationSeconds && *durationSeconds >= 1) {
        const qint64 minutes = std::max<qint64>(*durationSeconds / 60, 1);
        pieces.append(QCoreApplication::translate("AlbumTracks", "%1 min").arg(minutes));
    }
    return pieces.join(u" • "_s);
}

std::optional<QString> movedSelection(const QList<Song> &ordered, const QString &selectedId, int delta)
{
    if (ordered.isEmpty())
        return std::nullopt;
    const auto found = std::find_if(ordered.cbegin(), ordered.cend(),
                                    [&selectedId](const Song &song) { return song.id == selectedId; });
    const qsizetype count = ordered.size();
    const qsizetype from = found != ordered.cend() ? found - ordered.cbegin() : (delta < 1 ? count : -1);
    return ordered.at(std::clamp<qsizetype>(from + delta, 0, count - 1)).id;
}
}
