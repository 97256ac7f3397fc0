import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// An album's page: the cover, name, artist and line of year and length, Play, Shuffle, the heart and the "⋯" menu;
// then the tracks, by disc when there are two or more. Up and Down move the selection, Return plays it. The
// cover's colours tint the buttons and wash the window.
Item {
    id: page
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property PlayerController player
    required property var askNewPlaylistName
    // The album as it was opened, usually without its songs.
    required property var album
    // Tells the window the page's colour.
    required property var onAccent

    AlbumDetailScreen {
        id: screen
        objectName: "albumScreen"
        library: page.library
        downloads: page.downloads
        player: page.player
        album: page.album
    }
    CoverPalette {
        id: palette
        library: page.library
        coverArt: screen.record.coverArt || ""
        onAccentChanged: page.onAccent(accent)
    }
    Component.onCompleted: if (palette.hasPalette) page.onAccent(palette.accent)

    ListView {
        id: tracks
        objectName: "trackList"
        anchors { top: parent.top; bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
        width: Math.min(parent.width, page.theme.albumPageMaxWidth)
        leftMargin: page.theme.pageMargin
        rightMargin: page.theme.pageMargin
        model: screen.tracks
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Tracks")
        ScrollBar.vertical: ScrollBar {}

        Keys.onUpPressed: positionViewAtIndex(screen.moveSelection(-1), ListView.Contain)
        Keys.onDownPressed: positionViewAtIndex(screen.moveSelection(1), ListView.Contain)
        Keys.onReturnPressed: screen.playSelected()
        Keys.onEnterPressed: screen.playSelected()

        header: Column {
            width: tracks.width - tracks.leftMargin - tracks.rightMargin
            topPadding: page.theme.pageMargin
            spacing: 20

            Row {
                spacing: 24
                ArtworkView {
                    width: page.theme.albumHeaderArtwork
                    height: width
                    theme: page.theme
                    coverArt: screen.record.coverArt || ""
                    cornerRadius: 8
                }
                Column {
                    anchors.bottom: parent.bottom
                    width: tracks.width - tracks.leftMargin - tracks.rightMargin - page.theme.albumHeaderArtwork - 24
                    spacing: 8

                    Label {
                        objectName: "albumName"
                        width: parent.width
                        text: screen.record.name
                        color: page.theme.text
                        font.pixelSize: 30
                        font.weight: Font.Bold
                        wrapMode: Text.WordWrap
                        maximumLineCount: 2
                        elide: Text.ElideRight
                        Accessible.role: Accessible.Heading
                    }
                    HoverLink {
                        width: Math.min(implicitWidth, parent.width)
                        visible: (screen.record.artist || "") !== ""
                        theme: page.theme
                        text: screen.record.artist || ""
                        isLink: (screen.record.artistId || "") !== ""
                        help: qsTr("Go to Artist")
                        pixelSize: 17
                        color: palette.hasPalette ? palette.tint : page.theme.text
                        onClicked: page.navigation.pushArtist({ "id": screen.record.artistId, "name": screen.record.artist })
                    }
                    Row {
                        spacing: 8
                        Label {
                            objectName: "metadataLine"
                            text: screen.metadataLine
                            color: page.theme.secondaryText
                        }
                        DownloadStatusBadge {
                            theme: page.theme
                            downloads: page.downloads
                            key: "album:" + (screen.record.id || "")
                        }
                    }
                    Row {
                        spacing: 10
                        topPadding: 6
                        PillButton {
                            objectName: "playAlbum"
                            theme: page.theme
                            text: qsTr("Play")
                            symbol: "play.fill"
                            tint: palette.hasPalette ? palette.fill : page.theme.highlight
                            foreground: palette.hasPalette ? palette.label : "white"
                            enabled: screen.state === "tracks"
                            onClicked: screen.playAll()
                        }
                        PillButton {
                            theme: page.theme
                            text: qsTr("Shuffle")
                            symbol: "shuffle"
                            tint: palette.hasPalette ? palette.fill : page.theme.highlight
                            foreground: palette.hasPalette ? palette.tint : page.theme.text
                            soft: true
                            enabled: screen.state === "tracks"
                            onClicked: screen.shuffle()
                        }
                        CircleButton {
                            objectName: "likeAlbum"
                            theme: page.theme
                            symbol: screen.isLiked ? "heart.fill" : "heart"
                            help: screen.isLiked ? qsTr("Unlike Album") : qsTr("Like Album")
                            onClicked: screen.toggleLike()
                        }
                        CircleButton {
                            id: more
                            objectName: "albumMenuButton"
                            theme: page.theme
                            symbol: "ellipsis"
                            help: qsTr("More")
                            onClicked: menu.popup(more, 0, more.height)
                        }
                    }
                }
            }
            BusyIndicator {
                anchors.horizontalCenter: parent.horizontalCenter
                running: screen.state === "loading"
                visible: running
            }
            Column {
                objectName: "albumError"
                visible: screen.state === "error"
                width: parent.width
                spacing: 8
                SymbolIcon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    symbol: "exclamationmark.triangle"
                    size: 36
                    color: page.theme.tertiaryText
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: qsTr("Couldn’t Load Album")
                    color: page.theme.text
                    font.weight: Font.Bold
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    wrapMode: Text.WordWrap
                    text: screen.errorMessage
                    color: page.theme.secondaryText
                }
            }
            Item { width: 1; height: 4 }
        }
        section.property: "disc"
        section.delegate: Label {
            required property string section
            visible: section !== ""
            height: visible ? implicitHeight : 0
            topPadding: 14
            bottomPadding: 6
            leftPadding: 8
            text: section
            color: page.theme.secondaryText
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        delegate: TrackRow {
            theme: page.theme
            screen: screen
            library: page.library
            askNewPlaylistName: page.askNewPlaylistName
            tint: palette.hasPalette ? palette.tint : page.theme.highlight
            accent: palette.hasPalette ? palette.fill : page.theme.highlight
        }
        footer: PlaybackBarClearance { theme: page.theme }
    }

    Menu {
        id: menu
        objectName: "albumMenu"
        MenuItem {
            text: qsTr("Play Next")
            onTriggered: screen.playNext()
        }
        MenuItem {
            text: qsTr("Play Last")
            onTriggered: screen.playLast()
        }
        MenuSeparator {}
        MenuItem {
            text: screen.isLiked ? qsTr("Unlike Album") : qsTr("Like Album")
            onTriggered: screen.toggleLike()
        }
    }
    AlbumDownloadButtons {
        menu: menu
        position: 4
        theme: page.theme
        downloads: page.downloads
        album: screen.record
    }
}
