// Figures for the download engine: a 50 MB song from a loopback HTTP server, fetched by the download store and
// by curl in the same run.
//   download_speed_vs_curl   our throughput divided by curl's (median of each); the target is at least 0.8
//   download_peak_memory_mb  the most the process grew above its idle size during one download; below 20
// The server is a child process, forked before Qt starts, so that neither its buffers nor its work land on
// this process.

#include "benchmark.h"
#include "offline/downloadstore.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <fcntl.h>
#include <netinet/in.h>
#include <string>
#include <sys/prctl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
constexpr qint64 fileBytes = 50LL * 1024 * 1024;
constexpr int runs = 5;

const char albumAnswer[] = R"({"subsonic-response":{"status":"ok","version":"1.16.1","album":{"id":"big",)"
                           R"("name":"Big","song":[{"id":"big-song","title":"Big","suffix":"flac"}]}}})";

void sendAll(int socket, const std::string &text)
{
    for (size_t sent = 0; sent < text.size();) {
        const ssize_t n = ::send(socket, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (n <= 0)
            return;
        sent += size_t(n);
    }
}

// Answers "getAlbum" with the one song, and anything else with the file, one connection at a time.
[[noreturn]] void serve(int listener, const char *path)
{
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0)
            continue;
        std::string request;
        char buffer[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t n = ::read(connection, buffer, sizeof buffer);
            if (n <= 0)
                break;
            request.append(buffer, size_t(n));
        }
        if (request.find("/rest/getAlbum") != std::string::npos) {
            sendAll(connection, "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
                                    + std::to_string(sizeof albumAnswer - 1) + "\r\nConnection: close\r\n\r\n"
                                    + albumAnswer);
        } else {
            sendAll(connection, "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nContent-Length: "
                                    + std::to_string(fileBytes) + "\r\nConnection: close\r\n\r\n");
            const int file = ::open(path, O_RDONLY);
            off_t offset = 0;
            while (offset < fileBytes && ::sendfile(connection, file, &offset, size_t(fileBytes - offset)) > 0) {
            }
            ::close(file);
        }
        ::shutdown(connection, SHUT_WR);
        while (::read(connection, buffer, sizeof buffer) > 0) {
        }
        ::close(connection);
    }
}

struct Server {
    pid_t pid = 0;
    int port = 0;
};

// Starts the server in a child process, which dies with this one.
Server startServer(const char *path)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || ::listen(listener, 8) != 0)
        std::abort();
    socklen_t length = sizeof address;
    ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        serve(listener, path);
    }
    ::close(listener);
    return Server{pid, ntohs(address.sin_port)};
}

qint64 statusField(const char *name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return line.mid(qstrlen(name)).trimmed().split(' ').value(0).toLongLong() * 1024;
    }
    return 0;
}

// Makes the high-water mark of the resident size start again from the present size.
void resetPeakMemory()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

template<typename Condition>
bool spinUntil(Condition &&condition, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return true;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}
}

int main(int argc, char *argv[])
{
    QTemporaryDir work;
    const QString source = work.filePath(QStringLiteral("source.bin"));
    {
        QFile file(source);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        QByteArray block(1024 * 1024, '\0');
        for (qsizetype i = 0; i < block.size(); ++i)
            block[i] = char((i * 7919) >> 3);
        for (qint64 written = 0; written < fileBytes; written += block.size())
            file.write(block);
    }
    const Server server = startServer(QFile::encodeName(source).constData());

    QCoreApplication app(argc, argv);
    const QUrl base(QStringLiteral("http://127.0.0.1:%1").arg(server.port));
    const SubsonicClient client(ServerConfig{base, QStringLiteral("bench"), QStringLiteral("pw")});
    const std::shared_ptr<DownloadStore> store = DownloadStore::create(client, DownloadLayout(work.filePath("ours")));
    const QString key = albumCollectionKey(QStringLiteral("big"));
    const QString curlTarget = work.filePath(QStringLiteral("curl.bin"));
    const QString curlURL = client.downloadURL(QStringLiteral("big-song")).toString(QUrl::FullyEncoded);

    std::vector<double> ours;
    std::vector<double> curls;
    qint64 peakBytes = 0;
    for (int run = 0; run <= runs; ++run) {
        const bool warmUp = run == 0;
        store->removeDownload(key);
        spinUntil([] { return false; }, 200); // lets the freed memory of the last run settle
        const qint64 idle = statusField("VmRSS:");
        resetPeakMemory();
        QElapsedTimer timer;
        timer.start();
        store->downloadAlbum(Album{.id = QStringLiteral("big"), .name = QStringLiteral("Big")});
        if (!spinUntil([&] { return !store->isRunning(key); }, 60'000) || !store->isDownloaded(key)) {
            std::fprintf(stderr, "the download did not finish\n");
            return 1;
        }
        const double seconds = double(timer.nsecsElapsed()) / 1e9;
        const qint64 peak = statusField("VmHWM:") - idle;

        // curl's own clock leaves out the start of its process.
        const QStringList curlArguments{QStringLiteral("-s"), QStringLiteral("-o"), curlTarget, QStringLiteral("-w"),
                                        QStringLiteral("%{time_total}"), curlURL};
        QProcess curl;
        curl.start(QStringLiteral("curl"), curlArguments);
        if (!curl.waitForFinished(60'000) || curl.exitCode() != 0) {
            std::fprintf(stderr, "curl failed\n");
            return 1;
        }
        const double curlSeconds = curl.readAllStandardOutput().trimmed().toDouble();
        if (warmUp)
            continue;
        ours.push_back(seconds);
        curls.push_back(curlSeconds);
        peakBytes = std::max(peakBytes, peak);
    }
    report("download_speed_vs_curl", median(curls) / median(ours), "ratio");
    report("download_peak_memory_mb", double(peakBytes) / (1024 * 1024), "MB");
    std::fprintf(stderr, "ours %.1f MB/s, curl %.1f MB/s\n", fileBytes / median(ours) / 1048576.0,
                 fileBytes / median(curls) / 1048576.0);
    ::kill(server.pid, SIGKILL);
    ::waitpid(server.pid, nullptr, 0);
    return 0;
}
