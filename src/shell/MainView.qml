import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// The window once signed in: the sidebar, and beside it the toolbar row, the screens of the navigation stack, the
// connection banner over them and the band where the playback bar stands.
FocusScope {
    id: view
    required property VeltoApp app
    readonly property Theme theme: app.theme
    readonly property LibraryStore library: app.appState.library
    readonly property DownloadStore downloads: app.appState.downloads
    readonly property bool windowActive: Window.active

    // Opens the naming dialog; `then` gets the name instead of a new playlist being made and selected.
    function askNewPlaylistName(then) {
        newPlaylistDialog.onName = then || null
        newPlaylistDialog.open()
    }

    objectName: "mainView"
    focus: true

    Navigation {
        id: navigator
        objectName: "navigation"
        appState: view.app.appState
        player: view.app.player
        locations: view.app.locations
    }
    SearchDropdownController {
        id: search
        appState: view.app.appState
        onOpenArtist: artist => navigator.pushArtist(artist)
        onOpenAlbum: album => navigator.pushAlbum(album)
        onPicked: navigator.searchText = ""
    }
    Connections {
        target: navigator
        function onSearchTextChanged() { search.handle(navigator.searchText) }
    }
    SidebarDoubleClickMonitor {
        sidebar: sidebar
        onDoubleClicked: navigator.popToRoot()
    }
    WindowAccentSurface {
        anchors.fill: parent
        theme: view.theme
        accent: navigator.windowAccent
    }

    SplitView {
        anchors.fill: parent
        handle: Rectangle {
            implicitWidth: 1
            color: view.theme.separator
        }

        Sidebar {
            id: sidebar
            objectName: "sidebar"
            SplitView.minimumWidth: view.theme.sidebarMinWidth
            SplitView.preferredWidth: view.theme.sidebarIdealWidth
            SplitView.maximumWidth: view.theme.sidebarMaxWidth
            theme: view.theme
            navigation: navigator
            library: view.library
            focus: true
            onNewPlaylistRequested: view.askNewPlaylistName(null)
            onRenameRequested: (playlistId, name) => {
                renameDialog.playlistId = playlistId
                renameDialog.name = name
                renameDialog.open()
            }
        }

        Item {
            id: detail
            SplitView.fillWidth: true

            RowLayout {
                id: toolbar
                anchors { top: parent.top; left: parent.left; right: parent.right; leftMargin: 8; rightMargin: 12 }
                height: view.theme.toolbarHeight
                spacing: 8

                ToolButton {
                    objectName: "backButton"
                    enabled: navigator.depth > 0
                    Accessible.name: qsTr("Back")
                    ToolTip.visible: hovered
                    ToolTip.text: qsTr("Back")
                    contentItem: SymbolIcon {
                        symbol: "chevron.left"
                        size: 20
                        color: parent.enabled ? view.theme.text : view.theme.tertiaryText
                    }
                    onClicked: navigator.back()
                }
                Item { Layout.fillWidth: true }
                TextField {
                    id: searchField
                    objectName: "searchField"
                    Layout.preferredWidth: 240
                    placeholderText: qsTr("Search")
                    Accessible.name: qsTr("Search")
                    text: navigator.searchText
                    onTextEdited: navigator.searchText = text
                    // The dropdown's keys are handled here, where the field already has them.
                    Keys.onPressed: event => event.accepted = search.keyPressed(event.key)

                    // Made with the first suggestions: start-up draws only what the first frame shows.
                    Loader {
                        id: dropdownLoader
                        active: false
                        sourceComponent: SearchDropdown {
                            objectName: "searchDropdown"
                            theme: view.theme
                            controller: search
                            field: searchField
                        }
                        Connections {
                            target: search
                            function onIsOpenChanged() { dropdownLoader.active = true }
                        }
                    }
                }
            }

            Item {
                id: content
                anchors { top: toolbar.bottom; left: parent.left; right: parent.right; bottom: parent.bottom }
                clip: true

                DestinationView {
                    anchors.fill: parent
                    visible: navigator.depth === 0
                    kind: navigator.rootKind
                    title: navigator.rootTitle
                    record: ({})
                    entryId: ""
                    askNewPlaylistName: view.askNewPlaylistName
                    depth: 0
                    theme: view.theme
                    navigation: navigator
                    library: view.library
                    downloads: view.downloads
                    player: view.app.player
                    preferences: view.app.preferences
                }
                Repeater {
                    model: navigator.stack
                    delegate: DestinationView {
                        required property int index
                        anchors.fill: parent
                        visible: index + 1 === navigator.depth
                        depth: index + 1
                        theme: view.theme
                        navigation: navigator
                        library: view.library
                        downloads: view.downloads
                        player: view.app.player
                        preferences: view.app.preferences
                        askNewPlaylistName: view.askNewPlaylistName
                    }
                }
                ConnectionBanner {
                    objectName: "connectionBanner"
                    anchors { top: parent.top; topMargin: 8; horizontalCenter: parent.horizontalCenter }
                    width: Math.min(parent.width - 32, view.theme.bannerMaxWidth)
                    theme: view.theme
                    library: view.library
                    downloads: view.downloads
                    faultShownFullPage: navigator.faultShownFullPage
                }
            }
            // Floating over the bottom of the screens, which scroll under it and end with a clearance for it.
            NowPlayingBar {
                objectName: "nowPlayingBar"
                anchors { bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
                anchors.bottomMargin: (view.theme.playbackBarBand - view.theme.barHeight) / 2
                width: Math.min(parent.width - 32, view.theme.barMaxWidth)
                theme: view.theme
                player: view.app.player
                library: view.library
                preferences: view.app.preferences
                onOpenAlbum: album => navigator.pushAlbum(album)
                onOpenArtist: artist => navigator.pushArtist(artist)
                onOpenPlaylist: playlistId => navigator.selectKey("playlist:" + playlistId)
            }
        }
    }

    PlaylistNameDialog {
        id: newPlaylistDialog
        objectName: "newPlaylistDialog"
        property var onName: null
        title: qsTr("New Playlist")
        acceptText: qsTr("Create")
        onSubmitted: name => onName ? onName(name) : sidebar.createPlaylist(name)
        onClosed: onName = null
    }
    PlaylistNameDialog {
        id: renameDialog
        objectName: "renameDialog"
        property string playlistId
        title: qsTr("Rename Playlist")
        acceptText: qsTr("Rename")
        onSubmitted: name => sidebar.renamePlaylist(playlistId, name)
        onClosed: playlistId = ""
    }

    Keys.onPressed: event => {
        if (event.key === Qt.Key_Space && event.modifiers === Qt.NoModifier)
            event.accepted = navigator.spacePressed()
        else if (event.key === Qt.Key_Find) {
            searchField.forceActiveFocus(Qt.ShortcutFocusReason)
            event.accepted = true
        }
    }
    Shortcut {
        sequence: "Alt+Left"
        onActivated: navigator.back()
    }
    Shortcut {
        sequence: StandardKey.Find
        onActivated: searchField.forceActiveFocus(Qt.ShortcutFocusReason)
    }
    TapHandler {
        acceptedButtons: Qt.BackButton
        onTapped: navigator.back()
    }
    Connections {
        target: view.app.commands
        function onNewPlaylistRequested(window) {
            if (window === view)
                view.askNewPlaylistName(null)
        }
    }

    onWindowActiveChanged: {
        if (windowActive)
            app.commands.publishNewPlaylist(view)
        else
            search.dismiss()
    }
    Component.onCompleted: {
        app.commands.publishNewPlaylist(view)
        app.mainViewAppeared()
    }
    Component.onDestruction: app.commands.withdrawNewPlaylist(view)
}
