#pragma once

// hasCachedContent() has no signal of its own: it follows every list the store keeps.

#include "librarystore.h"

template<typename Slot>
void onCachedContentChange(LibraryStore *library, const QObject *context, Slot slot)
{
    for (const auto signal : {&LibraryStore::homeRandomChanged, &LibraryStore::artistsChanged,
                              &LibraryStore::songsReset, &LibraryStore::starredSongsChanged,
                              &LibraryStore::starredAlbumsChanged, &LibraryStore::playlistsChanged})
        QObject::connect(library, signal, context, slot);
    QObject::connect(library, &LibraryStore::albumListChanged, context, slot);
    QObject::connect(library, &LibraryStore::songsAppended, context, slot);
}
