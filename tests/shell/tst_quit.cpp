// The real program, ended the way a desktop ends it at logout or shutdown: by a signal. It quits as from the menu,
// so the song it was playing comes back at the place it had reached.

#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "playback/sessionsnapshot.h"
#include "server/keychain.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {
QString sessionPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velto/session.json"_s;
}

QString playerctl(const QStringList &arguments)
{
    QProcess process;
    process.start(u"playerctl"_s, QStringList{u"--player=velto"_s} + arguments);
    process.waitForFinished(5000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

double positionSeen()
{
    return playerctl({u"position"_s}).toDouble();
}
}

class QuitTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    QTemporaryDir dir;
    QByteArray tone;
    QProcess velto;

    bool startVelto()
    {
        velto.setProcessChannelMode(QProcess::ForwardedChannels);
        velto.start(QStringLiteral(VELTO_BINARY), {});
        return velto.waitForStarted() && QTest::qWaitFor([] { return playerctl({u"status"_s}) == u"Paused"_s; }, 20000);
    }

private Q_SLOTS:
    void initTestCase()
    {
        const QString path = dir.filePath(u"tone.flac"_s);
        QCOMPARE(QProcess::execute(u"ffmpeg"_s, {u"-loglevel"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                                                 u"sine=frequency=440:duration=30"_s, path}),
                 0);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        tone = file.readAll();
        server.on(u"stream"_s, [this](const RecordedRequest &) {
            return FakeResponse{.contentType = "audio/flac", .body = tone};
        });
        server.on(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject()}}));
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server.on(u"scrobble"_s, FakeSubsonicServer::json({}));

        // Signed in, with one song waiting at its start.
        const QString url = server.baseURL().toString();
        QSettings settings;
        settings.setValue(u"serverURL"_s, url);
        settings.setValue(u"username"_s, u"alice"_s);
        settings.sync();
        awaitTask(Keychain::save(u"pw"_s, u"alice@"_s + url));
        const SessionSnapshot snapshot{.serverKey = u"alice@"_s + url,
                                       .queue = {Song{.id = u"s1"_s, .title = u"Tone"_s, .duration = 30}}};
        QDir().mkpath(QFileInfo(sessionPath()).path());
        QFile session(sessionPath());
        QVERIFY(session.open(QIODevice::WriteOnly) && session.write(snapshot.encode()) > 0);
    }

    void aSignalQuitsAndTheSongComesBackWhereItWas()
    {
        QVERIFY(startVelto());
        playerctl({u"play"_s});
        QTRY_VERIFY_WITH_TIMEOUT(positionSeen() > 3.0, 15000);
        const double atSignal = positionSeen();
        ::kill(pid_t(velto.processId()), SIGTERM);
        QVERIFY(velto.waitForFinished(10000));
        QCOMPARE(velto.exitStatus(), QProcess::NormalExit);

        QFile session(sessionPath());
        QVERIFY(session.open(QIODevice::ReadOnly));
        const std::optional<SessionSnapshot> saved = SessionSnapshot::decode(session.readAll());
        QVERIFY(saved);
        QVERIFY2(std::abs(saved->currentTime - atSignal) < 1.0,
                 qPrintable(u"saved %1 s, playing at %2 s"_s.arg(saved->currentTime).arg(atSignal)));

        QVERIFY(startVelto());
        QVERIFY(std::abs(positionSeen() - saved->currentTime) < 0.01);
        velto.terminate();
        QVERIFY(velto.waitForFinished(10000));
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(u"Velto"_s);
    QCoreApplication::setApplicationName(u"Velto"_s);
    QuitTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_quit.moc"
