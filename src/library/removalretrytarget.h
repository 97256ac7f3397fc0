#pragma once

#include <QStringList>

#include <optional>

// Where a removal that may already have happened should now be made. It follows the song, not the position:
// the entry at `index` of `before` is found again in `current` by its rank among equal ids, and nothing is left
// to do when `current` holds fewer copies of it than `before` did.
[[nodiscard]] std::optional<int> removalRetryTarget(int index, const QStringList &before, const QStringList &current);
