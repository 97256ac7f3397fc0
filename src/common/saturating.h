#pragma once

#include <QtNumeric>

#include <limits>

// Sums of numbers that come from a server or a file, which may be anything: they stop at the ends of the range
// instead of wrapping around into nonsense.
[[nodiscard]] inline qint64 saturatingAdd(qint64 a, qint64 b)
{
    qint64 sum = 0;
    if (qAddOverflow(a, b, &sum))
        return b > 0 ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    return sum;
}
