// The download store follows the signed-in account. A download begun before sign-out still finishes; signing in
// again meanwhile takes up the same store rather than a second one on the same folder, so both downloads land
// in one manifest. The covers of the account stay reachable in between.

#include "artwork/artworkfetcher.h"
#include "awaittask.h"
#include "downloadtesthelpers.h"
#include "offline/manifestfile.h"
#include "server/appstate.h"

#include <QPointer>
#include <QSettings>

using namespace Qt::StringLiterals;

class DownloadSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void signingOutAndInDuringADownloadKeepsOneStore()
    {
        DownloadRig rig;
        rig.server.on(u"ping"_s, FakeSubsonicServer::json({}));
        rig.serveAlbum(u"A"_s, numberedSongs(3));
        rig.serveAlbum(u"B"_s, numberedSongs(2, 10));
        rig.scripted.insert(u"s3"_s,
                            FakeResponse{.contentType = "audio/mpeg", .body = audioOf(u"s3"_s), .delayMs = 500});
        QSettings settings(rig.root.filePath(u"settings.ini"_s), QSettings::IniFormat);
        AppState state(&settings);
        awaitTask(state.connect(rig.server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QPointer<DownloadStore> store = state.downloads();
        const QString directory = DownloadLayout::standard().directory(state.client()->config());
        const QString covers = DownloadLayout::artworkDirectory(directory);
        QCOMPARE(ArtworkFetcher::shared().offlineDirectory(), covers);

        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_VERIFY(rig.requestedSongs().contains(u"s3"_s));
        state.logout();
        QCOMPARE(state.downloads(), nullptr);
        QCOMPARE(ArtworkFetcher::shared().offlineDirectory(), covers);

        awaitTask(state.connect(rig.server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QCOMPARE(state.downloads(), store.data());
        QVERIFY(store->isRunning(albumKey));
        store->downloadAlbum(testAlbum(u"B"_s));
        QTRY_VERIFY(store->runningKeys().isEmpty());
        const DownloadManifest onDisk = loadManifest(directory);
        QVERIFY(onDisk.isDownloaded(albumKey));
        QVERIFY(onDisk.isDownloaded(u"album:B"_s));
        QCOMPARE(QDir(directory).entryList(QDir::Files).size(), 5 + 1); // and the manifest

        // Once nothing holds it, the store goes, and the next sign-in finds its downloads from the disk.
        state.logout();
        QTRY_VERIFY(!store);
        awaitTask(state.connect(rig.server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QCOMPARE(state.downloads()->localAlbum(u"A"_s)->song->size(), 3);
    }
};

QTEST_GUILESS_MAIN(DownloadSessionTest)
#include "tst_downloadsession.moc"
