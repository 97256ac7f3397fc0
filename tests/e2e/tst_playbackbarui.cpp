// The playback bar in the real window, against a real Supysonic server with mpv playing to a null sink under Xvfb:
// the song shown with its time and like, a scrub that seeks once on release, the queue popover's edits, and
// repeat and shuffle as the desktop's media controls see them. Screenshots of each go next to the test build.

#include "supysonicwindow.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"

#include <QProcess>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QSignalSpy>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

namespace {
// The bus answers from this process's event loop, which runs while playerctl waits for it.
QString playerctl(const QStringList &arguments)
{
    QProcess process;
    process.start(u"playerctl"_s, QStringList{u"-p"_s, u"velto"_s} + arguments);
    QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 5000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}
}

class PlaybackBarWindowTest : public QObject
{
    Q_OBJECT

    SupysonicWindow window;
    std::unique_ptr<RunningApp> &running = window.running;
    Album album;

    PlayerController *player() const { return running->app.player(); }
    QString textOf(const QString &name) const { return running->visibleItem(name)->property("text").toString(); }

    QList<QQuickItem *> queueRows() const
    {
        QList<QQuickItem *> rows;
        if (QQuickItem *list = running->visibleItem(u"queueList"_s)) {
            for (QQuickItem *item : itemsUnder(list)) {
                // A removed row lingers until its deletion comes round, with no index.
                if (item->inherits("QQuickItemDelegate") && item->isVisible() && item->property("index").toInt() >= 0)
                    rows.append(item);
            }
        }
        std::sort(rows.begin(), rows.end(), [](QQuickItem *a, QQuickItem *b) { return a->y() < b->y(); });
        return rows;
    }

    QPoint onTrack(QQuickItem *track, double fraction) const
    {
        return track->mapToScene(QPointF(track->width() * fraction, track->height() / 2)).toPoint();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        QVERIFY(window.start());
        const SubsonicClient client = window.client();
        for (const Album &listed : awaitTask(client.albums(AlbumListType::AlphabeticalByName, 10, 0))) {
            if (listed.songCount.value_or(0) >= 4) {
                album = awaitTask(client.album(listed.id));
                break;
            }
        }
        QVERIFY(album.song && album.song->size() >= 4);
        QTRY_VERIFY(running->visibleItem(u"nowPlayingBar"_s));
    }

    void theBarShowsTheSongSeeksOnReleaseAndLikes()
    {
        QCOMPARE(textOf(u"barTitle"_s), u"Not Playing"_s);
        QVERIFY(!running->visibleItem(u"progressStrip"_s));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"bar-idle"_s));

        player()->setVolume(0.3F);
        player()->play(*album.song, 0, *running->app.appState()->client(), PlaybackSource::album(album.id, album.name));
        QTRY_COMPARE(textOf(u"barTitle"_s), album.song->at(0).title);
        QCOMPARE(textOf(u"barAlbum"_s), album.name);
        QTRY_VERIFY_WITH_TIMEOUT(player()->currentTime() > 1, 10000);
        QCOMPARE(running->visibleItem(u"playPauseButton"_s)->property("help").toString(), u"Pause"_s);

        QQuickItem *like = running->visibleItem(u"likeButton"_s);
        running->click(like);
        QTRY_COMPARE(like->property("help").toString(), u"Unlike"_s);
        QVERIFY(running->app.appState()->library()->starredIds().contains(album.song->at(0).id));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"bar-playing"_s));

        // Paused, so that these songs of a few seconds cannot end under the scrub, and given a moment: just after
        // a song begins, its length is the server's whole seconds until the engine has read the file.
        player()->pause();
        QTest::qWait(500);
        const double duration = player()->duration();
        QQuickItem *track = running->visibleItem(u"positionTrack"_s);
        QSignalSpy seeks(player(), &PlayerController::seeked);
        QTest::mousePress(running->window, Qt::LeftButton, {}, onTrack(track, 0.2));
        QTest::mouseMove(running->window, onTrack(track, 0.35));
        QTest::mouseMove(running->window, onTrack(track, 0.5));
        QTRY_COMPARE(running->find(u"trailingTime"_s)->property("opacity").toDouble(), 1.0);
        QVERIFY(saveScreenshot(running->window, u"bar-scrubbing"_s));
        QCOMPARE(seeks.count(), 0);
        QTest::mouseRelease(running->window, Qt::LeftButton, {}, onTrack(track, 0.5));
        QTRY_COMPARE(seeks.count(), 1);
        QVERIFY2(std::abs(seeks.at(0).at(0).toDouble() - duration / 2) < duration * 0.02,
                 qPrintable(QString::number(seeks.at(0).at(0).toDouble())));
    }

    void theQueueIsEditedFromThePopoverAndTheDesktopSeesRepeatAndShuffle()
    {
        // The fixture's songs last seconds: held paused, the queue stays put while it is edited.
        player()->play(*album.song, 0, *running->app.appState()->client(), PlaybackSource::album(album.id, album.name));
        player()->pause();
        running->click(running->visibleItem(u"queueButton"_s));
        QTRY_COMPARE(queueRows().size(), album.song->size() - 1);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"bar-queue"_s));

        running->click(queueRows().at(0), Qt::RightButton);
        QQuickItem *remove = nullptr;
        QTRY_VERIFY((remove = running->menuItem(u"Remove"_s)));
        running->click(remove);
        QTRY_COMPARE(player()->upNext().size(), album.song->size() - 2);
        QCOMPARE(player()->upNext().at(0).id, album.song->at(2).id);

        // The first row moves down one with the keyboard, as a drag would move it.
        QTRY_COMPARE(running->visibleMenuItems(), QStringList());
        running->click(queueRows().at(0));
        QTRY_COMPARE(running->visibleItem(u"queueList"_s)->property("currentIndex").toInt(), 0);
        QTest::keyClick(running->window, Qt::Key_Down, Qt::ControlModifier);
        QCOMPARE(player()->upNext().at(1).id, album.song->at(2).id);

        QTest::mouseDClick(running->window, Qt::LeftButton, {},
                           queueRows().at(1)->mapToScene({20, 10}).toPoint());
        QTRY_COMPARE(player()->currentSong()->id, album.song->at(2).id);
        QTest::keyClick(running->window, Qt::Key_Escape);
        QTRY_VERIFY(!running->visibleItem(u"queueList"_s));
        player()->pause();

        running->click(running->visibleItem(u"repeatButton"_s));
        QCOMPARE(playerctl({u"loop"_s}), u"Playlist"_s);
        running->click(running->visibleItem(u"repeatButton"_s));
        QCOMPARE(playerctl({u"loop"_s}), u"Track"_s);
        QCOMPARE(running->visibleItem(u"repeatButton"_s)->property("symbol").toString(), u"repeat.1"_s);
        running->click(running->visibleItem(u"shuffleButton"_s));
        QCOMPARE(playerctl({u"shuffle"_s}), u"On"_s);
        playerctl({u"shuffle"_s, u"Off"_s});
        QTRY_VERIFY(!running->visibleItem(u"shuffleButton"_s)->property("isOn").toBool());
        playerctl({u"play"_s});
        QTRY_COMPARE(running->visibleItem(u"playPauseButton"_s)->property("help").toString(), u"Pause"_s);
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(PlaybackBarWindowTest)
#include "tst_playbackbarui.moc"
