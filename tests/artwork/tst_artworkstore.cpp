#include "artwork/artworksize.h"
#include "artwork/artworkstore.h"
#include "artwork/collectioncovers.h"
#include "artwork/imagememorycache.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QImage square(int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::red);
    return image;
}

Song song(const QString &id, std::optional<QString> albumId, std::optional<QString> coverArt)
{
    Song s;
    s.id = id;
    s.title = id;
    s.albumId = std::move(albumId);
    s.coverArt = std::move(coverArt);
    return s;
}
}

class ArtworkStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryIsBoundedByImageBytes()
    {
        QCOMPARE(ArtworkStore::memory().maxBytes(), 256 * 1024 * 1024);
        QCOMPARE(&ArtworkStore::memory(), &ArtworkStore::memory());

        const qsizetype cost = ImageMemoryCache::cost(square(64));
        QCOMPARE(cost, 64 * 64 * 4);
        ImageMemoryCache cache(2 * cost);
        cache.insert(u"a#64"_s, square(64));
        cache.insert(u"b#64"_s, square(64));
        QCOMPARE(cache.totalBytes(), 2 * cost);
        // Reading "a" makes "b" the least recently used, so the third image pushes "b" out.
        QVERIFY(cache.image(u"a#64"_s));
        cache.insert(u"c#64"_s, square(64));
        QVERIFY(cache.image(u"a#64"_s));
        QCOMPARE(cache.image(u"b#64"_s), std::nullopt);
        QVERIFY(cache.image(u"c#64"_s));
        QCOMPARE(cache.totalBytes(), 2 * cost);

        cache.insert(u"huge#1024"_s, square(128));
        QCOMPARE(cache.image(u"huge#1024"_s), std::nullopt);
        QCOMPARE(cache.image(u"a#64"_s)->size(), QSize(64, 64));
    }

    void viewSizesRoundUpToBuckets()
    {
        QCOMPARE(ArtworkSize::pixelSize(44), 128);
        QCOMPARE(ArtworkSize::pixelSize(600), 1024);
        QCOMPARE(ArtworkSize::pixelSize(32), 64);
        QCOMPARE(ArtworkSize::pixelSize(32.4), 64);
        QCOMPARE(ArtworkSize::pixelSize(32.6), 128); // 65.2 pixels, truncated to 65
        QCOMPARE(ArtworkSize::pixelSize(256), 512);
        QCOMPARE(ArtworkSize::pixelSize(512), 1024);
        QCOMPARE(ArtworkSize::pixelSize(5000), 1024);
        QCOMPARE(ArtworkSize::pixelSize(0), 64);
        // A screen denser than two pixels a point asks for more; a lower one never for less.
        QCOMPARE(ArtworkSize::pixelSize(44, 3.0), 256);
        QCOMPARE(ArtworkSize::pixelSize(44, 1.0), 128);
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
};

QTEST_MAIN(ArtworkStoreTest)
#include "tst_artworkstore.moc"
