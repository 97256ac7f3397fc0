#include "artworkstore.h"

namespace ArtworkStore {

ImageMemoryCache &memory()
{
    static ImageMemoryCache cache(memoryLimit);
    return cache;
}

}
