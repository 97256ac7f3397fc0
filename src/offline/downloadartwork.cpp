// Covers of stored songs: one large file per cover-art id in the account's "artwork" folder, which the artwork
// cache reads when the server is away. A cover that fails leaves no trace and is tried again at the next start.

#include "downloadstore.h"

#include "artwork/artworkfetcher.h"
#include "common/atomicwrite.h"
#include "filetransfer.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {
bool usesCover(const DownloadManifest &manifest, const QString &coverArt)
{
    return std::any_of(manifest.songs.cbegin(), manifest.songs.cend(),
                       [&coverArt](const DownloadedSong &stored) { return stored.song.coverArt == coverArt; });
}
}

// Fills in covers that were missed before, for every stored song.
void DownloadStore::startArtworkSweep()
{
    QList<Song> songs;
    songs.reserve(m_manifest.songs.size());
    for (const DownloadedSong &stored : std::as_const(m_manifest.songs))
        songs.append(stored.song);
    m_artworkTask.start([store = weak_from_this(), songs](CancelToken token) {
        return sweepArtwork(store, songs, token);
    });
}

QCoro::Task<> DownloadStore::sweepArtwork(std::weak_ptr<DownloadStore> store, QList<Song> songs, CancelToken token)
{
    const std::shared_ptr<DownloadStore> self = store.lock();
    if (self)
        co_await self->downloadArtwork(std::move(songs), token);
}

QCoro::Task<> DownloadStore::downloadArtwork(QList<Song> songs, CancelToken token)
{
    const QString folder = artworkDirectory();
    QDir().mkpath(folder);
    QSet<QString> seen;
    for (const Song &song : std::as_const(songs)) {
        if (token.isCancelled())
            co_return;
        if (!song.coverArt || seen.contains(*song.coverArt))
            continue;
        seen.insert(*song.coverArt);
        const QString path = folder + u'/' + DownloadLayout::coverFileName(*song.coverArt);
        if (QFileInfo::exists(path))
            continue;
        const QUrl url = m_client.coverArtURL(*song.coverArt, coverPixelSize);
        const std::optional<QByteArray> bytes =
            co_await fetchToMemory(m_network, url, ArtworkFetcher::maxCoverBytes, token);
        if (token.isCancelled())
            co_return;
        // The sweep is not stopped by a removal: a cover whose last song went meanwhile is not kept.
        if (bytes && usesCover(m_manifest, *song.coverArt))
            writeAtomically(path, *bytes);
    }
}

void DownloadStore::pruneArtwork()
{
    QSet<QString> kept;
    for (const DownloadedSong &stored : std::as_const(m_manifest.songs)) {
        if (stored.song.coverArt)
            kept.insert(DownloadLayout::coverFileName(*stored.song.coverArt));
    }
    const QDir folder(artworkDirectory());
    if (!folder.exists())
        return;
    const QFileInfoList entries =
        folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (!kept.contains(entry.fileName()))
            removeEntry(entry);
    }
}
