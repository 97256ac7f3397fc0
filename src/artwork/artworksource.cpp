#include "artworksource.h"

#include "artworkimageprovider.h"
#include "artworksize.h"
#include "collectioncovers.h"

#include <cmath>

void ArtworkSource::setCoverArt(const QString &coverArt)
{
    if (coverArt == m_coverArt)
        return;
    m_coverArt = coverArt;
    Q_EMIT changed();
}

void ArtworkSource::setRequestSize(qreal size)
{
    // Sizes of one bucket ask for the same image; but from no size to a small one, the image is asked for at last.
    if ((size > 0) == (m_requestSize > 0) && ArtworkSize::pixelSize(size) == ArtworkSize::pixelSize(m_requestSize)) {
        m_requestSize = size;
        return;
    }
    m_requestSize = size;
    Q_EMIT changed();
}

void ArtworkSource::setCornerRadius(qreal radius)
{
    if (qFuzzyCompare(radius, m_cornerRadius))
        return;
    m_cornerRadius = radius;
    Q_EMIT changed();
}

// The radius scales with the image: a cover drawn at 100 points from 256 pixels has corners of 2.56 times.
QUrl ArtworkSource::source() const
{
    if (m_coverArt.isEmpty() || m_requestSize <= 0)
        return {};
    const int pixels = ArtworkSize::pixelSize(m_requestSize);
    const int radius = int(std::lround(m_cornerRadius * pixels / m_requestSize));
    return QUrl(ArtworkImageProvider::source(m_coverArt, pixels, radius));
}

QUrl ArtworkSource::backdrop() const
{
    // A small cover is enough for an image that is blurred anyway.
    return m_coverArt.isEmpty() ? QUrl() : QUrl(ArtworkImageProvider::backdropSource(m_coverArt, 128));
}

void CoverCollage::setSongCovers(const QStringList &covers)
{
    const QStringList kept = covers.mid(0, mosaicCoverCount);
    if (kept == m_covers)
        return;
    m_covers = kept;
    Q_EMIT changed();
}

bool CoverCollage::isMosaic() const
{
    return m_covers.size() >= mosaicCoverCount;
}
