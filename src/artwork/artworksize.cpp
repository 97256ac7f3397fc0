#include "artworksize.h"

#include <algorithm>

namespace ArtworkSize {

int pixelSize(double requestSize, double devicePixelRatio)
{
    const int pixels = static_cast<int>(requestSize * std::max(2.0, devicePixelRatio));
    const auto bucket = std::find_if(buckets.cbegin(), buckets.cend(), [pixels](int size) { return size >= pixels; });
    return bucket == buckets.cend() ? buckets.back() : *bucket;
}

}
