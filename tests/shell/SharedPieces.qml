import QtQuick
import QtQuick.Controls
import Velto

// The view pieces every later screen shares, side by side, for the window test.
Row {
    id: pieces
    required property Theme theme
    required property LibraryStore library
    property alias songMenu: songMenu
    spacing: 16

    ArtworkView {
        objectName: "cover"
        width: 120
        height: 120
        theme: pieces.theme
        coverArt: "c1"
        cornerRadius: 8
    }
    ArtworkView {
        objectName: "noCover"
        width: 120
        height: 120
        theme: pieces.theme
        cornerRadius: 8
    }
    CollectionArtworkView {
        objectName: "mosaic"
        width: 120
        height: 120
        theme: pieces.theme
        covers: ["c1", "c2", "c3", "c4", "c5"]
        cornerRadius: 8
    }
    Menu {
        id: songMenu
        LikeMenuButton {
            objectName: "like"
            library: pieces.library
            song: ({ id: "s1", title: "Naima" })
        }
        AddToPlaylistMenu {
            objectName: "addToPlaylist"
            library: pieces.library
            songs: [{ id: "s1", title: "Naima" }]
            askNewPlaylistName: then => then("From the menu")
        }
    }
}
