import QtQuick
import QtQuick.Controls

// Asks before something that can't be undone: a title, a line saying what will happen, "Cancel", and the
// destructive button, which tells `confirmed`.
Dialog {
    id: dialog
    required property color destructiveColor
    required property string confirmText
    property alias message: messageLabel.text
    signal confirmed()

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(340, parent ? parent.width - 32 : 340)
    modal: true
    focus: true

    contentItem: Label {
        id: messageLabel
        wrapMode: Text.WordWrap
    }
    footer: DialogButtonBox {
        Button {
            text: qsTr("Cancel")
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
        }
        Button {
            objectName: "confirmButton"
            text: dialog.confirmText
            palette.buttonText: dialog.destructiveColor
            DialogButtonBox.buttonRole: DialogButtonBox.DestructiveRole
            onClicked: {
                dialog.confirmed()
                dialog.close()
            }
        }
    }
}
