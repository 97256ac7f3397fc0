import QtQuick
import Velto

// The accent at the top of a surface, fading to nothing further down. A change of accent fades across.
Rectangle {
    id: wash
    required property Theme theme
    // Transparent when there is none.
    property color accent: "transparent"
    // Fading out keeps the hue, so that the colour does not pass through grey.
    property color hue: "transparent"
    property color shown: accent.a > 0 ? accent : Qt.rgba(hue.r, hue.g, hue.b, 0)

    onAccentChanged: if (accent.a > 0) hue = accent

    height: theme.accentHeight
    Behavior on shown {
        ColorAnimation { duration: wash.theme.accentFadeMs; easing.type: Easing.OutCubic }
    }
    gradient: Gradient {
        GradientStop { position: 0; color: Qt.rgba(wash.shown.r, wash.shown.g, wash.shown.b, wash.shown.a * wash.theme.accentOpacity) }
        GradientStop { position: 1; color: Qt.rgba(wash.shown.r, wash.shown.g, wash.shown.b, 0) }
    }
}
