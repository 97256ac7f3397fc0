import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// What a screen shows in place of content it does not have: a symbol, a title and a line of explanation, centred,
// with room for a button under them.
ColumnLayout {
    id: block
    required property Theme theme
    required property string symbol
    required property string title
    property string description
    default property alias actions: extra.data

    anchors.centerIn: parent
    width: Math.min(parent.width - 48, 380)
    spacing: 10

    SymbolIcon {
        Layout.alignment: Qt.AlignHCenter
        symbol: block.symbol
        size: 48
        color: block.theme.secondaryText
        Accessible.ignored: true
    }
    Label {
        Layout.fillWidth: true
        text: block.title
        color: block.theme.text
        font.pixelSize: 20
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: block.description
        color: block.theme.secondaryText
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    Item {
        id: extra
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 6
        implicitWidth: childrenRect.width
        implicitHeight: childrenRect.height
        visible: children.length > 0
    }
}
