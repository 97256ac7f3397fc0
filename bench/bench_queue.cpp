// Figures for queue edits on a long queue: inserting, removing and shuffling among 20,000 songs.

#include "benchmark.h"
#include "playback/playercontroller.h"

#include <QCoreApplication>

#include <algorithm>
#include <vector>

namespace {
constexpr int queueSize = 20'000;
constexpr int runs = 15;

// Holds items as a real engine would and plays nothing, so the figures are the controller's alone.
class SilentEngine : public AudioEngine
{
public:
    [[nodiscard]] QList<EngineItemId> items() const override { return m_items; }
    std::optional<EngineItemId> insert(const PlayerItem &, std::optional<EngineItemId> after) override
    {
        if (m_items.size() >= 2 || after != (m_items.isEmpty() ? std::nullopt : std::optional(m_items.last())))
            return std::nullopt;
        m_items.append(++m_lastId);
        return m_lastId;
    }
    void remove(EngineItemId item) override { m_items.removeAll(item); }
    void removeAll() override { m_items.clear(); }
    void advance() override
    {
        if (m_items.size() > 1)
            m_items.removeFirst();
    }
    void play() override { }
    void pause() override { }
    void seek(double) override { }
    void setVolume(float) override { }
    [[nodiscard]] std::optional<double> currentDuration() const override { return std::nullopt; }

private:
    QList<EngineItemId> m_items;
    EngineItemId m_lastId = 0;
};

Song song(int i)
{
    // Every twentieth song repeats an earlier one, as a queue built from several playlists does.
    const int n = i % 20 == 19 ? i / 2 : i;
    return Song{
        .id = QStringLiteral("5f0c%1-9d2e-4b1a-8c3f-1e2d3c4b5a6f").arg(n, 8, 10, QLatin1Char('0')),
        .title = QStringLiteral("A Song Title Number %1").arg(n),
        .album = QStringLiteral("Some Album %1").arg(n / 12),
        .albumId = QStringLiteral("album-%1").arg(n / 12),
        .artist = QStringLiteral("Some Artist %1").arg(n / 40),
        .artistId = QStringLiteral("artist-%1").arg(n / 40),
        .track = n % 12 + 1,
        .discNumber = 1,
        .year = 1990 + n % 30,
        .duration = 180 + n % 120,
        .contentType = QStringLiteral("audio/flac"),
        .suffix = QStringLiteral("flac"),
        .coverArt = QStringLiteral("al-%1").arg(n / 12),
    };
}

QList<Song> songs(int count, int first = 0)
{
    QList<Song> list;
    list.reserve(count);
    for (int i = 0; i < count; ++i)
        list.append(song(first + i));
    return list;
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

// A shuffled queue of 20,000 songs playing somewhere in the middle, so that edits touch both orders.
void fill(PlayerController &controller, const SubsonicClient &client)
{
    controller.play(songs(queueSize), queueSize / 2, client, std::nullopt);
    controller.toggleShuffle();
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const SubsonicClient client(ServerConfig{.baseURL = QUrl(QStringLiteral("http://127.0.0.1:4533")),
                                             .username = QStringLiteral("bench"),
                                             .password = QStringLiteral("bench")});
    SilentEngine engine;

    {
        PlayerController controller(&engine);
        fill(controller, client);
        const QList<Song> added = songs(10, queueSize);
        report("queue_play_next_20k_ms", medianMs(runs, [&] { controller.playNext(added, client); }), "ms");
    }
    {
        PlayerController controller(&engine);
        fill(controller, client);
        // A selection of 200 rows spread over what comes next.
        QList<qsizetype> offsets;
        for (qsizetype offset = 0; offset < 200 * 40; offset += 40)
            offsets.append(offset);
        report("queue_remove_upcoming_20k_ms", medianMs(runs, [&] { controller.removeUpcoming(offsets); }), "ms");
    }
    {
        PlayerController controller(&engine);
        controller.play(songs(queueSize), queueSize / 2, client, std::nullopt);
        // Turning shuffle on and turning it off cost differently; the figure is the slower of the two.
        std::vector<double> on;
        std::vector<double> off;
        for (int i = 0; i < runs; ++i) {
            on.push_back(medianMs(1, [&] { controller.toggleShuffle(); }));
            off.push_back(medianMs(1, [&] { controller.toggleShuffle(); }));
        }
        report("queue_toggle_shuffle_20k_ms", std::max(median(on), median(off)), "ms");
    }
    return 0;
}
