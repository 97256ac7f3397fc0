import QtQuick
import QtQuick.Controls

// Asks for a playlist's name: "New Playlist" and "Rename Playlist". The name is trimmed by whoever takes it;
// both buttons leave the field empty for the next time.
Dialog {
    id: dialog
    required property string acceptText
    property alias name: field.text
    signal submitted(string name)

    anchors.centerIn: Overlay.overlay
    width: 340
    modal: true
    focus: true

    contentItem: TextField {
        id: field
        placeholderText: qsTr("Name")
        Accessible.name: qsTr("Name")
        focus: true
        onAccepted: dialog.accept()
    }
    footer: DialogButtonBox {
        Button {
            text: qsTr("Cancel")
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
        }
        Button {
            text: dialog.acceptText
            highlighted: true
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
        }
    }

    onOpened: field.forceActiveFocus()
    onAccepted: {
        submitted(field.text)
        field.text = ""
    }
    onRejected: field.text = ""
}
