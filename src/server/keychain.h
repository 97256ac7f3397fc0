#pragma once

// The account's password in the desktop's Secret Service, as one item of service "co.marrowlight.velto" per
// account. There is never a plain-text fallback: with no Secret Service the password is simply not kept.

#include <QString>

#include <optional>

namespace Keychain {
inline constexpr char service[] = "co.marrowlight.velto";

// Waits for the Secret Service, so the saved account is known before any window shows.
[[nodiscard]] std::optional<QString> password(const QString &account);

// Queued behind earlier jobs and not awaited; failures go unnoticed, as the caller wants.
void save(const QString &password, const QString &account);
void deletePassword(const QString &account);
}
