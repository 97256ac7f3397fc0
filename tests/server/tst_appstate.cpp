#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "server/appstate.h"
#include "server/keychain.h"

#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString readerFlag = u"--read-password"_s;

// What another program finds in the keyring this moment, read by a child process so that this one's event
// loop does not run meanwhile: a write still queued here is not there yet.
std::optional<QString> passwordSeenFromOutside(const QString &account)
{
    QProcess reader;
    reader.start(QCoreApplication::applicationFilePath(), {readerFlag, account});
    if (!reader.waitForFinished(10000) || reader.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(reader.readAllStandardOutput());
}

int printPassword(const QString &account)
{
    const std::optional<QString> password = awaitTask(Keychain::password(account));
    if (!password)
        return 1;
    std::fputs(password->toUtf8().constData(), stdout);
    return 0;
}
}

class AppStateTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<QSettings> settings;
    const QString password = u"pa ss+wörd"_s;

    QString account() const { return u"alice@"_s + server->baseURL().toString(); }

    void expectSignedOutAndUnsaved(const AppState &state)
    {
        QVERIFY(!state.isSignedIn());
        QVERIFY(!settings->contains(u"serverURL"_s));
        QVERIFY(!settings->contains(u"username"_s));
    }

private Q_SLOTS:
    void init()
    {
        server = std::make_unique<FakeSubsonicServer>();
        server->on(u"ping"_s, [this](const RecordedRequest &request) {
            const QString expected = SubsonicClient::token(password, request.value(u"s"_s));
            if (request.value(u"u"_s) == u"alice"_s && request.value(u"t"_s) == expected)
                return FakeSubsonicServer::json({});
            return FakeResponse{.body = FakeSubsonicServer::failed(40, u"Wrong username or password"_s)};
        });
        settings = std::make_unique<QSettings>(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings->clear();
    }

    void normalizesTypedAddresses_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("bare host") << u"music.example.org"_s << u"https://music.example.org"_s;
        QTest::newRow("http kept") << u"  http://192.168.1.5:4533/  "_s << u"http://192.168.1.5:4533"_s;
        QTest::newRow("path kept") << u"https://example.org/navidrome///"_s << u"https://example.org/navidrome"_s;
        QTest::newRow("port, no scheme") << u"nas.local:4533"_s << u"https://nas.local:4533"_s;
        QTest::newRow("blank") << u"   "_s << QString();
        QTest::newRow("no host") << u"://"_s << QString();
    }

    void normalizesTypedAddresses()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        const std::optional<QUrl> url = normalizeServerURL(typed);
        QCOMPARE(url ? url->toString() : QString(), expected);
    }

    // Signed in means the password is already in the keyring: a quit at once cannot lose it. The next start
    // shows its window before the keyring answers, and signs in without a ping when it does.
    void connectKeepsTheAccountAndTheNextStartRestoresIt()
    {
        {
            AppState state(settings.get());
            QVERIFY(!state.isRestoring());
            awaitTask(state.connect(server->baseURL().toString() + u"/"_s, u"alice"_s, password));
            QVERIFY(state.isSignedIn());
            QCOMPARE(passwordSeenFromOutside(account()), password);
            QCOMPARE(settings->value(u"serverURL"_s).toString(), server->baseURL().toString());
        }
        QFile file(settings->fileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(!QString::fromUtf8(file.readAll()).contains(u"wörd"_s));

        const int pings = server->count(u"ping"_s);
        AppState restored(settings.get());
        QVERIFY(restored.isRestoring());
        QVERIFY(!restored.isSignedIn());
        QTRY_VERIFY(restored.isSignedIn());
        QVERIFY(!restored.isRestoring());
        QCOMPARE(restored.client()->config().password, password);
        QCOMPARE(server->count(u"ping"_s), pings);
    }

    void failedConnectChangesNothing()
    {
        AppState state(settings.get());
        const auto wrong = awaitFailure<SubsonicError>(state.connect(server->baseURL().toString(), u"alice"_s, u"x"_s));
        QCOMPARE(wrong.value().description(), u"Wrong username or password."_s);
        expectSignedOutAndUnsaved(state);
        QCOMPARE(awaitTask(Keychain::password(account())), std::nullopt);

        const auto noHost = awaitFailure<SubsonicError>(state.connect(u"  "_s, u"alice"_s, password));
        QCOMPARE(noHost, SubsonicError::invalidResponse());
        expectSignedOutAndUnsaved(state);
    }

    void aSavedAccountWithoutItsPasswordStartsSignedOut()
    {
        settings->setValue(u"serverURL"_s, server->baseURL().toString());
        settings->setValue(u"username"_s, u"nobody"_s);
        AppState state(settings.get());
        QSignalSpy answered(&state, &AppState::restoringChanged);
        // The keyring may be slow to answer on a busy machine.
        QVERIFY(answered.wait(20000));
        QVERIFY(!state.isSignedIn());
        QVERIFY(settings->contains(u"serverURL"_s));
    }

    // Log Out forgets the account at once and the keyring's item by the time quit has waited for it.
    void reconnectReplacesThePasswordAndLogoutRemovesIt()
    {
        awaitTask(Keychain::save(u"stale"_s, account()));
        AppState state(settings.get());
        awaitTask(state.connect(server->baseURL().toString(), u"alice"_s, password));
        QCOMPARE(passwordSeenFromOutside(account()), password);

        QSignalSpy changed(&state, &AppState::clientChanged);
        state.logout();
        QCOMPARE(changed.count(), 1);
        expectSignedOutAndUnsaved(state);
        Keychain::waitForPendingJobs(std::chrono::seconds(5));
        QCOMPARE(passwordSeenFromOutside(account()), std::nullopt);
    }

    void legacyAuthenticationSurvivesARestart()
    {
        server->on(u"ping"_s, FakeSubsonicServer::json({}));
        {
            AppState state(settings.get());
            awaitTask(state.connect(server->baseURL().toString(), u"alice"_s, password, AuthMethod::LegacyPassword));
        }
        AppState restored(settings.get());
        QTRY_VERIFY(restored.isSignedIn());
        QCOMPARE(restored.client()->config().authMethod, AuthMethod::LegacyPassword);
        restored.logout();
        QVERIFY(!settings->contains(u"authMethod"_s));
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == readerFlag)
        return printPassword(app.arguments().value(2));
    AppStateTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_appstate.moc"
