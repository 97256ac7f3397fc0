#include "connectform.h"

#include "common/observable.h"
#include "library/connectionfault.h"
#include "server/appstate.h"

namespace {
bool isBlank(QChar c)
{
    return c.category() == QChar::Separator_Space || c == u'\t';
}

// Line ends stay: an address with a pasted newline should fail visibly rather than connect to a guess.
bool hasTextBetweenBlanks(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) { return !isBlank(c); });
}
}

ConnectForm::ConnectForm(QObject *parent)
    : QObject(parent)
{
}

void ConnectForm::setAppState(AppState *appState)
{
    if (m_appState == appState)
        return;
    m_appState = appState;
    Q_EMIT appStateChanged();
}

void ConnectForm::setServerURL(const QString &text)
{
    if (assignField(this, m_serverURL, text, &ConnectForm::serverURLChanged))
        updateCanConnect();
}

void ConnectForm::setUsername(const QString &text)
{
    if (assignField(this, m_username, text, &ConnectForm::usernameChanged))
        updateCanConnect();
}

void ConnectForm::setPassword(const QString &text)
{
    if (assignField(this, m_password, text, &ConnectForm::passwordChanged))
        updateCanConnect();
}

void ConnectForm::setUsesLegacyAuthentication(bool legacy)
{
    assignField(this, m_usesLegacyAuthentication, legacy, &ConnectForm::usesLegacyAuthenticationChanged);
}

bool ConnectForm::canConnect() const
{
    return hasTextBetweenBlanks(m_serverURL) && !m_username.isEmpty() && !m_password.isEmpty() && !m_isConnecting;
}

void ConnectForm::submit()
{
    if (!canConnect() || !m_appState)
        return;
    setErrorMessage(QString());
    setIsConnecting(true);
    m_connectTask.start([this](CancelToken token) { return connect(token); });
}

QCoro::Task<> ConnectForm::connect(CancelToken token)
{
    const AuthMethod method = m_usesLegacyAuthentication ? AuthMethod::LegacyPassword : AuthMethod::Token;
    QString failure;
    try {
        co_await m_appState->connect(m_serverURL, m_username, m_password, method);
    } catch (...) {
        failure = errorDescription(std::current_exception());
    }
    if (token.isCancelled())
        co_return;
    setErrorMessage(failure);
    setIsConnecting(false);
}

void ConnectForm::setIsConnecting(bool connecting)
{
    if (assignField(this, m_isConnecting, connecting, &ConnectForm::isConnectingChanged))
        updateCanConnect();
}

void ConnectForm::setErrorMessage(const QString &message)
{
    assignField(this, m_errorMessage, message, &ConnectForm::errorMessageChanged);
}

void ConnectForm::updateCanConnect()
{
    assignField(this, m_canConnect, canConnect(), &ConnectForm::canConnectChanged);
}
