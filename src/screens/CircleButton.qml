import QtQuick
import QtQuick.Controls
import Velto

// The program's round button: one symbol in a 34-wide circle, on a tint (softened when `soft`) or a faint fill.
Button {
    id: button
    required property Theme theme
    required property string symbol
    // What the button does, read by screen readers and shown as its tooltip.
    required property string help
    property color tint: "transparent"
    property color foreground: theme.text
    property bool soft: false
    readonly property bool tinted: tint.a > 0

    implicitWidth: 34
    implicitHeight: 34
    padding: 0
    opacity: enabled ? 1 : 0.4
    Accessible.name: help
    ToolTip.visible: hovered
    ToolTip.delay: 600
    ToolTip.text: help

    contentItem: SymbolIcon {
        symbol: button.symbol
        size: 14
        font.weight: Font.DemiBold
        color: button.foreground
    }
    background: Rectangle {
        radius: width / 2
        color: button.tinted ? button.tint : button.theme.control
        opacity: button.tinted
                 ? (button.soft ? (button.down ? 0.34 : 0.22) : (button.down ? 0.85 : 1))
                 : (button.down ? 0.9 : 0.6)
        border.width: button.visualFocus ? 2 : 0
        border.color: button.theme.highlight
    }
}
