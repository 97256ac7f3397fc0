// The signed-in main window under a real X server, against the fake server: the sidebar's places, pushing and
// stepping back, the playlists made, renamed and deleted from the sidebar, the place kept across a restart, and
// the two connection surfaces. Screenshots of each go next to the test build.

#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "runningapp.h"
#include "server/appstate.h"
#include "server/keychain.h"
#include "shell/appcommands.h"
#include "shell/navigation.h"
#include "shell/theme.h"
#include "testdata.h"

#include <QAccessible>
#include <QBuffer>
#include <QQmlComponent>
#include <QSignalSpy>
#include <QJsonArray>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QSettings>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

class MainWindowTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    std::unique_ptr<RunningApp> running;
    // The server's playlists, which the edits below change.
    QList<std::pair<QString, QString>> playlists{{u"p1"_s, u"Morning"_s}, {u"p2"_s, u"Workout"_s}};
    int madePlaylists = 0;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    static Artist coltrane() { return Artist{.id = u"ar1"_s, .name = u"John Coltrane"_s}; }
    QQuickItem *sidebarList() const { return running->find(u"sidebarList"_s); }

    QQuickItem *sidebarRow(const QString &title) const
    {
        if (!sidebarList())
            return nullptr; // not signed in yet
        for (QQuickItem *row : itemsUnder(sidebarList())) {
            if (row->property("kind").isValid() && row->property("title").toString() == title && row->isVisible())
                return row;
        }
        return nullptr;
    }

    // The title on the page in front.
    QString pageTitle() const
    {
        for (QQuickItem *page : itemsUnder(running->window->contentItem())) {
            if (page->property("depth") == QVariant(navigation()->depth()) && page->property("kind").isValid()
                && page->isVisible())
                return page->property("title").toString();
        }
        return {};
    }

    QJsonObject playlistList() const
    {
        QJsonArray list;
        for (const auto &[id, name] : playlists)
            list.append(QJsonObject{{u"id"_s, id}, {u"name"_s, name}, {u"songCount"_s, 0}});
        return {{u"playlists"_s, QJsonObject{{u"playlist"_s, list}}}};
    }

    void answerName(QObject *dialog, const QString &name)
    {
        QVERIFY(dialog);
        QTRY_VERIFY(dialog->property("opened").toBool());
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::keySequence(running->window, QKeySequence::SelectAll);
        running->type(name);
        QTest::keyClick(running->window, Qt::Key_Return);
        QTRY_VERIFY(!dialog->property("visible").toBool());
    }

    void chooseFromMenu(const QString &text)
    {
        QQuickItem *item = nullptr;
        QTRY_VERIFY((item = running->menuItem(text)));
        QCOMPARE(unnamedControls(running->window), QStringList());
        running->click(item);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        server.on(u"ping"_s, FakeSubsonicServer::json({}));
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server.on(u"getPlaylists"_s, [this](const RecordedRequest &) { return FakeSubsonicServer::json(playlistList()); });
        server.on(u"createPlaylist"_s, [this](const RecordedRequest &request) {
            const QString id = u"new"_s + QString::number(++madePlaylists);
            playlists.append({id, request.value(u"name"_s)});
            return FakeSubsonicServer::json(
                {{u"playlist"_s, QJsonObject{{u"id"_s, id}, {u"name"_s, request.value(u"name"_s)}, {u"songCount"_s, 0}}}});
        });
        server.on(u"updatePlaylist"_s, [this](const RecordedRequest &request) {
            for (auto &[id, name] : playlists) {
                if (id == request.value(u"playlistId"_s) && request.names().contains(u"name"_s))
                    name = request.value(u"name"_s);
            }
            return FakeSubsonicServer::json({});
        });
        server.on(u"deletePlaylist"_s, [this](const RecordedRequest &request) {
            playlists.removeIf([&](const auto &playlist) { return playlist.first == request.value(u"id"_s); });
            return FakeSubsonicServer::json({});
        });
        QSettings settings;
        settings.setValue(u"serverURL"_s, server.baseURL().toString());
        settings.setValue(u"username"_s, u"alice"_s);
        settings.sync();
        awaitTask(Keychain::save(u"pw"_s, u"alice@"_s + server.baseURL().toString()));
        QVERIFY(restart(running));
        QTRY_VERIFY(navigation());
        QTRY_VERIFY(sidebarRow(u"Workout"_s));
    }

    void everySidebarRowOpensItsPlace()
    {
        QVERIFY(QTest::qWaitForWindowExposed(running->window));
        QCOMPARE(navigation()->selectionKey(), u"item:home"_s);
        const QStringList titles{u"Home"_s, u"Artists"_s, u"Albums"_s, u"Songs"_s, u"Downloads"_s,
                                 u"Recently Added"_s, u"Recently Played"_s, u"Most Played"_s, u"Liked Songs"_s,
                                 u"Liked Albums"_s, u"Top Rated"_s, u"Morning"_s, u"Workout"_s};
        for (const QString &title : titles) {
            QQuickItem *row = sidebarRow(title);
            QVERIFY2(row, qPrintable(title));
            running->click(row);
            QTRY_COMPARE(pageTitle(), title);
            QVERIFY(row->property("selected").toBool());
        }
        QCOMPARE(navigation()->selectionKey(), u"playlist:p2"_s);
        QVERIFY(saveScreenshot(running->window, u"main-sidebar"_s));
        running->click(sidebarRow(u"Home"_s));
        QTRY_COMPARE(navigation()->selectionKey(), u"item:home"_s);
    }

    // The toolbar's Back button, Alt+Left and a double click anywhere in the sidebar all step back.
    void aPushedPageStepsBack()
    {
        auto *back = running->find(u"backButton"_s);
        QVERIFY(!back->isEnabled());
        navigation()->push(Album{.id = u"al1"_s, .name = u"Blue Train"_s});
        navigation()->push(coltrane());
        QTRY_COMPARE(pageTitle(), u"John Coltrane"_s);
        QVERIFY(back->isEnabled());
        QVERIFY(saveScreenshot(running->window, u"main-pushed-page"_s));
        running->click(back);
        QTRY_COMPARE(pageTitle(), u"Blue Train"_s);
        QTest::keyClick(running->window, Qt::Key_Left, Qt::AltModifier);
        QTRY_COMPARE(pageTitle(), u"Home"_s);
        QVERIFY(!back->isEnabled());

        navigation()->pushGrid(u"newest"_s, u"Recently Added"_s);
        navigation()->push(Album{.id = u"al1"_s, .name = u"Blue Train"_s});
        QTRY_COMPARE(navigation()->depth(), 2);
        const QPoint inSidebar = sidebarList()->mapToScene({20, sidebarList()->height() - 20}).toPoint();
        QTest::mouseDClick(running->window, Qt::LeftButton, {}, inSidebar);
        QTRY_COMPARE(navigation()->depth(), 0);

        navigation()->push(coltrane());
        QTest::mouseClick(running->window, Qt::BackButton, {}, QPoint(running->window->width() / 2, 300));
        QTRY_COMPARE(navigation()->depth(), 0);
    }

    // A screen's colour washes the top of the window and the sidebar, and fades away when the screen goes.
    void theAccentWashesTheTopOfTheWindow()
    {
        const auto tint = [this](int x) {
            const QImage shown = running->window->grabWindow();
            return shown.pixelColor(x, 80).red() - shown.pixelColor(x, shown.height() - 10).red();
        };
        navigation()->push(coltrane());
        navigation()->reportAccent(1, QColor(255, 0, 0));
        QTRY_VERIFY(tint(running->window->width() - 100) > 20);
        QVERIFY(tint(sidebarList()->mapToScene({sidebarList()->width() + 3, 0}).x()) > 20); // the sidebar too
        QVERIFY(saveScreenshot(running->window, u"main-accent"_s));
        navigation()->back();
        QTRY_VERIFY(tint(running->window->width() - 100) < 3);
    }

    // The arrows and Return choose in the sidebar, and Tab goes on to the search field.
    void theSidebarWorksFromTheKeyboard()
    {
        running->click(sidebarRow(u"Home"_s));
        QTRY_VERIFY(sidebarList()->hasActiveFocus());
        QTest::keyClick(running->window, Qt::Key_Down);
        QTest::keyClick(running->window, Qt::Key_Down);
        QTest::keyClick(running->window, Qt::Key_Return);
        QTRY_COMPARE(navigation()->selectionKey(), u"item:albums"_s);
        QTest::keyClick(running->window, Qt::Key_Tab);
        QTRY_VERIFY(running->find(u"searchField"_s)->hasActiveFocus());
        running->type(u"blue"_s);
        QCOMPARE(navigation()->searchText(), u"blue"_s);
        running->click(sidebarRow(u"Home"_s)); // a new place clears the search
        QTRY_COMPARE(running->find(u"searchField"_s)->property("text").toString(), QString());
    }

    void playlistsAreMadeRenamedAndDeletedFromTheSidebar()
    {
        running->click(sidebarRow(u"New Playlist"_s));
        answerName(running->find<QObject>(u"newPlaylistDialog"_s), u"  Road Trip  "_s);
        QTRY_COMPARE(server.count(u"createPlaylist"_s), 1);
        QCOMPARE(server.requests(u"createPlaylist"_s).constFirst().value(u"name"_s), u"Road Trip"_s);
        QTRY_COMPARE(navigation()->selectionKey(), u"playlist:new1"_s);
        QTRY_VERIFY(sidebarRow(u"Road Trip"_s));

        // A name of blanks does nothing.
        running->app.commands()->newPlaylist();
        answerName(running->find<QObject>(u"newPlaylistDialog"_s), u"   "_s);
        QTest::qWait(200);
        QCOMPARE(server.count(u"createPlaylist"_s), 1);

        running->click(sidebarRow(u"Road Trip"_s), Qt::RightButton);
        chooseFromMenu(u"Rename…"_s);
        answerName(running->find<QObject>(u"renameDialog"_s), u"Night Drive"_s);
        QTRY_VERIFY(sidebarRow(u"Night Drive"_s));
        QCOMPARE(server.requests(u"updatePlaylist"_s).constFirst().value(u"name"_s), u"Night Drive"_s);
        QCOMPARE(pageTitle(), u"Night Drive"_s);

        running->click(sidebarRow(u"Night Drive"_s), Qt::RightButton);
        chooseFromMenu(u"Delete Playlist…"_s);
        QTRY_VERIFY(!sidebarRow(u"Night Drive"_s));
        QTRY_COMPARE(navigation()->selectionKey(), u"item:home"_s);
    }

    void aRestartOpensWhereTheLastRunWas()
    {
        running->click(sidebarRow(u"Songs"_s));
        navigation()->push(Album{.id = u"al1"_s, .name = u"Blue Train"_s});
        QVERIFY(restart(running));
        QTRY_VERIFY(navigation());
        QCOMPARE(navigation()->selectionKey(), u"item:songs"_s);
        QCOMPARE(navigation()->depth(), 1);
        QTRY_COMPARE(pageTitle(), u"Blue Train"_s);
        QTRY_VERIFY(sidebarList()->hasActiveFocus()); // the keyboard starts in the sidebar
        navigation()->popToRoot();
    }

    void aFailedActionShowsTheBannerAndAFaultWithNothingToShowTheFullPage()
    {
        LibraryStore *library = running->app.appState()->library();
        library->setLastFailure(StoreFailure{.action = u"update your likes"_s,
                                             .fault = ConnectionFault::server(u"The server failed."_s)});
        auto *banner = running->find(u"connectionBanner"_s);
        QTRY_VERIFY(banner->isVisible());
        QTRY_COMPARE(banner->opacity(), 1.0);
        QVERIFY(saveScreenshot(running->window, u"main-banner"_s));
        library->setLastFailure(std::nullopt);
        QTRY_VERIFY(!banner->isVisible());

        // A password the server no longer takes, and nothing loaded yet: the page says so, the banner does not.
        playlists.clear();
        for (const QString &endpoint : {u"getPlaylists"_s, u"getStarred2"_s})
            server.on(endpoint, FakeSubsonicServer::error(40, u"Wrong username or password"_s));
        QVERIFY(restart(running));
        QTRY_VERIFY(running->find(u"serverUnavailableView"_s));
        QTRY_VERIFY(navigation()->faultShownFullPage());
        QVERIFY(!running->find(u"connectionBanner"_s)->isVisible());
        QVERIFY(saveScreenshot(running->window, u"main-full-page"_s));
    }

    // Covers through the image provider, with their placeholder; the like and add-to-playlist menu pieces.
    void theSharedPiecesDrawCoversAndFillTheirMenus()
    {
        QImage red(64, 64, QImage::Format_RGB32);
        red.fill(Qt::red);
        QByteArray png;
        QBuffer buffer(&png);
        red.save(&buffer, "PNG");
        server.on(u"getCoverArt"_s, FakeResponse{.contentType = "image/png", .body = png});
        server.on(u"getPlaylists"_s, [this](const RecordedRequest &) { return FakeSubsonicServer::json(playlistList()); });
        playlists = {{u"p1"_s, u"Morning"_s}};
        server.clearLog();
        QVERIFY(restart(running));
        QTRY_VERIFY(sidebarRow(u"Morning"_s));

        // Placed beside the screens, as a screen of the module uses them.
        QQmlComponent component(&running->engine);
        component.setData(readFile(QStringLiteral(VELTO_SHARED_PIECES_QML)), QUrl(u"qrc:/Velto/SharedPieces.qml"_s));
        QVERIFY2(component.isReady(), qPrintable(component.errorString()));
        std::unique_ptr<QObject> made(component.createWithInitialProperties(
            {{u"theme"_s, QVariant::fromValue(running->app.theme())},
             {u"library"_s, QVariant::fromValue(running->app.appState()->library())}}));
        QVERIFY2(made, qPrintable(component.errorString()));
        auto *pieces = qobject_cast<QQuickItem *>(made.get());
        pieces->setParentItem(running->window->contentItem());
        pieces->setPosition({240, 200});
        auto *cover = pieces->findChild<QQuickItem *>(u"cover"_s);
        QSignalSpy loaded(cover, SIGNAL(imageLoaded()));
        QTRY_COMPARE(loaded.count(), 1);
        QTRY_VERIFY(server.count(u"getCoverArt"_s) >= 5); // the mosaic's four, each at half the size
        QVERIFY(saveScreenshot(running->window, u"shared-covers"_s));
        const QImage shown = running->window->grabWindow();
        const QPoint middle = cover->mapToScene({60, 60}).toPoint();
        QCOMPARE(shown.pixelColor(middle), QColor(Qt::red));
        QVERIFY(shown.pixelColor(cover->mapToScene({0.5, 0.5}).toPoint()) != QColor(Qt::red)); // a rounded corner

        auto *like = pieces->findChild<QObject *>(u"like"_s);
        QCOMPARE(like->property("text").toString(), u"Like"_s);
        auto *add = pieces->findChild<QObject *>(u"addToPlaylist"_s);
        QCOMPARE(add->property("title").toString(), u"Add to Playlist"_s);
        // "Morning", the hidden "No Playlists", a separator and "New Playlist…".
        QTRY_COMPARE(add->property("count").toInt(), 4);
        QQuickItem *newPlaylist = nullptr;
        QMetaObject::invokeMethod(add, "itemAt", Q_RETURN_ARG(QQuickItem *, newPlaylist), Q_ARG(int, 3));
        QCOMPARE(newPlaylist->property("text").toString(), u"New Playlist…"_s);
        QMetaObject::invokeMethod(newPlaylist, "triggered");
        QTRY_COMPARE(server.count(u"updatePlaylist"_s), 1);
        const RecordedRequest added = server.requests(u"updatePlaylist"_s).constFirst();
        QCOMPARE(added.value(u"songIdToAdd"_s), u"s1"_s);
        QCOMPARE(playlists.constLast().second, u"From the menu"_s);
        QCOMPARE(added.value(u"playlistId"_s), playlists.constLast().first);
    }

    // Typed into the toolbar's field: the dropdown under it, the keys that stay in the field, a pick by Return.
    void theSearchFieldSuggestsAndPicksFromTheKeyboard()
    {
        const QJsonArray artists{QJsonObject{{u"id"_s, u"ar1"_s}, {u"name"_s, u"John Coltrane"_s}}};
        const QJsonArray albums{QJsonObject{{u"id"_s, u"al1"_s}, {u"name"_s, u"Blue Train"_s}, {u"artist"_s, u"John Coltrane"_s}},
                                QJsonObject{{u"id"_s, u"al2"_s}, {u"name"_s, u"Blue Trane"_s}}};
        server.on(u"search3"_s, FakeSubsonicServer::json({{u"searchResult3"_s,
                                                           QJsonObject{{u"artist"_s, artists}, {u"album"_s, albums}}}}));
        navigation()->selectKey(u"item:home"_s);
        QQuickItem *field = running->find(u"searchField"_s);
        QVERIFY(!field->hasActiveFocus());
        QTest::keySequence(running->window, QKeySequence::Find);
        QTRY_VERIFY(field->hasActiveFocus());
        running->type(u"blue"_s);
        QObject *dropdown = nullptr;
        QTRY_VERIFY((dropdown = running->find<QObject>(u"searchDropdown"_s)));
        QTRY_VERIFY(dropdown->property("opened").toBool());
        QVERIFY(field->hasActiveFocus());
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"search-dropdown"_s));
        // It stands under the field, right-aligned to it, 380 wide.
        const QRectF fieldRect = field->mapRectToScene(QRectF(0, 0, field->width(), field->height()));
        auto *content = qobject_cast<QQuickItem *>(dropdown->property("contentItem").value<QObject *>());
        const QRectF shown = content->mapRectToScene(QRectF(0, 0, content->width(), content->height()));
        QCOMPARE(shown.width(), 380.0);
        QCOMPARE(shown.right(), fieldRect.right());
        QVERIFY(shown.top() > fieldRect.bottom());

        QTest::keyClick(running->window, Qt::Key_Down);
        QTest::keyClick(running->window, Qt::Key_Return);
        QTRY_COMPARE(pageTitle(), u"Blue Train"_s);
        QCOMPARE(navigation()->searchText(), QString());
        QVERIFY(!dropdown->property("opened").toBool());

        // Escape closes it; a press elsewhere closes it too.
        running->click(field);
        running->type(u"bl"_s);
        QTRY_VERIFY(dropdown->property("opened").toBool());
        QTest::keyClick(running->window, Qt::Key_Escape);
        QTRY_VERIFY(!dropdown->property("opened").toBool());
        running->type(u"u"_s);
        QTRY_VERIFY(dropdown->property("opened").toBool());
        running->click(field);
        QVERIFY(dropdown->property("opened").toBool());
        // The press that closes it still reaches what it was aimed at.
        running->click(sidebarRow(u"Albums"_s));
        QTRY_VERIFY(!dropdown->property("opened").toBool());
        QTRY_COMPARE(pageTitle(), u"Albums"_s);
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
