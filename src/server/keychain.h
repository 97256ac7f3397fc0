#pragma once

// The account's password in the desktop's Secret Service, as one item of service "co.marrowlight.velto" per
// account. There is never a plain-text fallback: with no Secret Service the password is simply not kept.
//
// Every call is asynchronous: a locked keyring may ask its user first, and nothing may wait for that on the
// main thread. Writes must land before the program ends, so quit waits for the jobs still running.

#include <QCoroTask>
#include <QString>

#include <chrono>
#include <optional>

namespace Keychain {
inline constexpr char service[] = "co.marrowlight.velto";

// None when there is no item, the keyring refused, or the bytes are not UTF-8.
QCoro::Task<std::optional<QString>> password(QString account);

// Replaces the item: the old one is deleted first, so that a second save of one account does not fail on a
// duplicate. Failures go unnoticed, as the caller wants.
QCoro::Task<> save(QString password, QString account);
QCoro::Task<> deletePassword(QString account);

// Runs the event loop until every job has finished, or `timeout` has passed.
void waitForPendingJobs(std::chrono::milliseconds timeout);
}
