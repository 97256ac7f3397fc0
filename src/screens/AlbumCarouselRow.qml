import QtQuick
import QtQuick.Controls
import Velto

// One row of Home: a heading that opens the whole list, and a strip of album cards that pages with its arrows.
// An empty row says it is loading or what failed, or takes no space at all.
Column {
    id: row
    required property string listType
    required property string title
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property AlbumActions actions
    required property var askNewPlaylistName
    readonly property real stride: theme.homeCardWidth + theme.homeCardSpacing

    visible: rowState.shows !== "hidden"
    spacing: 12

    HomeRow {
        id: rowState
        library: row.library
        listType: row.listType
    }

    AbstractButton {
        x: row.theme.pageMargin
        focusPolicy: Qt.TabFocus
        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Show all %1").arg(row.title)
        contentItem: Row {
            spacing: 4
            Label {
                text: row.title
                color: row.theme.text
                font.pixelSize: row.theme.headlineSize
                font.weight: Font.Bold
            }
            SymbolIcon {
                anchors.verticalCenter: parent.verticalCenter
                symbol: "chevron.right"
                size: 18
                color: row.theme.secondaryText
            }
        }
        onClicked: row.navigation.pushGrid(row.listType, row.title)
    }

    Row {
        x: row.theme.pageMargin
        visible: rowState.shows === "error"
        spacing: 8
        SymbolIcon {
            symbol: "exclamationmark.triangle"
            color: row.theme.orange
        }
        Label {
            text: rowState.errorMessage
            color: row.theme.secondaryText
        }
        Button {
            text: qsTr("Retry")
            flat: true
            onClicked: rowState.retry()
        }
    }
    Item {
        visible: rowState.shows === "loading"
        width: parent.width
        height: row.theme.homeCardWidth
        BusyIndicator {
            anchors.centerIn: parent
            running: parent.visible
        }
    }

    Item {
        visible: rowState.shows === "strip"
        width: parent.width
        height: strip.height

        ListView {
            id: strip
            objectName: "homeStrip"
            width: parent.width
            height: row.theme.homeCardWidth + 52
            orientation: ListView.Horizontal
            leftMargin: row.theme.pageMargin
            rightMargin: row.theme.pageMargin
            spacing: row.theme.homeCardSpacing
            boundsBehavior: Flickable.StopAtBounds
            model: rowState.albums
            delegate: AlbumCell {
                width: row.theme.homeCardWidth
                artworkSize: row.theme.homeCardWidth
                theme: row.theme
                actions: row.actions
                navigation: row.navigation
                library: row.library
                downloads: row.downloads
                askNewPlaylistName: row.askNewPlaylistName
            }
            Behavior on contentX {
                enabled: !strip.moving
                NumberAnimation { duration: 300; easing.type: Easing.InOutQuad }
            }

            function page(direction) {
                const target = rowState.pageTarget(contentX + leftMargin, width - leftMargin - rightMargin,
                                                   row.stride, direction)
                // Held to the scroll range: the last page stops with the last card at the trailing edge.
                if (target >= 0 && target < count)
                    contentX = Math.min(target * row.stride - leftMargin, originX + contentWidth + rightMargin - width)
            }
        }
        HoverHandler { id: stripHover }
        RoundButton {
            anchors { left: parent.left; leftMargin: row.theme.pageMargin; verticalCenter: strip.verticalCenter
                      verticalCenterOffset: -26 }
            width: 32
            height: 32
            opacity: stripHover.hovered && rowState.canScrollLeft(strip.contentX + strip.leftMargin) ? 1 : 0
            visible: opacity > 0
            focusPolicy: Qt.NoFocus
            Accessible.name: qsTr("Scroll left")
            Behavior on opacity { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }
            contentItem: SymbolIcon { symbol: "chevron.left"; size: 14; color: row.theme.text }
            background: Rectangle { radius: width / 2; color: row.theme.raisedSurface; border.color: row.theme.separator }
            onClicked: strip.page(-1)
        }
        RoundButton {
            anchors { right: parent.right; rightMargin: row.theme.pageMargin; verticalCenter: strip.verticalCenter
                      verticalCenterOffset: -26 }
            width: 32
            height: 32
            opacity: stripHover.hovered && rowState.canScrollRight(strip.contentX + strip.leftMargin,
                                                                   strip.width - strip.leftMargin - strip.rightMargin,
                                                                   strip.contentWidth) ? 1 : 0
            visible: opacity > 0
            focusPolicy: Qt.NoFocus
            Accessible.name: qsTr("Scroll right")
            Behavior on opacity { NumberAnimation { duration: 150; easing.type: Easing.InOutQuad } }
            contentItem: SymbolIcon { symbol: "chevron.right"; size: 14; color: row.theme.text }
            background: Rectangle { radius: width / 2; color: row.theme.raisedSurface; border.color: row.theme.separator }
            onClicked: strip.page(1)
        }
    }
}
