#include "coverpalette.h"

#include "artworkfetcher.h"
#include "library/librarystore.h"
#include "paletteextractor.h"

LibraryStore *CoverPalette::library() const
{
    return m_library;
}

void CoverPalette::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    m_library = library;
    Q_EMIT libraryChanged();
    // A cover set before the library could not be read yet.
    if (!m_palette)
        read();
}

void CoverPalette::setCoverArt(const QString &coverArt)
{
    if (m_coverArt == coverArt)
        return;
    m_coverArt = coverArt;
    Q_EMIT coverArtChanged();
    read();
}

void CoverPalette::read()
{
    const QString coverArt = m_coverArt;
    m_reading.cancel();
    if (coverArt.isEmpty()) {
        setPalette(std::nullopt);
        return;
    }
    if (const std::optional<AlbumPalette> known = PaletteExtractor::cached(coverArt)) {
        setPalette(known);
        return;
    }
    setPalette(std::nullopt);
    if (!m_library)
        return;
    const QUrl url = m_library->client().coverArtURL(coverArt, pixelSize);
    m_reading.start([this, coverArt, url](CancelToken token) -> QCoro::Task<> {
        QCoro::Task<std::optional<QImage>> reading = ArtworkFetcher::shared().image(coverArt, pixelSize, url);
        const std::optional<QImage> image = co_await reading;
        if (token.isCancelled() || !image)
            co_return;
        if (const std::optional<AlbumPalette> palette = PaletteExtractor::extract(*image)) {
            PaletteExtractor::store(coverArt, *palette);
            setPalette(palette);
        }
    });
}

void CoverPalette::setPalette(std::optional<AlbumPalette> palette)
{
    if (m_palette == palette)
        return;
    m_palette = std::move(palette);
    Q_EMIT paletteChanged();
}
