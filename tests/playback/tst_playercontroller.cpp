#include "playertesthelpers.h"

#include <QSignalSpy>

#include <QHash>

using namespace Qt::StringLiterals;
using EndStyle = FakeAudioEngine::EndStyle;

namespace {
// Every notification of the controller, counted by name.
class NotificationLog
{
public:
    explicit NotificationLog(PlayerController &controller)
    {
        const QMetaObject *meta = controller.metaObject();
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
            m_spies.emplace_back(QString::fromLatin1(meta->property(i).name()),
                                 std::make_unique<QSignalSpy>(&controller, meta->property(i).notifySignal()));
    }
    // The names of the properties that notified, each as often as it did.
    [[nodiscard]] QStringList fired() const
    {
        QStringList names;
        for (const auto &[name, spy] : m_spies)
            names.append(QStringList(spy->count(), name));
        return names;
    }

private:
    std::vector<std::pair<QString, std::unique_ptr<QSignalSpy>>> m_spies;
};

// Pearson's statistic of counts against an even spread over the songs counted.
double chiSquare(const QHash<QString, int> &counts, int total)
{
    const double expected = double(total) / counts.size();
    double sum = 0;
    for (const int count : counts)
        sum += (count - expected) * (count - expected) / expected;
    return sum;
}
}

class PlayerControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playStartsTheChosenSongWithTheNextOneWaiting()
    {
        Player p;
        const auto source = PlaybackSource::album(u"al"_s, u"Album"_s);
        p.controller.play(makeSongs(u"a b c"_s), 1, p.client, source);
        QCOMPARE(order(p.controller.queue()), u"a b c"_s);
        QCOMPARE(p.current(), u"b"_s);
        QCOMPARE(order(p.controller.upNext()), u"c"_s);
        QVERIFY(p.controller.isPlaying());
        QVERIFY(p.engine.calls().contains(u"play"_s));
        VERIFY_ENGINE(p);
        // Playing nothing keeps the song playing.
        p.engine.clearCalls();
        p.controller.play({}, 0, p.client, std::nullopt);
        p.controller.playShuffled({}, p.client, std::nullopt);
        QCOMPARE(p.current(), u"b"_s);
        QCOMPARE(p.controller.source(), source);
        QCOMPARE(p.engine.calls(), QStringList());
        p.play(u"a b c d e"_s, 1);
        p.controller.jumpToUpcoming(1); // skipped songs stay behind
        QCOMPARE(p.current(), u"d"_s);
        QCOMPARE(order(p.controller.queue()), u"a b c d e"_s);
        QCOMPARE(order(p.controller.upNext()), u"e"_s);
        VERIFY_ENGINE(p);
        // The starting index is clamped into the queue.
        p.play(u"a b c"_s, -5);
        QCOMPARE(p.current(), u"a"_s);
        p.play(u"a b c"_s, 7);
        QCOMPARE(p.current(), u"c"_s);
        VERIFY_ENGINE(p);
    }

    void eachRealChangeNotifiesOnceAndEqualAssignmentsNobody()
    {
        Player p;
        p.play(u"a b c"_s);
        NotificationLog same(p.controller);
        p.controller.setRepeatMode(RepeatMode::Off);
        p.controller.setVolume(1.0F);
        p.play(u"a b c"_s); // restarts a, changes nothing seen
        p.controller.moveUpcoming({0}, 0);
        p.controller.removeUpcoming({5});
        QCOMPARE(same.fired(), QStringList());
        QCOMPARE(p.engine.calls().count(u"insert a"_s), 2);
        NotificationLog log(p.controller);
        p.controller.next();
        QCOMPARE(log.fired(), (QStringList{u"currentIndex"_s, u"currentSong"_s, u"upNext"_s}));
        NotificationLog edit(p.controller);
        p.controller.playNext(makeSongs(u"x"_s), p.client);
        p.controller.removeUpcoming({0});
        QCOMPARE(edit.fired(), (QStringList{u"queue"_s, u"queue"_s, u"upNext"_s, u"upNext"_s}));
    }

    void nextPastTheLastSongFollowsRepeat_data()
    {
        QTest::addColumn<RepeatMode>("mode");
        QTest::addColumn<QString>("current");
        QTest::newRow("off stops") << RepeatMode::Off << QString();
        QTest::newRow("one stops: it repeats only a song that ends by itself") << RepeatMode::One << QString();
        QTest::newRow("all wraps") << RepeatMode::All << u"a"_s;
    }
    void nextPastTheLastSongFollowsRepeat()
    {
        QFETCH(RepeatMode, mode);
        Player p;
        p.play(u"a b c"_s, 1);
        p.controller.setRepeatMode(mode);
        p.controller.next();
        QCOMPARE(p.current(), u"c"_s);
        VERIFY_ENGINE(p);
        p.controller.next();
        QTEST(p.current(), "current");
        QCOMPARE(p.controller.queue().isEmpty(), p.current().isEmpty());
        VERIFY_ENGINE(p);
    }

    void previousGoesBackOnlyInTheFirstThreeSeconds_data()
    {
        QTest::addColumn<qsizetype>("index");
        QTest::addColumn<double>("time");
        QTest::addColumn<QString>("current");
        QTest::addColumn<bool>("paused");
        QTest::newRow("at 3.0 s") << qsizetype(2) << 3.0 << u"b"_s << false;
        QTest::newRow("at 3.01 s restarts") << qsizetype(2) << 3.01 << u"c"_s << false;
        QTest::newRow("first song restarts, never wraps") << qsizetype(0) << 0.0 << u"a"_s << false;
        QTest::newRow("paused restarts and stays paused") << qsizetype(1) << 42.0 << u"b"_s << true;
    }
    void previousGoesBackOnlyInTheFirstThreeSeconds()
    {
        QFETCH(qsizetype, index);
        QFETCH(double, time);
        QFETCH(QString, current);
        QFETCH(bool, paused);
        Player p;
        p.play(u"a b c"_s, index);
        if (paused)
            p.controller.pause();
        p.controller.setRepeatMode(RepeatMode::All);
        p.controller.seek(time);
        p.engine.clearCalls();
        p.controller.previous();
        QCOMPARE(p.current(), current);
        QCOMPARE(p.controller.currentTime(), 0.0);
        QCOMPARE(p.controller.isPlaying(), !paused);
        // A restart seeks the same item instead of loading the song again.
        QCOMPARE(p.engine.calls().contains(u"seek 0"_s), current == p.controller.queue()[index].id);
        VERIFY_ENGINE(p);
    }

    void anEndedSongHandsOverToTheWaitingItem_data()
    {
        QTest::addColumn<EndStyle>("style");
        QTest::newRow("engine moved on") << EndStyle::EngineMovesOn;
        QTest::newRow("engine waits") << EndStyle::EngineWaits;
    }
    void anEndedSongHandsOverToTheWaitingItem()
    {
        QFETCH(EndStyle, style);
        Player p;
        p.play(u"a b c"_s);
        p.engine.clearCalls();
        p.engine.finishCurrent(style);
        QCOMPARE(p.current(), u"b"_s);
        // No gap: b was already loaded, so it is neither reloaded nor advanced past.
        QVERIFY(!p.engine.calls().contains(u"insert b"_s));
        QCOMPARE(p.engine.calls().count(u"advance"_s), style == EndStyle::EngineWaits ? 1 : 0);
        VERIFY_ENGINE(p);
        p.engine.finishCurrent(style);
        QCOMPARE(p.current(), u"c"_s);
        VERIFY_ENGINE(p);
        p.engine.finishCurrent(style);
        QVERIFY(p.controller.queue().isEmpty());
        QVERIFY(!p.controller.isPlaying());
        VERIFY_ENGINE(p);
    }

    void repeatOneLoopsThroughAWaitingCopyOfTheSong()
    {
        Player p;
        p.play(u"a b"_s, 1);
        p.controller.setRepeatMode(RepeatMode::One);
        QCOMPARE(p.engine.itemSongIds(), (QStringList{u"b"_s, u"b"_s}));
        p.engine.finishCurrent(EndStyle::EngineMovesOn);
        QCOMPARE(p.current(), u"b"_s);
        VERIFY_ENGINE(p);
        p.controller.setRepeatMode(RepeatMode::Off);
        VERIFY_ENGINE(p);
        p.engine.finishCurrent(EndStyle::EngineMovesOn);
        QVERIFY(p.controller.queue().isEmpty());
    }

    // Ending by itself it repeats from the waiting copy; a skip restarts it.
    void aLoneSongWithRepeatAllRepeats()
    {
        Player p;
        p.play(u"a"_s);
        p.controller.setRepeatMode(RepeatMode::All);
        p.engine.clearCalls();
        p.engine.finishCurrent(EndStyle::EngineMovesOn);
        QCOMPARE(p.current(), u"a"_s);
        QVERIFY(!p.engine.calls().contains(u"removeAll"_s));
        VERIFY_ENGINE(p);
        p.engine.clearCalls();
        p.controller.next();
        QCOMPARE(p.current(), u"a"_s);
        QCOMPARE(p.engine.calls().first(), u"removeAll"_s);
        QVERIFY(p.engine.calls().contains(u"insert a"_s));
        VERIFY_ENGINE(p);
    }

    void theEndOfASkippedItemIsIgnored()
    {
        Player p;
        p.play(u"a b c"_s);
        const EngineItemId first = *p.engine.currentItem();
        p.controller.next();
        Q_EMIT p.engine.itemEnded(first);
        QCOMPARE(p.current(), u"b"_s);
        VERIFY_ENGINE(p);
    }

    void aSongThatCouldNotWaitIsStartedAfresh()
    {
        Player p;
        p.engine.capacity = 1;
        p.play(u"a b"_s);
        QCOMPARE(p.engine.itemSongIds(), QStringList{u"a"_s});
        p.engine.finishCurrent(EndStyle::EngineMovesOn);
        QCOMPARE(p.current(), u"b"_s);
        QCOMPARE(p.engine.itemSongIds(), QStringList{u"b"_s});
    }

    void shuffleOnKeepsTheSongPlayingAndPutsItFirst()
    {
        Player p;
        p.play(u"a b c d e"_s, 2);
        p.engine.clearCalls();
        p.controller.toggleShuffle();
        QVERIFY(p.controller.isShuffling());
        QCOMPARE(p.controller.currentIndex(), 0);
        QCOMPARE(p.current(), u"c"_s);
        QCOMPARE(sortedOrder(p.controller.queue()), u"a b c d e"_s);
        for (const QString &call : {u"removeAll"_s, u"insert c"_s, u"seek 0"_s, u"pause"_s})
            QVERIFY2(!p.engine.calls().contains(call), qPrintable(call));
        VERIFY_ENGINE(p);
    }

    void shuffleOffReturnsToTheOrderAndTheFirstCopyOfTheSong_data()
    {
        QTest::addColumn<QString>("songs");
        QTest::addColumn<qsizetype>("playing");
        QTest::addColumn<qsizetype>("landsOn");
        QTest::newRow("plain") << u"a b c d e"_s << qsizetype(3) << qsizetype(3);
        QTest::newRow("second copy playing") << u"a b a c"_s << qsizetype(2) << qsizetype(0);
    }
    void shuffleOffReturnsToTheOrderAndTheFirstCopyOfTheSong()
    {
        QFETCH(QString, songs);
        QFETCH(qsizetype, playing);
        Player p;
        p.play(songs, playing);
        p.controller.toggleShuffle();
        p.controller.next();
        p.controller.previous();
        p.controller.toggleShuffle();
        QVERIFY(!p.controller.isShuffling());
        QCOMPARE(order(p.controller.queue()), songs);
        QTEST(*p.controller.currentIndex(), "landsOn");
        VERIFY_ENGINE(p);
    }

    void shuffleFavoursNoSong()
    {
        constexpr int runs = 4000;
        const QList<Song> songs = makeSongs(u"a b c d e"_s);
        Player p;
        QHash<QString, int> firstPlayed;
        QHash<QString, int> followingC;
        for (int i = 0; i < runs; ++i) {
            p.controller.playShuffled(songs, p.client, std::nullopt);
            ++firstPlayed[p.current()];
            p.controller.play(songs, 2, p.client, std::nullopt);
            p.controller.toggleShuffle();
            ++followingC[p.controller.upNext().first().id];
        }
        QCOMPARE(firstPlayed.size(), 5);
        QCOMPARE(followingC.size(), 4);
        // A fair shuffle goes above 40 with 4 degrees of freedom, or above 36 with 3, less than once in ten
        // million runs.
        QVERIFY2(chiSquare(firstPlayed, runs) < 40, qPrintable(u"%1"_s.arg(chiSquare(firstPlayed, runs))));
        QVERIFY2(chiSquare(followingC, runs) < 36, qPrintable(u"%1"_s.arg(chiSquare(followingC, runs))));
    }

    void playShuffledRemembersTheOrderAndStopKeepsShuffleAndRepeat()
    {
        Player p;
        p.controller.playShuffled(makeSongs(u"a b c d e"_s), p.client, std::nullopt);
        QVERIFY(p.controller.isShuffling());
        QCOMPARE(p.controller.currentIndex(), 0);
        VERIFY_ENGINE(p);
        const QString playing = p.current();
        p.controller.toggleShuffle();
        QCOMPARE(order(p.controller.queue()), u"a b c d e"_s);
        QCOMPARE(p.current(), playing);

        p.controller.playShuffled(makeSongs(u"a b c"_s), p.client, PlaybackSource::playlist(u"pl"_s, u"Mix"_s));
        p.controller.setRepeatMode(RepeatMode::All);
        p.controller.stop();
        QVERIFY(p.controller.queue().isEmpty());
        QCOMPARE(p.controller.currentIndex(), std::nullopt);
        QCOMPARE(p.controller.source(), std::nullopt);
        QVERIFY(p.controller.isShuffling());
        QCOMPARE(p.controller.repeatMode(), RepeatMode::All);
        VERIFY_ENGINE(p);

        QSignalSpy shuffling(&p.controller, &PlayerController::isShufflingChanged);
        p.controller.toggleShuffle();
        QVERIFY(p.controller.isShuffling());
        QCOMPARE(shuffling.count(), 0);

        // With nothing playing, adding songs plays them, as a play of its own.
        p.controller.playNext(makeSongs(u"x y"_s), p.client);
        QCOMPARE(order(p.controller.queue()), u"x y"_s);
        QVERIFY(!p.controller.isShuffling());
        QCOMPARE(p.controller.source(), std::nullopt);
        VERIFY_ENGINE(p);
    }

    void theRepeatButtonCyclesAndMovesTheWaitingSong()
    {
        QCOMPARE(nextRepeatMode(RepeatMode::Off), RepeatMode::All);
        QCOMPARE(nextRepeatMode(RepeatMode::All), RepeatMode::One);
        QCOMPARE(nextRepeatMode(RepeatMode::One), RepeatMode::Off);
        Player p;
        p.play(u"a b"_s, 1);
        for (int i = 0; i < 3; ++i) {
            p.controller.setRepeatMode(nextRepeatMode(p.controller.repeatMode()));
            VERIFY_ENGINE(p);
        }
    }

    void playNextInsertsAfterTheCurrentSongWithoutInterrupting()
    {
        Player p;
        p.play(u"a b c"_s);
        p.engine.clearCalls();
        p.controller.playNext(makeSongs(u"x y"_s), p.client);
        QCOMPARE(order(p.controller.queue()), u"a x y b c"_s);
        QCOMPARE(p.current(), u"a"_s);
        QVERIFY(!p.engine.calls().contains(u"removeAll"_s));
        VERIFY_ENGINE(p);
        p.controller.playLast(makeSongs(u"z"_s), p.client);
        QCOMPARE(order(p.controller.queue()), u"a x y b c z"_s);
        VERIFY_ENGINE(p);
    }

    void songsAddedOrClearedWhileShufflingKeepTheOriginalOrder()
    {
        Player p;
        p.play(u"a b a c"_s, 2);
        p.controller.toggleShuffle();
        p.controller.playNext(makeSongs(u"x"_s), p.client);
        p.controller.playLast(makeSongs(u"z"_s), p.client);
        QCOMPARE(p.controller.upNext().first().id, u"x"_s);
        QCOMPARE(p.controller.queue().last().id, u"z"_s);
        VERIFY_ENGINE(p);
        // x follows the first copy of a in the original order, though the second copy was playing.
        p.controller.toggleShuffle();
        QCOMPARE(order(p.controller.queue()), u"a x b a c z"_s);
        QCOMPARE(p.controller.currentIndex(), 0);
        // Clearing while shuffling leaves the current song alone, in both orders.
        p.play(u"a b c b"_s, 1);
        p.controller.toggleShuffle();
        p.controller.clearUpNext();
        QCOMPARE(order(p.controller.queue()), u"b"_s);
        VERIFY_ENGINE(p);
        p.controller.toggleShuffle();
        QCOMPARE(order(p.controller.queue()), u"b"_s);
        QCOMPARE(p.controller.currentIndex(), 0);
    }

    void removingOneCopyWhileShufflingDropsTheLaterOneFromTheOrder_data()
    {
        QTest::addColumn<int>("copy");
        QTest::newRow("first copy in the shuffle") << 0;
        QTest::newRow("second copy in the shuffle") << 1;
    }
    void removingOneCopyWhileShufflingDropsTheLaterOneFromTheOrder()
    {
        QFETCH(int, copy);
        Player p;
        p.play(u"a b c b"_s);
        p.controller.toggleShuffle();
        QList<qsizetype> copies;
        const QList<Song> upNext = p.controller.upNext();
        for (qsizetype i = 0; i < upNext.size(); ++i) {
            if (upNext[i].id == u"b"_s)
                copies.append(i);
        }
        p.controller.removeUpcoming({copies[copy]});
        QCOMPARE(sortedOrder(p.controller.queue()), u"a b c"_s);
        VERIFY_ENGINE(p);
        p.controller.toggleShuffle();
        QCOMPARE(order(p.controller.queue()), u"a b c"_s);
    }

    void removeAndMoveUpcomingEditWhatComesNext()
    {
        Player p;
        p.play(u"a b c d"_s, 1);
        p.controller.removeUpcoming({0, 9, -1});
        QCOMPARE(order(p.controller.queue()), u"a b d"_s);
        QCOMPARE(p.current(), u"b"_s);
        VERIFY_ENGINE(p);
        p.play(u"a b c d e"_s);
        p.controller.moveUpcoming({0, 2}, 4);
        QCOMPARE(order(p.controller.queue()), u"a c e b d"_s);
        VERIFY_ENGINE(p);
        p.controller.moveUpcoming({3}, 0);
        QCOMPARE(order(p.controller.queue()), u"a d c e b"_s);
        VERIFY_ENGINE(p);
        // A manual order made while shuffling is forgotten when shuffle goes off.
        p.play(u"a b c d"_s);
        p.controller.toggleShuffle();
        p.controller.moveUpcoming({2}, 0);
        p.controller.toggleShuffle();
        QCOMPARE(order(p.controller.queue()), u"a b c d"_s);
        VERIFY_ENGINE(p);
    }
};

QTEST_GUILESS_MAIN(PlayerControllerTest)
#include "tst_playercontroller.moc"
