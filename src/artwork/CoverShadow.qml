import QtQuick
import Velto

// A soft shadow under a cover from a few widening layers, 2 below it; it deepens while the cover is raised.
Item {
    id: shadow
    required property Theme theme
    property bool raised: false

    Repeater {
        model: 4
        Rectangle {
            required property int index
            readonly property real spread: (index + 1) * (shadow.raised ? 2 : 1)
            x: -spread / 2
            y: 2 - spread / 2
            width: shadow.width + spread
            height: shadow.height + spread
            radius: shadow.theme.coverRadius + spread / 2
            color: "black"
            opacity: (shadow.raised ? 0.25 : 0.12) / 4
        }
    }
}
