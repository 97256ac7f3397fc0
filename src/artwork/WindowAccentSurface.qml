import QtQuick
import Velto

// Behind the whole window: the surface colour with the accent's wash at the top. It takes no input.
Rectangle {
    id: surface
    required property Theme theme
    property color accent: "transparent"

    color: theme.surface

    AccentGradient {
        anchors { top: parent.top; left: parent.left; right: parent.right }
        theme: surface.theme
        accent: surface.accent
    }
}
