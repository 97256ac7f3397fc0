// The album screens in the real window against a real Supysonic server under Xvfb: the Albums grid, an album page
// opened from it, a track played by double click and by the keyboard, and the liked albums. Screenshots of each go
// next to the test build.

#include "playback/playercontroller.h"
#include "server/appstate.h"
#include "shell/navigation.h"
#include "supysonicwindow.h"

#include <QQmlExtensionPlugin>
#include <QQuickStyle>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

class AlbumsWindowTest : public QObject
{
    Q_OBJECT

    SupysonicWindow window;
    std::unique_ptr<RunningApp> &running = window.running;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    PlayerController *player() const { return running->app.player(); }

    // The shown items of a kind with a property that names them, top to bottom, left to right.
    QList<QQuickItem *> shown(const char *type, const char *nameProperty) const
    {
        QList<QQuickItem *> found;
        for (QQuickItem *item : itemsUnder(running->window->contentItem())) {
            if (item->inherits(type) && item->property(nameProperty).isValid() && item->isVisible()
                && item->property("index").toInt() >= 0)
                found.append(item);
        }
        std::sort(found.begin(), found.end(), [](QQuickItem *a, QQuickItem *b) {
            const QPointF pa = a->mapToScene({0, 0});
            const QPointF pb = b->mapToScene({0, 0});
            return pa.y() != pb.y() ? pa.y() < pb.y() : pa.x() < pb.x();
        });
        return found;
    }
    QList<QQuickItem *> cells() const { return shown("QQuickAbstractButton", "albumId"); }
    QList<QQuickItem *> rows() const { return shown("QQuickItemDelegate", "songId"); }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        QVERIFY(window.start());
        QTRY_VERIFY(navigation());
    }

    // Home, where the window opens: the featured card and the rows, each with its strip of cards.
    void homeShowsTheFeaturedAlbumAndTheRows()
    {
        QCOMPARE(navigation()->rootKind(), u"home"_s);
        QTRY_VERIFY(running->visibleItem(u"featuredCard"_s));
        QObject *featured = running->find<QObject>(u"featuredCarousel"_s);
        QTRY_VERIFY(featured->property("count").toInt() >= 2);
        QTRY_VERIFY(running->visibleItem(u"homeStrip"_s));
        QTRY_VERIFY(running->visibleItem(u"homeStrip"_s)->property("count").toInt() > 0);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(500); // covers and the backdrop
        QVERIFY(saveScreenshot(running->window, u"home"_s));

        // Paging by hand; the featured name follows.
        const QString before = running->visibleItem(u"featuredName"_s)->property("text").toString();
        QMetaObject::invokeMethod(featured, "step", Q_ARG(int, 1));
        QTRY_VERIFY(running->visibleItem(u"featuredName"_s)->property("text").toString() != before);
    }

    void aGridOpensAnAlbumWhoseTracksPlayByMouseAndKeyboard()
    {
        navigation()->selectKey(u"item:albums"_s);
        QTRY_VERIFY(cells().size() >= 3);
        QQuickItem *first = cells().at(0);
        QTest::mouseMove(running->window, first->mapToScene({30, 30}).toPoint());
        QTRY_VERIFY(running->visibleItem(u"cellPlayButton"_s));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(300); // covers from the server
        QVERIFY(saveScreenshot(running->window, u"albums-grid"_s));

        // The context menu in its order, download entries last.
        running->click(first, Qt::RightButton);
        QTRY_COMPARE(running->visibleMenuItems(),
                     (QStringList{u"Play"_s, u"Shuffle"_s, u"Play Next"_s, u"Play Last"_s, u"Like Album"_s,
                                  u"Add to Playlist"_s, u"Download"_s}));
        QTest::keyClick(running->window, Qt::Key_Escape);
        QTRY_COMPARE(running->visibleMenuItems(), QStringList());

        const QString albumName = first->property("name").toString();
        running->click(first);
        QTRY_COMPARE(navigation()->depth(), 1);
        QTRY_VERIFY(rows().size() >= 2);
        QCOMPARE(running->visibleItem(u"albumName"_s)->property("text").toString(), albumName);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(300);
        QVERIFY(saveScreenshot(running->window, u"album-page"_s));

        player()->setVolume(0.2F);
        QTest::mouseDClick(running->window, Qt::LeftButton, {}, rows().at(1)->mapToScene({40, 10}).toPoint());
        QTRY_COMPARE(player()->currentSong()->id, rows().at(1)->property("songId").toString());
        QCOMPARE(player()->queue().size(), rows().size());
        QCOMPARE(player()->source()->name, albumName);

        // The selection is on the played row; Down and Return play the next one.
        QTest::keyClick(running->window, Qt::Key_Down);
        QTest::keyClick(running->window, Qt::Key_Return);
        QTRY_COMPARE(player()->currentSong()->id, rows().at(2 % rows().size())->property("songId").toString());
        player()->pause();

        // Liked from its page, it stands among the liked albums.
        running->click(running->visibleItem(u"likeAlbum"_s));
        QTRY_COMPARE(running->visibleItem(u"likeAlbum"_s)->property("help").toString(), u"Unlike Album"_s);
        navigation()->selectKey(u"item:likedAlbums"_s);
        QTRY_COMPARE(running->visibleItem(u"albumGrid"_s)->property("count").toInt(), 1);
        QTRY_COMPARE(cells().at(0)->property("name").toString(), albumName);
        QVERIFY(saveScreenshot(running->window, u"albums-liked"_s));
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(AlbumsWindowTest)
#include "tst_albumsui.moc"
