import QtQuick
import QtQuick.Controls
import Velto

// A destination whose screen is still to come: its title on a plain page.
ServerUnavailableFallback {
    id: page
    required property string title

    isEmpty: screen.isEmpty

    PlaceholderScreen {
        id: screen
        library: page.library
    }
    Label {
        x: page.theme.pageMargin
        y: page.theme.pageMargin
        width: page.width - 2 * page.theme.pageMargin
        text: page.title
        color: page.theme.text
        font.pixelSize: page.theme.titleSize
        font.weight: Font.Bold
        elide: Text.ElideRight
        Accessible.role: Accessible.Heading
    }
}
