// A bad server or a full disk leaves a failed download, the songs stored before the fault and a manifest that
// reads; never a half file, nor a server's error text kept as a song or a cover.

#include "downloadtesthelpers.h"

#include <QNetworkAccessManager>

#include <csignal>
#include <sys/resource.h>

Q_DECLARE_METATYPE(FakeResponse)

using namespace Qt::StringLiterals;

namespace {
const QStringList ids{u"s1"_s, u"s2"_s, u"s3"_s};

// Files written by this process may grow no larger than `bytes` while it lives: the disk is full for them.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN); // the write fails with EFBIG instead of killing the process
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limited = m_before;
        limited.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};
}

class DownloadFaultsTest : public DownloadTest
{
    Q_OBJECT

    // s2 had the fault: s1 is kept for the retry, nothing of s2 is on disk, and the disk agrees with memory.
    void expectFailedAtTheSecondSong()
    {
        QCOMPARE(store->albumProgress(u"A"_s), (DownloadProgress{.total = 3, .completed = 1, .failed = true}));
        QCOMPARE(rig->songsOnDisk(ids), QStringList{u"s1"_s});
        QCOMPARE(store->manifest().songs.keys(), QStringList{u"s1"_s});
        QVERIFY(!store->isDownloaded(albumKey));
    }

private Q_SLOTS:
    void init()
    {
        DownloadTest::init();
        rig->serveAlbum(u"A"_s, numberedSongs(3));
    }

    void aServerThatDiesMidFileFailsThatSong()
    {
        rig->scripted.insert(u"s2"_s, FakeResponse{.contentType = "audio/mpeg", .body = audioOf(u"s2"_s),
                                                   .dropAfterBytes = 30'000});
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        expectFailedAtTheSecondSong();
        QCOMPARE(loadManifest(store->directory()), store->manifest());
        QCOMPARE(rig->requestedSongs(), (QStringList{u"s1"_s, u"s2"_s}));
    }

    // Answers with a success status that are no song fail it, and nothing of them is kept; a song's own bytes
    // are kept whatever their type says.
    void aSuccessIsASongOnlyWhenItCarriesOne_data()
    {
        const QByteArray error = FakeSubsonicServer::failed(70, u"Song not found"_s);
        QTest::addColumn<FakeResponse>("answer");
        QTest::addColumn<qint64>("statedSize"); // 0: none
        QTest::addColumn<bool>("kept");
        const auto row = [](const char *name, FakeResponse answer, qint64 size = 0, bool kept = false) {
            QTest::newRow(name) << answer << size << kept;
        };
        row("json", FakeResponse{.contentType = "application/json", .body = error});
        row("xml dialect", FakeResponse{.contentType = "Application/problem+XML; charset=UTF-8", .body = "<error/>"});
        row("error as audio", FakeResponse{.contentType = "audio/flac", .body = error});
        row("error as text", FakeResponse{.contentType = "text/plain", .body = " \n" + error});
        row("error untyped", FakeResponse{.contentType = {}, .body = error});
        row("html page", FakeResponse{.contentType = "application/octet-stream", .body = "<!DOCTYPE html><p>Bad"});
        row("no content", FakeResponse{.status = 204, .contentType = {}});
        row("empty", FakeResponse{.contentType = "audio/mpeg"});
        row("unasked part", FakeResponse{.status = 206, .contentType = "audio/mpeg", .body = audioOf(u"s2"_s)});
        row("far under its size", audioAnswer(audioOf(u"s2"_s)), 1024 * 1024);
        row("far over its size", audioAnswer(audioOf(u"s2"_s, 4 * 1024 * 1024)), 1024 * 1024);
        row("untyped song", FakeResponse{.contentType = {}, .body = audioOf(u"s2"_s)}, 0, true);
        row("transcoded smaller", audioAnswer(audioOf(u"s2"_s)), 200 * 1024, true);
    }

    void aSuccessIsASongOnlyWhenItCarriesOne()
    {
        QFETCH(FakeResponse, answer);
        QFETCH(qint64, statedSize);
        QFETCH(bool, kept);
        QList<Song> songs = numberedSongs(3);
        if (statedSize > 0)
            songs[1].size = statedSize;
        rig->serveAlbum(u"A"_s, songs);
        rig->scripted.insert(u"s2"_s, answer);
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        if (kept)
            QCOMPARE(rig->contentOf(u"s2"_s), answer.body);
        else
            expectFailedAtTheSecondSong();
    }

    // Only bytes that decode as an image are kept: a file that exists is never fetched again.
    void onlyRealImagesAreKeptAsCovers()
    {
        const QByteArray error = FakeSubsonicServer::failed(70, u"Cover not found"_s);
        const QHash<QString, FakeResponse> answers{
            {u"json"_s, FakeResponse{.body = error}},
            {u"as png"_s, FakeResponse{.contentType = "image/png", .body = error}},
            {u"untyped"_s, FakeResponse{.contentType = {}, .body = error}},
            {u"broken"_s, FakeResponse{.contentType = "image/png", .body = DownloadRig::coverOf(u"x"_s).left(30)}},
            {u"kept"_s, FakeResponse{.contentType = "image/png", .body = DownloadRig::coverOf(u"kept"_s)}},
        };
        QList<Song> songs = numberedSongs(5);
        for (qsizetype i = 0; i < songs.size(); ++i)
            songs[i].coverArt = answers.keys().at(i);
        rig->serveAlbum(u"A"_s, songs);
        rig->server.on(u"getCoverArt"_s, [&answers](const RecordedRequest &request) {
            return answers.value(request.value(u"id"_s));
        });
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        const QString covers = DownloadLayout::artworkDirectory(rig->directory());
        QCOMPARE(QDir(covers).entryList(QDir::Files), QStringList{DownloadLayout::coverFileName(u"kept"_s)});
        QVERIFY(store->isDownloaded(albumKey)); // a missing cover is no failure of the album
    }

    // Qt's own clock restarts with every byte; a song that trickles in is stopped by the floor rate.
    void aTricklingSongIsStoppedAsTooSlow()
    {
        QNetworkAccessManager impatient;
        impatient.setTransferTimeout(500);
        store.reset();
        store = DownloadStore::create(SubsonicClient(rig->client.config(), &impatient), DownloadLayout(rig->root.path()));
        rig->scripted.insert(u"s2"_s, FakeResponse{.contentType = "audio/mpeg", .body = audioOf(u"s2"_s), .trickleMs = 50});
        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!store->isRunning(albumKey), 3000);
        expectFailedAtTheSecondSong();
    }

    void aFullDiskFailsTheSongAndLeavesTheManifestReadable()
    {
        // An album already held, so that the manifest on disk has something to lose.
        rig->serveAlbum(u"B"_s, numberedSongs(6, 10));
        store->downloadAlbum(testAlbum(u"B"_s));
        QTRY_VERIFY(store->isDownloaded(u"album:B"_s) && !store->isRunning(u"album:B"_s));
        const QString manifestPath = DownloadLayout::manifestPath(rig->directory());
        const QByteArray manifestBefore = readFile(manifestPath);
        rig->scripted.insert(u"s1"_s, audioAnswer(audioOf(u"s1"_s, 100)));

        {
            // s1 fits, s2 does not, and neither does any larger manifest.
            FileSizeLimit full(manifestBefore.size());
            store->downloadAlbum(testAlbum(u"A"_s));
            runToEnd(albumKey);
        }
        QCOMPARE(store->albumProgress(u"A"_s), (DownloadProgress{.total = 3, .completed = 1, .failed = true}));
        QCOMPARE(readFile(manifestPath), manifestBefore);
        QVERIFY(loadManifest(rig->directory()).isDownloaded(u"album:B"_s));
        QVERIFY(store->manifest().songs.value(u"s1"_s).owners.contains(albumKey));
        const QStringList held = idsOf(numberedSongs(6, 10));
        QCOMPARE(rig->songsOnDisk(ids + held), QStringList{u"s1"_s} + held);
        QCOMPARE(QFileInfo(rig->songFile(u"s1"_s)).size(), 100);

        // Space again: the retry finishes, and the disk holds what memory holds.
        store->downloadAlbum(testAlbum(u"A"_s));
        runToEnd(albumKey);
        QVERIFY(store->isDownloaded(albumKey));
        QCOMPARE(loadManifest(rig->directory()), store->manifest());
        QCOMPARE(rig->contentOf(u"s2"_s), audioOf(u"s2"_s));
    }
};

QTEST_GUILESS_MAIN(DownloadFaultsTest)
#include "tst_downloadfaults.moc"
