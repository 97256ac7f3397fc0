import QtQuick
import Velto

// Songs of many albums as one cover: the first album's, or from four albums on a 2×2 mosaic of the first four.
Item {
    id: view
    required property Theme theme
    // One cover id per album, in order of first appearance.
    property var covers: []
    property real size: width
    property real cornerRadius: 0
    signal imageLoaded()

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    CoverCollage {
        id: collage
        songCovers: view.covers
    }
    ArtworkView {
        anchors.fill: parent
        visible: !collage.isMosaic
        theme: view.theme
        coverArt: collage.covers.length > 0 ? collage.covers[0] : ""
        requestSize: view.size
        cornerRadius: view.cornerRadius
        onImageLoaded: view.imageLoaded()
    }
    Grid {
        visible: collage.isMosaic
        columns: 2

        Repeater {
            model: collage.isMosaic ? collage.covers : []
            ArtworkView {
                required property string modelData
                width: view.size / 2
                height: view.size / 2
                theme: view.theme
                coverArt: modelData
                requestSize: view.size / 2
            }
        }
    }
}
