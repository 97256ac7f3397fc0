// The fetcher's work with files and bytes. Everything here runs on the thread pool and reads nothing of the
// fetcher itself, only the values it was handed.

#include "artworkfetcher.h"
#include "artworksize.h"
#include "common/atomicwrite.h"
#include "offline/offlinefilename.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace {
// Formats told apart by their first bytes. Other readers Qt has would accept things that are no cover: an XML
// error page passes for SVG, and a few bytes of zeros can pass for WBMP.
bool isCoverFormat(const QByteArray &format)
{
    static const QList<QByteArray> formats{"jpeg", "png", "gif", "webp", "bmp", "tiff", "avif", "heif", "jp2"};
    return formats.contains(format);
}

enum class LastUse { Touch, Keep };

std::optional<QImage> readCover(const QString &path, int pixelSize, LastUse lastUse)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    std::optional<QImage> image = ArtworkFetcher::decode(file.readAll(), pixelSize);
    // The modification date is the disk cache's only record of use; a failure to set it is dropped.
    if (image && lastUse == LastUse::Touch)
        file.setFileTime(QDateTime::currentDateTimeUtc(), QFileDevice::FileModificationTime);
    return image;
}

QString cachePath(const QString &directory, const QString &key)
{
    return directory + u'/' + offlineFileName(key);
}
}

std::optional<QImage> ArtworkFetcher::decode(const QByteArray &data, int maxPixelSize)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    if (!isCoverFormat(format))
        return std::nullopt;
    QImageReader reader(&buffer, format);
    reader.setAutoTransform(true);
    // Both the size and the scaled size are in the orientation after the transform.
    const QSize size = reader.size();
    if (size.isValid() && std::max(size.width(), size.height()) > maxPixelSize)
        reader.setScaledSize(size.scaled(maxPixelSize, maxPixelSize, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    // Converted here so that drawing never converts on the render thread.
    const QImage::Format drawable = image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (image.format() != drawable)
        image.convertTo(drawable);
    return image;
}

std::optional<QImage> ArtworkFetcher::readFromDisk(const Job &job)
{
    if (std::optional<QImage> exact = readCover(cachePath(job.directory, job.key), job.pixelSize, LastUse::Touch))
        return exact;
    // A larger file serves a smaller request, decoded at the smaller size, and no file is added for it.
    for (int bucket : ArtworkSize::buckets) {
        if (bucket <= job.pixelSize)
            continue;
        const QString path = cachePath(job.directory, key(job.id, bucket));
        if (std::optional<QImage> larger = readCover(path, job.pixelSize, LastUse::Touch))
            return larger;
    }
    // Offline covers follow the downloads, not the cache: never touched, never copied.
    if (job.offlineFile)
        return readCover(*job.offlineFile, job.pixelSize, LastUse::Keep);
    return std::nullopt;
}

std::optional<QString> ArtworkFetcher::fileFor(const QString &id, int pixelSize) const
{
    for (int bucket : ArtworkSize::buckets) {
        const QString path = cachePath(m_directory, key(id, bucket));
        if (bucket >= pixelSize && QFileInfo::exists(path))
            return path;
    }
    if (m_offlineDirectory) {
        const QString path = *m_offlineDirectory + u'/' + offlineFileName(id);
        if (QFileInfo::exists(path))
            return path;
    }
    return std::nullopt;
}

std::optional<QImage> ArtworkFetcher::keepFetched(const Job &job, const QByteArray &bytes)
{
    std::optional<QImage> image = decode(bytes, job.pixelSize);
    if (!image)
        return std::nullopt;
    // The bytes as received, whatever their format; a failed write only costs a fetch next time.
    writeAtomically(cachePath(job.directory, job.key), bytes);
    return image;
}

void ArtworkFetcher::trimDiskCache(const QString &directory, qint64 limit)
{
    struct Entry {
        QString path;
        qint64 size = 0;
        QDateTime modified;
    };
    const QFileInfoList infos = QDir(directory).entryInfoList(QDir::Files | QDir::Hidden, QDir::Unsorted);
    QList<Entry> entries;
    entries.reserve(infos.size());
    qint64 total = 0;
    for (const QFileInfo &info : infos) {
        entries.append({info.filePath(), info.size(), info.lastModified()});
        total += info.size();
    }
    if (total <= limit)
        return;
    // A missing date sorts as the distant past, since an invalid QDateTime is less than any valid one.
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry &a, const Entry &b) { return a.modified < b.modified; });
    for (const Entry &entry : std::as_const(entries)) {
        QFile::remove(entry.path);
        total -= entry.size;
        if (total <= limit)
            break;
    }
}
