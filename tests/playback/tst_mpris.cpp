// The desktop's media controls, through playerctl and gdbus on a private session bus, as a user's panel
// would use them; and logind's sleep notice, sent by a stand-in on that bus.

#include "playertesthelpers.h"

#include "playback/mprisservice.h"
#include "playback/sleepwatcher.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QSocketNotifier>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
constexpr int commandTimeoutMs = 10000;

// Runs a command while the event loop keeps serving the bus, and gives its trimmed output.
QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, commandTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        return u"<timed out>"_s;
    }
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString playerctl(const QStringList &arguments)
{
    QStringList all{u"--player=velto"_s};
    all.append(arguments);
    return run(u"playerctl"_s, all);
}

QString busProperty(const QString &name, const QString &interface = u"org.mpris.MediaPlayer2.Player"_s)
{
    return run(u"gdbus"_s, {u"call"_s, u"--session"_s, u"--dest"_s, u"org.mpris.MediaPlayer2.velto"_s,
                            u"--object-path"_s, u"/org/mpris/MediaPlayer2"_s, u"--method"_s,
                            u"org.freedesktop.DBus.Properties.Get"_s, interface, name});
}

QList<Song> songsWithTags()
{
    QList<Song> songs = makeSongs(u"a b c"_s);
    for (Song &song : songs) {
        song.artist = u"Artist "_s + song.id;
        song.album = u"Album "_s + song.id;
        song.coverArt = u"cover-"_s + song.id;
    }
    return songs;
}

// logind's Inhibit as far as Velto uses it: a lock is the write end of a pipe, released when every copy of it
// is closed, which the read end sees as its end.
class LogindStandIn : public QObject
{
    Q_OBJECT

public:
    QStringList asked;
    bool wasReleased = false;

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &, const QString &, const QString &mode)
    {
        asked = {what, mode};
        wasReleased = false;
        int ends[2];
        if (::pipe(ends) != 0)
            return {};
        auto *watch = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
        connect(watch, &QSocketNotifier::activated, this, [this, watch, end = ends[0]] {
            char byte;
            if (::read(end, &byte, 1) > 0)
                return;
            watch->deleteLater();
            ::close(end);
            wasReleased = true;
            Q_EMIT released();
        });
        QDBusUnixFileDescriptor lock(ends[1]); // a copy: ours is closed at once
        ::close(ends[1]);
        return lock;
    }

Q_SIGNALS:
    void released();
};

// Collects the PropertiesChanged signals that another client of the bus sees.
class ChangeWatcher : public QObject
{
    Q_OBJECT

public:
    explicit ChangeWatcher(QDBusConnection bus)
    {
        bus.connect(QString(), u"/org/mpris/MediaPlayer2"_s, u"org.freedesktop.DBus.Properties"_s,
                    u"PropertiesChanged"_s, this, SLOT(changed(QString, QVariantMap, QStringList)));
    }
    QVariantMap seen;

public Q_SLOTS:
    void changed(const QString &interface, const QVariantMap &properties, const QStringList &)
    {
        if (interface == "org.mpris.MediaPlayer2.Player"_L1)
            seen.insert(properties);
    }
};
}

class MprisTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Player> m_player;
    std::unique_ptr<MprisService> m_service;

    void playTagged() { m_player->controller.play(songsWithTags(), 0, m_player->client, std::nullopt); }

private Q_SLOTS:
    void init()
    {
        m_player = std::make_unique<Player>();
        m_service = std::make_unique<MprisService>(&m_player->controller, [](const Song &song) -> std::optional<QUrl> {
            if (song.coverArt == "cover-a"_L1)
                return QUrl::fromLocalFile(u"/tmp/covers/a.jpg"_s);
            return std::nullopt;
        });
        QVERIFY(m_service->isRegistered());
    }

    void cleanup()
    {
        m_service.reset();
        m_player.reset();
    }

    void theMetadataDescribesTheCurrentSong()
    {
        playTagged();
        QCOMPARE(playerctl({u"metadata"_s, u"--format"_s,
                            u"{{title}}|{{artist}}|{{album}}|{{mpris:length}}|{{mpris:artUrl}}"_s}),
                 u"Song a|Artist a|Album a|200000000|file:///tmp/covers/a.jpg"_s);
        // playerctl forgives wrong types; the bus shows them as they are.
        const QString metadata = busProperty(u"Metadata"_s);
        QVERIFY2(metadata.contains(u"'mpris:length': <int64 200000000>"_s), qPrintable(metadata));
        QVERIFY2(metadata.contains(u"'xesam:artist': <['Artist a']>"_s), qPrintable(metadata));
        QVERIFY2(metadata.contains(u"'mpris:trackid': <objectpath '/org/velto/track/"_s), qPrintable(metadata));

        m_player->controller.next();
        QCOMPARE(playerctl({u"metadata"_s, u"--format"_s, u"{{title}}|{{mpris:artUrl}}"_s}), u"Song b|"_s);

        // Desktops find the player's name and icon through its launcher.
        const QString entry = busProperty(u"DesktopEntry"_s, u"org.mpris.MediaPlayer2"_s).section(u'\'', 1, 1);
        QVERIFY(QFile::exists(QStringLiteral(VELTO_DATA_DIR) + u'/' + entry + u".desktop"_s));
    }

    void changesAreAnnouncedOnTheBus()
    {
        QDBusConnection other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"watcher"_s);
        ChangeWatcher watcher(other);
        playTagged();
        QTRY_COMPARE(watcher.seen.value(u"PlaybackStatus"_s).toString(), u"Playing"_s);
        QVERIFY(watcher.seen.contains(u"Metadata"_s));
        m_player->controller.pause();
        QTRY_COMPARE(watcher.seen.value(u"PlaybackStatus"_s).toString(), u"Paused"_s);
        m_player->controller.setVolume(0.25F);
        QTRY_COMPARE(watcher.seen.value(u"Volume"_s).toDouble(), 0.25);
        // The length mpv finds in the file, once it knows it.
        m_player->engine.duration = 187.5;
        Q_EMIT m_player->engine.durationChanged();
        QTRY_COMPARE(qdbus_cast<QVariantMap>(watcher.seen.value(u"Metadata"_s)).value(u"mpris:length"_s).toLongLong(),
                     187'500'000);
        QDBusConnection::disconnectFromBus(u"watcher"_s);
    }

    void theStatusFollowsAndPlayPauseNextAndPreviousDriveTheQueue()
    {
        QCOMPARE(playerctl({u"status"_s}), u"Stopped"_s);
        playTagged();
        QCOMPARE(playerctl({u"status"_s}), u"Playing"_s);
        playerctl({u"play-pause"_s});
        QVERIFY(!m_player->controller.isPlaying());
        QCOMPARE(playerctl({u"status"_s}), u"Paused"_s);
        playerctl({u"play-pause"_s});
        QVERIFY(m_player->controller.isPlaying());
        playerctl({u"pause"_s});
        QVERIFY(!m_player->controller.isPlaying());
        playerctl({u"play"_s});
        QVERIFY(m_player->controller.isPlaying());

        playerctl({u"next"_s});
        QCOMPARE(m_player->current(), u"b"_s);
        playerctl({u"previous"_s});
        QCOMPARE(m_player->current(), u"a"_s);
    }

    void repeatAndShuffleAreReadAndSet()
    {
        QCOMPARE(playerctl({u"loop"_s}), u"None"_s);
        playTagged();
        m_player->controller.setRepeatMode(RepeatMode::All);
        QCOMPARE(playerctl({u"loop"_s}), u"Playlist"_s);
        playerctl({u"loop"_s, u"Track"_s});
        QCOMPARE(m_player->controller.repeatMode(), RepeatMode::One);
        playerctl({u"loop"_s, u"None"_s});
        QCOMPARE(m_player->controller.repeatMode(), RepeatMode::Off);

        QDBusConnection other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"watcher"_s);
        ChangeWatcher watcher(other);
        playerctl({u"shuffle"_s, u"On"_s});
        QVERIFY(m_player->controller.isShuffling());
        QCOMPARE(m_player->current(), u"a"_s); // the song playing stays
        QTRY_COMPARE(watcher.seen.value(u"Shuffle"_s).toBool(), true);
        m_player->controller.setRepeatMode(RepeatMode::One);
        QTRY_COMPARE(watcher.seen.value(u"LoopStatus"_s).toString(), u"Track"_s);
        QCOMPARE(playerctl({u"shuffle"_s}), u"On"_s);
        playerctl({u"shuffle"_s, u"Off"_s});
        QVERIFY(!m_player->controller.isShuffling());
        QDBusConnection::disconnectFromBus(u"watcher"_s);
    }

    void thePositionIsReadAndSet()
    {
        playTagged();
        Q_EMIT m_player->engine.positionTicked(12.5);
        // Paused, so that playerctl does not add the time it took to ask.
        m_player->controller.pause();
        QCOMPARE(playerctl({u"position"_s}).toDouble(), 12.5);

        playerctl({u"position"_s, u"30"_s});
        QCOMPARE(m_player->controller.currentTime(), 30.0);
        QVERIFY(m_player->engine.calls().contains(u"seek 30"_s));
        playerctl({u"position"_s, u"5-"_s});
        QCOMPARE(m_player->controller.currentTime(), 25.0);

        playerctl({u"volume"_s, u"0.4"_s});
        QCOMPARE(m_player->controller.volume(), 0.4F);
    }

    // Velto holds a "delay" lock on sleep, and lets go of it only once the pause has landed; it takes a new
    // one on waking, when only the engine is paused again.
    void sleepWaitsForThePauseAndWakingKeepsTheEngineStill()
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"logind"_s);
        LogindStandIn logind;
        QVERIFY(bus.registerObject(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, &logind,
                                   QDBusConnection::ExportAllSlots));
        QVERIFY(bus.registerService(u"org.freedesktop.login1"_s));
        SleepWatcher watcher(&m_player->controller, QDBusConnection::sessionBus());
        QVERIFY(watcher.isWatching());
        QTRY_VERIFY(watcher.holdsInhibitor());
        QCOMPARE(logind.asked, (QStringList{u"sleep"_s, u"delay"_s}));
        playTagged();

        bool playingAtRelease = true;
        connect(&logind, &LogindStandIn::released, this, [&] { playingAtRelease = m_player->controller.isPlaying(); });
        const auto prepare = [&](bool sleeping) {
            QDBusMessage signal = QDBusMessage::createSignal(u"/org/freedesktop/login1"_s,
                                                             u"org.freedesktop.login1.Manager"_s,
                                                             u"PrepareForSleep"_s);
            signal << sleeping;
            bus.send(signal);
        };
        prepare(true);
        QTRY_VERIFY(logind.wasReleased);
        QVERIFY(!playingAtRelease);
        QCOMPARE(m_player->current(), u"a"_s);

        m_player->engine.clearCalls();
        prepare(false);
        QTRY_COMPARE(m_player->engine.calls(), QStringList{u"pause"_s});
        QVERIFY(!m_player->controller.isPlaying());
        QTRY_VERIFY(watcher.holdsInhibitor());
        bus.unregisterService(u"org.freedesktop.login1"_s);
        QDBusConnection::disconnectFromBus(u"logind"_s);
    }

    void withoutABusNothingIsRegisteredAndPlayingGoesOn()
    {
        m_service.reset();
        QDBusConnection none = QDBusConnection::connectToBus(u"unix:path=/nonexistent/bus"_s, u"none"_s);
        MprisService service(&m_player->controller, {}, none);
        SleepWatcher watcher(&m_player->controller, none);
        QVERIFY(!service.isRegistered());
        QVERIFY(!watcher.isWatching());
        m_player->play(u"a b"_s);
        QVERIFY(m_player->controller.isPlaying());
        QDBusConnection::disconnectFromBus(u"none"_s);
    }
};

QTEST_GUILESS_MAIN(MprisTest)
#include "tst_mpris.moc"
