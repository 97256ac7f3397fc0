import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// The floating bar at the bottom of the main window: shuffle, previous, play or pause, next and repeat; the song
// with its cover, links and position; then like, the queue, the sound output and the volume.
Rectangle {
    id: barView
    required property Theme theme
    required property PlayerController player
    required property LibraryStore library
    required property Preferences preferences
    signal openAlbum(var album)
    signal openArtist(var artist)
    signal openPlaylist(string playlistId)

    implicitHeight: theme.barHeight
    radius: theme.barRadius
    color: theme.raisedSurface
    border.width: 1
    border.color: theme.separator
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Playback")

    PlaybackBar {
        id: bar
        objectName: "playbackBar"
        player: barView.player
        library: barView.library
        preferences: barView.preferences
        onOpenAlbumRequested: album => barView.openAlbum(album)
        onOpenArtistRequested: artist => barView.openArtist(artist)
        onOpenPlaylistRequested: playlistId => barView.openPlaylist(playlistId)
    }

    RowLayout {
        anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
        spacing: 2

        BarButton {
            objectName: "shuffleButton"
            theme: barView.theme
            symbol: "shuffle"
            help: qsTr("Shuffle")
            isOn: bar.isShuffling
            enabled: bar.hasSong
            onClicked: bar.toggleShuffle()
        }
        BarButton {
            theme: barView.theme
            symbol: "backward.fill"
            help: qsTr("Previous")
            enabled: bar.hasSong
            onClicked: bar.previous()
        }
        BarButton {
            objectName: "playPauseButton"
            theme: barView.theme
            symbol: bar.isPlaying ? "pause.fill" : "play.fill"
            help: bar.isPlaying ? qsTr("Pause") : qsTr("Play")
            symbolSize: 24
            implicitWidth: 38
            implicitHeight: 38
            enabled: bar.hasSong
            onClicked: bar.togglePlayPause()
        }
        BarButton {
            theme: barView.theme
            symbol: "forward.fill"
            help: qsTr("Next")
            enabled: bar.hasSong
            onClicked: bar.next()
        }
        BarButton {
            objectName: "repeatButton"
            theme: barView.theme
            symbol: bar.repeatSymbol
            help: qsTr("Repeat")
            isOn: bar.isRepeating
            enabled: bar.hasSong
            onClicked: bar.cycleRepeat()
        }

        Item {
            id: display
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: 12
            Layout.rightMargin: 12

            Item {
                id: songRow
                anchors { left: parent.left; right: parent.right; top: parent.top; topMargin: bar.hasSong ? 5 : 11 }
                height: barView.theme.barDisplayHeight
                opacity: bar.isProgressActive ? 0.5 : 1
                Behavior on opacity { NumberAnimation { duration: barView.theme.activeFadeMs; easing.type: Easing.OutCubic } }

                AbstractButton {
                    id: artwork
                    objectName: "barArtwork"
                    width: parent.height
                    height: parent.height
                    enabled: bar.hasSong
                    focusPolicy: Qt.NoFocus
                    hoverEnabled: true
                    Accessible.role: Accessible.Button
                    Accessible.name: bar.hasSong ? qsTr("Album Artwork") : qsTr("Not Playing")
                    Accessible.description: bar.artworkIsLink ? qsTr("Go to Album") : ""
                    ToolTip.visible: hovered && bar.artworkIsLink
                    ToolTip.delay: 600
                    ToolTip.text: qsTr("Go to Album")
                    contentItem: Item {
                        ArtworkView {
                            anchors.fill: parent
                            visible: bar.hasSong
                            theme: barView.theme
                            coverArt: bar.coverArt
                            requestSize: artwork.width
                            cornerRadius: 4
                        }
                        SymbolIcon {
                            anchors.centerIn: parent
                            visible: !bar.hasSong
                            symbol: "music.note"
                            size: 20
                            color: barView.theme.tertiaryText
                        }
                    }
                    onClicked: bar.openAlbum()
                }
                Column {
                    anchors { left: artwork.right; leftMargin: 10; right: parent.right; verticalCenter: parent.verticalCenter }

                    HoverLink {
                        objectName: "barTitle"
                        width: Math.min(implicitWidth, parent.width)
                        theme: barView.theme
                        text: bar.title
                        isLink: bar.titleLink !== ""
                        help: bar.titleLink === "playlist" ? qsTr("Go to Playlist") : qsTr("Go to Album")
                        weight: Font.DemiBold
                        color: bar.hasSong ? barView.theme.text : barView.theme.secondaryText
                        onClicked: bar.openTitle()
                    }
                    RowLayout {
                        width: parent.width
                        spacing: 4
                        visible: bar.artist !== "" || bar.album !== ""

                        HoverLink {
                            objectName: "barArtist"
                            Layout.fillWidth: true
                            Layout.maximumWidth: implicitWidth
                            visible: bar.artist !== ""
                            theme: barView.theme
                            text: bar.artist
                            isLink: bar.artistIsLink
                            help: qsTr("Go to Artist")
                            pixelSize: barView.theme.captionSize
                            color: barView.theme.secondaryText
                            onClicked: bar.openArtist()
                        }
                        Label {
                            visible: bar.artist !== "" && bar.album !== ""
                            text: "—"
                            color: barView.theme.tertiaryText
                            font.pixelSize: barView.theme.captionSize
                        }
                        HoverLink {
                            objectName: "barAlbum"
                            Layout.fillWidth: true
                            Layout.maximumWidth: implicitWidth
                            visible: bar.album !== ""
                            theme: barView.theme
                            text: bar.album
                            isLink: bar.albumIsLink
                            help: qsTr("Go to Album")
                            pixelSize: barView.theme.captionSize
                            color: barView.theme.secondaryText
                            onClicked: bar.openAlbum()
                        }
                        Item { Layout.fillWidth: true }
                    }
                }
            }
            ProgressStrip {
                objectName: "progressStrip"
                anchors { left: parent.left; right: parent.right; top: songRow.bottom; topMargin: 2 }
                visible: bar.hasSong
                theme: barView.theme
                bar: bar
            }
        }

        BarButton {
            objectName: "likeButton"
            theme: barView.theme
            symbol: bar.isLiked ? "heart.fill" : "heart"
            help: bar.isLiked ? qsTr("Unlike") : qsTr("Like")
            enabled: bar.hasSong
            onClicked: bar.toggleLike()
        }
        BarButton {
            id: queueButton
            objectName: "queueButton"
            theme: barView.theme
            symbol: "list.bullet"
            help: qsTr("Up Next")
            isOn: queueLoader.item ? queueLoader.item.visible : false
            onClicked: {
                queueLoader.active = true
                const queue = queueLoader.item
                queue.visible ? queue.close() : queue.open()
            }
        }
        OutputButton {
            objectName: "outputButton"
            theme: barView.theme
            bar: bar
        }
        VolumeControl {
            theme: barView.theme
            bar: bar
        }
    }

    // Made when first opened: start-up draws only what the first frame shows.
    Loader {
        id: queueLoader
        active: false
        sourceComponent: QueueView {
            objectName: "queuePopup"
            parent: barView
            theme: barView.theme
            player: barView.player
            x: Math.min(queueButton.x + queueButton.width / 2 - width / 2 + 12, barView.width - width)
            y: -height - 8
        }
    }
}
