import QtQuick
import QtQuick.Controls
import Velto

// How much of an album or playlist is on disk, beside its title; its tooltip says what to do about it. Nothing is
// drawn for a collection that is not downloaded.
Item {
    id: badge
    required property Theme theme
    required property DownloadStore downloads
    // "album:<id>" or "playlist:<id>".
    required property string key
    // A playlist's songs as the server lists them now; none for an album.
    property var songIds: []
    property real size: 16

    visible: badgeState.kind !== DownloadBadgeState.None
    implicitWidth: size
    implicitHeight: size
    Accessible.role: badgeState.kind === DownloadBadgeState.Progress ? Accessible.ProgressBar : Accessible.Graphic
    Accessible.name: qsTr("Download Status")
    Accessible.description: badgeState.toolTip
    ToolTip.visible: hover.hovered
    ToolTip.delay: 500
    ToolTip.text: badgeState.toolTip

    DownloadBadgeState {
        id: badgeState
        store: badge.downloads
        key: badge.key
        songIds: badge.songIds
    }
    SymbolIcon {
        anchors.centerIn: parent
        visible: badgeState.kind !== DownloadBadgeState.Progress && badgeState.kind !== DownloadBadgeState.None
        symbol: badgeState.symbol
        size: badge.size
        color: badgeState.kind === DownloadBadgeState.Failed ? badge.theme.orange : badge.theme.secondaryText
    }
    // Made only while a download runs: a grid shows many badges that draw nothing.
    Loader {
        anchors.fill: parent
        anchors.margins: 1
        active: badgeState.kind === DownloadBadgeState.Progress
        sourceComponent: ProgressRing {
            value: badgeState.value
            color: badge.theme.text
            trackColor: badge.theme.separator
        }
    }
    HoverHandler {
        id: hover
    }
}
