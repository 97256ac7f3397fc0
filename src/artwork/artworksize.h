#pragma once

// The few pixel sizes every cover is fetched and cached at, so that the application makes few variants of one
// image.

#include <array>

namespace ArtworkSize {

inline constexpr std::array<int, 5> buckets{64, 128, 256, 512, 1024};

// The bucket for a view `requestSize` points wide: drawn at two pixels per point, or at the screen's own ratio
// when that is higher, then rounded up to the next bucket (1024 past the last). A 44-point thumbnail asks for
// 128, a 600-point header for 1024.
[[nodiscard]] int pixelSize(double requestSize, double devicePixelRatio = 2.0);

}
