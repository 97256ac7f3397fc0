#include "paletteextractor.h"

#include <QColorSpace>

#include <algorithm>
#include <array>
#include <cmath>

namespace PaletteExtractor {

namespace {
constexpr int hueBins = 24;
constexpr int levelBins = 3; // of saturation and of brightness
// Keys are hue * 16 + saturation * 4 + brightness: sparse, but a flat array beats a map at this size.
constexpr int keySpace = hueBins * 16;

struct Bucket {
    int count = 0;
    RGB sum;
};

int bucketKey(const HSB &c)
{
    const int hue = static_cast<int>(c.h * hueBins) % hueBins;
    const int saturation = static_cast<int>(std::min(c.s, 0.999) * levelBins);
    const int brightness = static_cast<int>(std::min(c.v, 0.999) * levelBins);
    return hue * 16 + saturation * 4 + brightness;
}

// The square root damps area, so that a small vivid patch can beat a big dull one; the power favours
// saturation. Near-white, near-black and grey buckets never win.
std::optional<double> score(const Bucket &bucket, int total, RGB *mean)
{
    *mean = {bucket.sum.r / bucket.count, bucket.sum.g / bucket.count, bucket.sum.b / bucket.count};
    const double max = std::max({mean->r, mean->g, mean->b});
    const double min = std::min({mean->r, mean->g, mean->b});
    const double saturation = max == 0 ? 0 : (max - min) / max;
    if (max > 0.97 || max < 0.12 || saturation < 0.25)
        return std::nullopt;
    return (0.35 + 0.65 * std::sqrt(double(bucket.count) / total)) * std::pow(saturation, 1.6) * (0.5 + 0.5 * max);
}

QColor toColor(const RGB &c)
{
    return QColor::fromRgbF(float(c.r), float(c.g), float(c.b));
}
}

std::optional<QImage> pixels(const QImage &image, int side)
{
    if (image.isNull() || side <= 0)
        return std::nullopt;
    // Averaging every pixel of a 1024 cover costs about a millisecond; sampling it down to four times the side
    // first and averaging only those keeps the raster comparable at a twentieth of the cost.
    const int sampled = 4 * side;
    const QImage source = image.width() > sampled || image.height() > sampled
        ? image.scaled(std::min(image.width(), sampled), std::min(image.height(), sampled), Qt::IgnoreAspectRatio,
                       Qt::FastTransformation)
        : image;
    QImage raster = source.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (raster.colorSpace().isValid() && raster.colorSpace() != QColorSpace::SRgb)
        raster.convertToColorSpace(QColorSpace::SRgb);
    raster.convertTo(QImage::Format_RGBA8888_Premultiplied);
    if (raster.isNull())
        return std::nullopt;
    return raster;
}

RGB average(const QImage &pixels)
{
    double r = 0, g = 0, b = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        const uchar *p = pixels.constScanLine(y);
        for (int x = 0; x < pixels.width(); ++x, p += 4) {
            r += p[0];
            g += p[1];
            b += p[2];
        }
    }
    const double count = double(pixels.width()) * pixels.height() * 255;
    return {r / count, g / count, b / count};
}

std::optional<AlbumPalette> extract(const QImage &image)
{
    const std::optional<QImage> raster = pixels(image, side);
    if (!raster)
        return std::nullopt;

    std::array<Bucket, keySpace> buckets{};
    int total = 0;
    for (int y = 0; y < raster->height(); ++y) {
        const uchar *p = raster->constScanLine(y);
        for (int x = 0; x < raster->width(); ++x, p += 4) {
            if (!(p[3] / 255.0 > 0.5))
                continue;
            const RGB c{p[0] / 255.0, p[1] / 255.0, p[2] / 255.0};
            Bucket &bucket = buckets[bucketKey(hsb(c))];
            ++bucket.count;
            bucket.sum.r += c.r;
            bucket.sum.g += c.g;
            bucket.sum.b += c.b;
            ++total;
        }
    }
    if (!(total > 0))
        return std::nullopt;

    // The first bucket to pass wins unless a later one scores strictly higher.
    std::optional<RGB> best;
    double bestScore = 0;
    for (const Bucket &bucket : buckets) {
        if (bucket.count == 0)
            continue;
        RGB mean;
        const std::optional<double> s = score(bucket, total, &mean);
        if (s && (!best || *s > bestScore)) {
            best = mean;
            bestScore = *s;
        }
    }

    const RGB backdrop = average(*raster);
    const RGB base = best.value_or(backdrop);
    const Button filled = button(base);
    return AlbumPalette{
        .accent = toColor(base),
        .tint = toColor(legibleOnDark(base)),
        .fill = toColor(filled.fill),
        .label = toColor(filled.label),
        .backdropMean = backdrop,
    };
}

Button button(const RGB &base)
{
    const HSB start = hsb(base);
    const double h = start.h;
    const double s = std::clamp(start.s, 0.55, 1.0);
    double v = std::clamp(start.v, 0.55, 0.95);
    RGB rgb = fromHSB({h, s, v});
    // With these clamps the better of the two contrasts never falls below about 4.58, so this loop never
    // changes anything; it stays so that other clamps cannot yield an unreadable button.
    for (int adjustment = 0; adjustment < 12; ++adjustment) {
        const double l = luminance(rgb);
        if (std::max(contrast(l, 1), contrast(l, 0)) >= 4.0)
            break;
        v = l > 0.35 ? v * 0.9 : std::min(v * 1.08, 0.98);
        rgb = fromHSB({h, s, v});
    }
    const double l = luminance(rgb);
    const RGB label = contrast(l, 1) >= contrast(l, 0) ? RGB{1, 1, 1} : RGB{0, 0, 0};
    return {rgb, label};
}

RGB legibleOnDark(const RGB &base)
{
    const HSB start = hsb(base);
    const double h = start.h;
    const double s = std::clamp(start.s, 0.35, 0.7);
    double v = std::max(start.v, 0.8);
    RGB rgb = fromHSB({h, s, v});
    // Deep blues need this: only brightness moves, so a colour that reaches 1 stays there.
    for (int step = 0; step < 20; ++step) {
        if (contrast(luminance(rgb), darkSurfaceLuminance) >= 7.0)
            break;
        v = std::min(v + 0.05, 1.0);
        rgb = fromHSB({h, s, v});
    }
    return rgb;
}

}
