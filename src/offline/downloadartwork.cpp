// Covers of stored songs: one large file per cover-art id in the account's "artwork" folder, which the artwork
// cache reads when the server is away. A cover that fails leaves no trace and is tried again at the next start.

#include "downloadstore.h"

#include "artwork/artworkfetcher.h"
#include "common/atomicwrite.h"
#include "filetransfer.h"

#include <QCoroFuture>
#include <QDir>
#include <QtConcurrent>
#include <QFileInfo>

#include <algorithm>

namespace {
bool decodesAsImage(const QByteArray &bytes)
{
    return ArtworkFetcher::decode(bytes, 64).has_value();
}

bool usesCover(const DownloadManifest &manifest, const QString &coverArt)
{
    return std::any_of(manifest.songs.cbegin(), manifest.songs.cend(),
                       [&coverArt](const DownloadedSong &stored) { return stored.song.coverArt == coverArt; });
}
}

// Takes the first load of the manifest when nobody has asked for it yet, then fills in the covers that were
// missed before, for every stored song.
QCoro::Task<> DownloadStore::finishLoading(std::weak_ptr<DownloadStore> store, QFuture<DownloadManifest> loading,
                                          CancelToken token)
{
    co_await loading;
    const std::shared_ptr<DownloadStore> self = store.lock();
    if (!self || token.isCancelled())
        co_return;
    if (!self->m_loaded) {
        self->takeLoadedManifest();
        if (self->m_manifest != DownloadManifest{})
            Q_EMIT self->manifestChanged();
    }
    QList<Song> songs;
    songs.reserve(self->m_manifest.songs.size());
    for (const DownloadedSong &stored : std::as_const(self->m_manifest.songs))
        songs.append(stored.song);
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
        if (token.isCancelled() || !bytes)
            continue;
        // Since a file that exists is never fetched again, only a cover that decodes is kept. (A named future:
        // GCC 12 destroys the temporaries of a co_await expression twice.)
        QFuture<bool> decoding = QtConcurrent::run(&decodesAsImage, *bytes);
        const bool decodes = co_await decoding;
        if (token.isCancelled())
            co_return;
        // The sweep is not stopped by a removal: a cover whose last song went meanwhile is not kept.
        if (decodes && usesCover(manifest(), *song.coverArt))
            writeAtomically(path, *bytes);
    }
}

void DownloadStore::pruneArtwork()
{
    QSet<QString> kept;
    for (const DownloadedSong &stored : std::as_const(manifest().songs)) {
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
