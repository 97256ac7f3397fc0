import QtQuick
import QtQuick.Controls
import Velto

// "Like" or "Unlike" for one song, in a context menu.
MenuItem {
    id: item
    required property LibraryStore library
    // The song's record.
    required property var song

    text: like.text
    onTriggered: like.toggle()

    LikeAction {
        id: like
        library: item.library
        song: item.song
    }
}
