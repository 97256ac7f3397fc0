#pragma once

// The two fetches of the download store: a song's file streamed to disk, and a cover into memory. Both run on
// the store's own network manager, both stop when their token is cancelled, and both refuse a 2xx answer whose
// Content-Type is JSON or XML: some servers report a failed download with status 200 and an error body, which
// must never be kept as a song or a cover.

#include "common/task.h"

#include <QByteArray>
#include <QCoroTask>
#include <QLatin1StringView>
#include <QString>
#include <QUrl>

#include <optional>

class QNetworkAccessManager;

// Whether a Content-Type names JSON or XML, the forms in which a server speaks rather than sends a file.
[[nodiscard]] bool isServerMessageType(QByteArrayView contentType);

// Streams the answer into a new hidden file in `directory`, writing each chunk as it arrives, and makes it
// durable before handing back its path. Nothing: the transfer failed, was refused, was cancelled or could not be
// written; no file is left behind then. A cancellation that comes once every byte is in no longer stops it: the
// file is handed back, and the caller moves it into place or deletes it.
QCoro::Task<std::optional<QString>> fetchToFile(QNetworkAccessManager *network, QUrl url, QString directory,
                                                CancelToken token);

// The whole body of an acceptable answer, or nothing; an answer larger than `limit` is stopped and refused.
QCoro::Task<std::optional<QByteArray>> fetchToMemory(QNetworkAccessManager *network, QUrl url, qint64 limit,
                                                     CancelToken token);

// Names of files still being received. One left by a crash is junk: the store deletes it when it starts.
inline constexpr QLatin1StringView partialFilePrefix(".partial-");
