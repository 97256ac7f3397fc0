// The artist screens and the song tables in the real window against a real Supysonic server under Xvfb: the
// artist list with its first artist chosen and its discography played, an artist pushed from an album's link, the
// song table sorted by each column and a multi-row Play Next, and a liked song on the liked songs' table until it
// is unliked. Screenshots go next to the build.

#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "server/appstate.h"
#include "shell/navigation.h"
#include "supysonicwindow.h"
#include "testdata.h"

#include <QCollator>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>

Q_IMPORT_QML_PLUGIN(VeltoPlugin)

using namespace Qt::StringLiterals;

class SongsWindowTest : public QObject
{
    Q_OBJECT

    SupysonicWindow window;
    std::unique_ptr<RunningApp> &running = window.running;

    Navigation *navigation() const { return running->find<Navigation>(u"navigation"_s); }
    PlayerController *player() const { return running->app.player(); }

    // The shown items of that object name, top to bottom, then left to right.
    QList<QQuickItem *> shown(const QString &name) const
    {
        QList<QQuickItem *> found;
        for (QQuickItem *item : itemsUnder(running->window->contentItem())) {
            if (item->objectName() == name && item->isVisible())
                found.append(item);
        }
        std::sort(found.begin(), found.end(), [](QQuickItem *a, QQuickItem *b) {
            const QPointF pa = a->mapToScene({0, 0});
            const QPointF pb = b->mapToScene({0, 0});
            return pa.y() != pb.y() ? pa.y() < pb.y() : pa.x() < pb.x();
        });
        return found;
    }
    // The table's text, row by row: the cells of one column.
    QStringList column(int index) const
    {
        QStringList texts;
        for (QQuickItem *cell : shown(u"songCell"_s)) {
            if (cell->property("column").toInt() == index)
                texts.append(cell->property("display").toString());
        }
        return texts;
    }
    QQuickItem *header(int index) const
    {
        for (QQuickItem *cell : shown(u"songHeader"_s)) {
            if (cell->property("index").toInt() == index)
                return cell;
        }
        return nullptr;
    }
    QQuickItem *cell(int row, int columnIndex) const
    {
        for (QQuickItem *cell : shown(u"songCell"_s)) {
            if (cell->property("row").toInt() == row && cell->property("column").toInt() == columnIndex)
                return cell;
        }
        return nullptr;
    }
    static bool sortedAsAReader(QStringList texts)
    {
        QStringList sorted = texts;
        QCollator collator(QLocale(QLocale::English));
        collator.setNumericMode(true);
        collator.setCaseSensitivity(Qt::CaseInsensitive);
        std::stable_sort(sorted.begin(), sorted.end(), collator);
        return sorted == texts;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QQuickStyle::setStyle(u"Fusion"_s);
        QVERIFY(window.start());
        QTRY_VERIFY(navigation());
        player()->setVolume(0.2F);
    }

    void theArtistScreenChoosesAnArtistAndPlaysItsDiscography()
    {
        navigation()->selectKey(u"item:artists"_s);
        QTRY_VERIFY(running->visibleItem(u"artistName"_s));
        // The first artist in the server's index is chosen.
        QList<QQuickItem *> artists = shown(u"artistRow"_s);
        QCOMPARE(artists.size(), 3);
        QCOMPARE(running->visibleItem(u"artistName"_s)->property("text").toString(), artists.at(0)->property("name").toString());
        running->click(artists.at(1));
        QTRY_COMPARE(running->visibleItem(u"artistName"_s)->property("text").toString(), u"Sigur Ós"_s);
        QTRY_COMPARE(running->visibleItem(u"artistAlbumGrid"_s)->property("count").toInt(), 2);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(300); // covers
        QVERIFY(saveScreenshot(running->window, u"artists"_s));

        QQuickItem *play = running->visibleItem(u"playArtist"_s);
        running->click(play);
        QTRY_COMPARE(player()->queue().size(), 8);
        // Newest album first: 2007's before 2001's.
        QCOMPARE(player()->queue().at(0).album, u"Hvarf & Heim"_s);
        QTRY_VERIFY(play->isEnabled());
        player()->pause();

        // The choice is kept: the next start opens on it.
        running->click(shown(u"artistRow"_s).at(2));
        QTRY_COMPARE(running->visibleItem(u"artistName"_s)->property("text").toString(), u"Zoë & the Oscillators"_s);
        QVERIFY(window.signIn());
        QTRY_VERIFY(navigation());
        QTRY_COMPARE(navigation()->rootKind(), u"artists"_s);
        QTRY_VERIFY(running->visibleItem(u"artistName"_s));
        QCOMPARE(running->visibleItem(u"artistName"_s)->property("text").toString(), u"Zoë & the Oscillators"_s);
    }

    void anAlbumsLinkPushesItsArtist()
    {
        navigation()->selectKey(u"item:albums"_s);
        QTRY_VERIFY(!shown(u"albumCell"_s).isEmpty());
        running->click(shown(u"albumCell"_s).at(0));
        QQuickItem *link = nullptr;
        QTRY_VERIFY((link = running->visibleItem(u"albumArtistLink"_s)));
        QTRY_VERIFY(!link->property("text").toString().isEmpty());
        const QString artist = link->property("text").toString();
        running->click(link);
        QTRY_COMPARE(navigation()->depth(), 2);
        QTRY_COMPARE(running->visibleItem(u"artistName"_s)->property("text").toString(), artist);
        QTRY_VERIFY(running->visibleItem(u"artistAlbumGrid"_s)->property("count").toInt() > 0);
        QCOMPARE(unnamedControls(running->window), QStringList());
        QTest::qWait(300);
        QVERIFY(saveScreenshot(running->window, u"artist-page"_s));
    }

    void theSongTableSortsByEachColumnAndQueuesSeveralRows()
    {
        navigation()->selectKey(u"item:songs"_s);
        QTRY_COMPARE(column(0).size(), 14);
        QVERIFY(sortedAsAReader(column(0)));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"songs-by-title"_s));
        for (int index : {1, 2}) {
            running->click(header(index));
            QTRY_VERIFY(sortedAsAReader(column(index)));
            QVERIFY(saveScreenshot(running->window, index == 1 ? u"songs-by-artist"_s : u"songs-by-album"_s));
        }
        running->click(header(3));
        const auto timesSorted = [this] {
            const QStringList shownTimes = column(3);
            return shownTimes.size() == 14 && std::is_sorted(shownTimes.cbegin(), shownTimes.cend());
        };
        QTRY_VERIFY(timesSorted());
        const QStringList times = column(3);
        QVERIFY(times.constFirst() < times.constLast());
        running->click(header(3)); // again: the longest first
        QTRY_COMPARE(column(3), QStringList(times.crbegin(), times.crend()));
        QVERIFY(saveScreenshot(running->window, u"songs-by-time"_s));

        // Two rows picked, the lower one first, go next in table order.
        const QStringList titles = column(0);
        player()->play(makeSongs(u"x"_s), 0, window.client(), std::nullopt);
        player()->pause();
        running->click(cell(4, 0));
        QTest::mouseClick(running->window, Qt::LeftButton, Qt::ControlModifier, cell(1, 1)->mapToScene({10, 10}).toPoint());
        running->click(cell(1, 2), Qt::RightButton);
        QQuickItem *playNext = nullptr;
        QTRY_VERIFY((playNext = running->menuItem(u"Play Next"_s)));
        QCOMPARE(running->visibleMenuItems().mid(0, 3), (QStringList{u"Play"_s, u"Play Next"_s, u"Play Last"_s}));
        QCOMPARE(unnamedControls(running->window), QStringList());
        QVERIFY(saveScreenshot(running->window, u"songs-menu"_s));
        running->click(playNext);
        QTRY_COMPARE(player()->queue().size(), 3);
        QCOMPARE(player()->queue().at(1).title, titles.at(1));
        QCOMPARE(player()->queue().at(2).title, titles.at(4));

        // A double click plays the whole table from there, and the row shows the speaker.
        QTest::mouseDClick(running->window, Qt::LeftButton, {}, cell(2, 0)->mapToScene({20, 10}).toPoint());
        QTRY_COMPARE(player()->queue().size(), 14);
        QCOMPARE(player()->currentIndex(), 2);
        QTRY_COMPARE(cell(2, 0)->property("marker").toString(), u"speaker.wave.2.fill"_s);
        player()->pause();
    }

    void aLikedSongStandsOnTheLikedTableUntilUnliked()
    {
        navigation()->selectKey(u"item:songs"_s);
        QTRY_VERIFY(cell(0, 0));
        const QString title = cell(0, 0)->property("display").toString();
        running->click(cell(0, 0), Qt::RightButton);
        QTRY_VERIFY(running->menuItem(u"Like"_s));
        QTRY_VERIFY(running->find<QObject>(u"songTableMenu"_s)->property("opened").toBool());
        running->click(running->menuItem(u"Like"_s));
        LibraryStore *library = running->app.appState()->library();
        QTRY_COMPARE(library->starredSongs().size(), 1);
        QCOMPARE(library->starredSongs().at(0).title, title);
        navigation()->selectKey(u"item:likedSongs"_s);
        QTRY_COMPARE(column(0), QStringList{title});
        QVERIFY(saveScreenshot(running->window, u"liked-songs"_s));
        running->click(cell(0, 0), Qt::RightButton);
        QTRY_VERIFY(running->menuItem(u"Unlike"_s));
        running->click(running->menuItem(u"Unlike"_s));
        QTRY_VERIFY(running->visibleItem(u"songTableMessage"_s));
        QVERIFY(saveScreenshot(running->window, u"liked-songs-empty"_s));
    }

    void cleanupTestCase() { running.reset(); }
};

QTEST_MAIN(SongsWindowTest)
#include "tst_songsui.moc"
