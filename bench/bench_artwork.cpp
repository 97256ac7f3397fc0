// Figures for covers and downloads: drawing a palette from a cover, decoding a large cover at a small bucket,
// finding a decoded cover in memory, and writing the manifest of a large download folder.

#include "artwork/artworkfetcher.h"
#include "artwork/imagememorycache.h"
#include "artwork/paletteextractor.h"
#include "benchmark.h"
#include "offline/manifestfile.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>

namespace {
// Something like a real cover: a gradient, a few shapes and fine grain, so that JPEG has detail to decode.
QImage cover(int side)
{
    QImage image(side, side, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, side, side);
    gradient.setColorAt(0, QColor(30, 40, 90));
    gradient.setColorAt(1, QColor(200, 120, 60));
    painter.fillRect(image.rect(), gradient);
    painter.setBrush(QColor(220, 40, 60));
    painter.drawEllipse(side / 4, side / 4, side / 3, side / 3);
    painter.end();
    QRandomGenerator random(7);
    for (int y = 0; y < side; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const int grain = int(random.bounded(24)) - 12;
            const QColor c(line[x]);
            line[x] = qRgb(qBound(0, c.red() + grain, 255), qBound(0, c.green() + grain, 255),
                           qBound(0, c.blue() + grain, 255));
        }
    }
    return image;
}

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", 90);
    return bytes;
}

DownloadManifest largeManifest(int songCount)
{
    DownloadManifest manifest;
    for (int i = 0; i < songCount; ++i) {
        const QString album = QStringLiteral("album-%1").arg(i / 12);
        Song song;
        song.id = QStringLiteral("3f1c2a9e-0000-4000-8000-%1").arg(i, 12, 10, QLatin1Char('0'));
        song.title = QStringLiteral("A Song Title Number %1").arg(i);
        song.album = QStringLiteral("Some Album %1").arg(i / 12);
        song.albumId = album;
        song.artist = QStringLiteral("Some Artist %1").arg(i / 40);
        song.artistId = QStringLiteral("artist-%1").arg(i / 40);
        song.track = i % 12 + 1;
        song.discNumber = 1;
        song.year = 1990 + i % 30;
        song.duration = 180 + i % 120;
        song.contentType = QStringLiteral("audio/flac");
        song.suffix = QStringLiteral("flac");
        song.coverArt = album;
        QSet<QString> owners{QStringLiteral("album:") + album};
        if (i % 10 == 0)
            owners.insert(QStringLiteral("playlist:mix-%1").arg(i % 7));
        manifest.songs.insert(song.id, DownloadedSong{song, QStringLiteral("flac"), 30'000'000 + i, owners});
        if (i % 12 == 0) {
            const QString key = QStringLiteral("album:") + album;
            manifest.collections.insert(key, DownloadCollection{key, *song.album, song.artist});
        }
    }
    return manifest;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    // The album screen's header asks for the 1024 bucket, so that is the cover a palette is drawn from.
    const QByteArray coverBytes = jpeg(cover(1024));
    const QImage header = *ArtworkFetcher::decode(coverBytes, 1024);
    constexpr int paletteRuns = 200;
    report("palette_extract_us", medianMs(paletteRuns, [&] { (void)PaletteExtractor::extract(header); }) * 1000, "us");

    report("cover_decode_1024_to_256_ms", medianMs(50, [&] { (void)ArtworkFetcher::decode(coverBytes, 256); }), "ms");

    // A memory as full as a long scroll leaves it: 200 covers at 256.
    ImageMemoryCache memory(256 * 1024 * 1024);
    const QImage thumbnail = *ArtworkFetcher::decode(coverBytes, 256);
    QStringList keys;
    for (int i = 0; i < 200; ++i) {
        keys.append(ArtworkFetcher::key(QStringLiteral("al-%1").arg(i), 256));
        memory.insert(keys.last(), thumbnail);
    }
    constexpr int lookups = 200'000;
    QElapsedTimer timer;
    timer.start();
    qsizetype found = 0;
    for (int i = 0; i < lookups; ++i)
        found += memory.image(keys.at(i % keys.size())).has_value();
    report("artwork_memory_hit_us", timer.nsecsElapsed() / 1e3 / lookups, "us");
    if (found != lookups)
        qFatal("memory lost covers it should hold");

    const DownloadManifest manifest = largeManifest(10'000);
    QTemporaryDir folder;
    report("manifest_save_10k_ms", medianMs(15, [&] { saveManifest(manifest, folder.path()); }), "ms");
    return 0;
}
