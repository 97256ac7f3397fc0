import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// One row of the sidebar: a place, a playlist (with its menu, and a target for dropped albums), or the
// "New Playlist" button.
ItemDelegate {
    id: row
    required property int index
    required property string kind
    required property string key
    required property string title
    required property string symbol
    required property bool selected
    required property string playlistId
    required property Theme theme
    required property var dropAlbums
    required property string albumDragType
    signal activated()
    signal renameRequested()
    signal deleteRequested()

    function openMenu() {
        if (kind === "playlist")
            menu.popup(row, 8, height)
    }

    width: ListView.view.width
    height: theme.rowHeight
    padding: 0
    leftPadding: 8
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: title
    Accessible.selected: selected

    contentItem: RowLayout {
        spacing: 8

        SymbolIcon {
            Layout.preferredWidth: 18
            symbol: row.symbol
            color: row.selected ? row.theme.highlight : row.theme.secondaryText
        }
        Label {
            Layout.fillWidth: true
            text: row.title
            color: row.kind === "newPlaylist" ? row.theme.secondaryText : row.theme.text
            elide: Text.ElideRight
        }
    }
    background: Rectangle {
        radius: 6
        color: drop.containsDrag ? Qt.rgba(row.theme.highlight.r, row.theme.highlight.g, row.theme.highlight.b, 0.25)
             : row.selected ? row.theme.selection
             : row.hovered ? row.theme.placeholder : "transparent"
        // The keyboard's place, where it is not the selection.
        border.width: row.ListView.isCurrentItem && row.ListView.view.activeFocus && !row.selected ? 1 : 0
        border.color: row.theme.highlight
    }

    // A click leaves the keyboard in the list, as in any sidebar.
    onClicked: {
        ListView.view.currentIndex = index
        ListView.view.forceActiveFocus(Qt.MouseFocusReason)
        activated()
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.openMenu()
    }
    DropArea {
        id: drop
        anchors.fill: parent
        enabled: row.kind === "playlist"
        keys: [row.albumDragType]
        onDropped: drop => {
            if (row.dropAlbums(row.playlistId, drop.getDataAsString(row.albumDragType)))
                drop.accept(Qt.CopyAction)
        }
    }
    Menu {
        id: menu
        MenuItem {
            text: qsTr("Rename…")
            onTriggered: row.renameRequested()
        }
        MenuItem {
            text: qsTr("Delete Playlist…")
            palette.windowText: row.theme.destructive
            onTriggered: row.deleteRequested()
        }
    }
}
