#pragma once

// The connect screen's form: the three typed fields, whether they may be sent, and the one connect attempt
// that may run. A success leaves the screen; the form is made afresh at the next sign-out.

#include "common/task.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

class AppState;

class ConnectForm : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(AppState *appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(QString serverURL READ serverURL WRITE setServerURL NOTIFY serverURLChanged)
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool usesLegacyAuthentication READ usesLegacyAuthentication WRITE setUsesLegacyAuthentication
                   NOTIFY usesLegacyAuthenticationChanged)
    Q_PROPERTY(bool isConnecting READ isConnecting NOTIFY isConnectingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool canConnect READ canConnect NOTIFY canConnectChanged)

public:
    explicit ConnectForm(QObject *parent = nullptr);

    [[nodiscard]] AppState *appState() const { return m_appState; }
    void setAppState(AppState *appState);
    [[nodiscard]] const QString &serverURL() const { return m_serverURL; }
    void setServerURL(const QString &text);
    [[nodiscard]] const QString &username() const { return m_username; }
    void setUsername(const QString &text);
    [[nodiscard]] const QString &password() const { return m_password; }
    void setPassword(const QString &text);
    [[nodiscard]] bool usesLegacyAuthentication() const { return m_usesLegacyAuthentication; }
    void setUsesLegacyAuthentication(bool legacy);
    [[nodiscard]] bool isConnecting() const { return m_isConnecting; }
    // Empty when there is nothing to show under the form.
    [[nodiscard]] const QString &errorMessage() const { return m_errorMessage; }

    // Only the address is trimmed, and only of spaces and tabs (not line ends): a blank-only user name is a name.
    [[nodiscard]] bool canConnect() const;

    // Sends the form; the button and the Return key in every field both land here, and it does nothing unless
    // canConnect() holds.
    Q_INVOKABLE void submit();

Q_SIGNALS:
    void appStateChanged();
    void serverURLChanged();
    void usernameChanged();
    void passwordChanged();
    void usesLegacyAuthenticationChanged();
    void isConnectingChanged();
    void errorMessageChanged();
    void canConnectChanged();

private:
    QCoro::Task<> connect(CancelToken token);
    void setIsConnecting(bool connecting);
    void setErrorMessage(const QString &message);
    void updateCanConnect();

    QPointer<AppState> m_appState;
    QString m_serverURL;
    QString m_username;
    QString m_password;
    bool m_usesLegacyAuthentication = false;
    bool m_isConnecting = false;
    QString m_errorMessage;
    bool m_canConnect = false;
    TaskHandle m_connectTask;
};
