#include "imagememorycache.h"

ImageMemoryCache::ImageMemoryCache(qsizetype maxBytes)
    : m_images(maxBytes)
{
}

std::optional<QImage> ImageMemoryCache::image(const QString &key) const
{
    QMutexLocker lock(&m_mutex);
    if (const QImage *found = m_images.object(key))
        return *found;
    return std::nullopt;
}

void ImageMemoryCache::insert(const QString &key, const QImage &image)
{
    QMutexLocker lock(&m_mutex);
    m_images.insert(key, new QImage(image), cost(image));
}

qsizetype ImageMemoryCache::totalBytes() const
{
    QMutexLocker lock(&m_mutex);
    return m_images.totalCost();
}

qsizetype ImageMemoryCache::maxBytes() const
{
    QMutexLocker lock(&m_mutex);
    return m_images.maxCost();
}

qsizetype ImageMemoryCache::cost(const QImage &image)
{
    return image.bytesPerLine() * image.height();
}
