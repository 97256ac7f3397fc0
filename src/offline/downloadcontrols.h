#pragma once

// What the download controls beside an album or a playlist say and do, from what the download store knows: the
// entries of the "⋯" menu and the small badge by the title. Plain functions of their inputs.

#include "collectiondownloadstate.h"
#include "downloadprogress.h"

#include <QList>
#include <QString>

#include <optional>

struct DownloadMenuEntry {
    enum class Action { None, Download, Remove };

    QString text;
    Action action = Action::None;
    bool isEnabled = true;
    bool isDestructive = false;

    bool operator==(const DownloadMenuEntry &) const = default;
};

struct DownloadBadge {
    enum class Kind { None, Failed, Progress, Partial, Downloaded };

    Kind kind = Kind::None;
    double value = 0; // of the progress ring, from 0 to 1
    QString symbol;
    QString toolTip;

    bool operator==(const DownloadBadge &) const = default;
};

namespace DownloadControls {
// `isHeld`: the collection's download ran to its end once and is in the manifest.
[[nodiscard]] QList<DownloadMenuEntry> albumEntries(const std::optional<DownloadProgress> &progress, bool isHeld);
[[nodiscard]] QList<DownloadMenuEntry> playlistEntries(const std::optional<DownloadProgress> &progress,
                                                      const CollectionDownloadState &state, bool isHeld);
[[nodiscard]] DownloadBadge badge(bool isDownloaded, const std::optional<DownloadProgress> &progress,
                                  const CollectionDownloadState &state = {});
}
