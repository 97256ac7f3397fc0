#include "artworksource.h"

#include "artworkimageprovider.h"
#include "artworksize.h"
#include "collectioncovers.h"

void ArtworkSource::setCoverArt(const QString &coverArt)
{
    if (coverArt == m_coverArt)
        return;
    m_coverArt = coverArt;
    Q_EMIT changed();
}

void ArtworkSource::setRequestSize(qreal size)
{
    if (ArtworkSize::pixelSize(size) == ArtworkSize::pixelSize(m_requestSize)) {
        m_requestSize = size;
        return;
    }
    m_requestSize = size;
    Q_EMIT changed();
}

QUrl ArtworkSource::source() const
{
    if (m_coverArt.isEmpty() || m_requestSize <= 0)
        return {};
    return QUrl(ArtworkImageProvider::source(m_coverArt, ArtworkSize::pixelSize(m_requestSize)));
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
