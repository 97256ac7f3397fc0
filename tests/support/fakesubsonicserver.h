#pragma once

// A Subsonic server for tests on 127.0.0.1: scripted answers per endpoint, injected faults, and a log of every
// request in arrival order. The client under test is the production code talking real HTTP.

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QQueue>
#include <QUrl>

#include <functional>
#include <utility>

class QTcpServer;
class QTcpSocket;

struct FakeResponse {
    int status = 200;
    QByteArray contentType = "application/json";
    QByteArray body;
    int delayMs = 0;
    // Sends the full Content-Length but closes the connection after this many body bytes.
    qsizetype dropAfterBytes = -1;
    // Sends the full Content-Length but only this many body bytes, then neither sends more nor closes.
    qsizetype stallAfterBytes = -1;
    // Accepts the request and never answers.
    bool hang = false;
    // The Content-Length sent, when not the body's own.
    qint64 announcedLength = -1;
    // Sends the body one byte at a time, this far apart.
    int trickleMs = 0;
    // A "Location" header, for a redirect.
    QByteArray location;
};

struct RecordedRequest {
    QString method; // "GET" or "POST"
    QString endpoint; // the last path segment: "getAlbum"
    QString path;
    QList<std::pair<QString, QString>> query; // decoded, in order; a form body's fields after the URL's
    QByteArray rangeHeader;
    qsizetype targetBytes = 0; // the length of the request line's address

    [[nodiscard]] QString value(const QString &name) const;
    [[nodiscard]] QStringList values(const QString &name) const;
    [[nodiscard]] QStringList names() const;
};

class FakeSubsonicServer : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<FakeResponse(const RecordedRequest &)>;

    FakeSubsonicServer();
    ~FakeSubsonicServer() override;

    [[nodiscard]] QUrl baseURL() const;
    [[nodiscard]] quint16 port() const { return m_port; }

    // The standing answer of an endpoint; queued answers go first, one per request.
    void on(const QString &endpoint, FakeResponse response);
    void on(const QString &endpoint, Handler handler);
    void enqueue(const QString &endpoint, FakeResponse response);

    [[nodiscard]] const QList<RecordedRequest> &requests() const { return m_requests; }
    [[nodiscard]] QList<RecordedRequest> requests(const QString &endpoint) const;
    [[nodiscard]] int count(const QString &endpoint) const { return requests(endpoint).size(); }
    void clearLog() { m_requests.clear(); }

    // Stops listening and drops open connections: new requests are refused. start() listens again on the port.
    void stop();
    bool start();

    // Answer bodies in the server's envelope.
    static QByteArray ok(const QJsonObject &payload = {}, const QString &version = QStringLiteral("1.16.1"));
    static QByteArray failed(int code, const QString &message);
    static FakeResponse json(const QJsonObject &payload) { return FakeResponse{.body = ok(payload)}; }
    static FakeResponse error(int code, const QString &message) { return FakeResponse{.body = failed(code, message)}; }
    static FakeResponse delayed(FakeResponse answer, int ms)
    {
        answer.delayMs = ms;
        return answer;
    }

private:
    void accept();
    void readRequest(QTcpSocket *socket);
    void respond(QTcpSocket *socket, const FakeResponse &response);
    FakeResponse answerFor(const RecordedRequest &request);

    QTcpServer *m_server;
    quint16 m_port = 0;
    QHash<QString, Handler> m_handlers;
    QHash<QString, QQueue<FakeResponse>> m_queued;
    QList<RecordedRequest> m_requests;
    QHash<QTcpSocket *, QByteArray> m_buffers;
};
