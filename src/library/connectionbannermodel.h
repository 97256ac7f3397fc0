#pragma once

// What the connection banner over the main window's content shows, if anything: a standing fault while the
// server can't be used and something is still on screen, else the last failed action. A full page showing the
// fault silences both. A failure that cannot be retried closes by itself after six seconds.

#include "connectionfault.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class DownloadStore;
class LibraryStore;

class ConnectionBannerModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_MOC_INCLUDE("librarystore.h")
    Q_MOC_INCLUDE("offline/downloadstore.h")
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(DownloadStore *downloads READ downloads WRITE setDownloads NOTIFY downloadsChanged)
    Q_PROPERTY(bool faultShownFullPage READ faultShownFullPage WRITE setFaultShownFullPage NOTIFY changed)
    Q_PROPERTY(bool shown READ isShown NOTIFY changed)
    Q_PROPERTY(bool isStanding READ isStanding NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(bool isWarning READ isWarning NOTIFY changed)
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY changed)
    Q_PROPERTY(bool isRetrying READ isRetrying NOTIFY changed)

public:
    // A failure without a retry stays this long.
    static constexpr int dismissAfterMs = 6000;

    explicit ConnectionBannerModel(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const { return m_library; }
    void setLibrary(LibraryStore *library);
    [[nodiscard]] DownloadStore *downloads() const { return m_downloads; }
    void setDownloads(DownloadStore *downloads);
    [[nodiscard]] bool faultShownFullPage() const { return m_faultShownFullPage; }
    void setFaultShownFullPage(bool shown);

    [[nodiscard]] bool isShown() const { return m_standing.has_value() || m_failure.has_value(); }
    // A standing fault offers "Try Again"; a failed action offers "Retry" when it can, and a close button.
    [[nodiscard]] bool isStanding() const { return m_standing.has_value(); }
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString detail() const;
    [[nodiscard]] QString symbol() const;
    // Orange for a fault of reach or password; yellow (false) for an error of the server.
    [[nodiscard]] bool isWarning() const;
    [[nodiscard]] bool canRetry() const;
    [[nodiscard]] bool isRetrying() const;

    Q_INVOKABLE void tryAgain();
    Q_INVOKABLE void retry();
    Q_INVOKABLE void dismiss();

Q_SIGNALS:
    void libraryChanged();
    void downloadsChanged();
    void changed();

private:
    void update();
    [[nodiscard]] std::optional<ConnectionFault> fault() const;

    QPointer<LibraryStore> m_library;
    QPointer<DownloadStore> m_downloads;
    bool m_faultShownFullPage = false;
    std::optional<ConnectionFault> m_standing;
    std::optional<StoreFailure> m_failure;
    QTimer m_dismissal;
};

// The full page that stands in place of a screen with nothing to show while the server can't be used.
class ServerUnavailableModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(LibraryStore *library READ library WRITE setLibrary NOTIFY libraryChanged)
    Q_PROPERTY(DownloadStore *downloads MEMBER m_downloads NOTIFY changed)
    Q_PROPERTY(bool isEmpty MEMBER m_isEmpty NOTIFY changed)
    Q_PROPERTY(bool shown READ isShown NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString description READ description NOTIFY changed)
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(bool canRetry READ canRetry NOTIFY changed)
    Q_PROPERTY(bool isRetrying READ isRetrying NOTIFY changed)

public:
    explicit ServerUnavailableModel(QObject *parent = nullptr);

    [[nodiscard]] LibraryStore *library() const { return m_library; }
    void setLibrary(LibraryStore *library);
    [[nodiscard]] bool isShown() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString description() const;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] bool canRetry() const;
    [[nodiscard]] bool isRetrying() const;
    Q_INVOKABLE void tryAgain();

Q_SIGNALS:
    void libraryChanged();
    void changed();

private:
    [[nodiscard]] std::optional<ConnectionFault> fault() const;

    QPointer<LibraryStore> m_library;
    QPointer<DownloadStore> m_downloads;
    bool m_isEmpty = false;
};
