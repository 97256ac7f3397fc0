#include "updatermodel.h"

#include "common/observable.h"
#include "server/json.h"
#include "server/transporterror.h"

#include <QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString automaticKey = u"automaticallyChecksForUpdates"_s;
// A feed is a few hundred bytes; anything much bigger is not one.
constexpr qint64 maxFeedBytes = 64 * 1024;
}

UpdaterModel::UpdaterModel(Setup setup, QObject *parent)
    : QObject(parent)
    , m_setup(std::move(setup))
    , m_canCheckForUpdates(m_setup.feedURL.isValid() && !m_setup.feedURL.isEmpty())
{
}

bool UpdaterModel::automaticallyChecksForUpdates() const
{
    return m_setup.settings->value(automaticKey, true).toBool();
}

void UpdaterModel::setAutomaticallyChecksForUpdates(bool automatic)
{
    if (automatic == automaticallyChecksForUpdates())
        return;
    m_setup.settings->setValue(automaticKey, automatic);
    Q_EMIT automaticallyChecksForUpdatesChanged();
}

void UpdaterModel::checkOnLaunch()
{
    if (m_hasCheckedOnLaunch)
        return;
    m_hasCheckedOnLaunch = true;
    if (automaticallyChecksForUpdates())
        checkForUpdatesInBackground();
}

void UpdaterModel::checkForUpdates()
{
    startCheck(Asker::User);
}

void UpdaterModel::checkForUpdatesInBackground()
{
    startCheck(Asker::Background);
}

void UpdaterModel::startCheck(Asker asker)
{
    if (!m_canCheckForUpdates)
        return;
    setCanCheckForUpdates(false);
    m_checkTask.start([this, asker](CancelToken token) { return check(asker, token); });
}

QCoro::Task<> UpdaterModel::check(Asker asker, CancelToken token)
{
    QNetworkRequest request(m_setup.feedURL);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    QNetworkReply *reply = m_setup.network->get(request);
    bool tooLarge = false;
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply, &tooLarge](qint64 received, qint64) {
        if (received > maxFeedBytes && !tooLarge) {
            tooLarge = true;
            reply->abort();
        }
    });
    token.track(reply);
    co_await qCoro(reply).waitForFinished();
    token.untrack(reply);
    reply->deleteLater();
    if (token.isCancelled())
        co_return;
    setCanCheckForUpdates(true);

    std::optional<UpdateOffer> offer;
    QString failure;
    if (tooLarge) {
        failure = tr("The update information could not be read.");
    } else if (reply->error() != QNetworkReply::NoError) {
        failure = TransportError(reply->error()).description();
    } else {
        try {
            offer = UpdateOffer::fromJson(reply->read(maxFeedBytes));
        } catch (const Json::DecodeError &) {
            failure = tr("The update information could not be read.");
        }
    }

    if (offer && offer->version > m_setup.currentVersion)
        reportOffer(*offer);
    else if (asker == Asker::Background)
        co_return;
    else if (offer)
        setReport(tr("You're up to date"),
                  tr("Velto %1 is the newest version available.").arg(m_setup.currentVersion.toString()), {});
    else
        setReport(tr("Update Error"), tr("Velto couldn't check for updates. %1").arg(failure), {});
}

void UpdaterModel::reportOffer(const UpdateOffer &offer)
{
    QString text = tr("Velto %1 is available; you have %2.")
                       .arg(offer.version.toString(), m_setup.currentVersion.toString());
    if (!offer.notes.isEmpty())
        text += u"\n\n"_s + offer.notes;
    setReport(tr("A new version of Velto is available"), text, offer.pageURL);
}

void UpdaterModel::dismissReport()
{
    setReport({}, {}, {});
}

void UpdaterModel::setReport(QString title, QString text, QUrl link)
{
    if (title == m_reportTitle && text == m_reportText && link == m_reportLink)
        return;
    m_reportTitle = std::move(title);
    m_reportText = std::move(text);
    m_reportLink = std::move(link);
    Q_EMIT reportChanged();
}

void UpdaterModel::setCanCheckForUpdates(bool can)
{
    assignField(this, m_canCheckForUpdates, can, &UpdaterModel::canCheckForUpdatesChanged);
}
