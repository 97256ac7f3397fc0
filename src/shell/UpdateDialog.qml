import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// Shows what the update check has to report; the release itself is fetched by the user from its page.
Dialog {
    id: dialog
    required property UpdaterModel updater

    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: 420
    modal: true
    Component.onCompleted: open()
    title: updater.reportTitle
    onClosed: updater.dismissReport()

    contentItem: Label {
        text: dialog.updater.reportText
        wrapMode: Text.WordWrap
    }

    footer: DialogButtonBox {
        Button {
            visible: dialog.updater.reportLink.toString() !== ""
            text: qsTr("Open Download Page")
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            onClicked: Qt.openUrlExternally(dialog.updater.reportLink)
        }
        Button {
            text: qsTr("Close")
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
        }
    }
}
