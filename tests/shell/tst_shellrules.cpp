#include "../playback/playertesthelpers.h"
#include "awaittask.h"
#include "playback/sessionsnapshot.h"
#include "server/keychain.h"
#include "shell/veltoapp.h"
#include "fakesubsonicserver.h"
#include "library/connectionfault.h"
#include "library/librarystore.h"
#include "server/subsonicerror.h"
#include "shell/connectform.h"
#include "server/appstate.h"
#include "shell/appcommands.h"
#include "shell/localnetwork.h"
#include "shell/preferences.h"
#include "shell/savedlocation.h"
#include "shell/symbolicons.h"

#include <QFontDatabase>
#include <QRawFont>
#include <QStandardPaths>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class ShellRulesTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

    std::unique_ptr<QSettings> freshSettings()
    {
        auto settings = std::make_unique<QSettings>(dir.filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings->clear();
        return settings;
    }

    // What the menu bar sees: the app state, a player on a fake engine and the commands over both.
    struct Shell {
        explicit Shell(QSettings *settings) : appState(settings) {}
        AppState appState;
        Player player;
        LocationFile locations;
        AppCommands commands{&appState, &player.controller, &locations};
    };

private Q_SLOTS:
    // Names and addresses of a home network, and the edges just outside them.
    void localHosts()
    {
        for (const QString &host : {u"NAS.LOCAL"_s, u"localhost"_s, u"music.lan"_s, u"box.home"_s, u"srv.internal"_s,
                                    u"pi.home.arpa"_s, u"10.1.2.3"_s, u"127.0.0.1"_s, u"172.31.0.1"_s,
                                    u"192.168.1.20"_s, u"169.254.9.9"_s, u"fd00::1"_s, u"fc12::5"_s, u"fe80::1"_s,
                                    u"febf::1"_s, u"::1"_s})
            QVERIFY2(isLikelyLocalHost(host), qPrintable(host));
        for (const QString &host : {u"172.32.0.1"_s, u"203.0.113.7"_s, u"fec0::1"_s, u"0:0:0:0:0:0:0:1"_s,
                                    u"2001:db8::1"_s, u"music.example.org"_s, u"mylocal"_s, u"10.1"_s, u""_s})
            QVERIFY2(!isLikelyLocalHost(host), qPrintable(host));
        QVERIFY(!isLikelyLocalHost(std::nullopt));
    }

    void playbackItemsFollowTheCurrentSong()
    {
        auto settings = freshSettings();
        Shell shell(settings.get());
        auto &player = shell.player;
        auto &commands = shell.commands;
        QVERIFY(!commands.canControlPlayback());
        QCOMPARE(commands.playPauseTitle(), u"Play"_s);

        QSignalSpy enabled(&commands, &AppCommands::canControlPlaybackChanged);
        QSignalSpy title(&commands, &AppCommands::playPauseTitleChanged);
        player.play(u"a b"_s);
        QVERIFY(commands.canControlPlayback());
        QVERIFY(enabled.count() >= 1);
        QCOMPARE(commands.playPauseTitle(), u"Pause"_s);
        QVERIFY(title.count() >= 1);

        commands.next();
        QCOMPARE(player.current(), u"b"_s);
        commands.previous();
        QCOMPARE(player.current(), u"a"_s);
        commands.togglePlayPause();
        QCOMPARE(commands.playPauseTitle(), u"Play"_s);

        player.controller.stop();
        QVERIFY(!commands.canControlPlayback());
        commands.togglePlayPause(); // a disabled item does nothing
        QVERIFY(!player.controller.isPlaying());
    }

    void refreshAndNewPlaylistNeedSomethingToActOn()
    {
        auto settings = freshSettings();
        Shell shell(settings.get());
        auto &commands = shell.commands;
        QVERIFY(!commands.canRefresh());
        commands.refresh(); // signed out: nothing to refresh, nothing breaks

        QSignalSpy requested(&commands, &AppCommands::newPlaylistRequested);
        QVERIFY(!commands.canCreatePlaylist());
        commands.newPlaylist();
        QCOMPARE(requested.count(), 0);

        auto first = std::make_unique<QObject>();
        QObject second;
        commands.publishNewPlaylist(first.get());
        QVERIFY(commands.canCreatePlaylist());
        commands.withdrawNewPlaylist(&second); // not the publisher: no effect
        QVERIFY(commands.canCreatePlaylist());
        commands.newPlaylist();
        QCOMPARE(requested.count(), 1);
        QCOMPARE(requested.at(0).at(0).value<QObject *>(), first.get());

        QSignalSpy changed(&commands, &AppCommands::canCreatePlaylistChanged);
        first.reset(); // a closed window takes its action with it
        QVERIFY(!commands.canCreatePlaylist());
        QVERIFY(changed.count() >= 1);
    }

    void logOutStopsAndForgetsTheSessionAndThePlace()
    {
        auto settings = freshSettings();
        settings->setValue(u"serverURL"_s, u"http://127.0.0.1:9"_s);
        settings->setValue(u"username"_s, u"u"_s);
        Shell shell(settings.get());
        auto &player = shell.player;
        auto &commands = shell.commands;
        player.play(u"a b c"_s);
        player.controller.saveSession();
        const QString sessionFile =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velto/session.json"_s;
        QVERIFY(QFile::exists(sessionFile));
        const ServerConfig config{.baseURL = QUrl(u"http://127.0.0.1:9"_s), .username = u"u"_s};
        shell.locations.save(SidebarSelection::item(SidebarItem::Songs), {}, config);
        QVERIFY(QFile::exists(shell.locations.path()));

        commands.logOut();
        QVERIFY(!player.controller.currentSong());
        QVERIFY(!QFile::exists(sessionFile));
        QVERIFY(!QFile::exists(shell.locations.path()));
        QVERIFY(!shell.locations.restorable(config));
        QVERIFY(!settings->contains(u"serverURL"_s));
        QVERIFY(!settings->contains(u"username"_s));
    }

    // The last queue is back as soon as the main view appears, whether or not libmpv has loaded yet, so that a
    // quit in between keeps it rather than saving an empty player.
    void aQuitBeforeTheSoundEngineLoadsKeepsTheQueue()
    {
        const QString url = u"http://127.0.0.1:9"_s;
        QSettings().setValue(u"serverURL"_s, url);
        QSettings().setValue(u"username"_s, u"u"_s);
        awaitTask(Keychain::save(u"p"_s, u"u@"_s + url));
        const SessionSnapshot saved{.serverKey = u"u@"_s + url, .queue = makeSongs(u"a b"_s), .currentIndex = 1,
                                    .currentTime = 42};
        const QString sessionFile =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velto/session.json"_s;
        QVERIFY(writeFile(sessionFile, saved.encode()));

        VeltoApp app({.updateFeedURL = {}, .version = QVersionNumber(0, 1)});
        QTRY_VERIFY(app.appState()->isSignedIn());
        app.mainViewAppeared();
        QCOMPARE(currentId(*app.player()), u"b"_s);
        QCOMPARE(app.player()->currentTime(), 42.0);
        QVERIFY(QFile::remove(sessionFile));
        app.saveState();
        QFile file(sessionFile);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(SessionSnapshot::decode(file.readAll()), saved);
    }

    void theFormMaySendOnlyWhatItCanSend_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("sendable");
        QTest::newRow("complete") << u"music.example.org"_s << u"alice"_s << u"pw"_s << true;
        QTest::newRow("blank address") << u" \t "_s << u"alice"_s << u"pw"_s << false;
        QTest::newRow("line end is not a blank") << u"\n"_s << u"alice"_s << u"pw"_s << true;
        QTest::newRow("blank user passes") << u"music.example.org"_s << u"  "_s << u"pw"_s << true;
        QTest::newRow("no user") << u"music.example.org"_s << QString() << u"pw"_s << false;
        QTest::newRow("no password") << u"music.example.org"_s << u"alice"_s << QString() << false;
    }

    void theFormMaySendOnlyWhatItCanSend()
    {
        QFETCH(QString, address);
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(bool, sendable);
        ConnectForm form;
        form.setServerURL(address);
        form.setUsername(user);
        form.setPassword(password);
        QCOMPARE(form.canConnect(), sendable);
    }

    void aRunningConnectHoldsTheForm()
    {
        FakeSubsonicServer server;
        server.on(u"ping"_s, FakeResponse{.body = FakeSubsonicServer::failed(40, u"no"_s), .delayMs = 300});
        auto settings = freshSettings();
        AppState appState(settings.get());
        ConnectForm form;
        form.setAppState(&appState);
        form.setServerURL(server.baseURL().toString());
        form.setUsername(u"alice"_s);
        form.setPassword(u"wrong"_s);

        form.submit();
        QVERIFY(form.isConnecting());
        QVERIFY(!form.canConnect());
        form.submit(); // a second Return while the first runs
        QTRY_VERIFY(!form.isConnecting());
        QCOMPARE(server.count(u"ping"_s), 1);
        QVERIFY(!form.errorMessage().isEmpty());
        QCOMPARE(form.password(), u"wrong"_s);
        QVERIFY(!appState.isSignedIn());

        // The next attempt starts by clearing the last error.
        QStringList shown;
        connect(&form, &ConnectForm::errorMessageChanged, this, [&] { shown.append(form.errorMessage()); });
        form.setServerURL(u"://"_s);
        form.submit();
        QTRY_VERIFY(!form.isConnecting());
        QVERIFY(!shown.isEmpty());
        QCOMPARE(shown.first(), QString());
        QCOMPARE(form.errorMessage(), errorDescription(std::make_exception_ptr(SubsonicError::invalidResponse())));
    }

    void scrobblingIsOnUntilTurnedOff()
    {
        auto settings = freshSettings();
        Preferences preferences(settings.get());
        QVERIFY(preferences.scrobbleEnabled());
        QSignalSpy changed(&preferences, &Preferences::scrobbleEnabledChanged);
        preferences.setScrobbleEnabled(true);
        preferences.setScrobbleEnabled(false);
        QCOMPARE(changed.count(), 1);
        QVERIFY(!Preferences(settings.get()).scrobbleEnabled());
    }

    void symbolsReachTheIconFont()
    {
        const int font = QFontDatabase::addApplicationFont(SymbolIcons::fontPath());
        QVERIFY2(font >= 0, "the Material Icons font is not installed");
        QVERIFY(QFontDatabase::applicationFontFamilies(font).contains(SymbolIcons::fontFamily()));
        const QRawFont raw(SymbolIcons::fontPath(), 16);
        for (const QString &name : {u"music.note.house.fill"_s, u"play.fill"_s, u"heart"_s, u"heart.fill"_s,
                                    u"exclamationmark.triangle"_s, u"arrow.down.circle"_s}) {
            QVERIFY2(SymbolIcons::hasGlyph(name), qPrintable(name));
            QVERIFY2(raw.supportsCharacter(SymbolIcons::glyph(name).at(0)), qPrintable(name));
        }
        QVERIFY(!SymbolIcons::hasGlyph(u"no.such.symbol"_s));
        QVERIFY(raw.supportsCharacter(SymbolIcons::glyph(u"no.such.symbol"_s).at(0)));
    }
};

QTEST_MAIN(ShellRulesTest)
#include "tst_shellrules.moc"
