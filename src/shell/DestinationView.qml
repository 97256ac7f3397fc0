import QtQuick
import Velto

// One screen of the detail column, chosen by its kind: a sidebar item's id, "playlist", or a pushed "album",
// "artist" or "grid". Each screen gets what it needs from here.
Loader {
    id: destination
    required property string kind
    required property string title
    // The pushed album's or artist's record; empty for a root.
    required property var record
    // A pushed grid's album list.
    required property string entryId
    required property var askNewPlaylistName
    readonly property string gridListType: navigation.gridListType(kind, entryId)
    // 0 for the root under the stack.
    required property int depth
    required property Theme theme
    required property Navigation navigation
    required property LibraryStore library
    required property DownloadStore downloads
    required property PlayerController player
    required property Preferences preferences

    // A screen's own colour for the window.
    function onAccent(color) { navigation.reportAccent(depth, color) }

    sourceComponent: kind === "home" ? homeView
                   : kind === "downloads" ? downloadsView
                   : kind === "album" ? albumView
                   : kind === "playlist" ? playlistView
                   : kind === "artists" ? artistsView
                   : kind === "artist" ? artistView
                   : kind === "songs" ? songsView
                   : kind === "likedSongs" ? likedSongsView
                   : gridListType !== "" ? gridView
                   : null

    Component {
        id: downloadsView
        DownloadsView {
            theme: destination.theme
            downloads: destination.downloads
            player: destination.player
            navigation: destination.navigation
        }
    }
    Component {
        id: homeView
        HomeView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
            isOnScreen: destination.visible
            onAccent: color => destination.onAccent(color)
        }
    }
    Component {
        id: albumView
        AlbumDetailView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
            album: destination.record
            onAccent: color => destination.onAccent(color)
        }
    }
    Component {
        id: playlistView
        PlaylistDetailView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
            playlistId: destination.navigation.playlistId
        }
    }
    Component {
        id: gridView
        AlbumGridView {
            title: destination.title
            listType: destination.gridListType
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
        }
    }
    Component {
        id: artistsView
        ArtistsView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            preferences: destination.preferences
            askNewPlaylistName: destination.askNewPlaylistName
        }
    }
    Component {
        id: artistView
        ArtistDetailView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
            artist: destination.record
        }
    }
    Component {
        id: songsView
        SongsView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
        }
    }
    Component {
        id: likedSongsView
        LikedSongsView {
            theme: destination.theme
            navigation: destination.navigation
            library: destination.library
            downloads: destination.downloads
            player: destination.player
            askNewPlaylistName: destination.askNewPlaylistName
        }
    }
}
