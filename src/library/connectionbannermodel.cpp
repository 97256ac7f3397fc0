#include "connectionbannermodel.h"

#include "cachedcontent.h"
#include "librarystore.h"
#include "offline/downloadstore.h"

using namespace Qt::StringLiterals;

namespace {
QString symbolFor(const ConnectionFault &fault)
{
    switch (fault.kind) {
    case ConnectionFault::Kind::Unauthorized: return u"lock.trianglebadge.exclamationmark"_s;
    case ConnectionFault::Kind::Offline: return u"wifi.exclamationmark"_s;
    default: return u"exclamationmark.triangle"_s;
    }
}

bool hasDownloads(const DownloadStore *downloads)
{
    return downloads && !downloads->manifest().songs.isEmpty();
}
}

ConnectionBannerModel::ConnectionBannerModel(QObject *parent)
    : QObject(parent)
{
    m_dismissal.setSingleShot(true);
    m_dismissal.setInterval(dismissAfterMs);
    connect(&m_dismissal, &QTimer::timeout, this, &ConnectionBannerModel::dismiss);
}

void ConnectionBannerModel::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library) {
        // Whether anything is on screen decides between this banner and a full page, so every list counts.
        connect(library, &LibraryStore::reachabilityChanged, this, &ConnectionBannerModel::update);
        connect(library, &LibraryStore::lastFailureChanged, this, &ConnectionBannerModel::update);
        connect(library, &LibraryStore::isRetryingChanged, this, &ConnectionBannerModel::changed);
        onCachedContentChange(library, this, [this] { update(); });
    }
    Q_EMIT libraryChanged();
    update();
}

void ConnectionBannerModel::setDownloads(DownloadStore *downloads)
{
    if (m_downloads == downloads)
        return;
    if (m_downloads)
        disconnect(m_downloads, nullptr, this, nullptr);
    m_downloads = downloads;
    if (downloads)
        connect(downloads, &DownloadStore::manifestChanged, this, &ConnectionBannerModel::changed);
    Q_EMIT downloadsChanged();
    Q_EMIT changed();
}

void ConnectionBannerModel::setFaultShownFullPage(bool shown)
{
    if (m_faultShownFullPage == shown)
        return;
    m_faultShownFullPage = shown;
    update();
}

// A standing fault outranks a failed action; a full page silences both.
void ConnectionBannerModel::update()
{
    std::optional<ConnectionFault> standing;
    std::optional<StoreFailure> failure;
    if (m_library && !m_faultShownFullPage) {
        if (m_library->reachability().failure && m_library->hasCachedContent())
            standing = m_library->reachability().failure;
        else
            failure = m_library->lastFailure();
    }
    // The wait is keyed on the failure: a new one, even of the same words, waits six seconds afresh.
    if (failure != m_failure) {
        if (failure && !failure->retry)
            m_dismissal.start();
        else
            m_dismissal.stop();
    }
    if (standing == m_standing && failure == m_failure)
        return;
    m_standing = standing;
    m_failure = failure;
    Q_EMIT changed();
}

std::optional<ConnectionFault> ConnectionBannerModel::fault() const
{
    return m_standing ? m_standing : m_failure ? std::optional(m_failure->fault) : std::nullopt;
}

QString ConnectionBannerModel::title() const
{
    if (m_failure)
        return m_failure->message();
    if (!m_standing)
        return {};
    switch (m_standing->kind) {
    case ConnectionFault::Kind::Unauthorized: return u"Your server rejected the saved password"_s;
    case ConnectionFault::Kind::Offline: return u"Can't reach your server"_s;
    default: return m_standing->text;
    }
}

QString ConnectionBannerModel::detail() const
{
    if (!m_standing)
        return {};
    if (m_standing->kind == ConnectionFault::Kind::Unauthorized)
        return u"Sign out and back in to save it again."_s;
    if (m_standing->kind == ConnectionFault::Kind::Offline && hasDownloads(m_downloads))
        return u"Downloaded music still plays."_s;
    return {};
}

QString ConnectionBannerModel::symbol() const
{
    const std::optional<ConnectionFault> shown = fault();
    return shown ? symbolFor(*shown) : QString();
}

bool ConnectionBannerModel::isWarning() const
{
    const std::optional<ConnectionFault> shown = fault();
    return shown && (shown->kind == ConnectionFault::Kind::Offline || shown->kind == ConnectionFault::Kind::Unauthorized);
}

bool ConnectionBannerModel::canRetry() const
{
    return m_standing || (m_failure && m_failure->retry);
}

bool ConnectionBannerModel::isRetrying() const
{
    return m_library && m_library->isRetrying();
}

void ConnectionBannerModel::tryAgain()
{
    if (m_library)
        m_library->retryConnection();
}

void ConnectionBannerModel::retry()
{
    if (m_library)
        m_library->retryLastFailure();
}

void ConnectionBannerModel::dismiss()
{
    m_dismissal.stop();
    if (m_library)
        m_library->setLastFailure(std::nullopt);
}

ServerUnavailableModel::ServerUnavailableModel(QObject *parent)
    : QObject(parent)
{
}

void ServerUnavailableModel::setLibrary(LibraryStore *library)
{
    if (m_library == library)
        return;
    if (m_library)
        disconnect(m_library, nullptr, this, nullptr);
    m_library = library;
    if (library) {
        connect(library, &LibraryStore::reachabilityChanged, this, &ServerUnavailableModel::changed);
        connect(library, &LibraryStore::isRetryingChanged, this, &ServerUnavailableModel::changed);
    }
    Q_EMIT libraryChanged();
    Q_EMIT changed();
}

std::optional<ConnectionFault> ServerUnavailableModel::fault() const
{
    return m_library ? m_library->reachability().failure : std::nullopt;
}

bool ServerUnavailableModel::isShown() const
{
    return m_isEmpty && fault().has_value();
}

QString ServerUnavailableModel::title() const
{
    const std::optional<ConnectionFault> shown = fault();
    if (!shown)
        return {};
    switch (shown->kind) {
    case ConnectionFault::Kind::Unauthorized: return u"Your password no longer works"_s;
    case ConnectionFault::Kind::Offline: return u"Can't reach your server"_s;
    default: return u"Your server returned an error"_s;
    }
}

QString ServerUnavailableModel::description() const
{
    const std::optional<ConnectionFault> shown = fault();
    if (!shown)
        return {};
    switch (shown->kind) {
    case ConnectionFault::Kind::Unauthorized: return u"Sign out and back in to save it again."_s;
    case ConnectionFault::Kind::Offline:
        return hasDownloads(m_downloads)
            ? u"Check that your music server is running and that it's reachable. Downloaded music still plays."_s
            : u"Check that your music server is running and that it's reachable."_s;
    default: return shown->text;
    }
}

QString ServerUnavailableModel::symbol() const
{
    const std::optional<ConnectionFault> shown = fault();
    return shown ? symbolFor(*shown) : QString();
}

// Signing in again is the only cure for a rejected password, so the page offers no retry for it.
bool ServerUnavailableModel::canRetry() const
{
    const std::optional<ConnectionFault> shown = fault();
    return shown && shown->kind != ConnectionFault::Kind::Unauthorized;
}

bool ServerUnavailableModel::isRetrying() const
{
    return m_library && m_library->isRetrying();
}

void ServerUnavailableModel::tryAgain()
{
    if (m_library)
        m_library->retryConnection();
}
