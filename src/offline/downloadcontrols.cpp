#include "downloadcontrols.h"

#include "common/plurals.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using Action = DownloadMenuEntry::Action;

namespace {
// The texts' translation context.
struct Text {
    Q_DECLARE_TR_FUNCTIONS(DownloadControls)
};

QList<DownloadMenuEntry> running(const DownloadProgress &progress)
{
    return {{.text = Text::tr("Downloading… (%1/%2)").arg(progress.completed).arg(progress.total), .isEnabled = false},
            {.text = Text::tr("Cancel Download"), .action = Action::Remove}};
}

// What a collection not held, or held in full, offers.
QList<DownloadMenuEntry> wholeCollection(const std::optional<DownloadProgress> &progress, bool isHeld)
{
    if (isHeld)
        return {{.text = Text::tr("Remove Download"), .action = Action::Remove, .isDestructive = true}};
    if (progress && progress->failed) {
        return {{.text = Text::tr("Retry Download"), .action = Action::Download},
                {.text = Text::tr("Cancel Download"), .action = Action::Remove, .isDestructive = true}};
    }
    return {{.text = Text::tr("Download"), .action = Action::Download}};
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
            ? Text::tr("Download Playlist")
            : inflected(Text::tr("Download %n More Song(s)", nullptr, missing), missing);
        return {{.text = download, .action = Action::Download},
                {.text = Text::tr("Remove Download"), .action = Action::Remove, .isDestructive = true}};
    }
    return wholeCollection(progress, isHeld);
}

DownloadBadge badge(bool isDownloaded, const std::optional<DownloadProgress> &progress,
                    const CollectionDownloadState &state)
{
    if (progress && progress->failed) {
        return {.kind = DownloadBadge::Kind::Failed,
                .symbol = u"exclamationmark.circle.fill"_s,
                .toolTip = Text::tr("Download failed — open the “⋯” menu to retry")};
    }
    if (progress) {
        return {.kind = DownloadBadge::Kind::Progress,
                .value = progress->total > 0 ? double(progress->completed) / progress->total : 0.0,
                .symbol = QString(),
                .toolTip = Text::tr("Downloading %1 of %2").arg(progress->completed).arg(progress->total)};
    }
    if (state.kind == CollectionDownloadState::Kind::Partial) {
        return {.kind = DownloadBadge::Kind::Partial,
                .symbol = u"arrow.down.circle.dotted"_s,
                .toolTip = Text::tr("%1 of %2 songs downloaded — open the “⋯” menu to finish")
                               .arg(state.downloaded)
                               .arg(state.total)};
    }
    if (isDownloaded) {
        return {.kind = DownloadBadge::Kind::Downloaded,
                .symbol = u"arrow.down.circle.fill"_s,
                .toolTip = Text::tr("Available offline")};
    }
    return {};
}
}
