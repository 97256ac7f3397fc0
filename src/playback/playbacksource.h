#pragma once

// Where the queue came from: the album or playlist that the bar links back to. Queue rules never read it.

#include <QHashFunctions>
#include <QString>

struct PlaybackSource {
    enum class Kind { Album, Playlist };

    Kind kind = Kind::Album;
    QString id;
    QString name;

    [[nodiscard]] static PlaybackSource album(QString id, QString name)
    {
        return {.kind = Kind::Album, .id = std::move(id), .name = std::move(name)};
    }
    [[nodiscard]] static PlaybackSource playlist(QString id, QString name)
    {
        return {.kind = Kind::Playlist, .id = std::move(id), .name = std::move(name)};
    }

    bool operator==(const PlaybackSource &) const = default;
};

inline size_t qHash(const PlaybackSource &source, size_t seed = 0)
{
    return qHashMulti(seed, int(source.kind), source.id, source.name);
}
