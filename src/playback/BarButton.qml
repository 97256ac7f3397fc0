import QtQuick
import QtQuick.Controls
import Velto

// A round borderless button of the playback bar: a symbol, its help text, and an "on" look for shuffle, repeat
// and an open queue.
ToolButton {
    id: button
    required property Theme theme
    required property string symbol
    required property string help
    property bool isOn: false
    property real symbolSize: 18

    focusPolicy: Qt.TabFocus
    implicitWidth: 32
    implicitHeight: 32
    Accessible.name: help
    ToolTip.visible: hovered
    ToolTip.delay: 600
    ToolTip.text: help

    contentItem: SymbolIcon {
        symbol: button.symbol
        size: button.symbolSize
        color: !button.enabled ? button.theme.tertiaryText : button.isOn ? button.theme.highlight : button.theme.text
    }
    background: Rectangle {
        radius: width / 2
        color: button.down ? button.theme.selection : button.hovered ? button.theme.placeholder : "transparent"
        border.width: button.visualFocus ? 1 : 0
        border.color: button.theme.highlight
    }
}
