// The library store against a real Supysonic server: after each edit, the store matches a fresh read.

#include "awaittask.h"
#include "library/librarystore.h"
#include "supysonicfixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

class SupysonicLibraryTest : public QObject
{
    Q_OBJECT

    SupysonicFixture fixture{QStringLiteral(VELTO_FIXTURE_WORKDIR)};
    std::unique_ptr<LibraryStore> store;
    std::optional<SubsonicClient> client;

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

    void everyCollectionLoadsAtTheStoresPageSizes()
    {
        store->ensureSongsLoaded();
        store->ensureArtistsLoaded();
        store->ensureStarredLoaded();
        store->ensurePlaylistsLoaded();
        QTRY_VERIFY(store->songsLoaded() && store->artistsLoaded() && store->starredLoaded() && store->playlistsLoaded());
        QCOMPARE(store->songsError(), std::nullopt);
        QCOMPARE(store->songs().size(), fixture.library().value("songCount"_L1).toInt());
        QCOMPARE(store->allArtists().size(), 3);
        QVERIFY(store->starredSongs().isEmpty());
        QVERIFY(store->reachability().isOk());
    }

    void aPlaylistFromCreationToDeletion()
    {
        const QList<Song> songs = store->songs().mid(0, 3);
        QCOMPARE(songs.size(), 3);
        const std::optional<QString> id = awaitTask(store->createPlaylist(u"Road Trip ✓"_s));
        QVERIFY(id);
        QCOMPARE(store->lastFailure(), std::nullopt);
        QCOMPARE(store->playlists().size(), 1);
        QCOMPARE(store->playlists().first().name, u"Road Trip ✓"_s);
        QCOMPARE(awaitTask(client->playlist(*id)).entry, std::nullopt); // an empty playlist has no entries

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
        QCOMPARE(awaitTask(client->playlist(*id)).name, u"Renamed"_s);
        awaitTask(client->replacePlaylistSongs(*id, {}));
        QVERIFY(entriesOnServer(*id).isEmpty());
        QVERIFY(awaitTask(store->deletePlaylist(*id)));
        QVERIFY(store->playlists().isEmpty());
        QCOMPARE(awaitTask(client->playlists()), std::nullopt);
        QCOMPARE(store->lastFailure(), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(SupysonicLibraryTest)
#include "tst_supysonic_library.moc"
