#pragma once

// The process-wide memory of decoded covers. It lives apart from the fetcher because views read it directly on
// the main thread, so that a cover already decoded shows in the first frame.

#include "imagememorycache.h"

namespace ArtworkStore {

inline constexpr qsizetype memoryLimit = 256 * 1024 * 1024;

// Made on first use; outlives sign-out, and nothing but the cost limit removes entries.
[[nodiscard]] ImageMemoryCache &memory();

}
