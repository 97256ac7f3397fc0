import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// One entry of a playlist: its place (a speaker while it plays, a play button under the pointer), cover, title,
// artist and length. A click selects it, a double click or a click on the play button plays it; dragging it moves
// it through the list. Its menu puts the song next or last, likes it, adds it elsewhere or removes the entry.
ItemDelegate {
    id: row
    required property int index
    required property string entryId
    required property string songId
    required property var record
    required property string title
    required property string artist
    required property string durationText
    required property string coverArt
    required property bool isSelected
    required property bool isCurrent
    required property Theme theme
    required property PlaylistDetailScreen screen
    required property LibraryStore library
    required property var askNewPlaylistName
    // Tells the page where the pointer is while this row is dragged, in the page's coordinates.
    signal dragMoved(point scenePosition)
    signal dragStarted(point scenePosition)
    signal dragEnded()

    objectName: "playlistRow"
    width: ListView.view.width - ListView.view.leftMargin - ListView.view.rightMargin
    height: 46
    padding: 0
    leftPadding: 6
    rightPadding: 12
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    opacity: dragHandler.active ? 0.35 : 1
    Accessible.role: Accessible.ListItem
    Accessible.name: artist === "" ? title : title + ", " + artist
    Accessible.selected: isSelected
    Accessible.onPressAction: screen.play(index)

    contentItem: RowLayout {
        spacing: 10
        Item {
            Layout.preferredWidth: 26
            Layout.fillHeight: true
            SymbolIcon {
                anchors.centerIn: parent
                visible: row.isCurrent || row.hovered
                symbol: row.isCurrent && !row.hovered ? (row.screen.isPlaying ? "speaker.wave.2.fill" : "speaker.fill")
                                                      : "play.fill"
                size: 14
                color: row.isSelected ? "white" : row.theme.highlight
            }
            Label {
                anchors.centerIn: parent
                visible: !row.isCurrent && !row.hovered
                text: row.index + 1
                color: row.isSelected ? Qt.rgba(1, 1, 1, 0.8) : row.theme.secondaryText
            }
            MouseArea {
                objectName: "rowPlayButton"
                anchors.fill: parent
                visible: row.hovered
                Accessible.ignored: true
                onClicked: row.screen.play(row.index)
            }
        }
        ArtworkView {
            Layout.preferredWidth: 32
            Layout.preferredHeight: 32
            theme: row.theme
            coverArt: row.coverArt
            cornerRadius: 4
        }
        Column {
            Layout.fillWidth: true
            Label {
                width: parent.width
                text: row.title
                elide: Text.ElideRight
                color: row.isSelected ? "white" : row.isCurrent ? row.theme.highlight : row.theme.text
            }
            Label {
                width: parent.width
                visible: row.artist !== ""
                text: row.artist
                elide: Text.ElideRight
                font.pixelSize: row.theme.captionSize
                color: row.isSelected ? Qt.rgba(1, 1, 1, 0.8) : row.theme.secondaryText
            }
        }
        Label {
            text: row.durationText
            color: row.isSelected ? Qt.rgba(1, 1, 1, 0.8) : row.theme.secondaryText
        }
    }
    background: Rectangle {
        radius: 6
        color: row.isSelected ? row.theme.highlight : row.hovered ? row.theme.placeholder : "transparent"
    }

    onPressed: {
        screen.select(index)
        ListView.view.forceActiveFocus(Qt.MouseFocusReason)
    }
    onDoubleClicked: screen.play(index)
    TapHandler {
        acceptedButtons: Qt.RightButton
        onPressedChanged: if (pressed) {
            row.screen.select(row.index)
            row.ListView.view.forceActiveFocus(Qt.MouseFocusReason)
            menuLoader.active = true
            menuLoader.item.entryId = row.entryId
            menuLoader.item.record = row.record
            menuLoader.item.popup()
        }
    }
    DragHandler {
        id: dragHandler
        target: null
        xAxis.enabled: false
        enabled: !row.screen.isLocalOrder
        // The list must not take the drag over to scroll.
        grabPermissions: PointerHandler.CanTakeOverFromItems | PointerHandler.CanTakeOverFromHandlersOfDifferentType
        onActiveChanged: {
            if (active) {
                row.screen.beginDrag(row.index)
                row.dragStarted(centroid.scenePosition)
            } else {
                row.dragEnded()
            }
        }
        onCentroidChanged: if (active) row.dragMoved(centroid.scenePosition)
    }
    // Made when first opened: long playlists make many rows. It acts on the entry it was opened for, wherever
    // that entry has gone meanwhile.
    Loader {
        id: menuLoader
        active: false
        sourceComponent: Menu {
            id: menu
            property string entryId
            property var record: ({})
            MenuItem {
                text: qsTr("Play Next")
                onTriggered: row.screen.playRowNext(row.screen.rowOfEntry(menu.entryId))
            }
            MenuItem {
                text: qsTr("Play Last")
                onTriggered: row.screen.playRowLast(row.screen.rowOfEntry(menu.entryId))
            }
            MenuSeparator {}
            LikeMenuButton {
                library: row.library
                song: menu.record
            }
            AddToPlaylistMenu {
                library: row.library
                askNewPlaylistName: row.askNewPlaylistName
                songs: [menu.record]
            }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Remove from Playlist")
                enabled: !row.screen.isLocalOrder
                palette.windowText: row.theme.destructive
                palette.disabled.windowText: row.theme.tertiaryText
                onTriggered: row.screen.remove(row.screen.rowOfEntry(menu.entryId))
            }
        }
    }
}
