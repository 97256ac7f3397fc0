import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

FocusScope {
    id: view
    required property AppState appState

    implicitWidth: 520
    implicitHeight: 480

    ConnectForm {
        id: form
        appState: view.appState
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 64, 380)
        spacing: 12

        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            symbol: "music.note.house.fill"
            size: 44
            color: palette.highlight
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Connect to Your Server")
            font.pixelSize: 22
            font.weight: Font.DemiBold
        }
        Label {
            Layout.fillWidth: true
            Layout.bottomMargin: 8
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            text: qsTr("Velto streams music from your Navidrome or Subsonic-compatible server.")
            font.pixelSize: 12
            opacity: 0.7
        }

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            rowSpacing: 12
            columnSpacing: 12

            Label { text: qsTr("Server URL") }
            TextField {
                id: serverField
                objectName: "serverField"
                Layout.fillWidth: true
                placeholderText: "https://music.example.com"
                inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
                text: form.serverURL
                // Read-only rather than disabled while connecting, so that the caret stays where it was.
                readOnly: form.isConnecting
                focus: true
                Accessible.name: qsTr("Server URL")
                onTextEdited: form.serverURL = text
                onAccepted: form.submit()
            }
            Label { text: qsTr("Username") }
            TextField {
                objectName: "usernameField"
                Layout.fillWidth: true
                inputMethodHints: Qt.ImhNoAutoUppercase
                text: form.username
                readOnly: form.isConnecting
                Accessible.name: qsTr("Username")
                onTextEdited: form.username = text
                onAccepted: form.submit()
            }
            Label { text: qsTr("Password") }
            TextField {
                objectName: "passwordField"
                Layout.fillWidth: true
                echoMode: TextInput.Password
                text: form.password
                readOnly: form.isConnecting
                // Qt keeps a password field's accessible name empty whatever it is given, and makes the
                // placeholder its description: that is where a screen reader finds what the field is for.
                placeholderText: qsTr("Password")
                Accessible.name: qsTr("Password")
                onTextEdited: form.password = text
                onAccepted: form.submit()
            }
        }

        Label {
            objectName: "errorText"
            Layout.fillWidth: true
            visible: form.errorMessage !== ""
            text: form.errorMessage
            color: "#d0312d"
            wrapMode: Text.WordWrap
            font.pixelSize: 13
        }

        Button {
            objectName: "connectButton"
            Layout.fillWidth: true
            enabled: form.canConnect
            highlighted: true
            // A click leaves the keyboard in the field it came from, which stays usable after a failure.
            focusPolicy: Qt.TabFocus
            Accessible.name: qsTr("Connect")
            text: form.isConnecting ? "" : qsTr("Connect")
            onClicked: form.submit()
            BusyIndicator {
                anchors.centerIn: parent
                height: parent.height - 8
                width: height
                running: form.isConnecting
                visible: running
            }
        }

        AdvancedDisclosure {
            Layout.fillWidth: true
            form: form
        }
    }
}
