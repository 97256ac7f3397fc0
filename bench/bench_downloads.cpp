// Opening the Downloads screen with a large offline library, on a real X server: from selecting Downloads in the
// sidebar to the first frame that shows it, with 200 albums and playlists and 10,000 songs in the manifest. Run
// inside scripts/test-env.sh --keyring --display.

#include "benchmark.h"
#include "fakesubsonicserver.h"
#include "offline/downloadlayout.h"
#include "offline/downloadstore.h"
#include "offline/manifestfile.h"
#include "server/appstate.h"
#include "shell/mainwindow.h"
#include "shell/navigation.h"
#include "shell/symbolicons.h"
#include "shell/veltoapp.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QTest>

#include <clocale>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
constexpr int collectionCount = 200;
constexpr int songsPerCollection = 50;
constexpr int runs = 9;

DownloadManifest largeManifest()
{
    DownloadManifest manifest;
    for (int c = 0; c < collectionCount; ++c) {
        const bool isAlbum = c % 4 != 0;
        const QString id = QString::number(c);
        const QString key = isAlbum ? albumCollectionKey(id) : playlistCollectionKey(id);
        manifest.collections.insert(key, DownloadCollection{.key = key, .name = u"Collection %1"_s.arg(c)});
        for (int s = 0; s < songsPerCollection; ++s) {
            const QString songId = u"s%1-%2"_s.arg(c).arg(s);
            const Song song{.id = songId, .title = u"Song %1"_s.arg(s), .album = u"Album %1"_s.arg(c),
                            .albumId = id, .artist = u"Artist"_s, .track = s + 1, .duration = 200,
                            .suffix = u"mp3"_s, .coverArt = u"cover-%1"_s.arg(isAlbum ? c : s % 8)};
            manifest.songs.insert(songId, DownloadedSong{.song = song, .suffix = u"mp3"_s, .bytes = 5'000'000,
                                                         .owners = {key}});
        }
    }
    return manifest;
}

bool signIn(FakeSubsonicServer &server)
{
    QSettings settings;
    AppState appState(&settings);
    bool done = false;
    auto connect = [&]() -> QCoro::Task<> {
        try {
            QCoro::Task<> connecting = appState.connect(server.baseURL().toString(), u"bench"_s, u"pw"_s);
            co_await connecting;
        } catch (...) {
        }
        done = true;
    };
    connect();
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    settings.sync();
    return appState.client() && saveManifest(largeManifest(),
                                              DownloadLayout::standard().directory(appState.client()->config()));
}

// Milliseconds from `change` to the next frame the window shows.
template<typename Change>
double msToNextFrame(QQuickWindow *window, Change &&change)
{
    bool swapped = false;
    const QMetaObject::Connection watch =
        QObject::connect(window, &QQuickWindow::frameSwapped, window, [&swapped] { swapped = true; });
    QElapsedTimer timer;
    timer.start();
    change();
    while (!swapped && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    QObject::disconnect(watch);
    return swapped ? timer.nsecsElapsed() / 1e6 : -1;
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
    server.on(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject()}}));
    server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
    if (!signIn(server)) {
        std::fprintf(stderr, "bench_downloads: could not sign in\n");
        return 1;
    }

    VeltoApp velto({.updateFeedURL = {}, .version = QVersionNumber(0, 1, 0)});
    QQmlApplicationEngine engine;
    QQuickWindow *window = loadMainWindow(engine, velto);
    if (!window || !QTest::qWaitForWindowExposed(window))
        return 1;
    Navigation *navigation = nullptr;
    QElapsedTimer waited;
    waited.start();
    while (!(navigation = window->findChild<Navigation *>(u"navigation"_s)) && waited.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    if (!navigation)
        return 1;
    // The store's first sweep for missing covers asks for every one; let it end so that it does not run under
    // the timings.
    DownloadStore *store = velto.appState()->downloads();
    waited.restart();
    while (store && store->isSweepingArtwork() && waited.elapsed() < 30'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);

    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        msToNextFrame(window, [&] { navigation->selectKey(u"item:home"_s); });
        QTest::qWait(200);
        const double ms = msToNextFrame(window, [&] { navigation->selectKey(u"item:downloads"_s); });
        const QQuickItem *list = window->findChild<QQuickItem *>(u"downloadsList"_s);
        if (ms < 0 || !list || !list->isVisible() || list->property("count").toInt() == 0) {
            std::fprintf(stderr, "bench_downloads: the Downloads page did not show the collections\n");
            return 1;
        }
        times.push_back(ms);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    report("downloads_view_open_ms", times[runs / 2], "ms");
    return 0;
}
