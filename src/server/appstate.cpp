#include "appstate.h"

#include "keychain.h"
#include "library/librarystore.h"
#include "offline/downloadstore.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString serverURLKey = u"serverURL"_s;
const QString usernameKey = u"username"_s;
const QString authMethodKey = u"authMethod"_s; // present only for the legacy form
const QString legacyAuthValue = u"legacyPassword"_s;

// A store may still have tasks resuming later in this turn of the event loop, so it goes with deleteLater.
void dropLater(LibraryStore *store)
{
    if (store)
        store->deleteLater();
}
}

AppState::AppState(QSettings *settings, QNetworkAccessManager *network, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_network(network)
    , m_library(nullptr, dropLater)
{
    restoreSession();
}

AppState::~AppState() = default;

QString AppState::serverURL() const
{
    return m_client ? m_client->config().baseURL.toString() : QString();
}

QString AppState::username() const
{
    return m_client ? m_client->config().username : QString();
}

// No ping here on purpose: Velto opens on what it holds even when the server is away, and a changed password
// shows up with the first real request.
QCoro::Task<> AppState::restoreSession()
{
    const QString urlText = m_settings->value(serverURLKey).toString();
    if (urlText.isEmpty())
        co_return;
    const QUrl url(urlText, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        co_return;
    if (!m_settings->contains(usernameKey))
        co_return;
    const QString username = m_settings->value(usernameKey).toString();
    const AuthMethod authMethod =
        m_settings->value(authMethodKey).toString() == legacyAuthValue ? AuthMethod::LegacyPassword : AuthMethod::Token;

    m_restoring = true;
    QPointer<AppState> self(this);
    const std::optional<QString> password = co_await Keychain::password(username + u'@' + urlText);
    // A connect that finished meanwhile is the newer word.
    if (!self || !m_restoring)
        co_return;
    m_restoring = false;
    if (password)
        setClient(SubsonicClient(ServerConfig{url, username, *password, authMethod}, m_network));
    Q_EMIT restoringChanged();
}

QCoro::Task<> AppState::connect(QString urlString, QString username, QString password, AuthMethod authMethod)
{
    const std::optional<QUrl> url = normalizeServerURL(urlString);
    if (!url)
        throw SubsonicError::invalidResponse();
    const SubsonicClient client(ServerConfig{*url, username, password, authMethod}, m_network);
    QPointer<AppState> self(this);
    co_await client.ping();
    if (!self)
        co_return;

    m_settings->setValue(serverURLKey, url->toString(QUrl::FullyEncoded));
    m_settings->setValue(usernameKey, username);
    if (authMethod == AuthMethod::LegacyPassword)
        m_settings->setValue(authMethodKey, legacyAuthValue);
    else
        m_settings->remove(authMethodKey);
    m_settings->sync();
    co_await Keychain::save(password, serverKey(client.config()));
    if (!self)
        co_return;
    if (std::exchange(m_restoring, false))
        Q_EMIT restoringChanged();
    setClient(client);
}

void AppState::logout()
{
    // The key comes from the saved defaults, not the client, so it removes what a later start would restore.
    if (m_settings->contains(serverURLKey) && m_settings->contains(usernameKey)) {
        Keychain::deletePassword(m_settings->value(usernameKey).toString() + u'@'
                                 + m_settings->value(serverURLKey).toString());
    }
    m_settings->remove(serverURLKey);
    m_settings->remove(usernameKey);
    m_settings->remove(authMethodKey);
    m_settings->sync();
    if (std::exchange(m_restoring, false))
        Q_EMIT restoringChanged();
    setClient(std::nullopt);
}

void AppState::setClient(std::optional<SubsonicClient> client)
{
    m_client = std::move(client);
    m_library.reset(m_client ? new LibraryStore(*m_client) : nullptr);
    // A running download holds the store it began in until it ends; nothing is cancelled here. The artwork
    // cache keeps looking in the account's cover folder after sign-out, so that covers of downloaded music
    // are there for the next sign-in, whose store points it anew.
    m_downloads = m_client ? DownloadStore::create(*m_client) : nullptr;
    Q_EMIT clientChanged();
    Q_EMIT downloadsChanged();
}
