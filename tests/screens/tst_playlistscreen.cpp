// The playlist page's rules without a window, against a fake server that keeps one playlist: rows of their own for
// a song listed twice, live moves and the saves they lead to, the selection through reloads and removals, and the
// downloaded copy standing in while the server is away.

#include "../playback/fakeaudioengine.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "offline/downloadlayout.h"
#include "offline/downloadstore.h"
#include "offline/manifestfile.h"
#include "playback/playercontroller.h"
#include "screens/playlistdetailscreen.h"
#include "testdata.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
// The one playlist the fake server holds, edited as a real server edits it.
struct ServerPlaylist {
    QString name = u"Road Trip"_s;
    QStringList order;
    QList<QStringList> savedOrders;
    bool refuseSaves = false;

    void serve(FakeSubsonicServer &server)
    {
        server.on(u"getPlaylist"_s, [this](const RecordedRequest &) {
            QJsonArray entries;
            for (const QString &id : std::as_const(order))
                entries.append(Song{.id = id, .title = u"Song "_s + id, .duration = 200}.toJson());
            return FakeSubsonicServer::json({{u"playlist"_s, QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, name},
                                                                         {u"songCount"_s, order.size()},
                                                                         {u"entry"_s, entries}}}});
        });
        server.on(u"createPlaylist"_s, [this](const RecordedRequest &request) {
            if (refuseSaves)
                return FakeSubsonicServer::error(50, u"Not allowed"_s);
            order = request.values(u"songId"_s);
            savedOrders.append(order);
            return FakeSubsonicServer::json({});
        });
        server.on(u"updatePlaylist"_s, [this](const RecordedRequest &request) {
            for (const QString &index : request.values(u"songIndexToRemove"_s))
                order.removeAt(index.toInt());
            if (const QString renamed = request.value(u"name"_s); !renamed.isEmpty())
                name = renamed;
            return FakeSubsonicServer::json({});
        });
        server.on(u"getPlaylists"_s, [this](const RecordedRequest &) {
            return FakeSubsonicServer::json(
                {{u"playlists"_s, QJsonObject{{u"playlist"_s, QJsonArray{QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, name}}}}}}});
        });
    }
};

QStringList shownSongs(const PlaylistDetailScreen &screen)
{
    return screen.entries()->songIds();
}

QString selectedSong(PlaylistDetailScreen &screen)
{
    const int row = screen.selectedRow();
    return row < 0 ? QString() : screen.entries()->items().at(row).song.id;
}
}

class PlaylistScreenTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    ServerPlaylist playlist;
    QTemporaryDir folder;
    SubsonicClient client{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};
    std::unique_ptr<LibraryStore> library;
    FakeAudioEngine engine;
    std::unique_ptr<PlayerController> player;
    std::unique_ptr<PlaylistDetailScreen> screen;

    // The page on the playlist, loaded.
    void open(const QStringList &order)
    {
        playlist.order = order;
        screen = std::make_unique<PlaylistDetailScreen>();
        screen->setLibrary(library.get());
        screen->setPlayer(player.get());
        screen->setPlaylistId(u"p1"_s);
        screen->componentComplete();
        QTRY_COMPARE(shownSongs(*screen), order);
    }

    // A drag from `from` over each row of `over`, in turn.
    void drag(int from, const QList<int> &over)
    {
        screen->beginDrag(from);
        for (int row : over)
            screen->moveDraggedRow(row);
    }

private Q_SLOTS:
    void init()
    {
        playlist = ServerPlaylist();
        playlist.serve(server);
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server.clearLog();
        library = std::make_unique<LibraryStore>(client);
        player = std::make_unique<PlayerController>(&engine);
    }
    void cleanup()
    {
        screen.reset();
        player.reset();
        library.reset();
        server.stop();
        server.start();
    }

    void theHeaderLineCountsSongsAndWholeMinutes()
    {
        QCOMPARE(PlaylistRules::metadataLine(1, 1, 59), u"1 song • 1 min"_s);
        QCOMPARE(PlaylistRules::metadataLine(std::nullopt, 3, 119), u"3 songs • 1 min"_s);
        QCOMPARE(PlaylistRules::metadataLine(12, 0, 0), u"12 songs"_s);
        QCOMPARE(PlaylistRules::metadataLine(std::nullopt, 0, std::nullopt), u"0 songs"_s);
    }

    void aSongListedTwiceIsTwoRowsThatMoveApart()
    {
        open({u"a"_s, u"x"_s, u"b"_s, u"x"_s});
        QAbstractItemModelTester tester(screen->entries(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QCOMPARE(screen->state(), u"tracks"_s);
        QCOMPARE(screen->metadataLine(), u"4 songs"_s);
        QVERIFY(screen->entries()->items().at(1).id != screen->entries()->items().at(3).id);

        // Over itself: nothing. Down: below the entered row. Up: above it.
        drag(3, {3});
        QCOMPARE(shownSongs(*screen), (QStringList{u"a"_s, u"x"_s, u"b"_s, u"x"_s}));
        QVERIFY(!screen->isSavePending());
        drag(1, {2});
        QCOMPARE(shownSongs(*screen), (QStringList{u"a"_s, u"b"_s, u"x"_s, u"x"_s}));
        drag(3, {0});
        QCOMPARE(shownSongs(*screen), (QStringList{u"x"_s, u"a"_s, u"b"_s, u"x"_s}));
        // The second x kept its own row: it is still the one at the end.
        const QUuid last = screen->entries()->items().at(3).id;
        drag(0, {1});
        QCOMPARE(screen->entries()->items().at(3).id, last);
        screen->drop();
        QTRY_COMPARE(playlist.order, (QStringList{u"a"_s, u"x"_s, u"b"_s, u"x"_s}));
    }

    void movesWithinTheDelaySaveOnceAndADropSavesAtOnce()
    {
        open({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
        drag(0, {1, 2, 3});
        QCOMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"c"_s, u"d"_s, u"a"_s}));
        QTest::qWait(PlaylistDetailScreen::saveDelayMs / 2);
        QCOMPARE(server.count(u"createPlaylist"_s), 0);
        QTRY_COMPARE(playlist.savedOrders, (QList<QStringList>{{u"b"_s, u"c"_s, u"d"_s, u"a"_s}}));
        QTest::qWait(PlaylistDetailScreen::saveDelayMs + 100);
        QCOMPARE(server.count(u"createPlaylist"_s), 1);

        // A drop inside the delay: one save, at once, and none after.
        drag(3, {2});
        screen->drop();
        QTRY_COMPARE(playlist.order, (QStringList{u"b"_s, u"c"_s, u"a"_s, u"d"_s}));
        QTest::qWait(PlaylistDetailScreen::saveDelayMs + 100);
        QCOMPARE(server.count(u"createPlaylist"_s), 2);
        // A drop that changed nothing sends nothing.
        screen->beginDrag(1);
        screen->drop();
        QTest::qWait(100);
        QCOMPARE(server.count(u"createPlaylist"_s), 2);

        // By keyboard: Ctrl+Down twice and Ctrl+Up once, saved as one; nothing moves past the ends.
        screen->select(0);
        QCOMPARE(screen->moveSelectedRow(1), 1);
        QCOMPARE(screen->moveSelectedRow(1), 2);
        QCOMPARE(screen->moveSelectedRow(-1), 1);
        QCOMPARE(selectedSong(*screen), u"b"_s);
        screen->select(3);
        QCOMPARE(screen->moveSelectedRow(1), -1);
        QTRY_COMPARE(playlist.order, (QStringList{u"c"_s, u"b"_s, u"a"_s, u"d"_s}));
        QCOMPARE(server.count(u"createPlaylist"_s), 3);
    }

    void aRefusedSaveBringsTheBannerAndTheServersOrderBack()
    {
        open({u"a"_s, u"b"_s, u"c"_s});
        playlist.refuseSaves = true;
        drag(0, {2});
        screen->drop();
        QCOMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"c"_s, u"a"_s}));
        QTRY_VERIFY(library->lastFailure().has_value());
        QCOMPARE(library->lastFailure()->action, u"save the new order"_s);
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    }

    void theSelectionFollowsItsSongThroughReloadsAndRemovals()
    {
        QCOMPARE(PlaylistRules::resolvedSelection(1, u"b"_s, {u"a"_s, u"b"_s}), 1);
        QCOMPARE(PlaylistRules::resolvedSelection(1, u"b"_s, {u"b"_s, u"a"_s}), 0); // follows the song
        QCOMPARE(PlaylistRules::resolvedSelection(1, u"b"_s, {u"a"_s, u"c"_s, u"d"_s}), 1); // gone: same place
        QCOMPARE(PlaylistRules::resolvedSelection(5, u"b"_s, {u"a"_s, u"c"_s}), 1); // or the last row
        QCOMPARE(PlaylistRules::resolvedSelection(std::nullopt, u"b"_s, {u"b"_s}), std::nullopt);
        QCOMPARE(PlaylistRules::resolvedSelection(0, u"b"_s, {}), std::nullopt);

        open({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
        // Up and Down stop at the ends; from nothing, Down takes the first row and Up the last.
        QCOMPARE(screen->moveSelection(-1), 3);
        QCOMPARE(screen->moveSelection(1), 3);
        screen->select(2);
        QCOMPARE(screen->moveSelection(-1), 1);
        screen->select(2);
        // Removing a row above the selection: the selection keeps its song at its new place.
        screen->remove(0);
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"c"_s, u"d"_s}));
        QCOMPARE(selectedSong(*screen), u"c"_s);
        QCOMPARE(screen->selectedRow(), 1);
        // Removing the selected row: the selection stays at its place, on the next song.
        screen->removeSelected();
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"d"_s}));
        QCOMPARE(selectedSong(*screen), u"d"_s);
    }

    void aRemovalAfterAnUnsavedMoveRemovesTheRightSong()
    {
        open({u"a"_s, u"b"_s, u"c"_s});
        screen->select(2);
        screen->moveSelectedRow(-2); // c a b, not saved yet
        screen->remove(1);
        QTRY_COMPARE(playlist.order, (QStringList{u"c"_s, u"b"_s}));
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"c"_s, u"b"_s}));
    }

    void playingGivesThePlayerTheRowsAsShown()
    {
        open({u"a"_s, u"x"_s, u"b"_s, u"x"_s});
        screen->play(3);
        QCOMPARE(idsOf(player->queue()), (QStringList{u"a"_s, u"x"_s, u"b"_s, u"x"_s}));
        QCOMPARE(player->currentIndex(), 3);
        QCOMPARE(player->source(), PlaybackSource::playlist(u"p1"_s, u"Road Trip"_s));
        // Only the row that plays carries the marker, not every row of its song.
        const auto current = [this](int row) {
            return screen->entries()->data(screen->entries()->index(row), PlaylistEntryModel::IsCurrentRole).toBool();
        };
        QVERIFY(current(3));
        QVERIFY(!current(1));
        player->toggleShuffle();
        screen->playSelected();
        QVERIFY(!player->isShuffling());
        QCOMPARE(player->currentIndex(), 3);
    }

    void renamesAndDeletesGoThroughTheServer()
    {
        open({u"a"_s});
        QCOMPARE(screen->metadataLine(), u"1 song"_s);
        screen->rename(u" \t "_s);
        QTest::qWait(100);
        QCOMPARE(server.count(u"updatePlaylist"_s), 0);
        screen->rename(u"  Night Drive "_s);
        QTRY_COMPARE(screen->name(), u"Night Drive"_s);
        QCOMPARE(screen->deleteTitle(), u"Delete “Night Drive”?"_s);

        QSignalSpy deleted(screen.get(), &PlaylistDetailScreen::deleted);
        server.on(u"deletePlaylist"_s, FakeSubsonicServer::error(50, u"Not yours"_s));
        screen->deletePlaylist();
        QTRY_VERIFY(library->lastFailure().has_value());
        QCOMPARE(deleted.count(), 0);
        server.on(u"deletePlaylist"_s, FakeSubsonicServer::json({}));
        screen->deletePlaylist();
        QTRY_COMPARE(deleted.count(), 1);
    }

    void theDownloadedCopyStandsInUntilTheServerIsBack()
    {
        // Kept on disk in its own order: b before a, by track.
        const DownloadLayout layout(folder.path());
        DownloadManifest manifest;
        const QString key = playlistCollectionKey(u"p1"_s);
        manifest.collections.insert(key, DownloadCollection{.key = key, .name = u"Road Trip"_s});
        for (const auto &[id, track] : {std::pair{u"a"_s, 2}, std::pair{u"b"_s, 1}}) {
            const Song song{.id = id, .title = u"Song "_s + id, .album = u"Al"_s, .track = track, .duration = 200};
            manifest.songs.insert(id, DownloadedSong{.song = song, .suffix = u"mp3"_s, .bytes = 10, .owners = {key}});
        }
        QVERIFY(saveManifest(manifest, layout.directory(client.config())));
        const std::shared_ptr<DownloadStore> downloads = DownloadStore::create(client, layout);

        server.stop();
        playlist.order = {u"a"_s, u"b"_s};
        screen = std::make_unique<PlaylistDetailScreen>();
        screen->setLibrary(library.get());
        screen->setPlayer(player.get());
        screen->setProperty("downloads", QVariant::fromValue(downloads.get()));
        screen->setPlaylistId(u"p1"_s);
        screen->componentComplete();
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"a"_s}));
        QVERIFY(screen->isLocalOrder());
        QCOMPARE(screen->errorMessage(), QString());

        // It plays, but does not move or lose rows.
        screen->play(1);
        QCOMPARE(player->currentSong()->id, u"a"_s);
        drag(0, {1});
        screen->select(0);
        QCOMPARE(screen->moveSelectedRow(1), -1);
        screen->removeSelected();
        screen->drop();
        QTest::qWait(PlaylistDetailScreen::saveDelayMs + 100);
        QCOMPARE(shownSongs(*screen), (QStringList{u"b"_s, u"a"_s}));

        // "Try Again" once the server is back: its order returns by itself.
        server.start();
        server.on(u"ping"_s, FakeSubsonicServer::json({}));
        library->retryConnection();
        QTRY_COMPARE(shownSongs(*screen), (QStringList{u"a"_s, u"b"_s}));
        QVERIFY(!screen->isLocalOrder());
        QCOMPARE(server.count(u"createPlaylist"_s) + server.count(u"updatePlaylist"_s), 0);
    }

    void withoutACopyAFailedLoadSaysWhy()
    {
        server.on(u"getPlaylist"_s, FakeSubsonicServer::error(70, u"Playlist not found"_s));
        screen = std::make_unique<PlaylistDetailScreen>();
        screen->setLibrary(library.get());
        screen->setPlaylistId(u"p1"_s);
        screen->componentComplete();
        QCOMPARE(screen->state(), u"loading"_s);
        QTRY_COMPARE(screen->state(), u"error"_s);
        QVERIFY(screen->errorMessage().contains(u"Playlist not found"_s));
        QCOMPARE(screen->name(), u"Playlist"_s);
        QCOMPARE(screen->deleteTitle(), u"Delete “Playlist”?"_s);
    }
};

QTEST_GUILESS_MAIN(PlaylistScreenTest)
#include "tst_playlistscreen.moc"
