#pragma once

// The colour arithmetic of the palette: sRGB components from 0 to 1, never linearised except inside luminance.

namespace PaletteExtractor {

struct RGB {
    double r = 0;
    double g = 0;
    double b = 0;

    bool operator==(const RGB &) const = default;
};

struct HSB {
    double h = 0; // 0 up to 1, a full turn
    double s = 0;
    double v = 0;

    bool operator==(const HSB &) const = default;
};

[[nodiscard]] HSB hsb(const RGB &color);
[[nodiscard]] RGB fromHSB(const HSB &color);
// WCAG 2.0 relative luminance.
[[nodiscard]] double luminance(const RGB &color);
// WCAG contrast ratio of two luminances, in either order.
[[nodiscard]] double contrast(double a, double b);

}
