#pragma once

// The value records the server answers with. They are at once the wire format and the form embedded in
// Velto's own files, with the same keys both ways. Equality covers every field, nested lists included.

#include <QHashFunctions>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

struct Song {
    QString id;
    QString title;
    std::optional<QString> album;
    std::optional<QString> albumId;
    std::optional<QString> artist;
    std::optional<QString> artistId;
    std::optional<qint64> track;
    std::optional<qint64> discNumber;
    std::optional<qint64> year;
    std::optional<qint64> duration;
    std::optional<QString> contentType;
    std::optional<QString> suffix;
    std::optional<QString> coverArt;
    std::optional<qint64> size; // of the original file, in bytes

    [[nodiscard]] QString artistName() const { return artist.value_or(QString()); }
    [[nodiscard]] QString albumName() const { return album.value_or(QString()); }
    [[nodiscard]] qint64 durationSeconds() const { return duration.value_or(0); }

    static Song fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const Song &) const = default;
};

struct Album {
    QString id;
    QString name;
    std::optional<QString> artist;
    std::optional<QString> artistId;
    std::optional<QString> coverArt;
    std::optional<qint64> songCount;
    std::optional<qint64> duration;
    std::optional<qint64> year;
    std::optional<QString> genre;
    std::optional<QList<Song>> song;

    // The plain-text form of a dragged album: "Artist – Name", or the name alone.
    [[nodiscard]] QString dragText() const;

    static Album fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const Album &) const = default;
};

struct Artist {
    QString id;
    QString name;
    std::optional<QString> coverArt;
    std::optional<qint64> albumCount;

    static Artist fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const Artist &) const = default;
};

struct ArtistIndex {
    QString name;
    QList<Artist> artist; // required, unlike every other list

    static ArtistIndex fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const ArtistIndex &) const = default;
};

struct ArtistDetail {
    QString id;
    QString name;
    std::optional<QString> coverArt;
    std::optional<QList<Album>> album;

    static ArtistDetail fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const ArtistDetail &) const = default;
};

struct Playlist {
    QString id;
    QString name;
    std::optional<qint64> songCount;
    std::optional<qint64> duration;
    std::optional<QString> coverArt;

    static Playlist fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const Playlist &) const = default;
};

struct PlaylistDetail {
    QString id;
    QString name;
    std::optional<qint64> songCount;
    std::optional<qint64> duration;
    std::optional<QString> coverArt;
    std::optional<QList<Song>> entry;

    static PlaylistDetail fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
};

struct SearchResult {
    std::optional<QList<Artist>> artist;
    std::optional<QList<Album>> album;
    std::optional<QList<Song>> song;

    static SearchResult fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
};

enum class AlbumListType { Newest, Recent, AlphabeticalByName, AlphabeticalByArtist, Random, Frequent, Highest };

[[nodiscard]] QString albumListTypeName(AlbumListType type);
[[nodiscard]] std::optional<AlbumListType> albumListTypeFromName(QStringView name);

size_t qHash(const Song &song, size_t seed = 0);
size_t qHash(const Album &album, size_t seed = 0);
size_t qHash(const Artist &artist, size_t seed = 0);
size_t qHash(const ArtistIndex &index, size_t seed = 0);
size_t qHash(const Playlist &playlist, size_t seed = 0);
size_t qHash(const ArtistDetail &detail, size_t seed = 0);
