// One download of an album or playlist: the song list, then the files one at a time, each recorded in the
// manifest as soon as it is in place, then the covers. A retry is the same run: songs whose file is on disk are
// passed over, which is also how a song shared with a held collection is kept once.

#include "downloadstore.h"

#include "filetransfer.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QFileInfo>

void DownloadStore::downloadAlbum(const Album &album)
{
    const QString owner = albumCollectionKey(album.id);
    if (m_tasks.contains(owner))
        return;
    startRun(owner, [album](DownloadStore *store, Run run) { return store->runAlbumDownload(album, std::move(run)); });
}

void DownloadStore::downloadPlaylist(const QString &id, const QString &name)
{
    const QString owner = playlistCollectionKey(id);
    if (m_tasks.contains(owner))
        return;
    startRun(owner, [id, name](DownloadStore *store, Run run) {
        return store->runPlaylistDownload(id, name, std::move(run));
    });
}

void DownloadStore::removeDownload(const QString &key)
{
    if (const auto running = m_tasks.constFind(key); running != m_tasks.cend()) {
        // The run sees the cancellation when it resumes, and then removes what only it held.
        running->handle->cancel();
        return;
    }
    purge(key);
}

void DownloadStore::startRun(const QString &owner, RunBody body)
{
    // The first load also clears the leftovers of killed transfers; it is done before this run's first one.
    takeLoadedManifest();
    const auto handle = std::make_shared<TaskHandle>();
    const quint64 id = ++m_lastRunId;
    m_tasks.insert(owner, RunningDownload{handle, id});
    Q_EMIT tasksChanged();
    handle->start([store = weak_from_this(), body = std::move(body), owner, id](CancelToken token) {
        return holdAndRun(store, body, Run{owner, id, token});
    });
}

// The run holds the store for as long as it lasts, so that it may finish or clean up after sign-out.
QCoro::Task<> DownloadStore::holdAndRun(std::weak_ptr<DownloadStore> store, RunBody body, Run run)
{
    const std::shared_ptr<DownloadStore> self = store.lock();
    if (!self)
        co_return;
    try {
        co_await body(self.get(), run);
    } catch (...) {
    }
    // A download ends with its records on disk.
    co_await self->m_lastSave;
    self->endRun(run);
}

bool DownloadStore::isCurrent(const Run &run) const
{
    const auto registered = m_tasks.constFind(run.owner);
    return registered != m_tasks.cend() && registered->id == run.id;
}

void DownloadStore::endRun(const Run &run)
{
    if (!isCurrent(run))
        return;
    m_tasks.remove(run.owner);
    Q_EMIT tasksChanged();
}

// A run that removeAll let go of finds nothing of its own left, and may find a newer run of the same collection.
void DownloadStore::abandon(const Run &run)
{
    if (isCurrent(run))
        purge(run.owner);
}

QCoro::Task<> DownloadStore::runAlbumDownload(Album album, Run run)
{
    std::optional<Album> full;
    const SubsonicClient client = m_client;
    try {
        full = co_await client.album(album.id, run.token);
    } catch (...) {
    }
    if (!full) {
        // Whatever the reason, cancellation included, a list that could not be fetched is a failure; nothing
        // was stored by this run, so there is nothing to purge.
        if (isCurrent(run))
            setProgress(run.owner, DownloadProgress{.failed = true});
        co_return;
    }
    const DownloadCollection collection{run.owner, album.name, album.artist};
    co_await downloadSongs(full->song.value_or(QList<Song>()), collection, run);
}

QCoro::Task<> DownloadStore::runPlaylistDownload(QString id, QString name, Run run)
{
    std::optional<PlaylistDetail> playlist;
    const SubsonicClient client = m_client;
    try {
        playlist = co_await client.playlist(id, run.token);
    } catch (...) {
    }
    if (!playlist) {
        if (isCurrent(run))
            setProgress(run.owner, DownloadProgress{.failed = true});
        co_return;
    }
    const DownloadCollection collection{run.owner, name, std::nullopt};
    co_await downloadSongs(playlist->entry.value_or(QList<Song>()), collection, run);
}

QCoro::Task<> DownloadStore::downloadSongs(QList<Song> songs, DownloadCollection collection, Run run)
{
    const QString &owner = run.owner;
    setProgress(owner, DownloadProgress{.total = static_cast<int>(songs.size())});
    for (const Song &song : std::as_const(songs)) {
        // The manifest is on disk before the next transfer starts.
        co_await m_lastSave;
        if (run.token.isCancelled()) {
            abandon(run);
            co_return;
        }
        const auto held = manifest().songs.constFind(song.id);
        const bool onDisk = held != manifest().songs.cend() && QFileInfo::exists(songPath(song.id, held->suffix));
        std::optional<StoredFile> stored;
        if (!onDisk) {
            stored = co_await downloadFile(song, run.token);
            if (!stored) {
                if (run.token.isCancelled()) {
                    abandon(run);
                    co_return;
                }
                // The first failed song ends the run; what is stored keeps its owner for the retry.
                if (const std::optional<DownloadProgress> current = progress(owner)) {
                    DownloadProgress failed = *current;
                    failed.failed = true;
                    setProgress(owner, failed);
                }
                save();
                co_return;
            }
            if (run.token.isCancelled()) {
                // A record means another collection holds the song: the file just written is its file now.
                if (const auto record = manifest().songs.constFind(song.id); record != manifest().songs.cend()) {
                    DownloadManifest next = manifest();
                    keepStoredFile(next.songs[song.id], *stored);
                    setManifest(std::move(next));
                    save();
                } else {
                    QFile::remove(songPath(song.id, stored->suffix));
                }
                abandon(run);
                co_return;
            }
        }

        DownloadManifest next = manifest();
        if (const auto record = next.songs.find(song.id); record != next.songs.end()) {
            record->owners.insert(owner);
            if (stored)
                keepStoredFile(*record, *stored);
        } else {
            const QSet<QString> owners{owner};
            next.songs.insert(song.id, DownloadedSong{song, stored->suffix, stored->bytes, owners});
        }
        setManifest(std::move(next));
        if (const std::optional<DownloadProgress> current = progress(owner)) {
            DownloadProgress advanced = *current;
            ++advanced.completed;
            setProgress(owner, advanced);
        }
        save();
    }

    DownloadManifest next = manifest();
    next.collections.insert(owner, collection);
    setManifest(std::move(next));
    save();
    setProgress(owner, std::nullopt);
    // Still a running download for removeDownload, which now only stops the covers.
    co_await downloadArtwork(songs, run.token);
}

namespace {
// A record's size is the original file's, and a server may send a song transcoded, smaller: only a body far
// below it (an error page, a cut-off transfer) is refused. The transfer's ceiling is twice the size; without
// one, nothing longer than hours of lossless audio is a song, so an answer that never ends cannot fill the disk.
constexpr qint64 unknownSizeCeiling = 2LL * 1024 * 1024 * 1024;

bool statesUsableSize(const Song &song)
{
    return song.size && *song.size > 0 && *song.size <= unknownSizeCeiling;
}

qint64 ceilingFor(const Song &song)
{
    return statesUsableSize(song) ? 2 * *song.size + 1024 * 1024 : unknownSizeCeiling;
}

bool fitsStatedSize(const Song &song, qint64 received)
{
    return !statesUsableSize(song) || received >= *song.size / 16;
}
}

// The record names the file just written, wherever an older one of the song had gone.
void DownloadStore::keepStoredFile(DownloadedSong &record, const StoredFile &stored)
{
    if (record.suffix != stored.suffix)
        QFile::remove(songPath(record.song.id, record.suffix));
    record.suffix = stored.suffix;
    record.bytes = stored.bytes;
}

QCoro::Task<std::optional<DownloadStore::StoredFile>> DownloadStore::downloadFile(Song song, CancelToken token)
{
    QDir().mkpath(m_directory);
    const SubsonicClient client = m_client;
    const std::optional<QString> received =
        co_await fetchToFile(m_network, client.downloadURL(song.id), m_directory, ceilingFor(song), token);
    if (!received)
        co_return std::nullopt;
    const qint64 bytes = QFileInfo(*received).size();
    if (!fitsStatedSize(song, bytes)) {
        QFile::remove(*received);
        co_return std::nullopt;
    }
    const QString suffix = DownloadLayout::storedSuffix(song.suffix);
    const QString destination = songPath(song.id, suffix);
    QFile::remove(destination);
    if (!QFile::rename(*received, destination)) {
        QFile::remove(*received);
        co_return std::nullopt;
    }
    co_return StoredFile{suffix, bytes};
}
