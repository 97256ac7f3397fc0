#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "library/removalretrytarget.h"
#include "librarytesthelpers.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
Song song(const QString &id)
{
    return Song{.id = id, .title = u"Song "_s + id};
}

QStringList ids(const QList<Song> &songs)
{
    QStringList result;
    for (const Song &s : songs)
        result.append(s.id);
    return result;
}
}

class LibraryEditsTest : public QObject
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
            return FakeSubsonicServer::json({{u"playlists"_s, QJsonObject{{u"playlist"_s, QJsonArray{row}}}}});
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
        QCOMPARE(ids(store->starredSongs()), (QStringList{u"2"_s, u"1"_s}));
        store->toggleStar(song(u"2"_s)); // unlike
        QTRY_COMPARE(server->count(u"unstar"_s), 1);
        QCOMPARE(ids(store->starredSongs()), QStringList{u"1"_s});

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

        server->on(u"createPlaylist"_s, FakeSubsonicServer::json({}));
        QVERIFY(awaitTask(store->reorderPlaylist(u"p1"_s, {u"a"_s})));
        server->on(u"deletePlaylist"_s, FakeSubsonicServer::json({}));
        QVERIFY(awaitTask(store->deletePlaylist(u"p1"_s)));
        QVERIFY(store->playlists().isEmpty());

        // Adding nothing asks nothing and shows nothing.
        store->setLastFailure(std::nullopt);
        awaitTask(store->addAlbum(Album{.id = u"al"_s, .name = u"n"_s, .song = QList<Song>()}, u"p1"_s));
        QCOMPARE(server->count(u"getAlbum"_s), 0);
        QCOMPARE(server->count(u"updatePlaylist"_s), 0);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }

    void createPlaylistOnAnOldServerFindsTheNewOne()
    {
        QStringList names{u"Mix"_s};
        server->on(u"getPlaylists"_s, [&names](const RecordedRequest &) {
            QJsonArray rows;
            for (int i = 0; i < names.size(); ++i)
                rows.append(QJsonObject{{u"id"_s, QString::number(i)}, {u"name"_s, names[i]}});
            return FakeResponse{.body = FakeSubsonicServer::ok({{u"playlists"_s, QJsonObject{{u"playlist"_s, rows}}}},
                                                               u"1.10.2"_s)};
        });
        server->on(u"createPlaylist"_s, [&names](const RecordedRequest &request) {
            names.append(request.value(u"name"_s));
            return FakeResponse{.body = FakeSubsonicServer::ok({}, u"1.10.2"_s)};
        });
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded());
        QCOMPARE(awaitTask(store->createPlaylist(u"Mix"_s)), u"1"_s);
        QCOMPARE(store->playlists().size(), 2);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(LibraryEditsTest)
#include "tst_libraryedits.moc"
