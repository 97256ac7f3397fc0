import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// The settings' "Downloads" section: the space the downloads take, each collection's share with a button to remove
// it, largest first, and "Remove All Downloads" after a confirmation.
ColumnLayout {
    id: section
    required property Theme theme
    required property DownloadStore downloads

    spacing: 8

    DownloadStorage {
        id: storage
        store: section.downloads
    }
    Label {
        text: qsTr("Downloads")
        font.weight: Font.Bold
        Accessible.role: Accessible.Heading
    }
    RowLayout {
        Layout.fillWidth: true
        Label {
            Layout.fillWidth: true
            text: qsTr("Storage Used")
        }
        Label {
            objectName: "storageUsed"
            text: storage.usedText
            opacity: 0.7
        }
    }
    Label {
        Layout.fillWidth: true
        visible: storage.isEmpty
        wrapMode: Text.WordWrap
        font.pixelSize: 11
        opacity: 0.6
        text: qsTr("Download albums and playlists for offline playback from their “⋯” menu.")
    }
    ListView {
        id: rows
        objectName: "storageRows"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contentHeight, section.theme.storageListHeight)
        visible: !storage.isEmpty
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: storage.collections
        ScrollBar.vertical: ScrollBar {}
        delegate: RowLayout {
            required property string key
            required property string name
            required property string sizeText
            width: rows.width
            spacing: 8

            Label {
                Layout.fillWidth: true
                text: name
                elide: Text.ElideRight
            }
            Label {
                text: sizeText
                opacity: 0.7
            }
            ToolButton {
                id: trash
                Accessible.name: qsTr("Remove Download")
                Accessible.description: name
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Remove Download")
                contentItem: SymbolIcon {
                    symbol: "trash"
                    size: 16
                    // The settings window keeps the desktop's own colours.
                    color: trash.palette.windowText
                    opacity: 0.7
                }
                onClicked: storage.remove(key)
            }
        }
    }
    Button {
        objectName: "removeAllDownloads"
        visible: !storage.isEmpty
        text: qsTr("Remove All Downloads")
        palette.buttonText: section.theme.destructive
        onClicked: confirmation.open()
    }

    ConfirmationDialog {
        id: confirmation
        objectName: "removeAllConfirmation"
        title: qsTr("Remove all downloads?")
        message: storage.removeAllMessage
        confirmText: qsTr("Remove All")
        destructiveColor: section.theme.destructive
        onConfirmed: storage.removeAll()
    }
}
