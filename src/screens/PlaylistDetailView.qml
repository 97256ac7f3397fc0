import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// A playlist's page: the collection's cover, "Playlist", the name and its line of songs and minutes, Play, Shuffle,
// the download badge and the "⋯" menu; then its entries, which the user drags into a new order (or moves with
// Ctrl+Up and Ctrl+Down). Up and Down select, Return plays, Delete removes the selected entry.
Item {
    id: page
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property PlayerController player
    required property var askNewPlaylistName
    required property string playlistId

    // The pointer's place in the list while a row is dragged, for the edges' scrolling.
    property real dragY: -1

    PlaylistDetailScreen {
        id: playlistScreen
        objectName: "playlistScreen"
        library: page.library
        downloads: page.downloads
        player: page.player
        playlistId: page.playlistId
        onDeleted: page.navigation.playlistDeleted(playlistId)
    }

    function showRow(row) {
        if (row >= 0)
            tracks.positionViewAtIndex(row, ListView.Contain)
    }
    // Rows are laid out below the header: the row under a point of the list's own box.
    function rowAt(y) {
        return tracks.indexAt(tracks.width / 2, tracks.contentY + y)
    }
    function dragTo(scenePosition) {
        const inList = tracks.mapFromItem(null, scenePosition.x, scenePosition.y)
        ghost.x = tracks.x + tracks.leftMargin
        ghost.y = tracks.y + inList.y - ghost.height / 2
        page.dragY = inList.y
    }

    ListView {
        id: tracks
        objectName: "playlistTracks"
        anchors.fill: parent
        leftMargin: page.theme.pageMargin
        rightMargin: page.theme.pageMargin
        model: playlistScreen.entries
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        interactive: page.dragY < 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Songs")
        ScrollBar.vertical: ScrollBar {}

        Keys.onPressed: event => {
            const reorder = event.modifiers & Qt.ControlModifier
            if (event.key === Qt.Key_Up || event.key === Qt.Key_Down) {
                const step = event.key === Qt.Key_Up ? -1 : 1
                page.showRow(reorder ? playlistScreen.moveSelectedRow(step) : playlistScreen.moveSelection(step))
            } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                playlistScreen.playSelected()
            } else if (event.key === Qt.Key_Delete) {
                playlistScreen.removeSelected()
            } else {
                return
            }
            event.accepted = true
        }

        header: Column {
            width: tracks.width - tracks.leftMargin - tracks.rightMargin
            topPadding: page.theme.pageMargin
            bottomPadding: 12
            spacing: 20

            Row {
                width: Math.min(parent.width, page.theme.playlistHeaderMaxWidth)
                spacing: 32

                Item {
                    width: page.theme.albumHeaderArtwork
                    height: width
                    CoverShadow {
                        anchors.fill: parent
                        theme: page.theme
                    }
                    CollectionArtworkView {
                        anchors.fill: parent
                        theme: page.theme
                        covers: playlistScreen.covers
                        cornerRadius: 8
                    }
                }
                Column {
                    width: parent.width - page.theme.albumHeaderArtwork - 32
                    spacing: 8

                    Label {
                        text: qsTr("Playlist")
                        color: page.theme.secondaryText
                        font.pixelSize: page.theme.captionSize
                        font.weight: Font.DemiBold
                        font.capitalization: Font.AllUppercase
                    }
                    Label {
                        objectName: "playlistName"
                        width: parent.width
                        text: playlistScreen.name
                        color: page.theme.text
                        font.pixelSize: 30
                        font.weight: Font.Bold
                        wrapMode: Text.WordWrap
                        maximumLineCount: 2
                        elide: Text.ElideRight
                        Accessible.role: Accessible.Heading
                    }
                    Row {
                        spacing: 8
                        Label {
                            objectName: "metadataLine"
                            text: playlistScreen.metadataLine
                            color: page.theme.secondaryText
                        }
                        DownloadStatusBadge {
                            objectName: "playlistDownloadBadge"
                            theme: page.theme
                            downloads: page.downloads
                            key: "playlist:" + page.playlistId
                            songIds: playlistScreen.songIds
                        }
                    }
                    Row {
                        spacing: 10
                        topPadding: 6
                        PillButton {
                            objectName: "playPlaylist"
                            theme: page.theme
                            text: qsTr("Play")
                            symbol: "play.fill"
                            tint: page.theme.highlight
                            foreground: "white"
                            enabled: playlistScreen.state === "tracks"
                            onClicked: playlistScreen.playAll()
                        }
                        PillButton {
                            theme: page.theme
                            text: qsTr("Shuffle")
                            symbol: "shuffle"
                            tint: page.theme.highlight
                            soft: true
                            enabled: playlistScreen.state === "tracks"
                            onClicked: playlistScreen.shuffle()
                        }
                        CircleButton {
                            id: more
                            objectName: "playlistMenuButton"
                            theme: page.theme
                            symbol: "ellipsis"
                            help: qsTr("More")
                            onClicked: menu.popup(more, 0, more.height)
                        }
                    }
                }
            }
            // What stands in for the rows: made only while there are none to show.
            Loader {
                width: parent.width
                height: 220
                visible: active
                active: playlistScreen.state !== "tracks"
                sourceComponent: playlistScreen.state === "loading" ? busy : unavailable
            }
        }
        delegate: PlaylistTrackRow {
            theme: page.theme
            screen: playlistScreen
            library: page.library
            askNewPlaylistName: page.askNewPlaylistName
            onDragStarted: scenePosition => {
                ghost.title = title
                page.dragTo(scenePosition)
                ghost.Drag.active = true
            }
            onDragMoved: scenePosition => page.dragTo(scenePosition)
            onDragEnded: {
                ghost.Drag.drop()
                ghost.Drag.active = false
                page.dragY = -1
            }
        }
        footer: PlaybackBarClearance { theme: page.theme }
        moveDisplaced: Transition {
            NumberAnimation { property: "y"; duration: 200; easing.type: Easing.OutCubic }
        }
        move: Transition {
            NumberAnimation { property: "y"; duration: 200; easing.type: Easing.OutCubic }
        }
    }

    // Entries dragged over the list take the place of the row under the pointer as they pass it.
    DropArea {
        anchors.fill: tracks
        keys: [playlistScreen.dragType]
        onPositionChanged: drag => playlistScreen.moveDraggedRow(page.rowAt(drag.y))
        onDropped: drop => {
            playlistScreen.drop()
            drop.accept(Qt.MoveAction)
        }
    }
    // What the pointer carries: the dragged entry's title on a raised strip.
    Rectangle {
        id: ghost
        objectName: "dragGhost"
        property string title
        visible: Drag.active
        width: tracks.width - tracks.leftMargin - tracks.rightMargin
        height: 46
        radius: 6
        color: page.theme.raisedSurface
        border.color: page.theme.highlight
        opacity: 0.9
        Drag.keys: [playlistScreen.dragType]
        Drag.hotSpot: Qt.point(width / 2, height / 2)
        Accessible.ignored: true

        Label {
            anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 14 }
            text: ghost.title
            color: page.theme.text
            elide: Text.ElideRight
        }
    }
    // Near the top or bottom edge a drag scrolls the list, and the row under the pointer follows.
    Timer {
        interval: 16
        repeat: true
        running: page.dragY >= 0 && (page.dragY < page.theme.dragScrollEdge
                                     || page.dragY > tracks.height - page.theme.dragScrollEdge)
        onTriggered: {
            const step = page.dragY < page.theme.dragScrollEdge ? -page.theme.dragScrollStep : page.theme.dragScrollStep
            tracks.contentY = Math.max(tracks.originY,
                                       Math.min(tracks.contentY + step, tracks.originY + tracks.contentHeight - tracks.height))
            playlistScreen.moveDraggedRow(page.rowAt(page.dragY))
        }
    }

    Component {
        id: busy
        Item {
            BusyIndicator {
                anchors.centerIn: parent
                running: true
            }
        }
    }
    Component {
        id: unavailable
        Item {
            UnavailableContent {
                objectName: playlistScreen.state === "error" ? "playlistError" : "playlistEmpty"
                theme: page.theme
                symbol: playlistScreen.state === "error" ? "exclamationmark.triangle" : "music.note.list"
                title: playlistScreen.state === "error" ? qsTr("Couldn’t Load Playlist") : qsTr("Empty Playlist")
                description: playlistScreen.state === "error" ? playlistScreen.errorMessage
                                                               : qsTr("Add songs from anywhere with “Add to Playlist”.")
            }
        }
    }
    Menu {
        id: menu
        objectName: "playlistMenu"
        onAboutToShow: addToPlaylist.songs = playlistScreen.songRecords()
        MenuItem {
            text: qsTr("Play Next")
            onTriggered: playlistScreen.playNext()
        }
        MenuItem {
            text: qsTr("Play Last")
            onTriggered: playlistScreen.playLast()
        }
        AddToPlaylistMenu {
            id: addToPlaylist
            library: page.library
            askNewPlaylistName: page.askNewPlaylistName
        }
        MenuSeparator {}
        MenuSeparator {}
        MenuItem {
            text: qsTr("Rename…")
            onTriggered: {
                renameDialog.name = playlistScreen.name
                renameDialog.open()
            }
        }
        MenuItem {
            text: qsTr("Delete Playlist…")
            palette.windowText: page.theme.destructive
            onTriggered: deleteConfirmation.open()
        }
    }
    PlaylistDownloadButtons {
        menu: menu
        position: 4
        theme: page.theme
        downloads: page.downloads
        playlistId: page.playlistId
        name: playlistScreen.name
        songIds: playlistScreen.songIds
    }
    PlaylistNameDialog {
        id: renameDialog
        objectName: "playlistRenameDialog"
        title: qsTr("Rename Playlist")
        acceptText: qsTr("Rename")
        onSubmitted: name => playlistScreen.rename(name)
    }
    ConfirmationDialog {
        id: deleteConfirmation
        objectName: "playlistDeleteConfirmation"
        title: playlistScreen.deleteTitle
        message: qsTr("This removes the playlist from your server.")
        confirmText: qsTr("Delete Playlist")
        destructiveColor: page.theme.destructive
        onConfirmed: playlistScreen.deletePlaylist()
    }
}
