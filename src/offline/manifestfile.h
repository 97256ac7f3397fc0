#pragma once

// Reading and writing "manifest.json" in an account's folder. Best effort both ways: a file that is missing,
// unreadable or fails strict decoding reads as the empty manifest and is left in place for the next save to
// overwrite; a failed write leaves the old file whole.

#include "downloadmanifest.h"

[[nodiscard]] DownloadManifest loadManifest(const QString &serverDirectory);
// Creates the folder when missing and replaces the file in one step. False when anything failed.
bool saveManifest(const DownloadManifest &manifest, const QString &serverDirectory);
