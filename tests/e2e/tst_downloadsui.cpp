// Downloads from the real window against a real Supysonic server under Xvfb: an album downloaded from its page's
// menu with the badge following it, the Downloads screen, a play from it after the server has stopped, and the
// removals in the settings. Screenshots of each go next to the test build.

#include "supysonicwindow.h"
#include "offline/downloadedcollections.h"
#include "offline/downloadstore.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"
#include "shell/navigation.h"

#include <QAccessible>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
QAccessibleInterface *accessibleNamed(QAccessibleInterface *node, const QString &name)
{
    if (!node || node->state().invisible)
        return nullptr;
    if (node->text(QAccessible::Name) == name)
        return node;
    for (int i = 0; i < node->childCount(); ++i) {
        if (QAccessibleInterface *found = accessibleNamed(node->child(i), name))
            return found;
    }
    return nullptr;
}
}

class DownloadsWindowTest : public QObject
{
    Q_OBJECT

    SupysonicWindow window;
    std::unique_ptr<SupysonicFixture> &fixture = window.fixture;
    std::unique_ptr<RunningApp> &running = window.running;
    QList<Album> albums;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    DownloadStore *downloads() const { return running->app.appState()->downloads(); }

    QQuickItem *visibleItem(const QString &name, QQuickWindow *window = nullptr) const
    {
        return running->visibleItem(name, window);
    }

    QQuickItem *cellNamed(const QString &name) const
    {
        for (QQuickItem *item : itemsUnder(running->window->contentItem())) {
            if (item->inherits("QQuickAbstractButton") && item->property("key").isValid()
                && item->property("collection").toMap().value(u"name"_s) == name && item->isVisible())
                return item;
        }
        return nullptr;
    }

    QStringList visibleMenuItems() const { return running->visibleMenuItems(); }

    void chooseFromMenu(const QString &text)
    {
        QQuickItem *item = nullptr;
        QTRY_VERIFY((item = running->menuItem(text)));
        QCOMPARE(unnamedControls(running->window), QStringList());
        running->click(item);
    }

    QQuickWindow *openSettings()
    {
        QMetaObject::invokeMethod(running->window, "showSettings");
        auto *settings = running->find<QQuickWindow>(u"settingsWindow"_s);
        return settings && QTest::qWaitForWindowExposed(settings) ? settings : nullptr;
    }

    // The page's badge as the store drives it, shot once while the ring is drawn.
    void downloadFromThePage(const Album &album, bool screenshotTheRing)
    {
        navigation()->pushAlbum(album.toJson());
        QQuickItem *menuButton = nullptr;
        QTRY_VERIFY((menuButton = visibleItem(u"albumMenuButton"_s)));
        QQuickItem *badge = visibleItem(u"albumDownloadBadge"_s);
        QVERIFY(!badge); // nothing is drawn before a download
        bool shot = false;
        const QMetaObject::Connection watch = connect(downloads(), &DownloadStore::activeChanged, this, [&] {
            const std::optional<DownloadProgress> progress = downloads()->albumProgress(album.id);
            if (screenshotTheRing && !shot && progress && progress->completed > 0 && progress->completed < progress->total)
                shot = saveScreenshot(running->window, u"downloads-badge-progress"_s);
        });
        running->click(menuButton);
        chooseFromMenu(u"Download"_s);
        QTRY_VERIFY_WITH_TIMEOUT(downloads()->isDownloaded(albumCollectionKey(album.id)), 30000);
        disconnect(watch);
        QVERIFY(shot || !screenshotTheRing);
        QTRY_VERIFY((badge = visibleItem(u"albumDownloadBadge"_s)));
        QCOMPARE(QAccessible::queryAccessibleInterface(badge)->text(QAccessible::Description), u"Available offline"_s);
        running->click(menuButton);
        QTRY_COMPARE(visibleMenuItems().value(3), u"Remove Download"_s);
        QTest::keyClick(running->window, Qt::Key_Escape);
        QTRY_COMPARE(visibleMenuItems(), QStringList());
    }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        QVERIFY(window.start());
        for (const Album &album : awaitTask(window.client().albums(AlbumListType::AlphabeticalByName, 2, 0)))
            albums.append(album);
        QCOMPARE(albums.size(), 2);
        QTRY_VERIFY(navigation());
    }

    void anAlbumIsDownloadedPlayedOfflineAndRemoved()
    {
        downloadFromThePage(albums.at(0), true);

        navigation()->selectKey(u"item:downloads"_s);
        QQuickItem *cell = nullptr;
        QTRY_VERIFY((cell = cellNamed(albums.at(0).name)));
        QCOMPARE(visibleItem(u"downloadsCaption"_s)->property("text").toString(),
                 u"1 collection · "_s + fileSizeText(downloads()->totalBytes()));
        QVERIFY(accessibleNamed(QAccessible::queryAccessibleInterface(running->window), albums.at(0).name));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::mouseMove(running->window, cell->mapToScene({20, 20}).toPoint());
        QVERIFY(saveScreenshot(running->window, u"downloads-screen"_s));

        // With the server gone, the copy on disk still plays.
        fixture.reset();
        running->app.player()->setVolume(0);
        QTest::mouseClick(running->window, Qt::RightButton, {}, cell->mapToScene({20, 20}).toPoint());
        chooseFromMenu(u"Play"_s);
        QTRY_COMPARE(running->app.player()->queue().size(), albums.at(0).songCount.value_or(0));
        QTRY_VERIFY(running->app.player()->isPlaying());
        QTRY_VERIFY_WITH_TIMEOUT(running->app.player()->currentTime() > 0.5, 15000);
        QCOMPARE(running->app.player()->currentSong()->album, albums.at(0).name);
        running->app.player()->pause();

        // A click opens the album as it is on disk.
        running->click(cell);
        QTRY_COMPARE(navigation()->depth(), 1);
        QCOMPARE(navigation()->stack()->index(0).data(NavigationStack::IdRole).toString(), albums.at(0).id);
        navigation()->back();

        QQuickWindow *settings = openSettings();
        QVERIFY(settings);
        QQuickItem *rows = visibleItem(u"storageRows"_s, settings);
        QVERIFY(rows);
        QTRY_COMPARE(rows->property("count").toInt(), 1);
        QVERIFY(saveScreenshot(settings, u"downloads-settings"_s));
        QCOMPARE(unnamedControls(settings), QStringList());
        QQuickItem *trash = nullptr;
        for (QQuickItem *item : itemsUnder(rows)) {
            if (item->inherits("QQuickToolButton") && item->isVisible())
                trash = item;
        }
        QVERIFY(trash);
        running->click(trash);
        QTRY_COMPARE(visibleItem(u"storageUsed"_s, settings)->property("text").toString(), u"None"_s);
        QTRY_VERIFY(visibleItem(u"downloadsEmpty"_s));
        settings->close();
        QVERIFY(saveScreenshot(running->window, u"downloads-empty"_s));
    }

    void removeAllAsksFirst()
    {
        // The restarted server listens elsewhere: sign in to it again.
        fixture = std::make_unique<SupysonicFixture>(QStringLiteral(VELTO_FIXTURE_WORKDIR));
        QVERIFY(window.start());
        QTRY_VERIFY(navigation());
        albums = awaitTask(window.client().albums(AlbumListType::AlphabeticalByName, 2, 0));
        downloadFromThePage(albums.at(1), false);
        navigation()->back();

        QQuickWindow *settings = openSettings();
        QVERIFY(settings);
        QQuickItem *removeAll = visibleItem(u"removeAllDownloads"_s, settings);
        QVERIFY(removeAll);
        running->click(removeAll);
        QObject *confirmation = settings->findChild<QObject *>(u"removeAllConfirmation"_s);
        QTRY_VERIFY(confirmation->property("opened").toBool());
        QVERIFY(saveScreenshot(settings, u"downloads-remove-all"_s));
        QVERIFY(downloads()->isDownloaded(albumCollectionKey(albums.at(1).id)));
        running->click(visibleItem(u"confirmButton"_s, settings));
        QTRY_COMPARE(downloads()->totalBytes(), 0);
        QTRY_COMPARE(visibleItem(u"storageUsed"_s, settings)->property("text").toString(), u"None"_s);
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(DownloadsWindowTest)
#include "tst_downloadsui.moc"
