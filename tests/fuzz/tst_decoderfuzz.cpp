// Every decoder of outside data, fed tens of thousands of inputs mutated from real ones. Each must either give a
// value or refuse with its own error: no crash, no other exception, and (under the sanitizer build) no memory
// error or undefined behaviour. What decodes must also come back equal from its own encoding.

#include "fakesubsonicserver.h"
#include "offline/downloadmanifest.h"
#include "offline/downloadstore.h"
#include "offline/manifestfile.h"
#include "artwork/artworkfetcher.h"
#include "artwork/paletteextractor.h"
#include "playback/sessionsnapshot.h"
#include "server/json.h"
#include "server/payloads.h"
#include "server/subsonicclient.h"
#include "shell/updatefeed.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
constexpr int jsonRounds = 20'000;
constexpr int imageRounds = 3'000;

// Bytes that make a JSON decoder's life hard: wrong types, numbers at and past every limit, broken structure.
const QList<QByteArray> tokens{
    "null", "true", "[]", "{}", "\"\"", "-9223372036854775809", "9223372036854775808", "-9223372036854775808",
    "1e308", "-0", "0.5", "\"\\u0000\"", "\"../../etc\"", "{\"a\":", "]", "}", ",", "\":", "4611686018427387904",
};

class Mutator
{
public:
    explicit Mutator(quint32 seed) : m_random(seed) { }

    QByteArray mutate(QByteArray bytes)
    {
        const int steps = 1 + int(m_random.bounded(4));
        for (int i = 0; i < steps; ++i)
            bytes = step(std::move(bytes));
        return bytes;
    }

private:
    qsizetype at(const QByteArray &bytes) { return bytes.isEmpty() ? 0 : qsizetype(m_random.bounded(int(bytes.size()))); }

    QByteArray step(QByteArray bytes)
    {
        const qsizetype position = at(bytes);
        const qsizetype span = 1 + m_random.bounded(16);
        switch (m_random.bounded(6)) {
        case 0:
            if (!bytes.isEmpty())
                bytes[position] = char(bytes[position] ^ (1 << m_random.bounded(8)));
            break;
        case 1:
            bytes.remove(position, span);
            break;
        case 2:
            bytes.insert(position, bytes.mid(at(bytes), span));
            break;
        case 3:
            bytes.insert(position, tokens[m_random.bounded(int(tokens.size()))]);
            break;
        case 4: {
            // Replace a value after a colon, where the records keep their fields.
            const qsizetype colon = bytes.indexOf(':', position);
            if (colon >= 0)
                bytes.replace(colon + 1, span, tokens[m_random.bounded(int(tokens.size()))]);
            break;
        }
        default:
            bytes.truncate(position);
            break;
        }
        return bytes;
    }

    QRandomGenerator m_random;
};

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

Song richSong(const QString &id)
{
    return Song{.id = id, .title = u"Title "_s + id, .album = u"Album"_s, .albumId = u"al"_s, .artist = u"Artist"_s,
                .artistId = u"ar"_s, .track = 3, .discNumber = 1, .year = 1999, .duration = 245,
                .contentType = u"audio/flac"_s, .suffix = u"flac"_s, .coverArt = u"c1"_s, .size = 31'000'000};
}

QJsonArray songArray()
{
    return QJsonArray{richSong(u"s1"_s).toJson(), richSong(u"s2"_s).toJson()};
}

// One answer of each kind the client reads, as a server sends it.
QList<QByteArray> apiSeeds()
{
    const QJsonObject album{{u"id"_s, u"al"_s}, {u"name"_s, u"Album"_s}, {u"artist"_s, u"Artist"_s},
                            {u"songCount"_s, 2}, {u"duration"_s, 490}, {u"year"_s, 1999}, {u"song"_s, songArray()}};
    const QJsonObject artist{{u"id"_s, u"ar"_s}, {u"name"_s, u"Artist"_s}, {u"albumCount"_s, 1}};
    return {
        FakeSubsonicServer::ok({{u"album"_s, album}}),
        FakeSubsonicServer::ok({{u"artist"_s, QJsonObject{{u"id"_s, u"ar"_s}, {u"name"_s, u"A"_s},
                                                            {u"album"_s, QJsonArray{album}}}}}),
        FakeSubsonicServer::ok({{u"playlist"_s, QJsonObject{{u"id"_s, u"p"_s}, {u"name"_s, u"P"_s},
                                                              {u"entry"_s, songArray()}}}}),
        FakeSubsonicServer::ok({{u"albumList2"_s, QJsonObject{{u"album"_s, QJsonArray{album, album}}}}}),
        FakeSubsonicServer::ok({{u"artists"_s, QJsonObject{{u"index"_s, QJsonArray{QJsonObject{
                                   {u"name"_s, u"A"_s}, {u"artist"_s, QJsonArray{artist}}}}}}}}),
        FakeSubsonicServer::ok({{u"playlists"_s, QJsonObject{{u"playlist"_s, QJsonArray{QJsonObject{
                                   {u"id"_s, u"p"_s}, {u"name"_s, u"P"_s}, {u"songCount"_s, 2}}}}}}}),
        FakeSubsonicServer::ok({{u"searchResult3"_s, QJsonObject{{u"artist"_s, QJsonArray{artist}},
                                                                   {u"album"_s, QJsonArray{album}},
                                                                   {u"song"_s, songArray()}}}}),
        FakeSubsonicServer::ok({{u"starred2"_s, QJsonObject{{u"song"_s, songArray()}}}}),
        FakeSubsonicServer::failed(70, u"Not found"_s),
    };
}

// Decodes one answer as every payload; only SubsonicError may come out.
void decodeAnswer(const QByteArray &bytes)
{
    using namespace Payloads;
    const auto attempt = [&bytes](auto decode) {
        try {
            decode();
        } catch (const SubsonicError &) {
        }
    };
    attempt([&] {
        const Album album = SubsonicClient::decodePayload<AlbumPayload>(bytes).album;
        QCOMPARE(Album::fromJson(album.toJson()), album);
    });
    attempt([&] { SubsonicClient::decodePayload<ArtistPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<PlaylistPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<AlbumListPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<ArtistsPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<PlaylistsPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<SearchPayload>(bytes); });
    attempt([&] { SubsonicClient::decodePayload<StarredPayload>(bytes); });
}

QByteArray manifestSeed()
{
    DownloadManifest manifest;
    manifest.songs.insert(u"s1"_s, DownloadedSong{richSong(u"s1"_s), u"flac"_s, 31'000'000, {u"album:al"_s}});
    manifest.songs.insert(u"s2"_s, DownloadedSong{richSong(u"s2"_s), u"audio"_s, 7, {u"album:al"_s, u"playlist:p"_s}});
    manifest.collections.insert(u"album:al"_s, DownloadCollection{u"album:al"_s, u"Album"_s, u"Artist"_s});
    manifest.collections.insert(u"playlist:p"_s, DownloadCollection{u"playlist:p"_s, u"P"_s, std::nullopt});
    return compact(manifest.toJson());
}

// A manifest from disk must read whole or not at all, and what it holds must add up without overflow.
void decodeManifest(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    DownloadManifest manifest;
    try {
        manifest = DownloadManifest::fromJson(document.object());
    } catch (const Json::DecodeError &) {
        return;
    }
    QCOMPARE(DownloadManifest::fromJson(manifest.toJson()), manifest);
    for (const QString &key : manifest.collections.keys()) {
        (void)manifest.bytesOwnedBy(key);
        (void)manifest.songsOwnedBy(key);
        (void)manifest.state(key, manifest.songs.keys());
    }
    (void)manifest.totalBytes();
    // Every song has an owner, so letting go of every owner frees every song.
    QSet<QString> owners;
    for (const DownloadedSong &song : std::as_const(manifest.songs))
        owners.unite(song.owners);
    for (const QString &owner : std::as_const(owners))
        manifest.removeOwner(owner);
    QCOMPARE(manifest.songs.size(), qsizetype(0));
}

QByteArray sessionSeed()
{
    const SessionSnapshot snapshot{.serverKey = u"u@https://music.example.org"_s,
                                   .queue = {richSong(u"s1"_s), richSong(u"s2"_s)},
                                   .currentIndex = 1,
                                   .currentTime = 12.5,
                                   .isShuffling = true,
                                   .unshuffledQueue = QList<Song>{richSong(u"s2"_s), richSong(u"s1"_s)},
                                   .repeatMode = RepeatMode::All,
                                   .source = PlaybackSource::album(u"al"_s, u"Album"_s)};
    return snapshot.encode();
}

void decodeSession(const QByteArray &bytes)
{
    if (const std::optional<SessionSnapshot> snapshot = SessionSnapshot::decode(bytes))
        QCOMPARE(SessionSnapshot::decode(snapshot->encode()), snapshot);
}

void decodeFeed(const QByteArray &bytes)
{
    try {
        const UpdateOffer offer = UpdateOffer::fromJson(bytes);
        QVERIFY(!offer.version.isNull());
    } catch (const Json::DecodeError &) {
    }
}

QByteArray coverSeed(const char *format)
{
    QImage image(24, 24, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 10, y * 10, (x + y) * 5));
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

void decodeCover(const QByteArray &bytes)
{
    if (const std::optional<QImage> image = ArtworkFetcher::decode(bytes, 64))
        (void)PaletteExtractor::extract(*image);
}

void fuzz(const QList<QByteArray> &seeds, int rounds, quint32 seed, const std::function<void(const QByteArray &)> &decode)
{
    Mutator mutator(seed);
    for (const QByteArray &original : seeds) {
        decode(original);
        if (QTest::currentTestFailed())
            return;
    }
    for (int round = 0; round < rounds; ++round) {
        const QByteArray input = mutator.mutate(seeds[round % seeds.size()]);
        decode(input);
        if (QTest::currentTestFailed()) {
            qWarning().noquote() << "input:" << input.toBase64();
            return;
        }
    }
}
}

class DecoderFuzzTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serverAnswers() { fuzz(apiSeeds(), jsonRounds * 2, 1, decodeAnswer); }
    void manifests() { fuzz({manifestSeed()}, jsonRounds, 2, decodeManifest); }
    void sessions() { fuzz({sessionSeed()}, jsonRounds, 3, decodeSession); }
    void updateFeeds()
    {
        const QJsonObject feed{{u"version"_s, u"0.2.0"_s}, {u"notes"_s, u"What changed"_s},
                               {u"url"_s, u"https://example.org/velto/0.2.0"_s}};
        fuzz({compact(feed)}, jsonRounds, 4, decodeFeed);
    }
    void covers() { fuzz({coverSeed("PNG"), coverSeed("JPEG")}, imageRounds, 5, decodeCover); }

    // Numbers a hostile server or file may hold add up to the end of the range, not past it.
    void hostileNumbersSaturate()
    {
        QTemporaryDir root;
        const SubsonicClient client(ServerConfig{QUrl(u"http://127.0.0.1:9"_s), u"u"_s, u"p"_s});
        const DownloadLayout layout(root.path());
        DownloadManifest manifest;
        for (const QString &id : {u"s1"_s, u"s2"_s}) {
            Song song = richSong(id);
            song.duration = qint64(1) << 62;
            manifest.songs.insert(id, DownloadedSong{song, u"flac"_s, qint64(1) << 62, {u"album:al"_s}});
        }
        QVERIFY(saveManifest(manifest, layout.directory(client.config())));
        const auto store = DownloadStore::create(client, layout);
        QCOMPARE(store->localAlbum(u"al"_s)->duration, std::numeric_limits<qint64>::max());
        QCOMPARE(store->totalBytes(), std::numeric_limits<qint64>::max());
        QCOMPARE(store->downloadedCollections().size(), qsizetype(0));
    }
};

QTEST_GUILESS_MAIN(DecoderFuzzTest)
#include "tst_decoderfuzz.moc"
