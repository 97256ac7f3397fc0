// The store's construction, its observable fields and the questions the screens ask of it.

#include "downloadstore.h"

#include "artwork/artworkfetcher.h"
#include "common/observable.h"
#include "manifestfile.h"

#include <QDir>
#include <QJSEngine>
#include <QNetworkAccessManager>
#include <QtConcurrent>

#include <algorithm>
#include <tuple>

namespace {
// A transfer that receives nothing for this long fails, like an API request: a connection that died without a
// word cannot hold a download for ever.
constexpr int transferTimeoutMs = 60'000;
}

std::shared_ptr<DownloadStore> DownloadStore::create(SubsonicClient client, const DownloadLayout &layout)
{
    // Deleted later rather than at once: the last holder may be a run that is still unwinding inside a signal.
    std::shared_ptr<DownloadStore> store(new DownloadStore(std::move(client), layout),
                                         [](DownloadStore *dropped) { dropped->deleteLater(); });
    QJSEngine::setObjectOwnership(store.get(), QJSEngine::CppOwnership);
    // After construction, so that the sweep sees the loaded manifest and can hold the store.
    store->startArtworkSweep();
    return store;
}

DownloadStore::DownloadStore(SubsonicClient client, const DownloadLayout &layout)
    : m_client(std::move(client))
    , m_directory(layout.directory(m_client.config()))
    , m_network(new QNetworkAccessManager(this))
{
    // Songs and covers are kept by this store itself; no HTTP cache keeps a second copy of them.
    m_network->setCache(nullptr);
    m_network->setTransferTimeout(transferTimeoutMs);
    QDir().mkpath(artworkDirectory());
    ArtworkFetcher::shared().setOfflineDirectory(artworkDirectory());
    QDir().mkpath(m_directory);
    m_manifest = loadManifest(m_directory);
    removePartialFiles();
}

DownloadStore::~DownloadStore()
{
    // Replies of cancelled tasks resume them through queued calls addressed to the replies, so the manager and
    // its replies outlive the store by one turn of the event loop.
    m_network->setParent(nullptr);
    m_network->deleteLater();
}

std::optional<DownloadProgress> DownloadStore::progress(const QString &key) const
{
    const auto found = m_active.constFind(key);
    if (found == m_active.cend())
        return std::nullopt;
    return *found;
}

std::optional<DownloadProgress> DownloadStore::albumProgress(const QString &albumId) const
{
    return progress(albumCollectionKey(albumId));
}

std::optional<DownloadProgress> DownloadStore::playlistProgress(const QString &playlistId) const
{
    return progress(playlistCollectionKey(playlistId));
}

CollectionDownloadState DownloadStore::state(const QString &key, const QStringList &songIds) const
{
    return m_manifest.state(key, songIds);
}

QList<DownloadCollection> DownloadStore::downloadedCollections() const
{
    QHash<QString, qint64> bytes;
    for (const DownloadedSong &stored : m_manifest.songs) {
        for (const QString &owner : stored.owners)
            bytes[owner] += stored.bytes;
    }
    QList<DownloadCollection> collections = m_manifest.collections.values();
    // Name and key break ties only so that the order does not change from one call to the next.
    const auto largerFirst = [&bytes](const DownloadCollection &a, const DownloadCollection &b) {
        const qint64 bytesA = bytes.value(a.key);
        const qint64 bytesB = bytes.value(b.key);
        if (bytesA != bytesB)
            return bytesA > bytesB;
        return std::tie(a.name, a.key) < std::tie(b.name, b.key);
    };
    std::sort(collections.begin(), collections.end(), largerFirst);
    return collections;
}

QVariantMap DownloadStore::progressByKey() const
{
    QVariantMap result;
    for (auto entry = m_active.cbegin(); entry != m_active.cend(); ++entry)
        result.insert(entry.key(), QVariant::fromValue(entry.value()));
    return result;
}

namespace {
qint64 totalDuration(const QList<Song> &songs)
{
    qint64 seconds = 0;
    for (const Song &song : songs)
        seconds += song.durationSeconds();
    return seconds;
}
}

std::optional<Album> DownloadStore::localAlbum(const QString &id) const
{
    const QString key = albumCollectionKey(id);
    const QList<Song> songs = m_manifest.songsOwnedBy(key);
    if (songs.isEmpty())
        return std::nullopt;
    const Song &first = songs.first();
    Album album;
    album.id = id;
    album.name = first.album.value_or(m_manifest.collections.value(key).name);
    album.artist = first.artist;
    album.artistId = first.artistId;
    album.coverArt = first.coverArt;
    album.year = first.year;
    album.songCount = songs.size();
    album.duration = totalDuration(songs);
    album.song = songs;
    return album;
}

std::optional<PlaylistDetail> DownloadStore::localPlaylist(const QString &id) const
{
    const QString key = playlistCollectionKey(id);
    const QList<Song> songs = m_manifest.songsOwnedBy(key);
    if (songs.isEmpty())
        return std::nullopt;
    PlaylistDetail playlist;
    playlist.id = id;
    playlist.name = m_manifest.collections.value(key).name;
    playlist.songCount = songs.size();
    playlist.duration = totalDuration(songs);
    playlist.coverArt = songs.first().coverArt;
    playlist.entry = songs;
    return playlist;
}

std::optional<QUrl> DownloadStore::localFileURL(const Song &song, const ServerConfig &config)
{
    return DownloadLayout::standard().localFileURL(song, config);
}

QString DownloadStore::songPath(const QString &id, const QString &suffix) const
{
    return m_directory + u'/' + DownloadLayout::songFileName(id, suffix);
}

QString DownloadStore::artworkDirectory() const
{
    return DownloadLayout::artworkDirectory(m_directory);
}

// Best effort: a failed write leaves the old file whole, and the next change writes again.
namespace {
// Never destroyed, so that no write is cut off by the order of destruction at exit; flushWrites() waits for it.
QThreadPool *manifestWriter()
{
    static QThreadPool *const pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(1);
        return created;
    }();
    return pool;
}
}

void DownloadStore::flushWrites()
{
    manifestWriter()->waitForDone();
}

void DownloadStore::save()
{
    m_lastSave = QtConcurrent::run(manifestWriter(), [manifest = m_manifest, directory = m_directory] {
        saveManifest(manifest, directory);
    });
}

void DownloadStore::saveNow()
{
    save();
    m_lastSave.waitForFinished();
}

void DownloadStore::setManifest(DownloadManifest manifest)
{
    assignField(this, m_manifest, std::move(manifest), &DownloadStore::manifestChanged);
}

void DownloadStore::setActive(QHash<QString, DownloadProgress> active)
{
    assignField(this, m_active, std::move(active), &DownloadStore::activeChanged);
}

void DownloadStore::setProgress(const QString &owner, std::optional<DownloadProgress> progress)
{
    QHash<QString, DownloadProgress> active = m_active;
    if (progress)
        active.insert(owner, *progress);
    else
        active.remove(owner);
    setActive(std::move(active));
}
