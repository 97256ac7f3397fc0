#pragma once

// Decoded images by key, bounded by their bytes: when an insert goes over the limit, the least recently used
// entries go. Safe to use from any thread.

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QString>

#include <optional>

class ImageMemoryCache
{
public:
    explicit ImageMemoryCache(qsizetype maxBytes);

    [[nodiscard]] std::optional<QImage> image(const QString &key) const;
    // An image bigger than the whole limit is not kept.
    void insert(const QString &key, const QImage &image);

    [[nodiscard]] qsizetype totalBytes() const;
    [[nodiscard]] qsizetype maxBytes() const;
    [[nodiscard]] static qsizetype cost(const QImage &image);

private:
    mutable QMutex m_mutex;
    // Looking up reorders the recency list, so even reads take the lock and the cache is mutable.
    mutable QCache<QString, QImage> m_images;
};
