import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// Stands where the library will be: who is signed in where, and the way out.
Item {
    id: view
    required property VeltoApp app

    objectName: "mainView"
    Component.onCompleted: app.mainViewAppeared()

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 8

        Label {
            objectName: "signedInServer"
            Layout.alignment: Qt.AlignHCenter
            text: view.app.appState.serverURL
            font.pixelSize: 18
            font.weight: Font.DemiBold
        }
        Label {
            objectName: "signedInUser"
            Layout.alignment: Qt.AlignHCenter
            text: view.app.appState.username
            opacity: 0.7
        }
        Button {
            objectName: "logOutButton"
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 12
            text: qsTr("Log Out")
            onClicked: view.app.commands.logOut()
        }
    }
}
