#pragma once

#include <QMetaType>

// How far one collection's download has come. A failed download keeps its entry, with `failed` set, until it is
// tried again or removed; a failed song list has a total of 0.
struct DownloadProgress {
    Q_GADGET
    Q_PROPERTY(int total MEMBER total CONSTANT)
    Q_PROPERTY(int completed MEMBER completed CONSTANT)
    Q_PROPERTY(bool failed MEMBER failed CONSTANT)

public:
    int total = 0;
    int completed = 0;
    bool failed = false;

    bool operator==(const DownloadProgress &) const = default;
};
