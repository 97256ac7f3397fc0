#include "artworkimageprovider.h"

#include "artworkfetcher.h"
#include "imagememorycache.h"

#include <QPainter>
#include <QPainterPath>
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

// Corners are cut here, on the engine's loader thread, once per size and radius: the scene graph of Qt 6.4 has no
// cheap way to clip an image to a rounded rectangle.
QImage rounded(const QImage &image, int radius)
{
    if (radius <= 0 || image.isNull())
        return image;
    QImage cut(image.size(), QImage::Format_ARGB32_Premultiplied);
    cut.fill(Qt::transparent);
    QPainter painter(&cut);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(cut.rect()), radius, radius);
    painter.setClipPath(path);
    painter.drawImage(0, 0, image);
    return cut;
}

// A backdrop: the cover shrunk to a few pixels and grown back, which blurs it as strongly as a wide blur
// radius would, once per cover and on the loader thread instead of in a shader at every frame.
QImage blurred(const QImage &image)
{
    if (image.isNull())
        return image;
    constexpr int few = 12;
    constexpr int side = 192;
    const QImage small = image.scaled(few * 4, few * 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .scaled(few, few, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return small.scaled(side / 2, side / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

class ArtworkImageResponse : public QQuickImageResponse
{
public:
    explicit ArtworkImageResponse(int cornerRadius = 0, bool isBackdrop = false)
        : m_link(std::make_shared<ResponseLink>())
        , m_cornerRadius(cornerRadius)
        , m_isBackdrop(isBackdrop)
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
        m_image = m_isBackdrop ? blurred(image) : rounded(image, m_cornerRadius);
        Q_EMIT finished();
    }

    std::shared_ptr<ResponseLink> m_link;
    int m_cornerRadius;
    bool m_isBackdrop;
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
    int cornerRadius = 0;
    bool isBackdrop = false;
};

// "<pixel size>/<id>", "<pixel size>r<corner radius>/<id>" for a cover with rounded corners, or
// "<pixel size>b/<id>" for the blurred backdrop drawn from the cover at that size.
std::optional<CoverRequest> parse(const QString &id)
{
    const qsizetype slash = id.indexOf(u'/');
    if (slash <= 0)
        return std::nullopt;
    if (id.at(slash - 1) == u'b') {
        std::optional<CoverRequest> plain = parse(id.first(slash - 1) + id.sliced(slash));
        if (plain && plain->cornerRadius == 0)
            plain->isBackdrop = true;
        return plain && plain->isBackdrop ? plain : std::nullopt;
    }
    const QStringList size = id.first(slash).split(u'r');
    bool isNumber = false;
    bool isRadius = true;
    const int pixelSize = size[0].toInt(&isNumber);
    const int cornerRadius = size.size() == 2 ? size[1].toInt(&isRadius) : 0;
    const QString coverArt = QUrl::fromPercentEncoding(id.sliced(slash + 1).toUtf8());
    if (!isNumber || !isRadius || size.size() > 2 || pixelSize <= 0 || cornerRadius < 0 || coverArt.isEmpty())
        return std::nullopt;
    return CoverRequest{coverArt, pixelSize, std::min(cornerRadius, pixelSize / 2)};
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
    const std::optional<CoverRequest> request = parse(id);
    auto *response = new ArtworkImageResponse(request ? request->cornerRadius : 0, request && request->isBackdrop);
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

QString ArtworkImageProvider::backdropSource(const QString &coverArt, int pixelSize)
{
    return "image://"_L1 + providerId + u'/' + QString::number(pixelSize) + u"b/"_s
        + QString::fromLatin1(QUrl::toPercentEncoding(coverArt));
}

QString ArtworkImageProvider::source(const QString &coverArt, int pixelSize, int cornerRadius)
{
    const QString radius = cornerRadius > 0 ? u'r' + QString::number(cornerRadius) : QString();
    return "image://"_L1 + providerId + u'/' + QString::number(pixelSize) + radius + u'/'
        + QString::fromLatin1(QUrl::toPercentEncoding(coverArt));
}
