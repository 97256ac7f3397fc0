import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

Window {
    id: window
    required property VeltoApp app

    title: qsTr("Settings")
    width: 400
    minimumWidth: 400
    maximumWidth: 400
    height: Math.max(content.implicitHeight + 40, 120)
    color: palette.window

    Label {
        anchors.centerIn: parent
        visible: !window.app.appState.signedIn
        text: qsTr("Not connected.")
        opacity: 0.6
    }

    ColumnLayout {
        id: content
        visible: window.app.appState.signedIn
        anchors.fill: parent
        anchors.margins: 20
        spacing: 10

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: 12
            rowSpacing: 8
            Label { text: qsTr("Server") }
            Label {
                objectName: "settingsServer"
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignRight
                elide: Text.ElideMiddle
                text: window.app.appState.serverURL
                opacity: 0.7
            }
            Label { text: qsTr("User") }
            Label {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignRight
                elide: Text.ElideRight
                text: window.app.appState.username
                opacity: 0.7
            }
        }

        MenuSeparator { Layout.fillWidth: true }

        Switch {
            objectName: "scrobbleSwitch"
            Layout.fillWidth: true
            text: qsTr("Report plays to server")
            checked: window.app.preferences.scrobbleEnabled
            onToggled: window.app.preferences.scrobbleEnabled = checked
        }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
            font.pixelSize: 11
            opacity: 0.6
            text: qsTr("Updates play counts on your server, and Last.fm/ListenBrainz if it is configured there.")
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("Volume Levelling")
        }
        RowLayout {
            objectName: "volumeLevelling"
            Layout.fillWidth: true
            spacing: 12
            // In the order of the setting's values: off, by track, by album.
            Repeater {
                model: [qsTr("Off"), qsTr("By Track"), qsTr("By Album")]
                RadioButton {
                    required property int index
                    required property string modelData
                    text: modelData
                    checked: window.app.preferences.volumeLevellingIndex === index
                    onClicked: window.app.preferences.volumeLevellingIndex = index
                }
            }
        }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
            font.pixelSize: 11
            opacity: 0.6
            text: qsTr("Evens out loudness between songs with the ReplayGain tags of their files.")
        }
        Switch {
            Layout.fillWidth: true
            text: qsTr("Automatically check for updates")
            checked: window.app.updater.automaticallyChecksForUpdates
            onToggled: window.app.updater.automaticallyChecksForUpdates = checked
        }

        MenuSeparator { Layout.fillWidth: true }

        DownloadsStorageSection {
            Layout.fillWidth: true
            theme: window.app.theme
            downloads: window.app.appState.downloads
        }

        MenuSeparator { Layout.fillWidth: true }

        Button {
            objectName: "settingsLogOut"
            Layout.alignment: Qt.AlignLeft
            text: qsTr("Log Out")
            palette.buttonText: "#d0312d"
            onClicked: window.app.commands.logOut()
        }
    }
}
