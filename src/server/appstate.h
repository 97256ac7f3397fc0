#pragma once

// The signed-in account: whether there is one, its client, and the stores that belong to it. One per process,
// on the main thread. The constructor starts restoring the saved account; the password comes from the Secret
// Service, which may take its time (a locked keyring asks its user), so the account is signed in when it
// answers, and until then `restoring` is true.

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
    Q_PROPERTY(bool restoring READ isRestoring NOTIFY restoringChanged)
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
    [[nodiscard]] bool isRestoring() const { return m_restoring; }
    [[nodiscard]] const std::optional<SubsonicClient> &client() const { return m_client; }
    // Present exactly when the client is; replaced with every new client.
    [[nodiscard]] LibraryStore *library() const { return m_library.get(); }
    // The base URL's absolute string and the user name; empty when signed out.
    [[nodiscard]] QString serverURL() const;
    [[nodiscard]] QString username() const;
    // Present exactly while a client is.
    [[nodiscard]] DownloadStore *downloads() const { return m_downloads.get(); }

    // Proves the account with a ping, saves it (the password is in the keyring before the account is taken
    // up), then adopts it. Throws what the ping threw and changes nothing.
    QCoro::Task<> connect(QString urlString, QString username, QString password,
                          AuthMethod authMethod = AuthMethod::Token);
    // Forgets the account at once; the keyring's item goes in the background, and quit waits for it.
    void logout();

Q_SIGNALS:
    void clientChanged();
    void downloadsChanged();
    void restoringChanged();

private:
    QCoro::Task<> restoreSession();
    void setClient(std::optional<SubsonicClient> client);

    QSettings *m_settings;
    QNetworkAccessManager *m_network;
    std::optional<SubsonicClient> m_client;
    bool m_restoring = false;
    std::unique_ptr<LibraryStore, void (*)(LibraryStore *)> m_library;
    std::shared_ptr<DownloadStore> m_downloads;
};
