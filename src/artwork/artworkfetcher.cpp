#include "artworkfetcher.h"

#include "artworkstore.h"
#include "offline/filetransfer.h"
#include "offline/offlinefilename.h"
#include "pendingimage.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QCoroNetworkReply>
#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStandardPaths>
#include <QThread>
#include <QtConcurrent>

using namespace Qt::StringLiterals;

namespace {
// Same as the API's: a server that accepts and then goes silent cannot hold a cover's fetch for ever.
constexpr int transferTimeoutMs = 60'000;
}

ArtworkFetcher::ArtworkFetcher(QString directory, ImageMemoryCache *memory, QObject *parent)
    : QObject(parent)
    , m_directory(std::move(directory))
    , m_memory(memory)
    , m_network(new QNetworkAccessManager(this))
{
    // The disk cache of this class is the only one: no HTTP cache keeps a second copy of each cover.
    m_network->setCache(nullptr);
    m_network->setTransferTimeout(transferTimeoutMs);
    QDir().mkpath(m_directory);
    m_trim = QtConcurrent::run(&ArtworkFetcher::trimDiskCache, m_directory, diskCacheLimit);
}

ArtworkFetcher::~ArtworkFetcher()
{
    const QHash<QString, InFlight> inFlight = std::exchange(m_inFlight, {});
    for (const InFlight &fetch : inFlight)
        fetch.token.cancel();
    // An aborted reply resumes its fetch through a queued call addressed to the reply, which would be lost if
    // the reply died with this object. The manager and its replies therefore outlive it by one turn of the
    // event loop; the fetches see their cancelled tokens, end their waits, and touch nothing of this object.
    m_network->setParent(nullptr);
    m_network->deleteLater();
}

ArtworkFetcher &ArtworkFetcher::shared()
{
    Q_ASSERT(QThread::currentThread() == QCoreApplication::instance()->thread());
    static ArtworkFetcher *fetcher = new ArtworkFetcher(standardDirectory(), &ArtworkStore::memory(),
                                                        QCoreApplication::instance());
    return *fetcher;
}

QString ArtworkFetcher::standardDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/Velto/Artwork"_L1;
}

QString ArtworkFetcher::key(const QString &id, int pixelSize)
{
    return id + u'#' + QString::number(pixelSize);
}

void ArtworkFetcher::setOfflineDirectory(std::optional<QString> directory)
{
    m_offlineDirectory = std::move(directory);
}

QCoro::Task<std::optional<QImage>> ArtworkFetcher::image(QString id, int pixelSize, QUrl url)
{
    const QString cacheKey = key(id, pixelSize);
    if (std::optional<QImage> remembered = m_memory->image(cacheKey))
        co_return remembered;

    std::shared_ptr<PendingImage> pending;
    if (const auto running = m_inFlight.constFind(cacheKey); running != m_inFlight.cend()) {
        pending = running->pending;
    } else {
        Job job;
        job.key = cacheKey;
        job.id = id;
        job.pixelSize = pixelSize;
        job.url = url;
        job.directory = m_directory;
        if (m_offlineDirectory)
            job.offlineFile = *m_offlineDirectory + u'/' + offlineFileName(id);
        pending = std::make_shared<PendingImage>();
        const CancelToken token = CancelToken::create();
        m_inFlight.insert(cacheKey, InFlight{pending, token});
        run(pending, std::move(job), token);
    }
    // Only the pending result is read after this point: this object may be gone by then.
    co_return co_await waitFor(pending);
}

QCoro::Task<> ArtworkFetcher::run(std::shared_ptr<PendingImage> pending, Job job, CancelToken token)
{
    std::optional<QImage> image = co_await QtConcurrent::run(&ArtworkFetcher::readFromDisk, job);
    if (!image && !token.isCancelled())
        image = co_await fetch(job, token);
    if (!token.isCancelled()) {
        m_inFlight.remove(job.key);
        if (image)
            m_memory->insert(job.key, *image);
    }
    pending->finish(std::move(image));
}

QCoro::Task<std::optional<QImage>> ArtworkFetcher::fetch(Job job, CancelToken token)
{
    if (!job.url.isValid())
        co_return std::nullopt;
    const std::optional<QByteArray> bytes = co_await fetchToMemory(m_network, job.url, maxCoverBytes, token);
    if (token.isCancelled() || !bytes)
        co_return std::nullopt;
    co_return co_await QtConcurrent::run(&ArtworkFetcher::keepFetched, job, *bytes);
}
