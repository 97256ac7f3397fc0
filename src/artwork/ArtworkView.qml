import QtQuick
import Velto

// One cover, square, fetched at the pixel size of its bucket; the placeholder until it is there.
Item {
    id: view
    required property Theme theme
    property string coverArt
    property real requestSize: width
    property real cornerRadius: 0
    // Drawn while there is no cover.
    property string placeholderSymbol: "music.note"
    signal imageLoaded()

    implicitWidth: requestSize
    implicitHeight: requestSize
    Accessible.ignored: true

    ArtworkSource {
        id: artwork
        coverArt: view.coverArt
        requestSize: view.requestSize
        cornerRadius: view.cornerRadius
    }
    Rectangle {
        anchors.fill: parent
        visible: cover.status !== Image.Ready
        radius: view.cornerRadius
        color: view.theme.placeholder

        SymbolIcon {
            anchors.centerIn: parent
            symbol: view.placeholderSymbol
            size: view.requestSize * 0.3
            color: view.theme.tertiaryText
        }
    }
    Image {
        id: cover
        anchors.fill: parent
        source: artwork.source
        fillMode: Image.PreserveAspectCrop
        onStatusChanged: if (status === Image.Ready) view.imageLoaded()
    }
    Rectangle {
        anchors.fill: parent
        radius: view.cornerRadius
        color: "transparent"
        border.width: 0.5
        border.color: view.theme.separator
    }
}
