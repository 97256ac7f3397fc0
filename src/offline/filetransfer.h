#pragma once

// The two fetches of the download store: a song's file streamed to disk, and a cover into memory. Both run on
// the store's own network manager, both stop when their token is cancelled, and both live under the limits of
// guardTransfer: a largest size, checked from the announced length on, and a floor rate.
//
// Some servers report a failed download as status 200 with an error body, and not always with a JSON or XML
// Content-Type. An answer is taken as a file only when its status is 200 to 299 but for 204 (no content) and
// 206 (a part: no range is ever asked for), its type is not JSON or XML, and its first bytes are not the
// start of a JSON, XML or HTML text, which no audio or image format begins with.

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
// Whether a body begins as a JSON, XML or HTML text would; undecided (false) while it holds only blanks.
[[nodiscard]] bool startsLikeServerMessage(QByteArrayView body);

// Streams the answer into a new hidden file in `directory`, writing each chunk as it arrives, and makes it
// durable before handing back its path. Nothing: the transfer failed, was refused, grew past `maxBytes`, was
// cancelled or could not be written; no file is left behind then. A cancellation that comes once every byte
// is in no longer stops it: the file is handed back, and the caller moves it into place or deletes it.
QCoro::Task<std::optional<QString>> fetchToFile(QNetworkAccessManager *network, QUrl url, QString directory,
                                                qint64 maxBytes, CancelToken token);

// The whole body of an acceptable answer, or nothing; an answer larger than `limit` is stopped and refused.
QCoro::Task<std::optional<QByteArray>> fetchToMemory(QNetworkAccessManager *network, QUrl url, qint64 limit,
                                                     CancelToken token);

// Names of files still being received. One left by a crash is junk: the store deletes it when it starts.
inline constexpr QLatin1StringView partialFilePrefix(".partial-");
