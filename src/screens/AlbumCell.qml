import QtQuick
import QtQuick.Controls
import Velto

// One album in a grid or a strip: its cover, which opens it and drags it, a play button on hover, its download
// badge, its name and a link to its artist, and the context menu that plays, queues, likes, adds or downloads it.
AbstractButton {
    id: cell
    required property var record
    required property string albumId
    required property string name
    required property string artist
    required property string artistId
    required property string coverArt
    required property Theme theme
    required property AlbumActions actions
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property var askNewPlaylistName
    property real artworkSize: 220

    // The album a menu was opened for, kept while it is open: the cell may show another album meanwhile.
    property var menuRecord: ({})
    // The menu is made when first opened: a grid makes and drops cells as it scrolls.
    function openMenu() {
        menuRecord = record
        menuLoader.active = true
        menuLoader.item.popup(cell, cover.width / 2, cover.height / 2)
    }
    onAlbumIdChanged: if (menuLoader.item) menuLoader.item.close()

    objectName: "albumCell"
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    implicitHeight: cover.height + 8 + nameLabel.implicitHeight + artistLink.implicitHeight
    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: artist

    onClicked: navigation.pushAlbum(record)
    Keys.onMenuPressed: openMenu()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier) {
            openMenu()
            event.accepted = true
        }
    }
    ArtworkSource {
        id: dragCover
        coverArt: cell.coverArt
        requestSize: 110
        cornerRadius: cell.theme.coverRadius
    }

    Drag.active: drag.active
    Drag.dragType: Drag.Automatic
    Drag.supportedActions: Qt.CopyAction
    Drag.imageSource: dragCover.source
    Drag.mimeData: ({ [actions.dragType]: actions.dragData(record), "text/plain": name })
    DragHandler {
        id: drag
        target: null
    }

    contentItem: Item {
        Item {
            id: cover
            width: cell.width
            height: width
            scale: cell.hovered ? cell.theme.hoverScale : 1
            Behavior on scale { NumberAnimation { duration: 120 } }

            CoverShadow {
                anchors.fill: parent
                theme: cell.theme
                raised: cell.hovered
            }
            ArtworkView {
                id: artwork
                anchors.fill: parent
                theme: cell.theme
                coverArt: cell.coverArt
                requestSize: cell.artworkSize
                cornerRadius: cell.theme.coverRadius
            }
            Rectangle {
                visible: cell.visualFocus
                anchors.fill: parent
                anchors.margins: -3
                radius: cell.theme.coverRadius + 3
                color: "transparent"
                border.width: 2
                border.color: cell.theme.highlight
            }
            DownloadStatusBadge {
                anchors { top: parent.top; right: parent.right; margins: 8 }
                theme: cell.theme
                downloads: cell.downloads
                key: "album:" + cell.albumId
            }
            Loader {
                anchors { left: parent.left; bottom: parent.bottom; margins: 10 }
                active: cell.hovered
                sourceComponent: RoundButton {
                    objectName: "cellPlayButton"
                    width: 34
                    height: 34
                    focusPolicy: Qt.NoFocus
                    Accessible.name: qsTr("Play %1").arg(cell.name)
                    opacity: 0
                    Component.onCompleted: opacity = 1
                    Behavior on opacity { NumberAnimation { duration: 120 } }
                    contentItem: SymbolIcon {
                        symbol: "play.fill"
                        size: 18
                        color: "white"
                    }
                    background: Rectangle {
                        radius: width / 2
                        color: Qt.rgba(0, 0, 0, 0.55)
                    }
                    onClicked: cell.actions.play(cell.record)
                }
            }
        }
        Label {
            id: nameLabel
            anchors { top: cover.bottom; topMargin: 8; left: parent.left; right: parent.right }
            text: cell.name
            color: cell.theme.text
            font.weight: Font.Medium
            elide: Text.ElideRight
        }
        HoverLink {
            id: artistLink
            anchors { top: nameLabel.bottom; left: parent.left }
            width: Math.min(implicitWidth, parent.width)
            visible: cell.artist !== ""
            theme: cell.theme
            text: cell.artist
            isLink: cell.artistId !== ""
            help: qsTr("Go to Artist")
            pixelSize: cell.theme.captionSize
            color: cell.theme.secondaryText
            onClicked: cell.navigation.pushArtist({ "id": cell.artistId, "name": cell.artist })
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: cell.openMenu()
    }
    Loader {
        id: menuLoader
        active: false
        sourceComponent: Menu {
            id: menu
            MenuItem {
                text: qsTr("Play")
                onTriggered: cell.actions.play(cell.menuRecord)
            }
            MenuItem {
                text: qsTr("Shuffle")
                onTriggered: cell.actions.shuffle(cell.menuRecord)
            }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Play Next")
                onTriggered: cell.actions.playNext(cell.menuRecord)
            }
            MenuItem {
                text: qsTr("Play Last")
                onTriggered: cell.actions.playLast(cell.menuRecord)
            }
            MenuSeparator {}
            MenuItem {
                text: cell.actions.likesRevision, cell.actions.likeText(cell.menuRecord.id)
                onTriggered: cell.actions.toggleLike(cell.menuRecord)
            }
            AddToPlaylistMenu {
                library: cell.library
                askNewPlaylistName: cell.askNewPlaylistName
                album: cell.menuRecord
            }
            property AlbumDownloadButtons downloads: AlbumDownloadButtons {
                menu: menu
                position: 8
                theme: cell.theme
                downloads: cell.downloads
                album: cell.menuRecord
            }
        }
    }
}
