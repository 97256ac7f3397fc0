// A download killed with SIGKILL (in a child process, this program run with "--download-child"): the next
// start finds a readable manifest of whole songs only and no half files, and fetches only what is missing.

#include "downloadtesthelpers.h"
#include "server/json.h"

#include <QJsonDocument>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace {
const QString childFlag = u"--download-child"_s;

int runChild(const QString &root, const QUrl &server)
{
    const SubsonicClient client(ServerConfig{server, u"alice"_s, u"pw"_s});
    const std::shared_ptr<DownloadStore> store = DownloadStore::create(client, DownloadLayout(root));
    store->downloadAlbum(testAlbum(u"A"_s));
    return QCoreApplication::exec();
}
}

class DownloadCrashTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<DownloadRig> rig;
    QProcess child;

    void startChild()
    {
        child.setProcessChannelMode(QProcess::ForwardedChannels);
        child.start(QCoreApplication::applicationFilePath(),
                    {childFlag, rig->root.path(), rig->server.baseURL().toString()});
        QVERIFY(child.waitForStarted());
    }

    void killChild()
    {
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    }

private Q_SLOTS:
    void init()
    {
        rig = std::make_unique<DownloadRig>();
        rig->serveAlbum(u"A"_s, numberedSongs(4));
    }

    void cleanup()
    {
        if (child.state() != QProcess::NotRunning)
            killChild();
        rig.reset();
    }

    void killedMidFileTheNextStartFindsOnlyFinishedSongs()
    {
        rig->scripted.insert(u"s3"_s, stalledAudio(u"s3"_s));
        startChild();
        QTRY_COMPARE(rig->partialFileSizes(), QList<qint64>{20'000});
        killChild();

        const std::shared_ptr<DownloadStore> store = rig->makeStore();
        QStringList held = store->manifest().songs.keys();
        held.sort();
        QCOMPARE(held, (QStringList{u"s1"_s, u"s2"_s}));
        QCOMPARE(store->manifest().songs.value(u"s2"_s).owners, QSet<QString>{albumKey});
        QCOMPARE(store->state(albumKey, idsOf(numberedSongs(4))), CollectionDownloadState::partial(2, 4));
        QVERIFY(!store->isDownloaded(albumKey));
        QCOMPARE(rig->songsOnDisk(idsOf(numberedSongs(4))), (QStringList{u"s1"_s, u"s2"_s}));
        QCOMPARE(rig->contentOf(u"s2"_s), audioOf(u"s2"_s));

        rig->scripted.clear();
        rig->server.clearLog();
        store->downloadAlbum(testAlbum(u"A"_s));
        QTRY_VERIFY(!store->isRunning(albumKey));
        QVERIFY(store->isDownloaded(albumKey));
        QCOMPARE(rig->requestedSongs(), (QStringList{u"s3"_s, u"s4"_s}));
    }

    // Killed at any point: every song the manifest lists has its whole file.
    void killedAnywhereTheManifestListsOnlyWholeSongs_data()
    {
        QTest::addColumn<int>("filesAsked");
        for (int asked = 1; asked <= 12; asked += 2)
            QTest::addRow("after %d files asked", asked) << asked;
    }

    void killedAnywhereTheManifestListsOnlyWholeSongs()
    {
        QFETCH(int, filesAsked);
        const QList<Song> songs = numberedSongs(16);
        rig->serveAlbum(u"A"_s, songs);
        startChild();
        QTRY_VERIFY(rig->server.count(u"download"_s) >= filesAsked);
        killChild();

        QFile file(DownloadLayout::manifestPath(rig->directory()));
        if (file.open(QIODevice::ReadOnly)) {
            const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
            QVERIFY(document.isObject());
            const DownloadManifest manifest = DownloadManifest::fromJson(document.object());
            for (const DownloadedSong &stored : manifest.songs)
                QCOMPARE(rig->contentOf(stored.song.id), audioOf(stored.song.id));
        }
        const std::shared_ptr<DownloadStore> store = rig->makeStore();
        QTRY_COMPARE(rig->songsOnDisk(idsOf(songs)).filter(QString(partialFilePrefix)), QStringList());
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (app.arguments().value(1) == childFlag)
        return runChild(app.arguments().value(2), QUrl(app.arguments().value(3)));
    DownloadCrashTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_downloadcrash.moc"
