// Velto against a real Supysonic server on a generated library: every request decoded strictly, the library
// store's edits matching a fresh read, and downloads holding the server's own bytes, found with the server gone.
// The functions run in order on one server.

#include "awaittask.h"
#include "library/librarystore.h"
#include "offline/downloadstore.h"
#include "server/subsonicclient.h"
#include "supysonicfixture.h"
#include "testdata.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
// Walks a list page by page to its end; the ids seen and how many pages it took.
template<typename Fetch>
std::pair<QSet<QString>, int> walk(int pageSize, Fetch fetch)
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
}

class SupysonicTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<SupysonicFixture> fixture = std::make_unique<SupysonicFixture>(QStringLiteral(VELTO_FIXTURE_WORKDIR));
    std::optional<SubsonicClient> client;
    QNetworkAccessManager network;
    QTemporaryDir root;

    SubsonicClient clientWith(const QString &password, AuthMethod method = AuthMethod::Token)
    {
        return SubsonicClient(ServerConfig{fixture->baseURL(), fixture->username(), password, method});
    }

    Album albumNamed(const QString &name)
    {
        for (const Album &album : awaitTask(client->albums(AlbumListType::AlphabeticalByName, 50, 0))) {
            if (album.name == name)
                return awaitTask(client->album(album.id));
        }
        qFatal("no album %s", qPrintable(name));
    }

    // The file the fixture generated for a song, found by album name and title.
    [[nodiscard]] QString libraryFile(const Song &song) const
    {
        for (const QJsonValue &album : fixture->library().value("albums"_L1).toArray()) {
            for (const QJsonValue &track : album["songs"_L1].toArray()) {
                if (album["name"_L1].toString() == song.album && track["title"_L1].toString() == song.title)
                    return fixture->libraryPath(track["path"_L1].toString());
            }
        }
        return {};
    }

    [[nodiscard]] QString storedFile(const Song &song) const
    {
        const std::optional<QUrl> url = DownloadLayout(root.path()).localFileURL(song, client->config());
        return url ? url->toLocalFile() : QString();
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
        QVERIFY2(fixture->start(), qPrintable(fixture->errorText()));
        client = clientWith(fixture->password());
    }

    void pingProvesThePassword()
    {
        awaitTask(client->ping());
        awaitTask(clientWith(fixture->password(), AuthMethod::LegacyPassword).ping());
        const auto wrong = awaitFailure<SubsonicError>(clientWith(u"nope"_s).ping());
        QCOMPARE(wrong->code, 40);
        QCOMPARE(wrong->description(), u"Wrong username or password."_s);
        QVERIFY(awaitFailure<SubsonicError>(clientWith(u"nope"_s, AuthMethod::LegacyPassword).ping()));
    }

    void everyListPagesToItsEnd()
    {
        const int albumCount = int(fixture->library().value("albums"_L1).toArray().size());
        // A random list never ends: one page of it is all there is to check.
        QCOMPARE(awaitTask(client->albums(AlbumListType::Random, 3, 0)).size(), 3);
        for (AlbumListType type : {AlbumListType::Newest, AlbumListType::AlphabeticalByName,
                                   AlbumListType::AlphabeticalByArtist, AlbumListType::Recent, AlbumListType::Frequent}) {
            const QSet<QString> seen =
                walk(3, [&](int size, int offset) { return awaitTask(client->albums(type, size, offset)); }).first;
            // Recent and frequent hold only what was played; the others hold every album.
            QVERIFY(seen.size() == albumCount || type == AlbumListType::Recent || type == AlbumListType::Frequent);
        }
        QStringList newest;
        for (const Album &album : awaitTask(client->albums(AlbumListType::Newest, 10, 0)))
            newest.append(album.name);
        QCOMPARE(newest, fixture->library().value("newestAlbums"_L1).toVariant().toStringList());
        // This server knows no "highest" list and says so with an error, which must not read as unreadable.
        QCOMPARE(awaitFailure<SubsonicError>(client->albums(AlbumListType::Highest, 3, 0))->kind,
                 SubsonicError::Kind::Server);

        const auto [songs, pages] = walk(5, [&](int size, int offset) { return awaitTask(client->songs(size, offset)); });
        QVERIFY(pages >= 2);
        QCOMPARE(songs.size(), fixture->library().value("songCount"_L1).toInt());
    }

    void artistsAlbumsAndDiscs()
    {
        QStringList names;
        QString sigurId;
        const auto index = awaitTask(client->artists());
        for (const ArtistIndex &group : index.value()) {
            for (const Artist &artist : group.artist) {
                names.append(artist.name);
                if (artist.name == u"Sigur Ós"_s)
                    sigurId = artist.id;
            }
        }
        names.sort();
        QCOMPARE(names, (QStringList{u"Sigur Ós"_s, u"The Null Pilots"_s, u"Zoë & the Oscillators"_s}));
        QCOMPARE(awaitTask(client->artist(sigurId)).album.value_or(QList<Album>()).size(), 2);

        const Album twoDiscs = albumNamed(u"Hvarf & Heim"_s);
        QCOMPARE(twoDiscs.song->size(), 4);
        QCOMPARE(twoDiscs.song->at(2).discNumber, 2);
        QCOMPARE(twoDiscs.song->at(2).title, u"Von"_s);
    }

    void starAndUnstarEachKind()
    {
        const Album album = albumNamed(u"Niño Tones"_s);
        const QList<StarTarget> targets{{StarTarget::Kind::Song, album.song->first().id},
                                        {StarTarget::Kind::Album, album.id},
                                        {StarTarget::Kind::Artist, *album.artistId}};
        for (const StarTarget &target : targets)
            awaitTask(client->star(target));
        SearchResult starred = awaitTask(client->starred());
        QCOMPARE(starred.song.value_or(QList<Song>()).first().id, album.song->first().id);
        QCOMPARE(starred.album.value_or(QList<Album>()).first().id, album.id);
        QCOMPARE(starred.artist.value_or(QList<Artist>()).first().id, *album.artistId);
        for (const StarTarget &target : targets)
            awaitTask(client->unstar(target));
        starred = awaitTask(client->starred());
        QVERIFY(!starred.song && !starred.album && !starred.artist);
    }

    void coverAndDownloadBytes()
    {
        const Album album = albumNamed(u"Sine Waves, Vol. 1"_s);
        QCOMPARE(QImage::fromData(get(client->coverArtURL(*album.coverArt, 128))).size(), QSize(128, 128));
        QByteArray contentType;
        const QByteArray downloaded = get(client->downloadURL(album.song->first().id), &contentType);
        QVERIFY(!contentType.contains("json"));
        QVERIFY(downloaded == readFile(libraryFile(album.song->first())));
    }

    // After each edit through the store, the server reads back what the store holds.
    void aPlaylistFromCreationToDeletion()
    {
        LibraryStore store(*client);
        store.ensureSongsLoaded();
        store.ensurePlaylistsLoaded();
        QTRY_VERIFY(store.songsLoaded() && store.playlistsLoaded());
        QCOMPARE(store.songs().size(), fixture->library().value("songCount"_L1).toInt());
        const auto onServer = [this](const QString &id) {
            return idsOf(awaitTask(client->playlist(id)).entry.value_or(QList<Song>()));
        };
        const QList<Song> songs = store.songs().mid(0, 3);
        const std::optional<QString> id = awaitTask(store.createPlaylist(u"Road Trip ✓"_s));
        QVERIFY(id);
        QCOMPARE(store.playlists().first().name, u"Road Trip ✓"_s);
        awaitTask(store.addSongs(songs, *id));
        QCOMPARE(onServer(*id), idsOf(songs));
        QCOMPARE(store.playlists().first().songCount, 3);
        const QStringList order{songs[2].id, songs[0].id, songs[2].id, songs[1].id};
        QVERIFY(awaitTask(store.reorderPlaylist(*id, order)));
        QCOMPARE(onServer(*id), order);
        awaitTask(store.removeSong(2, order, *id));
        QCOMPARE(onServer(*id), (QStringList{songs[2].id, songs[0].id, songs[1].id}));
        awaitTask(store.renamePlaylist(*id, u"Renamed"_s));
        QCOMPARE(awaitTask(client->playlist(*id)).name, u"Renamed"_s);

        // Thousands of entries, far past what a URL carries: the whole order, then a thousand more at its end.
        QStringList threeThousand;
        for (int i = 0; i < 3000; ++i)
            threeThousand.append(store.songs().at(i % store.songs().size()).id);
        QVERIFY(awaitTask(store.reorderPlaylist(*id, threeThousand), 60000));
        QCOMPARE(onServer(*id), threeThousand);
        const QList<Song> thousand = [&] {
            QList<Song> added;
            for (int i = 0; i < 1000; ++i)
                added.append(store.songs().at((i * 5) % store.songs().size()));
            return added;
        }();
        awaitTask(store.addSongs(thousand, *id), 60000);
        QCOMPARE(onServer(*id), threeThousand + idsOf(thousand));
        QVERIFY(awaitTask(store.deletePlaylist(*id)));
        QCOMPARE(awaitTask(client->playlists()), std::nullopt);
        QCOMPARE(store.lastFailure(), std::nullopt);
    }

    // An album and a playlist sharing a song keep one file of the server's bytes, found with the server gone.
    void downloadsHoldTheServersFiles()
    {
        const Album album = albumNamed(u"Ágætis Test"_s);
        const Song shared = album.song->first();
        const Song other = albumNamed(u"Niño Tones"_s).song->first();
        awaitTask(client->createPlaylist(u"Shared ✓"_s));
        const QString playlistId = awaitTask(client->playlists())->first().id;
        awaitTask(client->updatePlaylist(playlistId, std::nullopt, {other.id, shared.id}, {}));

        auto store = DownloadStore::create(*client, DownloadLayout(root.path()));
        store->downloadAlbum(album);
        store->downloadPlaylist(playlistId, u"Shared ✓"_s);
        QTRY_VERIFY_WITH_TIMEOUT(store->runningKeys().isEmpty(), 30'000);
        QVERIFY(store->active().isEmpty());
        QCOMPARE(store->manifest().songs.value(shared.id).owners.size(), 2);
        for (const Song &song : *album.song + QList<Song>{other})
            QCOMPARE(readFile(storedFile(song)), readFile(libraryFile(song)));
        const QString cover = DownloadLayout::artworkDirectory(store->directory()) + u'/'
            + DownloadLayout::coverFileName(*shared.coverArt);
        QVERIFY(!QImage::fromData(readFile(cover)).isNull());
        store->removeDownload(albumCollectionKey(album.id));
        QCOMPARE(readFile(storedFile(shared)), readFile(libraryFile(shared)));

        store.reset();
        fixture.reset();
        store = DownloadStore::create(*client, DownloadLayout(root.path()));
        const std::optional<PlaylistDetail> playlist = store->localPlaylist(playlistId);
        QCOMPARE(playlist->name, u"Shared ✓"_s);
        QCOMPARE(playlist->entry->size(), 2);
        for (const Song &song : *playlist->entry)
            QCOMPARE(QFileInfo(storedFile(song)).size(), store->manifest().songs.value(song.id).bytes);
        QVERIFY(!store->localAlbum(album.id));
    }
};

QTEST_GUILESS_MAIN(SupysonicTest)
#include "tst_supysonic.moc"
