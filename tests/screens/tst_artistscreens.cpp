// The artist screens without a window, over a fake server: the choice that always resolves and survives a restart,
// the albums newest first, and playing a discography, which one press starts once and a change of artist abandons.

#include "../playback/fakeaudioengine.h"
#include "fakesubsonicserver.h"
#include "library/librarystore.h"
#include "playback/playercontroller.h"
#include "screens/artistdetailscreen.h"
#include "screens/artistsscreen.h"
#include "shell/preferences.h"
#include "testdata.h"

#include <QJsonArray>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QJsonObject artistJson(const QString &id)
{
    return {{u"id"_s, id}, {u"name"_s, u"Artist "_s + id}};
}

FakeResponse artistsAnswer(const QStringList &ids)
{
    QJsonArray artists;
    for (const QString &id : ids)
        artists.append(artistJson(id));
    return FakeSubsonicServer::json(
        {{u"artists"_s, QJsonObject{{u"index"_s, QJsonArray{QJsonObject{{u"name"_s, u"A"_s}, {u"artist"_s, artists}}}}}}});
}

// An artist's albums as the server lists them: id and year, no year where it is 0.
FakeResponse artistAnswer(const QString &id, const QList<std::pair<QString, int>> &albums)
{
    QJsonArray list;
    for (const auto &[albumId, year] : albums) {
        QJsonObject album{{u"id"_s, albumId}, {u"name"_s, u"Album "_s + albumId}};
        if (year)
            album.insert(u"year"_s, year);
        list.append(album);
    }
    QJsonObject artist = artistJson(id);
    artist.insert(u"album"_s, list);
    return FakeSubsonicServer::json({{u"artist"_s, artist}});
}

FakeResponse albumAnswer(const RecordedRequest &request)
{
    const QString id = request.value(u"id"_s);
    const QJsonArray songs{Song{.id = id + u"-1"_s, .title = u"One"_s, .albumId = id}.toJson(),
                           Song{.id = id + u"-2"_s, .title = u"Two"_s, .albumId = id}.toJson()};
    return FakeSubsonicServer::json({{u"album"_s, QJsonObject{{u"id"_s, id}, {u"name"_s, id}, {u"song"_s, songs}}}});
}

QStringList albumIds(AlbumListModel &albums)
{
    QStringList ids;
    for (const Album &album : albums.items())
        ids.append(album.id);
    return ids;
}
}

class ArtistScreensTest : public QObject
{
    Q_OBJECT

    FakeSubsonicServer server;
    QTemporaryDir folder;
    SubsonicClient client{ServerConfig{server.baseURL(), u"alice"_s, u"pw"_s}};
    std::unique_ptr<LibraryStore> library;
    FakeAudioEngine engine;
    std::unique_ptr<PlayerController> player;

    std::unique_ptr<ArtistDetailScreen> openPane(const QString &id)
    {
        auto pane = std::make_unique<ArtistDetailScreen>();
        pane->setLibrary(library.get());
        pane->setProperty("player", QVariant::fromValue(player.get()));
        pane->setArtist(artistJson(id));
        pane->componentComplete();
        return pane;
    }

private Q_SLOTS:
    void init()
    {
        server.on(u"getStarred2"_s, FakeSubsonicServer::json({{u"starred2"_s, QJsonObject()}}));
        server.on(u"getAlbum"_s, albumAnswer);
        server.clearLog();
        library = std::make_unique<LibraryStore>(client);
        player = std::make_unique<PlayerController>(&engine);
    }
    void cleanup()
    {
        player.reset();
        library.reset();
    }

    void theChoiceAlwaysResolvesAndSurvivesARestart()
    {
        const QList<Artist> artists{Artist{.id = u"a"_s, .name = u"A"_s}, Artist{.id = u"b"_s, .name = u"B"_s}};
        QCOMPARE(ArtistRules::resolvedSelection(u"b"_s, artists), u"b"_s);
        QCOMPARE(ArtistRules::resolvedSelection(u"gone"_s, artists), u"a"_s);
        QCOMPARE(ArtistRules::resolvedSelection(std::nullopt, artists), u"a"_s);
        QCOMPARE(ArtistRules::resolvedSelection(u"b"_s, {}), std::nullopt);

        QSettings settings(folder.filePath(u"settings.ini"_s), QSettings::IniFormat);
        Preferences preferences(&settings);
        preferences.setArtistsSelectedId(u"b"_s);
        // An empty library: the choice stays as it was.
        server.on(u"getArtists"_s, FakeSubsonicServer::json({{u"artists"_s, QJsonObject()}}));
        {
            ArtistsScreen screen;
            screen.setLibrary(library.get());
            screen.setPreferences(&preferences);
            screen.componentComplete();
            QTRY_COMPARE(screen.state(), u"message"_s);
            QCOMPARE(screen.messageTitle(), u"No Artists"_s);
            QCOMPARE(screen.selectedArtistId(), u"b"_s);
            QCOMPARE(screen.selectedArtist(), QJsonObject());
        }
        server.on(u"getArtists"_s, artistsAnswer({u"a"_s, u"b"_s, u"c"_s}));
        library = std::make_unique<LibraryStore>(client);
        ArtistsScreen screen;
        QSignalSpy choices(&screen, &ArtistsScreen::selectionChanged);
        screen.setLibrary(library.get());
        screen.setPreferences(&preferences);
        screen.componentComplete();
        QTRY_COMPARE(screen.state(), u"list"_s);
        QCOMPARE(screen.selectedArtistId(), u"b"_s);
        QCOMPARE(screen.selectedRow(), 1);
        QVERIFY(choices.count() > 0); // the kept choice appeared in the list
        QCOMPARE(screen.selectedArtist().value(u"name"_s).toString(), u"Artist b"_s);
        screen.select(u"c"_s);
        screen.select(QString()); // a click into blank space
        QCOMPARE(screen.selectedArtistId(), u"c"_s);
        QCOMPARE(settings.value(u"artistsSelectedID"_s).toString(), u"c"_s);
        QCOMPARE(screen.moveSelection(-1), 1);
        QCOMPARE(screen.moveSelection(5), 2);

        // A stored artist that left the library: the first one.
        preferences.setArtistsSelectedId(u"gone"_s);
        library = std::make_unique<LibraryStore>(client);
        ArtistsScreen later;
        later.setLibrary(library.get());
        later.setPreferences(&preferences);
        later.componentComplete();
        QTRY_COMPARE(later.selectedArtistId(), u"a"_s);
    }

    void albumsComeNewestFirstWithEqualYearsInTheServersOrder()
    {
        server.on(u"getArtist"_s, artistAnswer(u"x"_s, {{u"old"_s, 1990}, {u"none"_s, 0}, {u"new1"_s, 2010},
                                                        {u"mid"_s, 2000}, {u"new2"_s, 2010}}));
        const auto pane = openPane(u"x"_s);
        QCOMPARE(pane->state(), u"loading"_s);
        QVERIFY(!pane->canPlay());
        QTRY_COMPARE(pane->state(), u"albums"_s);
        QCOMPARE(albumIds(*pane->albums()), (QStringList{u"new1"_s, u"new2"_s, u"mid"_s, u"old"_s, u"none"_s}));
        QVERIFY(pane->canPlay());

        server.on(u"getArtist"_s, artistAnswer(u"y"_s, {}));
        pane->setArtist(artistJson(u"y"_s));
        QTRY_COMPARE(pane->state(), u"message"_s);
        QCOMPARE(pane->messageTitle(), u"No Albums"_s);
        QVERIFY(!pane->canPlay());

        server.on(u"getArtist"_s, FakeSubsonicServer::error(70, u"Artist not found"_s));
        pane->setArtist(artistJson(u"z"_s));
        QTRY_COMPARE(pane->messageTitle(), u"Couldn’t Load Artist"_s);
        QVERIFY(pane->messageText().contains(u"Artist not found"_s));
    }

    void aDiscographyIsCollectedOnceAndAbandonedWithItsArtist()
    {
        server.on(u"getArtist"_s, artistAnswer(u"x"_s, {{u"a1"_s, 2001}, {u"a2"_s, 2005}}));
        server.on(u"getAlbum"_s, [](const RecordedRequest &request) { return FakeSubsonicServer::delayed(albumAnswer(request), 150); });
        const auto pane = openPane(u"x"_s);
        QTRY_VERIFY(pane->canPlay());
        QSignalSpy queues(player.get(), &PlayerController::queueChanged);
        pane->playDiscography(false);
        QVERIFY(pane->isAssembling());
        QVERIFY(!pane->canPlay());
        pane->playDiscography(true);
        QTRY_VERIFY(!pane->isAssembling());
        QCOMPARE(idsOf(player->queue()), (QStringList{u"a2-1"_s, u"a2-2"_s, u"a1-1"_s, u"a1-2"_s}));
        QCOMPARE(queues.count(), 1);
        QCOMPARE(server.count(u"getAlbum"_s), 2);
        QVERIFY(!player->isShuffling());

        // Another artist chosen while the first one's albums are collected: nothing plays, and the new
        // artist's buttons work once its albums are in.
        player->stop();
        library = std::make_unique<LibraryStore>(client); // nothing cached
        const auto second = openPane(u"x"_s);
        QTRY_VERIFY(second->canPlay());
        const int queued = queues.count();
        second->playDiscography(false);
        server.on(u"getArtist"_s, artistAnswer(u"y"_s, {{u"b1"_s, 1999}}));
        second->setArtist(artistJson(u"y"_s));
        QVERIFY(!second->isAssembling());
        QTRY_VERIFY(second->canPlay());
        QTest::qWait(500);
        QCOMPARE(queues.count(), queued);

        // Every album failing: no songs, nothing shown, the buttons back.
        server.on(u"getAlbum"_s, FakeSubsonicServer::error(0, u"Broken"_s));
        second->playDiscography(false);
        QTRY_VERIFY(!second->isAssembling());
        QVERIFY(second->canPlay());
        QCOMPARE(queues.count(), queued);
        QCOMPARE(second->state(), u"albums"_s);
    }

    void theListsMenuPlaysAnArtistAndLikesIt()
    {
        server.on(u"getArtists"_s, artistsAnswer({u"x"_s}));
        server.on(u"getArtist"_s, artistAnswer(u"x"_s, {{u"a1"_s, 2001}}));
        server.on(u"star"_s, FakeSubsonicServer::json({}));
        ArtistsScreen screen;
        screen.setLibrary(library.get());
        screen.setProperty("player", QVariant::fromValue(player.get()));
        screen.componentComplete();
        QTRY_COMPARE(screen.artists()->rowCount(), 1);
        screen.playArtist(u"x"_s, true);
        QTRY_COMPARE(player->queue().size(), 2);
        QVERIFY(player->isShuffling());
        screen.toggleLike(u"x"_s);
        QVERIFY(screen.artists()->data(screen.artists()->index(0), ArtistListModel::IsLikedRole).toBool());
        QTRY_COMPARE(server.count(u"star"_s), 1);
    }
};

QTEST_GUILESS_MAIN(ArtistScreensTest)
#include "tst_artistscreens.moc"
