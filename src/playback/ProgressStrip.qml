import QtQuick
import QtQuick.Controls
import Velto

// The position under the song's title: a thin line that thickens under the pointer, during a scrub or while the
// arrow keys seek, with the elapsed and the trailing time fading in beside it. A click on the trailing time
// switches it between the time remaining and the total.
Item {
    id: strip
    required property Theme theme
    required property PlaybackBar bar
    property alias track: track

    implicitHeight: theme.progressBand

    HoverHandler {
        onHoveredChanged: strip.bar.setHoveringProgress(hovered)
    }
    Label {
        id: elapsed
        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        width: 40
        horizontalAlignment: Text.AlignRight
        text: strip.bar.elapsedText
        color: strip.theme.secondaryText
        font.pixelSize: 10
        font.weight: Font.Medium
        opacity: strip.bar.isProgressActive ? 1 : 0
        visible: opacity > 0
        Behavior on opacity { NumberAnimation { duration: strip.theme.activeFadeMs; easing.type: Easing.OutCubic } }
        Accessible.ignored: true
    }
    CapsuleTrack {
        id: track
        objectName: "positionTrack"
        anchors { left: elapsed.right; right: trailing.left; leftMargin: 8; rightMargin: 8 }
        height: parent.height
        theme: strip.theme
        progress: strip.bar.progress
        isEnabled: strip.bar.canSeek
        thickness: strip.bar.isProgressActive ? strip.theme.progressThick : strip.theme.progressThin
        label: qsTr("Playback Position")
        valueText: strip.bar.positionValueText
        Behavior on thickness { NumberAnimation { duration: strip.theme.activeFadeMs; easing.type: Easing.OutCubic } }
        onScrubbed: fraction => strip.bar.scrub(fraction)
        onCommitted: fraction => strip.bar.commit(fraction)
        onStepped: (direction, byKey) => {
            if (byKey)
                strip.bar.setSeekingByKey(true)
            strip.bar.stepPosition(direction)
        }
        onCanceled: strip.bar.cancelScrub()
        onActiveFocusChanged: if (!activeFocus) strip.bar.setSeekingByKey(false)
    }
    AbstractButton {
        id: trailing
        objectName: "trailingTime"
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: 48
        height: parent.height
        focusPolicy: Qt.NoFocus
        opacity: strip.bar.isProgressActive ? 1 : 0
        visible: opacity > 0
        text: strip.bar.trailingText
        Accessible.name: strip.bar.trailingHelp
        ToolTip.visible: hovered
        ToolTip.delay: 600
        ToolTip.text: strip.bar.trailingHelp
        Behavior on opacity { NumberAnimation { duration: strip.theme.activeFadeMs; easing.type: Easing.OutCubic } }
        contentItem: Label {
            text: trailing.text
            color: strip.theme.secondaryText
            font.pixelSize: 10
            font.weight: Font.Medium
        }
        onClicked: strip.bar.toggleTimeDisplay()
    }
    onVisibleChanged: if (!visible) {
        bar.setHoveringProgress(false)
        bar.setSeekingByKey(false)
        bar.cancelScrub()
    }
}
