#include "artworkimageprovider.h"

#include "artworkfetcher.h"
#include "imagememorycache.h"

#include <QQuickImageResponse>
#include <QQuickTextureFactory>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
class ArtworkImageResponse;

// Lets the main thread hand a result to a response that the engine may delete at any time on its own thread.
struct ResponseLink {
    QMutex mutex;
    ArtworkImageResponse *response = nullptr;
};

class ArtworkImageResponse : public QQuickImageResponse
{
public:
    ArtworkImageResponse()
        : m_link(std::make_shared<ResponseLink>())
    {
        m_link->response = this;
    }

    ~ArtworkImageResponse() override
    {
        QMutexLocker lock(&m_link->mutex);
        m_link->response = nullptr;
    }

    [[nodiscard]] const std::shared_ptr<ResponseLink> &link() const { return m_link; }

    QQuickTextureFactory *textureFactory() const override
    {
        return m_image.isNull() ? nullptr : QQuickTextureFactory::textureFactoryForImage(m_image);
    }

    // Posts the image to the response's own thread; nothing happens if the response is gone by then, since
    // queued calls to a deleted object are dropped.
    static void deliver(const std::shared_ptr<ResponseLink> &link, const QImage &image)
    {
        QMutexLocker lock(&link->mutex);
        if (ArtworkImageResponse *response = link->response) {
            QMetaObject::invokeMethod(
                response, [response, image] { response->finishWith(image); }, Qt::QueuedConnection);
        }
    }

private:
    // A cancelled response is still released only when it finishes, which the fetch always does in the end.
    void finishWith(const QImage &image)
    {
        m_image = image;
        Q_EMIT finished();
    }

    std::shared_ptr<ResponseLink> m_link;
    QImage m_image;
};

// Runs on the main thread and reads nothing of the provider, which the engine may have deleted meanwhile.
QCoro::Task<> fetchAndDeliver(ArtworkFetcher *fetcher, QString coverArt, int pixelSize, QUrl url,
                              std::shared_ptr<ResponseLink> link)
{
    const std::optional<QImage> image = co_await fetcher->image(coverArt, pixelSize, url);
    ArtworkImageResponse::deliver(link, image.value_or(QImage()));
}

struct CoverRequest {
    QString coverArt;
    int pixelSize = 0;
};

std::optional<CoverRequest> parse(const QString &id)
{
    const qsizetype slash = id.indexOf(u'/');
    if (slash <= 0)
        return std::nullopt;
    bool isNumber = false;
    const int pixelSize = id.first(slash).toInt(&isNumber);
    const QString coverArt = QUrl::fromPercentEncoding(id.sliced(slash + 1).toUtf8());
    if (!isNumber || pixelSize <= 0 || coverArt.isEmpty())
        return std::nullopt;
    return CoverRequest{coverArt, pixelSize};
}
}

ArtworkImageProvider::ArtworkImageProvider(ArtworkFetcher *fetcher, ImageMemoryCache *memory)
    : m_fetcher(fetcher)
    , m_memory(memory)
{
}

void ArtworkImageProvider::setClient(std::optional<SubsonicClient> client)
{
    QMutexLocker lock(&m_clientMutex);
    m_client = std::move(client);
}

QUrl ArtworkImageProvider::coverURL(const QString &coverArt, int pixelSize) const
{
    QMutexLocker lock(&m_clientMutex);
    return m_client ? m_client->coverArtURL(coverArt, pixelSize) : QUrl();
}

QQuickImageResponse *ArtworkImageProvider::requestImageResponse(const QString &id, const QSize &)
{
    auto *response = new ArtworkImageResponse;
    const std::optional<CoverRequest> request = parse(id);
    if (!request) {
        ArtworkImageResponse::deliver(response->link(), QImage());
        return response;
    }
    if (std::optional<QImage> remembered = m_memory->image(ArtworkFetcher::key(request->coverArt, request->pixelSize))) {
        ArtworkImageResponse::deliver(response->link(), *remembered);
        return response;
    }
    QMetaObject::invokeMethod(
        m_fetcher,
        [fetcher = m_fetcher, request = *request, url = coverURL(request->coverArt, request->pixelSize),
         link = response->link()] { fetchAndDeliver(fetcher, request.coverArt, request.pixelSize, url, link); },
        Qt::QueuedConnection);
    return response;
}

QString ArtworkImageProvider::source(const QString &coverArt, int pixelSize)
{
    return "image://"_L1 + providerId + u'/' + QString::number(pixelSize) + u'/'
        + QString::fromLatin1(QUrl::toPercentEncoding(coverArt));
}
