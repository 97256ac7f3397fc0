import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// "Up Next": the songs after the current one. A double click or "Play Now" jumps to a song, "Remove" or the Delete
// key takes it out, and dragging a row (or Ctrl+Up and Ctrl+Down) moves it.
Popup {
    id: popup
    required property Theme theme
    required property PlayerController player

    width: theme.queueWidth
    padding: 12
    focus: true
    // A press on the bar, its queue button included, leaves the toggling to the button.
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutsideParent
    background: Rectangle {
        radius: popup.theme.barRadius
        color: popup.theme.raisedSurface
        border.width: 1
        border.color: popup.theme.separator
    }

    UpNextModel {
        id: upNext
        player: popup.player
    }

    contentItem: ColumnLayout {
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            Label {
                Layout.fillWidth: true
                text: qsTr("Up Next")
                color: popup.theme.text
                font.weight: Font.Bold
                Accessible.role: Accessible.Heading
            }
            Button {
                objectName: "clearQueue"
                visible: upNext.count > 0
                flat: true
                text: qsTr("Clear")
                onClicked: upNext.clear()
            }
        }
        Label {
            objectName: "queueEmpty"
            Layout.fillWidth: true
            Layout.preferredHeight: popup.theme.queueEmptyHeight
            visible: upNext.count === 0
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            text: qsTr("No songs in the queue.")
            color: popup.theme.secondaryText
        }
        ListView {
            id: queueList
            objectName: "queueList"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.max(popup.theme.queueMinHeight, Math.min(contentHeight, popup.theme.queueMaxHeight))
            visible: upNext.count > 0
            clip: true
            focus: true
            model: upNext
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: true
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Up Next")
            ScrollBar.vertical: ScrollBar {}
            property int dropTarget: -1

            Keys.onDeletePressed: upNext.remove(currentIndex)
            Keys.onReturnPressed: upNext.playNow(currentIndex)
            Keys.onPressed: event => {
                if (event.modifiers & Qt.ControlModifier && (event.key === Qt.Key_Up || event.key === Qt.Key_Down)) {
                    const to = currentIndex + (event.key === Qt.Key_Up ? -1 : 1)
                    if (to >= 0 && to < count) {
                        upNext.move(currentIndex, to)
                        currentIndex = to
                    }
                    event.accepted = true
                }
            }

            delegate: ItemDelegate {
                id: row
                required property int index
                required property string title
                required property string artist
                required property string durationText

                width: ListView.view.width
                height: 40
                focusPolicy: Qt.NoFocus
                highlighted: ListView.isCurrentItem
                Accessible.role: Accessible.ListItem
                Accessible.name: artist === "" ? title : title + ", " + artist

                contentItem: RowLayout {
                    spacing: 8
                    Column {
                        Layout.fillWidth: true
                        Label {
                            width: parent.width
                            text: row.title
                            color: popup.theme.text
                            elide: Text.ElideRight
                        }
                        Label {
                            width: parent.width
                            visible: row.artist !== ""
                            text: row.artist
                            color: popup.theme.secondaryText
                            font.pixelSize: popup.theme.captionSize
                            elide: Text.ElideRight
                        }
                    }
                    Label {
                        text: row.durationText
                        color: popup.theme.secondaryText
                        font.pixelSize: popup.theme.captionSize
                    }
                }
                background: Rectangle {
                    radius: 6
                    color: row.highlighted ? popup.theme.selection : row.hovered ? popup.theme.placeholder : "transparent"
                    border.width: row.ListView.view.dropTarget === row.index ? 1 : 0
                    border.color: popup.theme.highlight
                }

                onClicked: {
                    row.ListView.view.currentIndex = index
                    row.ListView.view.forceActiveFocus()
                }
                onDoubleClicked: upNext.playNow(index)
                TapHandler {
                    acceptedButtons: Qt.RightButton
                    onTapped: rowMenu.popup()
                }
                DragHandler {
                    id: drag
                    target: null
                    xAxis.enabled: false
                    // The list must not take the drag over to scroll.
                    grabPermissions: PointerHandler.CanTakeOverFromItems | PointerHandler.CanTakeOverFromHandlersOfDifferentType
                    onCentroidChanged: if (active) row.ListView.view.dropTarget = row.ListView.view.rowAt(row, centroid.position)
                    onActiveChanged: if (!active) {
                        if (row.ListView.view.dropTarget >= 0)
                            upNext.move(row.index, row.ListView.view.dropTarget)
                        row.ListView.view.dropTarget = -1
                    }
                }
                Menu {
                    id: rowMenu
                    MenuItem {
                        text: qsTr("Play Now")
                        onTriggered: upNext.playNow(row.index)
                    }
                    MenuItem {
                        text: qsTr("Remove")
                        onTriggered: upNext.remove(row.index)
                    }
                }
            }

            function rowAt(item, point) {
                const inList = item.mapToItem(contentItem, point.x, point.y)
                return indexAt(10, inList.y)
            }
        }
    }
}
