#include "artwork/artworksize.h"
#include "artwork/artworksource.h"
#include "artwork/artworkstore.h"
#include "artwork/collectioncovers.h"
#include "artwork/imagememorycache.h"
#include "artwork/paletteextractor.h"

#include <QPainter>
#include <QSignalSpy>
#include <QTest>

using namespace PaletteExtractor;
using namespace Qt::StringLiterals;

namespace {
constexpr double tolerance = 1e-3; // QColor keeps 16 bits a channel

QImage filled(int side, const QColor &color)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QImage square(int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    return image;
}

Song song(const QString &id, std::optional<QString> albumId, std::optional<QString> coverArt)
{
    return Song{.id = id, .title = id, .albumId = std::move(albumId), .coverArt = std::move(coverArt)};
}

RGB rgb(const QColor &c)
{
    return {c.redF(), c.greenF(), c.blueF()};
}

bool near(double a, double b)
{
    return std::abs(a - b) < tolerance;
}

// Checks a colour's hue, saturation and brightness by the extractor's own conversion.
void verifyHSB(const QColor &color, double h, double s, double v)
{
    const HSB actual = hsb(rgb(color));
    QVERIFY2(near(actual.h, h) && near(actual.s, s) && near(actual.v, v),
             qPrintable(u"got h %1 s %2 v %3"_s.arg(actual.h).arg(actual.s).arg(actual.v)));
}

const QColor black = QColor::fromRgbF(0, 0, 0);
}

// Memory cache, cover sizes and mosaics, and colour palettes taken from covers.
class ArtworkStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The least recently used image goes first; an image larger than the whole cache is not kept.
    void memoryIsBoundedByImageBytes()
    {
        const qsizetype cost = ImageMemoryCache::cost(square(64));
        QCOMPARE(cost, 64 * 64 * 4);
        ImageMemoryCache cache(2 * cost);
        cache.insert(u"a#64"_s, square(64));
        cache.insert(u"b#64"_s, square(64));
        QVERIFY(cache.image(u"a#64"_s));
        cache.insert(u"c#64"_s, square(64));
        QCOMPARE(cache.image(u"b#64"_s), std::nullopt);
        QVERIFY(cache.image(u"a#64"_s) && cache.image(u"c#64"_s));
        QCOMPARE(cache.totalBytes(), 2 * cost);
        cache.insert(u"huge#1024"_s, square(128));
        QCOMPARE(cache.image(u"huge#1024"_s), std::nullopt);
        QVERIFY(cache.image(u"a#64"_s));
    }

    void viewSizesRoundUpToBuckets()
    {
        const QList<std::tuple<double, double, int>> cases{
            {44, 2, 128}, {32, 2, 64}, {32.4, 2, 64}, {32.6, 2, 128}, {256, 2, 512}, {5000, 2, 1024}, {0, 2, 64},
            // A screen denser than two pixels a point asks for more; a lower one never for less.
            {44, 3, 256}, {44, 1, 128}};
        for (const auto &[points, density, pixels] : cases)
            QCOMPARE(ArtworkSize::pixelSize(points, density), pixels);

        // A small view given its cover before its size asks for the image once it has a size.
        ArtworkSource source;
        source.setCoverArt(u"c1"_s);
        QCOMPARE(source.source(), QUrl());
        QSignalSpy changed(&source, &ArtworkSource::changed);
        source.setRequestSize(32);
        QCOMPARE(changed.count(), 1);
        QVERIFY(!source.source().isEmpty());
        source.setRequestSize(30); // the same image
        QCOMPARE(changed.count(), 1);
    }

    void collectionsShowOneCoverPerAlbum()
    {
        QList<Song> threeAlbums;
        for (int i = 0; i < 10; ++i) {
            const QString album = u"al-%1"_s.arg(i % 3);
            threeAlbums.append(song(u"s%1"_s.arg(i), album, u"cover-"_s + album));
        }
        QCOMPARE(albumCovers(threeAlbums), (QStringList{u"cover-al-0"_s, u"cover-al-1"_s, u"cover-al-2"_s}));

        QList<Song> mixed{song(u"x"_s, u"A"_s, std::nullopt), song(u"y"_s, u"A"_s, u"cA"_s),
                          song(u"z"_s, std::nullopt, u"cz"_s), song(u"w"_s, std::nullopt, u"cw"_s),
                          song(u"v"_s, u"A"_s, u"cA2"_s)};
        // A song without an album id is an album of its own; one without a cover adds nothing.
        QCOMPARE(albumCovers(mixed), (QStringList{u"cA"_s, u"cz"_s, u"cw"_s}));
        mixed.append(song(u"u"_s, u"B"_s, u"cB"_s));
        QCOMPARE(albumCovers(mixed).size(), mosaicCoverCount);
        QCOMPARE(albumCovers({}), QStringList());
    }

    void transparentCoversHaveNoPaletteAndHalfTransparentPixelsDarkenOnlyTheMean()
    {
        QCOMPARE(extract(filled(64, Qt::transparent)), std::nullopt);
        QCOMPARE(extract(QImage()), std::nullopt);
        // Alpha must be above one half: 127 of 255 is not, 128 is; premultiplied values are used as they stand.
        QCOMPARE(extract(filled(64, QColor(255, 0, 0, 127))), std::nullopt);
        QCOMPARE(extract(filled(64, QColor(255, 0, 0, 128)))->accent.rgb(), qRgb(128, 0, 0));

        QImage cover = filled(64, Qt::transparent);
        QPainter(&cover).fillRect(0, 0, 32, 64, QColor(0, 200, 0));
        const std::optional<AlbumPalette> palette = extract(cover);
        QCOMPARE(palette->accent.rgb(), qRgb(0, 200, 0));
        QVERIFY(near(palette->backdropMean.g, 100 / 255.0));
        QCOMPARE(palette->backdropMean.r, 0.0);
    }

    void pureRedAndNavy()
    {
        const std::optional<AlbumPalette> red = extract(filled(64, Qt::red));
        QCOMPARE(red->accent, QColor::fromRgbF(1, 0, 0));
        QCOMPARE(red->backdropMean, (RGB{1, 0, 0}));
        verifyHSB(red->fill, 0, 1, 0.95);
        QCOMPARE(red->label, black); // red at 0.95 reads better with black (4.78) than white (4.39)
        // Saturation drops to 0.7 and brightness is already 1, so the loop cannot reach 7 and leaves it there.
        QCOMPARE(red->tint, QColor::fromRgbF(1, 0.3f, 0.3f));

        // Navy cannot reach 7:1 at this saturation, so it ends at full brightness, its hue kept.
        const HSB tint = hsb(rgb(extract(filled(64, QColor(0, 0, 128)))->tint));
        QVERIFY(near(tint.h, 2.0 / 3) && near(tint.s, 0.7) && near(tint.v, 1.0));
        QCOMPARE(luminance({0.11, 0.11, 0.12}), darkSurfaceLuminance);
    }

    void greyCoversGetReddishButtonsOnPurpose()
    {
        QImage halves = filled(64, Qt::white);
        QPainter(&halves).fillRect(0, 0, 32, 64, Qt::black);
        for (const QImage &cover : {filled(64, QColor(128, 128, 128)), halves}) {
            const std::optional<AlbumPalette> palette = extract(cover);
            const RGB mean = palette->backdropMean;
            QVERIFY(mean.r == mean.g && mean.g == mean.b);
            verifyHSB(palette->accent, 0, 0, mean.r);
            verifyHSB(palette->fill, 0, 0.55, 0.55);
            const HSB tint = hsb(rgb(palette->tint));
            QVERIFY(near(tint.h, 0) && near(tint.s, 0.35) && tint.v >= 0.8);
            QVERIFY(contrast(luminance(rgb(palette->tint)), darkSurfaceLuminance) >= 7.0 - tolerance);
        }
    }

    void smallVividLogoBeatsWhiteAndDullAreas()
    {
        QImage cover = filled(192, Qt::white);
        QPainter painter(&cover);
        painter.fillRect(0, 96, 192, 96, QColor(150, 120, 100)); // half the cover, dull
        // The logo, aligned to the 4:1 reduction. Its brightest channel stays under 0.97: brighter counts as
        // near-white, which is why even pure red reaches the accent only through the mean.
        painter.fillRect(96, 16, 48, 48, QColor(20, 110, 230));
        painter.end();
        QCOMPARE(extract(cover)->accent.rgb(), qRgb(20, 110, 230));
    }

    void buttonAndTintRulesHoldForEveryColour()
    {
        for (int r = 0; r <= 5; ++r) {
            for (int g = 0; g <= 5; ++g) {
                for (int b = 0; b <= 5; ++b) {
                    const RGB base{r / 5.0, g / 5.0, b / 5.0};
                    const HSB start = hsb(base);
                    const Button button = PaletteExtractor::button(base);
                    const HSB fill = hsb(button.fill);
                    QVERIFY(fill.v >= 0.55 - 1e-9 && fill.v <= 0.95 + 1e-9 && fill.s >= 0.55 - 1e-9);
                    // The contrast loop never moves anything with these clamps.
                    QCOMPARE(button.fill, fromHSB({start.h, std::clamp(start.s, 0.55, 1.0), std::clamp(start.v, 0.55, 0.95)}));
                    const double l = luminance(button.fill);
                    QCOMPARE(button.label, contrast(l, 1) >= contrast(l, 0) ? (RGB{1, 1, 1}) : (RGB{0, 0, 0}));

                    const RGB tint = legibleOnDark(base);
                    const HSB tintHSB = hsb(tint);
                    QVERIFY(tintHSB.v >= 0.8 && tintHSB.s >= 0.35 - 1e-9 && tintHSB.s <= 0.7 + 1e-9);
                    QVERIFY(contrast(luminance(tint), darkSurfaceLuminance) >= 7.0 || tintHSB.v == 1.0);
                }
            }
        }
    }

    void scrimOpacity()
    {
        const auto palette = [](RGB mean) { return AlbumPalette{.backdropMean = mean}; };
        QCOMPARE(palette({0.5, 0.5, 0.5}).scrimOpacity(0.8), 0.38);
        // White never reaches 4.6 before the cap, which is returned as it is.
        QCOMPARE(palette({1, 1, 1}).scrimOpacity(0.8), 0.62);
        QCOMPARE(palette({1, 1, 1}).scrimOpacity(0.5), 0.62);
        // Five steps of 0.01 summed one by one, not 0.43 exactly.
        QVERIFY(palette({0.9, 0.6, 0.3}).scrimOpacity(0.8) == 0.38 + 0.01 + 0.01 + 0.01 + 0.01 + 0.01);
    }

};

QTEST_MAIN(ArtworkStoreTest)
#include "tst_artworkstore.moc"
