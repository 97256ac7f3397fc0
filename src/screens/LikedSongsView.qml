import QtQuick
import Velto

// "Liked Songs": the songs the user liked, sorted as the user chooses; unliking one takes it off at once.
ServerUnavailableFallback {
    id: page
    required property PlayerController player
    required property var askNewPlaylistName

    isEmpty: songs.screen.isEmpty

    SongTable {
        id: songs
        anchors.fill: parent
        title: qsTr("Liked Songs")
        likedOnly: true
        theme: page.theme
        library: page.library
        player: page.player
        askNewPlaylistName: page.askNewPlaylistName
    }
}
