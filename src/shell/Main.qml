import QtQuick
import QtQuick.Controls
import Velto

ApplicationWindow {
    id: window
    required property VeltoApp app

    width: 1100
    height: 720
    minimumWidth: 520
    minimumHeight: 480
    visible: true
    title: "Velto"

    menuBar: AppMenuBar {
        app: window.app
        onSettingsRequested: {
            settingsWindow.show()
            settingsWindow.raise()
            settingsWindow.requestActivate()
        }
        onAboutRequested: aboutDialog.open()
    }

    RootView {
        anchors.fill: parent
        app: window.app
    }

    SettingsWindow {
        id: settingsWindow
        objectName: "settingsWindow"
        app: window.app
    }
    UpdateDialog { updater: window.app.updater }
    AboutDialog { id: aboutDialog }

    Component.onCompleted: app.updater.checkOnLaunch()
}
