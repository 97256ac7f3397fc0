import QtQuick
import QtQuick.Controls
import Velto

// The suggestions under the search field, over the window. It never takes the keyboard: the field keeps it and
// hands its keys to the controller. A press outside the field and the dropdown closes it and still reaches its
// target; a press in the field leaves it open.
Popup {
    id: dropdown
    required property Theme theme
    required property SearchDropdownController controller
    // The field the dropdown hangs from; also its parent, so that presses in it leave the dropdown open.
    required property Item field
    property rect place: Qt.rect(0, 0, 0, 0)
    // Where the pointer last moved over the rows: a row marks itself only when the pointer really moves onto it,
    // not when the list scrolls under a resting pointer.
    property point lastPointer: Qt.point(-1, -1)

    // In window coordinates, worked out anew as it opens, when its content changes and when the window resizes.
    function placeAnew() {
        const window = field.Window.window
        if (!window)
            return
        const inWindow = field.mapToItem(null, 0, 0, field.width, field.height)
        place = controller.geometry(inWindow, Qt.size(window.width, window.height))
    }
    readonly property point origin: field.mapFromItem(null, place.x, place.y)

    parent: field
    x: origin.x
    y: origin.y
    width: place.width
    height: place.height
    padding: 0
    focus: false
    modal: false
    closePolicy: Popup.CloseOnPressOutsideParent
    onClosed: controller.dismiss()
    onAboutToShow: placeAnew()
    Component.onCompleted: if (controller.isOpen) open()

    Connections {
        target: dropdown.field.Window.window
        function onWidthChanged() { Qt.callLater(dropdown.placeAnew) }
        function onHeightChanged() { Qt.callLater(dropdown.placeAnew) }
    }
    Connections {
        target: dropdown.controller.model
        function onResultChanged() { dropdown.placeAnew() }
    }

    Connections {
        target: dropdown.controller
        function onIsOpenChanged() {
            if (dropdown.controller.isOpen)
                dropdown.open()
            else
                dropdown.close()
        }
    }

    background: Rectangle {
        radius: 12
        color: dropdown.theme.raisedSurface
        border.width: 1
        border.color: Qt.rgba(dropdown.theme.separator.r, dropdown.theme.separator.g, dropdown.theme.separator.b, 0.3)
    }

    contentItem: Item {
        Column {
            objectName: "searchNoResults"
            visible: dropdown.controller.model.rowCount === 0
            anchors.centerIn: parent
            width: parent.width - 24
            spacing: 2
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("No Results")
                color: dropdown.theme.text
                font.pixelSize: 13
                font.weight: Font.DemiBold
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                text: qsTr("No matches for “%1”").arg(dropdown.controller.model.query)
                color: dropdown.theme.secondaryText
                font.pixelSize: 11
                elide: Text.ElideRight
            }
        }
        ListView {
            id: suggestions
            objectName: "searchSuggestions"
            anchors { fill: parent; leftMargin: 6; rightMargin: 6 }
            visible: dropdown.controller.model.rowCount > 0
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: dropdown.controller.model
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Suggestions")
            section.property: "section"
            section.delegate: Label {
                required property string section
                height: 42
                leftPadding: 8
                verticalAlignment: Text.AlignBottom
                bottomPadding: 6
                text: section
                color: dropdown.theme.secondaryText
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
            delegate: SearchSuggestionRow {
                width: ListView.view.width
                theme: dropdown.theme
                isHighlighted: rowId === dropdown.controller.model.highlighted
                onActivated: id => dropdown.controller.activate(id)
                onPointerMoved: (id, point) => {
                    if (point !== dropdown.lastPointer) {
                        dropdown.lastPointer = point
                        dropdown.controller.highlight(id)
                    }
                }
            }
            footer: Item { height: 12 }

            Connections {
                target: dropdown.controller.model
                function onResultChanged() { suggestions.positionViewAtBeginning() }
                function onScrollTickChanged() {
                    suggestions.positionViewAtIndex(dropdown.controller.model.highlighted, ListView.Contain)
                }
            }
        }
    }
}
