#include "subsonicclient.h"

#include "networkaccess.h"
#include "transferguard.h"
#include "transporterror.h"

#include <QCoroNetworkReply>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

SubsonicClient::SubsonicClient(ServerConfig config, QNetworkAccessManager *network)
    : m_config(std::move(config))
    , m_network(network ? network : sharedNetworkAccess())
{
}

QString SubsonicClient::makeSalt(int length)
{
    Q_ASSERT(length >= 0);
    static constexpr char alphabet[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr quint64 size = sizeof(alphabet) - 1;
    // Lemire's multiply-and-reject: the high half of x * 36 is the index, and draws whose low half falls under
    // 2^64 mod 36 are thrown away, so every character is equally likely.
    constexpr quint64 threshold = (0 - size) % size;
    QString salt;
    salt.reserve(length);
    auto *random = QRandomGenerator::system();
    while (salt.size() < length) {
        const unsigned __int128 product = static_cast<unsigned __int128>(random->generate64()) * size;
        if (static_cast<quint64>(product) < threshold)
            continue;
        salt.append(QLatin1Char(alphabet[static_cast<quint64>(product >> 64)]));
    }
    return salt;
}

QString SubsonicClient::token(const QString &password, const QString &salt)
{
    return QString::fromLatin1(QCryptographicHash::hash((password + salt).toUtf8(), QCryptographicHash::Md5).toHex());
}

QUrl SubsonicClient::url(const QString &endpoint, const QList<QueryItem> &params) const
{
    QUrl url = m_config.baseURL;
    url.setPath(url.path(QUrl::FullyEncoded) + u"/rest/"_s + endpoint, QUrl::TolerantMode);

    QList<QueryItem> items;
    items.reserve(params.size() + 6);
    items.append({u"u"_s, m_config.username});
    if (m_config.authMethod == AuthMethod::LegacyPassword) {
        items.append({u"p"_s, u"enc:"_s + QString::fromLatin1(m_config.password.toUtf8().toHex())});
    } else {
        const QString salt = makeSalt(12);
        items.append({u"t"_s, token(m_config.password, salt)});
        items.append({u"s"_s, salt});
    }
    items.append({u"v"_s, u"1.16.1"_s});
    items.append({u"c"_s, u"Velto"_s});
    items.append({u"f"_s, u"json"_s});
    items.append(params);

    // Everything but the unreserved characters is escaped, '+' included, which servers would read as a blank.
    QByteArray query;
    for (const auto &[name, value] : std::as_const(items)) {
        if (!query.isEmpty())
            query += '&';
        query += QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value);
    }
    url.setQuery(QString::fromLatin1(query), QUrl::StrictMode);
    if (!url.isValid())
        qFatal("A URL built from a normalised server address is invalid");
    return url;
}

ResponseEnvelope SubsonicClient::decodeEnvelope(const QByteArray &body)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject())
        throw SubsonicError::invalidResponse();

    QString status;
    std::optional<qint64> errorCode;
    std::optional<QString> errorMessage;
    ResponseEnvelope envelope;
    try {
        envelope.body = Json::requiredObject(document.object(), "subsonic-response"_L1);
        status = Json::requiredString(envelope.body, "status"_L1);
        const QJsonValue error = envelope.body.value("error"_L1);
        if (!error.isUndefined() && !error.isNull()) {
            const QJsonObject detail = Json::asObject(error);
            errorCode = Json::requiredInt(detail, "code"_L1);
            errorMessage = Json::optionalString(detail, "message"_L1);
        }
        // Only read to tell old servers apart; an odd value is no reason to refuse the answer.
        envelope.apiVersion = envelope.body.value("version"_L1).toString();
    } catch (const Json::DecodeError &) {
        throw SubsonicError::invalidResponse();
    }
    if (status != "ok"_L1)
        throw SubsonicError::server(errorCode.value_or(-1), errorMessage.value_or(u"Unknown server error"_s));
    return envelope;
}

QCoro::Task<ResponseEnvelope> SubsonicClient::requestEnvelope(QString endpoint, QList<QueryItem> params,
                                                              CancelToken token) const
{
    const QUrl address = url(endpoint, params);
    QByteArray query = address.query(QUrl::FullyEncoded).toLatin1();
    // Servers and proxies refuse long URLs (8 KB is common), and a playlist of thousands of songs makes one: past
    // this length the same signed parameters go as a form, which servers of this interface read alike.
    if (query.size() > maxQueryBytes) {
        QUrl bare = address;
        bare.setQuery(QString());
        co_return decodeEnvelope(co_await fetch(bare, token, std::move(query)));
    }
    co_return decodeEnvelope(co_await fetch(address, token));
}

namespace {
// Failures that happen before any HTTP status exists; they carry no answer to read.
bool isTransportFailure(QNetworkReply::NetworkError error)
{
    return error > QNetworkReply::NoError && error < QNetworkReply::ContentAccessDenied;
}
}

QCoro::Task<QByteArray> SubsonicClient::fetch(QUrl url, CancelToken token, std::optional<QByteArray> form,
                                              int redirectsLeft) const
{
    if (token.isCancelled())
        throw TaskCancelled{};
    QNetworkRequest request(url);
    if (form) {
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/x-www-form-urlencoded"_ba);
        // Qt would follow a redirect of a form as a GET without its body; it is followed here instead.
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    }
    QNetworkReply *reply = form ? m_network->post(request, *form) : m_network->get(request);
    token.track(reply);
    const auto verdict = guardTransfer(reply, maxAnswerBytes);

    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();

    if (token.isCancelled())
        throw TaskCancelled{};
    if (verdict->tooLarge)
        throw SubsonicError::invalidResponse();

    const QNetworkReply::NetworkError error = reply->error();
    if (isTransportFailure(error)) {
        // Qt reports its own transfer time-out, and our stop of a trickling answer, as a cancellation; ours
        // was ruled out above.
        const auto code = error == QNetworkReply::OperationCanceledError ? QNetworkReply::TimeoutError : error;
        throw TransportError(code);
    }
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) {
        if (error == QNetworkReply::ProtocolFailure || error == QNetworkReply::NoError)
            throw SubsonicError::invalidResponse();
        throw TransportError(error);
    }
    const int httpStatus = status.toInt();
    const QUrl redirect = url.resolved(reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl());
    // A server moved to https, say: the form goes where it points, once, and never from https to plain http.
    if (form && httpStatus >= 300 && httpStatus < 400 && redirect.isValid() && redirect != url
        && !(url.scheme() == "https"_L1 && redirect.scheme() != "https"_L1) && redirectsLeft > 0)
        co_return co_await fetch(redirect, token, std::move(form), redirectsLeft - 1);
    if (httpStatus < 200 || httpStatus > 299)
        throw SubsonicError::http(httpStatus);
    co_return reply->readAll();
}
