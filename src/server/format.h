#pragma once

// The shared text forms of a length in seconds. Anything unusable reads "--:--".

#include <QString>

#include <optional>

namespace Format {
[[nodiscard]] QString time(double seconds);
[[nodiscard]] QString paddedTime(double seconds);
[[nodiscard]] QString paddedDuration(std::optional<qint64> seconds);
}
