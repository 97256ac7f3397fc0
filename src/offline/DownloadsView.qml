import QtQuick
import QtQuick.Controls
import Velto

// The Downloads screen: every album and playlist kept on this computer, in two sections of cells, or a note on how
// to keep one when there are none.
Item {
    id: page
    required property Theme theme
    required property DownloadStore downloads
    required property PlayerController player
    required property Navigation navigation
    readonly property real cellWidth: (list.width - 2 * theme.pageMargin - (downloadsScreen.columns - 1) * theme.gridSpacing)
                                      / downloadsScreen.columns

    DownloadsScreen {
        id: downloadsScreen
        store: page.downloads
        player: page.player
        columns: Math.max(1, Math.floor((list.width - 2 * page.theme.pageMargin + page.theme.gridSpacing)
                                        / (page.theme.collectionCellWidth + page.theme.gridSpacing)))
        onOpenPlaylist: playlistId => page.navigation.selectKey("playlist:" + playlistId)
        onOpenAlbum: album => page.navigation.pushAlbum(album)
    }

    UnavailableContent {
        objectName: "downloadsEmpty"
        visible: downloadsScreen.isEmpty
        theme: page.theme
        symbol: "arrow.down.circle"
        title: qsTr("No Downloads")
        description: qsTr("Download an album or playlist to keep it on this computer and play it without a connection.")
    }

    ListView {
        id: list
        objectName: "downloadsList"
        anchors.fill: parent
        visible: !downloadsScreen.isEmpty
        model: downloadsScreen.rows
        spacing: page.theme.gridSpacing
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: false
        ScrollBar.vertical: ScrollBar {}

        header: Column {
            x: page.theme.pageMargin
            width: list.width - 2 * page.theme.pageMargin
            topPadding: page.theme.pageMargin
            spacing: 4

            Label {
                width: parent.width
                text: qsTr("Downloads")
                color: page.theme.text
                font.pixelSize: page.theme.titleSize
                font.weight: Font.Bold
                elide: Text.ElideRight
                Accessible.role: Accessible.Heading
            }
            Label {
                objectName: "downloadsCaption"
                width: parent.width
                text: downloadsScreen.caption
                color: page.theme.secondaryText
            }
        }
        section.property: "section"
        section.delegate: Label {
            required property string section
            x: page.theme.pageMargin
            topPadding: page.theme.pageMargin
            bottomPadding: 12
            text: section
            color: page.theme.text
            font.pixelSize: page.theme.headlineSize
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
        }
        delegate: Row {
            id: gridRow
            required property var cells
            x: page.theme.pageMargin
            spacing: page.theme.gridSpacing

            // By count, so that a row whose cells change keeps them, with an open menu or the keyboard in them.
            Repeater {
                model: gridRow.cells.length
                DownloadedCollectionCell {
                    required property int index
                    width: page.cellWidth
                    collection: gridRow.cells[index]
                    theme: page.theme
                    screen: downloadsScreen
                }
            }
        }
        footer: PlaybackBarClearance { theme: page.theme }
    }
}
