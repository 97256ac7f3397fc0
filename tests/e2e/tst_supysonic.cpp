// The client against a real server of the family: every request Velto makes, decoded strictly.

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

    int songCount() const
    {
        int count = 0;
        for (const QJsonValue &album : fixture.library().value("albums"_L1).toArray())
            count += album["songs"_L1].toArray().size();
        return count;
    }

    Album albumNamed(const QString &name)
    {
        for (const Album &album : awaitTask(client->albums(AlbumListType::AlphabeticalByName, 50, 0))) {
            if (album.name == name)
                return awaitTask(client->album(album.id));
        }
        qFatal("no album %s", qPrintable(name));
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

    QList<Song> playlistEntries(const QString &id) { return awaitTask(client->playlist(id)).entry.value_or(QList<Song>()); }

    QStringList ids(const QList<Song> &songs)
    {
        QStringList result;
        for (const Song &song : songs)
            result.append(song.id);
        return result;
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
            QSet<QString> seen;
            for (int offset = 0; offset < 30; offset += 3) {
                const QList<Album> page = awaitTask(client->albums(type, 3, offset));
                for (const Album &album : page)
                    seen.insert(album.id);
                if (page.size() < 3)
                    break;
            }
            // Recent and frequent hold only what was played; the others hold every album.
            if (type != AlbumListType::Recent && type != AlbumListType::Frequent)
                QCOMPARE(seen.size(), albumCount);
        }
        QStringList newest;
        for (const Album &album : awaitTask(client->albums(AlbumListType::Newest, 10, 0)))
            newest.append(album.name);
        QStringList expected;
        for (const QJsonValue &name : fixture.library().value("newestAlbums"_L1).toArray())
            expected.append(name.toString());
        QCOMPARE(newest, expected);

        // This server knows no "highest" list and says so with an error, which must not read as unreadable.
        const auto highest = awaitFailure<SubsonicError>(client->albums(AlbumListType::Highest, 3, 0));
        QVERIFY(highest);
        QCOMPARE(highest->kind, SubsonicError::Kind::Server);
    }

    void allSongsListPastOnePage()
    {
        QSet<QString> seen;
        int pages = 0;
        for (int offset = 0; offset < 100; offset += 5, ++pages) {
            const QList<Song> page = awaitTask(client->songs(5, offset));
            for (const Song &song : page)
                seen.insert(song.id);
            if (page.size() < 5)
                break;
        }
        QVERIFY(pages >= 2);
        QCOMPARE(seen.size(), songCount());
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
        awaitTask(client->star({StarTarget::Kind::Song, song.id}));
        awaitTask(client->star({StarTarget::Kind::Album, album.id}));
        awaitTask(client->star({StarTarget::Kind::Artist, artistId}));
        SearchResult starred = awaitTask(client->starred());
        QCOMPARE(starred.song.value_or(QList<Song>()).size(), 1);
        QCOMPARE(starred.song->first().id, song.id);
        QCOMPARE(starred.album.value_or(QList<Album>()).first().id, album.id);
        QCOMPARE(starred.artist.value_or(QList<Artist>()).first().id, artistId);

        awaitTask(client->unstar({StarTarget::Kind::Song, song.id}));
        awaitTask(client->unstar({StarTarget::Kind::Album, album.id}));
        awaitTask(client->unstar({StarTarget::Kind::Artist, artistId}));
        starred = awaitTask(client->starred());
        QVERIFY(starred.song.value_or(QList<Song>()).isEmpty());
        QVERIFY(starred.album.value_or(QList<Album>()).isEmpty());
        QVERIFY(starred.artist.value_or(QList<Artist>()).isEmpty());
    }

    void playlistLifecycle()
    {
        const QList<Song> songs = *albumNamed(u"Ágætis Test"_s).song;
        // This server speaks an API older than 1.14.0: creating answers without the playlist.
        QCOMPARE(awaitTask(client->createPlaylist(u"Road Mix ✓"_s)), std::nullopt);
        const auto lists = awaitTask(client->playlists());
        QVERIFY(lists && lists->size() == 1);
        const QString id = lists->first().id;
        QCOMPARE(lists->first().name, u"Road Mix ✓"_s);
        QCOMPARE(awaitTask(client->playlist(id)).entry, std::nullopt);

        const QStringList order{songs[2].id, songs[0].id, songs[2].id};
        awaitTask(client->replacePlaylistSongs(id, order));
        QCOMPARE(ids(playlistEntries(id)), order);

        awaitTask(client->updatePlaylist(id, u"Renamed"_s, {songs[1].id}, {0}));
        QCOMPARE(ids(playlistEntries(id)), (QStringList{songs[0].id, songs[2].id, songs[1].id}));
        QCOMPARE(awaitTask(client->playlist(id)).name, u"Renamed"_s);

        awaitTask(client->replacePlaylistSongs(id, {}));
        QVERIFY(playlistEntries(id).isEmpty());
        awaitTask(client->deletePlaylist(id));
        QCOMPARE(awaitTask(client->playlists()), std::nullopt);
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
