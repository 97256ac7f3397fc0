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
        id: albumScreen
        objectName: "albumScreen"
        library: page.library
        downloads: page.downloads
        player: page.player
        album: page.album
    }
    CoverPalette {
        id: coverPalette
        library: page.library
        coverArt: albumScreen.record.coverArt || ""
        onAccentChanged: page.onAccent(accent)
    }
    Component.onCompleted: if (coverPalette.hasPalette) page.onAccent(coverPalette.accent)

    ListView {
        id: tracks
        objectName: "trackList"
        anchors { top: parent.top; bottom: parent.bottom; horizontalCenter: parent.horizontalCenter }
        width: Math.min(parent.width, page.theme.albumPageMaxWidth)
        leftMargin: page.theme.pageMargin
        rightMargin: page.theme.pageMargin
        model: albumScreen.tracks
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        boundsBehavior: Flickable.StopAtBounds
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Tracks")
        ScrollBar.vertical: ScrollBar {}

        Keys.onUpPressed: positionViewAtIndex(albumScreen.moveSelection(-1), ListView.Contain)
        Keys.onDownPressed: positionViewAtIndex(albumScreen.moveSelection(1), ListView.Contain)
        Keys.onReturnPressed: albumScreen.playSelected()
        Keys.onEnterPressed: albumScreen.playSelected()

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
                    coverArt: albumScreen.record.coverArt || ""
                    cornerRadius: 8
                }
                Column {
                    anchors.bottom: parent.bottom
                    width: tracks.width - tracks.leftMargin - tracks.rightMargin - page.theme.albumHeaderArtwork - 24
                    spacing: 8

                    Label {
                        objectName: "albumName"
                        width: parent.width
                        text: albumScreen.record.name
                        color: page.theme.text
                        font.pixelSize: 30
                        font.weight: Font.Bold
                        wrapMode: Text.WordWrap
                        maximumLineCount: 2
                        elide: Text.ElideRight
                        Accessible.role: Accessible.Heading
                    }
                    HoverLink {
                        objectName: "albumArtistLink"
                        width: Math.min(implicitWidth, parent.width)
                        visible: (albumScreen.record.artist || "") !== ""
                        theme: page.theme
                        text: albumScreen.record.artist || ""
                        isLink: (albumScreen.record.artistId || "") !== ""
                        help: qsTr("Go to Artist")
                        pixelSize: 17
                        color: coverPalette.hasPalette ? coverPalette.tint : page.theme.text
                        onClicked: page.navigation.pushArtist({ "id": albumScreen.record.artistId, "name": albumScreen.record.artist })
                    }
                    Row {
                        spacing: 8
                        Label {
                            objectName: "metadataLine"
                            text: albumScreen.metadataLine
                            color: page.theme.secondaryText
                        }
                        DownloadStatusBadge {
                            objectName: "albumDownloadBadge"
                            theme: page.theme
                            downloads: page.downloads
                            key: "album:" + (albumScreen.record.id || "")
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
                            tint: coverPalette.hasPalette ? coverPalette.fill : page.theme.highlight
                            foreground: coverPalette.hasPalette ? coverPalette.label : "white"
                            enabled: albumScreen.state === "tracks"
                            onClicked: albumScreen.playAll()
                        }
                        PillButton {
                            theme: page.theme
                            text: qsTr("Shuffle")
                            symbol: "shuffle"
                            tint: coverPalette.hasPalette ? coverPalette.fill : page.theme.highlight
                            foreground: coverPalette.hasPalette ? coverPalette.tint : page.theme.text
                            soft: true
                            enabled: albumScreen.state === "tracks"
                            onClicked: albumScreen.shuffle()
                        }
                        CircleButton {
                            objectName: "likeAlbum"
                            theme: page.theme
                            symbol: albumScreen.isLiked ? "heart.fill" : "heart"
                            help: albumScreen.isLiked ? qsTr("Unlike Album") : qsTr("Like Album")
                            onClicked: albumScreen.toggleLike()
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
                running: albumScreen.state === "loading"
                visible: running
            }
            Column {
                objectName: "albumError"
                visible: albumScreen.state === "error"
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
                    text: albumScreen.errorMessage
                    color: page.theme.secondaryText
                }
            }
            Item { width: 1; height: 4 }
        }
        section.property: "disc"
        section.delegate: Row {
            required property string section
            visible: section !== ""
            height: visible ? implicitHeight : 0
            topPadding: 14
            bottomPadding: 6
            leftPadding: 8
            spacing: 6
            Accessible.role: Accessible.Heading
            Accessible.name: section

            SymbolIcon {
                symbol: "opticaldisc"
                size: 14
                color: page.theme.secondaryText
            }
            Label {
                text: section
                color: page.theme.secondaryText
                font.weight: Font.DemiBold
            }
        }
        delegate: TrackRow {
            theme: page.theme
            screen: albumScreen
            library: page.library
            askNewPlaylistName: page.askNewPlaylistName
            tint: coverPalette.hasPalette ? coverPalette.tint : page.theme.highlight
            accent: coverPalette.hasPalette ? coverPalette.fill : page.theme.highlight
        }
        footer: PlaybackBarClearance { theme: page.theme }
    }

    Menu {
        id: menu
        objectName: "albumMenu"
        MenuItem {
            text: qsTr("Play Next")
            onTriggered: albumScreen.playNext()
        }
        MenuItem {
            text: qsTr("Play Last")
            onTriggered: albumScreen.playLast()
        }
        MenuSeparator {}
        MenuItem {
            text: albumScreen.isLiked ? qsTr("Unlike Album") : qsTr("Like Album")
            onTriggered: albumScreen.toggleLike()
        }
    }
    AlbumDownloadButtons {
        menu: menu
        position: 4
        theme: page.theme
        downloads: page.downloads
        album: albumScreen.record
    }
}
