#include "palettecolor.h"

#include <algorithm>
#include <cmath>

namespace PaletteExtractor {

namespace {
double linear(double c)
{
    // 0.03928 is WCAG 2.0's own threshold, kept although sRGB's is 0.04045: the numbers must match the guideline.
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}
}

HSB hsb(const RGB &c)
{
    const double max = std::max({c.r, c.g, c.b});
    const double min = std::min({c.r, c.g, c.b});
    const double d = max - min;
    double h = 0;
    if (d != 0) {
        double x = 0;
        if (max == c.r)
            x = std::fmod((c.g - c.b) / d, 6);
        else if (max == c.g)
            x = (c.b - c.r) / d + 2;
        else
            x = (c.r - c.g) / d + 4;
        h = x / 6;
        if (h < 0)
            h += 1;
    }
    const double s = max == 0 ? 0 : d / max;
    return {h, s, max};
}

RGB fromHSB(const HSB &c)
{
    if (c.s == 0)
        return {c.v, c.v, c.v};
    const double x = c.h * 6;
    const int i = static_cast<int>(x);
    const double f = x - i;
    const double p = c.v * (1 - c.s);
    const double q = c.v * (1 - c.s * f);
    const double t = c.v * (1 - c.s * (1 - f));
    switch (i % 6) {
    case 0:
        return {c.v, t, p};
    case 1:
        return {q, c.v, p};
    case 2:
        return {p, c.v, t};
    case 3:
        return {p, q, c.v};
    case 4:
        return {t, p, c.v};
    default:
        return {c.v, p, q};
    }
}

double luminance(const RGB &c)
{
    return 0.2126 * linear(c.r) + 0.7152 * linear(c.g) + 0.0722 * linear(c.b);
}

double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

}
