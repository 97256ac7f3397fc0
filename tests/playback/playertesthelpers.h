#pragma once

// Shared by the player tests: songs named by one letter, queues read back as text, and the check that the
// engine holds exactly what the controller says should play now and next.

#include "fakeaudioengine.h"
#include "playback/playercontroller.h"
#include "testdata.h"

#include <QTest>

inline QString order(const QList<Song> &songs)
{
    return idsOf(songs).join(QLatin1Char(' '));
}

inline QString sortedOrder(const QList<Song> &songs)
{
    QStringList ids = idsOf(songs);
    ids.sort();
    return ids.join(QLatin1Char(' '));
}

inline QString currentId(const PlayerController &controller)
{
    const auto song = controller.currentSong();
    return song ? song->id : QString();
}

struct Player {
    explicit Player(PlayerStorage storage = {})
        : controller(&engine, storage)
    {
    }
    FakeAudioEngine engine;
    PlayerController controller;
    SubsonicClient client{ServerConfig{.baseURL = QUrl(QStringLiteral("http://127.0.0.1:9")),
                                       .username = QStringLiteral("u"),
                                       .password = QStringLiteral("p")}};

    void play(const QString &ids, qsizetype startingAt = 0)
    {
        controller.play(makeSongs(ids), startingAt, client, std::nullopt);
    }
    [[nodiscard]] QString current() const { return currentId(controller); }
};

// The engine plays the current song with exactly one item behind it, the song that comes next, when there is
// one; nothing at all when nothing is current.
inline void verifyEngine(const Player &player)
{
    const PlayerController &controller = player.controller;
    QStringList expected;
    if (const auto current = controller.currentSong()) {
        expected.append(current->id);
        if (const auto next = controller.nextIndex())
            expected.append(controller.queue()[*next].id);
    }
    QCOMPARE(player.engine.itemSongIds(), expected);
}

#define VERIFY_ENGINE(player)                                                                                  \
    do {                                                                                                       \
        verifyEngine(player);                                                                                  \
        if (QTest::currentTestFailed())                                                                        \
            return;                                                                                            \
    } while (false)
