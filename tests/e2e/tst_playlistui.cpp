// The playlist page in the real window against a real Supysonic server under Xvfb: a playlist with a song listed
// twice, reordered by dragging a row and by Ctrl+Down, with the order read back from the server; a row played by
// double click; and the playlist deleted from its page, which leaves for Home. Screenshots go next to the build.

#include "playback/playercontroller.h"
#include "shell/navigation.h"
#include "supysonicwindow.h"
#include "testdata.h"

#include <QQmlExtensionPlugin>
#include <QQuickStyle>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

class PlaylistWindowTest : public QObject
{
    Q_OBJECT

    SupysonicWindow window;
    std::unique_ptr<RunningApp> &running = window.running;
    QStringList songIds;
    QString playlistId;
    QString emptyPlaylistId;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    PlayerController *player() const { return running->app.player(); }

    // The entries on screen, top to bottom.
    QList<QQuickItem *> rows() const
    {
        QList<QQuickItem *> found;
        for (QQuickItem *item : itemsUnder(running->window->contentItem())) {
            if (item->objectName() == u"playlistRow"_s && item->isVisible())
                found.append(item);
        }
        std::sort(found.begin(), found.end(),
                  [](QQuickItem *a, QQuickItem *b) { return a->mapToScene({0, 0}).y() < b->mapToScene({0, 0}).y(); });
        return found;
    }
    QStringList shownSongs() const
    {
        QStringList ids;
        for (QQuickItem *row : rows())
            ids.append(row->property("songId").toString());
        return ids;
    }
    QStringList serverOrder() const
    {
        QStringList ids;
        for (const Song &song : awaitTask(window.client().playlist(playlistId)).entry.value_or(QList<Song>()))
            ids.append(song.id);
        return ids;
    }
    QPoint middleOf(QQuickItem *item) const
    {
        return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        QVERIFY2(window.fixture->start(), qPrintable(window.fixture->errorText()));
        const SubsonicClient client = window.client();
        for (const Song &song : awaitTask(client.songs(4, 0)))
            songIds.append(song.id);
        QCOMPARE(songIds.size(), 4);
        awaitTask(client.createPlaylist(u"Road Trip"_s));
        awaitTask(client.createPlaylist(u"Nothing Yet"_s));
        for (const Playlist &playlist : awaitTask(client.playlists()).value_or(QList<Playlist>()))
            (playlist.name == u"Road Trip"_s ? playlistId : emptyPlaylistId) = playlist.id;
        QVERIFY(!playlistId.isEmpty() && !emptyPlaylistId.isEmpty());
        awaitTask(client.replacePlaylistSongs(playlistId, songIds + QStringList{songIds.at(0)}));
        QVERIFY(window.signIn());
        QTRY_VERIFY(navigation());
    }

    void aPlaylistIsReorderedByMouseAndKeyboard()
    {
        navigation()->selectKey(u"playlist:"_s + playlistId);
        QTRY_COMPARE(shownSongs(), songIds + QStringList{songIds.at(0)});
        QCOMPARE(running->visibleItem(u"playlistName"_s)->property("text").toString(), u"Road Trip"_s);
        QCOMPARE(running->visibleItem(u"metadataLine"_s)->property("text").toString().left(7), u"5 songs"_s);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(300); // covers
        QVERIFY(saveScreenshot(running->window, u"playlist-page"_s));

        // The first row dragged down over the next two takes the place of each in turn; the drop saves.
        QList<QQuickItem *> shown = rows();
        const QPoint start = middleOf(shown.at(0)) + QPoint(60, 0);
        const int rowHeight = int(shown.at(0)->height());
        QTest::mousePress(running->window, Qt::LeftButton, {}, start);
        for (int step = 1; step <= 2 * rowHeight + 4; step += 6)
            QTest::mouseMove(running->window, start + QPoint(0, step));
        const QStringList dragged{songIds.at(1), songIds.at(2), songIds.at(0), songIds.at(3), songIds.at(0)};
        QTRY_COMPARE(shownSongs(), dragged);
        QVERIFY(running->visibleItem(u"dragGhost"_s));
        QVERIFY(saveScreenshot(running->window, u"playlist-dragging"_s));
        QTest::mouseRelease(running->window, Qt::LeftButton, {}, start + QPoint(0, 2 * rowHeight + 4));
        QTRY_COMPARE(serverOrder(), dragged);

        // By keyboard: the last row one place up.
        running->click(rows().at(4));
        QTest::keyClick(running->window, Qt::Key_Up, Qt::ControlModifier);
        const QStringList moved{songIds.at(1), songIds.at(2), songIds.at(0), songIds.at(0), songIds.at(3)};
        QTRY_COMPARE(shownSongs(), moved);
        QTRY_COMPARE(serverOrder(), moved);

        // A double click plays the list as shown, from that row, and marks it.
        player()->setVolume(0.2F);
        QTest::mouseDClick(running->window, Qt::LeftButton, {}, middleOf(rows().at(3)));
        QTRY_COMPARE(player()->currentIndex(), 3);
        QCOMPARE(idsOf(player()->queue()), moved);
        QTRY_VERIFY(rows().at(3)->property("isCurrent").toBool());
        QVERIFY(!rows().at(2)->property("isCurrent").toBool());
        player()->pause();
        QVERIFY(saveScreenshot(running->window, u"playlist-playing"_s));
    }

    void anEmptyPlaylistSaysHowToFillIt()
    {
        navigation()->selectKey(u"playlist:"_s + emptyPlaylistId);
        QTRY_VERIFY(running->visibleItem(u"playlistEmpty"_s));
        QCOMPARE(running->visibleItem(u"metadataLine"_s)->property("text").toString(), u"0 songs"_s);
        QVERIFY(!running->visibleItem(u"playPlaylist"_s)->isEnabled());
        QVERIFY(saveScreenshot(running->window, u"playlist-empty"_s));
        navigation()->selectKey(u"playlist:"_s + playlistId);
        QTRY_COMPARE(rows().size(), 5);
    }

    void thePlaylistIsDeletedFromItsPage()
    {
        running->click(running->visibleItem(u"playlistMenuButton"_s));
        QTRY_VERIFY(running->menuItem(u"Delete Playlist…"_s));
        QCOMPARE(running->visibleMenuItems().mid(0, 2), (QStringList{u"Play Next"_s, u"Play Last"_s}));
        QCOMPARE(running->visibleMenuItems().mid(running->visibleMenuItems().size() - 2),
                 (QStringList{u"Rename…"_s, u"Delete Playlist…"_s}));
        running->click(running->menuItem(u"Delete Playlist…"_s));
        QObject *confirmation = running->find<QObject>(u"playlistDeleteConfirmation"_s);
        QTRY_VERIFY(confirmation->property("opened").toBool());
        QCOMPARE(confirmation->property("title").toString(), u"Delete “Road Trip”?"_s);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"playlist-delete"_s));
        running->click(running->visibleItem(u"confirmButton"_s));
        QTRY_COMPARE(navigation()->rootKind(), u"home"_s);
        QCOMPARE(awaitTask(window.client().playlists()).value_or(QList<Playlist>()).size(), 1);
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(PlaylistWindowTest)
#include "tst_playlistui.moc"
