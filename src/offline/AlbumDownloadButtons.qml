import QtQuick
import QtQuick.Controls
import Velto

// The download entries of an album's "⋯" menu or context menu, put into `menu` from `position` on: what to start,
// follow, retry, cancel or remove, by what the store knows now.
Instantiator {
    id: buttons
    required property Menu menu
    required property Theme theme
    required property DownloadStore downloads
    // The album's record.
    required property var album
    property int position: 0

    model: AlbumDownloadEntries {
        id: entries
        store: buttons.downloads
        album: buttons.album
    }
    delegate: MenuItem {
        required property int index
        required property string label
        required property bool isEnabled
        required property bool isDestructive
        text: label
        enabled: isEnabled
        palette.windowText: isDestructive ? buttons.theme.destructive : buttons.theme.text
        palette.disabled.windowText: buttons.theme.tertiaryText
        onTriggered: entries.trigger(index)
    }
    onObjectAdded: (index, object) => menu.insertItem(position + index, object)
    onObjectRemoved: (index, object) => menu.removeItem(object)
}
