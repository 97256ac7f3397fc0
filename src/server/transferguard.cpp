#include "transferguard.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

namespace {
constexpr qint64 floorBytesPerSecond = 1024;
constexpr int fallbackWindowMs = 60'000;

int windowOf(const QNetworkReply &reply)
{
    int window = reply.request().transferTimeout();
    if (window <= 0 && reply.manager())
        window = reply.manager()->transferTimeout();
    return window > 0 ? window : fallbackWindowMs;
}

struct Watch {
    TransferVerdict verdict;
    qint64 received = 0;
    qint64 mark = 0;
};
}

std::shared_ptr<const TransferVerdict> guardTransfer(QNetworkReply *reply, qint64 maxBytes)
{
    auto watch = std::make_shared<Watch>();
    const auto stop = [reply, watch](bool TransferVerdict::*reason) {
        watch->verdict.*reason = true;
        if (reply->isRunning())
            reply->abort();
    };
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [reply, maxBytes, stop] {
        const QVariant announced = reply->header(QNetworkRequest::ContentLengthHeader);
        if (announced.isValid() && announced.toLongLong() > maxBytes)
            stop(&TransferVerdict::tooLarge);
    });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                     [watch, maxBytes, stop](qint64 received, qint64 total) {
                         watch->received = received;
                         if (received > maxBytes || total > maxBytes)
                             stop(&TransferVerdict::tooLarge);
                     });
    auto *clock = new QTimer(reply);
    const int window = windowOf(*reply);
    clock->setInterval(window);
    QObject::connect(clock, &QTimer::timeout, reply, [watch, window, stop] {
        if (watch->received - watch->mark < floorBytesPerSecond * window / 1000)
            stop(&TransferVerdict::tooSlow);
        watch->mark = watch->received;
    });
    QObject::connect(reply, &QNetworkReply::finished, clock, &QTimer::stop);
    clock->start();
    // Shares the watch's lifetime; only the verdict is handed out.
    return {watch, &watch->verdict};
}
