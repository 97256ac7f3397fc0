#pragma once

// Reduces a decoded cover to one AlbumPalette: a coarse histogram in hue, saturation and brightness over a
// 48 by 48 raster, scored so that a vivid patch beats a large dull one, then adjusted for contrast by WCAG
// luminance. Pure and cheap enough for the main thread. Palettes are kept process-wide by cover-art id.

#include "albumpalette.h"

#include <QImage>
#include <QString>

#include <optional>
#include <utility>

namespace PaletteExtractor {

inline constexpr int side = 48;

// Empty when the image cannot be drawn or has no pixel more than half opaque.
[[nodiscard]] std::optional<AlbumPalette> extract(const QImage &image);

// The image stretched over a side-by-side premultiplied sRGB raster (Format_RGBA8888_Premultiplied); empty when
// it cannot be drawn.
[[nodiscard]] std::optional<QImage> pixels(const QImage &image, int side);
// The mean of each channel over every pixel, transparent ones included, premultiplied values as they stand.
[[nodiscard]] RGB average(const QImage &pixels);

struct Button {
    RGB fill;
    RGB label;
};
[[nodiscard]] Button button(const RGB &base);
// The colour of `base` made readable on the dark surface (0.11, 0.11, 0.12).
[[nodiscard]] RGB legibleOnDark(const RGB &base);
// Luminance of that surface.
inline constexpr double darkSurfaceLuminance = 0.011772959064853119;

// The palette cache. Callers extract outside the lock, so two may extract the same cover at once; the later
// store writes an equal value.
[[nodiscard]] std::optional<AlbumPalette> cached(const QString &coverArt);
void store(const QString &coverArt, const AlbumPalette &palette);

}
