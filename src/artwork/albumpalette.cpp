#include "albumpalette.h"

double AlbumPalette::scrimOpacity(double alpha) const
{
    constexpr double start = 0.38;
    constexpr double limit = 0.62;
    constexpr double step = 0.01;
    constexpr double wanted = 4.6;
    const PaletteExtractor::RGB &mean = backdropMean;
    // Summed step by step rather than counted, so that the values tried are exactly those of repeated addition.
    for (double o = start;; o += step) {
        if (!(o < limit))
            return limit;
        const PaletteExtractor::RGB bg{mean.r * (1 - o), mean.g * (1 - o), mean.b * (1 - o)};
        const PaletteExtractor::RGB text{alpha + (1 - alpha) * bg.r, alpha + (1 - alpha) * bg.g,
                                         alpha + (1 - alpha) * bg.b};
        if (PaletteExtractor::contrast(PaletteExtractor::luminance(text), PaletteExtractor::luminance(bg)) >= wanted)
            return o;
    }
}
