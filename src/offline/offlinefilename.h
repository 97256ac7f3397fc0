#pragma once

#include <QString>

// The one way a server-given string becomes a name on disk: the SHA-256 of its UTF-8 bytes in 64 lower-case hex
// characters. Song files, server folders and both cover caches are named by it, so an id can never walk out of
// its folder. The digest must stay SHA-256, or existing downloads are no longer found.
[[nodiscard]] QString offlineFileName(QStringView text);
