// Plays reported while the server is away: kept on disk with their own times, sent in order once the account's
// server answers again, one bad play dropped without holding up the rest, other accounts' plays left alone, the
// newest 500 kept, a broken file set aside, and a crash between two sends (in a child process, this program run
// with "--send-child") doubling at most the play that was in flight.

#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "playback/playreportqueue.h"

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString childFlag = u"--send-child"_s;

struct Received {
    QString songId;
    QString time;

    bool operator==(const Received &) const = default;
};

QList<Received> scrobbles(const FakeSubsonicServer &server)
{
    QList<Received> received;
    for (const RecordedRequest &request : server.requests(u"scrobble"_s))
        received.append({request.value(u"id"_s), request.value(u"time"_s)});
    return received;
}

QStringList songsOf(const QList<PendingPlay> &plays)
{
    QStringList ids;
    for (const PendingPlay &play : plays)
        ids.append(play.songId);
    return ids;
}

int runChild(const QString &folder, const QUrl &server)
{
    PlayReportQueue queue(folder);
    queue.setClient(SubsonicClient(ServerConfig{server, u"alice"_s, u"pw"_s}));
    return QCoreApplication::exec();
}
}

class PlayReportsTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    QTemporaryDir folder;
    SubsonicClient alice{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};

private Q_SLOTS:
    void init()
    {
        server.stop();
        server.start();
        server.on(u"ping"_s, FakeSubsonicServer::json({}));
        server.on(u"scrobble"_s, FakeSubsonicServer::json({}));
        server.clearLog();
        QFile::remove(folder.filePath(u"pending-plays.json"_s));
    }

    void playsHeardOfflineGoOutInOrderWithTheirTimesOnceTheServerAnswers()
    {
        PlayReportQueue queue(folder.path());
        server.stop();
        queue.submit(alice, u"s1"_s, 1000);
        queue.submit(alice, u"s2"_s, 2000);
        queue.submit(alice, u"s3"_s, 3000);
        QTRY_VERIFY(!queue.isSending());
        QCOMPARE(songsOf(queue.pending()), (QStringList{u"s1"_s, u"s2"_s, u"s3"_s})); // nothing left

        // Another account's plays stay where they are, whatever happens to Alice's.
        const SubsonicClient bob(ServerConfig{server.baseURL(), u"bob"_s, u"pw"_s});
        queue.submit(bob, u"b1"_s, 1500);
        queue.setClient(alice);
        QTRY_VERIFY(!queue.isSending());

        // The next successful request of the account, here one the library makes, sends them.
        server.start();
        awaitTask(alice.ping());
        QTRY_COMPARE(songsOf(queue.pending()), QStringList{u"b1"_s});
        QCOMPARE(scrobbles(server), (QList<Received>{{u"s1"_s, u"1000"_s}, {u"s2"_s, u"2000"_s}, {u"s3"_s, u"3000"_s}}));
        QCOMPARE(queue.pending().at(0).account, u"bob@"_s + server.baseURL().toString());

        // Online, a play goes out at once and leaves nothing behind.
        queue.submit(alice, u"s4"_s, 4000);
        QTRY_VERIFY(!queue.isSending());
        QCOMPARE(scrobbles(server).size(), 4);
        QCOMPARE(songsOf(queue.pending()), QStringList{u"b1"_s});
    }

    void aPlayTheServerRefusesIsDroppedAndTheRestGoOn()
    {
        {
            PlayReportQueue queue(folder.path());
            server.stop();
            for (const QString &id : {u"s1"_s, u"bad"_s, u"s2"_s})
                queue.submit(alice, id, 10);
            QTRY_VERIFY(!queue.isSending());
        }
        server.start();
        server.on(u"scrobble"_s, [](const RecordedRequest &request) {
            return request.value(u"id"_s) == u"bad"_s ? FakeSubsonicServer::error(70, u"Song not found"_s)
                                                       : FakeSubsonicServer::json({});
        });
        // At the next start the account's waiting plays go out first thing; a server busy for a moment keeps
        // them all for the next time.
        server.enqueue(u"scrobble"_s, FakeResponse{.status = 503, .contentType = "text/html", .body = "<html>"});
        PlayReportQueue queue(folder.path());
        QCOMPARE(queue.pending().size(), 3);
        queue.setClient(alice);
        QTRY_COMPARE(scrobbles(server).size(), 1);
        QTRY_VERIFY(!queue.isSending());
        QCOMPARE(queue.pending().size(), 3);
        awaitTask(alice.ping());
        QTRY_VERIFY(queue.pending().isEmpty());
        QCOMPARE(scrobbles(server).size(), 4);
        QVERIFY(!QFile::exists(queue.filePath()));
    }

    void onlyTheNewest500AreKept()
    {
        PlayReportQueue queue(folder.path());
        server.stop();
        for (int i = 0; i < 600; ++i)
            queue.submit(alice, u"s%1"_s.arg(i), i);
        QTRY_VERIFY(!queue.isSending());
        QCOMPARE(queue.pending().size(), PlayReportQueue::capacity);
        QCOMPARE(queue.pending().constFirst().songId, u"s100"_s);
        QCOMPARE(queue.pending().constLast().songId, u"s599"_s);
        QCOMPARE(PlayReportQueue(folder.path()).pending(), queue.pending());
    }

    void aBrokenFileIsSetAsideAndTheQueueGoesOn()
    {
        QFile broken(folder.filePath(u"pending-plays.json"_s));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("[{\"account\": 3}");
        broken.close();
        PlayReportQueue queue(folder.path());
        QVERIFY(queue.pending().isEmpty());
        QVERIFY(QFile::exists(folder.filePath(u"pending-plays.json.corrupt"_s)));
        queue.submit(alice, u"s1"_s, 1);
        QTRY_COMPARE(scrobbles(server).size(), 1);
    }

    void aCrashBetweenTwoSendsDoublesAtMostThePlayInFlight()
    {
        {
            PlayReportQueue queue(folder.path());
            server.stop();
            for (const QString &id : {u"s1"_s, u"s2"_s, u"s3"_s})
                queue.submit(alice, id, 1);
            QTRY_VERIFY(!queue.isSending());
        }
        server.start();
        // The first is taken; the second never answered, and the sender dies waiting for it.
        server.enqueue(u"scrobble"_s, FakeSubsonicServer::json({}));
        server.enqueue(u"scrobble"_s, FakeResponse{.hang = true});
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(), {childFlag, folder.path(), server.baseURL().toString()});
        QVERIFY(child.waitForStarted());
        QTRY_COMPARE(scrobbles(server).size(), 2);
        child.kill();
        QVERIFY(child.waitForFinished());

        PlayReportQueue queue(folder.path());
        QCOMPARE(songsOf(queue.pending()), (QStringList{u"s2"_s, u"s3"_s}));
        queue.setClient(alice);
        QTRY_VERIFY(queue.pending().isEmpty());
        QStringList sent;
        for (const Received &received : scrobbles(server))
            sent.append(received.songId);
        QCOMPARE(sent, (QStringList{u"s1"_s, u"s2"_s, u"s2"_s, u"s3"_s}));
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc == 4 && QString::fromLocal8Bit(argv[1]) == childFlag)
        return runChild(QString::fromLocal8Bit(argv[2]), QUrl(QString::fromLocal8Bit(argv[3])));
    PlayReportsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playreports.moc"
