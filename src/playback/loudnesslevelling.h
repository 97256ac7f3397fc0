#pragma once

// How loudness is evened out between songs from the gains their files carry (ReplayGain): not at all, each song
// to the same loudness, or each album, keeping the songs of one album as loud as each other as mastered.

#include <QString>

#include <optional>

enum class LoudnessLevelling { Off, ByTrack, ByAlbum };

// Its name in the settings: "off", "track", "album".
[[nodiscard]] QString loudnessLevellingName(LoudnessLevelling levelling);
[[nodiscard]] std::optional<LoudnessLevelling> loudnessLevellingFromName(const QString &name);
