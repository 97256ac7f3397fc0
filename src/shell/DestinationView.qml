import QtQuick
import Velto

// One screen of the detail column, chosen by its kind: a sidebar item's id, "playlist", or a pushed "album",
// "artist" or "grid". Each screen gets what it needs from here.
Loader {
    id: destination
    required property string kind
    required property string title
    // 0 for the root under the stack.
    required property int depth
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads

    // A screen's own colour for the window.
    function onAccent(color) { navigation.reportAccent(depth, color) }

    sourceComponent: placeholder

    Component {
        id: placeholder
        PlaceholderView {
            title: destination.title
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
        }
    }
}
