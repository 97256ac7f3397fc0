import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// A destination whose screen is still to come: its title on a plain page. An album's or a playlist's page already
// has its download badge and its "⋯" menu with the download entries.
ServerUnavailableFallback {
    id: page
    required property string kind
    required property string title
    required property var record
    readonly property bool isCollection: kind === "album" || kind === "playlist"
    readonly property string collectionKey: kind === "album" ? "album:" + record.id
                                          : kind === "playlist" ? "playlist:" + navigation.playlistId : ""

    isEmpty: screen.isEmpty

    PlaceholderScreen {
        id: screen
        library: page.library
        playlistId: page.kind === "playlist" ? page.navigation.playlistId : ""
    }
    RowLayout {
        x: page.theme.pageMargin
        y: page.theme.pageMargin
        width: page.width - 2 * page.theme.pageMargin
        spacing: 10

        Label {
            Layout.maximumWidth: parent.width - (page.isCollection ? 70 : 0)
            text: page.title
            color: page.theme.text
            font.pixelSize: page.theme.titleSize
            font.weight: Font.Bold
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        DownloadStatusBadge {
            objectName: "pageDownloadBadge"
            theme: page.theme
            downloads: page.downloads
            key: page.collectionKey
            songIds: screen.playlistSongIds
        }
        ToolButton {
            objectName: "pageMenuButton"
            visible: page.isCollection
            Accessible.name: qsTr("More")
            ToolTip.visible: hovered
            ToolTip.text: qsTr("More")
            contentItem: SymbolIcon {
                symbol: "ellipsis"
                size: 20
                color: page.theme.text
            }
            onClicked: menu.popup(this, 0, height)
        }
        Item { Layout.fillWidth: true }
    }
    Menu {
        id: menu
        objectName: "pageMenu"
    }
    AlbumDownloadButtons {
        active: page.kind === "album"
        menu: menu
        theme: page.theme
        downloads: page.downloads
        album: page.record
    }
    PlaylistDownloadButtons {
        active: page.kind === "playlist"
        menu: menu
        theme: page.theme
        downloads: page.downloads
        playlistId: page.kind === "playlist" ? page.navigation.playlistId : ""
        name: page.title
        songIds: screen.playlistSongIds
    }
}
