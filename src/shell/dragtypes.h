#pragma once

#include <QLatin1StringView>

// The formats of what Velto's own views drag: an album as its JSON record, and an entry of a playlist.
inline constexpr QLatin1StringView albumDragType("co.marrowlight.velto.album");
inline constexpr QLatin1StringView playlistEntryDragType("co.marrowlight.velto.playlist-entry");
