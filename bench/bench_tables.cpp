// The long lists in the main window on a real X server. A live move in a playlist of 1,000 entries: the time its
// call takes on the main thread with the list on screen reacting to it. The Songs table with a library of 20,000
// songs: one sort by artist then album; from choosing Songs to the first frame with rows; the frames' 95th
// percentile while flicking through all rows; and the process's anonymous memory with the table on screen. Run
// inside scripts/test-env.sh --keyring --display.

#include "benchmark.h"
#include "benchsongs.h"
#include "benchwindow.h"
#include "library/librarystore.h"
#include "screens/playlistdetailscreen.h"
#include "screens/songtablescreen.h"
#include "server/appstate.h"
#include "shell/mainwindow.h"
#include "shell/navigation.h"
#include "shell/symbolicons.h"
#include "shell/veltoapp.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QJsonArray>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickStyle>
#include <QTest>

#include <QFile>

#include <clocale>
#include <cstdio>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
constexpr int playlistEntries = 1000;
constexpr int moves = 201;
constexpr int librarySongs = 20'000;
constexpr int runs = 9;

FakeResponse songPage(const RecordedRequest &request)
{
    const int offset = request.value(u"songOffset"_s).toInt();
    const int size = request.value(u"songCount"_s).toInt();
    QJsonArray songs;
    for (int i = offset; i < std::min(offset + size, librarySongs); ++i)
        songs.append(benchSongJson(i));
    return FakeSubsonicServer::json({{u"searchResult3"_s, QJsonObject{{u"song"_s, songs}}}});
}

// "Anonymous:" of /proc/self/smaps_rollup, in MB.
std::optional<double> anonymousMemoryMb()
{
    QFile rollup(u"/proc/self/smaps_rollup"_s);
    if (!rollup.open(QIODevice::ReadOnly))
        return std::nullopt;
    for (const QByteArray &line : rollup.readAll().split('\n')) {
        if (line.startsWith("Anonymous:"))
            return line.mid(10).trimmed().split(' ').value(0).toDouble() / 1024;
    }
    return std::nullopt;
}

// The table's cells on screen; a view's delegates are found through the scene, not as QObject children.
int shownCells(QQuickItem *item)
{
    int cells = item->objectName() == u"songCell"_s && item->isVisible() ? 1 : 0;
    for (QQuickItem *child : item->childItems())
        cells += shownCells(child);
    return cells;
}

// The table of every song, from choosing it to its first frame with rows; then a sort, the flick and the memory.
bool songTable(QQuickWindow *window, Navigation *navigation, LibraryStore *library)
{
    library->ensureSongsLoaded();
    if (!waitFor([&] { return library->songsLoaded(); }, 120'000) || library->songs().size() != librarySongs) {
        std::fprintf(stderr, "bench_tables: the library did not load\n");
        return false;
    }
    std::vector<double> opens;
    for (int i = 0; i < runs; ++i) {
        navigation->selectKey(u"item:home"_s);
        QTest::qWait(300);
        const double ms = msToNextFrame(window, [&] { navigation->selectKey(u"item:songs"_s); });
        if (ms < 0 || shownCells(window->contentItem()) == 0) {
            std::fprintf(stderr, "bench_tables: the Songs table showed no rows\n");
            return false;
        }
        opens.push_back(ms);
    }
    std::nth_element(opens.begin(), opens.begin() + runs / 2, opens.end());
    report("songs_view_open_20k_ms", opens[runs / 2], "ms");

    auto *screen = window->findChild<SongTableScreen *>(u"songTableScreen"_s);
    auto *table = window->findChild<QQuickItem *>(u"songTable"_s);
    if (!screen || !table || screen->rows()->rowCount() != librarySongs)
        return false;
    const QList<SongSortKey> byArtist{{SongColumn::Artist, true}, {SongColumn::Album, true}};
    const QList<SongSortKey> byTitle{{SongColumn::Title, true}};
    std::vector<double> sorts;
    for (int i = 0; i < runs; ++i) {
        screen->rows()->setSortOrder(byTitle);
        QElapsedTimer timer;
        timer.start();
        screen->rows()->setSortOrder(byArtist);
        sorts.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::nth_element(sorts.begin(), sorts.begin() + runs / 2, sorts.end());
    if (screen->rows()->songAt(0).artistName() != u"Some Artist 0"_s)
        return false;
    report("songs_resort_20k_ms", sorts[runs / 2], "ms");

    // A flick's pace: 40 more points each sixtieth of a second, once through to warm up, then measured.
    QTest::qWait(300);
    const double end = table->property("contentHeight").toDouble() - table->height();
    if (end < librarySongs) {
        std::fprintf(stderr, "bench_tables: the table is %f high\n", end);
        return false;
    }
    for (double y = 0; y < end; y += table->height() / 2) {
        table->setProperty("contentY", y);
        QTest::qWait(10);
    }
    table->setProperty("contentY", 0);
    QTest::qWait(300);
    std::vector<double> frames;
    constexpr int steps = 1500;
    {
        FrameTimes timing(window);
        for (int step = 0; step < steps && step * 40.0 < end; ++step) {
            table->setProperty("contentY", step * 40.0);
            QTest::qWait(16);
        }
        frames = timing.times();
    }
    // Most steps must have drawn a frame, or the figure says nothing about flicking.
    if (frames.size() < steps / 2) {
        std::fprintf(stderr, "bench_tables: %zu frames for %d steps\n", frames.size(), steps);
        return false;
    }
    report("songs_scroll_frame_p95_ms", percentile95(frames), "ms");
    if (qEnvironmentVariableIsSet("VELTO_BENCH_DETAIL")) {
        std::sort(frames.begin(), frames.end());
        std::fprintf(stderr, "frames %zu median %.1f max %.1f\n", frames.size(), frames[frames.size() / 2], frames.back());
    }

    QTest::qWait(1000);
    const std::optional<double> memory = anonymousMemoryMb();
    if (!memory)
        return false;
    report("app_anon_20k_mb", *memory, "MB");
    return true;
}

QJsonObject bigPlaylist()
{
    QJsonArray entries;
    for (int i = 0; i < playlistEntries; ++i)
        entries.append(benchSongJson(i % 700)); // some songs twice, as playlists have them
    return {{u"playlist"_s, QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, u"Long Mix"_s},
                                        {u"songCount"_s, playlistEntries}, {u"entry"_s, entries}}}};
}

// Drags the entry in the middle of the list across `moves` rows, one row at a time, as a drag passes them.
std::optional<double> playlistMoveMs(QQuickWindow *window, Navigation *navigation)
{
    navigation->selectKey(u"playlist:p1"_s);
    PlaylistDetailScreen *screen = nullptr;
    if (!waitFor([&] { return (screen = window->findChild<PlaylistDetailScreen *>(u"playlistScreen"_s)) != nullptr; })
        || !waitFor([&] { return screen->entries()->rowCount() == playlistEntries; }))
        return std::nullopt;
    QTest::qWait(500); // laid out, covers asked for
    const int first = playlistEntries / 2;
    const QUuid dragged = screen->entries()->items().at(first).id;
    screen->beginDrag(first);
    int onto = first;
    const double ms = medianMs(moves, [&] {
        screen->moveDraggedRow(++onto);
        QCoreApplication::sendPostedEvents();
    });
    // The entry went where the drag took it, one row a move.
    const bool moved = screen->entries()->items().at(onto).id == dragged;
    screen->drop();
    return moved ? std::optional(ms) : std::nullopt;
}
}

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    QQuickStyle::setStyle(u"Fusion"_s);
    QFontDatabase::addApplicationFont(SymbolIcons::fontPath());
    FakeSubsonicServer server;
    server.on(u"ping"_s, FakeSubsonicServer::json({}));
    server.on(u"getPlaylists"_s, FakeSubsonicServer::json(
        {{u"playlists"_s, QJsonObject{{u"playlist"_s, QJsonArray{QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, u"Long Mix"_s}}}}}}}));
    server.on(u"getPlaylist"_s, FakeSubsonicServer::json(bigPlaylist()));
    server.on(u"createPlaylist"_s, FakeSubsonicServer::json({}));
    server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
    server.on(u"getAlbumList2"_s, FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject()}}));
    server.on(u"search3"_s, songPage);
    if (!signIn(server)) {
        std::fprintf(stderr, "bench_tables: could not sign in\n");
        return 1;
    }
    VeltoApp velto({.updateFeedURL = {}, .version = QVersionNumber(0, 1, 0)});
    QQmlApplicationEngine engine;
    QQuickWindow *window = loadMainWindow(engine, velto);
    Navigation *navigation = nullptr;
    if (!window || !QTest::qWaitForWindowExposed(window)
        || !waitFor([&] { return (navigation = window->findChild<Navigation *>(u"navigation"_s)) != nullptr; }))
        return 1;

    if (!songTable(window, navigation, velto.appState()->library()))
        return 1;
    const std::optional<double> move = playlistMoveMs(window, navigation);
    if (!move) {
        std::fprintf(stderr, "bench_tables: the playlist did not load, or its entry did not move\n");
        return 1;
    }
    report("playlist_move_1000_ms", *move, "ms");
    return 0;
}
