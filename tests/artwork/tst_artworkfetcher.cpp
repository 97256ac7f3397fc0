#include "artwork/artworkfetcher.h"
#include "artwork/artworkimageprovider.h"
#include "artwork/imagememorycache.h"
#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "testdata.h"
#include "offline/offlinefilename.h"
#include "server/subsonicclient.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray encoded(const QImage &image, const char *format,
                   QImageIOHandler::Transformations transform = QImageIOHandler::TransformationNone)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setTransformation(transform);
    writer.write(image);
    return bytes;
}

QByteArray jpeg(int side)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    return encoded(image, "jpeg");
}

FakeResponse imageAnswer(const QByteArray &bytes, int delayMs = 0)
{
    return FakeResponse{.status = 200, .contentType = "image/jpeg", .body = bytes, .delayMs = delayMs};
}

// Writes the file when bytes are given, then dates it.
void writeDated(const QString &path, const QByteArray &bytes, const QDateTime &time = {})
{
    QFile file(path);
    QVERIFY(file.open(bytes.isNull() ? QIODevice::ReadWrite : QIODevice::WriteOnly));
    file.write(bytes);
    if (time.isValid())
        QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

QDateTime modified(const QString &path)
{
    return QFileInfo(path).fileTime(QFileDevice::FileModificationTime);
}

const QDateTime longAgo = QDateTime(QDate(2020, 1, 1), QTime(12, 0), Qt::UTC);
constexpr int ready = 1; // values of Image.status
constexpr int loading = 2;
}

class ArtworkFetcherTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<QTemporaryDir> cache;
    std::unique_ptr<ImageMemoryCache> memory;
    std::unique_ptr<ArtworkFetcher> fetcher;
    std::unique_ptr<QQmlEngine> engine;
    ArtworkImageProvider *provider = nullptr;
    std::unique_ptr<QObject> item;

    void makeFetcher()
    {
        fetcher = std::make_unique<ArtworkFetcher>(cache->path(), memory.get());
        fetcher->startupTrim().waitForFinished();
    }

    [[nodiscard]] QUrl url(const QString &id, int size) const
    {
        return SubsonicClient(ServerConfig{server->baseURL(), u"u"_s, u"p"_s}).coverArtURL(id, size);
    }

    std::optional<QImage> image(const QString &id, int size)
    {
        return awaitTask(fetcher->image(id, size, url(id, size)));
    }

    [[nodiscard]] QString cacheFile(const QString &id, int size) const
    {
        return cache->path() + u'/' + offlineFileName(ArtworkFetcher::key(id, size));
    }

    [[nodiscard]] QStringList cachedFiles() const { return QDir(cache->path()).entryList(QDir::Files); }

    // Shows a cover in QML through the engine's own loader thread, as the application does.
    ArtworkImageProvider *imageProvider()
    {
        if (!engine) {
            engine = std::make_unique<QQmlEngine>();
            provider = new ArtworkImageProvider(fetcher.get(), memory.get());
            provider->setClient(SubsonicClient(ServerConfig{server->baseURL(), u"u"_s, u"p"_s}));
            engine->addImageProvider(ArtworkImageProvider::providerId, provider);
        }
        return provider;
    }

    QObject *show(const QString &coverArt, int pixelSize)
    {
        imageProvider();
        QQmlComponent component(engine.get());
        component.setData("import QtQuick\nImage { asynchronous: true; cache: false }", QUrl());
        item.reset(component.create());
        item->setProperty("source", ArtworkImageProvider::source(coverArt, pixelSize));
        return item.get();
    }

private Q_SLOTS:
    void init()
    {
        server = std::make_unique<FakeSubsonicServer>();
        cache = std::make_unique<QTemporaryDir>();
        memory = std::make_unique<ImageMemoryCache>(64 * 1024 * 1024);
        makeFetcher();
    }

    void cleanup()
    {
        item.reset();
        engine.reset();
        fetcher.reset();
        server.reset();
    }

    void sameKeyAtOnceMakesOneRequest()
    {
        const QByteArray bytes = jpeg(512);
        server->on(u"getCoverArt"_s, imageAnswer(bytes, 150));
        auto first = fetcher->image(u"al-1"_s, 256, url(u"al-1"_s, 256));
        auto second = fetcher->image(u"al-1"_s, 256, url(u"al-1"_s, 256));
        auto otherSize = fetcher->image(u"al-1"_s, 128, url(u"al-1"_s, 128));
        const auto a = awaitTask(std::move(first));
        const auto b = awaitTask(std::move(second));
        const auto c = awaitTask(std::move(otherSize));
        QVERIFY(a && b && c);
        QCOMPARE(a->size(), QSize(256, 256));
        QCOMPARE(b->size(), QSize(256, 256));
        QCOMPARE(c->size(), QSize(128, 128));
        QCOMPARE(server->count(u"getCoverArt"_s), 2);
        QCOMPARE(server->requests(u"getCoverArt"_s).first().value(u"id"_s), u"al-1"_s);

        // The reply's bytes are kept as they came, one file per key, and memory now answers.
        QCOMPARE(readFile(cacheFile(u"al-1"_s, 256)), bytes);
        QCOMPARE(cachedFiles().size(), 2);
        QVERIFY(memory->image(ArtworkFetcher::key(u"al-1"_s, 256)));
        QVERIFY(image(u"al-1"_s, 256));
        QCOMPARE(server->count(u"getCoverArt"_s), 2);
    }

    void diskFilesServeTheirSizeAndSmallerOnes()
    {
        writeDated(cacheFile(u"al-2"_s, 512), jpeg(512), longAgo);

        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-2);
        const std::optional<QImage> small = image(u"al-2"_s, 128);
        QVERIFY(small);
        QCOMPARE(small->size(), QSize(128, 128));
        QCOMPARE(server->count(u"getCoverArt"_s), 0);
        QVERIFY(modified(cacheFile(u"al-2"_s, 512)) >= before);
        QCOMPARE(cachedFiles(), QStringList{offlineFileName(ArtworkFetcher::key(u"al-2"_s, 512))});

        writeDated(cacheFile(u"al-2"_s, 512), {}, longAgo);
        QCOMPARE(image(u"al-2"_s, 512)->size(), QSize(512, 512));
        QVERIFY(modified(cacheFile(u"al-2"_s, 512)) >= before);

        // Only larger files are searched: 1024 goes to the server.
        server->on(u"getCoverArt"_s, imageAnswer(jpeg(1024)));
        QCOMPARE(image(u"al-2"_s, 1024)->size(), QSize(1024, 1024));
        QCOMPARE(server->count(u"getCoverArt"_s), 1);
        QVERIFY(QFile::exists(cacheFile(u"al-2"_s, 1024)));
    }

    void damagedDiskFileIsReplacedFromTheServer()
    {
        writeDated(cacheFile(u"al-3"_s, 64), "not an image");
        server->on(u"getCoverArt"_s, imageAnswer(jpeg(64)));
        QVERIFY(image(u"al-3"_s, 64));
        QCOMPARE(server->count(u"getCoverArt"_s), 1);
        QCOMPARE(readFile(cacheFile(u"al-3"_s, 64)), jpeg(64));
    }

    void failedAnswersAreNeitherCachedNorRemembered()
    {
        const QList<FakeResponse> failures{
            FakeResponse{.status = 404, .contentType = "text/html", .body = "<html>Not found</html>"},
            FakeResponse{.body = FakeSubsonicServer::failed(70, u"Cover not found"_s)},
            FakeResponse{.contentType = "text/xml",
                         .body = R"(<?xml version="1.0"?><subsonic-response status="failed"/>)"},
            FakeResponse{.contentType = "image/jpeg", .body = QByteArray(4096, '\0')},
            FakeResponse{.contentType = "image/jpeg", .body = jpeg(256).left(20)},
        };
        int expectedRequests = 0;
        for (const FakeResponse &failure : failures) {
            server->on(u"getCoverArt"_s, failure);
            QCOMPARE(image(u"al-4"_s, 256), std::nullopt);
            QCOMPARE(image(u"al-4"_s, 256), std::nullopt); // nothing remembered: asks again
            expectedRequests += 2;
            QCOMPARE(server->count(u"getCoverArt"_s), expectedRequests);
            QCOMPARE(cachedFiles(), QStringList());
            QCOMPARE(memory->totalBytes(), 0);
        }
        server->stop();
        QCOMPARE(image(u"al-4"_s, 256), std::nullopt);
        QCOMPARE(awaitTask(fetcher->image(u"al-4"_s, 256, QUrl())), std::nullopt);
    }

    void offlineCoverServesAnySizeWithoutTouchingIt()
    {
        QTemporaryDir offline;
        const QString cover = offline.path() + u'/' + offlineFileName(u"al-5");
        writeDated(cover, jpeg(1024), longAgo);
        server->stop();

        QCOMPARE(image(u"al-5"_s, 64), std::nullopt);
        fetcher->setOfflineDirectory(offline.path());
        QCOMPARE(image(u"al-5"_s, 64)->size(), QSize(64, 64));
        QCOMPARE(image(u"al-5"_s, 1024)->size(), QSize(1024, 1024));
        QCOMPARE(cachedFiles(), QStringList());
        QCOMPARE(modified(cover), longAgo);

        fetcher->setOfflineDirectory(std::nullopt);
        QCOMPARE(image(u"al-5"_s, 256), std::nullopt);
    }

    void decodeScalesOrientsAndRefusesNonImages()
    {
        QImage wide(200, 100, QImage::Format_RGB32);
        wide.fill(Qt::red);
        QPainter(&wide).fillRect(0, 0, 20, 100, Qt::blue);
        // Stored wide with an EXIF turn of 90 degrees clockwise: shown tall, its left edge on top.
        const std::optional<QImage> turned =
            ArtworkFetcher::decode(encoded(wide, "jpeg", QImageIOHandler::TransformationRotate90), 64);
        QVERIFY(turned);
        QCOMPARE(turned->size(), QSize(32, 64));
        QVERIFY(QColor(turned->pixel(16, 1)).blue() > 200);
        QVERIFY(QColor(turned->pixel(16, 60)).red() > 200);

        QCOMPARE(ArtworkFetcher::decode(jpeg(50), 256)->size(), QSize(50, 50));

        QImage translucent(300, 300, QImage::Format_ARGB32);
        translucent.fill(QColor(0, 255, 0, 100));
        const std::optional<QImage> png = ArtworkFetcher::decode(encoded(translucent, "png"), 128);
        QVERIFY(png);
        QCOMPARE(png->size(), QSize(128, 128));
        QCOMPARE(png->format(), QImage::Format_ARGB32_Premultiplied);

        QCOMPARE(ArtworkFetcher::decode(QByteArray(), 64), std::nullopt);
        QCOMPARE(ArtworkFetcher::decode(R"({"subsonic-response":{"status":"failed"}})", 64), std::nullopt);
        QCOMPARE(ArtworkFetcher::decode("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"8\" height=\"8\"/>", 64),
                 std::nullopt);
    }

    void startupTrimDeletesLeastRecentlyUsedFirst()
    {
        fetcher.reset();
        cache = std::make_unique<QTemporaryDir>();
        constexpr qint64 mib = 1024 * 1024;
        constexpr int count = 60;
        // 600 MiB of sparse files whose ages do not follow their names.
        QMap<QDateTime, QString> byAge;
        for (int i = 0; i < count; ++i) {
            const QString path = cache->path() + u"/f"_s + QString::number(i);
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.resize(10 * mib));
            const QDateTime time = longAgo.addSecs((i * 37) % count * 60);
            QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
            byAge.insert(time, QFileInfo(path).fileName());
        }
        makeFetcher();

        const QStringList left = cachedFiles();
        qint64 total = 0;
        for (const QString &name : left)
            total += QFileInfo(cache->path() + u'/' + name).size();
        QVERIFY(total <= ArtworkFetcher::diskCacheLimit);
        QVERIFY(total > ArtworkFetcher::diskCacheLimit - 10 * mib);
        QCOMPARE(left.size(), count - 9);
        const QStringList oldest = byAge.values().mid(0, 9);
        for (const QString &name : oldest)
            QVERIFY2(!left.contains(name), qPrintable(name));

        // At or under the limit nothing goes.
        makeFetcher();
        QCOMPARE(cachedFiles().size(), count - 9);
    }

    void destroyingTheFetcherEndsWaitsWithoutImage()
    {
        server->on(u"getCoverArt"_s, FakeResponse{.hang = true});
        auto waiting = fetcher->image(u"al-6"_s, 64, url(u"al-6"_s, 64));
        QTRY_COMPARE(server->count(u"getCoverArt"_s), 1);
        fetcher.reset();
        QCOMPARE(awaitTask(std::move(waiting), 2000), std::nullopt);
        QCOMPARE(cachedFiles(), QStringList());
    }

    // Covers in QML through the engine's own loader thread, as the application shows them: from the server,
    // from memory without it, and none for a missing cover or a signed-out window.
    void theImageProviderShowsCoversAndEndsMissingOnes()
    {
        server->on(u"getCoverArt"_s, imageAnswer(jpeg(300)));
        const QString id = u"p 1/é%2"_s;
        QObject *image = show(id, 128);
        QTRY_COMPARE(image->property("status").toInt(), ready);
        QCOMPARE(image->property("implicitWidth").toInt(), 128);
        QCOMPARE(server->requests().first().value(u"id"_s), id);
        QCOMPARE(server->requests().first().value(u"size"_s), u"128"_s);

        QImage remembered(64, 64, QImage::Format_RGB32);
        remembered.fill(Qt::green);
        memory->insert(ArtworkFetcher::key(u"p-2"_s, 64), remembered);
        provider->setClient(std::nullopt);
        image = show(u"p-2"_s, 64);
        QTRY_COMPARE(image->property("status").toInt(), ready);
        QCOMPARE(image->property("implicitWidth").toInt(), 64);
        image = show(u"p-4"_s, 256);
        QTRY_VERIFY(image->property("status").toInt() != loading);
        QCOMPARE(image->property("implicitWidth").toInt(), 0);

        provider->setClient(SubsonicClient(ServerConfig{server->baseURL(), u"u"_s, u"p"_s}));
        server->on(u"getCoverArt"_s, FakeResponse{.status = 404, .body = "no"});
        image = show(u"p-3"_s, 256);
        QTRY_VERIFY(image->property("status").toInt() != loading);
        QCOMPARE(image->property("implicitWidth").toInt(), 0);
        QCOMPARE(server->count(u"getCoverArt"_s), 2);
    }
};

QTEST_MAIN(ArtworkFetcherTest)
#include "tst_artworkfetcher.moc"
