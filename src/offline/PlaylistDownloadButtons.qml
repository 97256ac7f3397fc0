import QtQuick
import QtQuick.Controls
import Velto

// The download entries of a playlist's "⋯" menu or context menu, put into `menu` from `position` on: what to start,
// follow, retry, cancel or remove, by what the store knows now.
Instantiator {
    id: buttons
    required property Menu menu
    required property Theme theme
    required property DownloadStore downloads
    required property string playlistId
    required property string name
    // The playlist's songs as the server lists them now.
    property var songIds: []
    property int position: 0

    model: PlaylistDownloadEntries {
        id: entries
        store: buttons.downloads
        playlistId: buttons.playlistId
        name: buttons.name
        songIds: buttons.songIds
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
