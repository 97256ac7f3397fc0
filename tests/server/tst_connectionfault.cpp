#include "library/connectionfault.h"
#include "server/subsonicerror.h"
#include "server/transporterror.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {
template<typename Error>
ConnectionFault classify(const Error &error)
{
    return ConnectionFault::from(std::make_exception_ptr(error));
}
}

class ConnectionFaultTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void httpStatuses()
    {
        QCOMPARE(classify(SubsonicError::http(401)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::http(403)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::http(402)), ConnectionFault::server(u"The server returned HTTP 402."_s));
        QCOMPARE(classify(SubsonicError::http(500)), ConnectionFault::server(u"The server returned HTTP 500."_s));
    }

    void apiErrorCodes()
    {
        QCOMPARE(classify(SubsonicError::server(40, u"x"_s)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::server(50, u"x"_s)), ConnectionFault::unauthorized());
        QCOMPARE(classify(SubsonicError::server(41, u"Token auth unsupported"_s)),
                 ConnectionFault::server(u"Token auth unsupported"_s));
        QCOMPARE(classify(SubsonicError::invalidResponse()).kind, ConnectionFault::Kind::Other);
    }

    void transportCodes_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<bool>("offline");
        QTest::newRow("refused") << int(QNetworkReply::ConnectionRefusedError) << true;
        QTest::newRow("host not found") << int(QNetworkReply::HostNotFoundError) << true;
        QTest::newRow("timeout") << int(QNetworkReply::TimeoutError) << true;
        QTest::newRow("connection lost") << int(QNetworkReply::RemoteHostClosedError) << true;
        QTest::newRow("network down") << int(QNetworkReply::TemporaryNetworkFailureError) << true;
        QTest::newRow("tls") << int(QNetworkReply::SslHandshakeFailedError) << false;
        QTest::newRow("redirect loop") << int(QNetworkReply::TooManyRedirectsError) << false;
    }

    void transportCodes()
    {
        QFETCH(int, code);
        QFETCH(bool, offline);
        const ConnectionFault fault = classify(TransportError(QNetworkReply::NetworkError(code)));
        QCOMPARE(fault.kind == ConnectionFault::Kind::Offline, offline);
    }

    void unknownErrorsAreNeverOffline()
    {
        QCOMPARE(ConnectionFault::from(std::make_exception_ptr(42)).kind, ConnectionFault::Kind::Other);
        QCOMPARE(classify(std::runtime_error("boom")), ConnectionFault::other(u"boom"_s));
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

    void failuresAreEqualOnlyByIdentity()
    {
        const StoreFailure a{.action = u"x"_s, .fault = ConnectionFault::offline()};
        const StoreFailure b{.action = u"x"_s, .fault = ConnectionFault::offline()};
        QVERIFY(a != b);
        QVERIFY(a == StoreFailure(a));
        QVERIFY(ServerReachability::failing(ConnectionFault::offline()) != ServerReachability::ok());
    }
};

QTEST_GUILESS_MAIN(ConnectionFaultTest)
#include "tst_connectionfault.moc"
