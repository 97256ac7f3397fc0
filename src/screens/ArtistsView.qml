import QtQuick
import QtQuick.Controls
import Velto

// The artist screen: the library's artists on the left, under their index letters, each with its round image; the
// chosen artist's page on the right. Up and Down choose, the Menu key or a right click plays, shuffles or likes.
ServerUnavailableFallback {
    id: page
    required property PlayerController player
    required property Preferences preferences
    required property var askNewPlaylistName

    isEmpty: artistsScreen.state !== "list"

    ArtistsScreen {
        id: artistsScreen
        objectName: "artistsScreen"
        library: page.library
        player: page.player
        preferences: page.preferences
    }

    Item {
        id: listColumn
        width: page.theme.artistListWidth
        height: parent.height

        ListView {
            id: artistList
            objectName: "artistList"
            anchors.fill: parent
            model: artistsScreen.artists
            currentIndex: artistsScreen.selectedRow
            focus: true
            activeFocusOnTab: true
            keyNavigationEnabled: false
            boundsBehavior: Flickable.StopAtBounds
            highlightFollowsCurrentItem: false
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Artists")
            ScrollBar.vertical: ScrollBar {}

            Keys.onUpPressed: positionViewAtIndex(artistsScreen.moveSelection(-1), ListView.Contain)
            Keys.onDownPressed: positionViewAtIndex(artistsScreen.moveSelection(1), ListView.Contain)
            Keys.onMenuPressed: if (currentItem) currentItem.openMenu()

            header: Label {
                width: artistList.width
                leftPadding: page.theme.pageMargin
                topPadding: page.theme.pageMargin
                bottomPadding: 10
                text: qsTr("Artists")
                color: page.theme.text
                font.pixelSize: page.theme.titleSize
                font.weight: Font.Bold
                Accessible.role: Accessible.Heading
            }
            section.property: "section"
            section.delegate: Label {
                required property string section
                width: artistList.width
                leftPadding: page.theme.pageMargin
                topPadding: 8
                bottomPadding: 2
                text: section
                color: page.theme.secondaryText
                font.pixelSize: page.theme.captionSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            delegate: ItemDelegate {
                id: row
                required property int index
                required property string artistId
                required property string name
                required property string coverArt
                required property bool isLiked
                readonly property bool isSelected: artistsScreen.selectedArtistId === artistId
                // The menu acts on the artist it was opened for, whatever the row shows meanwhile.
                function openMenu() {
                    menuLoader.active = true
                    menuLoader.item.artistId = artistId
                    menuLoader.item.isLiked = isLiked
                    menuLoader.item.popup()
                }

                objectName: "artistRow"
                width: artistList.width - 16
                x: 8
                height: page.theme.artistImageSize + 12
                leftPadding: 8
                focusPolicy: Qt.NoFocus
                hoverEnabled: true
                Accessible.role: Accessible.ListItem
                Accessible.name: name
                Accessible.selected: isSelected
                Accessible.onPressAction: artistsScreen.select(artistId)

                contentItem: Row {
                    spacing: 10
                    ArtworkView {
                        anchors.verticalCenter: parent.verticalCenter
                        width: page.theme.artistImageSize
                        height: width
                        theme: page.theme
                        coverArt: row.coverArt
                        cornerRadius: width / 2
                        placeholderSymbol: "music.microphone"
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        width: row.availableWidth - page.theme.artistImageSize - 10
                        text: row.name
                        elide: Text.ElideRight
                        color: row.isSelected ? "white" : page.theme.text
                    }
                }
                background: Rectangle {
                    radius: 6
                    color: row.isSelected ? page.theme.highlight : row.hovered ? page.theme.placeholder : "transparent"
                }
                onPressed: {
                    artistsScreen.select(artistId)
                    artistList.forceActiveFocus(Qt.MouseFocusReason)
                }
                TapHandler {
                    acceptedButtons: Qt.RightButton
                    onTapped: row.openMenu()
                }
                // Made when first opened.
                Loader {
                    id: menuLoader
                    active: false
                    sourceComponent: Menu {
                        id: artistMenu
                        property string artistId
                        property bool isLiked
                        MenuItem {
                            text: qsTr("Play")
                            onTriggered: artistsScreen.playArtist(artistMenu.artistId, false)
                        }
                        MenuItem {
                            text: qsTr("Shuffle")
                            onTriggered: artistsScreen.playArtist(artistMenu.artistId, true)
                        }
                        MenuItem {
                            text: artistMenu.isLiked ? qsTr("Unlike Artist") : qsTr("Like Artist")
                            onTriggered: artistsScreen.toggleLike(artistMenu.artistId)
                        }
                    }
                }
            }
            footer: PlaybackBarClearance { theme: page.theme }
        }
        BusyIndicator {
            anchors.centerIn: parent
            running: artistsScreen.state === "loading"
            visible: running
        }
        Loader {
            anchors.fill: parent
            active: artistsScreen.state === "message"
            sourceComponent: Item {
                UnavailableContent {
                    objectName: "artistsMessage"
                    theme: page.theme
                    symbol: artistsScreen.messageSymbol
                    title: artistsScreen.messageTitle
                    description: artistsScreen.messageText
                }
            }
        }
    }
    Rectangle {
        id: divider
        anchors.left: listColumn.right
        width: 1
        height: parent.height
        color: page.theme.separator
    }
    Loader {
        anchors { left: divider.right; right: parent.right; top: parent.top; bottom: parent.bottom }
        sourceComponent: artistsScreen.selectedArtistId !== "" && artistsScreen.selectedRow >= 0 ? pane : nothingChosen
    }
    Component {
        id: pane
        ArtistDetailPane {
            theme: page.theme
            navigation: page.navigation
            library: page.library
            downloads: page.downloads
            player: page.player
            askNewPlaylistName: page.askNewPlaylistName
            artist: artistsScreen.selectedArtist
        }
    }
    Component {
        id: nothingChosen
        Item {
            UnavailableContent {
                objectName: "noArtistChosen"
                theme: page.theme
                symbol: "music.microphone"
                title: qsTr("Select an Artist")
                description: qsTr("Choose an artist to see their albums.")
            }
        }
    }
}
