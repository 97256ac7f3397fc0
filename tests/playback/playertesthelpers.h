#pragma once

// Shared by the player tests: songs named by one letter, queues read back as text, and the check that the
// engine holds exactly what the controller says should play now and next.

#include "fakeaudioengine.h"
#include "playback/playercontroller.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

// "a b c" gives three songs with ids a, b and c.
inline QList<Song> makeSongs(const QString &ids)
{
    QList<Song> songs;
    for (const QString &id : ids.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        songs.append(Song{.id = id, .title = QStringLiteral("Song ") + id, .duration = 200});
    return songs;
}

inline QString order(const QList<Song> &songs)
{
    QStringList ids;
    for (const Song &song : songs)
        ids.append(song.id);
    return ids.join(QLatin1Char(' '));
}

inline QString sortedOrder(const QList<Song> &songs)
{
    QStringList ids = order(songs).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    ids.sort();
    return ids.join(QLatin1Char(' '));
}

inline QString currentId(const PlayerController &controller)
{
    const auto song = controller.currentSong();
    return song ? song->id : QString();
}

// Writes `bytes` to `path`, making its folder; false when that failed.
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
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
