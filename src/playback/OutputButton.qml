import QtQuick
import QtQuick.Controls
import Velto

// The sound outputs to choose from, the current one marked; only there while there is more than one.
BarButton {
    id: button
    required property PlaybackBar bar

    visible: bar.hasOutputChoice
    symbol: "hifispeaker"
    help: qsTr("Audio Output")
    onClicked: {
        menuLoader.active = true
        menuLoader.item.popup(button, 0, -menuLoader.item.implicitHeight)
    }

    // Made when first opened.
    Loader {
        id: menuLoader
        active: false
        sourceComponent: Menu {
            id: menu
            objectName: "outputMenu"
            Instantiator {
                model: button.bar.outputs
                delegate: MenuItem {
                    required property var modelData
                    text: modelData.description
                    checkable: true
                    checked: modelData.current
                    onTriggered: button.bar.chooseOutput(modelData.name)
                }
                onObjectAdded: (index, object) => menu.insertItem(index, object)
                onObjectRemoved: (index, object) => menu.removeItem(object)
            }
        }
    }
}
