#pragma once

// What a screen is told about one album or playlist on disk.
struct CollectionDownloadState {
    enum class Kind { None, Partial, Complete };

    Kind kind = Kind::None;
    // Only meaningful for Partial.
    int downloaded = 0;
    int total = 0;

    [[nodiscard]] static CollectionDownloadState none() { return {}; }
    [[nodiscard]] static CollectionDownloadState partial(int downloaded, int total)
    {
        return {Kind::Partial, downloaded, total};
    }
    [[nodiscard]] static CollectionDownloadState complete() { return {Kind::Complete, 0, 0}; }

    bool operator==(const CollectionDownloadState &) const = default;
};
