import QtQuick
import QtQuick.Controls
import Velto

MenuBar {
    id: bar
    required property VeltoApp app
    signal settingsRequested()
    signal aboutRequested()

    // The "&" that marks a mnemonic is no part of the name a screen reader says.
    delegate: MenuBarItem {
        Accessible.name: text.replace("&", "")
    }

    Menu {
        title: qsTr("&File")
        Action {
            text: qsTr("New Playlist…")
            shortcut: "Ctrl+N"
            enabled: bar.app.commands.canCreatePlaylist
            onTriggered: bar.app.commands.newPlaylist()
        }
        MenuSeparator {}
        Action {
            text: qsTr("Settings…")
            shortcut: "Ctrl+,"
            onTriggered: bar.settingsRequested()
        }
        Action {
            text: qsTr("Quit")
            shortcut: StandardKey.Quit
            onTriggered: Qt.quit()
        }
    }
    Menu {
        title: qsTr("&Library")
        Action {
            text: qsTr("Refresh")
            shortcut: "Ctrl+R"
            enabled: bar.app.commands.canRefresh
            onTriggered: bar.app.commands.refresh()
        }
    }
    Menu {
        title: qsTr("&Playback")
        Action {
            text: bar.app.commands.playPauseTitle
            enabled: bar.app.commands.canControlPlayback
            onTriggered: bar.app.commands.togglePlayPause()
        }
        Action {
            text: qsTr("Next")
            shortcut: "Ctrl+Right"
            enabled: bar.app.commands.canControlPlayback
            onTriggered: bar.app.commands.next()
        }
        Action {
            text: qsTr("Previous")
            shortcut: "Ctrl+Left"
            enabled: bar.app.commands.canControlPlayback
            onTriggered: bar.app.commands.previous()
        }
    }
    Menu {
        title: qsTr("&Help")
        Action {
            text: qsTr("Check for Updates…")
            enabled: bar.app.updater.canCheckForUpdates
            onTriggered: bar.app.updater.checkForUpdates()
        }
        MenuSeparator {}
        Action {
            text: qsTr("About Velto")
            onTriggered: bar.aboutRequested()
        }
    }
}
