#pragma once

#include "server/records.h"

#include <QList>
#include <QString>

#include <optional>

// One paged album list as a screen sees it. A list never loaded reads as the default value.
struct AlbumListState {
    QList<Album> albums;
    bool reachedEnd = false;
    bool isLoading = false;
    std::optional<QString> errorMessage;

    bool operator==(const AlbumListState &) const = default;
};
