import QtQuick
import QtQuick.Controls
import Velto

// The program's capsule button: a symbol and a word on a tint (softened when `soft`), or on a neutral fill.
Button {
    id: button
    required property Theme theme
    property string symbol
    property color tint: "transparent"
    property color foreground: theme.text
    property bool soft: false
    readonly property bool tinted: tint.a > 0

    leftPadding: 22
    rightPadding: 22
    topPadding: 9
    bottomPadding: 9
    font.weight: Font.Medium
    opacity: enabled ? 1 : 0.4
    Accessible.name: text

    contentItem: Row {
        spacing: 6
        SymbolIcon {
            visible: button.symbol !== ""
            anchors.verticalCenter: parent.verticalCenter
            symbol: button.symbol
            size: 16
            color: button.foreground
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            font: button.font
            color: button.foreground
        }
    }
    background: Rectangle {
        implicitHeight: 36
        radius: height / 2
        color: button.tinted ? button.tint : button.theme.control
        opacity: button.tinted
                 ? (button.soft ? (button.down ? 0.34 : 0.22) : (button.down ? 0.85 : 1))
                 : (button.down ? 0.9 : 0.6)
        border.width: button.visualFocus ? 2 : 0
        border.color: button.theme.highlight
    }
}
