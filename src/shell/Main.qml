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
        onSettingsRequested: window.showSettings()
        onAboutRequested: aboutLoader.active = true
    }

    RootView {
        anchors.fill: parent
        app: window.app
    }

    // Made when first needed: start-up builds only what the first frame shows.
    Loader {
        id: settingsLoader
        active: false
        sourceComponent: SettingsWindow {
            objectName: "settingsWindow"
            app: window.app
        }
    }
    Loader {
        active: window.app.updater.hasReport
        sourceComponent: UpdateDialog { updater: window.app.updater }
    }
    Loader {
        id: aboutLoader
        active: false
        sourceComponent: AboutDialog { onClosed: aboutLoader.active = false }
    }

    function showSettings() {
        settingsLoader.active = true
        const settings = settingsLoader.item
        settings.show()
        settings.raise()
        settings.requestActivate()
    }

    Component.onCompleted: app.updater.checkOnLaunch()
}
