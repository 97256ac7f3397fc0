// The long lists in the main window on a real X server: a live move in a playlist of 1,000 entries, the time its
// call takes on the main thread with the list on screen reacting to it. Run inside
// scripts/test-env.sh --keyring --display.

#include "benchmark.h"
#include "benchsongs.h"
#include "benchwindow.h"
#include "screens/playlistdetailscreen.h"
#include "shell/mainwindow.h"
#include "shell/navigation.h"
#include "shell/symbolicons.h"
#include "shell/veltoapp.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QJsonArray>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QTest>

#include <clocale>
#include <cstdio>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
constexpr int playlistEntries = 1000;
constexpr int moves = 201;

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

    const std::optional<double> move = playlistMoveMs(window, navigation);
    if (!move) {
        std::fprintf(stderr, "bench_tables: the playlist did not load, or its entry did not move\n");
        return 1;
    }
    report("playlist_move_1000_ms", *move, "ms");
    return 0;
}
