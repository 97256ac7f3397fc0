// The song tables without a window, over a fake server: sorting as a reader expects and by clicks on headers,
// selections by click, Ctrl, Shift and keyboard, what a double click and the menu play or queue, the states over
// the table, and a whole library arriving in pages under a selection and the playing song's marker.

#include "../playback/fakeaudioengine.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "screens/songtablescreen.h"
#include "testdata.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
constexpr int total = 20'000;

Song song(const QString &id, const QString &title, std::optional<QString> artist, const QString &album,
          qint64 duration = 200)
{
    return Song{.id = id, .title = title, .album = album, .artist = std::move(artist), .duration = duration};
}

FakeResponse songsAnswer(const QList<Song> &songs)
{
    QJsonArray list;
    for (const Song &song : songs)
        list.append(song.toJson());
    return FakeSubsonicServer::json({{u"searchResult3"_s, QJsonObject{{u"song"_s, list}}}});
}

QStringList tableIds(const SongTableModel &rows)
{
    QStringList ids;
    for (int row = 0; row < rows.rowCount(); ++row)
        ids.append(rows.songAt(row).id);
    return ids;
}

QString marker(const SongTableModel &rows, int row)
{
    return rows.data(rows.index(row, 0), SongTableModel::MarkerRole).toString();
}
}

class SongTablesTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    SubsonicClient client{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};
    std::unique_ptr<LibraryStore> library;
    FakeAudioEngine engine;
    std::unique_ptr<PlayerController> player;

    std::unique_ptr<SongTableScreen> openTable(bool likedOnly)
    {
        auto screen = std::make_unique<SongTableScreen>();
        screen->setLikedOnly(likedOnly);
        screen->setLibrary(library.get());
        screen->setPlayer(player.get());
        screen->componentComplete();
        return screen;
    }

private Q_SLOTS:
    void init()
    {
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server.on(u"star"_s, FakeSubsonicServer::json({}));
        server.on(u"unstar"_s, FakeSubsonicServer::json({}));
        library = std::make_unique<LibraryStore>(client);
        player = std::make_unique<PlayerController>(&engine);
    }
    void cleanup()
    {
        player.reset();
        library.reset();
    }

    void sortsAsAReaderExpectsAndByTheHeadersClicked()
    {
        SongTableModel rows;
        QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::QtTest);
        rows.setSongs({song(u"a"_s, u"Track 10"_s, u"Émile"_s, u"Zeta"_s, 300), song(u"b"_s, u"track 2"_s, u"eve"_s, u"Alpha"_s, 100),
                       song(u"c"_s, u"Track 1"_s, std::nullopt, u"Alpha"_s, 200), song(u"d"_s, u"Ärger"_s, u"Zoë"_s, u"Beta"_s, 100)});
        // Titles by letters as a reader reads them and numbers by value, whatever the case.
        QCOMPARE(tableIds(rows), (QStringList{u"d"_s, u"c"_s, u"b"_s, u"a"_s}));

        SongTableScreen screen;
        QSignalSpy generations(&screen, &SongTableScreen::sortChanged);
        screen.rows()->setSongs({song(u"a"_s, u"One"_s, u"Émile"_s, u"Zeta"_s), song(u"b"_s, u"Two"_s, u"eve"_s, u"Alpha"_s),
                                 song(u"c"_s, u"Three"_s, std::nullopt, u"Alpha"_s), song(u"d"_s, u"Four"_s, u"Émile"_s, u"Beta"_s)});
        screen.clickHeader(int(SongColumn::Artist));
        // No artist sorts first; Émile's two songs by title, the column clicked before.
        QCOMPARE(tableIds(*screen.rows()), (QStringList{u"c"_s, u"d"_s, u"a"_s, u"b"_s}));
        screen.clickHeader(int(SongColumn::Artist));
        QCOMPARE(tableIds(*screen.rows()), (QStringList{u"b"_s, u"d"_s, u"a"_s, u"c"_s}));
        QVERIFY(!screen.sortAscending());
        QCOMPARE(screen.tableGeneration(), 2);
        QCOMPARE(generations.count(), 2);
        // Album, then the artist as the second key.
        screen.clickHeader(int(SongColumn::Album));
        QCOMPARE(tableIds(*screen.rows()), (QStringList{u"b"_s, u"c"_s, u"d"_s, u"a"_s}));
        screen.clickHeader(int(SongColumn::Time)); // all as long: the columns clicked before decide
        QCOMPARE(tableIds(*screen.rows()), (QStringList{u"b"_s, u"c"_s, u"d"_s, u"a"_s}));
    }

    void clicksSelectAndPlaysTakeTheWholeTableInItsOrder()
    {
        server.on(u"search3"_s, songsAnswer({song(u"a"_s, u"Delta"_s, u"X"_s, u"A"_s), song(u"b"_s, u"Alpha"_s, u"X"_s, u"A"_s),
                                             song(u"c"_s, u"Charlie"_s, u"X"_s, u"A"_s), song(u"d"_s, u"Bravo"_s, u"X"_s, u"A"_s)}));
        const auto screen = openTable(false);
        QCOMPARE(screen->state(), u"loading"_s);
        QTRY_COMPARE(screen->rows()->rowCount(), 4);
        QCOMPARE(screen->state(), u"table"_s);
        const QStringList table{u"b"_s, u"d"_s, u"c"_s, u"a"_s};
        QCOMPARE(tableIds(*screen->rows()), table);

        // Ctrl-clicks out of order, then Play Next and Play Last in table order.
        screen->clickRow(3);
        screen->clickRow(0, Qt::ControlModifier);
        screen->clickRow(2, Qt::ControlModifier);
        QCOMPARE(screen->selectedCount(), 3);
        screen->clickRow(2, Qt::ControlModifier);
        QCOMPARE(idsOf(screen->selectedSongs()), (QStringList{u"b"_s, u"a"_s}));
        player->play(makeSongs(u"x"_s), 0, client, std::nullopt);
        screen->playSelectionNext();
        QCOMPARE(idsOf(player->queue()), (QStringList{u"x"_s, u"b"_s, u"a"_s}));
        screen->playSelectionLast();
        QCOMPARE(idsOf(player->queue()), (QStringList{u"x"_s, u"b"_s, u"a"_s, u"b"_s, u"a"_s}));

        // A double click with several rows selected: the whole table, from the row clicked.
        screen->playRow(3);
        QCOMPARE(idsOf(player->queue()), table);
        QCOMPARE(player->currentIndex(), 3);
        QCOMPARE(player->source(), std::nullopt);
        QCOMPARE(marker(*screen->rows(), 3), u"speaker.wave.2.fill"_s);
        player->pause();
        QCOMPARE(marker(*screen->rows(), 3), u"speaker.fill"_s);

        // Shift stretches from the last click; Return plays from the keyboard's row; a right click inside the
        // selection keeps it, outside replaces it.
        screen->clickRow(1);
        screen->clickRow(3, Qt::ShiftModifier);
        QCOMPARE(screen->selectedCount(), 3);
        screen->pressRowForMenu(2);
        QCOMPARE(screen->selectedCount(), 3);
        QCOMPARE(screen->singleSelectedRecord(), QJsonObject());
        screen->pressRowForMenu(0);
        QCOMPARE(screen->selectedCount(), 1);
        QCOMPARE(screen->singleSelectedRecord().value(u"id"_s).toString(), u"b"_s);
        QCOMPARE(screen->moveCursor(1), 1);
        QCOMPARE(screen->moveCursor(1, true), 2);
        QCOMPARE(idsOf(screen->selectedSongs()), (QStringList{u"d"_s, u"c"_s}));
        screen->playSelection();
        QCOMPARE(player->currentIndex(), 2);
        screen->selectAll();
        QCOMPARE(screen->selectedCount(), 4);

        // A new sort moves the rows, not the selection or the marker.
        screen->clickHeader(int(SongColumn::Title));
        QCOMPARE(tableIds(*screen->rows()), (QStringList{u"a"_s, u"c"_s, u"d"_s, u"b"_s}));
        QCOMPARE(marker(*screen->rows(), 1), u"speaker.wave.2.fill"_s);
        QCOMPARE(screen->selectedCount(), 4);
    }

    void theStatesStandOverTheTableUntilTheStoreHasSongs()
    {
        server.on(u"search3"_s, FakeSubsonicServer::error(0, u"Index broken"_s));
        const auto failed = openTable(false);
        QTRY_COMPARE(failed->state(), u"message"_s);
        QCOMPARE(failed->messageTitle(), u"Couldn’t Load Songs"_s);
        QVERIFY(failed->messageText().contains(u"Index broken"_s));
        QCOMPARE(failed->messageSymbol(), u"exclamationmark.triangle"_s);

        // The liked songs: unliking the last one leaves the table at once and says there are none.
        const Song liked = song(u"l1"_s, u"Loved"_s, u"X"_s, u"A"_s);
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject{{u"song"_s, QJsonArray{liked.toJson()}}}}}));
        library = std::make_unique<LibraryStore>(client);
        const auto likedTable = openTable(true);
        QTRY_COMPARE(likedTable->rows()->rowCount(), 1);
        likedTable->clickRow(0);
        likedTable->unlikeSelection();
        QCOMPARE(likedTable->rows()->rowCount(), 0);
        QCOMPARE(likedTable->state(), u"message"_s);
        QCOMPARE(likedTable->messageTitle(), u"No Liked Songs"_s);
        QCOMPARE(likedTable->messageSymbol(), u"heart"_s);
        QCOMPARE(likedTable->selectedCount(), 0);
        QTRY_COMPARE(server.count(u"unstar"_s), 1);
    }

    void aLibraryArrivingInPagesKeepsTheSelectionAndTheMarker()
    {
        server.on(u"search3"_s, [](const RecordedRequest &request) {
            const int offset = request.value(u"songOffset"_s).toInt();
            QList<Song> page;
            for (int i = offset; i < std::min(offset + LibraryStore::songPageSize, total); ++i)
                page.append(song(u"s%1"_s.arg(i), u"Song %1"_s.arg((i * 7919) % total), u"Artist %1"_s.arg(i % 97), u"Album"_s));
            return songsAnswer(page);
        });
        const auto screen = openTable(false);
        QAbstractItemModelTester tester(screen->rows(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        QTRY_VERIFY(screen->rows()->rowCount() >= LibraryStore::songPageSize);
        // The first page's last song picked and playing, by the time the rest arrives.
        const QString picked = u"s%1"_s.arg(LibraryStore::songPageSize - 1);
        screen->clickRow(*screen->rows()->rowOf(picked));
        player->play({screen->rows()->songAt(*screen->rows()->rowOf(picked))}, 0, client, std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(screen->rows()->rowCount(), total, 60'000);
        QVERIFY(library->songsLoaded());
        const int row = *screen->rows()->rowOf(picked);
        QCOMPARE(screen->cursorRow(), row);
        QCOMPARE(idsOf(screen->selectedSongs()), QStringList{picked});
        QCOMPARE(marker(*screen->rows(), row), u"speaker.wave.2.fill"_s);
        int marked = 0;
        for (int r = 0; r < total; ++r)
            marked += marker(*screen->rows(), r).isEmpty() ? 0 : 1;
        QCOMPARE(marked, 1);
        // And the rows are in title order, as a reader counts.
        QCOMPARE(screen->rows()->songAt(0).title, u"Song 0"_s);
        QCOMPARE(screen->rows()->songAt(9).title, u"Song 9"_s);
        QCOMPARE(screen->rows()->songAt(10).title, u"Song 10"_s);
    }
};

QTEST_GUILESS_MAIN(SongTablesTest)
#include "tst_songtables.moc"
