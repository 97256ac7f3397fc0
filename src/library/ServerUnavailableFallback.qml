import QtQuick
import Velto

// Wraps a screen's content: while the server can't be used and the screen has nothing to show, the full page
// stands in its place, and the window is told so that the banner does not say the same again.
Item {
    id: fallback
    required property Theme theme
    required property LibraryStore library
    required property DownloadStore downloads
    required property Navigation navigation
    property bool isEmpty: false
    default property alias content: holder.data
    // Only a page on screen speaks for the window: one covered by a pushed screen does not.
    readonly property bool reporting: page.shown && visible

    ServerUnavailableModel {
        id: page
        library: fallback.library
        downloads: fallback.downloads
        isEmpty: fallback.isEmpty
    }
    Item {
        id: holder
        anchors.fill: parent
        visible: !page.shown
    }
    Loader {
        anchors.fill: parent
        active: page.shown
        sourceComponent: ServerUnavailableView {
            theme: fallback.theme
            model: page
        }
    }

    onReportingChanged: navigation.reportFullPage(fallback, reporting)
    Component.onCompleted: if (reporting) navigation.reportFullPage(fallback, true)
    Component.onDestruction: if (navigation) navigation.reportFullPage(fallback, false)
}
