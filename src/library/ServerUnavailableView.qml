import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// The full page in place of a screen with nothing to show while the server can't be used.
Item {
    id: page
    required property Theme theme
    required property ServerUnavailableModel model

    objectName: "serverUnavailableView"

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 48, 380)
        spacing: 10

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: page.model.symbol
            size: 48
            color: page.theme.secondaryText
            Accessible.ignored: true
        }
        Label {
            Layout.fillWidth: true
            text: page.model.title
            color: page.theme.text
            font.pixelSize: 20
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            text: page.model.description
            color: page.theme.secondaryText
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
        }
        RetryButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 6
            visible: page.model.canRetry
            highlighted: true
            text: qsTr("Try Again")
            busy: page.model.isRetrying
            onClicked: page.model.tryAgain()
        }
    }
}
