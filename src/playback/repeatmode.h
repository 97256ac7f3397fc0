#pragma once

// What happens after the last song, and whether a song repeats when it ends by itself.

#include <QString>
#include <QStringView>

#include <optional>

enum class RepeatMode { Off, All, One };

// The text forms "off", "all" and "one"; any other text is no mode at all.
[[nodiscard]] QString repeatModeName(RepeatMode mode);
[[nodiscard]] std::optional<RepeatMode> repeatModeFromName(QStringView name);

// The order the bar's button steps through: off, all, one, and back to off.
[[nodiscard]] RepeatMode nextRepeatMode(RepeatMode mode);
