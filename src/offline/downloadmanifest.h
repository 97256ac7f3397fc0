#pragma once

// What one server account holds on disk: which songs have a file and which albums and playlists own them. A song
// that two collections share is stored once and kept until its last owner goes. A plain value: the download
// store owns the copy in use, and this file neither reads nor writes anything on disk.

#include "collectiondownloadstate.h"
#include "server/records.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

struct DownloadedSong {
    Song song; // as it was at download time; offline screens are built from it
    QString suffix; // of the stored file, without the dot
    qint64 bytes = 0; // as the file system reported it; 0 when it could not be read
    QSet<QString> owners; // collection keys; never empty in a stored record

    static DownloadedSong fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const DownloadedSong &) const = default;
};

struct DownloadCollection {
    Q_GADGET
    Q_PROPERTY(QString key MEMBER key CONSTANT)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QString subtitle READ subtitleText CONSTANT)

public:
    QString key; // "album:<id>" or "playlist:<id>"
    QString name;
    std::optional<QString> subtitle; // the album artist; absent for a playlist

    [[nodiscard]] QString subtitleText() const { return subtitle.value_or(QString()); }

    static DownloadCollection fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const DownloadCollection &) const = default;
};

// A file that no collection holds any more; the caller deletes it.
struct ReleasedSongFile {
    QString id;
    QString suffix;

    bool operator==(const ReleasedSongFile &) const = default;
};

[[nodiscard]] QString albumCollectionKey(const QString &albumId);
[[nodiscard]] QString playlistCollectionKey(const QString &playlistId);

// What one collection holds on disk, in the order it plays.
struct CollectionContents {
    QList<Song> songs;
    qint64 bytes = 0; // a song shared with another collection counts in full for each
};

struct DownloadManifest {
    QHash<QString, DownloadedSong> songs; // by song id
    QHash<QString, DownloadCollection> collections; // by key: only downloads that ran to their end

    [[nodiscard]] bool isDownloaded(const QString &collectionKey) const;
    // Sorted by disc, then track (absent counts as 0), then title by plain comparison. A stored playlist has no
    // order of its own, so it comes back in this order too.
    [[nodiscard]] QList<Song> songsOwnedBy(const QString &key) const;
    // Every collection's songs and size from one walk over the songs, for screens that show them all.
    [[nodiscard]] QHash<QString, CollectionContents> songsByCollection() const;
    // A song shared with another collection counts in full for each.
    [[nodiscard]] qint64 bytesOwnedBy(const QString &key) const;
    [[nodiscard]] qint64 totalBytes() const;
    [[nodiscard]] CollectionDownloadState state(const QString &owner, const QStringList &songIds) const;

    // Drops the collection and its claim on every song; returns the songs nobody holds any more.
    QList<ReleasedSongFile> removeOwner(const QString &key);

    // Strict: a missing or mistyped key throws Json::DecodeError; only "subtitle" and Song's optionals may lack.
    static DownloadManifest fromJson(const QJsonObject &object);
    [[nodiscard]] QJsonObject toJson() const;
    bool operator==(const DownloadManifest &) const = default;
};
