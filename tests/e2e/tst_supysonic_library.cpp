// The library store against a real server: after each edit, what the store holds matches a fresh read.

#include "awaittask.h"
#include "library/librarystore.h"
#include "supysonicfixture.h"

#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;

class SupysonicLibraryTest : public QObject
{
    Q_OBJECT

    SupysonicFixture fixture{QStringLiteral(VELTO_FIXTURE_WORKDIR)};
    std::unique_ptr<LibraryStore> store;
    std::optional<SubsonicClient> client;

    int librarySize(const char *what) const
    {
        int count = 0;
        for (const QJsonValue &album : fixture.library().value("albums"_L1).toArray())
            count += what == QByteArrayView("songs") ? album["songs"_L1].toArray().size() : 1;
        return count;
    }

    QStringList entriesOnServer(const QString &id)
    {
        QStringList ids;
        for (const Song &song : awaitTask(client->playlist(id)).entry.value_or(QList<Song>()))
            ids.append(song.id);
        return ids;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(fixture.start(), qPrintable(fixture.errorText()));
        client = SubsonicClient(ServerConfig{fixture.baseURL(), fixture.username(), fixture.password()});
        store = std::make_unique<LibraryStore>(*client);
    }

    void everyListLoadsToItsEnd()
    {
        for (AlbumListType type : {AlbumListType::Newest, AlbumListType::AlphabeticalByName,
                                   AlbumListType::AlphabeticalByArtist}) {
            store->loadMoreAlbums(type);
            QTRY_VERIFY(!store->albumList(type).isLoading);
            QVERIFY(store->albumList(type).reachedEnd);
            QCOMPARE(store->albumList(type).albums.size(), librarySize("albums"));
        }
        store->ensureHomeRow(AlbumListType::Random);
        QTRY_VERIFY(!store->homeRowState(AlbumListType::Random).isLoading);
        QCOMPARE(store->homeRowState(AlbumListType::Random).albums.size(), librarySize("albums"));

        store->ensureSongsLoaded();
        store->ensureArtistsLoaded();
        store->ensureStarredLoaded();
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->songsLoaded() && store->artistsLoaded() && store->starredLoaded() && store->playlistsLoaded());
        QCOMPARE(store->songsError(), std::nullopt);
        QCOMPARE(store->songs().size(), librarySize("songs"));
        QCOMPARE(store->allArtists().size(), 3);
        QVERIFY(store->starredSongs().isEmpty());
        QVERIFY(store->reachability().isOk());
    }

    void likesMatchTheServer()
    {
        const Album album = awaitTask(store->albumDetail(store->albumList(AlbumListType::Newest).albums.first().id));
        const Song song = album.song->first();
        store->toggleStar(song);
        store->toggleStarAlbum(album);
        QTRY_COMPARE(awaitTask(client->starred()).song.value_or(QList<Song>()).size(), 1);
        QTRY_COMPARE(awaitTask(client->starred()).album.value_or(QList<Album>()).size(), 1);
        store->refresh();
        store->ensureStarredLoaded();
        QTRY_VERIFY(store->starredLoaded());
        QVERIFY(store->starredIds().contains(song.id));
        QVERIFY(store->starredAlbumIds().contains(album.id));

        store->toggleStar(song);
        store->toggleStarAlbum(album);
        QTRY_VERIFY(awaitTask(client->starred()).song.value_or(QList<Song>()).isEmpty());
        QTRY_VERIFY(awaitTask(client->starred()).album.value_or(QList<Album>()).isEmpty());
        QCOMPARE(store->lastFailure(), std::nullopt);
    }

    void aPlaylistFromCreationToDeletion()
    {
        store->ensureSongsLoaded(); // a refresh() above emptied the cache
        QTRY_VERIFY(store->songsLoaded());
        const QList<Song> songs = store->songs().mid(0, 3);
        QCOMPARE(songs.size(), 3);
        const std::optional<QString> id = awaitTask(store->createPlaylist(u"Road Trip ✓"_s));
        QVERIFY(id);
        QCOMPARE(store->lastFailure(), std::nullopt);
        QCOMPARE(store->playlists().size(), 1);

        awaitTask(store->addSongs(songs, *id));
        QCOMPARE(entriesOnServer(*id), (QStringList{songs[0].id, songs[1].id, songs[2].id}));
        QCOMPARE(store->playlistRevision(), 1);
        QCOMPARE(store->playlists().first().songCount, 3);

        const QStringList order{songs[2].id, songs[0].id, songs[2].id, songs[1].id};
        QVERIFY(awaitTask(store->reorderPlaylist(*id, order)));
        QCOMPARE(entriesOnServer(*id), order);

        awaitTask(store->removeSong(2, order, *id));
        QCOMPARE(entriesOnServer(*id), (QStringList{songs[2].id, songs[0].id, songs[1].id}));
        QCOMPARE(awaitTask(store->playlistDetail(*id)).entry->size(), 3);

        awaitTask(store->renamePlaylist(*id, u"Renamed"_s));
        QCOMPARE(store->playlists().first().name, u"Renamed"_s);
        QVERIFY(awaitTask(store->deletePlaylist(*id)));
        QVERIFY(store->playlists().isEmpty());
        QCOMPARE(awaitTask(client->playlists()), std::nullopt);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(SupysonicLibraryTest)
#include "tst_supysonic_library.moc"
