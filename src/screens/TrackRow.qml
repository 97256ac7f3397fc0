import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// One track of an album page: its number (a speaker while it plays, a play symbol under the pointer), title and
// length. A press selects it at once, a double click plays it, and its menu puts it next or last, likes it or
// adds it to a playlist.
ItemDelegate {
    id: row
    required property int index
    required property string songId
    required property var record
    required property string title
    required property string trackNumber
    required property string durationText
    required property Theme theme
    required property AlbumDetailScreen screen
    required property LibraryStore library
    required property var askNewPlaylistName
    // The page's colour for the playing title; the accent for the selection.
    required property color tint
    required property color accent
    readonly property bool isCurrent: screen.currentSongId === songId
    readonly property bool isSelected: screen.selectedSongId === songId

    width: ListView.view.width - ListView.view.leftMargin - ListView.view.rightMargin
    height: 34
    padding: 0
    leftPadding: 8
    rightPadding: 10
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    Accessible.role: Accessible.ListItem
    Accessible.name: title
    Accessible.selected: isSelected
    Accessible.onPressAction: screen.play(songId)

    contentItem: RowLayout {
        spacing: 8
        Item {
            Layout.preferredWidth: 26
            Layout.fillHeight: true
            SymbolIcon {
                anchors.centerIn: parent
                visible: row.isCurrent || row.hovered
                symbol: row.isCurrent ? (row.screen.isPlaying ? "speaker.wave.2.fill" : "speaker.fill") : "play.fill"
                size: row.isCurrent ? 14 : 12
                color: row.isSelected ? "white" : row.tint
            }
            Label {
                anchors.centerIn: parent
                visible: !row.isCurrent && !row.hovered
                text: row.trackNumber
                color: row.isSelected ? "white" : row.theme.secondaryText
            }
        }
        Label {
            Layout.fillWidth: true
            text: row.title
            elide: Text.ElideRight
            color: row.isSelected ? "white" : row.isCurrent ? row.tint : row.theme.text
        }
        Label {
            text: row.durationText
            color: row.isSelected ? Qt.rgba(1, 1, 1, 0.8) : row.theme.secondaryText
        }
    }
    background: Rectangle {
        radius: 6
        color: row.isSelected ? row.accent : row.hovered ? row.theme.placeholder : "transparent"
    }

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onPressed: mouse => {
            row.screen.select(row.songId)
            row.ListView.view.forceActiveFocus(Qt.MouseFocusReason)
            if (mouse.button === Qt.RightButton) {
                menuLoader.active = true
                menuLoader.item.popup()
            }
        }
        onDoubleClicked: mouse => {
            if (mouse.button === Qt.LeftButton)
                row.screen.play(row.songId)
        }
    }
    // Made when first opened: long albums make many rows.
    Loader {
        id: menuLoader
        active: false
        sourceComponent: Menu {
            MenuItem {
                text: qsTr("Play Next")
                onTriggered: row.screen.playSongNext(row.songId)
            }
            MenuItem {
                text: qsTr("Play Last")
                onTriggered: row.screen.playSongLast(row.songId)
            }
            MenuSeparator {}
            LikeMenuButton {
                library: row.library
                song: row.record
            }
            AddToPlaylistMenu {
                library: row.library
                askNewPlaylistName: row.askNewPlaylistName
                songs: [row.record]
            }
        }
    }
}
