import QtQuick
import QtQuick.Controls
import Velto

// One album or playlist on the Downloads screen: its collage, name, song count and size. A click opens it; on
// hover a play button lies in the cover's corner; the context menu plays it or removes the download.
AbstractButton {
    id: cell
    // The collection's row: key, name, caption, covers, canOpen.
    required property var collection
    required property Theme theme
    required property DownloadsScreen screen
    readonly property string key: collection.key

    function openMenu() { menu.popup(cell, cover.width / 2, cover.height / 2) }

    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    implicitHeight: cover.height + 8 + nameLabel.implicitHeight + captionLabel.implicitHeight
    Accessible.role: Accessible.Button
    Accessible.name: cell.collection.name
    Accessible.description: cell.collection.caption

    onClicked: screen.open(key)
    Keys.onMenuPressed: openMenu()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && event.modifiers & Qt.ShiftModifier) {
            openMenu()
            event.accepted = true
        }
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
            CollectionArtworkView {
                anchors.fill: parent
                theme: cell.theme
                covers: cell.collection.covers
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
            RoundButton {
                objectName: "cellPlayButton"
                visible: cell.hovered
                anchors { right: parent.right; bottom: parent.bottom; margins: 10 }
                width: 36
                height: 36
                focusPolicy: Qt.NoFocus
                Accessible.name: qsTr("Play %1").arg(cell.collection.name)
                contentItem: SymbolIcon {
                    symbol: "play.fill"
                    size: 20
                    color: "white"
                }
                background: Rectangle {
                    radius: width / 2
                    color: cell.theme.highlight
                }
                onClicked: cell.screen.play(cell.key)
            }
        }
        Label {
            id: nameLabel
            anchors { top: cover.bottom; topMargin: 8; left: parent.left; right: parent.right }
            text: cell.collection.name
            color: cell.theme.text
            font.weight: Font.DemiBold
            elide: Text.ElideRight
        }
        Label {
            id: captionLabel
            anchors { top: nameLabel.bottom; left: parent.left; right: parent.right }
            text: cell.collection.caption
            color: cell.theme.secondaryText
            font.pixelSize: cell.theme.captionSize
            elide: Text.ElideRight
        }
    }
    HoverHandler {
        cursorShape: cell.collection.canOpen ? Qt.PointingHandCursor : Qt.ArrowCursor
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: cell.openMenu()
    }
    Menu {
        id: menu
        MenuItem {
            text: qsTr("Play")
            onTriggered: cell.screen.play(cell.key)
        }
        MenuItem {
            text: qsTr("Shuffle")
            onTriggered: cell.screen.shuffle(cell.key)
        }
        MenuItem {
            text: qsTr("Play Next")
            onTriggered: cell.screen.playNext(cell.key)
        }
        MenuItem {
            text: qsTr("Play Last")
            onTriggered: cell.screen.playLast(cell.key)
        }
        MenuSeparator {}
        MenuItem {
            text: qsTr("Remove Download")
            palette.windowText: cell.theme.destructive
            onTriggered: cell.screen.remove(cell.key)
        }
    }
}
