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

#include <QAccessible>
#include <QJsonArray>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QSettings>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
// Every item under `root` in the scene, whoever owns it: views' delegates have no QObject parent to find them by.
QList<QQuickItem *> itemsUnder(QQuickItem *root)
{
    QList<QQuickItem *> items;
    for (QQuickItem *child : root->childItems())
        items << child << itemsUnder(child);
    return items;
}

// Controls on screen that a screen reader could not name, as Qt hands them to it.
QStringList unnamedControls(QAccessibleInterface *node)
{
    static const QSet<QAccessible::Role> controls{
        QAccessible::Button,   QAccessible::CheckBox, QAccessible::RadioButton, QAccessible::EditableText,
        QAccessible::MenuItem, QAccessible::ListItem, QAccessible::Slider,      QAccessible::SpinBox,
        QAccessible::ComboBox, QAccessible::PageTab,  QAccessible::Cell};
    QStringList found;
    if (!node || node->state().invisible)
        return found;
    if (controls.contains(node->role()) && node->text(QAccessible::Name).isEmpty())
        found << QString::number(node->role());
    for (int i = 0; i < node->childCount(); ++i)
        found << unnamedControls(node->child(i));
    return found;
}
}

class MainWindowTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    std::unique_ptr<RunningApp> running;
    // The server's playlists, which the edits below change.
    QList<std::pair<QString, QString>> playlists{{u"p1"_s, u"Morning"_s}, {u"p2"_s, u"Workout"_s}};
    int madePlaylists = 0;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    QQuickItem *sidebarList() const { return running->find(u"sidebarList"_s); }

    QQuickItem *sidebarRow(const QString &title) const
    {
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
        QCOMPARE(unnamedControls(QAccessible::queryAccessibleInterface(running->window)), QStringList());
        QTest::keySequence(running->window, QKeySequence::SelectAll);
        running->type(name);
        QTest::keyClick(running->window, Qt::Key_Return);
        QTRY_VERIFY(!dialog->property("visible").toBool());
    }

    void chooseFromMenu(const QString &text)
    {
        QQuickItem *item = nullptr;
        QTRY_VERIFY((item = [&]() -> QQuickItem * {
            for (QQuickItem *candidate : itemsUnder(running->window->contentItem())) {
                if (candidate->inherits("QQuickMenuItem") && candidate->property("text").toString() == text
                    && candidate->isVisible())
                    return candidate;
            }
            return nullptr;
        }()));
        QCOMPARE(unnamedControls(QAccessible::queryAccessibleInterface(running->window)), QStringList());
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
                if (id == request.value(u"playlistId"_s))
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
        navigation()->push(Artist{.id = u"ar1"_s, .name = u"John Coltrane"_s});
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

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
