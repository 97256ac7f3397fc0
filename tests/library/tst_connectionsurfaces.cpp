// What the banner over the main window and the full page say about the server, which of them speaks, and how
// long a failed action stays on screen.

#include "awaittask.h"
#include "library/connectionbannermodel.h"
#include "library/librarystore.h"
#include "librarytesthelpers.h"
#include "offline/downloadstore.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ConnectionSurfacesTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;
    std::unique_ptr<LibraryStore> store;

    // The server stops answering while the sidebar's playlists are on screen, or before anything was.
    void loseTheServer(bool withPlaylists)
    {
        const QJsonArray rows{QJsonObject{{u"id"_s, u"p1"_s}, {u"name"_s, u"List"_s}}};
        server->on(u"getPlaylists"_s, FakeSubsonicServer::json(playlistsPayload(withPlaylists ? rows : QJsonArray())));
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->playlistsLoaded());
        server->stop();
        store->ensureStarredLoaded();
        QTRY_VERIFY(store->reachability().failure.has_value());
    }

private Q_SLOTS:
    void init()
    {
        server = std::make_unique<FakeSubsonicServer>();
        store = std::make_unique<LibraryStore>(SubsonicClient(ServerConfig{server->baseURL(), u"a"_s, u"b"_s}));
        server->on(u"ping"_s, FakeSubsonicServer::json({}));
    }

    void aStandingFaultOutranksAFailedActionUntilAFullPageShowsIt()
    {
        ConnectionBannerModel banner;
        ServerUnavailableModel page;
        banner.setLibrary(store.get());
        page.setLibrary(store.get());
        page.setProperty("isEmpty", false);
        loseTheServer(true);
        store->setLastFailure(StoreFailure{.action = u"update your likes"_s, .fault = ConnectionFault::offline()});
        QVERIFY(banner.isShown() && banner.isStanding());
        QCOMPARE(banner.title(), u"Can't reach your server"_s);
        QCOMPARE(banner.symbol(), u"wifi.exclamationmark"_s);
        QVERIFY(banner.isWarning());
        QVERIFY(banner.canRetry());
        QVERIFY(!page.isShown());

        banner.setFaultShownFullPage(true);
        QVERIFY(!banner.isShown());
        banner.setFaultShownFullPage(false);
        QVERIFY(banner.isStanding());

        // Back online: the failed action shows on its own.
        server->start();
        awaitTask(store->retryConnection());
        QVERIFY(store->reachability().isOk());
        const StoreFailure refused{.action = u"rename the playlist"_s,
                                   .fault = ConnectionFault::server(u"Playlist is read-only"_s)};
        store->setLastFailure(refused);
        QVERIFY(banner.isShown() && !banner.isStanding());
        QCOMPARE(banner.title(), refused.message());
        QVERIFY(!banner.isWarning());
        QVERIFY(!banner.canRetry());
    }

    // Nothing seen yet: the page takes the place of the screen, in its own words.
    void aFaultWithNothingToShowIsAFullPage()
    {
        ServerUnavailableModel page;
        page.setLibrary(store.get());
        page.setProperty("isEmpty", true);
        QVERIFY(!page.isShown());
        loseTheServer(false);
        QVERIFY(page.isShown());
        QCOMPARE(page.title(), u"Can't reach your server"_s);
        QCOMPARE(page.description(), u"Check that your music server is running and that it's reachable."_s);
        QVERIFY(page.canRetry());

        server->start();
        server->on(u"ping"_s, FakeSubsonicServer::error(40, u"Wrong username or password"_s));
        awaitTask(store->retryConnection());
        QCOMPARE(page.title(), u"Your password no longer works"_s);
        QCOMPARE(page.symbol(), u"lock.trianglebadge.exclamationmark"_s);
        QVERIFY(!page.canRetry()); // only signing in again helps
    }

    // Six seconds for a failure that can't be retried, counted afresh for each new failure; one with a retry stays.
    void aFailureWithoutRetryClosesAfterSixSeconds()
    {
        ConnectionBannerModel banner;
        banner.setLibrary(store.get());
        const StoreFailure lost{.action = u"update your likes"_s, .fault = ConnectionFault::offline()};
        store->setLastFailure(lost);
        QTest::qWait(3000);
        StoreFailure retryable = lost;
        retryable.id = QUuid::createUuid();
        retryable.retry = [] () -> QCoro::Task<> { co_return; };
        store->setLastFailure(retryable);
        QTest::qWait(3500); // past the first failure's six seconds
        QVERIFY(banner.isShown());

        StoreFailure again = lost;
        again.id = QUuid::createUuid();
        store->setLastFailure(again);
        QTest::qWait(ConnectionBannerModel::dismissAfterMs - 500);
        QVERIFY(banner.isShown());
        QTRY_VERIFY_WITH_TIMEOUT(!banner.isShown(), 1500);
        QVERIFY(!store->lastFailure());
    }
};

QTEST_MAIN(ConnectionSurfacesTest)
#include "tst_connectionsurfaces.moc"
