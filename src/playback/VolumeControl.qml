import QtQuick
import Velto

// The mute button with the volume slider beside it, shown while the pointer is over either (with a short grace to
// cross between them) or while the arrow keys adjust it.
Row {
    id: control
    required property Theme theme
    required property PlaybackBar bar

    spacing: 6
    layoutDirection: Qt.RightToLeft

    HoverHandler {
        onHoveredChanged: control.bar.setVolumeHovered(hovered)
    }
    BarButton {
        id: mute
        objectName: "muteButton"
        theme: control.theme
        symbol: control.bar.volumeSymbol
        help: control.bar.isMuted ? qsTr("Unmute") : qsTr("Mute")
        onClicked: control.bar.toggleMute()
        Keys.onPressed: event => {
            const step = event.key === Qt.Key_Right || event.key === Qt.Key_Up ? 1
                       : event.key === Qt.Key_Left || event.key === Qt.Key_Down ? -1 : 0
            if (step !== 0) {
                control.bar.setAdjustingVolumeByKey(true)
                control.bar.nudgeVolume(step)
                event.accepted = true
            }
        }
        onActiveFocusChanged: if (!activeFocus) control.bar.setAdjustingVolumeByKey(false)
    }
    CapsuleTrack {
        id: slider
        objectName: "volumeTrack"
        anchors.verticalCenter: parent.verticalCenter
        width: control.theme.volumeTrackWidth
        height: control.theme.volumeTrackHeight
        theme: control.theme
        progress: control.bar.volume
        thickness: control.theme.volumeThickness
        // A drag that runs past the slider's end keeps it until the button is let go.
        isEnabled: control.bar.isVolumeRevealed || pressed
        activeFocusOnTab: false
        label: qsTr("Volume")
        valueText: control.bar.volumeValueText
        transform: Scale {
            origin.x: slider.width
            xScale: control.bar.isVolumeRevealed ? 1 : 0.6
        }
        Behavior on opacity { NumberAnimation { duration: control.theme.activeFadeMs; easing.type: Easing.OutCubic } }
        onScrubbed: fraction => control.bar.setVolumeFraction(fraction)
        onCommitted: fraction => control.bar.setVolumeFraction(fraction)
        onStepped: direction => control.bar.nudgeVolume(direction)
        opacity: control.bar.isVolumeRevealed || pressed ? 1 : 0
    }
}
