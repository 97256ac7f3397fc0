#pragma once

// Every cover in the application passes through here. A cover-art id at a pixel size is looked for in memory,
// in the disk cache (the exact size, then larger ones), in the offline cover folder, and last on the server;
// callers asking for the same key while a fetch runs share it. Lives on the main thread, where its network
// requests run; reading, decoding and writing files run on the thread pool.

#include "common/task.h"

#include <QCoroTask>
#include <QFuture>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

class ImageMemoryCache;
class PendingImage;
class QNetworkAccessManager;

class ArtworkFetcher : public QObject
{
    Q_OBJECT

public:
    // `directory` is the disk cache, created when missing and trimmed in the background at once.
    ArtworkFetcher(QString directory, ImageMemoryCache *memory, QObject *parent = nullptr);
    ~ArtworkFetcher() override;

    // The process-wide fetcher over the standard cache folder and ArtworkStore's memory; made on first use,
    // which must be on the main thread.
    [[nodiscard]] static ArtworkFetcher &shared();
    // "Velto/Artwork" in the user's cache folder.
    [[nodiscard]] static QString standardDirectory();

    // `url` is the server's cover URL for this id and size. Never throws: every failure is an empty result,
    // and empty results are not remembered, so the next call tries again. A caller that stops waiting leaves
    // the fetch to finish and fill the caches.
    QCoro::Task<std::optional<QImage>> image(QString id, int pixelSize, QUrl url);

    // The "artwork" folder of the signed-in account's downloads, if any.
    void setOfflineDirectory(std::optional<QString> directory);
    [[nodiscard]] const std::optional<QString> &offlineDirectory() const { return m_offlineDirectory; }
    [[nodiscard]] const QString &directory() const { return m_directory; }
    // The trim started by the constructor.
    [[nodiscard]] QFuture<void> startupTrim() const { return m_trim; }

    // The name of a cover at a size in memory, in flight and (hashed) on disk.
    [[nodiscard]] static QString key(const QString &id, int pixelSize);
    // Scaled so that the longer side is at most `maxPixelSize` (never enlarged), orientation applied, fully
    // decoded. Empty for anything that is not an image, such as a server's error page.
    [[nodiscard]] static std::optional<QImage> decode(const QByteArray &data, int maxPixelSize);
    // A file on disk holding the cover at `pixelSize` or larger, for programs that take a path (the media
    // controls). Blocks on a few file checks; touches nothing.
    [[nodiscard]] std::optional<QString> fileFor(const QString &id, int pixelSize) const;
    // Deletes the least recently used files until the folder holds at most `limit` bytes.
    static void trimDiskCache(const QString &directory, qint64 limit);

    static constexpr qint64 diskCacheLimit = 512LL * 1024 * 1024;
    // A cover bigger than this is not a cover; the transfer is stopped.
    static constexpr qint64 maxCoverBytes = 32LL * 1024 * 1024;

private:
    // What the work of one key needs, copied so that it can run off the main thread.
    struct Job {
        QString key;
        QString id;
        int pixelSize = 0;
        QUrl url;
        QString directory;
        std::optional<QString> offlineFile;
    };
    struct InFlight {
        std::shared_ptr<PendingImage> pending;
        CancelToken token;
    };

    QCoro::Task<> run(std::shared_ptr<PendingImage> pending, Job job, CancelToken token);
    QCoro::Task<std::optional<QImage>> fetch(Job job, CancelToken token);
    static std::optional<QImage> readFromDisk(const Job &job);
    static std::optional<QImage> keepFetched(const Job &job, const QByteArray &bytes);

    QString m_directory;
    ImageMemoryCache *m_memory;
    std::optional<QString> m_offlineDirectory;
    QNetworkAccessManager *m_network;
    QFuture<void> m_trim;
    // Last, so that its fetches are cancelled before anything they read goes.
    QHash<QString, InFlight> m_inFlight;
};
