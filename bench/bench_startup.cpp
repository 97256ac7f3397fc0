// Start-up and idle, on a real X server: from starting the velto process to the first frame of the main view
// restored on a saved place, signed in, with the covers cached; the same less the time a bare Qt Quick window
// takes to paint; to the first frame of Home with its featured album, rows and covers (from the caches); and how
// many frames the window renders while nothing changes. Run inside
// scripts/test-env.sh --keyring --display, which gives fresh folders, a keyring and Xvfb.

#include "benchmark.h"
#include "benchwindow.h"
#include "fakesubsonicserver.h"
#include "server/appstate.h"
#include "server/serverconfig.h"
#include "shell/savedlocation.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QSettings>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {
const QString password = u"bench-password"_s;
constexpr int runs = 7;

// One run of a program that logs "main view frame" when its window shows what counts. The process is left
// running for `whileRunning`, which gets its log as it comes.
struct Run {
    double msToFrame = -1;
    QByteArray log;
};

template<typename WhileRunning>
Run run(const QString &program, const QString &logRules, const QByteArray &line, WhileRunning &&whileRunning)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"QT_LOGGING_RULES"_s, logRules);
    process.setProcessEnvironment(env);
    process.setReadChannel(QProcess::StandardError);
    QElapsedTimer timer;
    timer.start();
    process.start(program, {});
    Run result;
    while (timer.elapsed() < 20'000 && process.state() != QProcess::NotRunning) {
        // The fake server answers from this process's event loop.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        process.waitForReadyRead(5);
        result.log += process.readAllStandardError();
        if (result.log.contains("velto.startup: " + line)) {
            result.msToFrame = timer.nsecsElapsed() / 1e6;
            break;
        }
    }
    if (result.msToFrame >= 0)
        whileRunning(process, result.log);
    else
        std::fprintf(stderr, "bench_startup: %s showed no frame\n%s\n", qPrintable(program), result.log.constData());
    process.terminate();
    if (!process.waitForFinished(5'000))
        process.kill();
    return result;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

std::optional<double> medianTimeToFrame(const QString &program, const QByteArray &line = "main view frame")
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const Run once = run(program, u"velto.startup.info=true"_s, line, [](QProcess &, QByteArray &) {});
        if (once.msToFrame < 0)
            return std::nullopt;
        times.push_back(once.msToFrame);
    }
    return median(times);
}

// Frames rendered per second over five seconds once the window has settled, as the scene graph logs them.
std::optional<double> idleFramesPerSecond()
{
    int frames = -1;
    run(QStringLiteral(VELTO_BINARY), u"velto.startup.info=true\nqt.scenegraph.time.renderloop=true"_s,
        "main view frame", [&](QProcess &process, QByteArray &log) {
            QElapsedTimer clock;
            clock.start();
            while (clock.elapsed() < 1'000) // the lists of the first second come in
                log += process.waitForReadyRead(50) ? process.readAllStandardError() : QByteArray();
            log.clear();
            clock.restart();
            while (clock.elapsed() < 5'000) {
                if (process.waitForReadyRead(50))
                    log += process.readAllStandardError();
            }
            frames = int(log.toLower().count("frame rendered"));
        });
    if (frames < 0)
        return std::nullopt;
    return frames / 5.0;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    FakeSubsonicServer server;
    server.on(u"ping"_s, FakeSubsonicServer::json({}));
    const QJsonArray playlists{QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, u"Morning"_s}}};
    server.on(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject{{u"playlist"_s, playlists}}}}));
    server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
    QJsonArray albums;
    for (int i = 0; i < 8; ++i)
        albums.append(QJsonObject{{u"id"_s, u"al%1"_s.arg(i)}, {u"name"_s, u"Album %1"_s.arg(i)},
                                  {u"artist"_s, u"Artist"_s}, {u"coverArt"_s, u"al%1"_s.arg(i)}});
    server.on(u"getAlbumList2"_s, FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject{{u"album"_s, albums}}}}));
    server.on(u"getCoverArt"_s, [](const RecordedRequest &request) {
        QImage cover(300, 300, QImage::Format_RGB32);
        cover.fill(QColor::fromHsv(int(qHash(request.value(u"id"_s)) % 360), 160, 200));
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        cover.save(&buffer, "PNG");
        return FakeResponse{.contentType = "image/png", .body = png};
    });
    const std::optional<ServerConfig> config = signIn(server, password);
    if (!config) {
        std::fprintf(stderr, "bench_startup: could not sign in\n");
        return 1;
    }
    LocationFile locations;
    locations.save(SidebarSelection::item(SidebarItem::Songs), {Album{.id = u"al1"_s, .name = u"Blue Train"_s}}, *config);
    const QString velto = QStringLiteral(VELTO_BINARY);
    run(velto, u"velto.startup.info=true"_s, "main view frame", [](QProcess &, QByteArray &) {}); // fills the caches
    const std::optional<double> restored = medianTimeToFrame(velto);
    const std::optional<double> floor = medianTimeToFrame(QStringLiteral(VELTO_FLOOR_WINDOW));
    if (!restored || !floor)
        return 1;
    report("startup_first_frame_ms", *restored, "ms");
    report("startup_paint_over_floor_ms", *restored - *floor, "ms");

    locations.save(SidebarSelection::item(SidebarItem::Home), {}, *config);
    run(velto, u"velto.startup.info=true"_s, "home frame", [](QProcess &, QByteArray &) {}); // Home's covers
    const std::optional<double> home = medianTimeToFrame(velto, "home frame");
    if (!home)
        return 1;
    report("home_first_frame_ms", *home, "ms");
    const std::optional<double> idle = idleFramesPerSecond();
    if (!idle)
        return 1;
    report("idle_frames_per_s", *idle, "frames/s");
    return 0;
}
