import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Velto

// Over the content's top edge: a fault that stands while something is still on screen, or an action that failed.
Item {
    id: banner
    required property Theme theme
    required property LibraryStore library
    required property DownloadStore downloads
    required property bool faultShownFullPage

    implicitHeight: panel.implicitHeight
    visible: opacity > 0
    opacity: content.shown ? 1 : 0
    // Moves only while it can be seen: a hidden banner whose height settles must not keep the window drawing.
    Behavior on opacity { NumberAnimation { duration: 200 } }
    transform: Translate {
        y: content.shown ? 0 : -banner.height
        Behavior on y {
            enabled: banner.visible || content.shown
            NumberAnimation { duration: 200; easing.type: Easing.OutCubic }
        }
    }

    ConnectionBannerModel {
        id: content
        library: banner.library
        downloads: banner.downloads
        faultShownFullPage: banner.faultShownFullPage
    }

    Rectangle {
        id: panel
        anchors.fill: parent
        implicitHeight: row.implicitHeight + 20
        radius: banner.theme.bannerRadius
        color: Qt.rgba(banner.theme.raisedSurface.r, banner.theme.raisedSurface.g, banner.theme.raisedSurface.b, 0.95)
        border.width: 1
        border.color: banner.theme.separator

        RowLayout {
            id: row
            anchors { fill: parent; leftMargin: 14; rightMargin: 10; topMargin: 10; bottomMargin: 10 }
            spacing: 10

            SymbolIcon {
                symbol: content.symbol
                size: 20
                color: content.isWarning ? banner.theme.orange : banner.theme.yellow
                Accessible.ignored: true
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2

                Label {
                    objectName: "bannerTitle"
                    Layout.fillWidth: true
                    text: content.title
                    color: banner.theme.text
                    font.weight: Font.DemiBold
                    wrapMode: Text.Wrap
                }
                Label {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: content.detail
                    color: banner.theme.secondaryText
                    font.pixelSize: 12
                    wrapMode: Text.Wrap
                }
            }
            RetryButton {
                visible: content.isStanding
                text: qsTr("Try Again")
                busy: content.isRetrying
                onClicked: content.tryAgain()
            }
            Button {
                visible: !content.isStanding && content.canRetry
                text: qsTr("Retry")
                onClicked: content.retry()
            }
            ToolButton {
                visible: !content.isStanding
                Accessible.name: qsTr("Dismiss")
                contentItem: SymbolIcon { symbol: "xmark"; color: banner.theme.secondaryText }
                onClicked: content.dismiss()
            }
        }
    }
}
