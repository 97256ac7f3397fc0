#include "artwork/artworkfetcher.h"
#include "artwork/artworkimageprovider.h"
#include "artwork/imagememorycache.h"
#include "fakesubsonicserver.h"

#include <QBuffer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray jpeg(int side)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::darkMagenta);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg");
    return bytes;
}

// Values of Image.status.
constexpr int ready = 1;
constexpr int loading = 2;
}

// Covers reach QML through the engine's own loader thread, as they do in the application.
class ArtworkProviderTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<QTemporaryDir> cache;
    std::unique_ptr<ImageMemoryCache> memory;
    std::unique_ptr<ArtworkFetcher> fetcher;
    std::unique_ptr<QQmlEngine> engine;
    ArtworkImageProvider *provider = nullptr;
    std::unique_ptr<QObject> item;

    QObject *show(const QString &coverArt, int pixelSize)
    {
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
        memory = std::make_unique<ImageMemoryCache>(16 * 1024 * 1024);
        fetcher = std::make_unique<ArtworkFetcher>(cache->path(), memory.get());
        engine = std::make_unique<QQmlEngine>();
        provider = new ArtworkImageProvider(fetcher.get(), memory.get());
        provider->setClient(SubsonicClient(ServerConfig{server->baseURL(), u"u"_s, u"p"_s}));
        engine->addImageProvider(ArtworkImageProvider::providerId, provider);
    }

    void cleanup()
    {
        item.reset();
        engine.reset();
        fetcher.reset();
        server.reset();
    }

    void coverFromTheServer()
    {
        server->on(u"getCoverArt"_s, FakeResponse{.contentType = "image/jpeg", .body = jpeg(300)});
        const QString id = u"al 1/é%2"_s;
        QObject *image = show(id, 128);
        QTRY_COMPARE(image->property("status").toInt(), ready);
        QCOMPARE(image->property("implicitWidth").toInt(), 128);
        QCOMPARE(server->count(u"getCoverArt"_s), 1);
        QCOMPARE(server->requests().first().value(u"id"_s), id);
        QCOMPARE(server->requests().first().value(u"size"_s), u"128"_s);
        QVERIFY(memory->image(ArtworkFetcher::key(id, 128)));
    }

    void coverFromMemoryNeedsNoServer()
    {
        QImage remembered(64, 64, QImage::Format_RGB32);
        remembered.fill(Qt::green);
        memory->insert(ArtworkFetcher::key(u"al-2"_s, 64), remembered);
        provider->setClient(std::nullopt);
        QObject *image = show(u"al-2"_s, 64);
        QTRY_COMPARE(image->property("status").toInt(), ready);
        QCOMPARE(image->property("implicitWidth").toInt(), 64);
        QCOMPARE(server->count(u"getCoverArt"_s), 0);
    }

    void missingCoverEndsWithoutImage()
    {
        server->on(u"getCoverArt"_s, FakeResponse{.status = 404, .body = "no"});
        QObject *image = show(u"al-3"_s, 256);
        QTRY_COMPARE(server->count(u"getCoverArt"_s), 1);
        QTRY_VERIFY(image->property("status").toInt() != loading);
        QCOMPARE(image->property("implicitWidth").toInt(), 0);

        provider->setClient(std::nullopt);
        QObject *signedOut = show(u"al-4"_s, 256);
        QTRY_VERIFY(signedOut->property("status").toInt() != loading);
        QCOMPARE(signedOut->property("implicitWidth").toInt(), 0);
        QCOMPARE(server->count(u"getCoverArt"_s), 1);
    }
};

QTEST_MAIN(ArtworkProviderTest)
#include "tst_artworkprovider.moc"
