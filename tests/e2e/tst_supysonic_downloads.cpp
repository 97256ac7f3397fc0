// Downloads against a real server: the server's own bytes and cover image are stored, and found on disk once
// the server has stopped. Sharing and removal rules are proven by the offline tests.

#include "awaittask.h"
#include "offline/downloadstore.h"
#include "supysonicfixture.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
}

class SupysonicDownloadsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<SupysonicFixture> fixture =
        std::make_unique<SupysonicFixture>(QStringLiteral(VELTO_FIXTURE_WORKDIR));
    std::optional<SubsonicClient> client;
    QTemporaryDir root;
    std::shared_ptr<DownloadStore> store;
    Album album;            // "Ágætis Test": four songs with a cover
    Song shared;            // its first song, also in the playlist
    Song other;             // a song of another album, only in the playlist
    QString playlistId;

    [[nodiscard]] DownloadLayout layout() const { return DownloadLayout(root.path()); }

    // The file the fixture generated for a song, found by album name and title.
    [[nodiscard]] QString libraryFile(const Song &song) const
    {
        for (const QJsonValue &entry : fixture->library().value("albums"_L1).toArray()) {
            if (entry["name"_L1].toString() != song.album)
                continue;
            for (const QJsonValue &track : entry["songs"_L1].toArray()) {
                if (track["title"_L1].toString() == song.title)
                    return fixture->libraryPath(track["path"_L1].toString());
            }
        }
        return {};
    }

    [[nodiscard]] QString storedFile(const Song &song) const
    {
        const std::optional<QUrl> url = layout().localFileURL(song, client->config());
        return url ? url->toLocalFile() : QString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(fixture->start(), qPrintable(fixture->errorText()));
        client = SubsonicClient(ServerConfig{fixture->baseURL(), fixture->username(), fixture->password()});
        for (const Album &listed : awaitTask(client->albums(AlbumListType::AlphabeticalByName, 50, 0))) {
            if (listed.name == u"Ágætis Test"_s)
                album = listed;
            else if (listed.name == u"Niño Tones"_s)
                other = awaitTask(client->album(listed.id)).song->first();
        }
        shared = awaitTask(client->album(album.id)).song->first();
        QVERIFY(album.coverArt && shared.coverArt);

        awaitTask(client->createPlaylist(u"Shared ✓"_s));
        playlistId = awaitTask(client->playlists())->first().id;
        const QStringList songIds{other.id, shared.id};
        awaitTask(client->updatePlaylist(playlistId, std::nullopt, songIds, {}));
        store = DownloadStore::create(*client, layout());
    }

    void anAlbumAndAPlaylistShareOneFile()
    {
        store->downloadAlbum(album);
        store->downloadPlaylist(playlistId, u"Shared ✓"_s);
        QTRY_VERIFY_WITH_TIMEOUT(store->runningKeys().isEmpty(), 30'000);
        QVERIFY(store->active().isEmpty());
        QVERIFY(store->isDownloaded(albumCollectionKey(album.id)));
        QVERIFY(store->isDownloaded(playlistCollectionKey(playlistId)));
        QCOMPARE(store->manifest().songs.value(shared.id).owners.size(), 2);
        const QList<Song> stored = store->manifest().songsOwnedBy(albumCollectionKey(album.id)) + QList<Song>{other};
        for (const Song &song : stored) {
            QVERIFY2(!libraryFile(song).isEmpty(), qPrintable(song.title));
            QCOMPARE(contentOf(storedFile(song)), contentOf(libraryFile(song)));
        }
        const QString cover = DownloadLayout::artworkDirectory(store->directory()) + u'/'
            + DownloadLayout::coverFileName(*shared.coverArt);
        QVERIFY(!QImage::fromData(contentOf(cover)).isNull());
    }

    void theSharedSongOutlivesTheAlbum()
    {
        store->removeDownload(albumCollectionKey(album.id));
        QCOMPARE(contentOf(storedFile(shared)), contentOf(libraryFile(shared)));
    }

    void theFilesAreFoundWithTheServerStopped()
    {
        store.reset();
        fixture.reset();
        store = DownloadStore::create(*client, layout());
        const std::optional<PlaylistDetail> playlist = store->localPlaylist(playlistId);
        QVERIFY(playlist);
        QCOMPARE(playlist->name, u"Shared ✓"_s);
        QCOMPARE(playlist->entry->size(), 2);
        for (const Song &song : *playlist->entry) {
            const QString file = storedFile(song);
            QVERIFY(QFileInfo(file).isFile());
            QCOMPARE(QFileInfo(file).size(), store->manifest().songs.value(song.id).bytes);
        }
        QVERIFY(!store->localAlbum(album.id));
    }
};

QTEST_GUILESS_MAIN(SupysonicDownloadsTest)
#include "tst_supysonic_downloads.moc"
