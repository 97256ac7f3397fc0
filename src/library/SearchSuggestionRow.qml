import QtQuick
import QtQuick.Controls
import Velto

// One suggestion: its cover (round for an artist), title and subtitle. The pointer marks the row it enters; a click
// picks it.
ItemDelegate {
    id: row
    required property int rowId
    required property string title
    required property string subtitle
    required property string coverArt
    required property bool isRound
    required property bool isHighlighted
    required property Theme theme
    signal activated(int rowId)
    // The pointer moved over the row, to this point of the window.
    signal pointerMoved(int rowId, point scenePoint)

    height: 46
    padding: 5
    leftPadding: 8
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    highlighted: isHighlighted
    Accessible.role: Accessible.ListItem
    Accessible.name: subtitle === "" ? title : title + ", " + subtitle
    Accessible.selected: isHighlighted

    contentItem: Item {
        ArtworkView {
            id: artwork
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            height: 36
            theme: row.theme
            coverArt: row.coverArt
            cornerRadius: row.isRound ? 18 : 4
        }
        Column {
            anchors { left: artwork.right; leftMargin: 10; right: parent.right; verticalCenter: parent.verticalCenter }
            Label {
                width: parent.width
                text: row.title
                color: row.theme.text
                elide: Text.ElideRight
            }
            Label {
                width: parent.width
                visible: row.subtitle !== ""
                text: row.subtitle
                color: row.theme.secondaryText
                font.pixelSize: row.theme.captionSize
                elide: Text.ElideRight
            }
        }
    }
    background: Rectangle {
        radius: 6
        color: row.isHighlighted ? row.theme.selection : "transparent"
    }
    onClicked: activated(rowId)

    HoverHandler {
        onPointChanged: if (hovered) row.pointerMoved(row.rowId, point.scenePosition)
    }
}
