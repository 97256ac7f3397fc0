#include "filetransfer.h"

#include "server/transferguard.h"

#include <QCoroFuture>
#include <QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>
#include <QtConcurrent>

#include <algorithm>

#include <unistd.h>

namespace {
// How far the network may run ahead of the disk. Chunks are written as they come, so this is only reached when
// the disk is slower than the network; it keeps the memory of a transfer small whatever the file's size.
constexpr qint64 readBufferBytes = 1024 * 1024;

// The partial file of one transfer. Until it is handed over it is deleted with its last holder, which may be the
// reply's handler for a moment after the transfer's coroutine has returned.
struct Receiver {
    QFile file;
    bool created = false;
    bool handedOver = false;
    bool headersJudged = false;
    bool bodyJudged = false;
    bool refused = false;
    bool writeFailed = false;

    ~Receiver()
    {
        file.close();
        if (created && !handedOver)
            file.remove();
    }
};

QString partialFilePath(const QString &directory)
{
    return directory + u'/' + partialFilePrefix + QString::number(QRandomGenerator::global()->generate64(), 16);
}

bool carriesFile(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const int code = status.isValid() ? status.toInt() : 0;
    if (code < 200 || code > 299 || code == 204 || code == 206)
        return false;
    return !isServerMessageType(reply.rawHeader("Content-Type"));
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Writes what has arrived. The answer is judged on its headers before a byte of it reaches the disk, and on its
// first bytes before they do. A refused answer is read and dropped to its end, so that it neither fills the
// reply's buffer nor stalls it.
void receive(QNetworkReply &reply, Receiver &receiver)
{
    if (!receiver.headersJudged) {
        receiver.headersJudged = true;
        receiver.refused = !carriesFile(reply);
    }
    const QByteArray chunk = reply.readAll();
    if (receiver.refused || receiver.writeFailed)
        return;
    if (!receiver.bodyJudged && !chunk.isEmpty()) {
        receiver.refused = startsLikeServerMessage(chunk);
        receiver.bodyJudged = receiver.refused || std::any_of(chunk.cbegin(), chunk.cend(), [](char c) {
            return !isBlank(c);
        });
        if (receiver.refused)
            return;
    }
    if (receiver.file.write(chunk) != chunk.size()) {
        receiver.writeFailed = true;
        if (reply.isRunning())
            reply.abort();
    }
}
}

bool isServerMessageType(QByteArrayView contentType)
{
    const QByteArray text = contentType.toByteArray();
    const qsizetype parameters = text.indexOf(';');
    const QByteArray type = (parameters < 0 ? text : text.left(parameters)).trimmed().toLower();
    return type == "application/json" || type == "text/json" || type == "application/xml" || type == "text/xml"
        || type.endsWith("+json") || type.endsWith("+xml");
}

bool startsLikeServerMessage(QByteArrayView body)
{
    if (body.startsWith("\xEF\xBB\xBF"))
        body = body.sliced(3);
    for (const char c : body) {
        if (!isBlank(c))
            return c == '{' || c == '<';
    }
    return false;
}

QCoro::Task<std::optional<QString>> fetchToFile(QNetworkAccessManager *network, QUrl url, QString directory,
                                                qint64 maxBytes, CancelToken token)
{
    if (token.isCancelled())
        co_return std::nullopt;
    auto receiver = std::make_shared<Receiver>();
    receiver->file.setFileName(partialFilePath(directory));
    // Unbuffered, so that a write the disk refuses fails with its own chunk, not later inside a flush.
    receiver->created = receiver->file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
    if (!receiver->created)
        co_return std::nullopt;

    QNetworkReply *reply = network->get(QNetworkRequest(url));
    reply->setReadBufferSize(readBufferBytes);
    token.track(reply);
    const auto verdict = guardTransfer(reply, maxBytes);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, receiver] { receive(*reply, *receiver); });
    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();
    if (token.isCancelled() || verdict->stopped() || reply->error() != QNetworkReply::NoError)
        co_return std::nullopt;
    receive(*reply, *receiver); // the rest, and the verdict on an empty body
    if (receiver->refused || receiver->writeFailed || !receiver->bodyJudged)
        co_return std::nullopt;

    // The manifest will say this file is whole, so its bytes reach the disk first; a full disk may only show
    // here. The wait runs off the main thread, and a cancellation during it is the caller's to handle.
    const int descriptor = receiver->file.handle();
    QFuture<bool> synced = QtConcurrent::run([descriptor] { return ::fsync(descriptor) == 0; });
    const bool durable = co_await synced;
    if (!durable)
        co_return std::nullopt;
    receiver->file.close();
    receiver->handedOver = true;
    co_return receiver->file.fileName();
}

QCoro::Task<std::optional<QByteArray>> fetchToMemory(QNetworkAccessManager *network, QUrl url, qint64 limit,
                                                     CancelToken token)
{
    if (token.isCancelled())
        co_return std::nullopt;
    QNetworkReply *reply = network->get(QNetworkRequest(url));
    token.track(reply);
    const auto verdict = guardTransfer(reply, limit);
    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();
    if (token.isCancelled() || verdict->stopped() || reply->error() != QNetworkReply::NoError || !carriesFile(*reply))
        co_return std::nullopt;
    QByteArray body = reply->readAll();
    if (body.isEmpty() || startsLikeServerMessage(body))
        co_return std::nullopt;
    co_return body;
}
