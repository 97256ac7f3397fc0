#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "librarytesthelpers.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class LibraryStoreTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<LibraryStore> store;

    SubsonicClient client() const { return SubsonicClient(ServerConfig{server->baseURL(), u"a"_s, u"b"_s}); }

private Q_SLOTS:
    void init()
    {
        server = std::make_unique<FakeSubsonicServer>();
        store = std::make_unique<LibraryStore>(client());
    }

    void cleanup() { store.reset(); }

    void albumPagesGrowUntilAShortPage()
    {
        server->enqueue(u"getAlbumList2"_s, albumPage(0, 60));
        server->enqueue(u"getAlbumList2"_s, albumPage(30, 60)); // half of it already held
        server->enqueue(u"getAlbumList2"_s, albumPage(200, 0));
        const auto type = AlbumListType::Newest;

        store->loadMoreAlbums(type);
        QVERIFY(store->albumList(type).isLoading);
        store->loadMoreAlbums(type); // a second ask while the page loads changes nothing
        QTRY_VERIFY(!store->albumList(type).isLoading);
        QCOMPARE(store->albumList(type).albums.size(), 60);
        QVERIFY(!store->albumList(type).reachedEnd);

        store->loadMoreAlbums(type);
        QTRY_VERIFY(!store->albumList(type).isLoading);
        QCOMPARE(store->albumList(type).albums.size(), 90);
        QCOMPARE(server->requests().last().value(u"offset"_s), u"60"_s);
        QVERIFY(!store->albumList(type).reachedEnd);

        store->loadMoreAlbums(type);
        QTRY_VERIFY(store->albumList(type).reachedEnd);
        const int requests = server->count(u"getAlbumList2"_s);
        store->loadMoreAlbums(type);
        QTest::qWait(20);
        QCOMPARE(server->count(u"getAlbumList2"_s), requests);
        QCOMPARE(requests, 3);
        QVERIFY(store->hasCachedContent());
    }

    void aFailedAlbumPageKeepsWhatWasHeldAndCanBeAskedAgain()
    {
        server->enqueue(u"getAlbumList2"_s, albumPage(0, 60));
        server->enqueue(u"getAlbumList2"_s, serverError(0, u"Database locked"_s));
        server->enqueue(u"getAlbumList2"_s, albumPage(60, 5));
        const auto type = AlbumListType::AlphabeticalByName;
        store->loadMoreAlbums(type);
        QTRY_VERIFY(!store->albumList(type).isLoading);
        store->loadMoreAlbums(type);
        QTRY_VERIFY(!store->albumList(type).isLoading);
        QCOMPARE(store->albumList(type).errorMessage, u"Database locked"_s);
        QCOMPARE(store->albumList(type).albums.size(), 60);
        QVERIFY(store->reachability().isOk()); // a server error is no standing fault
        store->loadMoreAlbums(type);
        QTRY_VERIFY(store->albumList(type).reachedEnd);
        QCOMPARE(store->albumList(type).albums.size(), 65);
        QCOMPARE(store->albumList(type).errorMessage, std::nullopt);
    }

    void songsWalkStopsAtTheCap()
    {
        server->on(u"search3"_s, [](const RecordedRequest &request) {
            return songPage(request.value(u"songOffset"_s).toInt(), 500);
        });
        QSignalSpy appended(store.get(), &LibraryStore::songsAppended);
        store->ensureSongsLoaded();
        QTRY_VERIFY_WITH_TIMEOUT(store->songsLoaded(), 20000);
        QCOMPARE(server->count(u"search3"_s), 40);
        QCOMPARE(store->songs().size(), 20000);
        QCOMPARE(appended.count(), 40);
        QCOMPARE(appended.last().at(0).value<qsizetype>(), 19500);
        QCOMPARE(store->songs().last().id, u"19999"_s);
    }

    void aSongWalkFailingOnPageSevenKeepsSixPages()
    {
        server->on(u"search3"_s, [](const RecordedRequest &request) {
            const int offset = request.value(u"songOffset"_s).toInt();
            if (offset == 3000)
                return FakeResponse{.body = "<html>Bad Gateway</html>"};
            return songPage(offset, 500);
        });
        store->ensureSongsLoaded();
        QTRY_VERIFY(store->songsLoaded());
        QCOMPARE(store->songs().size(), 3000);
        QVERIFY(store->songsError().has_value());
        QVERIFY(store->songsError()->contains(u"could not be read"_s));
        store->ensureSongsLoaded(); // a failed walk waits for refresh()
        QTest::qWait(20);
        QCOMPARE(server->count(u"search3"_s), 7);
    }

    void aResultArrivingAfterRefreshIsDropped()
    {
        const QJsonObject artists{{u"artists"_s,
                                   QJsonObject{{u"index"_s, QJsonArray{QJsonObject{
                                                   {u"name"_s, u"A"_s},
                                                   {u"artist"_s, QJsonArray{QJsonObject{{u"id"_s, u"ar1"_s},
                                                                                        {u"name"_s, u"Abba"_s}}}}}}}}}};
        FakeResponse slow = FakeSubsonicServer::json(artists);
        slow.delayMs = 300;
        server->on(u"getArtists"_s, slow);
        FakeResponse slowSongs = songPage(0, 3);
        slowSongs.delayMs = 300;
        server->on(u"search3"_s, slowSongs);
        server->on(u"getPlaylists"_s,
                   FakeSubsonicServer::json({{u"playlists"_s,
                                              QJsonObject{{u"playlist"_s, QJsonArray{QJsonObject{{u"id"_s, u"p1"_s},
                                                                                                 {u"name"_s, u"Mix"_s}}}}}}}));
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded());

        store->ensureArtistsLoaded();
        store->ensureSongsLoaded();
        QSignalSpy epoch(store.get(), &LibraryStore::epochChanged);
        QTest::qWait(50);
        store->refresh();
        QTest::qWait(500);
        QCOMPARE(store->epoch(), 1);
        QCOMPARE(epoch.count(), 1);
        QVERIFY(store->allArtists().isEmpty());
        QVERIFY(!store->artistsLoaded());
        QVERIFY(store->songs().isEmpty());
        QVERIFY(!store->songsLoaded());
        QVERIFY(!store->playlistsLoaded());
        QCOMPARE(store->playlists().size(), 1); // the sidebar keeps its rows

        store->ensureArtistsLoaded();
        QTRY_VERIFY(store->artistsLoaded());
        QCOMPARE(store->allArtists().first().name, u"Abba"_s);
    }

    void reachabilityFollowsTheServer()
    {
        server->on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server->on(u"getPlaylists"_s, serverError(0, u"Internal error"_s));
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded());
        QVERIFY(store->reachability().isOk());

        server->stop();
        store->ensureStarredLoaded();
        QTRY_VERIFY(store->starredLoaded());
        QCOMPARE(store->reachability(), ServerReachability::failing(ConnectionFault::offline()));

        QVERIFY(server->start());
        store->refresh();
        store->ensureStarredLoaded();
        QTRY_VERIFY(store->starredLoaded());
        QVERIFY(store->reachability().isOk());
    }

    void retryConnectionPingsOnceAndRestartsTheScreens()
    {
        server->on(u"ping"_s, [](const RecordedRequest &) {
            FakeResponse answer = FakeSubsonicServer::json({});
            answer.delayMs = 100;
            return answer;
        });
        server->on(u"star"_s, serverError(0, u"Nope"_s));
        store->toggleStar(Song{.id = u"s1"_s, .title = u"t"_s});
        QTRY_VERIFY(store->lastFailure().has_value());

        auto first = store->retryConnection();
        auto second = store->retryConnection();
        QVERIFY(store->isRetrying());
        awaitTask(std::move(first));
        awaitTask(std::move(second));
        QCOMPARE(server->count(u"ping"_s), 1);
        QVERIFY(!store->isRetrying());
        QCOMPARE(store->epoch(), 1);
        QCOMPARE(store->lastFailure(), std::nullopt);
        QCOMPARE(server->count(u"star"_s), 1); // the held retry never ran

        server->on(u"ping"_s, FakeResponse{.status = 401});
        awaitTask(store->retryConnection());
        QCOMPARE(store->reachability(), ServerReachability::failing(ConnectionFault::unauthorized()));
        QCOMPARE(store->epoch(), 1);
    }

    void aStoreDestroyedMidLoadIsNotTouched()
    {
        FakeResponse slow = songPage(0, 10);
        slow.delayMs = 200;
        server->on(u"search3"_s, slow);
        server->on(u"getArtists"_s, FakeResponse{.hang = true});
        store->ensureSongsLoaded();
        store->ensureArtistsLoaded();
        QTest::qWait(20);
        store.reset();
        QTest::qWait(300);
        QCOMPARE(server->count(u"search3"_s), 1);
    }

    void discographyIsNewestFirstAndSkipsAlbumsThatFail()
    {
        const QJsonArray albums{albumJson(u"old"_s, 1990), albumJson(u"undated"_s), albumJson(u"new"_s, 2020),
                                albumJson(u"broken"_s, 2000)};
        server->on(u"getArtist"_s, FakeSubsonicServer::json(
                                       {{u"artist"_s, QJsonObject{{u"id"_s, u"ar"_s}, {u"name"_s, u"N"_s},
                                                                  {u"album"_s, albums}}}}));
        server->on(u"getAlbum"_s, [](const RecordedRequest &request) {
            const QString id = request.value(u"id"_s);
            if (id == u"broken"_s)
                return serverError(70, u"Not found"_s);
            QJsonObject album = albumJson(id);
            album.insert(u"song"_s, QJsonArray{songJson(id + u"-1"_s), songJson(id + u"-2"_s)});
            return FakeSubsonicServer::json({{u"album"_s, album}});
        });
        const QList<Song> songs = awaitTask(store->artistDiscographySongs(u"ar"_s));
        QStringList ids;
        for (const Song &song : songs)
            ids.append(song.id);
        QCOMPARE(ids, (QStringList{u"new-1"_s, u"new-2"_s, u"old-1"_s, u"old-2"_s, u"undated-1"_s, u"undated-2"_s}));

        // Details are served from the cache from then on.
        const int fetched = server->count(u"getAlbum"_s);
        awaitTask(store->albumDetail(u"new"_s));
        QCOMPARE(server->count(u"getAlbum"_s), fetched);

        server->on(u"getArtist"_s, FakeResponse{.status = 500});
        QVERIFY(awaitFailure<SubsonicError>(store->artistDiscographySongs(u"other"_s)));
        QVERIFY(store->reachability().isOk());
    }
};

QTEST_GUILESS_MAIN(LibraryStoreTest)
#include "tst_librarystore.moc"
