import QtQuick
import QtQuick.Controls
import Velto

// "Add to Playlist": the store's playlists in order, or "No Playlists", and "New Playlist…", which asks for a name
// and adds to the new playlist. Give it songs or an album.
Menu {
    id: menu
    required property LibraryStore library
    // Opens the naming dialog and calls back with the name.
    required property var askNewPlaylistName
    property var songs: []
    property var album: ({})

    title: qsTr("Add to Playlist")

    AddToPlaylistAction {
        id: action
        library: menu.library
        songs: menu.songs
        album: menu.album
    }
    Instantiator {
        model: action.playlists
        delegate: MenuItem {
            required property var modelData
            text: modelData.name
            onTriggered: action.add(modelData.id)
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
    MenuItem {
        enabled: false
        visible: action.playlists.length === 0
        height: visible ? implicitHeight : 0
        text: qsTr("No Playlists")
    }
    MenuSeparator {}
    MenuItem {
        text: qsTr("New Playlist…")
        onTriggered: menu.askNewPlaylistName(name => action.addToNewPlaylist(name))
    }
}
