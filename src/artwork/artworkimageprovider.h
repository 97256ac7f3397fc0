#pragma once

// How QML shows covers: "image://artwork/<pixel size>/<cover-art id>", the id percent-encoded; "<pixel size>r<radius>"
// asks for rounded corners. A cover in memory
// is answered on the engine's loader thread with no decoding; anything else is handed to the fetcher on the main
// thread, where its network manager lives, and comes back when the fetch ends. A cover that cannot be had
// finishes with no image and no error, so that QML shows its placeholder without a warning in the log.

#include "server/subsonicclient.h"

#include <QMutex>
#include <QQuickAsyncImageProvider>

#include <optional>

class ArtworkFetcher;
class ImageMemoryCache;

class ArtworkImageProvider : public QQuickAsyncImageProvider
{
public:
    // Both must outlive the engine that owns the provider.
    ArtworkImageProvider(ArtworkFetcher *fetcher, ImageMemoryCache *memory);

    // The client whose server answers for covers not cached yet; none while signed out.
    void setClient(std::optional<SubsonicClient> client);

    // Called by the engine on its loader thread.
    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

    // `cornerRadius` in pixels of the image; 0 for square corners.
    [[nodiscard]] static QString source(const QString &coverArt, int pixelSize, int cornerRadius = 0);
    // The cover blurred into a backdrop, made once on the loader thread from the cover at `pixelSize`.
    [[nodiscard]] static QString backdropSource(const QString &coverArt, int pixelSize);
    static constexpr QLatin1StringView providerId{"artwork"};

private:
    [[nodiscard]] QUrl coverURL(const QString &coverArt, int pixelSize) const;

    ArtworkFetcher *m_fetcher;
    ImageMemoryCache *m_memory;
    mutable QMutex m_clientMutex;
    std::optional<SubsonicClient> m_client;
};
