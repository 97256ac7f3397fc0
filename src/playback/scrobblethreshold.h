#pragma once

#include "server/records.h"

#include <algorithm>

// How far into a song a play counts as listened to: half the song, but never more than four minutes, and four
// minutes when the length is unknown.
[[nodiscard]] inline double scrobbleThreshold(const Song &song)
{
    constexpr double longest = 240;
    if (song.duration && *song.duration >= 1)
        return std::min(double(*song.duration) / 2, longest);
    return longest;
}
