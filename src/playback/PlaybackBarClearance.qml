import QtQuick
import Velto

// The empty band under a scrolling screen's content, so that its last rows can scroll out from under the floating
// playback bar. Put it last in the screen's list, as its footer.
Item {
    required property Theme theme

    width: 1
    height: theme.playbackBarBand
}
