// A collection's download from start to end: what is fetched and recorded, how a failure leaves it, how starting
// again finishes it without fetching twice, and the covers kept beside the songs.

#include "artwork/artworkfetcher.h"
#include "downloadtesthelpers.h"

namespace {
QList<Song> coveredSongs()
{
    QList<Song> songs = numberedSongs(4);
    songs[0].coverArt = u"front"_s;
    songs[1].coverArt = u"front"_s;
    songs[2].coverArt = u"back"_s;
    return songs; // s4 has none
}
}

class DownloadRunTest : public DownloadTest
{
    Q_OBJECT

    [[nodiscard]] QString coverFolder() const { return DownloadLayout::artworkDirectory(rig->directory()); }

    // The covers on disk that hold what the server sent for them.
    [[nodiscard]] QStringList coversOnDisk() const
    {
        QStringList covers;
        for (const QString &id : {u"front"_s, u"back"_s, u"other"_s}) {
            if (readFile(coverFolder() + u'/' + DownloadLayout::coverFileName(id)) == DownloadRig::coverOf(id))
                covers.append(id);
        }
        return covers;
    }

    [[nodiscard]] QStringList coversAsked() const
    {
        QStringList asked;
        for (const RecordedRequest &request : rig->server.requests(u"getCoverArt"_s))
            asked.append(request.value(u"id"_s) + u'@' + request.value(u"size"_s));
        return asked;
    }

    void restart()
    {
        store.reset();
        rig->server.clearLog();
        store = rig->makeStore();
        QTRY_VERIFY(!store->isSweepingArtwork());
    }

private Q_SLOTS:
    void eachSongIsOnDiskInTheManifestBeforeTheNextTransfer()
    {
        rig->serveAlbum(u"A"_s, numberedSongs(4));
        QStringList recordedAtRequest;
        rig->server.on(u"download"_s, [this, &recordedAtRequest](const RecordedRequest &request) {
            const QString id = request.value(u"id"_s);
            recordedAtRequest.append(id + u':' + QString::number(loadManifest(rig->directory()).songs.size()));
            return audioAnswer(audioOf(id));
        });
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QCOMPARE(recordedAtRequest, (QStringList{u"s1:0"_s, u"s2:1"_s, u"s3:2"_s, u"s4:3"_s}));
        QCOMPARE(loadManifest(rig->directory()), store->manifest());
    }

    void aFailedSongEndsTheRunAndStartingAgainResumes()
    {
        const QList<Song> songs = numberedSongs(10);
        rig->serveAlbum(u"A"_s, songs);
        rig->scripted.insert(u"s5"_s, FakeResponse{.status = 500, .contentType = "text/plain", .body = "no"});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);

        QCOMPARE(store->albumProgress(u"A"_s), (DownloadProgress{.total = 10, .completed = 4, .failed = true}));
        QCOMPARE(rig->requestedSongs(), idsOf(songs.mid(0, 5)));
        QCOMPARE(idsOf(store->manifest().songsOwnedBy(albumKey)), idsOf(songs.mid(0, 4)));
        QCOMPARE(store->state(albumKey, idsOf(songs)), CollectionDownloadState::partial(4, 10));
        QCOMPARE(loadManifest(store->directory()), store->manifest());

        rig->scripted.clear();
        rig->server.clearLog();
        QList<DownloadProgress> seen;
        connect(store.get(), &DownloadStore::activeChanged, this, [this, &seen] {
            if (const auto progress = store->albumProgress(u"A"_s))
                seen.append(*progress);
        });
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);

        QCOMPARE(seen.value(0), (DownloadProgress{.total = 10, .completed = 0, .failed = false}));
        QCOMPARE(seen.last(), (DownloadProgress{.total = 10, .completed = 10, .failed = false}));
        QCOMPARE(rig->requestedSongs(), idsOf(songs.mid(4)));
        QVERIFY(!store->albumProgress(u"A"_s));
        QCOMPARE(store->state(albumKey, idsOf(songs)), CollectionDownloadState::complete());
        for (const Song &song : songs)
            QCOMPARE(rig->contentOf(song.id), audioOf(song.id));
        QCOMPARE(store->manifest().songs.value(u"s7"_s).bytes, audioOf(u"s7"_s).size());
        QCOMPARE(store->manifest().collections.value(albumKey),
                 (DownloadCollection{albumKey, u"Album A"_s, u"Artist"_s}));
        QCOMPARE(loadManifest(store->directory()), store->manifest());
    }

    void pressingTwiceDownloadsOnce()
    {
        rig->serveAlbum(u"A"_s, numberedSongs(3));
        store->downloadAlbum(testAlbum(u"A"_s));
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QCOMPARE(rig->server.count(u"getAlbum"_s), 1);
        QCOMPARE(rig->requestedSongs(), (QStringList{u"s1"_s, u"s2"_s, u"s3"_s}));
    }

    // A song list that fails leaves a failure and nothing else; an empty one is held with no songs.
    void songListsThatFailOrAreEmpty()
    {
        store->downloadPlaylist(u"missing"_s, u"Gone"_s);
        rig->serveAlbum(u"A"_s, {});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(u"playlist:missing"_s);
        runToEnd(albumKey);
        QCOMPARE(store->playlistProgress(u"missing"_s), (DownloadProgress{.total = 0, .completed = 0, .failed = true}));
        QVERIFY(!store->manifest().collections.contains(u"playlist:missing"_s));
        QCOMPARE(rig->server.count(u"download"_s), 0);
        QVERIFY(store->isDownloaded(albumKey));
        QVERIFY(!store->albumProgress(u"A"_s));
        QVERIFY(!store->localAlbum(u"A"_s));
    }

    void aSharedSongIsStoredOnce()
    {
        const QList<Song> songs = numberedSongs(4);
        rig->serveAlbum(u"A"_s, songs.mid(0, 2));
        rig->servePlaylist(u"P"_s, songs.mid(1, 3));
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);

        QCOMPARE(rig->requestedSongs(), idsOf(songs));
        QCOMPARE(store->manifest().songs.value(u"s2"_s).owners, (QSet<QString>{albumKey, playlistKey}));
        QCOMPARE(rig->songsOnDisk(idsOf(songs)), idsOf(songs));
        QCOMPARE(store->manifest().collections.value(playlistKey),
                 (DownloadCollection{playlistKey, u"Mix"_s, std::nullopt}));
    }

    // The record follows the file written, here under the suffix the server gives now: a later run finds it,
    // and removal takes it.
    void aRecordWhoseFileWentIsFetchedAgainUnderItsNewSuffix()
    {
        rig->serveAlbum(u"A"_s, numberedSongs(2));
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        DownloadedSong expected = store->manifest().songs.value(u"s1"_s);
        QVERIFY(QFile::remove(rig->songFile(u"s1"_s)));
        const Song reencoded = testSong(u"s1"_s, 1, u"flac"_s);
        rig->servePlaylist(u"P"_s, {reencoded});
        rig->server.clearLog();

        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);
        QCOMPARE(rig->requestedSongs(), QStringList{u"s1"_s});
        QCOMPARE(rig->contentOf(u"s1"_s, u"flac"_s), audioOf(u"s1"_s));
        expected.owners.insert(playlistKey);
        expected.suffix = u"flac"_s;
        QCOMPARE(store->manifest().songs.value(u"s1"_s), expected);

        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);
        QCOMPARE(rig->requestedSongs(), QStringList{u"s1"_s});
        store->removeDownload(albumKey);
        store->removeDownload(playlistKey);
        QCOMPARE(rig->songsOnDisk({u"s1"_s, u"s2"_s}), QStringList());
    }

    void aSongWithoutUsableSuffixIsStoredAsAudio()
    {
        const QList<Song> songs{testSong(u"bare"_s, 1, std::nullopt), testSong(u"odd"_s, 2, u"../x"_s)};
        rig->serveAlbum(u"A"_s, songs);
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        for (const Song &song : songs) {
            QCOMPARE(store->manifest().songs.value(song.id).suffix, u"audio"_s);
            QCOMPARE(rig->contentOf(song.id, u"audio"_s), audioOf(song.id));
        }
        QCOMPARE(QDir(rig->root.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{QFileInfo(rig->directory()).fileName()});
    }

    void heldCollectionsReadBackOffline()
    {
        QList<Song> songs{testSong(u"b"_s, 2), testSong(u"a"_s, 1), testSong(u"c"_s, 3)};
        songs[1].coverArt = u"cover-1"_s;
        rig->serveAlbum(u"A"_s, songs);
        rig->servePlaylist(u"P"_s, songs.mid(0, 1));
        store->downloadAlbum(testAlbum(u"A"_s));
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(albumKey);
        runToEnd(playlistKey);

        const std::optional<Album> album = store->localAlbum(u"A"_s);
        QVERIFY(album);
        QCOMPARE(idsOf(album->song.value()), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
        QCOMPARE(album->name, u"Album"_s);
        QCOMPARE(album->coverArt, u"cover-1"_s);
        QCOMPARE(album->songCount, qint64(3));
        QCOMPARE(album->duration, qint64(101 + 102 + 103));
        const std::optional<PlaylistDetail> playlist = store->localPlaylist(u"P"_s);
        QVERIFY(playlist);
        QCOMPARE(playlist->name, u"Mix"_s);
        QCOMPARE(idsOf(playlist->entry.value()), QStringList{u"b"_s});
        QCOMPARE(store->downloadedCollections().first().key, albumKey);
        QCOMPARE(store->downloadedCollections().last().key, playlistKey);
        QCOMPARE(store->totalBytes(), 3 * audioOf(u"a"_s).size());
    }
    // One large file per cover, asked for once, shown by the artwork cache from the account's folder.
    void eachCoverIsKeptOnceAtTheLargeSize()
    {
        QCOMPARE(ArtworkFetcher::shared().offlineDirectory(), std::optional<QString>(coverFolder()));
        rig->serveAlbum(u"A"_s, coveredSongs());
        rig->servePlaylist(u"P"_s, coveredSongs().mid(2));
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QCOMPARE(coversAsked(), (QStringList{u"front@1024"_s, u"back@1024"_s}));
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"back"_s}));
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);
        QCOMPARE(coversAsked().size(), 2);
    }

    // A cover that could not be had is fetched at the next start, once; one whose songs went meanwhile is not kept.
    void missedCoversAreFetchedAtTheNextStart()
    {
        rig->serveAlbum(u"A"_s, coveredSongs());
        rig->server.on(u"getCoverArt"_s, FakeResponse{.status = 503, .contentType = "text/plain", .body = "busy"});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QVERIFY(store->isDownloaded(albumKey));
        QCOMPARE(coversOnDisk(), QStringList());

        rig->server.on(u"getCoverArt"_s, [](const RecordedRequest &request) {
            return FakeResponse{.contentType = "image/png", .body = DownloadRig::coverOf(request.value(u"id"_s)),
                                .delayMs = 100};
        });
        restart();
        QCOMPARE(coversAsked().size(), 2);
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"back"_s}));
        restart();
        QCOMPARE(coversAsked(), QStringList());

        QVERIFY(QDir(coverFolder()).removeRecursively());
        store.reset();
        store = rig->makeStore();
        QTRY_VERIFY(!coversAsked().isEmpty());
        store->removeDownload(albumKey);
        QTRY_VERIFY(!store->isSweepingArtwork());
        QVERIFY(QDir(coverFolder()).isEmpty());
    }

    void aCoverGoesWithTheLastSongThatUsesIt()
    {
        QList<Song> playlist = coveredSongs().mid(1, 1); // s2, "front", shared with the album
        Song own = testSong(u"p1"_s, 9);
        own.coverArt = u"other"_s;
        playlist.append(own);
        rig->serveAlbum(u"A"_s, coveredSongs());
        rig->servePlaylist(u"P"_s, playlist);
        store->downloadAlbum(testAlbum(u"A"_s));
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        QTRY_VERIFY(store->runningKeys().isEmpty());
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"back"_s, u"other"_s}));
        store->removeDownload(albumKey);
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"other"_s}));
        store->removeDownload(playlistKey);
        QVERIFY(QDir(coverFolder()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(DownloadRunTest)
#include "tst_downloadrun.moc"
