#include "downloadcontrols.h"

#include "common/plurals.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using Action = DownloadMenuEntry::Action;

namespace {
QString tr(const char *text, int count = -1)
{
    return QCoreApplication::translate("DownloadControls", text, nullptr, count);
}

QList<DownloadMenuEntry> running(const DownloadProgress &progress)
{
    return {{.text = tr("Downloading… (%1/%2)").arg(progress.completed).arg(progress.total), .isEnabled = false},
            {.text = tr("Cancel Download"), .action = Action::Remove}};
}

// What a collection not held, or held in full, offers.
QList<DownloadMenuEntry> wholeCollection(const std::optional<DownloadProgress> &progress, bool isHeld)
{
    if (isHeld)
        return {{.text = tr("Remove Download"), .action = Action::Remove, .isDestructive = true}};
    if (progress && progress->failed) {
        return {{.text = tr("Retry Download"), .action = Action::Download},
                {.text = tr("Cancel Download"), .action = Action::Remove, .isDestructive = true}};
    }
    return {{.text = tr("Download"), .action = Action::Download}};
}
}

namespace DownloadControls {
QList<DownloadMenuEntry> albumEntries(const std::optional<DownloadProgress> &progress, bool isHeld)
{
    if (progress && !progress->failed)
        return running(*progress);
    return wholeCollection(progress, isHeld);
}

QList<DownloadMenuEntry> playlistEntries(const std::optional<DownloadProgress> &progress,
                                         const CollectionDownloadState &state, bool isHeld)
{
    if (progress && !progress->failed)
        return running(*progress);
    if (state.kind == CollectionDownloadState::Kind::Partial) {
        const int missing = state.total - state.downloaded;
        const QString download = state.downloaded == 0
            ? tr("Download Playlist")
            : inflected(tr("Download %n More Song(s)", missing), missing);
        return {{.text = download, .action = Action::Download},
                {.text = tr("Remove Download"), .action = Action::Remove, .isDestructive = true}};
    }
    return wholeCollection(progress, isHeld);
}

DownloadBadge badge(bool isDownloaded, const std::optional<DownloadProgress> &progress,
                    const CollectionDownloadState &state)
{
    if (progress && progress->failed) {
        return {.kind = DownloadBadge::Kind::Failed,
                .symbol = u"exclamationmark.circle.fill"_s,
                .toolTip = tr("Download failed — open the “⋯” menu to retry")};
    }
    if (progress) {
        return {.kind = DownloadBadge::Kind::Progress,
                .value = progress->total > 0 ? double(progress->completed) / progress->total : 0.0,
                .symbol = QString(),
                .toolTip = tr("Downloading %1 of %2").arg(progress->completed).arg(progress->total)};
    }
    if (state.kind == CollectionDownloadState::Kind::Partial) {
        return {.kind = DownloadBadge::Kind::Partial,
                .symbol = u"arrow.down.circle.dotted"_s,
                .toolTip = tr("%1 of %2 songs downloaded — open the “⋯” menu to finish")
                               .arg(state.downloaded)
                               .arg(state.total)};
    }
    if (isDownloaded) {
        return {.kind = DownloadBadge::Kind::Downloaded,
                .symbol = u"arrow.down.circle.fill"_s,
                .toolTip = tr("Available offline")};
    }
    return {};
}
}
