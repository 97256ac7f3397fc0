// The session kept in "session.json": what a save writes, and what the next run gets back.

#include "playertesthelpers.h"

#include "playback/sessionsnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
// "s0 s1 ... s(n-1)"
QString numberedIds(int count)
{
    QStringList ids;
    for (int i = 0; i < count; ++i)
        ids.append(u"s%1"_s.arg(i));
    return ids.join(u' ');
}

const QString ownKey = u"u@http://127.0.0.1:9"_s;
}

class PlayerSessionTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_runs = 0;
    QString m_folder;

    // One run of the application, saving into this test's folder.
    std::unique_ptr<Player> newRun() { return std::make_unique<Player>(PlayerStorage{.sessionFolder = m_folder}); }
    [[nodiscard]] QString sessionPath() const { return m_folder + u"/session.json"_s; }
    bool writeSnapshot(const QString &ids, qint64 index, const QString &key = ownKey)
    {
        return writeFile(sessionPath(), SessionSnapshot{.serverKey = key, .queue = makeSongs(ids),
                                                        .currentIndex = index, .currentTime = 42.5}
                                            .encode());
    }

private Q_SLOTS:
    void init() { m_folder = m_dir.filePath(u"run%1/Velto"_s.arg(++m_runs)); }

    void aSaveKeepsAWindowOfTheQueueAroundTheCurrentSong_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("shuffled");
        QTest::addColumn<int>("saved");
        QTest::addColumn<int>("savedIndex");
        QTest::addColumn<bool>("keepsOrderToReturnTo");
        QTest::newRow("3,000 of 10,000, shuffling") << 10000 << 3000 << true << 1001 << 500 << false;
        QTest::newRow("0 of 600") << 600 << 0 << false << 501 << 0 << false;
        QTest::newRow("0 of 501, shuffling") << 501 << 0 << true << 501 << 0 << true;
        QTest::newRow("500 of 1,001") << 1001 << 500 << false << 1001 << 500 << false;
    }
    void aSaveKeepsAWindowOfTheQueueAroundTheCurrentSong()
    {
        QFETCH(int, count);
        QFETCH(int, index);
        QFETCH(bool, shuffled);
        QFETCH(int, saved);
        QFETCH(int, savedIndex);
        QFETCH(bool, keepsOrderToReturnTo);
        auto p = newRun();
        if (shuffled) {
            p->controller.playShuffled(makeSongs(numberedIds(count)), p->client, std::nullopt);
            p->controller.jumpToUpcoming(index - 1);
        } else {
            p->play(numberedIds(count), index);
        }
        QCOMPARE(p->controller.currentIndex(), std::optional<qsizetype>(index));
        p->controller.saveSession();

        const QJsonObject object = QJsonDocument::fromJson(readFile(sessionPath())).object();
        QCOMPARE(object.value(u"queue"_s).toArray().size(), saved);
        QCOMPARE(object.value(u"currentIndex"_s).toInt(), savedIndex);
        QCOMPARE(object.value(u"queue"_s).toArray().at(savedIndex).toObject().value(u"id"_s).toString(),
                 p->current());
        QCOMPARE(object.value(u"isShuffling"_s).toBool(), shuffled);
        QCOMPARE(object.contains(u"unshuffledQueue"_s), keepsOrderToReturnTo);
        QCOMPARE(object.value(u"serverKey"_s).toString(), ownKey);
    }

    void aSessionComesBackPausedWhereItWas()
    {
        auto first = newRun();
        const auto source = PlaybackSource::playlist(u"p"_s, u"Mix"_s);
        first->controller.playShuffled(makeSongs(u"a b c d"_s), first->client, source);
        first->controller.next();
        first->controller.setRepeatMode(RepeatMode::All);
        Q_EMIT first->engine.positionTicked(200);
        first->controller.saveSession();
        const QList<Song> queue = first->controller.queue();

        auto second = newRun();
        second->controller.restoreSession(second->client);
        QCOMPARE(second->controller.queue(), queue);
        QCOMPARE(second->controller.currentIndex(), std::optional<qsizetype>(1));
        QCOMPARE(second->controller.source(), std::optional(source));
        QVERIFY(second->controller.isShuffling());
        QCOMPARE(second->controller.repeatMode(), RepeatMode::All);
        QVERIFY(!second->controller.isPlaying());
        QCOMPARE(second->controller.currentTime(), 200.0);
        QVERIFY(second->engine.calls().contains(u"pause"_s));
        QVERIFY(!second->engine.calls().contains(u"play"_s));
        QCOMPARE(second->engine.itemSongIds(), (QStringList{queue[1].id, queue[2].id}));

        // The engine is sent to the saved second once the song can be sought.
        QVERIFY(!second->engine.calls().contains(u"seek 200"_s));
        Q_EMIT second->engine.itemReady(*second->engine.currentItem());
        QVERIFY(second->engine.calls().contains(u"seek 200"_s));
        QCOMPARE(second->controller.currentTime(), 200.0);

        // Turning shuffle off gives back the order the queue was shuffled from.
        second->controller.toggleShuffle();
        QCOMPARE(order(second->controller.queue()), u"a b c d"_s);
    }

    void aStartedSongIsCheckpointedASecondLaterAndAnEndedQueueForgotten()
    {
        auto p = newRun();
        p->play(u"a b"_s);
        QTest::qWait(600);
        QVERIFY(!QFile::exists(sessionPath()));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(sessionPath()), 1500);

        // A pause keeps the place it paused at.
        Q_EMIT p->engine.positionTicked(30);
        p->controller.pause();
        QTRY_COMPARE_WITH_TIMEOUT(SessionSnapshot::decode(readFile(sessionPath())).value_or(SessionSnapshot{}).currentTime,
                                  30.0, 1500);

        p->controller.stop();
        QTest::qWait(600);
        QVERIFY(QFile::exists(sessionPath()));
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(sessionPath()), 1500);

        p->play(u"a"_s);
        p->controller.saveSession();
        QVERIFY(QFile::exists(sessionPath()));
        p->controller.clearSavedSession();
        QVERIFY(!QFile::exists(sessionPath()));
    }

    void anotherAccountsSessionIsDeleted()
    {
        auto p = newRun();
        QVERIFY(writeSnapshot(u"a b"_s, 0, u"someone@http://127.0.0.1:9"_s));
        p->controller.restoreSession(p->client);
        QCOMPARE(p->controller.currentSong(), std::nullopt);
        QVERIFY(!QFile::exists(sessionPath()));
    }

    void anUnreadableSessionIsLeftInPlace_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("not JSON") << QByteArray("{\"serverKey\": ");
        const auto snapshot = [](const QString &ids, qint64 index) {
            return SessionSnapshot{.serverKey = ownKey, .queue = makeSongs(ids), .currentIndex = index};
        };
        QTest::newRow("index past the queue") << snapshot(u"a b"_s, 2).encode();
        QTest::newRow("negative index") << snapshot(u"a"_s, -1).encode();
        QJsonObject twoSources = snapshot(u"a"_s, 0).toJson();
        const QJsonObject inner{{u"id"_s, u"x"_s}, {u"name"_s, u"X"_s}};
        twoSources.insert(u"source"_s, QJsonObject{{u"album"_s, inner}, {u"playlist"_s, inner}});
        QTest::newRow("two sources") << QJsonDocument(twoSources).toJson();
        QJsonObject badMode = snapshot(u"a"_s, 0).toJson();
        badMode.insert(u"repeatMode"_s, u"sometimes"_s);
        QTest::newRow("unknown repeat mode") << QJsonDocument(badMode).toJson();
    }
    void anUnreadableSessionIsLeftInPlace()
    {
        QFETCH(QByteArray, bytes);
        auto p = newRun();
        QVERIFY(writeFile(sessionPath(), bytes));
        p->controller.restoreSession(p->client);
        QCOMPARE(p->controller.currentSong(), std::nullopt);
        QCOMPARE(p->engine.items().size(), 0);
        QCOMPARE(readFile(sessionPath()), bytes);
    }

    void thereIsOneRestoreAttemptPerRun()
    {
        auto p = newRun();
        QVERIFY(writeFile(sessionPath(), "corrupt"));
        p->controller.restoreSession(p->client);
        QVERIFY(writeSnapshot(u"a b"_s, 1));
        p->controller.restoreSession(p->client);
        QCOMPARE(p->controller.currentSong(), std::nullopt);

        auto next = newRun();
        next->controller.restoreSession(next->client);
        QCOMPARE(next->current(), u"b"_s);
    }

    void aRestoreWhilePlayingWaitsForAnEmptyPlayer()
    {
        auto p = newRun();
        QVERIFY(writeSnapshot(u"a b"_s, 1));
        p->play(u"x y"_s);
        p->controller.restoreSession(p->client);
        QCOMPARE(order(p->controller.queue()), u"x y"_s);
        p->controller.stop();
        p->controller.restoreSession(p->client);
        QCOMPARE(order(p->controller.queue()), u"a b"_s);
        QCOMPARE(p->current(), u"b"_s);
        QCOMPARE(p->controller.currentTime(), 42.5);
    }
};

QTEST_GUILESS_MAIN(PlayerSessionTest)
#include "tst_playersession.moc"
