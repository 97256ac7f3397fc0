#include "filetransfer.h"

#include <QCoroFuture>
#include <QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryFile>
#include <QtConcurrent>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {
// How far the network may run ahead of the disk. Chunks are written as they come, so this is only reached when
// the disk is slower than the network; it keeps the memory of a transfer small whatever the file's size.
constexpr qint64 readBufferBytes = 1024 * 1024;

struct Receiver {
    QTemporaryFile file;
    bool judged = false;
    bool refused = false;
    bool writeFailed = false;
};

bool carriesFile(const QNetworkReply &reply)
{
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid() || status.toInt() < 200 || status.toInt() > 299)
        return false;
    return !isServerMessageType(reply.rawHeader("Content-Type"));
}

// Writes what has arrived. The answer is judged once, on its headers, before a byte of it reaches the disk.
void receive(QNetworkReply &reply, Receiver &receiver)
{
    if (!receiver.judged) {
        receiver.judged = true;
        receiver.refused = !carriesFile(reply);
    }
    if (!receiver.refused && !receiver.writeFailed) {
        const QByteArray chunk = reply.readAll();
        if (receiver.file.write(chunk) == chunk.size())
            return;
        receiver.writeFailed = true;
    }
    if (reply.isRunning())
        reply.abort();
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

QCoro::Task<std::optional<QString>> fetchToFile(QNetworkAccessManager *network, QUrl url, QString directory,
                                                CancelToken token)
{
    if (token.isCancelled())
        co_return std::nullopt;
    // Until it is handed over, the temporary file removes itself with the last holder of the receiver.
    auto receiver = std::make_shared<Receiver>();
    receiver->file.setFileTemplate(directory + u'/' + partialFilePrefix + "XXXXXX"_L1);
    if (!receiver->file.open())
        co_return std::nullopt;

    QNetworkReply *reply = network->get(QNetworkRequest(url));
    reply->setReadBufferSize(readBufferBytes);
    token.track(reply);
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, receiver] { receive(*reply, *receiver); });
    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();
    if (token.isCancelled() || reply->error() != QNetworkReply::NoError)
        co_return std::nullopt;
    receive(*reply, *receiver); // the rest, and the verdict on an empty body
    if (receiver->refused || receiver->writeFailed || !receiver->file.flush())
        co_return std::nullopt;

    // The manifest will say this file is whole, so its bytes reach the disk first; a full disk may only show
    // here. The wait runs off the main thread, and a cancellation during it is the caller's to handle.
    const int descriptor = receiver->file.handle();
    QFuture<bool> synced = QtConcurrent::run([descriptor] { return ::fsync(descriptor) == 0; });
    const bool durable = co_await synced;
    if (!durable)
        co_return std::nullopt;
    receiver->file.close();
    receiver->file.setAutoRemove(false);
    co_return receiver->file.fileName();
}

QCoro::Task<std::optional<QByteArray>> fetchToMemory(QNetworkAccessManager *network, QUrl url, qint64 limit,
                                                     CancelToken token)
{
    if (token.isCancelled())
        co_return std::nullopt;
    QNetworkReply *reply = network->get(QNetworkRequest(url));
    token.track(reply);
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply, limit](qint64 received, qint64 total) {
        if (received > limit || total > limit)
            reply->abort();
    });
    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();
    if (token.isCancelled() || reply->error() != QNetworkReply::NoError || !carriesFile(*reply))
        co_return std::nullopt;
    co_return reply->readAll();
}
