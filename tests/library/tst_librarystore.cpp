#include "awaittask.h"
#include "library/librarystore.h"
#include "library/removalretrytarget.h"
#include "librarytesthelpers.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString reachabilityFlag = u"--reachability"_s;

// What a store makes of a server at `url` after one load: "ok", "offline", or the fault's text.
QString reachabilityOf(const QString &url)
{
    LibraryStore store(SubsonicClient(ServerConfig{QUrl(url), u"a"_s, u"b"_s}));
    store.ensureStarredLoaded();
    if (!QTest::qWaitFor([&] { return store.starredLoaded(); }, 20000))
        return u"no answer"_s;
    const ServerReachability &reachability = store.reachability();
    if (reachability.isOk())
        return u"ok"_s;
    if (reachability.failure->kind == ConnectionFault::Kind::Offline)
        return u"offline"_s;
    return store.starredError().value_or(u"?"_s);
}
}

class LibraryStoreTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<LibraryStore> store;
    QStringList serverEntries;   // the playlist "p1" as the server holds it
    bool loseNextAnswer = false; // apply the next edit, then drop the connection before answering

    void servePlaylist()
    {
        server->on(u"getPlaylist"_s, [this](const RecordedRequest &) { return playlistJson(u"p1"_s, serverEntries); });
        server->on(u"getPlaylists"_s, [this](const RecordedRequest &) {
            const QJsonObject row{{u"id"_s, u"p1"_s}, {u"name"_s, u"List"_s}, {u"songCount"_s, serverEntries.size()}};
            return FakeSubsonicServer::json(playlistsPayload({row}));
        });
        server->on(u"updatePlaylist"_s, [this](const RecordedRequest &request) {
            serverEntries.append(request.values(u"songIdToAdd"_s));
            for (const QString &index : request.values(u"songIndexToRemove"_s))
                serverEntries.removeAt(index.toInt());
            FakeResponse answer = FakeSubsonicServer::json({});
            if (std::exchange(loseNextAnswer, false))
                answer.dropAfterBytes = 0;
            return answer;
        });
    }

private Q_SLOTS:
    void init()
    {
        server = std::make_unique<FakeSubsonicServer>();
        store = std::make_unique<LibraryStore>(SubsonicClient(ServerConfig{server->baseURL(), u"a"_s, u"b"_s}));
        serverEntries.clear();
        loseNextAnswer = false;
        servePlaylist();
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

    // A grid asks for the next page when the last one is in, from the very signal that tells it so.
    void aPageAskedForOnTheNewsOfTheLastIsFetched()
    {
        server->enqueue(u"getAlbumList2"_s, albumPage(0, 60));
        server->enqueue(u"getAlbumList2"_s, albumPage(60, 60));
        server->enqueue(u"getAlbumList2"_s, albumPage(120, 10));
        const auto type = AlbumListType::Recent;
        connect(store.get(), &LibraryStore::albumListChanged, store.get(), [this, type] {
            const AlbumListState state = store->albumList(type);
            if (!state.isLoading && !state.reachedEnd)
                store->loadMoreAlbums(type);
        });
        store->loadMoreAlbums(type);
        QTRY_VERIFY(store->albumList(type).reachedEnd);
        QCOMPARE(store->albumList(type).albums.size(), 130);
    }

    void theHomeRandomRowLoadsAgainAfterAFailure()
    {
        server->enqueue(u"getAlbumList2"_s, FakeSubsonicServer::error(0, u"Busy"_s));
        server->enqueue(u"getAlbumList2"_s, albumPage(0, 20));
        const auto row = [this] { return store->homeRowState(AlbumListType::Random); };
        store->ensureHomeRow(AlbumListType::Random);
        QVERIFY(row().isLoading);
        QTRY_VERIFY(!row().isLoading);
        QCOMPARE(row().errorMessage, u"Busy"_s);
        QVERIFY(row().reachedEnd);

        store->ensureHomeRow(AlbumListType::Random);
        QCOMPARE(row().errorMessage, std::nullopt);
        QTRY_COMPARE(row().albums.size(), 20);
        QVERIFY(!row().isLoading);
        store->ensureHomeRow(AlbumListType::Random);
        QCOMPARE(server->count(u"getAlbumList2"_s), 2);
        const RecordedRequest asked = server->requests(u"getAlbumList2"_s).last();
        QCOMPARE(asked.value(u"type"_s) + asked.value(u"size"_s), u"random20"_s);
    }

    void aFailedAlbumPageKeepsWhatWasHeldAndCanBeAskedAgain()
    {
        server->enqueue(u"getAlbumList2"_s, albumPage(0, 60));
        server->enqueue(u"getAlbumList2"_s, FakeSubsonicServer::error(0, u"Database locked"_s));
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
        const QJsonObject abba{{u"id"_s, u"ar1"_s}, {u"name"_s, u"Abba"_s}};
        const QJsonObject index{{u"name"_s, u"A"_s}, {u"artist"_s, QJsonArray{abba}}};
        server->on(u"getArtists"_s,
                   FakeSubsonicServer::delayed(FakeSubsonicServer::json({{u"artists"_s, QJsonObject{{u"index"_s, QJsonArray{index}}}}}), 300));
        server->on(u"search3"_s, FakeSubsonicServer::delayed(songPage(0, 3), 300));
        const QJsonObject mix{{u"id"_s, u"p1"_s}, {u"name"_s, u"Mix"_s}};
        server->on(u"getPlaylists"_s, FakeSubsonicServer::json(playlistsPayload({mix})));
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded());

        store->ensureArtistsLoaded();
        store->ensureSongsLoaded();
        server->on(u"getAlbumList2"_s, FakeSubsonicServer::delayed(albumPage(0, 5), 300));
        store->loadMoreAlbums(AlbumListType::Newest);
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
        QCOMPARE(store->albumList(AlbumListType::Newest), AlbumListState{});
        store->loadMoreAlbums(AlbumListType::Newest);
        QTRY_COMPARE(store->albumList(AlbumListType::Newest).albums.size(), 5);

        store->ensureArtistsLoaded();
        QTRY_VERIFY(store->artistsLoaded());
        QCOMPARE(store->allArtists().first().name, u"Abba"_s);
    }

    // Only a server out of reach or refusing the password is a standing fault; an error of its own, or an answer
    // that makes no sense, is not.
    void reachabilityFollowsTheServer()
    {
        const QJsonObject starred{{u"song"_s, QJsonArray{songJson(u"s1"_s)}}, {u"album"_s, QJsonArray{albumJson(u"al"_s)}},
                                  {u"artist"_s, QJsonArray{QJsonObject{{u"id"_s, u"ar"_s}, {u"name"_s, u"A"_s}}}}};
        server->on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, starred}}));
        server->on(u"getPlaylists"_s, FakeSubsonicServer::error(0, u"Internal error"_s));
        server->on(u"getArtists"_s, FakeResponse{.contentType = "text/html", .body = "<html>"});
        store->ensurePlaylistsLoaded();
        store->ensureArtistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded() && store->artistsLoaded());
        QVERIFY(store->reachability().isOk());
        server->on(u"star"_s, FakeSubsonicServer::error(70, u"Not found"_s));
        store->toggleStar(song(u"x"_s));
        QTRY_VERIFY(store->lastFailure());
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
        QCOMPARE(store->starredIds(), QSet<QString>{u"s1"_s});
        QCOMPARE(store->starredAlbumIds(), QSet<QString>{u"al"_s});
        QCOMPARE(store->starredArtistIds(), QSet<QString>{u"ar"_s});
    }

    // Real failing connections, not codes: a closed port and a name that does not resolve.
    void unreachableServersReadAsOffline_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("closed port") << u"http://127.0.0.1:1"_s;
        QTest::newRow("unknown name") << u"http://velto-test.invalid"_s;
    }

    void unreachableServersReadAsOffline()
    {
        QFETCH(QString, url);
        QCOMPARE(reachabilityOf(url), u"offline"_s);
    }

    // A machine off the network: a network namespace of its own whose loopback is down.
    void anUnreachableNetworkReadsAsOffline()
    {
        if (QProcess::execute(u"unshare"_s, {u"-rn"_s, u"true"_s}) != 0)
            QSKIP("This machine cannot make a network namespace (unshare -rn) to cut a process off in");
        QProcess child;
        child.start(u"unshare"_s, {u"-rn"_s, QCoreApplication::applicationFilePath(), reachabilityFlag,
                                   u"http://127.0.0.1:4533"_s});
        QVERIFY(child.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()), u"offline"_s);
    }

    void retryConnectionPingsOnceAndRestartsTheScreens()
    {
        server->on(u"ping"_s, FakeSubsonicServer::delayed(FakeSubsonicServer::json({}), 100));
        server->on(u"star"_s, FakeSubsonicServer::error(0, u"Nope"_s));
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
        server->on(u"search3"_s, FakeSubsonicServer::delayed(songPage(0, 10), 200));
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
                return FakeSubsonicServer::error(70, u"Not found"_s);
            QJsonObject album = albumJson(id);
            album.insert(u"song"_s, QJsonArray{songJson(id + u"-1"_s), songJson(id + u"-2"_s)});
            return FakeSubsonicServer::json({{u"album"_s, album}});
        });
        QCOMPARE(idsOf(awaitTask(store->artistDiscographySongs(u"ar"_s))), (QStringList{u"new-1"_s, u"new-2"_s, u"old-1"_s, u"old-2"_s, u"undated-1"_s, u"undated-2"_s}));

        const int fetched = server->count(u"getAlbum"_s);
        awaitTask(store->albumDetail(u"new"_s));
        QCOMPARE(server->count(u"getAlbum"_s), fetched);

        server->on(u"getArtist"_s, FakeResponse{.status = 500});
        QVERIFY(awaitFailure<SubsonicError>(store->artistDiscographySongs(u"other"_s)));
        QVERIFY(store->reachability().isOk());

        // A page that closes stops the walk through the albums.
        store->refresh();
        server->on(u"getArtist"_s, FakeSubsonicServer::json({{u"artist"_s, QJsonObject{{u"id"_s, u"ar"_s},
                                                            {u"name"_s, u"N"_s}, {u"album"_s, albums}}}}));
        server->on(u"getAlbum"_s, FakeSubsonicServer::delayed(FakeSubsonicServer::json({{u"album"_s, albumJson(u"any"_s)}}), 200));
        server->clearLog();
        const CancelToken closed = CancelToken::create();
        auto walk = store->artistDiscographySongs(u"ar"_s, closed);
        QTRY_COMPARE(server->count(u"getAlbum"_s), 1);
        closed.cancel();
        QVERIFY(awaitFailure<TaskCancelled>(std::move(walk)).has_value());
        QTest::qWait(100);
        QCOMPARE(server->count(u"getAlbum"_s), 1);
    }

    void removalRetryTargetFollowsTheSong()
    {
        const QStringList before{u"a"_s, u"b"_s, u"a"_s, u"c"_s};
        QCOMPARE(removalRetryTarget(2, before, before), 2);
        QCOMPARE(removalRetryTarget(2, before, {u"b"_s, u"a"_s, u"a"_s, u"c"_s}), 2);
        QCOMPARE(removalRetryTarget(0, before, {u"b"_s, u"c"_s, u"a"_s, u"a"_s}), 2);
        QCOMPARE(removalRetryTarget(2, before, {u"a"_s, u"b"_s, u"c"_s}), std::nullopt);
        QCOMPARE(removalRetryTarget(4, before, before), std::nullopt);
        QCOMPARE(removalRetryTarget(-1, before, before), std::nullopt);
        QCOMPARE(removalRetryTarget(3, before, {u"a"_s, u"b"_s, u"a"_s}), std::nullopt);
    }

    void likesAreOptimisticAndRollBack()
    {
        server->on(u"star"_s, FakeSubsonicServer::json({}));
        server->on(u"unstar"_s, FakeSubsonicServer::json({}));
        store->toggleStar(song(u"1"_s));
        QVERIFY(store->starredIds().contains(u"1"_s)); // at once, before the server answers
        QTRY_COMPARE(server->count(u"star"_s), 1);
        store->toggleStar(song(u"2"_s));
        QCOMPARE(idsOf(store->starredSongs()), (QStringList{u"2"_s, u"1"_s}));
        store->toggleStar(song(u"2"_s)); // unlike
        QTRY_COMPARE(server->count(u"unstar"_s), 1);
        QCOMPARE(idsOf(store->starredSongs()), QStringList{u"1"_s});

        // A refused unlike puts the song back first; a refused like takes it out again.
        server->on(u"unstar"_s, FakeResponse{.status = 500});
        store->toggleStar(song(u"1"_s));
        QVERIFY(!store->starredIds().contains(u"1"_s));
        QTRY_VERIFY(store->lastFailure().has_value());
        QVERIFY(store->starredIds().contains(u"1"_s));
        QCOMPARE(store->lastFailure()->message(), u"Couldn't update your likes — the server returned HTTP 500."_s);

        // Retry flips again from the state as it is now: another unlike.
        server->on(u"unstar"_s, FakeSubsonicServer::json({}));
        awaitTask(store->retryLastFailure());
        QVERIFY(!store->starredIds().contains(u"1"_s));
        QTRY_COMPARE(server->count(u"unstar"_s), 3);
        QCOMPARE(store->lastFailure(), std::nullopt);

        server->stop();
        store->toggleStarAlbum(Album{.id = u"al"_s, .name = u"n"_s});
        QVERIFY(store->starredAlbumIds().contains(u"al"_s));
        QTRY_VERIFY(!store->starredAlbumIds().contains(u"al"_s));
        QCOMPARE(store->reachability(), ServerReachability::failing(ConnectionFault::offline()));
        QCOMPARE(store->lastFailure()->message(), u"Couldn't update your likes — can't reach your server"_s);
    }

    void aLostAddIsNotDoubledOnRetry()
    {
        serverEntries = {u"x"_s};
        loseNextAnswer = true;
        awaitTask(store->addSongs({song(u"a"_s), song(u"b"_s)}, u"p1"_s));
        QVERIFY(store->lastFailure().has_value());
        QCOMPARE(store->lastFailure()->message(), u"Couldn't add to the playlist — can't reach your server"_s);
        QCOMPARE(store->playlistRevision(), 0);

        awaitTask(store->retryLastFailure());
        QCOMPARE(serverEntries, (QStringList{u"x"_s, u"a"_s, u"b"_s}));
        QCOMPARE(server->count(u"updatePlaylist"_s), 1);
        QCOMPARE(store->lastFailure(), std::nullopt);
        QVERIFY(store->reachability().isOk());

        // With half of it there, the retry adds only the rest.
        loseNextAnswer = true;
        awaitTask(store->addSongs({song(u"c"_s), song(u"d"_s)}, u"p1"_s));
        serverEntries.removeLast();
        awaitTask(store->retryLastFailure());
        QCOMPARE(serverEntries, (QStringList{u"x"_s, u"a"_s, u"b"_s, u"c"_s, u"d"_s}));
        QCOMPARE(store->playlistRevision(), 1);
        QCOMPARE(store->playlists().first().songCount, 5);
    }

    void aLostRemovalDoesNotRemoveASecondSong()
    {
        serverEntries = {u"a"_s, u"b"_s, u"a"_s, u"c"_s};
        const QStringList before = serverEntries;
        loseNextAnswer = true;
        awaitTask(store->removeSong(2, before, u"p1"_s));
        QCOMPARE(serverEntries, (QStringList{u"a"_s, u"b"_s, u"c"_s}));
        QVERIFY(store->lastFailure().has_value());
        awaitTask(store->retryLastFailure());
        QCOMPARE(serverEntries, (QStringList{u"a"_s, u"b"_s, u"c"_s}));
        QCOMPARE(server->count(u"updatePlaylist"_s), 1);

        // A removal that really failed is made on retry, at the song's place now.
        server->on(u"updatePlaylist"_s, FakeResponse{.status = 503});
        awaitTask(store->removeSong(0, serverEntries, u"p1"_s));
        serverEntries = {u"b"_s, u"a"_s, u"c"_s}; // someone reordered meanwhile
        servePlaylist();
        awaitTask(store->retryLastFailure());
        QCOMPARE(serverEntries, (QStringList{u"b"_s, u"c"_s}));
        QCOMPARE(store->playlistRevision(), 1);
    }

    void playlistEditsUpdateTheCaches()
    {
        serverEntries = {u"a"_s};
        awaitTask(store->playlistDetail(u"p1"_s));
        server->on(u"deletePlaylist"_s, FakeResponse{.status = 500});
        store->ensurePlaylistsLoaded();
        QTRY_COMPARE(store->playlists().size(), 1);
        QVERIFY(!awaitTask(store->deletePlaylist(u"p1"_s)));
        QCOMPARE(store->playlists().size(), 1);
        QVERIFY(store->lastFailure()->retry);

        // Each edit that lands drops the cached detail, so that the playlist is read again.
        const auto refetchesDetail = [this] {
            const int asked = server->count(u"getPlaylist"_s);
            awaitTask(store->playlistDetail(u"p1"_s));
            awaitTask(store->playlistDetail(u"p1"_s));
            return server->count(u"getPlaylist"_s) == asked + 1;
        };
        server->on(u"createPlaylist"_s, FakeSubsonicServer::json({}));
        QVERIFY(awaitTask(store->reorderPlaylist(u"p1"_s, {u"a"_s})));
        QVERIFY(refetchesDetail());
        awaitTask(store->renamePlaylist(u"p1"_s, u"New"_s));
        QVERIFY(refetchesDetail());
        awaitTask(store->addSongs({song(u"b"_s)}, u"p1"_s));
        QVERIFY(refetchesDetail());
        awaitTask(store->removeSong(1, {u"a"_s, u"b"_s}, u"p1"_s));
        QVERIFY(refetchesDetail());
        server->on(u"deletePlaylist"_s, FakeSubsonicServer::json({}));
        QVERIFY(awaitTask(store->deletePlaylist(u"p1"_s)));
        QVERIFY(store->playlists().isEmpty());

        // An album listed without its songs is fetched first; failing that, the failure says so and can retry.
        server->on(u"getAlbum"_s, FakeSubsonicServer::error(70, u"Album gone"_s));
        awaitTask(store->addAlbum(Album{.id = u"al"_s, .name = u"n"_s}, u"p1"_s));
        QCOMPARE(store->lastFailure()->message(), u"Couldn't add the album to the playlist — album gone"_s);
        QJsonObject album = albumJson(u"al"_s);
        album.insert(u"song"_s, QJsonArray{songJson(u"x"_s), songJson(u"y"_s)});
        server->on(u"getAlbum"_s, FakeSubsonicServer::json({{u"album"_s, album}}));
        awaitTask(store->retryLastFailure());
        QCOMPARE(serverEntries, (QStringList{u"a"_s, u"x"_s, u"y"_s}));

        // Adding nothing asks nothing and shows nothing.
        store->setLastFailure(std::nullopt);
        server->clearLog();
        awaitTask(store->addAlbum(Album{.id = u"al"_s, .name = u"n"_s, .song = QList<Song>()}, u"p1"_s));
        QCOMPARE(server->count(u"getAlbum"_s), 0);
        QCOMPARE(server->count(u"updatePlaylist"_s), 0);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }

    void createPlaylistOnAnOldServerFindsTheNewOne()
    {
        QStringList names{u"Mix"_s};
        // Newest first, and the list never loaded before: only asking first tells the old "Mix" from the new.
        server->on(u"getPlaylists"_s, [&names](const RecordedRequest &) {
            QJsonArray rows;
            for (qsizetype i = names.size() - 1; i >= 0; --i)
                rows.append(QJsonObject{{u"id"_s, QString::number(i)}, {u"name"_s, names[i]}});
            return FakeResponse{.body = FakeSubsonicServer::ok(playlistsPayload(rows), u"1.10.2"_s)};
        });
        server->on(u"createPlaylist"_s, [&names](const RecordedRequest &request) {
            names.append(request.value(u"name"_s));
            return FakeResponse{.body = FakeSubsonicServer::ok({}, u"1.10.2"_s)};
        });
        QCOMPARE(awaitTask(store->createPlaylist(u"Mix"_s)), u"1"_s);
        QCOMPARE(store->playlists().size(), 2);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == reachabilityFlag) {
        std::fputs(reachabilityOf(app.arguments().value(2)).toUtf8().constData(), stdout);
        return 0;
    }
    LibraryStoreTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_librarystore.moc"
