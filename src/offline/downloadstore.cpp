// The store's construction, its observable fields and the questions the screens ask of it.

#include "downloadstore.h"

#include "artwork/artworkfetcher.h"
#include "common/observable.h"
#include "common/saturating.h"
#include "downloadedcollections.h"
#include "manifestfile.h"

#include <QDir>
#include <QJSEngine>
#include <QNetworkAccessManager>
#include <QPromise>
#include <QThreadPool>

#include <algorithm>
#include <tuple>

namespace {
// A transfer that receives nothing for this long fails, like an API request: a connection that died without a
// word cannot hold a download for ever.
constexpr int defaultTransferTimeoutMs = 60'000;

// Never destroyed, so that no write is cut off by the order of destruction at exit; flushWrites() waits for it.
// The manifest's loads run here too, so that a load and the writes of one folder never overlap.
QThreadPool *manifestWriter()
{
    static QThreadPool *const pool = [] {
        auto *created = new QThreadPool;
        created->setMaxThreadCount(1);
        return created;
    }();
    return pool;
}

// Runs `work` on the manifest's worker, after everything queued there before it. Not QtConcurrent::run: waiting
// for one of its futures may take the job out of the queue and run it at once on the waiting thread, ahead of
// the writes queued before it. A promise's future has no job to take.
template<typename Work>
auto onManifestWorker(Work work) -> QFuture<decltype(work())>
{
    using Result = decltype(work());
    auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    QFuture<Result> future = promise->future();
    manifestWriter()->start([promise, work = std::move(work)]() mutable {
        if constexpr (std::is_void_v<Result>)
            work();
        else
            promise->addResult(work());
        promise->finish();
    });
    return future;
}
}

std::shared_ptr<DownloadStore> DownloadStore::create(SubsonicClient client, const DownloadLayout &layout)
{
    // One living store per folder: a second one would delete the first one's partial files and overwrite its
    // manifest. Signing in again while a download of the same account still runs takes that store up again.
    static QHash<QString, std::weak_ptr<DownloadStore>> living;
    living.removeIf([](const auto &entry) { return entry.value().expired(); });
    const QString directory = layout.directory(client.config());
    if (const std::shared_ptr<DownloadStore> running = living.value(directory).lock()) {
        running->m_client = std::move(client);
        ArtworkFetcher::shared().setOfflineDirectory(running->artworkDirectory());
        return running;
    }
    // Deleted later rather than at once: the last holder may be a run that is still unwinding inside a signal.
    std::shared_ptr<DownloadStore> store(new DownloadStore(std::move(client), directory),
                                         [](DownloadStore *dropped) { dropped->deleteLater(); });
    living.insert(directory, store);
    QJSEngine::setObjectOwnership(store.get(), QJSEngine::CppOwnership);
    store->startLoading();
    return store;
}

DownloadStore::DownloadStore(SubsonicClient client, QString directory)
    : m_client(std::move(client))
    , m_directory(std::move(directory))
    , m_network(new QNetworkAccessManager(this))
{
    // Songs and covers are kept by this store itself; no HTTP cache keeps a second copy of them.
    m_network->setCache(nullptr);
    // The client's limit, so that a test's impatient server makes impatient downloads too.
    const int timeout = m_client.network()->transferTimeout();
    m_network->setTransferTimeout(timeout > 0 ? timeout : defaultTransferTimeoutMs);
    ArtworkFetcher::shared().setOfflineDirectory(artworkDirectory());
}

// Reading and decoding a manifest of many thousand songs takes tens of milliseconds, which the first frame
// need not wait for: it runs on the manifest's worker, and whoever asks before it is done waits for it there.
// The sweep for missed covers follows it.
void DownloadStore::startLoading()
{
    m_loading = onManifestWorker([directory = m_directory, artwork = artworkDirectory()] {
        QDir().mkpath(artwork);
        removePartialFiles(directory);
        return loadManifest(directory);
    });
    m_artworkTask.start([store = weak_from_this(), loading = m_loading](CancelToken token) {
        return finishLoading(store, loading, token);
    });
}

const DownloadManifest &DownloadStore::manifest() const
{
    takeLoadedManifest();
    return m_manifest;
}

void DownloadStore::takeLoadedManifest() const
{
    if (m_loaded)
        return;
    m_manifest = m_loading.result();
    m_loaded = true;
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
    return manifest().state(key, songIds);
}

QList<DownloadCollection> DownloadStore::downloadedCollections() const
{
    QList<DownloadCollection> collections;
    for (const DownloadedCollectionRow &row : DownloadedCollections::bySize(manifest(), manifest().songsByCollection()))
        collections.append(row.collection);
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
        seconds = saturatingAdd(seconds, song.durationSeconds());
    return seconds;
}
}

std::optional<Album> DownloadStore::localAlbum(const QString &id) const
{
    const QString key = albumCollectionKey(id);
    const QList<Song> songs = manifest().songsOwnedBy(key);
    if (songs.isEmpty())
        return std::nullopt;
    const Song &first = songs.first();
    Album album;
    album.id = id;
    album.name = first.album.value_or(manifest().collections.value(key).name);
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
    const QList<Song> songs = manifest().songsOwnedBy(key);
    if (songs.isEmpty())
        return std::nullopt;
    PlaylistDetail playlist;
    playlist.id = id;
    playlist.name = manifest().collections.value(key).name;
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

void DownloadStore::flushWrites()
{
    manifestWriter()->waitForDone();
}

// Best effort: a failed write leaves the old file whole, and the next change writes again.
void DownloadStore::save()
{
    m_lastSave = onManifestWorker([snapshot = manifest(), directory = m_directory] {
        saveManifest(snapshot, directory);
    });
}

void DownloadStore::saveNow()
{
    save();
    m_lastSave.waitForFinished();
}

void DownloadStore::setManifest(DownloadManifest manifest)
{
    takeLoadedManifest();
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
