#include "paletteextractor.h"

#include <QHash>
#include <QMutex>

namespace PaletteExtractor {

namespace {
// Only grows: a palette depends on the cover alone, and the first bucket size to arrive decides it.
struct Cache {
    QMutex lock;
    QHash<QString, AlbumPalette> palettes;
};

Cache &cache()
{
    static Cache instance;
    return instance;
}
}

std::optional<AlbumPalette> cached(const QString &coverArt)
{
    Cache &c = cache();
    QMutexLocker locker(&c.lock);
    const auto found = c.palettes.constFind(coverArt);
    if (found == c.palettes.cend())
        return std::nullopt;
    return *found;
}

void store(const QString &coverArt, const AlbumPalette &palette)
{
    Cache &c = cache();
    QMutexLocker locker(&c.lock);
    c.palettes.insert(coverArt, palette);
}

}
