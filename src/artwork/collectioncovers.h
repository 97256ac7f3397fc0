#pragma once

#include "server/records.h"

#include <QStringList>

// One cover id per album of `songs`, in order of first appearance, for drawing a collection as one cover or a
// mosaic of four. A song without an album id counts as an album of its own; songs without a cover add nothing.
[[nodiscard]] QStringList albumCovers(const QList<Song> &songs);

// With this many albums or more a collection shows the mosaic of the first four.
inline constexpr int mosaicCoverCount = 4;
