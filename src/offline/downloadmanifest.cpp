#include "downloadmanifest.h"

#include "common/saturating.h"
#include "server/json.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
QSet<QString> decodeOwners(const QJsonValue &value)
{
    if (!value.isArray())
        throw Json::DecodeError{};
    QSet<QString> owners;
    for (const QJsonValue &owner : value.toArray()) {
        if (!owner.isString())
            throw Json::DecodeError{};
        owners.insert(owner.toString());
    }
    // A record nobody owns would never be released.
    if (owners.isEmpty())
        throw Json::DecodeError{};
    return owners;
}

QJsonArray encodeOwners(const QSet<QString> &owners)
{
    // Sorted only so that equal manifests write equal files.
    QStringList sorted(owners.cbegin(), owners.cend());
    sorted.sort();
    return QJsonArray::fromStringList(sorted);
}

bool playsBefore(const Song &a, const Song &b)
{
    const qint64 discA = a.discNumber.value_or(0);
    const qint64 discB = b.discNumber.value_or(0);
    if (discA != discB)
        return discA < discB;
    const qint64 trackA = a.track.value_or(0);
    const qint64 trackB = b.track.value_or(0);
    if (trackA != trackB)
        return trackA < trackB;
    return QString::compare(a.title, b.title, Qt::CaseSensitive) < 0;
}
}

DownloadedSong DownloadedSong::fromJson(const QJsonObject &o)
{
    return DownloadedSong{
        .song = Song::fromJson(Json::requiredObject(o, "song"_L1)),
        .suffix = Json::requiredString(o, "suffix"_L1),
        .bytes = Json::requiredInt(o, "bytes"_L1),
        .owners = decodeOwners(o.value("owners"_L1)),
    };
}

QJsonObject DownloadedSong::toJson() const
{
    return QJsonObject{
        {"song"_L1, song.toJson()},
        {"suffix"_L1, suffix},
        {"bytes"_L1, bytes},
        {"owners"_L1, encodeOwners(owners)},
    };
}

DownloadCollection DownloadCollection::fromJson(const QJsonObject &o)
{
    return DownloadCollection{
        .key = Json::requiredString(o, "key"_L1),
        .name = Json::requiredString(o, "name"_L1),
        .subtitle = Json::optionalString(o, "subtitle"_L1),
    };
}

QJsonObject DownloadCollection::toJson() const
{
    QJsonObject o{{"key"_L1, key}, {"name"_L1, name}};
    Json::putOptional(o, "subtitle"_L1, subtitle);
    return o;
}

QString albumCollectionKey(const QString &albumId)
{
    return "album:"_L1 + albumId;
}

QString playlistCollectionKey(const QString &playlistId)
{
    return "playlist:"_L1 + playlistId;
}

bool DownloadManifest::isDownloaded(const QString &collectionKey) const
{
    return collections.contains(collectionKey);
}

QList<Song> DownloadManifest::songsOwnedBy(const QString &key) const
{
    QList<Song> owned;
    for (const DownloadedSong &record : songs) {
        if (record.owners.contains(key))
            owned.append(record.song);
    }
    std::stable_sort(owned.begin(), owned.end(), playsBefore);
    return owned;
}

QHash<QString, CollectionContents> DownloadManifest::songsByCollection() const
{
    QHash<QString, CollectionContents> contents;
    for (const DownloadedSong &record : songs) {
        for (const QString &owner : record.owners) {
            CollectionContents &collection = contents[owner];
            collection.songs.append(record.song);
            collection.bytes = saturatingAdd(collection.bytes, record.bytes);
        }
    }
    for (CollectionContents &collection : contents)
        std::stable_sort(collection.songs.begin(), collection.songs.end(), playsBefore);
    return contents;
}

qint64 DownloadManifest::bytesOwnedBy(const QString &key) const
{
    qint64 sum = 0;
    for (const DownloadedSong &record : songs) {
        if (record.owners.contains(key))
            sum = saturatingAdd(sum, record.bytes);
    }
    return sum;
}

qint64 DownloadManifest::totalBytes() const
{
    qint64 sum = 0;
    for (const DownloadedSong &record : songs)
        sum = saturatingAdd(sum, record.bytes);
    return sum;
}

CollectionDownloadState DownloadManifest::state(const QString &owner, const QStringList &songIds) const
{
    if (songIds.isEmpty())
        return isDownloaded(owner) ? CollectionDownloadState::complete() : CollectionDownloadState::none();
    const int total = int(songIds.size());
    const int held = int(std::count_if(songIds.cbegin(), songIds.cend(), [&](const QString &id) {
        const auto record = songs.constFind(id);
        return record != songs.cend() && record->owners.contains(owner);
    }));
    if (held == total)
        return CollectionDownloadState::complete();
    // Entered, yet holding none of the songs the server lists now: its list was replaced after the download.
    if (held == 0)
        return isDownloaded(owner) ? CollectionDownloadState::partial(0, total) : CollectionDownloadState::none();
    return CollectionDownloadState::partial(held, total);
}

QList<ReleasedSongFile> DownloadManifest::removeOwner(const QString &key)
{
    collections.remove(key);
    QList<ReleasedSongFile> released;
    for (auto record = songs.begin(); record != songs.end();) {
        if (!record->owners.remove(key)) {
            ++record;
            continue;
        }
        if (record->owners.isEmpty()) {
            released.append({record.key(), record->suffix});
            record = songs.erase(record);
        } else {
            ++record;
        }
    }
    return released;
}

DownloadManifest DownloadManifest::fromJson(const QJsonObject &o)
{
    DownloadManifest manifest;
    const QJsonObject songsObject = Json::requiredObject(o, "songs"_L1);
    const QJsonObject collectionsObject = Json::requiredObject(o, "collections"_L1);
    manifest.songs.reserve(songsObject.size());
    for (auto entry = songsObject.begin(); entry != songsObject.end(); ++entry)
        manifest.songs.insert(entry.key(), DownloadedSong::fromJson(Json::asObject(entry.value())));
    for (auto entry = collectionsObject.begin(); entry != collectionsObject.end(); ++entry)
        manifest.collections.insert(entry.key(), DownloadCollection::fromJson(Json::asObject(entry.value())));
    return manifest;
}

QJsonObject DownloadManifest::toJson() const
{
    // QJsonObject keeps its members sorted: inserting in key order appends, in hash order each insert moves
    // half the object.
    QStringList ids = songs.keys();
    ids.sort();
    QJsonObject songsObject;
    for (const QString &id : std::as_const(ids))
        songsObject.insert(id, songs.value(id).toJson());
    QJsonObject collectionsObject;
    for (auto collection = collections.cbegin(); collection != collections.cend(); ++collection)
        collectionsObject.insert(collection.key(), collection->toJson());
    return QJsonObject{{"songs"_L1, songsObject}, {"collections"_L1, collectionsObject}};
}
