import QtQuick
import QtQuick.Controls
import Velto

// A grid of albums: an album list of the library, paged in as its last cell appears, or the liked albums. With
// none to show it says why.
ServerUnavailableFallback {
    id: page
    required property string title
    // An album list's name, or "liked".
    required property string listType
    required property PlayerController player
    required property var askNewPlaylistName
    readonly property real available: width - 2 * theme.pageMargin
    readonly property int columns: Math.max(1, Math.floor((available + theme.albumColumnSpacing)
                                                          / (theme.albumCellMinWidth + theme.albumColumnSpacing)))
    readonly property real cellWidth: Math.min(theme.albumCellMaxWidth,
                                               (available - (columns - 1) * theme.albumColumnSpacing) / columns)

    isEmpty: screen.state !== "grid"

    AlbumGridScreen {
        id: screen
        library: page.library
        listType: page.listType
    }
    AlbumActions {
        id: albumActions
        library: page.library
        player: page.player
    }

    GridView {
        id: grid
        objectName: "albumGrid"
        x: page.theme.pageMargin
        width: page.available + page.theme.albumColumnSpacing
        height: parent.height
        model: screen.albums
        cellWidth: page.cellWidth + page.theme.albumColumnSpacing
        cellHeight: page.cellWidth + 48 + page.theme.gridSpacing
        boundsBehavior: Flickable.StopAtBounds
        // Cells scrolled away are reused for those coming in, and a row beyond each edge is made ahead of time.
        reuseItems: true
        cacheBuffer: cellHeight * 2
        ScrollBar.vertical: ScrollBar {}

        header: Label {
            width: grid.width
            topPadding: page.theme.pageMargin
            bottomPadding: 16
            text: page.title
            color: page.theme.text
            font.pixelSize: page.theme.titleSize
            font.weight: Font.Bold
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        delegate: Item {
            id: slot
            required property int index
            required property var record
            required property string albumId
            required property string name
            required property string artist
            required property string artistId
            required property string coverArt
            width: grid.cellWidth
            height: grid.cellHeight

            AlbumCell {
                width: page.cellWidth
                record: slot.record
                albumId: slot.albumId
                name: slot.name
                artist: slot.artist
                artistId: slot.artistId
                coverArt: slot.coverArt
                artworkSize: page.theme.albumArtworkSize
                theme: page.theme
                actions: albumActions
                navigation: page.navigation
                library: page.library
                downloads: page.downloads
                askNewPlaylistName: page.askNewPlaylistName
            }
            // A reused cell shows another album: it counts as shown too, the last one asking for the next page.
            Component.onCompleted: screen.cellShown(index)
            GridView.onReused: screen.cellShown(index)
        }
        footer: PlaybackBarClearance { theme: page.theme }
    }

    BusyIndicator {
        anchors.centerIn: parent
        running: screen.state === "loading"
        visible: running
    }
    UnavailableContent {
        objectName: "albumGridMessage"
        visible: screen.state === "message"
        theme: page.theme
        symbol: screen.messageSymbol
        title: screen.messageTitle
        description: screen.messageText
    }
}
