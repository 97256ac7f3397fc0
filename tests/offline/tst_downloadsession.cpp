// The download store follows the signed-in account: one per client, gone at sign-out, and a download begun
// before sign-out still finishes and is found again at the next sign-in.

#include "artwork/artworkfetcher.h"
#include "awaittask.h"
#include "downloadtesthelpers.h"
#include "offline/manifestfile.h"
#include "server/appstate.h"

#include <QPointer>
#include <QSettings>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

class DownloadSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDownloadOutlivesSignOutAndIsFoundAtTheNextSignIn()
    {
        DownloadRig rig;
        rig.server.on(u"ping"_s, FakeSubsonicServer::json({}));
        rig.serveAlbum(u"A"_s, numberedSongs(3));
        rig.scripted.insert(u"s3"_s,
                            FakeResponse{.contentType = "audio/mpeg", .body = audioOf(u"s3"_s), .delayMs = 300});
        QSettings settings(rig.root.filePath(u"settings.ini"_s), QSettings::IniFormat);
        AppState state(&settings);
        QCOMPARE(state.downloads(), nullptr);

        QSignalSpy changed(&state, &AppState::downloadsChanged);
        awaitTask(state.connect(rig.server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QCOMPARE(changed.count(), 1);
        QPointer<DownloadStore> store = state.downloads();
        QVERIFY(store);
        const QString directory = DownloadLayout::standard().directory(state.client()->config());
        QCOMPARE(store->directory(), directory);
        QCOMPARE(ArtworkFetcher::shared().offlineDirectory(), DownloadLayout::artworkDirectory(directory));

        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_VERIFY(rig.requestedSongs().contains(u"s3"_s));
        state.logout();
        QCOMPARE(state.downloads(), nullptr);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(ArtworkFetcher::shared().offlineDirectory(), std::nullopt);

        // The store lives on for its run, and goes once the run is over.
        QVERIFY(store);
        QTRY_VERIFY(!store);
        QVERIFY(loadManifest(directory).isDownloaded(u"album:A"_s));

        awaitTask(state.connect(rig.server.baseURL().toString(), u"alice"_s, u"pw"_s));
        QVERIFY(state.downloads()->isDownloaded(u"album:A"_s));
        QCOMPARE(state.downloads()->localAlbum(u"A"_s)->song->size(), 3);
    }
};

QTEST_GUILESS_MAIN(DownloadSessionTest)
#include "tst_downloadsession.moc"
