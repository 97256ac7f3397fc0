// Covers of downloaded songs: fetched once per id at the large size, filled in at the next start when missed,
// and gone with the last song that uses it.

#include "artwork/artworkfetcher.h"
#include "downloadtesthelpers.h"

using namespace Qt::StringLiterals;

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

class DownloadArtworkTest : public DownloadTest
{
    Q_OBJECT

    [[nodiscard]] QString coverFolder() const { return DownloadLayout::artworkDirectory(rig->directory()); }

    [[nodiscard]] QStringList coversOnDisk() const
    {
        QStringList covers;
        for (const QString &id : {u"front"_s, u"back"_s, u"other"_s}) {
            QFile file(coverFolder() + u'/' + DownloadLayout::coverFileName(id));
            if (file.open(QIODevice::ReadOnly) && file.readAll() == DownloadRig::coverOf(id))
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
    }

    static FakeResponse coverAnswer(const RecordedRequest &request)
    {
        return FakeResponse{.contentType = "image/jpeg", .body = DownloadRig::coverOf(request.value(u"id"_s))};
    }

private Q_SLOTS:
    void eachCoverIsFetchedOnceAtTheLargeSize()
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

    void missedCoversAreFetchedAtTheNextStart()
    {
        rig->serveAlbum(u"A"_s, coveredSongs());
        rig->server.on(u"getCoverArt"_s, FakeResponse{.status = 503, .contentType = "text/plain", .body = "busy"});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QVERIFY(store->isDownloaded(u"album:A"_s));
        QCOMPARE(coversOnDisk(), QStringList());

        rig->server.on(u"getCoverArt"_s, coverAnswer);
        restart();
        QTRY_VERIFY(!store->isSweepingArtwork());
        QCOMPARE(sorted(coversAsked()), (QStringList{u"back@1024"_s, u"front@1024"_s}));
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"back"_s}));

        restart();
        QTRY_VERIFY(!store->isSweepingArtwork());
        QCOMPARE(coversAsked(), QStringList());
    }

    void aCoverArrivingAfterItsSongsWentIsNotKept()
    {
        rig->serveAlbum(u"A"_s, coveredSongs());
        rig->server.on(u"getCoverArt"_s, FakeResponse{.status = 404, .contentType = "text/plain"});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        rig->server.on(u"getCoverArt"_s, [](const RecordedRequest &request) {
            FakeResponse answer = coverAnswer(request);
            answer.delayMs = 200;
            return answer;
        });
        restart();
        QTRY_VERIFY(!coversAsked().isEmpty());
        store->removeDownload(u"album:A"_s);
        QTRY_VERIFY(!store->isSweepingArtwork());
        QVERIFY(!coversAsked().isEmpty());
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

        store->removeDownload(u"album:A"_s);
        QCOMPARE(coversOnDisk(), (QStringList{u"front"_s, u"other"_s}));
        store->removeDownload(u"playlist:P"_s);
        QVERIFY(QDir(coverFolder()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(DownloadArtworkTest)
#include "tst_downloadartwork.moc"
