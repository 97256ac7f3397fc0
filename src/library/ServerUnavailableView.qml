import QtQuick
import QtQuick.Controls
import Velto

// The full page in place of a screen with nothing to show while the server can't be used.
Item {
    id: page
    required property Theme theme
    required property ServerUnavailableModel model

    objectName: "serverUnavailableView"

    UnavailableContent {
        theme: page.theme
        symbol: page.model.symbol
        title: page.model.title
        description: page.model.description

        RetryButton {
            visible: page.model.canRetry
            highlighted: true
            text: qsTr("Try Again")
            busy: page.model.isRetrying
            onClicked: page.model.tryAgain()
        }
    }
}
