import QtQuick
import Velto

// One symbol of the icon table, drawn as a glyph of the icon font.
Text {
    property string symbol
    property real size: 16

    text: SymbolIcons.glyph(symbol)
    font.family: SymbolIcons.fontFamily
    font.pixelSize: size
    horizontalAlignment: Text.AlignHCenter
    verticalAlignment: Text.AlignVCenter
}
