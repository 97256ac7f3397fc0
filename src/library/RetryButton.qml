import QtQuick
import QtQuick.Controls

// A button that, while its work runs, shows a small spinner in place of its words and can't be pressed again.
Button {
    id: button
    property bool busy: false

    enabled: !busy
    Accessible.name: text
    contentItem: Item {
        implicitWidth: words.implicitWidth
        implicitHeight: words.implicitHeight

        Label {
            id: words
            anchors.centerIn: parent
            visible: !button.busy
            text: button.text
            color: button.palette.buttonText
            font: button.font
        }
        BusyIndicator {
            anchors.centerIn: parent
            width: parent.implicitHeight
            height: width
            running: button.busy
            visible: button.busy
            Accessible.ignored: !button.busy
        }
    }
}
