import QtQuick
import QtQuick.Controls
import Velto

// One artist: the name with the heart, Play and Shuffle, then the artist's albums newest first. Play and Shuffle
// wait while the discography is being collected. It has no colour of its own: the window stays neutral.
Item {
    id: pane
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property PlayerController player
    required property var askNewPlaylistName
    required property var artist
    readonly property real cellWidth: theme.albumArtworkSize

    ArtistDetailScreen {
        id: artistScreen
        objectName: "artistScreen"
        library: pane.library
        player: pane.player
        artist: pane.artist
        // Another artist starts at the top of its page.
        onLoadStarted: grid.positionViewAtBeginning()
    }
    AlbumActions {
        id: albumActions
        library: pane.library
        player: pane.player
    }

    GridView {
        id: grid
        objectName: "artistAlbumGrid"
        x: pane.theme.pageMargin
        width: parent.width - pane.theme.pageMargin
        height: parent.height
        model: artistScreen.albums
        cellWidth: pane.cellWidth + pane.theme.gridSpacing
        cellHeight: pane.cellWidth + 48 + pane.theme.gridSpacing
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        ScrollBar.vertical: ScrollBar {}

        header: Column {
            width: grid.width - pane.theme.pageMargin
            topPadding: pane.theme.pageMargin
            bottomPadding: 20
            spacing: 14

            Label {
                objectName: "artistName"
                width: parent.width
                text: artistScreen.name
                color: pane.theme.text
                font.pixelSize: pane.theme.titleSize
                font.weight: Font.Bold
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
            }
            Row {
                spacing: 10
                CircleButton {
                    objectName: "likeArtist"
                    theme: pane.theme
                    symbol: artistScreen.isLiked ? "heart.fill" : "heart"
                    help: artistScreen.isLiked ? qsTr("Unlike Artist") : qsTr("Like Artist")
                    onClicked: artistScreen.toggleLike()
                }
                CircleButton {
                    objectName: "playArtist"
                    theme: pane.theme
                    symbol: "play.fill"
                    help: qsTr("Play %1").arg(artistScreen.name)
                    tint: pane.theme.highlight
                    foreground: "white"
                    enabled: artistScreen.canPlay
                    onClicked: artistScreen.playDiscography(false)
                }
                CircleButton {
                    objectName: "shuffleArtist"
                    theme: pane.theme
                    symbol: "shuffle"
                    help: qsTr("Shuffle %1").arg(artistScreen.name)
                    enabled: artistScreen.canPlay
                    onClicked: artistScreen.playDiscography(true)
                }
            }
            // What stands in for the albums: made only while there are none to show.
            Loader {
                width: parent.width
                height: 240
                visible: active
                active: artistScreen.state !== "albums"
                sourceComponent: Item {
                    BusyIndicator {
                        anchors.centerIn: parent
                        running: artistScreen.state === "loading"
                        visible: running
                    }
                    UnavailableContent {
                        objectName: "artistMessage"
                        visible: artistScreen.state === "message"
                        theme: pane.theme
                        symbol: artistScreen.messageSymbol
                        title: artistScreen.messageTitle
                        description: artistScreen.messageText
                    }
                }
            }
        }
        delegate: Item {
            id: slot
            required property var record
            required property string albumId
            required property string name
            required property string artist
            required property string artistId
            required property string coverArt
            width: grid.cellWidth
            height: grid.cellHeight

            AlbumCell {
                width: pane.cellWidth
                record: slot.record
                albumId: slot.albumId
                name: slot.name
                artist: slot.artist
                artistId: slot.artistId
                coverArt: slot.coverArt
                artworkSize: pane.theme.albumArtworkSize
                theme: pane.theme
                actions: albumActions
                navigation: pane.navigation
                library: pane.library
                downloads: pane.downloads
                askNewPlaylistName: pane.askNewPlaylistName
            }
        }
        footer: PlaybackBarClearance { theme: pane.theme }
    }
}
