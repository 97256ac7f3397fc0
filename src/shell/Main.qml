import QtQuick
import QtQuick.Controls
import Velto

ApplicationWindow {
    id: window
    required property VeltoApp app

    readonly property Theme theme: app.theme

    width: 1100
    height: 720
    minimumWidth: rootView.showsMainView ? theme.windowMinWidth : theme.connectMinWidth
    minimumHeight: rootView.showsMainView ? theme.windowMinHeight : theme.connectMinHeight
    visible: true
    title: "Velto"
    color: theme.surface
    font.family: theme.fontFamily
    // The dark look every colour of the views is chosen against, for the controls too.
    palette {
        window: theme.surface
        windowText: theme.text
        base: theme.field
        alternateBase: theme.raisedSurface
        text: theme.text
        placeholderText: theme.tertiaryText
        button: theme.control
        buttonText: theme.text
        brightText: theme.text
        highlight: theme.highlight
        highlightedText: "white"
        toolTipBase: theme.raisedSurface
        toolTipText: theme.text
        light: theme.control
        midlight: theme.control
        mid: theme.raisedSurface
        dark: theme.sidebarSurface
        shadow: "black"
        link: theme.highlight
    }

    menuBar: AppMenuBar {
        app: window.app
        onSettingsRequested: window.showSettings()
        onAboutRequested: aboutLoader.active = true
    }

    RootView {
        id: rootView
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
