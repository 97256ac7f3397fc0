#pragma once

// How observable state changes in Velto.
//
// A stateful object is a QObject whose fields are Q_PROPERTYs with a NOTIFY signal. Every write goes through
// assignField, which stores and notifies only when the new value differs, so views redraw only for real
// changes and an equal assignment notifies nobody.
//
//     void LibraryStore::setArtistsLoaded(bool value)
//     {
//         assignField(this, m_artistsLoaded, value, &LibraryStore::artistsLoadedChanged);
//     }

#include <utility>

template<typename Owner, typename T, typename U>
bool assignField(Owner *owner, T &field, U &&value, void (Owner::*notify)())
{
    if (field == value)
        return false;
    field = std::forward<U>(value);
    (owner->*notify)();
    return true;
}
