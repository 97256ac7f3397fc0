// What the player asks of and tells the server: the songs of an album it was given to play, plays reported as
// the server sees them, and the volume as the settings keep it.

#include "fakesubsonicserver.h"
#include "playertesthelpers.h"

#include "playback/sessionsnapshot.h"

#include <QSettings>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
// Long enough for a request that was going to be sent to reach the server.
constexpr int quietMs = 400;

Album albumWith(const QString &id, const QString &songIds)
{
    return Album{.id = id, .name = u"Album "_s + id, .song = makeSongs(songIds)};
}

FakeResponse albumAnswer(const Album &album, int delayMs = 0)
{
    FakeResponse response = FakeSubsonicServer::json(QJsonObject{{u"album"_s, album.toJson()}});
    response.delayMs = delayMs;
    return response;
}

Song songOf(const QString &id, std::optional<qint64> duration)
{
    return Song{.id = id, .title = u"Song "_s + id, .duration = duration};
}

// What the player writes to the log.
QStringList logLines;
QtMessageHandler previousHandler = nullptr;

void collectLog(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    logLines.append(message);
    previousHandler(type, context, message);
}
}

class PlayerServerTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer m_server;
    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<Player> m_player;
    int m_runs = 0;

    [[nodiscard]] SubsonicClient client() const
    {
        return SubsonicClient(ServerConfig{.baseURL = m_server.baseURL(), .username = u"u"_s, .password = u"p"_s});
    }
    PlayerController &controller() { return m_player->controller; }

    // The scrobbles the server saw, as "id:submission".
    [[nodiscard]] QStringList scrobbles() const
    {
        QStringList seen;
        for (const RecordedRequest &request : m_server.requests(u"scrobble"_s))
            seen.append(request.value(u"id"_s) + u':' + request.value(u"submission"_s));
        return seen;
    }

    void tick(double seconds) { Q_EMIT m_player->engine.positionTicked(seconds); }

    // A player as the application starts it, on settings that outlive it.
    void start()
    {
        m_player.reset();
        m_player = std::make_unique<Player>(
            PlayerStorage{.settings = m_settings.get(), .sessionFolder = m_dir.filePath(u"data"_s)});
        m_player->client = client();
    }

private Q_SLOTS:
    void init()
    {
        m_server.on(u"scrobble"_s, FakeSubsonicServer::json({}));
        m_server.clearLog();
        m_settings = std::make_unique<QSettings>(m_dir.filePath(u"settings%1.ini"_s.arg(++m_runs)), QSettings::IniFormat);
        start();
        logLines.clear();
        previousHandler = qInstallMessageHandler(collectLog);
    }

    void cleanup()
    {
        qInstallMessageHandler(previousHandler);
        m_player.reset();
    }

    void anAlbumPlaysAsTheServerListsIt()
    {
        const Album album = albumWith(u"al1"_s, u"a b c d"_s);
        m_server.on(u"getAlbum"_s, albumAnswer(album));
        controller().playAlbum(Album{.id = album.id, .name = album.name}, client(), {.startingAt = 1});
        QTRY_COMPARE(m_player->current(), u"b"_s);
        QCOMPARE(order(controller().queue()), u"a b c d"_s);
        QCOMPARE(controller().source(), PlaybackSource::album(u"al1"_s, u"Album al1"_s));
        VERIFY_ENGINE(*m_player);
        controller().playAlbum(album, client(), {.shuffled = true});
        QTRY_VERIFY(controller().isShuffling());
        QCOMPARE(sortedOrder(controller().queue()), u"a b c d"_s);

        // Added next or last without interrupting; the source stays the one that was playing.
        m_server.on(u"getAlbum"_s, albumAnswer(albumWith(u"al2"_s, u"x y"_s)));
        m_player->play(u"a b"_s);
        controller().playAlbumNext(Album{.id = u"al2"_s, .name = u"Two"_s}, client(), QueuePlacement::Next);
        QTRY_COMPARE(order(controller().queue()), u"a x y b"_s);
        controller().playAlbumNext(Album{.id = u"al2"_s, .name = u"Two"_s}, client(), QueuePlacement::Last);
        QTRY_COMPARE(order(controller().queue()), u"a x y b x y"_s);
        QCOMPARE(m_player->current(), u"a"_s);
        VERIFY_ENGINE(*m_player);
    }

    // A failed fetch changes nothing and writes exactly one line; an empty album changes nothing either.
    void anAlbumThatCannotBeHadChangesNothing()
    {
        m_server.on(u"getAlbum"_s, FakeResponse{.body = FakeSubsonicServer::failed(70, u"Album not found"_s)});
        m_player->play(u"a b"_s, 1);
        controller().playAlbum(Album{.id = u"al9"_s, .name = u"Gone"_s}, client());
        controller().playAlbumNext(Album{.id = u"al9"_s, .name = u"Gone"_s}, client(), QueuePlacement::Last);
        QTRY_COMPARE(logLines, QStringList(2, u"Failed to load album al9: Album not found"_s));
        const SubsonicClient gone(ServerConfig{.baseURL = QUrl(u"http://127.0.0.1:1"_s), .username = u"u"_s,
                                               .password = u"p"_s});
        controller().playAlbum(Album{.id = u"al3"_s, .name = u"Three"_s}, gone);
        QTRY_COMPARE(logLines.size(), 3);
        QVERIFY2(logLines.last().startsWith(u"Failed to load album al3: "_s), qPrintable(logLines.last()));
        m_server.on(u"getAlbum"_s, albumAnswer(Album{.id = u"al4"_s, .name = u"Empty"_s}));
        controller().playAlbum(Album{.id = u"al4"_s, .name = u"Empty"_s}, client());
        QTRY_COMPARE(m_server.count(u"getAlbum"_s), 3);
        QTest::qWait(100);
        QCOMPARE(order(controller().queue()), u"a b"_s);
        QCOMPARE(m_player->current(), u"b"_s);
        VERIFY_ENGINE(*m_player);
    }

    void theFetchThatFinishesLastWins()
    {
        const Album slow = albumWith(u"slow"_s, u"s1 s2"_s);
        const Album fast = albumWith(u"fast"_s, u"f1 f2"_s);
        m_server.on(u"getAlbum"_s, [&](const RecordedRequest &request) {
            return request.value(u"id"_s) == slow.id ? albumAnswer(slow, 300) : albumAnswer(fast);
        });
        controller().playAlbum(slow, client());
        controller().playAlbum(fast, client());
        QTRY_COMPARE(m_player->current(), u"f1"_s);
        QTRY_COMPARE(m_player->current(), u"s1"_s);
        QCOMPARE(controller().source(), PlaybackSource::album(u"slow"_s, u"Album slow"_s));

        // A player gone before its fetch ends is not touched.
        m_server.on(u"getAlbum"_s, FakeResponse{.hang = true});
        controller().playAlbum(Album{.id = u"al5"_s, .name = u"Five"_s}, client());
        QTRY_COMPARE(m_server.count(u"getAlbum"_s), 3);
        m_player.reset();
        QTest::qWait(50);
        QCOMPARE(logLines, QStringList());
    }

    void aPlayIsReportedAtItsStartAndSubmittedAtTheThreshold_data()
    {
        QTest::addColumn<std::optional<qint64>>("duration");
        QTest::addColumn<double>("threshold");
        QTest::newRow("100 s: half") << std::optional<qint64>(100) << 50.0;
        QTest::newRow("1000 s: four minutes") << std::optional<qint64>(1000) << 240.0;
        QTest::newRow("no length: four minutes") << std::optional<qint64>() << 240.0;
    }
    void aPlayIsReportedAtItsStartAndSubmittedAtTheThreshold()
    {
        QFETCH(std::optional<qint64>, duration);
        QFETCH(double, threshold);
        controller().play({songOf(u"a"_s, duration)}, 0, client(), std::nullopt);
        QTRY_COMPARE(scrobbles(), QStringList{u"a:false"_s});
        tick(threshold - 0.5);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList{u"a:false"_s});
        tick(threshold);
        QTRY_COMPARE(scrobbles(), (QStringList{u"a:false"_s, u"a:true"_s}));
        // Once per play, however long it goes on.
        tick(threshold + 30);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles().size(), 2);
    }

    void aPausedSongIsNotSubmittedUntilItPlaysOnAndTheNextIsReportedAsItBegins()
    {
        controller().play({songOf(u"a"_s, 100), songOf(u"b"_s, 100)}, 0, client(), std::nullopt);
        QTRY_COMPARE(scrobbles().size(), 1);
        controller().pause();
        tick(60);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList{u"a:false"_s});
        controller().togglePlayPause();
        tick(60.5);
        QTRY_COMPARE(scrobbles(), (QStringList{u"a:false"_s, u"a:true"_s}));
        m_player->engine.finishCurrent(FakeAudioEngine::EndStyle::EngineMovesOn);
        QTRY_COMPARE(scrobbles(), (QStringList{u"a:false"_s, u"a:true"_s, u"b:false"_s}));
    }

    // Turned off in an earlier run, as the settings file keeps it ("false" as text).
    void nothingIsReportedWhenScrobblingIsOff()
    {
        m_settings->setValue(u"scrobbleEnabled"_s, false);
        m_settings->sync();
        m_settings = std::make_unique<QSettings>(m_settings->fileName(), QSettings::IniFormat);
        start();
        controller().play({songOf(u"a"_s, 100), songOf(u"b"_s, 100)}, 0, client(), std::nullopt);
        tick(80);
        controller().next();
        tick(80);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList());
    }

    void aSessionRestoredPastTheThresholdIsNotSubmittedAgain()
    {
        const SessionSnapshot snapshot{.serverKey = serverKey(client().config()), .queue = {songOf(u"a"_s, 300)},
                                       .currentIndex = 0, .currentTime = 200};
        QVERIFY(writeFile(controller().sessionFilePath(), snapshot.encode()));
        controller().restoreSession(client());
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList()); // restored paused: nothing plays yet
        controller().togglePlayPause();
        tick(201);
        QTRY_COMPARE(scrobbles(), QStringList{u"a:false"_s});
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList{u"a:false"_s});
    }

    // Written once the slider rests, or at once by a save; read back at the next start.
    void theVolumeIsKeptOnceTheSliderRests()
    {
        controller().setVolume(0.2F);
        controller().setVolume(0.3F);
        QCOMPARE(m_player->engine.calls().last(), u"volume 0.3"_s);
        QVERIFY(!m_settings->contains(u"volume"_s));
        QTRY_COMPARE_WITH_TIMEOUT(m_settings->value(u"volume"_s).toFloat(), 0.3F, 1000);
        controller().setVolume(0.25F);
        controller().saveSession();
        QCOMPARE(m_settings->value(u"volume"_s).toFloat(), 0.25F);
        start();
        QCOMPARE(controller().volume(), 0.25F);
        QCOMPARE(m_player->engine.calls(), QStringList{u"volume 0.25"_s});
        m_settings->setValue(u"volume"_s, u"loud"_s);
        start();
        QCOMPARE(controller().volume(), 1.0F);
    }
};

QTEST_GUILESS_MAIN(PlayerServerTest)
#include "tst_playerserver.moc"
