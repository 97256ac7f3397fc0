#pragma once

#include <QMetaType>

// What a screen is told about one album or playlist on disk.
struct CollectionDownloadState {
    Q_GADGET
    Q_PROPERTY(Kind kind MEMBER kind CONSTANT)
    Q_PROPERTY(int downloaded MEMBER downloaded CONSTANT)
    Q_PROPERTY(int total MEMBER total CONSTANT)

public:
    enum class Kind { None, Partial, Complete };
    Q_ENUM(Kind)

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
