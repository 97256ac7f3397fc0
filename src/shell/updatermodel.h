#pragma once

// The update check: asks the feed whether a newer release exists and reports it; nothing is downloaded or
// installed. Without a feed address the check is off and the menu item stays disabled.

#include "common/task.h"
#include "updatefeed.h"

#include <QObject>
#include <QUrl>
#include <QVersionNumber>
#include <QtQml/qqmlregistration.h>

class QNetworkAccessManager;
class QSettings;

class UpdaterModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)
    Q_PROPERTY(bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates
                   WRITE setAutomaticallyChecksForUpdates NOTIFY automaticallyChecksForUpdatesChanged)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY reportChanged)
    Q_PROPERTY(QString reportTitle READ reportTitle NOTIFY reportChanged)
    Q_PROPERTY(QString reportText READ reportText NOTIFY reportChanged)
    Q_PROPERTY(QUrl reportLink READ reportLink NOTIFY reportChanged)

public:
    struct Setup {
        QNetworkAccessManager *network = nullptr;
        QSettings *settings = nullptr;
        QUrl feedURL; // empty: no update check
        QVersionNumber currentVersion;
    };

    explicit UpdaterModel(Setup setup, QObject *parent = nullptr);

    // False without a feed and while a check runs.
    [[nodiscard]] bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    [[nodiscard]] bool automaticallyChecksForUpdates() const;
    void setAutomaticallyChecksForUpdates(bool automatic);
    [[nodiscard]] bool hasCheckedOnLaunch() const { return m_hasCheckedOnLaunch; }

    // The window's start-up check: once per process, and only when automatic checks are on.
    Q_INVOKABLE void checkOnLaunch();
    // Asked for by the user: reports the outcome whatever it is.
    Q_INVOKABLE void checkForUpdates();
    // Reports only a newer release; silence otherwise.
    void checkForUpdatesInBackground();

    // What the update dialog shows; empty when there is nothing to show.
    [[nodiscard]] bool hasReport() const { return !m_reportTitle.isEmpty(); }
    [[nodiscard]] const QString &reportTitle() const { return m_reportTitle; }
    [[nodiscard]] const QString &reportText() const { return m_reportText; }
    [[nodiscard]] const QUrl &reportLink() const { return m_reportLink; }
    Q_INVOKABLE void dismissReport();

Q_SIGNALS:
    void canCheckForUpdatesChanged();
    void automaticallyChecksForUpdatesChanged();
    void reportChanged();

private:
    enum class Asker { User, Background };

    void startCheck(Asker asker);
    QCoro::Task<> check(Asker asker, CancelToken token);
    void reportOffer(const UpdateOffer &offer);
    void setReport(QString title, QString text, QUrl link);
    void setCanCheckForUpdates(bool can);

    Setup m_setup;
    bool m_canCheckForUpdates;
    bool m_hasCheckedOnLaunch = false;
    QString m_reportTitle;
    QString m_reportText;
    QUrl m_reportLink;
    TaskHandle m_checkTask;
};
