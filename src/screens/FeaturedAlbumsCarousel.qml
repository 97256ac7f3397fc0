import QtQuick
import QtQuick.Controls
import Velto

// The card at the top of Home: one featured album over its own blurred cover, with links to it and its artist,
// Play and Shuffle, and arrows and dots to page through the five.
Item {
    id: carousel
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property AlbumActions actions
    required property bool isOnScreen
    // Tells the window the shown album's colour.
    required property var onAccent
    readonly property var album: featured.current

    implicitHeight: featured.count > 0 ? theme.featuredArtSize + 48
                  : featured.hasLoaded ? 0 : theme.featuredArtSize + 48
    visible: implicitHeight > 0

    FeaturedCarousel {
        id: featured
        objectName: "featuredCarousel"
        library: carousel.library
        isOnScreen: carousel.isOnScreen
        isHovering: cardHover.hovered
    }
    CoverPalette {
        id: coverPalette
        library: carousel.library
        coverArt: carousel.album.coverArt || ""
        onAccentChanged: if (carousel.isOnScreen) carousel.onAccent(accent)
    }
    onIsOnScreenChanged: if (isOnScreen) onAccent(coverPalette.accent)

    // A new album comes in with a short fade of its cover and words.
    Connections {
        target: featured
        function onIndexChanged() { change.restart() }
    }
    ParallelAnimation {
        id: change
        NumberAnimation { target: art; property: "opacity"; from: 0.3; to: 1; duration: 350; easing.type: Easing.InOutQuad }
        NumberAnimation { target: details; property: "opacity"; from: 0.3; to: 1; duration: 350; easing.type: Easing.InOutQuad }
    }

    // While the first answer is on its way.
    Rectangle {
        anchors { fill: parent; leftMargin: carousel.theme.pageMargin; rightMargin: carousel.theme.pageMargin }
        visible: featured.count === 0 && !featured.hasLoaded
        radius: 16
        color: carousel.theme.placeholder
        BusyIndicator {
            anchors.centerIn: parent
            running: parent.visible
        }
    }

    Rectangle {
        id: card
        objectName: "featuredCard"
        anchors { fill: parent; leftMargin: carousel.theme.pageMargin; rightMargin: carousel.theme.pageMargin }
        visible: featured.count > 0
        radius: 16
        clip: true
        color: carousel.theme.raisedSurface

        ArtworkSource {
            id: coverSource
            coverArt: carousel.album.coverArt || ""
        }
        // The backdrop shown stays until the next one has loaded, which then fades in over it.
        Image {
            id: shownBackdrop
            anchors.centerIn: parent
            width: parent.width * 1.3
            height: width
            fillMode: Image.PreserveAspectCrop
            smooth: true
        }
        Image {
            id: nextBackdrop
            anchors.centerIn: parent
            width: parent.width * 1.3
            height: width
            source: coverSource.backdrop
            fillMode: Image.PreserveAspectCrop
            smooth: true
            asynchronous: true
            opacity: 0
            onStatusChanged: if (status === Image.Ready) fadeIn.restart()
            NumberAnimation on opacity {
                id: fadeIn
                running: false
                from: 0
                to: 1
                duration: 350
                easing.type: Easing.InOutQuad
                onFinished: {
                    shownBackdrop.source = nextBackdrop.source
                    nextBackdrop.opacity = 0
                }
            }
        }
        Rectangle {
            anchors.fill: parent
            color: "black"
            opacity: coverPalette.hasPalette ? coverPalette.scrimOpacity : 0.5
            Behavior on opacity { NumberAnimation { duration: 300; easing.type: Easing.OutQuad } }
        }
        HoverHandler { id: cardHover }

        AbstractButton {
            id: art
            x: 24
            anchors.verticalCenter: parent.verticalCenter
            width: carousel.theme.featuredArtSize
            height: width
            hoverEnabled: true
            focusPolicy: Qt.TabFocus
            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Open album %1").arg(carousel.album.name || "")
            scale: hovered ? carousel.theme.hoverScale : 1
            Behavior on scale { NumberAnimation { duration: 150; easing.type: Easing.OutQuad } }
            contentItem: ArtworkView {
                theme: carousel.theme
                coverArt: carousel.album.coverArt || ""
                requestSize: carousel.theme.featuredArtSize
                cornerRadius: 8
            }
            onClicked: carousel.navigation.pushAlbum(carousel.album)
        }
        Column {
            id: details
            anchors { left: art.right; leftMargin: 24; right: parent.right; rightMargin: 64; verticalCenter: parent.verticalCenter }
            spacing: 6

            Label {
                text: qsTr("Featured")
                color: Qt.rgba(1, 1, 1, 0.8)
                font.weight: Font.DemiBold
            }
            HoverLink {
                objectName: "featuredName"
                width: Math.min(implicitWidth, parent.width)
                theme: carousel.theme
                text: carousel.album.name || ""
                help: qsTr("Go to Album")
                color: "white"
                pixelSize: 26
                weight: Font.Bold
                onClicked: carousel.navigation.pushAlbum(carousel.album)
            }
            Row {
                spacing: 0
                HoverLink {
                    visible: (carousel.album.artist || "") !== ""
                    theme: carousel.theme
                    text: carousel.album.artist || ""
                    isLink: (carousel.album.artistId || "") !== ""
                    help: qsTr("Go to Artist")
                    color: Qt.rgba(1, 1, 1, 0.85)
                    onClicked: carousel.navigation.pushArtist({ "id": carousel.album.artistId, "name": carousel.album.artist })
                }
                Label {
                    visible: featured.currentYear !== ""
                    text: ((carousel.album.artist || "") !== "" ? " · " : "") + featured.currentYear
                    color: Qt.rgba(1, 1, 1, 0.85)
                }
            }
            Row {
                topPadding: 8
                spacing: 10
                PillButton {
                    theme: carousel.theme
                    text: qsTr("Play")
                    symbol: "play.fill"
                    tint: "white"
                    foreground: "black"
                    onClicked: carousel.actions.play(carousel.album)
                }
                PillButton {
                    theme: carousel.theme
                    text: qsTr("Shuffle")
                    symbol: "shuffle"
                    tint: "white"
                    foreground: "white"
                    soft: true
                    onClicked: carousel.actions.shuffle(carousel.album)
                }
            }
        }

        // Qt 6.4 clips to rectangles only: the card's rounded corners are painted over in the window's colour, once
        // per size.
        Canvas {
            anchors.fill: parent
            onWidthChanged: requestPaint()
            onHeightChanged: requestPaint()
            onPaint: {
                const context = getContext("2d")
                context.reset()
                context.fillStyle = carousel.theme.surface
                context.fillRule = Qt.OddEvenFill
                context.beginPath()
                context.rect(0, 0, width, height)
                context.roundedRect(0, 0, width, height, card.radius, card.radius)
                context.fill()
            }
        }
        RoundButton {
            anchors { left: parent.left; leftMargin: 6; verticalCenter: parent.verticalCenter }
            visible: featured.count > 1 && cardHover.hovered
            width: 32
            height: 32
            focusPolicy: Qt.NoFocus
            Accessible.name: qsTr("Previous album")
            contentItem: SymbolIcon { symbol: "chevron.left"; size: 14; color: "white" }
            background: Rectangle { radius: width / 2; color: Qt.rgba(0, 0, 0, 0.4) }
            onClicked: featured.step(-1)
        }
        RoundButton {
            anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
            visible: featured.count > 1 && cardHover.hovered
            width: 32
            height: 32
            focusPolicy: Qt.NoFocus
            Accessible.name: qsTr("Next album")
            contentItem: SymbolIcon { symbol: "chevron.right"; size: 14; color: "white" }
            background: Rectangle { radius: width / 2; color: Qt.rgba(0, 0, 0, 0.4) }
            onClicked: featured.step(1)
        }
        Row {
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 6 }
            visible: featured.count > 1
            Repeater {
                model: featured.count
                AbstractButton {
                    required property int index
                    width: 14
                    height: 14
                    focusPolicy: Qt.NoFocus
                    Accessible.role: Accessible.Button
                    Accessible.name: qsTr("Featured album %1 of %2").arg(index + 1).arg(featured.count)
                    contentItem: Item {
                        Rectangle {
                            anchors.centerIn: parent
                            width: 6
                            height: 6
                            radius: 3
                            color: "white"
                            opacity: index === featured.index ? 0.9 : 0.35
                        }
                    }
                    onClicked: featured.index = index
                }
            }
        }
    }
}
