import QtQuick
import Velto

// An artist on a page of its own, opened from a link: the same as the artist screen's right side.
ArtistDetailPane {
}
