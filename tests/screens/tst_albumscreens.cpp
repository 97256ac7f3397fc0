// The album screens' and Home's rules without a window: discs and the metadata line, the selection's moves, an
// album page that plays in server order and opens from the download when the server fails, a grid that pages in
// as its last cell shows and says why it is empty, the strips' paging, the rows' states and the carousel's
// rhythm.

#include "../playback/fakeaudioengine.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "offline/downloadlayout.h"
#include "offline/downloadstore.h"
#include "offline/manifestfile.h"
#include "playback/playercontroller.h"
#include "screens/albumdetailscreen.h"
#include "screens/albumgridscreen.h"
#include "screens/albumtracks.h"
#include "screens/homerows.h"
#include "screens/homescreen.h"
#include "testdata.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
Song track(const QString &id, std::optional<qint64> disc, qint64 number)
{
    return Song{.id = id, .title = u"Song "_s + id, .albumId = u"al1"_s, .track = number, .discNumber = disc,
                .duration = 120};
}

QJsonObject albumAnswer(const QString &id, const QList<Song> &songs)
{
    QJsonArray list;
    for (const Song &song : songs)
        list.append(song.toJson());
    return {{u"album"_s, QJsonObject{{u"id"_s, id}, {u"name"_s, u"Album "_s + id}, {u"song"_s, list}}}};
}

QStringList rowsOf(const TrackListModel &model)
{
    QStringList rows;
    for (const TrackRowItem &row : model.items())
        rows.append(row.discHeading.isEmpty() ? row.song.id : row.discHeading + u": "_s + row.song.id);
    return rows;
}

QJsonObject albumRecord(const QString &id)
{
    return QJsonObject{{u"id"_s, id}, {u"name"_s, u"Album "_s + id}};
}
}

class AlbumScreensTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    QTemporaryDir folder;
    SubsonicClient client{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};
    std::unique_ptr<LibraryStore> library;
    FakeAudioEngine engine;
    std::unique_ptr<PlayerController> player;

private Q_SLOTS:
    void init()
    {
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        library = std::make_unique<LibraryStore>(client);
        player = std::make_unique<PlayerController>(&engine);
    }
    void cleanup()
    {
        player.reset();
        library.reset();
    }

    void discsMetadataAndSelection()
    {
        QCOMPARE(AlbumTracks::discs({track(u"a"_s, 1, 1), track(u"b"_s, std::nullopt, 2)}).size(), 1);
        QCOMPARE(AlbumTracks::discs({track(u"a"_s, 1, 1)}).at(0).number, std::nullopt);
        const QList<Disc> discs = AlbumTracks::discs({track(u"a"_s, 2, 1), track(u"b"_s, 1, 1), track(u"c"_s, std::nullopt, 2)});
        QCOMPARE(discs.size(), 2);
        QCOMPARE(discs.at(0).number, 1);
        QCOMPARE(idsOf(discs.at(0).songs), (QStringList{u"b"_s, u"c"_s}));

        QCOMPARE(AlbumTracks::metadataLine(1994, 59), u"1994 • 1 min"_s);
        QCOMPARE(AlbumTracks::metadataLine(std::nullopt, 60), u"1 min"_s);
        QCOMPARE(AlbumTracks::metadataLine(1994, 0), u"1994"_s);
        QCOMPARE(AlbumTracks::metadataLine(std::nullopt, 3599), u"59 min"_s);
        QCOMPARE(AlbumTracks::metadataLine(std::nullopt, std::nullopt), QString());

        const QList<Song> ordered = makeSongs(u"a b c"_s);
        QCOMPARE(AlbumTracks::movedSelection({}, QString(), 1), std::nullopt);
        QCOMPARE(AlbumTracks::movedSelection(ordered, QString(), 1), u"a"_s);
        QCOMPARE(AlbumTracks::movedSelection(ordered, u"gone"_s, -1), u"c"_s);
        QCOMPARE(AlbumTracks::movedSelection(ordered, u"c"_s, 1), u"c"_s);
        QCOMPARE(AlbumTracks::movedSelection(ordered, u"a"_s, -1), u"a"_s);
    }

    void aPagePlaysInServerOrderWhateverTheDiscsShow()
    {
        const QList<Song> songs{track(u"d2a"_s, 2, 1), track(u"d1a"_s, 1, 1), track(u"d2b"_s, 2, 2), track(u"d1b"_s, 1, 2)};
        server.on(u"getAlbum"_s, FakeSubsonicServer::json(albumAnswer(u"al1"_s, songs)));
        AlbumDetailScreen screen;
        screen.classBegin();
        screen.setLibrary(library.get());
        screen.setPlayer(player.get());
        screen.setAlbum(albumRecord(u"al1"_s));
        screen.componentComplete();
        QCOMPARE(screen.state(), u"loading"_s);
        QTRY_COMPARE(screen.state(), u"tracks"_s);
        QCOMPARE(rowsOf(*screen.tracks()),
                 (QStringList{u"Disc 1: d1a"_s, u"Disc 1: d1b"_s, u"Disc 2: d2a"_s, u"Disc 2: d2b"_s}));

        screen.play(u"d1b"_s);
        QCOMPARE(idsOf(player->queue()), idsOf(songs));
        QCOMPARE(player->currentIndex(), 3);
        QCOMPARE(player->source(), PlaybackSource::album(u"al1"_s, u"Album al1"_s));
        QCOMPARE(screen.selectedSongId(), u"d1b"_s);

        // Down goes by the rows as shown and stops at the last; Return plays the selection.
        QCOMPARE(screen.moveSelection(1), 2);
        QCOMPARE(screen.selectedSongId(), u"d2a"_s);
        screen.moveSelection(1);
        QCOMPARE(screen.moveSelection(1), 3);
        screen.playSelected();
        QCOMPARE(player->currentIndex(), 2);
    }

    void aPageOpensFromTheDownloadWhenTheServerFails()
    {
        server.on(u"getAlbum"_s, FakeSubsonicServer::error(70, u"Album not found"_s));
        const DownloadLayout layout(folder.path());
        DownloadManifest manifest;
        const QString key = albumCollectionKey(u"kept"_s);
        manifest.collections.insert(key, DownloadCollection{.key = key, .name = u"Kept"_s});
        for (const Song &song : {track(u"k1"_s, 1, 1), track(u"k2"_s, 1, 2)})
            manifest.songs.insert(song.id, DownloadedSong{.song = song, .suffix = u"mp3"_s, .bytes = 10, .owners = {key}});
        QVERIFY(saveManifest(manifest, layout.directory(client.config())));
        const std::shared_ptr<DownloadStore> downloads = DownloadStore::create(client, layout);

        AlbumDetailScreen kept;
        kept.setLibrary(library.get());
        kept.setProperty("downloads", QVariant::fromValue(downloads.get()));
        kept.setAlbum(albumRecord(u"kept"_s));
        kept.componentComplete();
        QTRY_COMPARE(kept.state(), u"tracks"_s);
        QCOMPARE(kept.errorMessage(), QString());
        QCOMPARE(rowsOf(*kept.tracks()), (QStringList{u"k1"_s, u"k2"_s}));

        AlbumDetailScreen missing;
        missing.setLibrary(library.get());
        missing.setProperty("downloads", QVariant::fromValue(downloads.get()));
        missing.setAlbum(albumRecord(u"missing"_s));
        missing.componentComplete();
        QTRY_COMPARE(missing.state(), u"error"_s);
        QVERIFY2(missing.errorMessage().contains(u"Album not found"_s), qPrintable(missing.errorMessage()));
    }

    void aGridPagesInAtItsLastCellAndSaysWhyItIsEmpty()
    {
        int pages = 0;
        server.on(u"getAlbumList2"_s, [&pages](const RecordedRequest &request) {
            ++pages;
            const int offset = request.value(u"offset"_s).toInt();
            QJsonArray list;
            for (int i = offset; i < std::min(offset + LibraryStore::albumPageSize, 70); ++i)
                list.append(QJsonObject{{u"id"_s, u"al%1"_s.arg(i)}, {u"name"_s, u"Album %1"_s.arg(i)}});
            return FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject{{u"album"_s, list}}}});
        });
        AlbumGridScreen grid;
        grid.setLibrary(library.get());
        grid.setListType(u"newest"_s);
        grid.componentComplete();
        QTRY_COMPARE(grid.albums()->rowCount(), LibraryStore::albumPageSize);
        QCOMPARE(grid.state(), u"grid"_s);
        grid.cellShown(10);
        QTest::qWait(100);
        QCOMPARE(pages, 1);
        grid.cellShown(LibraryStore::albumPageSize - 1);
        QTRY_COMPARE(grid.albums()->rowCount(), 70);
        grid.cellShown(69); // the store knows the end
        QTest::qWait(100);
        QCOMPARE(pages, 2);

        server.on(u"getAlbumList2"_s, FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject()}}));
        AlbumGridScreen empty;
        empty.setLibrary(library.get());
        empty.setListType(u"frequent"_s);
        empty.componentComplete();
        QTRY_COMPARE(empty.state(), u"message"_s);
        QCOMPARE(empty.messageTitle(), u"No Albums"_s);
        QCOMPARE(empty.messageText(), u"Your library doesn’t have any albums yet."_s);

        server.on(u"getAlbumList2"_s, FakeSubsonicServer::error(0, u"Broken list"_s));
        AlbumGridScreen failed;
        failed.setLibrary(library.get());
        failed.setListType(u"random"_s);
        failed.componentComplete();
        QTRY_COMPARE(failed.messageTitle(), u"Couldn’t Load Albums"_s);
        QCOMPARE(failed.messageSymbol(), u"exclamationmark.triangle"_s);
    }

    void aStripPagesByWholeCards()
    {
        constexpr double stride = 190;
        QCOMPARE(StripPaging::target(0, 400, stride, 20, 1), 2); // two cards fit
        QCOMPARE(StripPaging::target(0, 100, stride, 20, 1), 1); // at least one
        QCOMPARE(StripPaging::target(0, 400, stride, 20, -1), std::nullopt);
        QCOMPARE(StripPaging::target(190, 400, stride, 20, -1), 0);
        QCOMPARE(StripPaging::target(17 * stride, 400, stride, 20, 1), 19); // the last card, then no further
        QCOMPARE(StripPaging::target(19 * stride, 400, stride, 20, 1), std::nullopt);
        QVERIFY(!StripPaging::canScrollLeft(0));
        QVERIFY(StripPaging::canScrollRight(0, 400, 1000));
        QVERIFY(!StripPaging::canScrollRight(600, 400, 1000)); // the end
        QVERIFY(!StripPaging::canScrollRight(0, 400, 380)); // no overflow
    }

    void aRowShowsItsAlbumsItsFailureOrNothing()
    {
        server.on(u"getAlbumList2"_s, [](const RecordedRequest &request) {
            if (request.value(u"type"_s) == u"frequent"_s)
                return FakeSubsonicServer::error(0, u"No counts here"_s);
            QJsonArray list;
            for (int i = 0; i < 30; ++i)
                list.append(QJsonObject{{u"id"_s, u"al%1"_s.arg(i)}, {u"name"_s, u"Album %1"_s.arg(i)}});
            return FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject{{u"album"_s, list}}}});
        });
        HomeScreen home;
        home.setProperty("library", QVariant::fromValue(library.get()));
        home.componentComplete();
        HomeRow recent;
        recent.setLibrary(library.get());
        recent.setListType(u"recent"_s);
        HomeRow frequent;
        frequent.setLibrary(library.get());
        frequent.setListType(u"frequent"_s);
        QTRY_COMPARE(recent.shows(), u"strip"_s);
        QCOMPARE(recent.albums()->rowCount(), HomeRow::cardLimit);
        // A server fault with the server reachable: the row says so under its heading.
        QTRY_COMPARE(frequent.shows(), u"error"_s);
        QCOMPARE(frequent.errorMessage().contains(u"No counts here"_s), true);

        // With the server gone, an empty row goes away; one with albums stays.
        server.stop();
        frequent.retry();
        QTRY_VERIFY(!library->reachability().isOk());
        QTRY_COMPARE(frequent.shows(), u"hidden"_s);
        QCOMPARE(recent.shows(), u"strip"_s);
    }

    void theCarouselStepsEveryPeriodUnlessHoveredAndRestartsOnlyOnANewKey()
    {
        FeaturedCarousel carousel;
        QList<Album> albums;
        for (int i = 0; i < 3; ++i)
            albums.append(Album::fromJson(albumRecord(u"f%1"_s.arg(i))));
        carousel.setAlbums(albums);
        carousel.setOnScreen(true);
        carousel.step(-1);
        QCOMPARE(carousel.index(), 2); // wraps round
        carousel.step(1);
        QCOMPARE(carousel.index(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(carousel.index(), 1, FeaturedCarousel::advanceMs + 2000);
        // Hovering lets periods pass without a step.
        carousel.setProperty("isHovering", true);
        QTest::qWait(FeaturedCarousel::advanceMs + 500);
        QCOMPARE(carousel.index(), 1);
        carousel.setProperty("isHovering", false);
        // Off screen there is no rhythm; back on screen it starts afresh.
        carousel.setOnScreen(false);
        QTest::qWait(FeaturedCarousel::advanceMs + 500);
        QCOMPARE(carousel.index(), 1);
        carousel.setOnScreen(true);
        QTRY_COMPARE_WITH_TIMEOUT(carousel.index(), 2, FeaturedCarousel::advanceMs + 2000);
        // One album: no rhythm at all.
        carousel.setAlbums(albums.mid(0, 1));
        QTest::qWait(FeaturedCarousel::advanceMs + 500);
        QCOMPARE(carousel.index(), 0);
    }
};

QTEST_GUILESS_MAIN(AlbumScreensTest)
#include "tst_albumscreens.moc"
