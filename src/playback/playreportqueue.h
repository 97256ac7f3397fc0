#pragma once

// Plays waiting to be reported to the server. Every finished play ("submission" true) goes through here in the
// order it was heard: sent at once when the server answers, and kept on disk with the time it was heard when the
// server can't be reached, to go out after the account's next successful request, or at the next start. A play
// leaves only once the server has taken it; one the server refuses is dropped so that it cannot hold up the rest.
// Each play belongs to its account: another account never sends it. At most the newest 500 are kept.

#include "common/task.h"
#include "server/subsonicclient.h"

#include <QList>
#include <QObject>
#include <QPointer>

class QNetworkAccessManager;
class QNetworkReply;

struct PendingPlay {
    QString account; // serverKey of the account it was heard on
    QString songId;
    qint64 playedAt = 0; // milliseconds since 1970

    bool operator==(const PendingPlay &) const = default;
};

class PlayReportQueue : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype capacity = 500;

    // Reads what an earlier run left in `folder`; a file that can't be read is set aside and the queue starts empty.
    explicit PlayReportQueue(QString folder, QObject *parent = nullptr);

    [[nodiscard]] const QList<PendingPlay> &pending() const { return m_pending; }
    // A play is on its way to the server.
    [[nodiscard]] bool isSending() const { return m_sending; }
    [[nodiscard]] QString filePath() const;

    void submit(const SubsonicClient &client, const QString &songId, qint64 playedAt);
    // The account now in use: its waiting plays go out now, and again after each of its successful requests.
    void setClient(const SubsonicClient &client);

Q_SIGNALS:
    void pendingChanged();
    void sendingChanged();

private:
    void load();
    void save();
    void watch(QNetworkAccessManager *network);
    void requestFinished(QNetworkReply *reply);
    void flush();
    QCoro::Task<> sendAll(QPointer<PlayReportQueue> self, SubsonicClient client);

    QString m_folder;
    QList<PendingPlay> m_pending;
    std::optional<SubsonicClient> m_client;
    QList<QPointer<QNetworkAccessManager>> m_watched;
    bool m_sending = false;
    bool m_flushQueued = false;
};
