// Sound figures: how soon a play is heard from a local file and from a loopback stream, what playing costs
// in processor time, and the gap between songs of a gapless album.

#include "benchmark.h"

#include "../tests/playback/audiofixture.h"
#include "playback/mpvaudioengine.h"
#include "playback/playercontroller.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>

#include <filesystem>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr int latencyRuns = 9;
// A WAV file of mpv's holds its header before the first sample.
constexpr std::uintmax_t wavHeaderBytes = 44;

// Answers every request with the same FLAC file, as a server's "stream" would.
class LoopbackStreamServer : public QObject
{
public:
    explicit LoopbackStreamServer(QByteArray body)
        : m_body(std::move(body))
    {
        m_server.listen(QHostAddress::LocalHost);
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
        });
    }
    [[nodiscard]] QUrl baseURL() const { return QUrl(u"http://127.0.0.1:%1"_s.arg(m_server.serverPort())); }

private:
    void answer(QTcpSocket *socket)
    {
        m_pending[socket] += socket->readAll();
        if (!m_pending[socket].contains("\r\n\r\n"))
            return;
        m_pending.remove(socket);
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: audio/flac\r\nConnection: close\r\nContent-Length: "
                      + QByteArray::number(m_body.size()) + "\r\n\r\n");
        socket->write(m_body);
        socket->disconnectFromHost();
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }

    QTcpServer m_server;
    QByteArray m_body;
    QHash<QTcpSocket *, QByteArray> m_pending;
};

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_utime.tv_usec / 1e6 + usage.ru_stime.tv_sec + usage.ru_stime.tv_usec / 1e6;
}

std::uintmax_t fileSize(const QString &path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path.toStdString(), error);
    return error ? 0 : size;
}

QList<Song> songs(const QString &ids)
{
    QList<Song> list;
    for (const QString &id : ids.split(u' '))
        list.append(Song{.id = id, .title = id});
    return list;
}

// From play() to the first sample written by the output, in milliseconds; mpv is made beforehand.
double playToAudioMs(const QString &outputPath, const SubsonicClient &client, PlayerController::LocalFileLookup lookup)
{
    MpvAudioEngine engine(MpvAudioEngine::Options{.audioOutput = u"pcm"_s, .audioOutputFile = outputPath});
    engine.start();
    while (!engine.isStarted())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    PlayerController controller(&engine);
    controller.setLocalFileLookup(std::move(lookup));
    QElapsedTimer timer;
    timer.start();
    controller.play(songs(u"0"_s), 0, client, std::nullopt);
    while (fileSize(outputPath) <= wavHeaderBytes && timer.elapsed() < 5000) {
        QCoreApplication::processEvents();
        QThread::usleep(200);
    }
    return timer.nsecsElapsed() / 1e6;
}

double medianOf(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

// Sleeps in the event loop, looking every 100 ms, so that waiting costs no processor time of its own.
void waitUntil(const std::function<bool()> &done, int timeoutMs)
{
    QEventLoop loop;
    QTimer poll;
    QElapsedTimer timer;
    timer.start();
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done() || timer.elapsed() > timeoutMs)
            loop.quit();
    });
    poll.start(100);
    loop.exec();
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const std::optional<AudioFixture::Tone> tone = AudioFixture::makeTone(dir.path(), 3, 1.0);
    if (!tone)
        return 1;
    const SubsonicClient offline(ServerConfig{.baseURL = QUrl(u"http://127.0.0.1:9"_s), .username = u"u"_s,
                                              .password = u"p"_s});
    const PlayerController::LocalFileLookup onDisk = [&](const Song &song, const ServerConfig &) {
        return std::optional(QUrl::fromLocalFile(tone->partPath(song.id.toInt())));
    };
    int outputs = 0;
    const auto nextOutput = [&] { return dir.filePath(u"out%1.wav"_s.arg(++outputs)); };

    std::vector<double> local;
    for (int i = 0; i < latencyRuns; ++i)
        local.push_back(playToAudioMs(nextOutput(), offline, onDisk));
    report("play_to_audio_local_ms", medianOf(local), "ms");

    QFile flac(tone->partPath(0));
    flac.open(QIODevice::ReadOnly);
    LoopbackStreamServer server(flac.readAll());
    const SubsonicClient streaming(ServerConfig{.baseURL = server.baseURL(), .username = u"u"_s, .password = u"p"_s});
    std::vector<double> stream;
    for (int i = 0; i < latencyRuns; ++i)
        stream.push_back(playToAudioMs(nextOutput(), streaming, {}));
    report("play_to_audio_stream_ms", medianOf(stream), "ms");

    {
        // A real-time output that writes nothing, so that only decoding and the player's own work count.
        QDir().mkpath(dir.filePath(u"long"_s));
        const std::optional<AudioFixture::Tone> longTone = AudioFixture::makeTone(dir.filePath(u"long"_s), 1, 10.0);
        if (!longTone)
            return 1;
        MpvAudioEngine engine(MpvAudioEngine::Options{.audioOutput = u"null"_s});
        PlayerController controller(&engine);
        controller.setLocalFileLookup([&](const Song &, const ServerConfig &) {
            return std::optional(QUrl::fromLocalFile(longTone->partPath(0)));
        });
        QElapsedTimer wall;
        wall.start();
        const double before = cpuSeconds();
        controller.play(songs(u"0"_s), 0, offline, std::nullopt);
        waitUntil([&] { return !controller.currentIndex(); }, 20000);
        const double seconds = wall.nsecsElapsed() / 1e9;
        report("playback_cpu_s_per_min", (cpuSeconds() - before) / seconds * 60, "s");
    }

    {
        const QString output = nextOutput();
        auto engine = std::make_unique<MpvAudioEngine>(AudioFixture::fileOutput(output));
        auto controller = std::make_unique<PlayerController>(engine.get());
        controller->setLocalFileLookup(onDisk);
        controller->play(songs(u"0 1 2"_s), 0, offline, std::nullopt);
        waitUntil([&] { return !controller->currentIndex(); }, 20000);
        controller.reset();
        engine.reset();
        const AudioFixture::GapReport gaps =
            AudioFixture::measureGaps(AudioFixture::readWav(output), tone->samples, tone->partSamples);
        qsizetype worst = 0;
        for (const qsizetype gap : gaps.gaps)
            worst = std::max(worst, std::abs(gap));
        report("gapless_gap_samples", double(worst), "samples");
    }
    return 0;
}
