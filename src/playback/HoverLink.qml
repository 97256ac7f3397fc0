import QtQuick
import QtQuick.Controls
import Velto

// Text that leads somewhere: underlined under the pointer, with a help text; plain text when `isLink` is false.
AbstractButton {
    id: link
    required property Theme theme
    property bool isLink: true
    property string help
    property color color: theme.text
    property int pixelSize: 13
    property int weight: Font.Normal

    enabled: isLink
    hoverEnabled: isLink
    focusPolicy: isLink ? Qt.TabFocus : Qt.NoFocus
    implicitWidth: label.implicitWidth
    implicitHeight: label.implicitHeight
    Accessible.role: isLink ? Accessible.Link : Accessible.StaticText
    Accessible.name: text
    Accessible.description: help
    ToolTip.visible: isLink && hovered && help !== ""
    ToolTip.delay: 600
    ToolTip.text: help

    contentItem: Label {
        id: label
        text: link.text
        color: link.color
        font.pixelSize: link.pixelSize
        font.weight: link.weight
        font.underline: link.isLink && (link.hovered || link.visualFocus)
        elide: Text.ElideRight
    }
    HoverHandler {
        enabled: link.isLink
        cursorShape: Qt.PointingHandCursor
    }
}
