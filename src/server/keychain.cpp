#include "keychain.h"

#include <QEventLoop>
#include <QStringDecoder>

#include <qt6keychain/keychain.h>

namespace Keychain {

namespace {
template<typename JobType>
JobType *makeJob(const QString &account)
{
    auto *job = new JobType(QString::fromLatin1(service));
    job->setInsecureFallback(false);
    job->setKey(account);
    return job;
}
}

std::optional<QString> password(const QString &account)
{
    auto *job = makeJob<QKeychain::ReadPasswordJob>(account);
    job->setAutoDelete(false);
    bool finished = false;
    QEventLoop loop;
    QObject::connect(job, &QKeychain::Job::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    job->start();
    if (!finished)
        loop.exec(QEventLoop::ExcludeUserInputEvents);

    std::optional<QString> result;
    if (job->error() == QKeychain::NoError) {
        // Stored as UTF-8 bytes; anything else is not our password.
        const QByteArray data = job->binaryData();
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(data);
        if (!decoder.hasError())
            result = text;
    }
    job->deleteLater();
    return result;
}

void save(const QString &password, const QString &account)
{
    // The executor runs jobs one after another, so the delete lands before the write.
    deletePassword(account);
    auto *job = makeJob<QKeychain::WritePasswordJob>(account);
    job->setBinaryData(password.toUtf8());
    job->start();
}

void deletePassword(const QString &account)
{
    makeJob<QKeychain::DeletePasswordJob>(account)->start();
}

}
