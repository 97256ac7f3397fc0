#include "records.h"

#include "json.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace Json;

Song Song::fromJson(const QJsonObject &o)
{
    return Song{
        .id = requiredString(o, "id"_L1),
        .title = requiredString(o, "title"_L1),
        .album = optionalString(o, "album"_L1),
        .albumId = optionalString(o, "albumId"_L1),
        .artist = optionalString(o, "artist"_L1),
        .artistId = optionalString(o, "artistId"_L1),
        .track = optionalInt(o, "track"_L1),
        .discNumber = optionalInt(o, "discNumber"_L1),
        .year = optionalInt(o, "year"_L1),
        .duration = optionalInt(o, "duration"_L1),
        .contentType = optionalString(o, "contentType"_L1),
        .suffix = optionalString(o, "suffix"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
        .size = optionalInt(o, "size"_L1),
    };
}

QJsonObject Song::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"title"_L1, title}};
    putOptional(o, "album"_L1, album);
    putOptional(o, "albumId"_L1, albumId);
    putOptional(o, "artist"_L1, artist);
    putOptional(o, "artistId"_L1, artistId);
    putOptional(o, "track"_L1, track);
    putOptional(o, "discNumber"_L1, discNumber);
    putOptional(o, "year"_L1, year);
    putOptional(o, "duration"_L1, duration);
    putOptional(o, "contentType"_L1, contentType);
    putOptional(o, "suffix"_L1, suffix);
    putOptional(o, "coverArt"_L1, coverArt);
    putOptional(o, "size"_L1, size);
    return o;
}

QString Album::dragText() const
{
    if (artist)
        return *artist + u" – "_s + name;
    return name;
}

Album Album::fromJson(const QJsonObject &o)
{
    return Album{
        .id = requiredString(o, "id"_L1),
        .name = requiredString(o, "name"_L1),
        .artist = optionalString(o, "artist"_L1),
        .artistId = optionalString(o, "artistId"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
        .songCount = optionalInt(o, "songCount"_L1),
        .duration = optionalInt(o, "duration"_L1),
        .year = optionalInt(o, "year"_L1),
        .genre = optionalString(o, "genre"_L1),
        .song = optionalArray<Song>(o, "song"_L1),
    };
}

QJsonObject Album::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"name"_L1, name}};
    putOptional(o, "artist"_L1, artist);
    putOptional(o, "artistId"_L1, artistId);
    putOptional(o, "coverArt"_L1, coverArt);
    putOptional(o, "songCount"_L1, songCount);
    putOptional(o, "duration"_L1, duration);
    putOptional(o, "year"_L1, year);
    putOptional(o, "genre"_L1, genre);
    putOptional(o, "song"_L1, song);
    return o;
}

Artist Artist::fromJson(const QJsonObject &o)
{
    return Artist{
        .id = requiredString(o, "id"_L1),
        .name = requiredString(o, "name"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
        .albumCount = optionalInt(o, "albumCount"_L1),
    };
}

QJsonObject Artist::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"name"_L1, name}};
    putOptional(o, "coverArt"_L1, coverArt);
    putOptional(o, "albumCount"_L1, albumCount);
    return o;
}

ArtistIndex ArtistIndex::fromJson(const QJsonObject &o)
{
    return ArtistIndex{
        .name = requiredString(o, "name"_L1),
        .artist = requiredArray<Artist>(o, "artist"_L1),
    };
}

QJsonObject ArtistIndex::toJson() const
{
    return QJsonObject{{"name"_L1, name}, {"artist"_L1, encodeArray(artist)}};
}

ArtistDetail ArtistDetail::fromJson(const QJsonObject &o)
{
    return ArtistDetail{
        .id = requiredString(o, "id"_L1),
        .name = requiredString(o, "name"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
        .album = optionalArray<Album>(o, "album"_L1),
    };
}

QJsonObject ArtistDetail::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"name"_L1, name}};
    putOptional(o, "coverArt"_L1, coverArt);
    putOptional(o, "album"_L1, album);
    return o;
}

Playlist Playlist::fromJson(const QJsonObject &o)
{
    return Playlist{
        .id = requiredString(o, "id"_L1),
        .name = requiredString(o, "name"_L1),
        .songCount = optionalInt(o, "songCount"_L1),
        .duration = optionalInt(o, "duration"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
    };
}

QJsonObject Playlist::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"name"_L1, name}};
    putOptional(o, "songCount"_L1, songCount);
    putOptional(o, "duration"_L1, duration);
    putOptional(o, "coverArt"_L1, coverArt);
    return o;
}

PlaylistDetail PlaylistDetail::fromJson(const QJsonObject &o)
{
    return PlaylistDetail{
        .id = requiredString(o, "id"_L1),
        .name = requiredString(o, "name"_L1),
        .songCount = optionalInt(o, "songCount"_L1),
        .duration = optionalInt(o, "duration"_L1),
        .coverArt = optionalString(o, "coverArt"_L1),
        .entry = optionalArray<Song>(o, "entry"_L1),
    };
}

QJsonObject PlaylistDetail::toJson() const
{
    QJsonObject o{{"id"_L1, id}, {"name"_L1, name}};
    putOptional(o, "songCount"_L1, songCount);
    putOptional(o, "duration"_L1, duration);
    putOptional(o, "coverArt"_L1, coverArt);
    putOptional(o, "entry"_L1, entry);
    return o;
}

SearchResult SearchResult::fromJson(const QJsonObject &o)
{
    return SearchResult{
        .artist = optionalArray<Artist>(o, "artist"_L1),
        .album = optionalArray<Album>(o, "album"_L1),
        .song = optionalArray<Song>(o, "song"_L1),
    };
}

QJsonObject SearchResult::toJson() const
{
    QJsonObject o;
    putOptional(o, "artist"_L1, artist);
    putOptional(o, "album"_L1, album);
    putOptional(o, "song"_L1, song);
    return o;
}

namespace {
constexpr std::array albumListTypeNames{
    "newest"_L1, "recent"_L1, "alphabeticalByName"_L1, "alphabeticalByArtist"_L1,
    "random"_L1, "frequent"_L1, "highest"_L1,
};
}

QString albumListTypeName(AlbumListType type)
{
    return albumListTypeNames[static_cast<size_t>(type)];
}

std::optional<AlbumListType> albumListTypeFromName(QStringView name)
{
    for (size_t i = 0; i < albumListTypeNames.size(); ++i) {
        if (name == albumListTypeNames[i])
            return static_cast<AlbumListType>(i);
    }
    return std::nullopt;
}

namespace {
// Qt 6.4 has no qHash for std::optional, so hashing chains the fields by hand.
class Hasher
{
public:
    explicit Hasher(size_t seed) : m_seed(seed) { }

    template<typename... Ts>
    size_t operator()(const Ts &...values)
    {
        (add(values), ...);
        return m_seed;
    }

private:
    template<typename T>
    void add(const T &value)
    {
        using ::qHash;
        m_seed ^= qHash(value, 0) + 0x9e3779b9 + (m_seed << 6) + (m_seed >> 2);
    }

    template<typename T>
    void add(const std::optional<T> &value)
    {
        add(value.has_value());
        if (value)
            add(*value);
    }

    template<typename T>
    void add(const QList<T> &values)
    {
        add(values.size());
        for (const T &value : values)
            add(value);
    }

    size_t m_seed;
};
}

size_t qHash(const Song &s, size_t seed)
{
    return Hasher(seed)(s.id, s.title, s.album, s.albumId, s.artist, s.artistId, s.track, s.discNumber, s.year,
                        s.duration, s.contentType, s.suffix, s.coverArt, s.size);
}

size_t qHash(const Album &a, size_t seed)
{
    return Hasher(seed)(a.id, a.name, a.artist, a.artistId, a.coverArt, a.songCount, a.duration, a.year, a.genre,
                        a.song);
}

size_t qHash(const Artist &a, size_t seed)
{
    return Hasher(seed)(a.id, a.name, a.coverArt, a.albumCount);
}

size_t qHash(const ArtistIndex &i, size_t seed)
{
    return Hasher(seed)(i.name, i.artist);
}

size_t qHash(const Playlist &p, size_t seed)
{
    return Hasher(seed)(p.id, p.name, p.songCount, p.duration, p.coverArt);
}

size_t qHash(const ArtistDetail &d, size_t seed)
{
    return Hasher(seed)(d.id, d.name, d.coverArt, d.album);
}
