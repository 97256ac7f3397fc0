#include "library/connectionfault.h"
#include "server/format.h"
#include "server/json.h"
#include "server/records.h"
#include "server/subsonicerror.h"
#include "server/transporterror.h"

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

template<typename Error>
ConnectionFault classify(const Error &error)
{
    return ConnectionFault::from(std::make_exception_ptr(error));
}
}

// Wire records, display formats, and how failures are classified and worded.
class RecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Keys the record does not know are ignored, and absent optionals stay absent when written back.
    void songsRoundTripWithOnlyTheirKeys()
    {
        const Song minimal = Song::fromJson(parse(R"({"id":"s1","title":"Hello","unknown":42})"));
        QCOMPARE(minimal.toJson(), parse(R"({"id":"s1","title":"Hello"})"));
    }

    void wrongTypesFailEvenWhenOptional_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("decodes");
        QTest::newRow("track as text") << R"({"id":"s","title":"t","track":"1"})"_ba << false;
        QTest::newRow("fractional duration") << R"({"id":"s","title":"t","duration":212.5})"_ba << false;
        QTest::newRow("numeric id") << R"({"id":7,"title":"t"})"_ba << false;
        QTest::newRow("missing title") << R"({"id":"s"})"_ba << false;
        QTest::newRow("null title") << R"({"id":"s","title":null})"_ba << false;
        QTest::newRow("null track is absent") << R"({"id":"s","title":"t","track":null})"_ba << true;
        QTest::newRow("integral float") << R"({"id":"s","title":"t","duration":212.0})"_ba << true;
        QTest::newRow("huge number") << R"({"id":"s","title":"t","year":1e300})"_ba << false;
        QTest::newRow("just below 64 bits") << R"({"id":"s","title":"t","year":-9223372036854775809})"_ba << false;
        QTest::newRow("just above 64 bits") << R"({"id":"s","title":"t","year":9223372036854775808})"_ba << false;
        QTest::newRow("the 64-bit maximum") << R"({"id":"s","title":"t","year":9223372036854775807})"_ba << true;
    }

    void wrongTypesFailEvenWhenOptional()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, decodes);
        QCOMPARE(::decodes<Song>(json), decodes);
    }

    void listsDecodeStrictly()
    {
        QVERIFY(!decodes<Album>(R"({"id":"a","name":"n","song":[{"id":"1","title":"ok"},{"id":"2"}]})"));
        QVERIFY(!decodes<Album>(R"({"id":"a","name":"n","song":{"id":"1","title":"not a list"}})"));
        QVERIFY(decodes<ArtistIndex>(R"({"name":"A","artist":[]})"));
        QVERIFY(!decodes<ArtistIndex>(R"({"name":"A"})"));
        QVERIFY(!decodes<ArtistIndex>(R"({"name":"A","artist":null})"));

        const PlaylistDetail absent = PlaylistDetail::fromJson(parse(R"({"id":"p","name":"n"})"));
        const PlaylistDetail empty = PlaylistDetail::fromJson(parse(R"({"id":"p","name":"n","entry":[]})"));
        QVERIFY(!absent.entry.has_value());
        QVERIFY(empty.entry.has_value() && empty.entry->isEmpty());
        QVERIFY(!absent.toJson().contains("entry"_L1));
        QCOMPARE(empty.toJson().value("entry"_L1).toArray().size(), 0);
        const SearchResult nothing = SearchResult::fromJson(QJsonObject());
        QVERIFY(!nothing.artist && !nothing.album && !nothing.song);
    }

    // The formats the screens show, with "--:--" for every length that cannot be one.
    void formats()
    {
        QCOMPARE((Album{.id = u"1"_s, .name = u"B"_s, .artist = u"A"_s}).dragText(), u"A – B"_s);
        QCOMPARE(Format::time(59.5), u"1:00"_s);
        QCOMPARE(Format::time(3725), u"1:02:05"_s);
        QCOMPARE(Format::paddedTime(65), u"01:05"_s);
        QCOMPARE(Format::paddedDuration(0), u"00:00"_s);
        QCOMPARE(Format::time(-0.4), u"0:00"_s);
        for (const double unusable : {qQNaN(), qInf(), -1.0, 1e300})
            QCOMPARE(Format::time(unusable), u"--:--"_s);
        QCOMPARE(Format::paddedDuration(std::nullopt), u"--:--"_s);
        QCOMPARE(Format::paddedDuration(-3), u"--:--"_s);
    }

    void serverAndUnknownFaults()
    {
        QCOMPARE(classify(SubsonicError::http(401)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::http(403)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::http(402)), ConnectionFault::server(u"The server returned HTTP 402."_s));
        QCOMPARE(classify(SubsonicError::server(40, u"x"_s)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::server(50, u"x"_s)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::server(41, u"Token auth unsupported"_s)),
                 ConnectionFault::server(u"Token auth unsupported"_s));
        QCOMPARE(classify(SubsonicError::invalidResponse()).kind, ConnectionFault::Kind::Other);
        QCOMPARE(ConnectionFault::from(std::make_exception_ptr(42)).kind, ConnectionFault::Kind::Other);
        QCOMPARE(classify(std::runtime_error("boom")), ConnectionFault::other(u"boom"_s));
    }

    // The network layer's own failures: the ones that mean the server is out of reach, and some that do not.
    void transportFaults()
    {
        using Code = QNetworkReply::NetworkError;
        for (const Code offline : {Code::ConnectionRefusedError, Code::HostNotFoundError, Code::TimeoutError,
                                   Code::RemoteHostClosedError, Code::TemporaryNetworkFailureError,
                                   Code::UnknownNetworkError})
            QCOMPARE(classify(TransportError(offline)), ConnectionFault::offline());
        for (const Code other : {Code::SslHandshakeFailedError, Code::TooManyRedirectsError})
            QCOMPARE(classify(TransportError(other)).kind, ConnectionFault::Kind::Other);
    }

    void failureMessages()
    {
        StoreFailure failure{.action = u"update your likes"_s, .fault = ConnectionFault::offline()};
        QCOMPARE(failure.message(), u"Couldn't update your likes — can't reach your server"_s);
        failure.fault = ConnectionFault::unauthorized();
        QCOMPARE(failure.message(), u"Couldn't update your likes — your server rejected the saved password"_s);
        failure = StoreFailure{.action = u"save the new order"_s, .fault = ConnectionFault::server(u"Wrong thing"_s)};
        QCOMPARE(failure.message(), u"Couldn't save the new order — wrong thing"_s);
        failure.fault = ConnectionFault::other(QString());
        QCOMPARE(failure.message(), u"Couldn't save the new order — "_s);
    }
};

QTEST_GUILESS_MAIN(RecordsTest)
#include "tst_records.moc"
