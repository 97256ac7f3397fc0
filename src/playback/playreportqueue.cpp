#include "playreportqueue.h"

#include "common/atomicwrite.h"
#include "server/json.h"
#include "server/subsonicerror.h"
#include "server/transporterror.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {
QJsonObject toJson(const PendingPlay &play)
{
    return {{u"account"_s, play.account}, {u"songId"_s, play.songId}, {u"playedAt"_s, play.playedAt}};
}

// Whether a play the server did not take should wait for another try. Only an answer that refuses the play
// itself drops it; a server away, busy or broken for a while, or one refusing the account, keeps it.
bool worthKeeping(std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const SubsonicError &subsonic) {
        switch (subsonic.kind) {
        case SubsonicError::Kind::Server:
            // 40: wrong credentials; 50: not authorised.
            return subsonic.code == 40 || subsonic.code == 50;
        case SubsonicError::Kind::Http:
            return subsonic.status >= 500 || subsonic.status == 401 || subsonic.status == 403 || subsonic.status == 429;
        case SubsonicError::Kind::InvalidResponse:
            // Not the server at all: a captive portal's page, a proxy's.
            return true;
        }
    } catch (const TransportError &) {
        return true;
    } catch (...) {
    }
    return false;
}

PendingPlay fromJson(const QJsonObject &object)
{
    return {.account = Json::requiredString(object, "account"_L1),
            .songId = Json::requiredString(object, "songId"_L1),
            .playedAt = Json::requiredInt(object, "playedAt"_L1)};
}
}

PlayReportQueue::PlayReportQueue(QString folder, QObject *parent) : QObject(parent), m_folder(std::move(folder))
{
    load();
}

QString PlayReportQueue::filePath() const
{
    return m_folder + "/pending-plays.json"_L1;
}

void PlayReportQueue::load()
{
    QFile file(filePath());
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    file.close();
    try {
        const QJsonDocument document = QJsonDocument::fromJson(bytes);
        if (!document.isArray())
            throw Json::DecodeError{};
        for (const QJsonValue &value : document.array())
            m_pending.append(fromJson(Json::asObject(value)));
    } catch (const Json::DecodeError &) {
        // Kept for whoever wants to look, out of the way of the next save.
        m_pending.clear();
        QFile::remove(filePath() + ".corrupt"_L1);
        QFile::rename(filePath(), filePath() + ".corrupt"_L1);
    }
}

void PlayReportQueue::save()
{
    if (m_pending.isEmpty()) {
        QFile::remove(filePath());
    } else {
        QJsonArray plays;
        for (const PendingPlay &play : std::as_const(m_pending))
            plays.append(toJson(play));
        QDir().mkpath(m_folder);
        writeAtomically(filePath(), QJsonDocument(plays).toJson(QJsonDocument::Compact));
    }
    Q_EMIT pendingChanged();
}

void PlayReportQueue::submit(const SubsonicClient &client, const QString &songId, qint64 playedAt)
{
    m_pending.append({serverKey(client.config()), songId, playedAt});
    // The oldest go first when there are too many: a later play says more of what was heard lately.
    if (m_pending.size() > capacity)
        m_pending.remove(0, m_pending.size() - capacity);
    save();
    setClient(client);
}

void PlayReportQueue::setClient(const SubsonicClient &client)
{
    m_client = client;
    watch(client.network());
    flush();
}

void PlayReportQueue::watch(QNetworkAccessManager *network)
{
    m_watched.removeAll(nullptr);
    if (!network || m_watched.contains(network))
        return;
    m_watched.append(network);
    connect(network, &QNetworkAccessManager::finished, this, &PlayReportQueue::requestFinished);
}

// Any answer of the account's server means it can be reached again.
void PlayReportQueue::requestFinished(QNetworkReply *reply)
{
    if (!m_client || m_sending || m_flushQueued || reply->error() != QNetworkReply::NoError)
        return;
    const ServerConfig &config = m_client->config();
    const QUrl url = reply->url();
    const bool sameAccount = url.host() == config.baseURL.host() && url.port() == config.baseURL.port()
        && url.path().startsWith(config.baseURL.path()) && QUrlQuery(url).queryItemValue(u"u"_s) == config.username;
    if (!sameAccount)
        return;
    const QString account = serverKey(config);
    if (std::any_of(m_pending.cbegin(), m_pending.cend(), [&](const PendingPlay &play) { return play.account == account; })) {
        // Not inside the reply's own signal: the send starts from the event loop.
        m_flushQueued = true;
        QTimer::singleShot(0, this, [this] {
            m_flushQueued = false;
            flush();
        });
    }
}

void PlayReportQueue::flush()
{
    if (m_sending || !m_client)
        return;
    sendAll(this, *m_client);
}

// One at a time and in order: a play leaves the file only once the server has it, so a crash in the middle sends
// at most the play in flight twice.
QCoro::Task<> PlayReportQueue::sendAll(QPointer<PlayReportQueue> self, SubsonicClient client)
{
    const QString account = serverKey(client.config());
    m_sending = true;
    Q_EMIT sendingChanged();
    while (true) {
        const auto next = std::find_if(m_pending.cbegin(), m_pending.cend(),
                                       [&](const PendingPlay &play) { return play.account == account; });
        if (next == m_pending.cend())
            break;
        const PendingPlay play = *next;
        bool keep = false;
        try {
            co_await client.scrobble(play.songId, ScrobbleKind::Played, play.playedAt);
        } catch (...) {
            keep = worthKeeping(std::current_exception());
        }
        if (!self)
            co_return;
        if (keep)
            break;
        m_pending.removeOne(play);
        save();
    }
    m_sending = false;
    Q_EMIT sendingChanged();
    // Another account came in meanwhile: its turn.
    if (m_client && serverKey(m_client->config()) != account)
        flush();
}
