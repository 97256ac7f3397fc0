// The client against a real Supysonic server: every request Velto makes, decoded strictly.

#include "awaittask.h"
#include "server/subsonicclient.h"
#include "supysonicfixture.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

using namespace Qt::StringLiterals;

class SupysonicTest : public QObject
{
    Q_OBJECT

    SupysonicFixture fixture{QStringLiteral(VELTO_FIXTURE_WORKDIR)};
    std::optional<SubsonicClient> client;
    QNetworkAccessManager network;

    SubsonicClient clientWith(const QString &password, AuthMethod method = AuthMethod::Token)
    {
        return SubsonicClient(ServerConfig{fixture.baseURL(), fixture.username(), password, method});
    }

    Album albumNamed(const QString &name)
    {
        for (const Album &album : awaitTask(client->albums(AlbumListType::AlphabeticalByName, 50, 0))) {
            if (album.name == name)
                return awaitTask(client->album(album.id));
        }
        qFatal("no album %s", qPrintable(name));
    }

    // Walks a list page by page to its end; the ids seen and how many pages it took.
    template<typename Fetch>
    static std::pair<QSet<QString>, int> walk(int pageSize, Fetch fetch)
    {
        QSet<QString> seen;
        for (int pages = 1;; ++pages) {
            const auto page = fetch(pageSize, (pages - 1) * pageSize);
            for (const auto &item : page)
                seen.insert(item.id);
            if (page.size() < pageSize || pages == 20)
                return {seen, pages};
        }
    }

    QByteArray get(const QUrl &url, QByteArray *contentType = nullptr)
    {
        QNetworkReply *reply = network.get(QNetworkRequest(url));
        if (!QTest::qWaitFor([reply] { return reply->isFinished(); }, 10000))
            return {};
        reply->deleteLater();
        if (contentType)
            *contentType = reply->header(QNetworkRequest::ContentTypeHeader).toByteArray();
        return reply->readAll();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(fixture.start(), qPrintable(fixture.errorText()));
        client = clientWith(fixture.password());
    }

    void pingProvesThePassword()
    {
        awaitTask(client->ping());
        awaitTask(clientWith(fixture.password(), AuthMethod::LegacyPassword).ping());
        const auto wrong = awaitFailure<SubsonicError>(clientWith(u"nope"_s).ping());
        QVERIFY(wrong);
        QCOMPARE(wrong->code, 40);
        QCOMPARE(wrong->description(), u"Wrong username or password."_s);
        QVERIFY(awaitFailure<SubsonicError>(clientWith(u"nope"_s, AuthMethod::LegacyPassword).ping()));
    }

    void everyAlbumListPagesToItsEnd()
    {
        const int albumCount = fixture.library().value("albums"_L1).toArray().size();
        // A random list never ends: one page of it is all there is to check.
        QCOMPARE(awaitTask(client->albums(AlbumListType::Random, 3, 0)).size(), 3);
        for (AlbumListType type : {AlbumListType::Newest, AlbumListType::Recent, AlbumListType::AlphabeticalByName,
                                   AlbumListType::AlphabeticalByArtist, AlbumListType::Frequent}) {
            const QSet<QString> seen =
                walk(3, [&](int size, int offset) { return awaitTask(client->albums(type, size, offset)); }).first;
            // Recent and frequent hold only what was played; the others hold every album.
            if (type != AlbumListType::Recent && type != AlbumListType::Frequent)
                QCOMPARE(seen.size(), albumCount);
        }
        QStringList newest;
        for (const Album &album : awaitTask(client->albums(AlbumListType::Newest, 10, 0)))
            newest.append(album.name);
        QCOMPARE(newest, fixture.library().value("newestAlbums"_L1).toVariant().toStringList());

        // This server knows no "highest" list and says so with an error, which must not read as unreadable.
        const auto highest = awaitFailure<SubsonicError>(client->albums(AlbumListType::Highest, 3, 0));
        QVERIFY(highest);
        QCOMPARE(highest->kind, SubsonicError::Kind::Server);
    }

    void allSongsListPastOnePage()
    {
        const auto [seen, pages] = walk(5, [&](int size, int offset) { return awaitTask(client->songs(size, offset)); });
        QVERIFY(pages >= 2);
        QCOMPARE(seen.size(), fixture.library().value("songCount"_L1).toInt());
    }

    void artistsAlbumsAndDiscs()
    {
        const auto index = awaitTask(client->artists());
        QVERIFY(index);
        QStringList names;
        QString sigurId;
        for (const ArtistIndex &group : *index) {
            for (const Artist &artist : group.artist) {
                names.append(artist.name);
                if (artist.name == u"Sigur Ós"_s)
                    sigurId = artist.id;
            }
        }
        names.sort();
        QCOMPARE(names, (QStringList{u"Sigur Ós"_s, u"The Null Pilots"_s, u"Zoë & the Oscillators"_s}));

        const ArtistDetail sigur = awaitTask(client->artist(sigurId));
        QCOMPARE(sigur.name, u"Sigur Ós"_s);
        QCOMPARE(sigur.album.value_or(QList<Album>()).size(), 2);

        const Album twoDiscs = albumNamed(u"Hvarf & Heim"_s);
        QVERIFY(twoDiscs.song);
        QCOMPARE(twoDiscs.song->size(), 4);
        QCOMPARE(twoDiscs.song->at(2).discNumber, 2);
        QCOMPARE(twoDiscs.song->at(2).title, u"Von"_s);
        QCOMPARE(twoDiscs.artist, u"Sigur Ós"_s);
    }

    void starAndUnstarEachKind()
    {
        const Album album = albumNamed(u"Niño Tones"_s);
        const Song song = album.song->first();
        const QString artistId = *album.artistId;
        const QList<StarTarget> targets{
            {StarTarget::Kind::Song, song.id}, {StarTarget::Kind::Album, album.id}, {StarTarget::Kind::Artist, artistId}};
        for (const StarTarget &target : targets)
            awaitTask(client->star(target));
        SearchResult starred = awaitTask(client->starred());
        QCOMPARE(starred.song.value_or(QList<Song>()).size(), 1);
        QCOMPARE(starred.song->first().id, song.id);
        QCOMPARE(starred.album.value_or(QList<Album>()).first().id, album.id);
        QCOMPARE(starred.artist.value_or(QList<Artist>()).first().id, artistId);

        for (const StarTarget &target : targets)
            awaitTask(client->unstar(target));
        starred = awaitTask(client->starred());
        QVERIFY(starred.song.value_or(QList<Song>()).isEmpty());
        QVERIFY(starred.album.value_or(QList<Album>()).isEmpty());
        QVERIFY(starred.artist.value_or(QList<Artist>()).isEmpty());
    }

    void coverAndDownloadBytes()
    {
        const Album album = albumNamed(u"Sine Waves, Vol. 1"_s);
        QVERIFY(album.coverArt);
        const QImage cover = QImage::fromData(get(client->coverArtURL(*album.coverArt, 128)));
        QCOMPARE(cover.size(), QSize(128, 128));

        const Song song = album.song->first();
        QString relativePath;
        for (const QJsonValue &entry : fixture.library().value("albums"_L1).toArray()) {
            for (const QJsonValue &s : entry["songs"_L1].toArray()) {
                if (s["title"_L1].toString() == song.title)
                    relativePath = s["path"_L1].toString();
            }
        }
        QFile file(fixture.libraryPath(relativePath));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray contentType;
        const QByteArray downloaded = get(client->downloadURL(song.id), &contentType);
        QVERIFY(!contentType.contains("json"));
        QCOMPARE(downloaded.size(), file.size());
        QVERIFY(downloaded == file.readAll());
    }
};

QTEST_GUILESS_MAIN(SupysonicTest)
#include "tst_supysonic.moc"
