// Figures for the library store: the main thread's cost of one page of the song walk, and the memory that
// 20,000 songs hold. The server runs on its own thread so its work is not counted.

#include "benchmark.h"
#include "benchsongs.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QThread>

#include <malloc.h>
#include <time.h>

namespace {
double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

FakeResponse songPage(int first)
{
    QJsonArray songs;
    for (int i = first; i < first + 500; ++i) {
        songs.append(benchSongJson(i));
    }
    return FakeSubsonicServer::json({{QStringLiteral("searchResult3"), QJsonObject{{QStringLiteral("song"), songs}}}});
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    QThread serverThread;
    QObject serverContext;
    serverContext.moveToThread(&serverThread);
    serverThread.start();
    FakeSubsonicServer *server = nullptr;
    QMetaObject::invokeMethod(
        &serverContext,
        [&] {
            server = new FakeSubsonicServer;
            server->on(QStringLiteral("search3"), [](const RecordedRequest &request) {
                return songPage(request.value(QStringLiteral("songOffset")).toInt());
            });
        },
        Qt::BlockingQueuedConnection);

    const size_t heapBefore = mallinfo2().uordblks;
    {
        LibraryStore store(SubsonicClient(ServerConfig{server->baseURL(), QStringLiteral("a"), QStringLiteral("b")}));
        const double cpuBefore = threadCpuMs();
        store.ensureSongsLoaded();
        while (!store.songsLoaded())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        const double cpuMs = threadCpuMs() - cpuBefore;
        if (store.songs().size() != 20000)
            qFatal("expected 20000 songs, got %lld", static_cast<long long>(store.songs().size()));
        report("songs_page_main_thread_ms", cpuMs / 40.0, "ms");
        malloc_trim(0);
        report("songs_20k_memory_mb", (double(mallinfo2().uordblks) - double(heapBefore)) / (1024.0 * 1024.0), "MB");
    }

    QMetaObject::invokeMethod(server, [server] { delete server; }, Qt::BlockingQueuedConnection);
    serverThread.quit();
    serverThread.wait();
    return 0;
}
