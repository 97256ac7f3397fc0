#pragma once

// The signed-in account: whether there is one, its client, and the stores that belong to it. One per process,
// on the main thread. The saved account is restored in the constructor, before any window shows.

#include "subsonicclient.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <optional>

class LibraryStore;
class DownloadStore;
class QSettings;

class AppState : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("One per process, made at start")
    Q_PROPERTY(bool signedIn READ isSignedIn NOTIFY clientChanged)
    Q_PROPERTY(QString serverURL READ serverURL NOTIFY clientChanged)
    Q_PROPERTY(QString username READ username NOTIFY clientChanged)
    Q_PROPERTY(LibraryStore *library READ library NOTIFY clientChanged)
    Q_PROPERTY(DownloadStore *downloads READ downloads NOTIFY downloadsChanged)
    Q_MOC_INCLUDE("offline/downloadstore.h")

public:
    // `settings` holds the saved account; `network` is handed to every client (the shared manager when null).
    explicit AppState(QSettings *settings, QNetworkAccessManager *network = nullptr, QObject *parent = nullptr);
    ~AppState() override;

    [[nodiscard]] bool isSignedIn() const { return m_client.has_value(); }
    [[nodiscard]] const std::optional<SubsonicClient> &client() const { return m_client; }
    // Present exactly when the client is; replaced with every new client.
    [[nodiscard]] LibraryStore *library() const { return m_library.get(); }
    // The base URL's absolute string and the user name; empty when signed out.
    [[nodiscard]] QString serverURL() const;
    [[nodiscard]] QString username() const;
    // Present exactly while a client is.
    [[nodiscard]] DownloadStore *downloads() const { return m_downloads.get(); }

    // Proves the account with a ping, then saves and adopts it. Throws what the ping threw and changes nothing.
    QCoro::Task<> connect(QString urlString, QString username, QString password,
                          AuthMethod authMethod = AuthMethod::Token);
    void logout();

Q_SIGNALS:
    void clientChanged();
    void downloadsChanged();

private:
    void restoreSession();
    void setClient(std::optional<SubsonicClient> client);

    QSettings *m_settings;
    QNetworkAccessManager *m_network;
    std::optional<SubsonicClient> m_client;
    std::unique_ptr<LibraryStore, void (*)(LibraryStore *)> m_library;
    std::shared_ptr<DownloadStore> m_downloads;
};
