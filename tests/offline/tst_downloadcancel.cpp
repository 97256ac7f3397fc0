// Stopping downloads at every stage: what only the stopped collection held goes; what others hold stays.

#include "downloadtesthelpers.h"

#include <QSemaphore>
#include <QThreadPool>

using namespace Qt::StringLiterals;

namespace {
const QStringList allIds{u"s1"_s, u"s2"_s, u"s3"_s, u"s4"_s};

// Holds the only thread of the global pool, so that work handed to it waits until open() is called.
struct PoolGate {
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    QSemaphore gate;
    bool opened = false;

    PoolGate()
    {
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QThreadPool::globalInstance()->start([this] { gate.acquire(); });
    }
    ~PoolGate()
    {
        open();
        QThreadPool::globalInstance()->setMaxThreadCount(threads);
    }
    void open() { opened || (gate.release(), opened = true); }
};
}

class DownloadCancelTest : public DownloadTest
{
    Q_OBJECT

    const QList<Song> songs = numberedSongs(4);

    // Album A holds s1 and s2; playlist P lists s2, s3 and s4.
    void holdAlbumAndServePlaylist()
    {
        rig->serveAlbum(u"A"_s, songs.mid(0, 2));
        rig->servePlaylist(u"P"_s, songs.mid(1));
        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_VERIFY(store->isDownloaded(albumKey) && !store->isRunning(albumKey));
    }

    // What is left after P stopped: A's songs alone, A's claim on the shared one, no trace of P.
    void expectOnlyTheAlbumHeld()
    {
        QCOMPARE(rig->songsOnDisk(allIds), (QStringList{u"s1"_s, u"s2"_s}));
        QCOMPARE(store->manifest().songs.keys().size(), 2);
        QCOMPARE(store->manifest().songs.value(u"s2"_s).owners, QSet<QString>{albumKey});
        QVERIFY(!store->isDownloaded(playlistKey));
        QVERIFY(!store->playlistProgress(u"P"_s));
        QCOMPARE(loadManifest(store->directory()), store->manifest());
    }

private Q_SLOTS:
    void cancellingRemovesWhatOnlyItHeld_data()
    {
        QTest::addColumn<bool>("midTransfer");
        QTest::newRow("between songs") << false;
        QTest::newRow("during a transfer") << true;
    }

    void cancellingRemovesWhatOnlyItHeld()
    {
        QFETCH(bool, midTransfer);
        holdAlbumAndServePlaylist();
        rig->server.clearLog();
        if (midTransfer) {
            rig->scripted.insert(u"s3"_s, stalledAudio(u"s3"_s));
            store->downloadPlaylist(u"P"_s, u"Mix"_s);
            QTRY_VERIFY(rig->requestedSongs().contains(u"s3"_s));
            QVERIFY(store->isRunning(playlistKey));
            store->removeDownload(playlistKey);
        } else {
            connect(store.get(), &DownloadStore::manifestChanged, this, [this] {
                if (store->manifest().songs.value(u"s3"_s).owners.contains(playlistKey))
                    store->removeDownload(playlistKey);
            });
            store->downloadPlaylist(u"P"_s, u"Mix"_s);
        }
        runToEnd(playlistKey);
        QCOMPARE(rig->requestedSongs(), QStringList{u"s3"_s});
        expectOnlyTheAlbumHeld();
    }

    // Cancelled between a file made whole and its record: the file stays only if another collection records it.
    void aFileFinishedAsTheRunIsCancelledStaysOnlyForARecord_data()
    {
        QTest::addColumn<bool>("heldElsewhere");
        QTest::newRow("no record") << false;
        QTest::newRow("record of another collection") << true;
    }

    void aFileFinishedAsTheRunIsCancelledStaysOnlyForARecord()
    {
        QFETCH(bool, heldElsewhere);
        if (heldElsewhere) {
            holdAlbumAndServePlaylist();
            QVERIFY(QFile::remove(rig->songFile(u"s2"_s)));
        } else {
            rig->servePlaylist(u"P"_s, songs.mid(1));
        }
        {
            PoolGate gate;
            store->downloadPlaylist(u"P"_s, u"Mix"_s);
            // Every byte is in the partial file; making it durable waits for the pool.
            QTRY_COMPARE(rig->partialFileSizes(), QList<qint64>{audioOf(u"s2"_s).size()});
            store->removeDownload(playlistKey);
            gate.open();
            runToEnd(playlistKey);
        }
        QVERIFY(rig->partialFileSizes().isEmpty());
        if (heldElsewhere) {
            QCOMPARE(rig->contentOf(u"s2"_s), audioOf(u"s2"_s));
            expectOnlyTheAlbumHeld();
        } else {
            QCOMPARE(rig->songsOnDisk(allIds), QStringList());
            QVERIFY(store->manifest().songs.isEmpty());
        }
    }

    void removingAFailedDownloadClearsItsFailureAndItsSongs()
    {
        holdAlbumAndServePlaylist();
        rig->scripted.insert(u"s4"_s, FakeResponse{.status = 404, .contentType = "text/plain", .body = "gone"});
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);
        QCOMPARE(store->playlistProgress(u"P"_s), (DownloadProgress{.total = 3, .completed = 2, .failed = true}));
        QCOMPARE(rig->songsOnDisk(allIds), (QStringList{u"s1"_s, u"s2"_s, u"s3"_s}));

        store->removeDownload(playlistKey);
        expectOnlyTheAlbumHeld();
    }

    void stoppingTheCoversKeepsTheCollection()
    {
        QList<Song> covered = songs.mid(0, 2);
        covered[0].coverArt = u"c1"_s;
        rig->serveAlbum(u"A"_s, covered);
        rig->server.on(u"getCoverArt"_s, FakeResponse{.hang = true});
        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_COMPARE(rig->server.count(u"getCoverArt"_s), 1);
        QVERIFY(store->isDownloaded(albumKey) && store->isRunning(albumKey));

        store->removeDownload(albumKey);
        runToEnd(albumKey);
        QVERIFY(store->isDownloaded(albumKey));
        QCOMPARE(rig->songsOnDisk(allIds), (QStringList{u"s1"_s, u"s2"_s}));
        QVERIFY(QDir(DownloadLayout::artworkDirectory(rig->directory())).isEmpty());

        store->removeDownload(albumKey);
        QVERIFY(!store->isDownloaded(albumKey));
        QCOMPARE(rig->songsOnDisk(allIds), QStringList());
    }

    void removingAllDuringADownloadEmptiesTheFolder()
    {
        holdAlbumAndServePlaylist();
        rig->scripted.insert(u"s3"_s, stalledAudio(u"s3"_s));
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        QTRY_VERIFY(rig->requestedSongs().contains(u"s3"_s));
        QVERIFY(QFile(rig->directory() + u"/left behind by an older version"_s).open(QIODevice::WriteOnly));

        store->removeAll();
        const auto expectEmpty = [this] {
            QCOMPARE(QDir(rig->directory()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                     QStringList{u"manifest.json"_s});
            QCOMPARE(loadManifest(store->directory()), DownloadManifest());
            QCOMPARE(store->manifest(), DownloadManifest());
            QVERIFY(store->active().isEmpty());
        };
        expectEmpty();
        QVERIFY(store->runningKeys().isEmpty());

        // Started again before the stopped run has woken: the old run must leave the new one alone.
        rig->scripted.clear();
        store->downloadPlaylist(u"P"_s, u"Mix"_s);
        runToEnd(playlistKey);
        QTest::qWait(50);
        QVERIFY(store->isDownloaded(playlistKey));
        QCOMPARE(rig->songsOnDisk(allIds), (QStringList{u"s2"_s, u"s3"_s, u"s4"_s}));

        store->removeAll();
        QTest::qWait(50);
        expectEmpty();
    }

    // A run stopped while its file is made durable wakes after a new run of the same playlist began; it must
    // not take that run's place or its progress.
    void aRunStoppedByRemoveAllWakesWithoutHarmingItsSuccessor()
    {
        rig->servePlaylist(u"P"_s, songs.mid(1));
        bool progressVanished = false;
        connect(store.get(), &DownloadStore::activeChanged, this, [&] {
            progressVanished |= !store->playlistProgress(u"P"_s) && !store->isDownloaded(playlistKey);
        });
        {
            PoolGate gate;
            store->downloadPlaylist(u"P"_s, u"Mix"_s);
            QTRY_COMPARE(rig->partialFileSizes(), QList<qint64>{audioOf(u"s2"_s).size()});
            store->removeAll();
            progressVanished = false;
            store->downloadPlaylist(u"P"_s, u"Mix"_s);
            // removeAll took the old partial file; this one is the new run's, queued behind the old run's.
            QTRY_COMPARE(rig->partialFileSizes(), QList<qint64>{audioOf(u"s2"_s).size()});
            gate.open();
            runToEnd(playlistKey);
        }
        QVERIFY(!progressVanished);
        QVERIFY(store->isDownloaded(playlistKey));
        QCOMPARE(rig->songsOnDisk(allIds), (QStringList{u"s2"_s, u"s3"_s, u"s4"_s}));
        QCOMPARE(loadManifest(store->directory()), store->manifest());
    }
};

QTEST_GUILESS_MAIN(DownloadCancelTest)
#include "tst_downloadcancel.moc"
