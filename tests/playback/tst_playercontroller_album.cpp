#include "fakesubsonicserver.h"
#include "playertesthelpers.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {
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

// What the player writes to the log.
QStringList logLines;
QtMessageHandler previousHandler = nullptr;

void collectLog(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    logLines.append(message);
    previousHandler(type, context, message);
}
}

class PlayerControllerAlbumTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer m_server;
    std::unique_ptr<Player> m_player;

    [[nodiscard]] SubsonicClient client() const
    {
        return SubsonicClient(ServerConfig{.baseURL = m_server.baseURL(), .username = u"u"_s, .password = u"p"_s});
    }

private Q_SLOTS:
    void init()
    {
        m_server.clearLog();
        m_player = std::make_unique<Player>();
        m_player->client = client();
        logLines.clear();
        previousHandler = qInstallMessageHandler(collectLog);
    }

    void cleanup()
    {
        qInstallMessageHandler(previousHandler);
        m_player.reset();
    }

    void playAlbumPlaysTheServersSongsFromTheAlbum()
    {
        const Album album = albumWith(u"al1"_s, u"a b c d"_s);
        m_server.on(u"getAlbum"_s, albumAnswer(album));
        m_player->controller.playAlbum(Album{.id = album.id, .name = album.name}, client(), {.startingAt = 1});
        QTRY_COMPARE(m_player->current(), u"b"_s);
        QCOMPARE(order(m_player->controller.queue()), u"a b c d"_s);
        QCOMPARE(m_player->controller.source(), PlaybackSource::album(u"al1"_s, u"Album al1"_s));
        QCOMPARE(m_server.requests(u"getAlbum"_s).first().value(u"id"_s), u"al1"_s);
        VERIFY_ENGINE(*m_player);
        QVERIFY(!m_player->controller.isShuffling());
        m_player->controller.playAlbum(album, client(), {.shuffled = true});
        QTRY_VERIFY(m_player->controller.isShuffling());
        QCOMPARE(sortedOrder(m_player->controller.queue()), u"a b c d"_s);
        VERIFY_ENGINE(*m_player);
    }

    void playAlbumNextAddsWithoutInterrupting_data()
    {
        QTest::addColumn<QueuePlacement>("placement");
        QTest::addColumn<QString>("queue");
        QTest::newRow("next") << QueuePlacement::Next << u"a x y b"_s;
        QTest::newRow("last") << QueuePlacement::Last << u"a b x y"_s;
    }
    void playAlbumNextAddsWithoutInterrupting()
    {
        QFETCH(QueuePlacement, placement);
        m_server.on(u"getAlbum"_s, albumAnswer(albumWith(u"al2"_s, u"x y"_s)));
        m_player->play(u"a b"_s);
        m_player->controller.playAlbumNext(Album{.id = u"al2"_s, .name = u"Two"_s}, client(), placement);
        QTRY_COMPARE(m_player->controller.queue().size(), 4);
        QTEST(order(m_player->controller.queue()), "queue");
        QCOMPARE(m_player->current(), u"a"_s);
        QCOMPARE(m_player->controller.source(), std::nullopt);
        VERIFY_ENGINE(*m_player);
    }

    void aFailedLoadOnlyWritesOneLine()
    {
        m_server.on(u"getAlbum"_s, FakeResponse{.body = FakeSubsonicServer::failed(70, u"Album not found"_s)});
        m_player->play(u"a b"_s, 1);
        m_player->controller.playAlbum(Album{.id = u"al9"_s, .name = u"Gone"_s}, client());
        m_player->controller.playAlbumNext(Album{.id = u"al9"_s, .name = u"Gone"_s}, client(), QueuePlacement::Last);
        QTRY_COMPARE(logLines.size(), 2);
        QCOMPARE(logLines, QStringList(2, u"Failed to load album al9: Album not found"_s));
        QCOMPARE(order(m_player->controller.queue()), u"a b"_s);
        QCOMPARE(m_player->current(), u"b"_s);
        VERIFY_ENGINE(*m_player);
        // An unreachable server is logged the same way.
        const SubsonicClient gone(ServerConfig{.baseURL = QUrl(u"http://127.0.0.1:1"_s), .username = u"u"_s,
                                               .password = u"p"_s});
        m_player->controller.playAlbum(Album{.id = u"al3"_s, .name = u"Three"_s}, gone);
        QTRY_COMPARE(logLines.size(), 3);
        QVERIFY2(logLines.last().startsWith(u"Failed to load album al3: "_s), qPrintable(logLines.last()));
        QCOMPARE(order(m_player->controller.queue()), u"a b"_s);
    }

    void anAlbumWithoutSongsChangesNothing()
    {
        m_server.on(u"getAlbum"_s, albumAnswer(Album{.id = u"al4"_s, .name = u"Empty"_s}));
        m_player->play(u"a"_s);
        m_player->controller.playAlbum(Album{.id = u"al4"_s, .name = u"Empty"_s}, client());
        QTRY_COMPARE(m_server.count(u"getAlbum"_s), 1);
        QTest::qWait(100);
        QCOMPARE(order(m_player->controller.queue()), u"a"_s);
        QCOMPARE(m_player->controller.source(), std::nullopt);
    }

    void theFetchThatFinishesLastWins()
    {
        const Album slow = albumWith(u"slow"_s, u"s1 s2"_s);
        const Album fast = albumWith(u"fast"_s, u"f1 f2"_s);
        m_server.on(u"getAlbum"_s, [&](const RecordedRequest &request) {
            return request.value(u"id"_s) == slow.id ? albumAnswer(slow, 300) : albumAnswer(fast);
        });
        m_player->controller.playAlbum(slow, client());
        m_player->controller.playAlbum(fast, client());
        QTRY_COMPARE(m_player->current(), u"f1"_s);
        QTRY_COMPARE(m_player->current(), u"s1"_s);
        QCOMPARE(m_player->controller.source(), PlaybackSource::album(u"slow"_s, u"Album slow"_s));
        VERIFY_ENGINE(*m_player);
    }

    void destroyingThePlayerMidFetchIsSafe()
    {
        m_server.on(u"getAlbum"_s, FakeResponse{.hang = true});
        m_player->controller.playAlbum(Album{.id = u"al5"_s, .name = u"Five"_s}, client());
        QTRY_COMPARE(m_server.count(u"getAlbum"_s), 1);
        m_player.reset();
        QTest::qWait(50);
        QCOMPARE(logLines, QStringList());
    }
};

QTEST_GUILESS_MAIN(PlayerControllerAlbumTest)
#include "tst_playercontroller_album.moc"
