import QtQuick
import QtQuick.Controls
import Velto

// Home, what the window opens on: the featured carousel, then the rows of recently played, recently added, most
// played and random albums.
ServerUnavailableFallback {
    id: page
    objectName: "homeView"
    required property PlayerController player
    required property var askNewPlaylistName
    required property bool isOnScreen
    // Tells the window the featured album's colour.
    required property var onAccent

    isEmpty: home.isEmpty

    HomeScreen {
        id: home
        library: page.library
    }
    AlbumActions {
        id: albumActions
        library: page.library
        player: page.player
    }

    Flickable {
        anchors.fill: parent
        contentHeight: column.height
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            width: parent.width
            topPadding: page.theme.pageMargin
            spacing: 32

            Label {
                x: page.theme.pageMargin
                text: qsTr("Home")
                color: page.theme.text
                font.pixelSize: page.theme.titleSize
                font.weight: Font.Bold
                Accessible.role: Accessible.Heading
            }
            FeaturedAlbumsCarousel {
                width: parent.width
                theme: page.theme
                navigation: page.navigation
                library: page.library
                actions: albumActions
                isOnScreen: page.isOnScreen
                onAccent: page.onAccent
            }
            Repeater {
                model: home.rows
                AlbumCarouselRow {
                    required property var modelData
                    width: column.width
                    listType: modelData.listType
                    title: modelData.title
                    theme: page.theme
                    navigation: page.navigation
                    library: page.library
                    downloads: page.downloads
                    actions: albumActions
                    askNewPlaylistName: page.askNewPlaylistName
                }
            }
            PlaybackBarClearance { theme: page.theme }
        }
    }
}
