import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// The connect form's opt-in for servers that cannot check tokens.
ColumnLayout {
    id: disclosure
    required property ConnectForm form
    property bool expanded: form.usesLegacyAuthentication

    spacing: 6

    ToolButton {
        objectName: "advancedToggle"
        padding: 2
        // The label sits in a child, which assistive technology does not read as the button's name.
        Accessible.name: qsTr("Advanced")
        Accessible.description: disclosure.expanded ? qsTr("Hide the advanced options") : qsTr("Show the advanced options")
        onClicked: disclosure.expanded = !disclosure.expanded
        contentItem: RowLayout {
            spacing: 4
            SymbolIcon {
                symbol: disclosure.expanded ? "chevron.down" : "chevron.right"
                color: palette.buttonText
            }
            Label { text: qsTr("Advanced") }
        }
    }
    Switch {
        objectName: "legacySwitch"
        visible: disclosure.expanded
        enabled: !disclosure.form.isConnecting
        text: qsTr("Use legacy authentication")
        checked: disclosure.form.usesLegacyAuthentication
        onToggled: disclosure.form.usesLegacyAuthentication = checked
    }
    Label {
        Layout.fillWidth: true
        visible: disclosure.expanded
        wrapMode: Text.WordWrap
        font.pixelSize: 12
        opacity: 0.7
        text: qsTr("Sends your password to the server itself instead of a token. Only for servers that cannot check tokens.")
    }
}
