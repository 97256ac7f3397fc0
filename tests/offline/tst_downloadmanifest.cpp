#include "offline/downloadlayout.h"
#include "offline/downloadmanifest.h"
#include "offline/manifestfile.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString album = u"album:A"_s;
const QString playlist = u"playlist:P"_s;

Song song(const QString &id, std::optional<qint64> disc = {}, std::optional<qint64> track = {},
          const QString &title = {})
{
    Song s;
    s.id = id;
    s.title = title.isEmpty() ? id : title;
    s.discNumber = disc;
    s.track = track;
    return s;
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

QJsonObject parse(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}
}

class DownloadManifestTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Store-level tests cover shared songs; here, the owner that never got a collection entry.
    void removingAnOwnerFreesOnlyItsSongs()
    {
        DownloadManifest m = sharedManifest();
        QVERIFY(m.removeOwner(u"album:nobody"_s).isEmpty());
        QCOMPARE(m, sharedManifest());
        QVERIFY((m.removeOwner(u"album:X"_s) == QList<ReleasedSongFile>{{u"x"_s, u"mp3"_s}}));
        QVERIFY((m.removeOwner(album) == QList<ReleasedSongFile>{{u"a"_s, u"mp3"_s}}));
        QCOMPARE(m.songs.value(u"s"_s).owners, QSet<QString>{playlist});
    }

    void bytesCountSharedSongsPerCollectionButOnceInTotal()
    {
        const DownloadManifest m = sharedManifest();
        QCOMPARE(m.bytesOwnedBy(album), 300);
        QCOMPARE(m.bytesOwnedBy(playlist), 600);
        QCOMPARE(m.bytesOwnedBy(u"album:none"_s), 0);
        QCOMPARE(m.totalBytes(), 1500);

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
        const QList<Song> songs{song(u"d2t1"_s, 2, 1),        song(u"d1t2"_s, 1, 2),
                                song(u"bare-b"_s, {}, {}, u"b"_s), song(u"d1t1-Z"_s, 1, 1, u"Z"_s),
                                song(u"bare-B"_s, {}, {}, u"B"_s), song(u"d1t1-a"_s, 1, 1, u"a"_s),
                                song(u"notrack"_s, 1, {}, u"x"_s)};
        for (const Song &s : songs)
            m.songs.insert(s.id, stored(s, 1, {album}));
        m.songs.insert(u"other"_s, stored(song(u"other"_s, 0, 0), 1, {playlist}));

        // Absent disc and track count as 0; titles compare case-sensitively, so "B" before "b", "Z" before "a".
        QCOMPARE(ids(m.songsOwnedBy(album)),
                 (QStringList{u"bare-B"_s, u"bare-b"_s, u"notrack"_s, u"d1t1-Z"_s, u"d1t1-a"_s, u"d1t2"_s, u"d2t1"_s}));
        QCOMPARE(ids(m.songsOwnedBy(playlist)), QStringList{u"other"_s});
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
        // An empty list without an entry is none, even though songs carry the owner.
        QCOMPARE(m.state(u"album:X"_s, {}), State::none());
    }

    void jsonRoundTripLeavesAbsentSubtitleOut()
    {
        const QJsonObject json = sharedManifest().toJson();
        QVERIFY(!json[u"collections"_s][playlist].toObject().contains(u"subtitle"_s));
        QCOMPARE(DownloadManifest::fromJson(parse(QJsonDocument(json).toJson(QJsonDocument::Compact))),
                 sharedManifest());
        const QByteArray extra = R"({"songs":{"1":{"song":{"id":"1","title":"T"},"suffix":"mp3","bytes":5,
            "owners":["album:A"],"extra":1}},"collections":{"album:A":{"key":"album:A","name":"N"}},"version":2})";
        QCOMPARE(DownloadManifest::fromJson(parse(extra)).songs.value(u"1"_s).bytes, 5);
    }

    void fileSavesAtomicallyAndLoadsTolerantly()
    {
        QTemporaryDir root;
        const QString dir = root.path() + u"/deep/server"_s;
        QCOMPARE(loadManifest(dir), DownloadManifest());

        QVERIFY(saveManifest(sharedManifest(), dir));
        QCOMPARE(QDir(dir).entryList(QDir::Files), QStringList{u"manifest.json"_s});
        QCOMPARE(loadManifest(dir), sharedManifest());

        const auto overwrite = [&](const QByteArray &bytes) {
            QFile file(DownloadLayout::manifestPath(dir));
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(bytes);
        };
        const QList<QByteArray> unusable{
            "{\"songs\":{", "[]", "", R"({"songs":{}})", R"({"collections":{}})",
            R"({"songs":{"1":{"song":{"id":"1","title":"T"},"suffix":"mp3","owners":[]}},"collections":{}})",
            R"({"songs":{"1":{"song":{"id":"1","title":"T"},"suffix":"mp3","bytes":"5","owners":[]}},"collections":{}})",
            R"({"songs":{"1":{"song":{"id":"1","title":"T"},"suffix":"mp3","bytes":5,"owners":[1]}},"collections":{}})",
            R"({"songs":{"1":{"song":{"id":"1"},"suffix":"mp3","bytes":5,"owners":[]}},"collections":{}})",
            R"({"songs":{},"collections":{"k":{"key":"k"}}})",
            R"({"songs":{},"collections":{"k":{"key":"k","name":"n","subtitle":3}}})",
            // A song nobody owns would never be released.
            R"({"songs":{"1":{"song":{"id":"1","title":"T"},"suffix":"mp3","bytes":5,"owners":[]}},"collections":{}})",
        };
        for (const QByteArray &bytes : unusable) {
            overwrite(bytes);
            QCOMPARE(loadManifest(dir), DownloadManifest());
            QVERIFY(QFile::exists(DownloadLayout::manifestPath(dir))); // left for the next save to replace
        }
        QVERIFY(saveManifest(sharedManifest(), dir));
        QCOMPARE(loadManifest(dir), sharedManifest());
    }
};

QTEST_GUILESS_MAIN(DownloadManifestTest)
#include "tst_downloadmanifest.moc"
