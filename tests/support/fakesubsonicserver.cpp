#include "fakesubsonicserver.h"

#include <QJsonDocument>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

QString RecordedRequest::value(const QString &name) const
{
    for (const auto &[key, value] : query) {
        if (key == name)
            return value;
    }
    return {};
}

QStringList RecordedRequest::values(const QString &name) const
{
    QStringList result;
    for (const auto &[key, value] : query) {
        if (key == name)
            result.append(value);
    }
    return result;
}

QStringList RecordedRequest::names() const
{
    QStringList result;
    for (const auto &item : query)
        result.append(item.first);
    return result;
}

FakeSubsonicServer::FakeSubsonicServer()
    : m_server(new QTcpServer(this))
{
    connect(m_server, &QTcpServer::newConnection, this, &FakeSubsonicServer::accept);
    start();
}

FakeSubsonicServer::~FakeSubsonicServer() = default;

QUrl FakeSubsonicServer::baseURL() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port));
}

bool FakeSubsonicServer::start()
{
    const bool listening = m_server->listen(QHostAddress::LocalHost, m_port);
    if (listening)
        m_port = m_server->serverPort();
    return listening;
}

void FakeSubsonicServer::stop()
{
    m_server->close();
    const auto sockets = m_buffers.keys();
    for (QTcpSocket *socket : sockets)
        socket->abort();
}

void FakeSubsonicServer::on(const QString &endpoint, FakeResponse response)
{
    m_handlers.insert(endpoint, [response](const RecordedRequest &) { return response; });
}

void FakeSubsonicServer::on(const QString &endpoint, Handler handler)
{
    m_handlers.insert(endpoint, std::move(handler));
}

void FakeSubsonicServer::enqueue(const QString &endpoint, FakeResponse response)
{
    m_queued[endpoint].enqueue(std::move(response));
}

QList<RecordedRequest> FakeSubsonicServer::requests(const QString &endpoint) const
{
    QList<RecordedRequest> result;
    for (const RecordedRequest &request : m_requests) {
        if (request.endpoint == endpoint)
            result.append(request);
    }
    return result;
}

QByteArray FakeSubsonicServer::ok(const QJsonObject &payload, const QString &version)
{
    QJsonObject body = payload;
    body.insert(QStringLiteral("status"), QStringLiteral("ok"));
    body.insert(QStringLiteral("version"), version);
    return QJsonDocument(QJsonObject{{QStringLiteral("subsonic-response"), body}}).toJson(QJsonDocument::Compact);
}

QByteArray FakeSubsonicServer::failed(int code, const QString &message)
{
    const QJsonObject body{
        {QStringLiteral("status"), QStringLiteral("failed")},
        {QStringLiteral("version"), QStringLiteral("1.16.1")},
        {QStringLiteral("error"), QJsonObject{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}}},
    };
    return QJsonDocument(QJsonObject{{QStringLiteral("subsonic-response"), body}}).toJson(QJsonDocument::Compact);
}

void FakeSubsonicServer::accept()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        m_buffers.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_buffers.remove(socket);
            socket->deleteLater();
        });
    }
}

namespace {
void appendPairs(const QByteArray &encoded, QList<std::pair<QString, QString>> &into)
{
    for (const QByteArray &pair : encoded.split('&')) {
        if (pair.isEmpty())
            continue;
        const qsizetype equals = pair.indexOf('=');
        const QByteArray name = equals < 0 ? pair : pair.left(equals);
        const QByteArray value = equals < 0 ? QByteArray() : pair.mid(equals + 1);
        into.append({QUrl::fromPercentEncoding(name), QUrl::fromPercentEncoding(value)});
    }
}
}

void FakeSubsonicServer::readRequest(QTcpSocket *socket)
{
    QByteArray &buffer = m_buffers[socket];
    buffer += socket->readAll();
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    qsizetype contentLength = 0;
    bool isForm = false;
    QByteArray rangeHeader;
    for (const QByteArray &line : lines) {
        const QByteArray lower = line.toLower();
        if (lower.startsWith("range:"))
            rangeHeader = line.mid(6).trimmed();
        else if (lower.startsWith("content-length:"))
            contentLength = line.mid(15).trimmed().toLongLong();
        else if (lower.startsWith("content-type:"))
            isForm = lower.contains("application/x-www-form-urlencoded");
    }
    // A body still on its way: wait for the rest.
    if (buffer.size() < headerEnd + 4 + contentLength)
        return;
    const QByteArray body = buffer.mid(headerEnd + 4, contentLength);
    buffer.clear();
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    const QByteArray target = requestLine.value(1);

    RecordedRequest request;
    request.method = QString::fromLatin1(requestLine.value(0));
    const qsizetype question = target.indexOf('?');
    request.path = QUrl::fromPercentEncoding(target.left(question < 0 ? target.size() : question));
    request.endpoint = request.path.section(QLatin1Char('/'), -1);
    if (question >= 0)
        appendPairs(target.mid(question + 1), request.query);
    // A form's fields count as parameters, as servers read them.
    if (isForm)
        appendPairs(body, request.query);
    request.rangeHeader = rangeHeader;
    request.targetBytes = target.size();
    m_requests.append(request);

    const FakeResponse response = answerFor(request);
    if (response.hang)
        return;
    if (response.delayMs > 0) {
        QTimer::singleShot(response.delayMs, socket, [this, socket, response] { respond(socket, response); });
        return;
    }
    respond(socket, response);
}

FakeResponse FakeSubsonicServer::answerFor(const RecordedRequest &request)
{
    auto queued = m_queued.find(request.endpoint);
    if (queued != m_queued.end() && !queued->isEmpty())
        return queued->dequeue();
    const auto handler = m_handlers.constFind(request.endpoint);
    if (handler != m_handlers.constEnd())
        return (*handler)(request);
    return FakeResponse{.status = 404, .contentType = "text/plain", .body = "unknown method"};
}

void FakeSubsonicServer::respond(QTcpSocket *socket, const FakeResponse &response)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Status\r\n";
    head += "Content-Type: " + response.contentType + "\r\n";
    const qint64 length = response.announcedLength >= 0 ? response.announcedLength : response.body.size();
    head += "Content-Length: " + QByteArray::number(length) + "\r\n";
    if (!response.location.isEmpty())
        head += "Location: " + response.location + "\r\n";
    head += "Connection: close\r\n\r\n";
    socket->write(head);
    if (response.dropAfterBytes >= 0) {
        socket->write(response.body.left(response.dropAfterBytes));
        socket->flush();
        socket->abort();
        return;
    }
    if (response.stallAfterBytes >= 0) {
        socket->write(response.body.left(response.stallAfterBytes));
        return;
    }
    if (response.trickleMs > 0) {
        auto *clock = new QTimer(socket);
        connect(clock, &QTimer::timeout, socket, [socket, body = response.body, sent = qsizetype(0)]() mutable {
            if (sent < body.size())
                socket->write(body.mid(sent++, 1));
        });
        clock->start(response.trickleMs);
        return;
    }
    socket->write(response.body);
    socket->disconnectFromHost();
}
