// The main window on a real X server. Opening the Downloads screen with a large offline library: from selecting
// Downloads in the sidebar to the first frame that shows it, with 200 albums and playlists and 10,000 songs in
// the manifest. Flicking through a grid of 2,000 albums with their covers cached: the frames' 95th percentile from
// a scroll step to its frame. Then a local file playing with the window, its playback bar and the Downloads page
// on screen: the CPU time the whole process takes per minute, and the frames drawn per second with nothing else
// changing. Run inside scripts/test-env.sh --keyring --display --sound.

#include "benchmark.h"
#include "benchwindow.h"
#include "fakesubsonicserver.h"
#include "offline/downloadlayout.h"
#include "offline/downloadstore.h"
#include "library/librarystore.h"
#include "offline/manifestfile.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"
#include "shell/mainwindow.h"
#include "shell/navigation.h"
#include "shell/symbolicons.h"
#include "shell/veltoapp.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QImage>
#include <QJsonArray>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <clocale>
#include <sys/resource.h>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
constexpr int collectionCount = 200;
constexpr int songsPerCollection = 50;
constexpr int runs = 9;
constexpr int playingSeconds = 30;
constexpr int gridAlbums = 2000;

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

// The account, with a large offline library on disk for it.
bool signInWithDownloads(FakeSubsonicServer &server)
{
    const std::optional<ServerConfig> config = signIn(server);
    return config && saveManifest(largeManifest(), DownloadLayout::standard().directory(*config));
}

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// A tone long enough to play through the measurement.
bool makeTone(const QString &path)
{
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-y"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                               u"sine=frequency=440:duration=%1"_s.arg(playingSeconds + 30), u"-c:a"_s, u"flac"_s, path});
    return ffmpeg.waitForFinished(60'000) && ffmpeg.exitCode() == 0;
}

QByteArray coverPng(const QString &id)
{
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(QColor::fromHsv(int(qHash(id) % 360), 160, 200));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

FakeResponse albumPage(const RecordedRequest &request)
{
    const int offset = request.value(u"offset"_s).toInt();
    const int size = request.value(u"size"_s).toInt();
    QJsonArray albums;
    for (int i = offset; i < std::min(offset + size, gridAlbums); ++i) {
        albums.append(QJsonObject{{u"id"_s, u"al%1"_s.arg(i)}, {u"name"_s, u"Album %1"_s.arg(i)},
                                  {u"artist"_s, u"Artist %1"_s.arg(i % 50)}, {u"coverArt"_s, u"al%1"_s.arg(i)}});
    }
    return FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject{{u"album"_s, albums}}}});
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
    server.on(u"getAlbumList2"_s, albumPage);
    server.on(u"getCoverArt"_s, [](const RecordedRequest &request) {
        return FakeResponse{.contentType = "image/png", .body = coverPng(request.value(u"id"_s))};
    });
    if (!signInWithDownloads(server)) {
        std::fprintf(stderr, "bench_window: could not sign in\n");
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
            std::fprintf(stderr, "bench_window: the Downloads page did not show the collections\n");
            return 1;
        }
        times.push_back(ms);
    }
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    report("downloads_view_open_ms", times[runs / 2], "ms");

    // The Albums grid over 2,000 albums: once through to fill the cover cache, then the frames of a second pass.
    LibraryStore *library = velto.appState()->library();
    while (!library->albumList(AlbumListType::AlphabeticalByName).reachedEnd) {
        library->loadMoreAlbums(AlbumListType::AlphabeticalByName);
        while (library->albumList(AlbumListType::AlphabeticalByName).isLoading)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    navigation->selectKey(u"item:albums"_s);
    QQuickItem *grid = nullptr;
    waited.restart();
    while (!(grid = window->findChild<QQuickItem *>(u"albumGrid"_s)) && waited.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    if (!grid || grid->property("count").toInt() != gridAlbums) {
        std::fprintf(stderr, "bench_window: the grid does not hold the albums\n");
        return 1;
    }
    QTest::qWait(300); // laid out
    const double end = grid->property("contentHeight").toDouble() - grid->height();
    if (end < gridAlbums) {
        std::fprintf(stderr, "bench_window: the grid is %f high\n", end);
        return 1;
    }
    for (double y = 0; y < end; y += grid->height() / 2) {
        grid->setProperty("contentY", y);
        QTest::qWait(40);
    }
    QTest::qWait(500);
    std::vector<double> scrollFrames;
    {
        FrameTimes timing(window);
        // A flick's pace: 40 more points each sixtieth of a second.
        for (double y = 0; y < end; y += 40) {
            grid->setProperty("contentY", y);
            QTest::qWait(16);
        }
        scrollFrames = timing.times();
    }
    report("album_grid_scroll_frame_p95_ms", percentile95(scrollFrames), "ms");
    if (qEnvironmentVariableIsSet("VELTO_BENCH_DETAIL")) {
        std::sort(scrollFrames.begin(), scrollFrames.end());
        std::fprintf(stderr, "frames %zu median %.1f p90 %.1f max %.1f\n", scrollFrames.size(),
                     scrollFrames[scrollFrames.size() / 2], scrollFrames[scrollFrames.size() * 9 / 10], scrollFrames.back());
    }
    // A page that draws nothing of its own accord (Home's featured album changes every 8 seconds), so that the
    // frames counted are the bar's.
    navigation->selectKey(u"item:downloads"_s);
    QTest::qWait(3000); // covers still on their way

    QTemporaryDir folder;
    const QString tone = folder.filePath(u"tone.flac"_s);
    if (!makeTone(tone)) {
        std::fprintf(stderr, "bench_window: ffmpeg could not make a tone\n");
        return 1;
    }
    PlayerController *player = velto.player();
    player->setItemLocator([tone](const Song &, const SubsonicClient &) { return QUrl::fromLocalFile(tone); });
    player->play({Song{.id = u"tone"_s, .title = u"Tone"_s, .artist = u"Bench"_s, .duration = playingSeconds + 30}}, 0,
                 *velto.appState()->client(), std::nullopt);
    waited.restart();
    while (player->currentTime() < 2 && waited.elapsed() < 20'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    if (player->currentTime() < 2) {
        std::fprintf(stderr, "bench_window: the tone does not play\n");
        return 1;
    }
    int frames = 0;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&frames] { ++frames; });
    const double cpuBefore = cpuSeconds();
    QTest::qWait(playingSeconds * 1000);
    const double cpu = cpuSeconds() - cpuBefore;
    if (!player->isPlaying())
        return 1;
    report("playing_window_cpu_s_per_min", cpu * 60 / playingSeconds, "s/min");
    report("bar_tick_frames_per_s", double(frames) / playingSeconds, "frames/s");
    return 0;
}
