#include "keychain.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QEventLoop>
#include <QPromise>
#include <QThread>
#include <QStringDecoder>
#include <QTimer>

#include <qt6keychain/keychain.h>

namespace Keychain {

namespace {
int pendingJobs = 0;

template<typename JobType>
JobType *makeJob(const QString &account)
{
    auto *job = new JobType(QString::fromLatin1(service));
    job->setAutoDelete(false);
    job->setInsecureFallback(false);
    job->setKey(account);
    return job;
}

// Every job runs on a thread of its own: the keyring takes several round trips, which then go on while the main
// thread is still busy loading the window, so that a saved account is ready by the first frame. One thread for
// all, since the keychain library keeps shared state that must not be reached from two.
QThread *keyringThread()
{
    static QThread *const thread = [] {
        auto *worker = new QThread;
        worker->setObjectName(QStringLiteral("keyring"));
        worker->start();
        qAddPostRoutine([] {
            thread->quit();
            thread->wait();
        });
        return worker;
    }();
    return thread;
}

// Runs the job to its end. The caller reads its outcome and then lets go of it with deleteLater.
QCoro::Task<> run(QKeychain::Job *job)
{
    ++pendingJobs;
    auto promise = std::make_shared<QPromise<void>>();
    QFuture<void> finished = promise->future();
    promise->start();
    job->moveToThread(keyringThread());
    QMetaObject::invokeMethod(job, [job, promise] {
        // Connected before the start, since a job may fail at once, inside start().
        QObject::connect(job, &QKeychain::Job::finished, job, [promise] { promise->finish(); });
        job->start();
    }, Qt::QueuedConnection);
    co_await finished;
    --pendingJobs;
}
}

QCoro::Task<std::optional<QString>> password(QString account)
{
    auto *job = makeJob<QKeychain::ReadPasswordJob>(account);
    co_await run(job);
    std::optional<QString> result;
    if (job->error() == QKeychain::NoError) {
        // Stored as UTF-8 bytes; anything else is not our password.
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(job->binaryData());
        if (!decoder.hasError())
            result = text;
    }
    job->deleteLater();
    co_return result;
}

QCoro::Task<> save(QString password, QString account)
{
    co_await deletePassword(account);
    auto *job = makeJob<QKeychain::WritePasswordJob>(account);
    job->setBinaryData(password.toUtf8());
    co_await run(job);
    job->deleteLater();
}

QCoro::Task<> deletePassword(QString account)
{
    auto *job = makeJob<QKeychain::DeletePasswordJob>(account);
    co_await run(job);
    job->deleteLater();
}

void waitForPendingJobs(std::chrono::milliseconds timeout)
{
    if (pendingJobs == 0)
        return;
    // Looks now and then rather than spinning: the jobs end on the event loop's own time.
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&loop] {
        if (pendingJobs == 0)
            loop.quit();
    });
    look.start(20);
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    loop.exec();
}

}
