#include "awaittask.h"
#include "fakesubsonicserver.h"
#include "server/payloads.h"
#include "server/subsonicclient.h"
#include "server/transporterror.h"

#include <QCryptographicHash>
#include <QNetworkAccessManager>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
const QStringList fixedNames{u"u"_s, u"t"_s, u"s"_s, u"v"_s, u"c"_s, u"f"_s};

QStringList namesAfterFixed(const RecordedRequest &request)
{
    return request.names().mid(fixedNames.size());
}

template<typename Payload>
std::optional<SubsonicError> decodeFailure(const QByteArray &body)
{
    try {
        SubsonicClient::decodePayload<Payload>(body);
    } catch (const SubsonicError &error) {
        return error;
    }
    return std::nullopt;
}
}

class SubsonicClientTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<FakeSubsonicServer> server;

    SubsonicClient clientFor(const QString &username = u"alice"_s, const QString &password = u"secret"_s,
                             AuthMethod method = AuthMethod::Token)
    {
        return SubsonicClient(ServerConfig{server->baseURL(), username, password, method});
    }

private Q_SLOTS:
    void init() { server = std::make_unique<FakeSubsonicServer>(); }

    void signedUrlHasFixedParametersFirst()
    {
        const SubsonicClient client(ServerConfig{QUrl(u"https://music.example.org:4533/music"_s), u"alice"_s, u"pw"_s});
        const QUrl url = client.url(u"ping"_s, {{u"id"_s, u"1"_s}});
        QCOMPARE(url.path(), u"/music/rest/ping"_s);
        QCOMPARE(url.port(), 4533);
        QStringList names;
        for (const auto &item : QUrlQuery(url).queryItems())
            names.append(item.first);
        QCOMPARE(names, fixedNames + QStringList{u"id"_s});
        const QUrlQuery query(url);
        QCOMPARE(query.queryItemValue(u"v"_s), u"1.16.1"_s);
        QCOMPARE(query.queryItemValue(u"c"_s), u"Velto"_s);
        QCOMPARE(query.queryItemValue(u"f"_s), u"json"_s);
        const QString salt = query.queryItemValue(u"s"_s);
        QCOMPARE(salt.size(), 12);
        const QByteArray expected = QCryptographicHash::hash(("pw" + salt).toUtf8(), QCryptographicHash::Md5).toHex();
        QCOMPARE(query.queryItemValue(u"t"_s).toLatin1(), expected);
        QVERIFY(client.url(u"ping"_s) != client.url(u"ping"_s));
        QCOMPARE(SubsonicClient::makeSalt(0), QString());
    }

    void awkwardTextArrivesWhole()
    {
        server->on(u"search3"_s, FakeSubsonicServer::json({{u"searchResult3"_s, QJsonObject()}}));
        const QString name = u"Zoë & Ödön+1 =?/#"_s;
        awaitTask(clientFor(name).search(name, {.songs = 1}));
        const RecordedRequest request = server->requests().last();
        QCOMPARE(request.value(u"u"_s), name);
        QCOMPARE(request.value(u"query"_s), name);
    }

    void legacyModeSendsTheEncodedPasswordInsteadOfAToken()
    {
        server->on(u"ping"_s, FakeSubsonicServer::json({}));
        awaitTask(clientFor(u"alice"_s, u"pässword"_s, AuthMethod::LegacyPassword).ping());
        const RecordedRequest request = server->requests().last();
        QCOMPARE(request.names(), (QStringList{u"u"_s, u"p"_s, u"v"_s, u"c"_s, u"f"_s}));
        QCOMPARE(request.value(u"p"_s), u"enc:"_s + QString::fromLatin1(u"pässword"_s.toUtf8().toHex()));
    }

    void envelopeDecoding()
    {
        using Payloads::AlbumPayload;
        using Payloads::Empty;
        QVERIFY(!decodeFailure<Empty>(R"({"subsonic-response":{"status":"ok"}})"));
        // Keys the client does not use, odd as they may be, never fail an answer.
        QVERIFY(!decodeFailure<Empty>(R"({"subsonic-response":{"status":"ok","version":1.16,"type":null,
                                          "openSubsonic":"yes","serverVersion":{"a":[1]}}})"));
        QCOMPARE(decodeFailure<AlbumPayload>(R"({"subsonic-response":{"status":"ok"}})"),
                 SubsonicError::invalidResponse());
        QCOMPARE(decodeFailure<Empty>(R"({"subsonic-response":{"status":"failed"}})"),
                 SubsonicError::server(-1, u"Unknown server error"_s));
        QCOMPARE(decodeFailure<Empty>(R"({"subsonic-response":{"status":"failed","error":{"code":70}}})"),
                 SubsonicError::server(70, u"Unknown server error"_s));
        QCOMPARE(decodeFailure<Empty>(R"({"subsonic-response":{"status":"failed","error":{"message":"x"}}})"),
                 SubsonicError::invalidResponse());
        QCOMPARE(decodeFailure<Empty>(R"({"subsonic-response":{"status":"OK"}})"),
                 SubsonicError::server(-1, u"Unknown server error"_s));
        QCOMPARE(decodeFailure<AlbumPayload>(
                     R"({"subsonic-response":{"status":"failed","error":{"code":40,"message":"nope"}},"album":7})"),
                 SubsonicError::server(40, u"nope"_s));
        QCOMPARE(SubsonicError::server(40, u"Bad credentials"_s).description(), u"Wrong username or password."_s);
        QCOMPARE(SubsonicError::http(404).description(), u"The server returned HTTP 404."_s);
        QVERIFY(decodeFailure<Empty>("<html><body>Welcome to nginx</body></html>"));
        QVERIFY(decodeFailure<Empty>(R"({"subsonic-response":{"status":"ok")"));
        QVERIFY(decodeFailure<Empty>("{\"subsonic-response\":{\"status\":\"\xff\xfe\"}}"));
        QVERIFY(decodeFailure<Empty>(R"([1,2,3])"));
    }

    void httpStatusDecidesBeforeTheBody_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("succeeds");
        QTest::newRow("299") << 299 << true;
        QTest::newRow("300") << 300 << false;
        QTest::newRow("401") << 401 << false;
    }

    void httpStatusDecidesBeforeTheBody()
    {
        QFETCH(int, status);
        QFETCH(bool, succeeds);
        server->on(u"ping"_s, FakeResponse{.status = status, .body = FakeSubsonicServer::ok()});
        const auto error = awaitFailure<SubsonicError>(clientFor().ping());
        QCOMPARE(!error.has_value(), succeeds);
        if (!succeeds)
            QCOMPARE(*error, SubsonicError::http(status));
    }

    void unreadableAnswersAreInvalid()
    {
        server->enqueue(u"getAlbum"_s, FakeResponse{.contentType = "text/html", .body = "<html>login</html>"});
        server->enqueue(u"getAlbum"_s, FakeSubsonicServer::json({{u"album"_s, QJsonObject{{u"id"_s, 5}}}}));
        server->enqueue(u"getAlbum"_s, FakeResponse{.body = QByteArray(SubsonicClient::maxAnswerBytes + 10, ' ')});
        for (int i = 0; i < 3; ++i)
            QCOMPARE(awaitFailure<SubsonicError>(clientFor().album(u"1"_s)), SubsonicError::invalidResponse());
    }

    void transportFailuresPassThrough()
    {
        server->on(u"ping"_s, FakeResponse{.body = FakeSubsonicServer::ok(), .dropAfterBytes = 5});
        auto dropped = awaitFailure<TransportError>(clientFor().ping());
        QVERIFY(dropped);
        QCOMPARE(dropped->code, QNetworkReply::RemoteHostClosedError);

        server->stop();
        auto refused = awaitFailure<TransportError>(clientFor().ping());
        QVERIFY(refused);
        QCOMPARE(refused->code, QNetworkReply::ConnectionRefusedError);
        QVERIFY(!refused->description().contains(u"secret"_s));
    }

    void aHangingServerTimesOutAndACancelIsNotATimeout()
    {
        server->on(u"ping"_s, FakeResponse{.hang = true});
        QNetworkAccessManager impatient;
        impatient.setTransferTimeout(300);
        const SubsonicClient client(ServerConfig{server->baseURL(), u"a"_s, u"b"_s}, &impatient);
        auto timedOut = awaitFailure<TransportError>(client.ping());
        QVERIFY(timedOut);
        QCOMPARE(timedOut->code, QNetworkReply::TimeoutError);

        // Limits act as soon as they can: an answer that announces more than an answer may be is refused at its
        // headers, and one that trickles a byte now and then times out though Qt's own clock keeps resetting.
        server->on(u"ping"_s, FakeResponse{.body = "{", .stallAfterBytes = 0, .announcedLength = 40 * 1024 * 1024});
        QCOMPARE(awaitFailure<SubsonicError>(client.ping(), 2000), SubsonicError::invalidResponse());
        server->on(u"ping"_s, FakeResponse{.body = FakeSubsonicServer::ok(), .trickleMs = 100});
        QCOMPARE(awaitFailure<TransportError>(client.ping(), 2000)->code, QNetworkReply::TimeoutError);

        const CancelToken token = CancelToken::create();
        bool cancelled = false;
        bool finished = false;
        auto run = [&]() -> QCoro::Task<> {
            try {
                co_await client.ping(token);
            } catch (const TaskCancelled &) {
                cancelled = true;
            }
            finished = true;
        };
        run();
        QTest::qWait(50);
        QVERIFY(!finished);
        token.cancel();
        QTRY_VERIFY_WITH_TIMEOUT(finished, 1000);
        QVERIFY(cancelled);
    }

    void endpointsSendTheirParametersInOrder()
    {
        server->on(u"search3"_s, FakeSubsonicServer::json({{u"searchResult3"_s, QJsonObject()}}));
        server->on(u"getAlbumList2"_s, FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject()}}));
        server->on(u"updatePlaylist"_s, FakeSubsonicServer::json({}));
        server->on(u"createPlaylist"_s, FakeSubsonicServer::json({}));
        server->on(u"star"_s, FakeSubsonicServer::json({}));
        server->on(u"scrobble"_s, FakeSubsonicServer::json({}));
        const SubsonicClient client = clientFor();

        QCOMPARE(awaitTask(client.songs(500, 1000)), QList<Song>());
        RecordedRequest request = server->requests().last();
        QCOMPARE(namesAfterFixed(request),
                 (QStringList{u"query"_s, u"artistCount"_s, u"albumCount"_s, u"songCount"_s, u"songOffset"_s}));
        QCOMPARE(request.value(u"query"_s), QString());
        QCOMPARE(request.value(u"artistCount"_s), u"0"_s);
        QCOMPARE(request.value(u"songCount"_s), u"500"_s);
        QCOMPARE(request.value(u"songOffset"_s), u"1000"_s);

        QCOMPARE(awaitTask(client.albums(AlbumListType::AlphabeticalByArtist, 60, 120)), QList<Album>());
        request = server->requests().last();
        QCOMPARE(namesAfterFixed(request), (QStringList{u"type"_s, u"size"_s, u"offset"_s}));
        QCOMPARE(request.value(u"type"_s), u"alphabeticalByArtist"_s);

        awaitTask(client.updatePlaylist(u"p1"_s, u"New"_s, {}, {}));
        QCOMPARE(namesAfterFixed(server->requests().last()), (QStringList{u"playlistId"_s, u"name"_s}));
        awaitTask(client.updatePlaylist(u"p1"_s, std::nullopt, {u"a"_s, u"b"_s}, {3}));
        request = server->requests().last();
        QCOMPARE(namesAfterFixed(request),
                 (QStringList{u"playlistId"_s, u"songIdToAdd"_s, u"songIdToAdd"_s, u"songIndexToRemove"_s}));
        QCOMPARE(request.values(u"songIdToAdd"_s), (QStringList{u"a"_s, u"b"_s}));

        awaitTask(client.replacePlaylistSongs(u"p1"_s, {u"x"_s, u"x"_s, u"x"_s}));
        request = server->requests().last();
        QCOMPARE(request.endpoint, u"createPlaylist"_s);
        QCOMPARE(request.values(u"songId"_s), (QStringList{u"x"_s, u"x"_s, u"x"_s}));
        awaitTask(client.replacePlaylistSongs(u"p1"_s, {}));
        QCOMPARE(namesAfterFixed(server->requests().last()), QStringList{u"playlistId"_s});

        awaitTask(client.star({StarTarget::Kind::Album, u"al"_s}));
        QCOMPARE(namesAfterFixed(server->requests().last()), QStringList{u"albumId"_s});
        awaitTask(client.scrobble(u"s1"_s, ScrobbleKind::Played));
        QCOMPARE(server->requests().last().value(u"submission"_s), u"true"_s);
        QVERIFY(!server->requests().last().names().contains(u"time"_s));
        awaitTask(client.scrobble(u"s1"_s, ScrobbleKind::Played, 1'700'000'000'123));
        QCOMPARE(server->requests().last().value(u"time"_s), u"1700000000123"_s);

        QVERIFY(!QUrlQuery(client.coverArtURL(u"c"_s)).hasQueryItem(u"size"_s));
        QCOMPARE(QUrlQuery(client.coverArtURL(u"c"_s, 256)).queryItemValue(u"size"_s), u"256"_s);
    }

    void aQueryPastTheLimitGoesAsAFormWithEveryParameterInOrder()
    {
        server->on(u"createPlaylist"_s, FakeSubsonicServer::json({}));
        const SubsonicClient client = clientFor();
        // Songs up to the one that takes the query past the limit (a salt and a token are always as long).
        QStringList ids;
        QList<QueryItem> params{{u"playlistId"_s, u"p1"_s}};
        while (client.url(u"createPlaylist"_s, params).query(QUrl::FullyEncoded).size() <= SubsonicClient::maxQueryBytes) {
            ids.append(QString::number(ids.size()));
            params.append({u"songId"_s, ids.last()});
        }
        const QString tip = ids.takeLast();
        awaitTask(client.replacePlaylistSongs(u"p1"_s, ids));
        QCOMPARE(server->requests().last().method, u"GET"_s);
        QCOMPARE(server->requests().last().values(u"songId"_s), ids);

        ids.append(tip);
        awaitTask(client.replacePlaylistSongs(u"p1"_s, ids));
        const RecordedRequest posted = server->requests().last();
        QCOMPARE(posted.method, u"POST"_s);
        QCOMPARE(posted.endpoint, u"createPlaylist"_s);
        QCOMPARE(posted.values(u"songId"_s), ids);
        QCOMPARE(posted.value(u"u"_s), u"alice"_s);
        QVERIFY(posted.names().contains(u"t"_s));
        QVERIFY(posted.targetBytes < 100); // nothing in the address but the path

        // Moved elsewhere: the form follows, whole, as a form.
        server->enqueue(u"createPlaylist"_s, FakeResponse{.status = 301, .contentType = "text/html",
                                                          .location = "/moved/rest/createPlaylist"});
        awaitTask(client.replacePlaylistSongs(u"p1"_s, ids));
        const RecordedRequest moved = server->requests().last();
        QCOMPARE(moved.path, u"/moved/rest/createPlaylist"_s);
        QCOMPARE(moved.method, u"POST"_s);
        QCOMPARE(moved.values(u"songId"_s), ids);
    }

    void containersMayBeEmptyButNotMissing()
    {
        server->enqueue(u"getAlbumList2"_s, FakeSubsonicServer::json({{u"albumList2"_s, QJsonObject()}}));
        server->enqueue(u"getAlbumList2"_s, FakeSubsonicServer::json({}));
        QCOMPARE(awaitTask(clientFor().albums(AlbumListType::Newest, 60, 0)).size(), 0);
        QCOMPARE(awaitFailure<SubsonicError>(clientFor().albums(AlbumListType::Newest, 60, 0)),
                 SubsonicError::invalidResponse());

        server->enqueue(u"getPlaylists"_s, FakeSubsonicServer::json({{u"playlists"_s, QJsonObject()}}));
        QCOMPARE(awaitTask(clientFor().playlists()), std::nullopt);
    }

    void createPlaylistOnOldServersMayAnswerEmpty()
    {
        server->enqueue(u"createPlaylist"_s, FakeResponse{.body = FakeSubsonicServer::ok({}, u"1.10.2"_s)});
        QCOMPARE(awaitTask(clientFor().createPlaylist(u"Mix"_s)), std::nullopt);
        server->enqueue(u"createPlaylist"_s, FakeResponse{.body = FakeSubsonicServer::ok({}, u"1.16.1"_s)});
        QCOMPARE(awaitFailure<SubsonicError>(clientFor().createPlaylist(u"Mix"_s)), SubsonicError::invalidResponse());
        const QJsonObject created{{u"playlist"_s, QJsonObject{{u"id"_s, u"p9"_s}, {u"name"_s, u"Mix"_s}}}};
        server->enqueue(u"createPlaylist"_s, FakeSubsonicServer::json(created));
        QCOMPARE(awaitTask(clientFor().createPlaylist(u"Mix"_s))->id, u"p9"_s);
    }
};

QTEST_GUILESS_MAIN(SubsonicClientTest)
#include "tst_subsonicclient.moc"
