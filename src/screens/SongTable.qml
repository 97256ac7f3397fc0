import QtQuick
import QtQuick.Controls
import Velto

// A table of songs under its title: Title (a speaker before the playing song), Artist, Album and Time. A click on
// a header sorts by it, again reverses. Click, Ctrl-click, Shift-click, Ctrl+A and the arrows select; a double
// click or Return plays the whole table from there; a right click or the Menu key opens the selection's menu.
Item {
    id: view
    required property Theme theme
    required property LibraryStore library
    required property PlayerController player
    required property var askNewPlaylistName
    required property string title
    required property bool likedOnly
    readonly property SongTableScreen screen: tableScreen

    SongTableScreen {
        id: tableScreen
        objectName: "songTableScreen"
        library: view.library
        player: view.player
        likedOnly: view.likedOnly
        // A new order is a new table: it starts again at the top.
        onTableGenerationChanged: table.positionViewAtRow(0, TableView.AlignTop)
    }

    // Made anew for each opening, for the rows it is opened on: its entries never change while it shows.
    function openMenu(row) {
        tableScreen.pressRowForMenu(row)
        menuLoader.active = false
        menuLoader.active = true
        menuLoader.item.popup()
    }

    Label {
        id: heading
        x: view.theme.pageMargin
        y: view.theme.pageMargin
        text: view.title
        color: view.theme.text
        font.pixelSize: view.theme.titleSize
        font.weight: Font.Bold
        Accessible.role: Accessible.Heading
    }
    // The time takes its own width; title, artist and album share the rest four to three to three.
    function columnWidth(column) {
        const rest = table.width - theme.songTimeColumnWidth
        return column === 3 ? theme.songTimeColumnWidth : rest * (column === 0 ? 0.4 : 0.3)
    }

    Row {
        id: header
        objectName: "songTableHeader"
        anchors { left: table.left; top: heading.bottom; topMargin: 14 }

        Repeater {
            model: tableScreen.columnTitles
            delegate: Rectangle {
                id: headerCell
                required property int index
                required property string modelData
                readonly property bool sorted: tableScreen.sortColumn === index
                objectName: "songHeader"
                width: view.columnWidth(index)
                height: view.theme.rowHeight
                color: "transparent"
                Accessible.role: Accessible.ColumnHeader
                Accessible.name: modelData
                Accessible.onPressAction: tableScreen.clickHeader(index)

                Label {
                    anchors { left: parent.left; leftMargin: 8; right: arrow.left; verticalCenter: parent.verticalCenter }
                    text: headerCell.modelData
                    horizontalAlignment: headerCell.index === 3 ? Text.AlignRight : Text.AlignLeft
                    color: headerCell.sorted ? view.theme.text : view.theme.secondaryText
                    font.pixelSize: view.theme.captionSize
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                }
                SymbolIcon {
                    id: arrow
                    anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
                    visible: headerCell.sorted
                    symbol: tableScreen.sortAscending ? "chevron.up" : "chevron.down"
                    size: 14
                    color: view.theme.secondaryText
                }
                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: 1
                    color: view.theme.separator
                }
                TapHandler {
                    onTapped: tableScreen.clickHeader(headerCell.index)
                }
            }
        }
    }
    TableView {
        id: table
        objectName: "songTable"
        anchors { left: parent.left; right: parent.right; top: header.bottom; bottom: parent.bottom }
        anchors.leftMargin: view.theme.pageMargin
        anchors.rightMargin: view.theme.pageMargin
        model: tableScreen.rows
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        bottomMargin: view.theme.playbackBarBand
        columnWidthProvider: column => view.columnWidth(column)
        onWidthChanged: forceLayout()
        Accessible.role: Accessible.Table
        Accessible.name: view.title
        ScrollBar.vertical: ScrollBar {}

        Keys.onPressed: event => {
            const extend = (event.modifiers & Qt.ShiftModifier) !== 0
            if (event.key === Qt.Key_Up || event.key === Qt.Key_Down) {
                const row = tableScreen.moveCursor(event.key === Qt.Key_Up ? -1 : 1, extend)
                if (row >= 0)
                    table.positionViewAtRow(row, TableView.Contain)
            } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                tableScreen.playSelection()
            } else if (event.matches(StandardKey.SelectAll)) {
                tableScreen.selectAll()
            } else if (event.key === Qt.Key_Menu && tableScreen.cursorRow >= 0) {
                view.openMenu(tableScreen.cursorRow)
            } else {
                return
            }
            event.accepted = true
        }

        delegate: Rectangle {
            id: cell
            required property int row
            required property int column
            required property string display
            required property bool isSelected
            required property string marker
            objectName: "songCell"
            implicitHeight: view.theme.rowHeight
            color: isSelected ? view.theme.highlight : row % 2 ? view.theme.placeholder : "transparent"
            Accessible.role: Accessible.Cell
            Accessible.name: display !== "" ? display : qsTr("None")
            Accessible.selected: isSelected

            SymbolIcon {
                id: speaker
                anchors { left: parent.left; leftMargin: 6; verticalCenter: parent.verticalCenter }
                visible: cell.marker !== ""
                symbol: cell.marker
                size: 13
                color: cell.isSelected ? "white" : view.theme.highlight
            }
            Label {
                anchors { left: speaker.visible ? speaker.right : parent.left; right: parent.right
                          leftMargin: speaker.visible ? 4 : 8; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: cell.display
                elide: Text.ElideRight
                horizontalAlignment: cell.column === 3 ? Text.AlignRight : Text.AlignLeft
                color: cell.isSelected ? "white" : cell.column === 3 ? view.theme.secondaryText : view.theme.text
            }
            MouseArea {
                anchors.fill: parent
                acceptedButtons: Qt.LeftButton | Qt.RightButton
                onPressed: mouse => {
                    table.forceActiveFocus(Qt.MouseFocusReason)
                    if (mouse.button === Qt.RightButton)
                        view.openMenu(cell.row)
                    else
                        tableScreen.clickRow(cell.row, mouse.modifiers)
                }
                onDoubleClicked: mouse => {
                    if (mouse.button === Qt.LeftButton)
                        tableScreen.playRow(cell.row)
                }
            }
        }
    }

    // Over the table while the list is empty: what it is waiting for, or why there is nothing.
    BusyIndicator {
        anchors.centerIn: table
        running: tableScreen.state === "loading"
        visible: running
    }
    Loader {
        anchors.fill: table
        active: tableScreen.state === "message"
        sourceComponent: Item {
            UnavailableContent {
                objectName: "songTableMessage"
                theme: view.theme
                symbol: tableScreen.messageSymbol
                title: tableScreen.messageTitle
                description: tableScreen.messageText
            }
        }
    }

    Loader {
        id: menuLoader
        active: false
        sourceComponent: Menu {
            id: songMenu
            objectName: "songTableMenu"
            readonly property var single: tableScreen.singleSelectedRecord()
            Component.onCompleted: addToPlaylist.songs = tableScreen.selectedRecords()
            MenuItem {
                text: qsTr("Play")
                onTriggered: tableScreen.playSelection()
            }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Play Next")
                onTriggered: tableScreen.playSelectionNext()
            }
            MenuItem {
                text: qsTr("Play Last")
                onTriggered: tableScreen.playSelectionLast()
            }
            MenuSeparator {}
            LikeMenuButton {
                library: view.library
                song: songMenu.single
                visible: !view.likedOnly && tableScreen.selectedCount === 1
                height: visible ? implicitHeight : 0
            }
            MenuItem {
                text: qsTr("Unlike")
                visible: view.likedOnly
                height: visible ? implicitHeight : 0
                onTriggered: tableScreen.unlikeSelection()
            }
            AddToPlaylistMenu {
                id: addToPlaylist
                library: view.library
                askNewPlaylistName: view.askNewPlaylistName
            }
        }
    }
}
