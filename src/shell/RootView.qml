import QtQuick
import Velto

// The connect screen, or the main view for the signed-in account. Each new account gets a fresh main view.
Item {
    id: root
    required property VeltoApp app
    readonly property bool showsMainView: app.appState.signedIn && app.appState.library !== null
                                          && app.appState.downloads !== null

    Loader {
        id: loader
        anchors.fill: parent
        sourceComponent: root.showsMainView ? mainView : connectView
    }

    Connections {
        target: root.app.appState
        function onClientChanged() {
            loader.active = false
            loader.active = true
        }
    }

    Component {
        id: connectView
        ConnectView { appState: root.app.appState }
    }
    Component {
        id: mainView
        MainViewPlaceholder { app: root.app }
    }
}
