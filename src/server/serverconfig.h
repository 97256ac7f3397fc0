#pragma once

#include <QString>
#include <QUrl>

#include <optional>

// How requests prove the account. Tokens keep the password off the wire; the legacy form sends it
// hex-encoded, for servers of the family that store only password hashes or check against LDAP.
enum class AuthMethod { Token, LegacyPassword };

struct ServerConfig {
    QUrl baseURL; // normalised, no trailing slash
    QString username;
    QString password;
    AuthMethod authMethod = AuthMethod::Token;

    bool operator==(const ServerConfig &) const = default;
};

// The text form of an account: it tags saved files, names the keychain item and, hashed, the downloads folder.
[[nodiscard]] QString serverKey(const ServerConfig &config);

// A typed server address made into a base URL, or nothing when it has no host.
[[nodiscard]] std::optional<QUrl> normalizeServerURL(const QString &text);
