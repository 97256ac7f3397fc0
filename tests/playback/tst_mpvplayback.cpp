// The controller driving libmpv for real: what comes out is written to a WAV file and compared with the tone
// the songs were cut from, so a gap, a lost song or a song played twice shows as samples.

#include "audiofixture.h"
#include "fakesubsonicserver.h"
#include "playertesthelpers.h"

#include "playback/mprisplayeradaptor.h"
#include "playback/mpvaudioengine.h"
#include "playback/sessionsnapshot.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
// The boundaries must line up to the sample, and the sound must be the tone itself, give or take rounding.
constexpr float toleratedError = 0.002F;
constexpr int endTimeoutMs = 20000;

// One controller on one real engine; the engine is destroyed before the output is read, which closes the file.
class RealPlayer
{
public:
    RealPlayer(const AudioFixture::Tone &tone, const QString &outputPath, PlayerStorage storage = {})
        : m_outputPath(outputPath)
        , m_engine(std::make_unique<MpvAudioEngine>(AudioFixture::fileOutput(outputPath)))
        , m_controller(std::make_unique<PlayerController>(m_engine.get(), storage))
    {
        const QString folder = tone.folder;
        // Song "0" is the first part of the tone, "1" the second and so on; anything else is not on disk.
        m_controller->setLocalFileLookup([folder](const Song &song, const ServerConfig &) -> std::optional<QUrl> {
            return QUrl::fromLocalFile(folder + u"/part"_s + song.id + u".flac"_s);
        });
    }

    PlayerController &controller() { return *m_controller; }
    [[nodiscard]] QString current() const { return currentId(*m_controller); }
    MpvAudioEngine &engine() { return *m_engine; }
    void play(const QString &ids, qsizetype startingAt = 0)
    {
        m_controller->play(makeSongs(ids), startingAt, client, std::nullopt);
    }

    // Waits for the queue to run out by itself; output() then closes the file and reads it.
    [[nodiscard]] bool waitForEnd()
    {
        return QTest::qWaitFor([this] { return !m_controller->currentIndex().has_value(); }, endTimeoutMs);
    }
    std::vector<float> output()
    {
        m_controller.reset();
        m_engine.reset();
        return AudioFixture::readWav(m_outputPath);
    }

    SubsonicClient client{ServerConfig{.baseURL = QUrl(u"http://127.0.0.1:9"_s), .username = u"u"_s,
                                       .password = u"p"_s}};

private:
    QString m_outputPath;
    std::unique_ptr<MpvAudioEngine> m_engine;
    std::unique_ptr<PlayerController> m_controller;
};

// A copy of the tone's part `part` named "part<name>.flac", its samples untouched, with ReplayGain tags. The tone
// peaks at 0.7.
bool tagCopy(const AudioFixture::Tone &tone, int part, const QString &name, double trackGain, double albumGain)
{
    const auto gain = [](double db) { return QString::number(db, 'f', 2) + u" dB"_s; };
    return AudioFixture::ffmpeg({u"-i"_s, tone.partPath(part), u"-c"_s, u"copy"_s,
                                 u"-metadata"_s, u"REPLAYGAIN_TRACK_GAIN="_s + gain(trackGain),
                                 u"-metadata"_s, u"REPLAYGAIN_TRACK_PEAK=0.700000"_s,
                                 u"-metadata"_s, u"REPLAYGAIN_ALBUM_GAIN="_s + gain(albumGain),
                                 u"-metadata"_s, u"REPLAYGAIN_ALBUM_PEAK=0.700000"_s,
                                 tone.folder + u"/part"_s + name + u".flac"_s});
}

// The level of `samples` from `from` for `count` samples, in decibels.
double levelDb(const std::vector<float> &samples, qsizetype from, qsizetype count)
{
    double sum = 0;
    for (qsizetype i = std::max<qsizetype>(from, 0); i < from + count && i < qsizetype(samples.size()); ++i)
        sum += double(samples[size_t(i)]) * samples[size_t(i)];
    return 10 * std::log10(sum / double(count));
}

QString describe(const AudioFixture::GapReport &report)
{
    QStringList gaps;
    for (const qsizetype gap : report.gaps)
        gaps.append(QString::number(gap));
    return u"lead %1, gaps [%2], worst error %3"_s.arg(report.lead).arg(gaps.join(u", "_s)).arg(report.worstError);
}
}

class MpvPlaybackTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::optional<AudioFixture::Tone> m_tone;
    int m_outputs = 0;

    QString nextOutputPath() { return m_dir.filePath(u"out%1.wav"_s.arg(++m_outputs)); }

    // The output is exactly `expected`, joined without a sample gained or lost.
    void verifySeamless(const std::vector<float> &output, const std::vector<float> &expected)
    {
        const AudioFixture::GapReport report = AudioFixture::measureGaps(output, expected, m_tone->partSamples);
        qInfo().noquote() << describe(report);
        QVERIFY2(report.worstError < toleratedError, qPrintable(describe(report)));
        for (const qsizetype gap : report.gaps)
            QVERIFY2(gap == 0, qPrintable(describe(report)));
        QCOMPARE(qsizetype(output.size()) - report.lead, qsizetype(expected.size()));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_tone = AudioFixture::makeTone(m_dir.path(), 3, 1.0);
        QVERIFY(m_tone);
        QCOMPARE(qsizetype(m_tone->samples.size()), 3 * m_tone->partSamples);
    }

    void threeFilesCutFromOneTonePlayBackAsTheTone()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        player.play(u"0 1 2"_s);
        QVERIFY(player.waitForEnd());
        QCOMPARE(player.controller().queue().size(), 0);
        verifySeamless(player.output(), m_tone->samples);
    }

    void aOneSongQueueWithRepeatAllLoopsWithoutAGap()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        QSignalSpy ended(&player.engine(), &AudioEngine::itemEnded);
        player.controller().setRepeatMode(RepeatMode::All);
        player.play(u"0"_s);
        QVERIFY(QTest::qWaitFor([&] { return ended.count() >= 2; }, endTimeoutMs));
        QCOMPARE(player.controller().currentIndex(), std::optional<qsizetype>(0));
        QVERIFY(player.controller().isPlaying());
        // The third round is the last.
        player.controller().setRepeatMode(RepeatMode::Off);
        QVERIFY(player.waitForEnd());
        verifySeamless(player.output(), AudioFixture::concat({m_tone->part(0), m_tone->part(0), m_tone->part(0)}));
    }

    void repeatOneSwitchedOnDuringTheLastSongPlaysItAgain()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        QSignalSpy ended(&player.engine(), &AudioEngine::itemEnded);
        player.play(u"0 1"_s, 1);
        player.controller().setRepeatMode(RepeatMode::One);
        QVERIFY(QTest::qWaitFor([&] { return ended.count() >= 1; }, endTimeoutMs));
        QCOMPARE(player.controller().currentIndex(), std::optional<qsizetype>(1));
        player.controller().setRepeatMode(RepeatMode::Off);
        QVERIFY(player.waitForEnd());
        verifySeamless(player.output(), AudioFixture::concat({m_tone->part(1), m_tone->part(1)}));
    }

    void removingThePreloadedSongPlaysTheOneAfterIt()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        player.play(u"0 1 2"_s);
        player.controller().removeUpcoming({0});
        QCOMPARE(order(player.controller().queue()), u"0 2"_s);
        QVERIFY(player.waitForEnd());
        verifySeamless(player.output(), AudioFixture::concat({m_tone->part(0), m_tone->part(2)}));
    }

    // Two parts of one tone, the second tagged 6 dB quieter as a track but as loud within its album.
    void levellingFollowsTheFilesTagsAndKeepsAlbumsGapless()
    {
        QVERIFY(tagCopy(*m_tone, 0, u"rg0"_s, 0, 0));
        QVERIFY(tagCopy(*m_tone, 1, u"rg1"_s, -6, 0));
        const auto levels = [&](LoudnessLevelling levelling) {
            RealPlayer player(*m_tone, nextOutputPath());
            player.engine().setLoudnessLevelling(levelling);
            player.play(u"rg0 rg1"_s);
            const bool ended = player.waitForEnd();
            const std::vector<float> output = player.output();
            const AudioFixture::GapReport report = AudioFixture::measureGaps(
                output, AudioFixture::concat({m_tone->part(0), m_tone->part(1)}), m_tone->partSamples);
            const qsizetype part = m_tone->partSamples;
            return std::tuple{ended, report, levelDb(output, report.lead + part / 4, part / 2),
                              levelDb(output, report.lead + part + part / 4, part / 2)};
        };
        const auto [endedByTrack, byTrackReport, first, second] = levels(LoudnessLevelling::ByTrack);
        QVERIFY(endedByTrack);
        QVERIFY2(std::abs(second - first + 6) < 0.2, qPrintable(u"%1 dB then %2 dB"_s.arg(first).arg(second)));
        const auto [endedOff, offReport, firstOff, secondOff] = levels(LoudnessLevelling::Off);
        QVERIFY(endedOff);
        QVERIFY2(std::abs(secondOff - firstOff) < 0.2, qPrintable(u"%1 dB then %2 dB"_s.arg(firstOff).arg(secondOff)));
        // A gain past what the peak allows is held to the peak: +6 dB on a peak of 0.7 gives 1/0.7, about +3.1 dB.
        QVERIFY(tagCopy(*m_tone, 1, u"loud"_s, 6, 6));
        RealPlayer loud(*m_tone, nextOutputPath());
        loud.engine().setLoudnessLevelling(LoudnessLevelling::ByTrack);
        loud.play(u"rg0 loud"_s);
        QVERIFY(loud.waitForEnd());
        const std::vector<float> loudOutput = loud.output();
        const qsizetype part = m_tone->partSamples;
        const qsizetype lead = qsizetype(loudOutput.size()) - 2 * part;
        const double raised = levelDb(loudOutput, lead + part + part / 4, part / 2) - levelDb(loudOutput, lead + part / 4, part / 2);
        QVERIFY2(std::abs(raised - 20 * std::log10(1 / 0.7)) < 0.3, qPrintable(u"raised by %1 dB"_s.arg(raised)));
        // By album the two are as loud as each other, and join without a sample gained or lost.
        RealPlayer player(*m_tone, nextOutputPath());
        player.engine().setLoudnessLevelling(LoudnessLevelling::ByAlbum);
        player.play(u"rg0 rg1"_s);
        QVERIFY(player.waitForEnd());
        verifySeamless(player.output(), AudioFixture::concat({m_tone->part(0), m_tone->part(1)}));
    }

    void aChangedLevellingReachesTheSongPlaying()
    {
        // One song of three seconds, 6 dB too loud by its tags, levelled by track; levelling goes off a second in.
        const QString folder = m_dir.filePath(u"long"_s);
        QDir().mkpath(folder);
        const std::optional<AudioFixture::Tone> tone = AudioFixture::makeTone(folder, 1, 3.0);
        QVERIFY(tone);
        QVERIFY(tagCopy(*tone, 0, u"quiet"_s, -6, -6));
        RealPlayer player(*tone, nextOutputPath());
        player.engine().setLoudnessLevelling(LoudnessLevelling::ByTrack);
        player.play(u"quiet"_s);
        QVERIFY(QTest::qWaitFor([&] { return player.engine().isStarted(); }, endTimeoutMs));
        QTest::qWait(1000);
        QVERIFY(player.controller().isPlaying());
        player.engine().setLoudnessLevelling(LoudnessLevelling::Off);
        QVERIFY(player.waitForEnd());
        // The song's end sounds as the file is, not 6 dB down: the change reached the song playing. (Where it
        // starts to be heard depends on how much the output had buffered.)
        const std::vector<float> output = player.output();
        const qsizetype second = AudioFixture::sampleRate;
        QVERIFY(qsizetype(output.size()) > second);
        const double end = levelDb(output, qsizetype(output.size()) - second / 2, second / 2);
        const double file = levelDb(tone->samples, 0, qsizetype(tone->samples.size()));
        QVERIFY2(std::abs(end - file) < 0.3, qPrintable(u"%1 dB at the end, %2 dB in the file"_s.arg(end).arg(file)));
    }

    void aSongWithoutAFileStreamsFromTheServer()
    {
        FakeSubsonicServer server;
        QFile flac(m_tone->partPath(1));
        QVERIFY(flac.open(QIODevice::ReadOnly));
        server.on(u"stream"_s, FakeResponse{.contentType = "audio/flac", .body = flac.readAll()});

        RealPlayer player(*m_tone, nextOutputPath());
        player.client = SubsonicClient(ServerConfig{.baseURL = server.baseURL(), .username = u"u"_s,
                                                    .password = u"p"_s});
        player.controller().setLocalFileLookup([](const Song &, const ServerConfig &) { return std::nullopt; });
        player.play(u"s"_s);
        QVERIFY(player.waitForEnd());
        QVERIFY(server.count(u"stream"_s) >= 1);
        QCOMPARE(server.requests(u"stream"_s).first().value(u"id"_s), u"s"_s);
        QCOMPARE(server.requests(u"stream"_s).first().value(u"format"_s), u"raw"_s);
        QVERIFY(!server.requests(u"stream"_s).first().value(u"t"_s).isEmpty());
        verifySeamless(player.output(), m_tone->part(1));
    }

    void aMissingFileStaysCurrentAndSilentUntilTheUserSkips()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        player.play(u"gone 1"_s);
        QTest::qWait(1500);
        // Nothing is shown and nothing moves on: the song stays, "playing", at its start.
        QCOMPARE(player.current(), u"gone"_s);
        QVERIFY(player.controller().isPlaying());
        QCOMPARE(player.controller().currentTime(), 0.0);

        player.controller().next();
        QCOMPARE(player.current(), u"1"_s);
        QVERIFY(player.waitForEnd());
        verifySeamless(player.output(), m_tone->part(1));
    }

    void theOutputsAreOfferedWithTheChosenOne()
    {
        RealPlayer player(*m_tone, nextOutputPath());
        QSignalSpy changed(&player.controller(), &PlayerController::outputDevicesChanged);
        player.engine().start();
        // mpv always offers its own choice, "auto", and starts on it.
        QTRY_VERIFY(!player.controller().outputDevices().isEmpty());
        QTRY_COMPARE(player.controller().outputDevice(), u"auto"_s);
        QCOMPARE(player.controller().outputDevices().first().name, u"auto"_s);
        QVERIFY(changed.count() > 0);

        player.controller().setOutputDevice(u"null"_s);
        QTRY_COMPARE(player.controller().outputDevice(), u"null"_s);
    }

    // What the desktop's media controls read at each change of song, a gapless one included: that song's
    // length (its own until mpv knows the file's, never the last song's) and a position from 0. A restart of
    // the same song is told as a seek, since nothing else would say that the position went back.
    void theMediaControlsFollowEachSongAndRestart()
    {
        QVERIFY(AudioFixture::ffmpeg({u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=frequency=300:duration=2"_s, u"-c:a"_s,
                                      u"flac"_s, m_tone->folder + u"/part9.flac"_s}));
        RealPlayer player(*m_tone, nextOutputPath());
        QObject bus;
        auto *mpris = new MprisPlayerAdaptor(&bus, &player.controller(), {});
        const auto length = [mpris] { return mpris->metadata().value(u"mpris:length"_s).toLongLong(); };
        QList<std::pair<qlonglong, qlonglong>> atChange;
        connect(&player.controller(), &PlayerController::currentSongChanged, this,
                [&] { atChange.append({length(), mpris->position()}); });
        QSignalSpy seeked(mpris, &MprisPlayerAdaptor::Seeked);

        player.play(u"0 9"_s);
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(length() - 1'000'000) < 50'000, 5000);
        QTRY_COMPARE_WITH_TIMEOUT(player.current(), u"9"_s, 5000);
        QCOMPARE(atChange.last(), (std::pair<qlonglong, qlonglong>{200'000'000, 0}));
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(length() - 2'000'000) < 50'000, 5000);
        QCOMPARE(seeked.count(), 0);

        player.controller().setRepeatMode(RepeatMode::One);
        QTRY_COMPARE_WITH_TIMEOUT(seeked.count(), 1, 5000);
        QCOMPARE(seeked.first().first().toLongLong(), 0);
        QCOMPARE(player.current(), u"9"_s);
        QVERIFY(mpris->position() < 500'000);
    }

    void aRestoredSessionWaitsPausedAndResumesAtTheSavedPlace()
    {
        const QString folder = m_dir.filePath(u"session"_s);
        RealPlayer player(*m_tone, nextOutputPath(), PlayerStorage{.sessionFolder = folder});
        const SessionSnapshot snapshot{.serverKey = serverKey(player.client.config()),
                                       .queue = makeSongs(u"0 1"_s),
                                       .currentIndex = 1,
                                       .currentTime = 0.5};
        QVERIFY(writeFile(player.controller().sessionFilePath(), snapshot.encode()));

        QSignalSpy ready(&player.engine(), &AudioEngine::itemReady);
        player.controller().restoreSession(player.client);
        QCOMPARE(player.current(), u"1"_s);
        QVERIFY(!player.controller().isPlaying());
        QCOMPARE(player.controller().currentTime(), 0.5);
        QVERIFY(ready.wait(5000));
        QTest::qWait(700);
        QVERIFY(!player.controller().isPlaying());
        QCOMPARE(player.controller().currentTime(), 0.5);

        player.controller().togglePlayPause();
        QVERIFY(player.waitForEnd());
        const std::vector<float> part = m_tone->part(1);
        verifySeamless(player.output(), std::vector<float>(part.begin() + part.size() / 2, part.end()));
    }
};

QTEST_GUILESS_MAIN(MpvPlaybackTest)

#include "tst_mpvplayback.moc"
