import QtQuick
import Velto

// "Songs": every song of the library, sorted as the user chooses.
ServerUnavailableFallback {
    id: page
    required property PlayerController player
    required property var askNewPlaylistName

    isEmpty: songs.screen.isEmpty

    SongTable {
        id: songs
        anchors.fill: parent
        title: qsTr("Songs")
        likedOnly: false
        theme: page.theme
        library: page.library
        player: page.player
        askNewPlaylistName: page.askNewPlaylistName
    }
}
