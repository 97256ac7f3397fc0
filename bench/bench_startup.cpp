// Start-up time: from starting the velto process to the first frame of the restored main view, signed in and
// with nothing cached. Run inside scripts/test-env.sh --keyring, which gives fresh folders and a keyring.

#include "benchmark.h"
#include "fakesubsonicserver.h"
#include "server/appstate.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {
const QString password = u"bench-password"_s;

bool signIn(FakeSubsonicServer &server)
{
    QSettings settings;
    AppState appState(&settings);
    bool done = false;
    bool ok = false;
    auto connect = [&]() -> QCoro::Task<> {
        try {
            co_await appState.connect(server.baseURL().toString(), u"bench"_s, password);
            ok = true;
        } catch (...) {
        }
        done = true;
    };
    connect();
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    settings.sync();
    return ok;
}

// Milliseconds from process start to the line the application logs at its first frame; negative on failure.
double timeToFirstFrame()
{
    QDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + u"/Velto"_s).removeRecursively();
    QProcess velto;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(u"QT_LOGGING_RULES"_s, u"velto.startup.info=true"_s);
    velto.setProcessEnvironment(env);
    velto.setProcessChannelMode(QProcess::SeparateChannels);
    velto.setReadChannel(QProcess::StandardError);
    QElapsedTimer timer;
    timer.start();
    velto.start(QStringLiteral(VELTO_BINARY), {});
    QByteArray errors;
    double elapsed = -1;
    while (timer.elapsed() < 20'000 && velto.state() != QProcess::NotRunning) {
        velto.waitForReadyRead(50);
        errors += velto.readAllStandardError();
        if (errors.contains("velto.startup: first frame")) {
            elapsed = timer.nsecsElapsed() / 1e6;
            break;
        }
    }
    velto.terminate();
    if (!velto.waitForFinished(5'000))
        velto.kill();
    if (elapsed < 0)
        std::fprintf(stderr, "bench_startup: no first frame\n%s\n", errors.constData());
    return elapsed;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    FakeSubsonicServer server;
    server.on(u"ping"_s, FakeSubsonicServer::json({}));
    if (!signIn(server)) {
        std::fprintf(stderr, "bench_startup: could not sign in\n");
        return 1;
    }
    std::vector<double> times;
    for (int run = 0; run < 10; ++run) {
        const double ms = timeToFirstFrame();
        if (ms < 0)
            return 1;
        times.push_back(ms);
    }
    std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
    report("startup_first_frame_ms", times[times.size() / 2], "ms");
    return 0;
}
