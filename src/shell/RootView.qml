import QtQuick
import Velto

// The connect screen, or the main view for the signed-in account; signing out and in again makes a new one.
// While the saved account waits for the keyring, neither: the window shows its background.
Item {
    id: root
    required property VeltoApp app
    readonly property bool showsMainView: app.appState.signedIn && app.appState.library !== null
                                          && app.appState.downloads !== null

    Loader {
        id: loader
        anchors.fill: parent
        // A focus scope: without focus of its own, the field it shows could never have the keyboard.
        focus: true
        sourceComponent: root.app.appState.restoring ? null : root.showsMainView ? mainView : connectView
    }

    Component {
        id: connectView
        ConnectView {
            appState: root.app.appState
            focus: true
        }
    }
    Component {
        id: mainView
        MainView { app: root.app }
    }
}
