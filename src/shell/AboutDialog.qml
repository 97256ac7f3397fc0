import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

Dialog {
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    modal: true
    title: qsTr("About Velto")
    width: 320
    standardButtons: Dialog.Close
    Component.onCompleted: open()

    contentItem: ColumnLayout {
        spacing: 6
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "music.note.house.fill"
            size: 44
            color: palette.highlight
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Velto %1").arg(Qt.application.version)
            font.weight: Font.DemiBold
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("A music player for your own Subsonic server.")
            opacity: 0.7
        }
    }
}
