#include "server/format.h"
#include "server/json.h"
#include "server/records.h"

#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
QJsonObject parse(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

template<typename T>
bool decodes(const QByteArray &json)
{
    try {
        T::fromJson(parse(json));
        return true;
    } catch (const Json::DecodeError &) {
        return false;
    }
}
}

class RecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void minimalSongRoundTripsWithOnlyItsKeys()
    {
        const Song song = Song::fromJson(parse(R"({"id":"s1","title":"Hello","unknown":42})"));
        QCOMPARE(song.id, u"s1"_s);
        QVERIFY(!song.track && !song.album && !song.duration);
        QCOMPARE(song.toJson(), parse(R"({"id":"s1","title":"Hello"})"));
        QCOMPARE(song.artistName(), QString());
        QCOMPARE(song.durationSeconds(), 0);
    }

    void fullSongRoundTrips()
    {
        const QJsonObject json = parse(R"({"id":"s1","title":"T","album":"A","albumId":"a1","artist":"R",
            "artistId":"r1","track":3,"discNumber":2,"year":1999,"duration":212,"contentType":"audio/flac",
            "suffix":"flac","coverArt":"c1"})");
        const Song song = Song::fromJson(json);
        QCOMPARE(song.track, 3);
        QCOMPARE(song.toJson(), json);
        QCOMPARE(Song::fromJson(song.toJson()), song);
    }

    void wrongTypesFailEvenWhenOptional_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("decodes");
        QTest::newRow("track as text") << R"({"id":"s","title":"t","track":"1"})"_ba << false;
        QTest::newRow("fractional duration") << R"({"id":"s","title":"t","duration":212.5})"_ba << false;
        QTest::newRow("numeric id") << R"({"id":7,"title":"t"})"_ba << false;
        QTest::newRow("boolean title") << R"({"id":"s","title":true})"_ba << false;
        QTest::newRow("missing title") << R"({"id":"s"})"_ba << false;
        QTest::newRow("null title") << R"({"id":"s","title":null})"_ba << false;
        QTest::newRow("null track is absent") << R"({"id":"s","title":"t","track":null})"_ba << true;
        QTest::newRow("integral float") << R"({"id":"s","title":"t","duration":212.0})"_ba << true;
        QTest::newRow("huge number") << R"({"id":"s","title":"t","year":1e300})"_ba << false;
    }

    void wrongTypesFailEvenWhenOptional()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, decodes);
        QCOMPARE(::decodes<Song>(json), decodes);
    }

    void oneBadElementFailsTheWholeList()
    {
        QVERIFY(!decodes<Album>(R"({"id":"a","name":"n","song":[{"id":"1","title":"ok"},{"id":"2"}]})"));
        QVERIFY(!decodes<Album>(R"({"id":"a","name":"n","song":{"id":"1","title":"not a list"}})"));
    }

    void absentAndEmptyListsStayApart()
    {
        const PlaylistDetail absent = PlaylistDetail::fromJson(parse(R"({"id":"p","name":"n"})"));
        const PlaylistDetail empty = PlaylistDetail::fromJson(parse(R"({"id":"p","name":"n","entry":[]})"));
        QVERIFY(!absent.entry.has_value());
        QVERIFY(empty.entry.has_value() && empty.entry->isEmpty());
        QVERIFY(!absent.toJson().contains("entry"_L1));
        QCOMPARE(empty.toJson().value("entry"_L1).toArray().size(), 0);

        const SearchResult nothing = SearchResult::fromJson(QJsonObject());
        QVERIFY(!nothing.artist && !nothing.album && !nothing.song);
    }

    void artistIndexRequiresItsArtists()
    {
        QVERIFY(decodes<ArtistIndex>(R"({"name":"A","artist":[]})"));
        QVERIFY(!decodes<ArtistIndex>(R"({"name":"A"})"));
        QVERIFY(!decodes<ArtistIndex>(R"({"name":"A","artist":null})"));
    }

    void equalityCoversEveryField()
    {
        Song a{.id = u"1"_s, .title = u"t"_s, .year = 2000};
        Song b = a;
        QCOMPARE(a, b);
        QCOMPARE(qHash(a), qHash(b));
        b.year = 2001;
        QVERIFY(a != b);
        QVERIFY(qHash(a) != qHash(b));

        Album listed{.id = u"a"_s, .name = u"n"_s};
        Album detailed = listed;
        detailed.song = QList<Song>{a};
        QVERIFY(listed != detailed);
    }

    void albumDragText()
    {
        QCOMPARE((Album{.id = u"1"_s, .name = u"B"_s, .artist = u"A"_s}).dragText(), u"A – B"_s);
        QCOMPARE((Album{.id = u"1"_s, .name = u"B"_s}).dragText(), u"B"_s);
    }

    void albumListTypesReadTheirWireNames()
    {
        QCOMPARE(albumListTypeName(AlbumListType::AlphabeticalByArtist), u"alphabeticalByArtist"_s);
        QCOMPARE(albumListTypeFromName(u"highest"), AlbumListType::Highest);
        QCOMPARE(albumListTypeFromName(u"Newest"), std::nullopt);
    }

    void timeFormats()
    {
        QCOMPARE(Format::time(0), u"0:00"_s);
        QCOMPARE(Format::paddedTime(0), u"00:00"_s);
        QCOMPARE(Format::paddedDuration(0), u"00:00"_s);
        QCOMPARE(Format::time(59.5), u"1:00"_s);
        QCOMPARE(Format::time(3725), u"1:02:05"_s);
        QCOMPARE(Format::paddedTime(3725), u"1:02:05"_s);
        QCOMPARE(Format::paddedDuration(3725), u"1:02:05"_s);
        QCOMPARE(Format::paddedTime(65), u"01:05"_s);
        QCOMPARE(Format::time(qQNaN()), u"--:--"_s);
        QCOMPARE(Format::time(qInf()), u"--:--"_s);
        QCOMPARE(Format::time(-1), u"--:--"_s);
        QCOMPARE(Format::time(-0.4), u"0:00"_s);
        QCOMPARE(Format::paddedDuration(std::nullopt), u"--:--"_s);
        QCOMPARE(Format::paddedDuration(-3), u"--:--"_s);
    }
};

QTEST_GUILESS_MAIN(RecordsTest)
#include "tst_records.moc"
