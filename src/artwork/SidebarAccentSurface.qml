import QtQuick
import Velto

// Behind the sidebar's list: its own, slightly darker surface, washed with the same accent as the window, so
// that the sidebar takes part in the colour of what is on screen.
Rectangle {
    id: surface
    required property Theme theme
    property color accent: "transparent"

    color: theme.sidebarSurface

    AccentGradient {
        anchors { top: parent.top; left: parent.left; right: parent.right }
        theme: surface.theme
        accent: surface.accent
    }
}
