// The real main window from QML over a local test server, driven by keyboard and mouse.
// Screenshots of each state are written next to the test build.

#include "fakesubsonicserver.h"
#include "playback/playercontroller.h"
#include "playback/sessionsnapshot.h"
#include "server/appstate.h"
#include "runningapp.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QStandardPaths>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QTest>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
const QString rightPassword = u"open sesame"_s;
}

class ConnectUiTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    std::unique_ptr<RunningApp> running;

    bool start() { return restart(running); }
    void type(const QString &text) { running->type(text); }
    void screenshot(QQuickWindow *window, const QString &name) { QVERIFY(saveScreenshot(window, name)); }
    void click(QQuickItem *item) { running->click(item); }

    void typeInto(const QString &field, const QString &text)
    {
        QQuickItem *item = running->find(field);
        QVERIFY2(item, qPrintable(field));
        click(item);
        QTRY_VERIFY(item->hasActiveFocus());
        QTest::keySequence(running->window, QKeySequence::SelectAll);
        type(text);
        QCOMPARE(item->property("text").toString(), text);
    }

    void pressReturn() { QTest::keyClick(running->window, Qt::Key_Return); }

    QQuickWindow *openSettings()
    {
        QMetaObject::invokeMethod(running->window, "showSettings");
        auto *settings = running->find<QQuickWindow>(u"settingsWindow"_s);
        if (settings && !QTest::qWaitForWindowExposed(settings))
            return nullptr;
        return settings;
    }

    [[nodiscard]] bool showsMainView() const { return running->find(u"mainView"_s) != nullptr; }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        server.on(u"ping"_s, [](const RecordedRequest &request) {
            if (request.value(u"t"_s) == SubsonicClient::token(rightPassword, request.value(u"s"_s)))
                return FakeSubsonicServer::json({});
            return FakeResponse{.body = FakeSubsonicServer::failed(40, u"Wrong username or password"_s)};
        });
        server.on(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject()}}));
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
    }

    // The caret starts in the address, and stays in the form through a failed connect.
    void typingGoesIntoTheFormFromTheStart()
    {
        QVERIFY(start());
        auto *serverField = running->find(u"serverField"_s);
        QTRY_VERIFY(serverField->hasActiveFocus());
        type(server.baseURL().toString());
        QCOMPARE(serverField->property("text").toString(), server.baseURL().toString());
        typeInto(u"usernameField"_s, u"alice"_s);
        typeInto(u"passwordField"_s, u"wrong"_s);
        click(running->find(u"connectButton"_s));
        QTRY_VERIFY(running->find(u"errorText"_s)->isVisible());
        type(u"!"_s);
        QCOMPARE(running->find(u"passwordField"_s)->property("text").toString(), u"wrong!"_s);
    }

    void aBlankServerIsNotSentAndAWrongPasswordIsShown()
    {
        server.clearLog();
        QVERIFY(start());
        screenshot(running->window, u"connect-empty"_s);
        auto *button = running->find(u"connectButton"_s);
        QVERIFY(!button->isEnabled());
        typeInto(u"serverField"_s, u"   "_s);
        typeInto(u"usernameField"_s, u"alice"_s);
        typeInto(u"passwordField"_s, u"wrong"_s);
        QVERIFY(!button->isEnabled());
        pressReturn();
        QTest::qWait(100);
        QCOMPARE(server.count(u"ping"_s), 0);

        typeInto(u"serverField"_s, server.baseURL().toString());
        QVERIFY(button->isEnabled());
        pressReturn();
        auto *error = running->find(u"errorText"_s);
        QTRY_VERIFY(error->isVisible());
        QCOMPARE(error->property("text").toString(), u"Wrong username or password."_s);
        QVERIFY(!showsMainView());
        // The fields keep what was typed, ready for a correction.
        QCOMPARE(running->find(u"serverField"_s)->property("text").toString(), server.baseURL().toString());
        QVERIFY(running->find(u"serverField"_s)->isEnabled());
        screenshot(running->window, u"connect-error"_s);
    }

    void theRightPasswordOpensTheMainViewAndIsRemembered()
    {
        QVERIFY(start());
        typeInto(u"serverField"_s, server.baseURL().toString());
        typeInto(u"usernameField"_s, u"alice"_s);
        typeInto(u"passwordField"_s, rightPassword);
        pressReturn();
        QTRY_VERIFY(showsMainView());
        QTRY_VERIFY(server.count(u"getPlaylists"_s) >= 1); // the main view's start-up work ran
        QTRY_VERIFY(server.count(u"getStarred2"_s) >= 1);

        const int pings = server.count(u"ping"_s);
        QVERIFY(start());
        QTRY_VERIFY(showsMainView()); // as soon as the keyring answers, and without a ping
        QCOMPARE(server.count(u"ping"_s), pings);

        QQuickWindow *settings = openSettings(); // which shows the account
        QVERIFY(settings);
        QVERIFY(settings->findChild<QQuickItem *>(u"scrobbleSwitch"_s)->property("checked").toBool());
        QCOMPARE(settings->findChild<QQuickItem *>(u"settingsServer"_s)->property("text").toString(),
                 server.baseURL().toString());
        // Levelling by album unless chosen otherwise; a choice is kept under "replayGain".
        const auto levellingChoices = [settings] {
            QStringList checked;
            for (QQuickItem *item : itemsUnder(settings->findChild<QQuickItem *>(u"volumeLevelling"_s))) {
                if (item->inherits("QQuickRadioButton") && item->property("checked").toBool())
                    checked.append(item->property("text").toString());
            }
            return checked;
        };
        QCOMPARE(levellingChoices(), QStringList{u"By Album"_s});
        QCOMPARE(unnamedControls(settings), QStringList());
        screenshot(settings, u"settings-signed-in"_s);
        for (QQuickItem *item : itemsUnder(settings->findChild<QQuickItem *>(u"volumeLevelling"_s))) {
            if (item->inherits("QQuickRadioButton") && item->property("text").toString() == u"By Track"_s)
                QTest::mouseClick(settings, Qt::LeftButton, {}, item->mapToScene({8, item->height() / 2}).toPoint());
        }
        QCOMPARE(levellingChoices(), QStringList{u"By Track"_s});
        QCOMPARE(running->app.settings()->value(u"replayGain"_s).toString(), u"track"_s);
        settings->close();
    }

    void theLastQueueComesBackPaused()
    {
        // Where a paused song comes back is the player's concern; here, that a start restores at all.
        SessionSnapshot snapshot{.serverKey = u"alice@"_s + server.baseURL().toString(),
                                 .queue = {Song{.id = u"s1"_s, .duration = 200}, Song{.id = u"s2"_s, .duration = 200}}};
        snapshot.currentIndex = 1;
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velto"_s;
        QDir().mkpath(folder);
        QFile file(folder + u"/session.json"_s);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(snapshot.toJson()).toJson()) > 0);
        file.close();

        QVERIFY(start());
        PlayerController *player = running->app.player();
        QTRY_VERIFY(player->currentSong().has_value());
        QCOMPARE(player->currentSong()->id, u"s2"_s);
        QVERIFY(!player->isPlaying());
    }

    void logOutReturnsToAnEmptyForm()
    {
        QVERIFY(start());
        QTRY_VERIFY(showsMainView());
        QQuickWindow *settingsWindow = openSettings();
        QVERIFY(settingsWindow);
        QTest::mouseClick(settingsWindow, Qt::LeftButton, {},
                          settingsWindow->findChild<QQuickItem *>(u"settingsLogOut"_s)->mapToScene({8, 8}).toPoint());
        settingsWindow->close();
        QTRY_VERIFY(!showsMainView());
        QTRY_VERIFY(running->find(u"serverField"_s));
        for (const QString &field : {u"serverField"_s, u"usernameField"_s, u"passwordField"_s})
            QCOMPARE(running->find(field)->property("text").toString(), QString());
        QVERIFY(!running->app.settings()->contains(u"serverURL"_s));

        QQuickWindow *settings = openSettings();
        QVERIFY(settings);
        screenshot(settings, u"settings-not-connected"_s);
        settings->close();

        QVERIFY(start()); // and a later start stays signed out
        QTRY_VERIFY(running->find(u"serverField"_s));
    }

    void theWindowKeepsItsSize()
    {
        QVERIFY(start());
        running->window->resize(900, 640);
        QTRY_COMPARE(running->window->size(), QSize(900, 640));
        QVERIFY(start());
        QCOMPARE(running->window->size(), QSize(900, 640));
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(ConnectUiTest)
#include "tst_connectui.moc"
