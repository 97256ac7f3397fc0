import QtQuick
import QtQuick.Controls
import Velto

// The library's places, the presets and the playlists, washed with the window's accent.
FocusScope {
    id: sidebar
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    signal newPlaylistRequested()
    signal renameRequested(string playlistId, string name)

    function deletePlaylist(playlistId) { rows.deletePlaylist(playlistId) }
    function renamePlaylist(playlistId, name) { rows.renamePlaylist(playlistId, name) }
    function createPlaylist(name) { rows.createPlaylist(name) }

    SidebarModel {
        id: rows
        navigation: sidebar.navigation
        library: sidebar.library
        // The arrow keys move the current row on their own; a new selection brings it back.
        onSelectedRowChanged: list.currentIndex = selectedRow
    }
    SidebarAccentSurface {
        anchors.fill: parent
        theme: sidebar.theme
        accent: sidebar.navigation.windowAccent
    }
    ListView {
        id: list
        objectName: "sidebarList"
        anchors { fill: parent; margins: 8 }
        model: rows
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        // There is no highlight to move: without these the view animates an invisible one at every selection.
        highlightMoveDuration: 0
        highlightResizeDuration: 0
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Sidebar")

        section.property: "section"
        section.delegate: Label {
            required property string section
            width: ListView.view.width
            height: section === "" ? 0 : implicitHeight + 14
            leftPadding: 8
            topPadding: 12
            visible: section !== ""
            text: section
            color: sidebar.theme.tertiaryText
            font.pixelSize: 11
            font.weight: Font.DemiBold
        }
        delegate: SidebarRow {
            theme: sidebar.theme
            dropAlbums: (playlistId, data) => rows.dropAlbums(playlistId, data)
            albumDragType: rows.albumDragType
            onActivated: {
                if (kind === "newPlaylist")
                    sidebar.newPlaylistRequested()
                else
                    sidebar.navigation.selectKey(key)
            }
            onRenameRequested: sidebar.renameRequested(playlistId, title)
            onDeleteRequested: rows.deletePlaylist(playlistId)
        }

        currentIndex: rows.selectedRow
        Keys.onReturnPressed: if (currentItem) currentItem.activated()
        Keys.onEnterPressed: if (currentItem) currentItem.activated()
        Keys.onMenuPressed: if (currentItem) currentItem.openMenu()
    }
}
