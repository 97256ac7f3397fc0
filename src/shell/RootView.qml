import QtQuick
import Velto

// The connect screen, or the main view for the signed-in account; signing out and in again makes a new one.
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

    Component {
        id: connectView
        ConnectView { appState: root.app.appState }
    }
    Component {
        id: mainView
        MainViewPlaceholder { app: root.app }
    }
}
