import QtQuick
import Velto

// The one slider of the program, for the position and the volume: a thin capsule filled to `progress`, answering
// to the pointer over its whole frame. A drag reports where it is and its release commits; an arrow key steps.
Item {
    id: track
    required property Theme theme
    property real progress: 0
    property real thickness: 2
    property bool isEnabled: true
    property string label
    property string valueText
    // Read by assistive technology as the slider's value.
    readonly property real value: progress
    readonly property real minimumValue: 0
    readonly property real maximumValue: 1
    readonly property real stepSize: 0.05
    signal scrubbed(real fraction)
    signal committed(real fraction)
    readonly property bool pressed: pointer.pressed
    // From the arrow keys (`byKey`), or from assistive technology.
    signal stepped(int direction, bool byKey)
    signal canceled()

    function fractionAt(x) { return width > 0 ? Math.max(0, Math.min(1, x / width)) : 0 }

    activeFocusOnTab: isEnabled
    Accessible.role: Accessible.Slider
    Accessible.name: label
    Accessible.description: valueText
    Accessible.onIncreaseAction: stepped(1, false)
    Accessible.onDecreaseAction: stepped(-1, false)

    Keys.onLeftPressed: event => event.accepted = isEnabled && (stepped(-1, true), true)
    Keys.onRightPressed: event => event.accepted = isEnabled && (stepped(1, true), true)

    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: track.thickness
        radius: height / 2
        color: track.theme.text
        opacity: 0.14
    }
    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width * track.progress
        height: track.thickness
        radius: height / 2
        color: track.isEnabled ? track.theme.text : track.theme.tertiaryText
    }
    Rectangle {
        visible: track.activeFocus
        anchors.fill: parent
        anchors.margins: -2
        radius: 4
        color: "transparent"
        border.width: 1
        border.color: track.theme.highlight
    }
    MouseArea {
        id: pointer
        anchors.fill: parent
        enabled: track.isEnabled
        preventStealing: true
        onPressed: mouse => {
            track.focus = false
            track.scrubbed(track.fractionAt(mouse.x))
        }
        onPositionChanged: mouse => track.scrubbed(track.fractionAt(mouse.x))
        onReleased: mouse => {
            track.committed(track.fractionAt(mouse.x))
            track.focus = false
        }
        onCanceled: track.canceled()
    }
}
