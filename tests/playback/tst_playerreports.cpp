// Plays reported to the server as it sees them, and the volume as the settings keep it.

#include "fakesubsonicserver.h"
#include "playertesthelpers.h"

#include "playback/sessionsnapshot.h"

#include <QSettings>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
// Long enough for a report that was going to be sent to reach the server.
constexpr int quietMs = 400;

Song songOf(const QString &id, std::optional<qint64> duration)
{
    return Song{.id = id, .title = u"Song "_s + id, .duration = duration};
}
}

class PlayerReportsTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer m_server;
    QTemporaryDir m_dir;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<FakeAudioEngine> m_engine;
    std::unique_ptr<PlayerController> m_controller;
    int m_runs = 0;

    [[nodiscard]] SubsonicClient client() const
    {
        return SubsonicClient(ServerConfig{.baseURL = m_server.baseURL(), .username = u"u"_s, .password = u"p"_s});
    }

    // The scrobbles the server saw, as "id:submission".
    [[nodiscard]] QStringList scrobbles() const
    {
        QStringList seen;
        for (const RecordedRequest &request : m_server.requests(u"scrobble"_s))
            seen.append(request.value(u"id"_s) + u':' + request.value(u"submission"_s));
        return seen;
    }

    void tick(double seconds) { Q_EMIT m_engine->positionTicked(seconds); }

    // A controller as the application starts it, on settings that outlive it.
    void start()
    {
        m_controller.reset();
        m_engine = std::make_unique<FakeAudioEngine>();
        m_controller = std::make_unique<PlayerController>(
            m_engine.get(), PlayerStorage{.settings = m_settings.get(), .sessionFolder = m_dir.filePath(u"data"_s)});
    }

private Q_SLOTS:
    void init()
    {
        m_server.on(u"scrobble"_s, FakeSubsonicServer::json({}));
        m_server.clearLog();
        m_settings = std::make_unique<QSettings>(m_dir.filePath(u"settings%1.ini"_s.arg(++m_runs)),
                                                 QSettings::IniFormat);
        start();
    }

    void cleanup()
    {
        m_controller.reset();
        m_engine.reset();
        m_settings.reset();
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
        m_controller->play({songOf(u"a"_s, duration)}, 0, client(), std::nullopt);
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
        QVERIFY(!m_server.requests(u"scrobble"_s).last().names().contains(u"time"_s));
    }

    void aPausedSongIsNotSubmittedUntilItPlaysOnAndTheNextIsReportedAsItBegins()
    {
        m_controller->play({songOf(u"a"_s, 100), songOf(u"b"_s, 100)}, 0, client(), std::nullopt);
        QTRY_COMPARE(scrobbles().size(), 1);
        m_controller->pause();
        tick(60);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList{u"a:false"_s});
        m_controller->togglePlayPause();
        tick(60.5);
        QTRY_COMPARE(scrobbles(), (QStringList{u"a:false"_s, u"a:true"_s}));
        m_engine->finishCurrent(FakeAudioEngine::EndStyle::EngineMovesOn);
        QTRY_COMPARE(scrobbles(), (QStringList{u"a:false"_s, u"a:true"_s, u"b:false"_s}));
    }

    // Turned off in an earlier run, as the settings file keeps it ("false" as text).
    void nothingIsReportedWhenScrobblingIsOff()
    {
        m_settings->setValue(u"scrobbleEnabled"_s, false);
        m_settings->sync();
        m_settings = std::make_unique<QSettings>(m_settings->fileName(), QSettings::IniFormat);
        start();
        m_controller->play({songOf(u"a"_s, 100), songOf(u"b"_s, 100)}, 0, client(), std::nullopt);
        tick(80);
        m_controller->pause();
        m_controller->togglePlayPause();
        m_controller->next();
        tick(80);
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList());
    }

    void aSessionRestoredPastTheThresholdIsNotSubmittedAgain()
    {
        const SessionSnapshot snapshot{.serverKey = serverKey(client().config()),
                                       .queue = {songOf(u"a"_s, 300)},
                                       .currentIndex = 0,
                                       .currentTime = 200};
        QVERIFY(writeFile(m_controller->sessionFilePath(), snapshot.encode()));

        m_controller->restoreSession(client());
        QTest::qWait(quietMs);
        // Restored paused: nothing is playing yet, so nothing is reported.
        QCOMPARE(scrobbles(), QStringList());
        m_controller->togglePlayPause();
        tick(201);
        QTRY_COMPARE(scrobbles(), QStringList{u"a:false"_s});
        QTest::qWait(quietMs);
        QCOMPARE(scrobbles(), QStringList{u"a:false"_s});
    }

    // Written once the slider rests, or at once by a save.
    void theVolumeIsWrittenOnceTheSliderRests()
    {
        m_controller->setVolume(0.2F);
        m_controller->setVolume(0.3F);
        QCOMPARE(m_engine->calls().last(), u"volume 0.3"_s);
        QVERIFY(!m_settings->contains(u"volume"_s));
        QTRY_VERIFY_WITH_TIMEOUT(m_settings->contains(u"volume"_s), 1000);
        QCOMPARE(m_settings->value(u"volume"_s).toFloat(), 0.3F);
        m_controller->setVolume(0.7F);
        m_controller->saveSession();
        QCOMPARE(m_settings->value(u"volume"_s).toFloat(), 0.7F);
    }

    void theNextStartPlaysAtTheSavedVolume_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<float>("volume");
        QTest::newRow("saved") << QVariant(0.25F) << 0.25F;
        QTest::newRow("never saved") << QVariant() << 1.0F;
        QTest::newRow("not a number") << QVariant(u"loud"_s) << 1.0F;
    }
    void theNextStartPlaysAtTheSavedVolume()
    {
        QFETCH(QVariant, stored);
        QFETCH(float, volume);
        if (stored.isValid())
            m_settings->setValue(u"volume"_s, stored);
        m_settings->sync();
        start();
        QCOMPARE(m_controller->volume(), volume);
        QCOMPARE(m_engine->calls(), QStringList{u"volume %1"_s.arg(volume)});
    }
};

QTEST_GUILESS_MAIN(PlayerReportsTest)
#include "tst_playerreports.moc"
