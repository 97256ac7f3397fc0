// What the offline store keeps on disk, apart from any download: where each file lies and what the manifest
// says of it. No answer from a server can name a path outside the account's folder.

#include "offline/downloadlayout.h"
#include "offline/downloadmanifest.h"
#include "offline/manifestfile.h"
#include "offline/offlinefilename.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString album = u"album:A"_s;
const QString playlist = u"playlist:P"_s;
const ServerConfig alice{QUrl(u"https://music.example.org"_s), u"alice"_s, u"pw"_s};

Song song(const QString &id, std::optional<qint64> disc = {}, std::optional<qint64> track = {}, QString title = {})
{
    return Song{.id = id, .title = title.isEmpty() ? id : title, .track = track, .discNumber = disc};
}

Song withSuffix(const QString &id, std::optional<QString> suffix)
{
    return Song{.id = id, .title = id, .suffix = std::move(suffix)};
}

DownloadedSong stored(const Song &s, qint64 bytes, const QSet<QString> &owners, const QString &suffix = u"mp3"_s)
{
    return DownloadedSong{s, suffix, bytes, owners};
}

// Album A holds a, s; playlist P holds s, p; x belongs to an aborted download of album X.
DownloadManifest sharedManifest()
{
    DownloadManifest m;
    m.songs.insert(u"a"_s, stored(song(u"a"_s, 1, 1), 100, {album}));
    m.songs.insert(u"s"_s, stored(song(u"s"_s, 1, 2), 200, {album, playlist}, u"flac"_s));
    m.songs.insert(u"p"_s, stored(song(u"p"_s, 1, 1), 400, {playlist}));
    m.songs.insert(u"x"_s, stored(song(u"x"_s), 800, {u"album:X"_s}));
    m.collections.insert(album, DownloadCollection{album, u"Album"_s, u"Artist"_s});
    m.collections.insert(playlist, DownloadCollection{playlist, u"Mix"_s, std::nullopt});
    return m;
}

QStringList ids(const QList<Song> &songs)
{
    QStringList result;
    for (const Song &s : songs)
        result.append(s.id);
    return result;
}

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}
}

class DownloadFilesTest : public QObject
{
    Q_OBJECT

    QTemporaryDir root;

    [[nodiscard]] DownloadLayout layout() const { return DownloadLayout(root.path()); }
    [[nodiscard]] QString serverDir() const { return layout().directory(alice); }

    [[nodiscard]] std::optional<QString> found(const Song &song) const
    {
        const std::optional<QUrl> url = layout().localFileURL(song, alice);
        return url ? std::optional(QFileInfo(url->toLocalFile()).fileName()) : std::nullopt;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(QDir().mkpath(serverDir())); }

    // Names on disk are SHA-256 digests, so files written by one version are found by the next.
    void oneFolderPerAccountNamedByItsKey()
    {
        QCOMPARE(offlineFileName(u"é"), u"4a99557e4033c3539de2eb65472017cad5f9557f7a0625a09f1c3f6e2ba69c4c"_s);
        QCOMPARE(QFileInfo(serverDir()).fileName(), offlineFileName(u"alice@https://music.example.org"));
        // The password does not enter, so signing in again finds the same downloads.
        QCOMPARE(layout().directory(ServerConfig{alice.baseURL, u"alice"_s, u"new"_s}), serverDir());
        QVERIFY(layout().directory(ServerConfig{QUrl(u"https://other.example.org"_s), u"alice"_s, u"pw"_s})
                != serverDir());
    }

    void onlyShortAsciiSuffixesAreKept()
    {
        QCOMPARE(DownloadLayout::storedSuffix(u"FLAC"_s), u"FLAC"_s);
        QCOMPARE(DownloadLayout::storedSuffix(u"abcdefghij"_s), u"abcdefghij"_s);
        for (const std::optional<QString> &suffix : QList<std::optional<QString>>{
                 std::nullopt, u""_s, u"abcdefghijk"_s, u"../x"_s, u"m/p3"_s, u".mp3"_s, u"mp3 "_s, u"mp\u00b3"_s,
                 u"\u0663"_s, u"a\0b"_s})
            QCOMPARE(DownloadLayout::storedSuffix(suffix), u"audio"_s);
    }

    void songFilesAreFoundFromTheDiskAlone()
    {
        const QString hash = offlineFileName(u"s1");
        QCOMPARE(found(withSuffix(u"s1"_s, u"flac"_s)), std::nullopt);
        touch(serverDir() + u'/' + hash + u".flac"_s);
        // The server changed the suffix since, or sends none: the file is still found by its hash.
        for (const std::optional<QString> &suffix : {std::optional(u"flac"_s), std::optional(u"mp3"_s),
                                                     std::optional<QString>()})
            QCOMPARE(found(withSuffix(u"s1"_s, suffix)), hash + u".flac"_s);
        touch(serverDir() + u'/' + offlineFileName(u"s2"));
        QCOMPARE(found(withSuffix(u"s2"_s, u""_s)), offlineFileName(u"s2"));

        // A name that merely starts with the hash, or a folder of that name, is not the song's file.
        const QString other = offlineFileName(u"s3");
        touch(serverDir() + u'/' + other + u"x.mp3"_s);
        QVERIFY(QDir(serverDir()).mkdir(other + u".mp3"_s));
        QCOMPARE(found(withSuffix(u"s3"_s, u"mp3"_s)), std::nullopt);
    }

    void hostileSuffixStaysInsideTheServerFolder()
    {
        const QString hash = offlineFileName(u"evil");
        // Used as it came, this suffix would name "<root>/escaped.mp3", outside the account's folder.
        const QString hostile = u"/../../escaped.mp3"_s;
        QVERIFY(QDir(serverDir()).mkdir(hash + u"."_s));
        touch(root.path() + u"/escaped.mp3"_s);
        QVERIFY(QFileInfo(serverDir() + u'/' + hash + u'.' + hostile).isFile());
        QCOMPARE(DownloadLayout::songFileName(u"evil"_s, hostile), hash + u".audio"_s);
        QCOMPARE(found(withSuffix(u"evil"_s, hostile)), std::nullopt);
        touch(serverDir() + u'/' + hash + u".audio"_s);
        QCOMPARE(found(withSuffix(u"evil"_s, hostile)), hash + u".audio"_s);
    }

    // A shared song is held until its last owner goes; sizes count it in full for each collection, once in all.
    void ownersSharingAndSizes()
    {
        DownloadManifest m = sharedManifest();
        QCOMPARE(m.bytesOwnedBy(album), 300);
        QCOMPARE(m.bytesOwnedBy(playlist), 600);
        QCOMPARE(m.totalBytes(), 1500);
        QVERIFY(m.removeOwner(u"album:nobody"_s).isEmpty());
        QVERIFY((m.removeOwner(u"album:X"_s) == QList<ReleasedSongFile>{{u"x"_s, u"mp3"_s}}));
        QVERIFY((m.removeOwner(album) == QList<ReleasedSongFile>{{u"a"_s, u"mp3"_s}}));
        QCOMPARE(m.songs.value(u"s"_s).owners, QSet<QString>{playlist});

        // Sizes from a hostile file stop at the end of the range rather than wrap into nonsense.
        DownloadManifest huge;
        for (const QString &id : {u"1"_s, u"2"_s})
            huge.songs.insert(id, stored(song(id, 1, 1), std::numeric_limits<qint64>::max() / 2 + 1, {album}));
        QCOMPARE(huge.totalBytes(), std::numeric_limits<qint64>::max());
        QCOMPARE(huge.bytesOwnedBy(album), std::numeric_limits<qint64>::max());
    }

    void songsComeInDiscTrackTitleOrder()
    {
        DownloadManifest m;
        const QList<Song> songs{song(u"d2t1"_s, 2, 1), song(u"d1t2"_s, 1, 2), song(u"bare-b"_s, {}, {}, u"b"_s),
                                song(u"d1t1-Z"_s, 1, 1, u"Z"_s), song(u"bare-B"_s, {}, {}, u"B"_s),
                                song(u"d1t1-a"_s, 1, 1, u"a"_s), song(u"notrack"_s, 1, {}, u"x"_s)};
        for (const Song &s : songs)
            m.songs.insert(s.id, stored(s, 1, {album}));
        // Absent disc and track count as 0; titles compare case-sensitively, so "B" before "b", "Z" before "a".
        QCOMPARE(ids(m.songsOwnedBy(album)),
                 (QStringList{u"bare-B"_s, u"bare-b"_s, u"notrack"_s, u"d1t1-Z"_s, u"d1t1-a"_s, u"d1t2"_s, u"d2t1"_s}));
    }

    void collectionState()
    {
        const DownloadManifest m = sharedManifest();
        using State = CollectionDownloadState;
        QCOMPARE(m.state(album, {u"a"_s, u"s"_s}), State::complete());
        // Complete by its songs even without an entry: the aborted download whose last song landed.
        QCOMPARE(m.state(u"album:X"_s, {u"x"_s}), State::complete());
        QCOMPARE(m.state(album, {u"a"_s, u"s"_s, u"new"_s}), State::partial(2, 3));
        // Duplicates count each time; "p" is stored but not for the album.
        QCOMPARE(m.state(album, {u"a"_s, u"a"_s, u"p"_s}), State::partial(2, 3));
        // Entered, but the server's list was replaced by songs it does not hold.
        QCOMPARE(m.state(album, {u"p"_s, u"new"_s}), State::partial(0, 2));
        QCOMPARE(m.state(u"album:none"_s, {u"a"_s}), State::none());
        QCOMPARE(m.state(album, {}), State::complete());
        QCOMPARE(m.state(u"album:X"_s, {}), State::none());
    }

    // Saved in one step and read back whole; anything unreadable reads as empty and is left for the next save.
    void theManifestFileSavesAtomicallyAndLoadsTolerantly()
    {
        const QString dir = root.path() + u"/deep/server"_s;
        QCOMPARE(loadManifest(dir), DownloadManifest());
        QVERIFY(saveManifest(sharedManifest(), dir));
        QCOMPARE(QDir(dir).entryList(QDir::Files), QStringList{u"manifest.json"_s});
        QCOMPARE(loadManifest(dir), sharedManifest());
        QVERIFY(!sharedManifest().toJson()[u"collections"_s][playlist].toObject().contains(u"subtitle"_s));

        const QList<QByteArray> unusable{
            "{\"songs\":{", "[]", "", "{\"songs\":{}}",
            "{\"songs\":{\"1\":{\"song\":{\"id\":\"1\",\"title\":\"T\"},\"suffix\":\"mp3\",\"bytes\":\"5\","
            "\"owners\":[\"album:A\"]}},\"collections\":{}}",
            "{\"songs\":{},\"collections\":{\"k\":{\"key\":\"k\",\"name\":\"n\",\"subtitle\":3}}}",
            // A song nobody owns would never be released.
            "{\"songs\":{\"1\":{\"song\":{\"id\":\"1\",\"title\":\"T\"},\"suffix\":\"mp3\",\"bytes\":5,"
            "\"owners\":[]}},\"collections\":{}}",
        };
        for (const QByteArray &bytes : unusable) {
            QFile file(DownloadLayout::manifestPath(dir));
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(bytes);
            file.close();
            QCOMPARE(loadManifest(dir), DownloadManifest());
            QVERIFY(QFile::exists(DownloadLayout::manifestPath(dir)));
        }
    }
};

QTEST_GUILESS_MAIN(DownloadFilesTest)
#include "tst_downloadfiles.moc"
