// Where the user is in the main window: the accent that comes back on stepping back, the place kept for the next
// start and refused for another account, a new selection landing at its root, and albums dropped on a playlist.

#include "../playback/playertesthelpers.h"
#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "server/appstate.h"
#include "shell/navigation.h"
#include "shell/sidebarmodel.h"
#include "testdata.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const Album blueTrain{.id = u"al1"_s, .name = u"Blue Train"_s, .artist = u"John Coltrane"_s, .coverArt = u"c1"_s};
const Artist coltrane{.id = u"ar1"_s, .name = u"John Coltrane"_s};
const QColor red(200, 30, 30);
const QColor blue(30, 30, 200);
}

class NavigationTest : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    FakeSubsonicServer server;
    QSettings settings{dir.filePath(u"settings.ini"_s), QSettings::IniFormat};
    std::unique_ptr<AppState> appState;
    std::unique_ptr<LocationFile> locations;

    QString locationPath() const { return dir.filePath(u"location.json"_s); }

    // A main window's navigation as QML makes it: properties first, then the saved place.
    std::unique_ptr<Navigation> openNavigation()
    {
        auto navigation = std::make_unique<Navigation>();
        navigation->setAppState(appState.get());
        navigation->setProperty("locations", QVariant::fromValue(locations.get()));
        navigation->restore();
        return navigation;
    }

    void writeLocation(const QByteArray &contents)
    {
        writeFile(locationPath(), contents);
        locations = std::make_unique<LocationFile>(locationPath()); // a new process reads the file anew
    }

private Q_SLOTS:
    void initTestCase()
    {
        server.on(u"ping"_s, FakeSubsonicServer::json({}));
        appState = std::make_unique<AppState>(&settings);
        awaitTask(appState->connect(server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QVERIFY(appState->client());
        locations = std::make_unique<LocationFile>(locationPath());
    }

    void stepsBackBringBackTheColourOfTheScreenUnder()
    {
        auto navigation = openNavigation();
        navigation->reportAccent(0, blue); // Home
        navigation->push(blueTrain);
        QVERIFY(!navigation->windowAccent().isValid()); // neutral until the album reports
        navigation->reportAccent(1, red);
        navigation->push(coltrane);
        QVERIFY(!navigation->windowAccent().isValid());
        navigation->reportAccent(0, QColor(Qt::green)); // Home under two screens: dropped
        QVERIFY(!navigation->windowAccent().isValid());
        navigation->back();
        QCOMPARE(navigation->windowAccent(), red);
        navigation->reportAccent(2, QColor()); // the artist page going away clears nothing
        QCOMPARE(navigation->windowAccent(), red);
        navigation->push(AlbumGridDestination{AlbumListType::Newest, u"Recently Added"_s});
        navigation->back();
        QCOMPARE(navigation->windowAccent(), red);
        navigation->popToRoot(); // several levels at once: the root's colour
        QCOMPARE(navigation->windowAccent(), blue);
        QCOMPARE(navigation->depth(), 0);
    }

    void aNewSelectionLandsAtItsRoot()
    {
        auto navigation = openNavigation();
        navigation->reportAccent(0, blue);
        navigation->push(blueTrain);
        navigation->reportAccent(1, red);
        navigation->setSearchText(u"train"_s);
        navigation->selectKey(u"item:songs"_s);
        QCOMPARE(navigation->rootKind(), u"songs"_s);
        QCOMPARE(navigation->depth(), 0);
        QCOMPARE(navigation->searchText(), QString());
        QVERIFY(!navigation->windowAccent().isValid());
        // Nothing of the old stack's colours is left to come back.
        navigation->push(coltrane);
        navigation->back();
        QVERIFY(!navigation->windowAccent().isValid());
    }

    void thePlaceComesBackAtTheNextStart()
    {
        {
            auto navigation = openNavigation();
            navigation->selectKey(u"playlist:p9"_s);
            navigation->pushGrid(u"frequent"_s, u"Most Played"_s);
            navigation->push(blueTrain);
            navigation->push(coltrane);
        }
        locations = std::make_unique<LocationFile>(locationPath());
        auto restored = openNavigation();
        QCOMPARE(restored->selectionKey(), u"playlist:p9"_s);
        const QList<NavigationEntry> expected{AlbumGridDestination{AlbumListType::Frequent, u"Most Played"_s},
                                              blueTrain, coltrane};
        QCOMPARE(restored->stack()->entries(), expected);
        const QJsonObject saved = QJsonDocument::fromJson(readFile(locationPath())).object();
        QCOMPARE(saved.value("selection"_L1).toObject(), QJsonObject({{u"playlist"_s, QJsonObject{{u"_0"_s, u"p9"_s}}}}));
        QCOMPARE(saved.value("serverKey"_L1).toString(), u"alice@"_s + server.baseURL().toString());
    }

    // Another account's place, a selection of two keys, a stack element of no known kind and a file that is not
    // JSON all give the default start.
    void anUnusablePlaceStartsAtHome_data()
    {
        QTest::addColumn<QByteArray>("contents");
        const QByteArray ours = ("alice@" + server.baseURL().toString()).toUtf8();
        QTest::newRow("another account") << QByteArray(
            "{\"serverKey\":\"bob@http://elsewhere\",\"selection\":{\"item\":{\"_0\":\"songs\"}},\"path\":[]}");
        QTest::newRow("two keys") << ("{\"serverKey\":\"" + ours
                                      + "\",\"selection\":{\"item\":{\"_0\":\"songs\"},\"playlist\":{\"_0\":\"p\"}},"
                                        "\"path\":[]}");
        QTest::newRow("unknown kind") << ("{\"serverKey\":\"" + ours
                                          + "\",\"selection\":{\"item\":{\"_0\":\"songs\"}},"
                                            "\"path\":[{\"kind\":\"video\",\"record\":{}}]}");
        QTest::newRow("not JSON") << QByteArray("{\"serverKey\": trunc");
    }

    void anUnusablePlaceStartsAtHome()
    {
        QFETCH(QByteArray, contents);
        writeLocation(contents);
        auto navigation = openNavigation();
        QCOMPARE(navigation->selectionKey(), u"item:home"_s);
        QCOMPARE(navigation->depth(), 0);
    }

    // Space is the play key only while there is something to play; otherwise it goes on to the focused control.
    void spaceTogglesPlayOnlyWithACurrentSong()
    {
        Player player;
        auto navigation = openNavigation();
        QVERIFY(!navigation->spacePressed());
        navigation->setProperty("player", QVariant::fromValue(&player.controller));
        QVERIFY(!navigation->spacePressed());
        player.play(u"a b"_s);
        const bool playing = player.controller.isPlaying();
        QVERIFY(navigation->spacePressed());
        QCOMPARE(player.controller.isPlaying(), !playing);
    }

    // The first album brings its songs; the second must be fetched, fails, and is added by the banner's retry.
    void albumsDroppedOnAPlaylistAreAddedInOrder()
    {
        QStringList added;
        server.on(u"updatePlaylist"_s, [&](const RecordedRequest &request) {
            added += request.values(u"songIdToAdd"_s);
            return FakeSubsonicServer::json({});
        });
        server.on(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject()}}));
        server.enqueue(u"getAlbum"_s, FakeResponse{.status = 500});
        const QJsonObject second{{u"id"_s, u"al2"_s}, {u"name"_s, u"Giant Steps"_s}};
        server.on(u"getAlbum"_s, FakeSubsonicServer::json(
            {{u"album"_s, QJsonObject{{u"id"_s, u"al2"_s}, {u"name"_s, u"Giant Steps"_s},
                                     {u"song"_s, QJsonArray{QJsonObject{{u"id"_s, u"s3"_s}, {u"title"_s, u"Naima"_s}}}}}}}));
        LibraryStore *library = appState->library();
        SidebarModel sidebar;
        sidebar.setLibrary(library);

        Album first = blueTrain;
        first.song = QList<Song>{Song{.id = u"s1"_s, .title = u"Moment's Notice"_s}, Song{.id = u"s2"_s, .title = u"Locomotion"_s}};
        const QJsonArray dropped{first.toJson(), second};
        QVERIFY(!sidebar.dropAlbums(u"p1"_s, u"not an album"_s));
        QVERIFY(sidebar.dropAlbums(u"p1"_s, QString::fromUtf8(QJsonDocument(dropped).toJson())));
        QTRY_VERIFY(library->lastFailure().has_value());
        QCOMPARE(added, QStringList({u"s1"_s, u"s2"_s}));
        QCOMPARE(library->lastFailure()->action, u"add the album to the playlist"_s);
        QVERIFY(library->lastFailure()->retry);

        awaitTask(library->retryLastFailure());
        QTRY_COMPARE(added, QStringList({u"s1"_s, u"s2"_s, u"s3"_s}));
        QVERIFY(!library->lastFailure());
    }
};

QTEST_MAIN(NavigationTest)
#include "tst_navigation.moc"
