#!/usr/bin/python3
"""Walks Velto's accessibility tree over AT-SPI, as a screen reader sees it, and checks what a listener needs:
every control that takes input says what it is, no name carries a mnemonic marker, and each screen's own
controls are there by name. First the connect screen, then the main window signed in to a small local server,
then, with an album kept on disk, the Downloads screen, the album's page with its download badge and tracks
(opened from the disk, as this server has no albums to give), the Albums grid, a playlist's page, the artist
screen and the song table.
(The window tests check the dialogs and menus, which open only on input, through Qt's side of the same tree.)

    accessibility_walk.py VELTO_BINARY SIGNIN_BINARY

Runs inside test-env.sh --display --a11y, which provides the accessibility bus and a keyring."""

import hashlib
import http.server
import json
import os
import subprocess
import sys
import threading
import time
import urllib.parse

import pyatspi

# Roles a user acts on; each must have a name (a password field its description: Qt keeps the name empty).
INTERACTIVE = {"push button", "toggle button", "check box", "radio button", "text", "password text", "combo box",
               "slider", "spin button", "menu item", "page tab", "list item", "table cell"}

CONNECT_SCREEN = {
    ("text", "Server URL"), ("text", "Username"), ("push button", "Connect"), ("push button", "Advanced"),
    ("check box", "Use legacy authentication"),
}
MENU_BAR = ["File", "Library", "Playback", "Help"]
# Home is where the window opens: the featured card and the rows, from the albums this server lists.
MAIN_WINDOW = {
    ("push button", "Back"), ("text", "Search"), ("list", "Sidebar"), ("list item", "New Playlist"),
    ("list item", "Home"), ("list item", "Artists"), ("list item", "Albums"), ("list item", "Songs"),
    ("list item", "Downloads"), ("list item", "Recently Added"), ("list item", "Recently Played"),
    ("list item", "Most Played"), ("list item", "Liked Songs"), ("list item", "Liked Albums"),
    ("list item", "Top Rated"), ("list item", "Morning"), ("list item", "Workout"),
    ("tool bar", "Playback"), ("push button", "Shuffle"), ("push button", "Previous"), ("push button", "Play"),
    ("push button", "Next"), ("push button", "Repeat"), ("push button", "Like"), ("push button", "Up Next"),
    ("push button", "Mute"),
    ("push button", "Open album Quiet Rooms"), ("push button", "Play"), ("push button", "Shuffle"),
    ("push button", "Show all Recently Played"), ("push button", "Show all Random Albums"),
}
PLAYLISTS = [{"id": "p1", "name": "Morning"}, {"id": "p2", "name": "Workout"}]
KEPT_ALBUM = {"id": "a1", "name": "Quiet Rooms", "artist": "Ada"}
# Qt 6.4 hands headings to AT-SPI as labels.
DOWNLOADS_SCREEN = {("label", "Downloads"), ("label", "Albums"), ("push button", "Quiet Rooms"),
                    ("push button", "Play Quiet Rooms")}
ALBUM_PAGE = {("label", "Quiet Rooms"), ("push button", "More"), ("image", "Download Status"),
              ("push button", "Play"), ("push button", "Shuffle"), ("push button", "Like Album"),
              ("list item", "First Light")}
ALBUMS_GRID = {("label", "Albums"), ("push button", "Quiet Rooms"), ("push button", "Loud Halls")}
MORNING_SONG = {"id": "s2", "title": "Dawn Chorus", "artist": "Ada", "albumId": "a1", "duration": 90}
ARTIST = {"id": "ar1", "name": "Ada"}
ARTISTS_SCREEN = {("label", "Artists"), ("list", "Artists"), ("list item", "Ada"), ("label", "Ada"),
                  ("push button", "Like Artist"), ("push button", "Play Ada"), ("push button", "Shuffle Ada"),
                  ("push button", "Quiet Rooms")}
SONGS_TABLE = {("label", "Songs"), ("table", "Songs"), ("table column header", "Title"), ("table column header", "Artist"),
               ("table column header", "Album"), ("table column header", "Time"), ("table cell", "Dawn Chorus"),
               ("table cell", "Ada"), ("table cell", "01:30")}
PLAYLIST_PAGE = {("label", "Morning"), ("push button", "Play"), ("push button", "Shuffle"), ("push button", "More"),
                 ("list", "Songs"), ("list item", "Dawn Chorus, Ada")}


class FakeServer(http.server.BaseHTTPRequestHandler):
    """Just enough of a music server for the main window to fill its sidebar."""

    def do_GET(self):
        endpoint = urllib.parse.urlparse(self.path).path.rsplit("/", 1)[-1].removesuffix(".view")
        payload = {"status": "ok", "version": "1.16.1"}
        if endpoint == "getPlaylists":
            payload["playlists"] = {"playlist": PLAYLISTS}
        elif endpoint == "getPlaylist":
            payload["playlist"] = dict(PLAYLISTS[0], songCount=1, duration=90, entry=[MORNING_SONG])
        elif endpoint == "getArtists":
            payload["artists"] = {"index": [{"name": "A", "artist": [ARTIST]}]}
        elif endpoint == "getArtist":
            payload["artist"] = dict(ARTIST, album=[KEPT_ALBUM])
        elif endpoint == "search3":
            offset = int(urllib.parse.parse_qs(urllib.parse.urlparse(self.path).query).get("songOffset", ["0"])[0])
            payload["searchResult3"] = {} if offset else {"song": [MORNING_SONG]}
        elif endpoint == "getStarred2":
            payload["starred2"] = {}
        elif endpoint == "getAlbumList2":
            offset = int(urllib.parse.parse_qs(urllib.parse.urlparse(self.path).query).get("offset", ["0"])[0])
            payload["albumList2"] = {"album": [] if offset else [KEPT_ALBUM, {"id": "a2", "name": "Loud Halls"}]}
        body = json.dumps({"subsonic-response": payload}).encode()
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *args):
        pass


def find_application(name, timeout=20):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            app = desktop.getChildAtIndex(index)
            if app is not None and app.name == name and app.childCount > 0:
                return app
        time.sleep(0.2)
    return None


def walk(node, depth=0, into=None):
    into = [] if into is None else into
    node.clear_cache()
    into.append((depth, node.getRoleName(), node.name, node.description, node))
    for index in range(node.childCount):
        child = node.getChildAtIndex(index)
        if child is not None:
            walk(child, depth + 1, into)
    return into


def unnamed_controls(nodes):
    found = []
    for _, role, name, description, node in nodes:
        if "&" in name:
            found.append(f"{role} {name!r} carries a mnemonic marker")
        showing = node.getState().contains(pyatspi.STATE_SHOWING)
        if role in INTERACTIVE and showing and not (name or (role == "password text" and description)):
            found.append(f"a {role} without a name")
    return found


def missing(nodes, expected, where):
    present = {(role, name) for _, role, name, _, _ in nodes}
    return [f"{where} lacks the {role} {name!r}" for role, name in sorted(expected - present)]


def connect_screen_problems(nodes):
    found = unnamed_controls(nodes) + missing(nodes, CONNECT_SCREEN, "the connect screen")
    if not any(role == "password text" and description == "Password" for _, role, _, description, _ in nodes):
        found.append("the password field does not say what it is")
    menus = [name for _, role, name, _, node in nodes if node.parent is not None
             and node.parent.getRoleName() == "menu bar"]
    if menus != MENU_BAR:
        found.append(f"the menu bar reads {menus}, not {MENU_BAR}")
    return found


def print_tree(nodes):
    for depth, role, name, description, _ in nodes:
        print("  " * depth + f"{role} {name!r}" + (f" ({description})" if description else ""))


def walk_running(binary, check):
    velto = subprocess.Popen([binary])
    try:
        app = find_application("Velto")
        if app is None:
            return ["Velto never appeared on the accessibility bus"]
        time.sleep(1)  # the window's first layout
        return check(app)
    finally:
        velto.terminate()
        velto.wait(timeout=20)


def check_connect_screen(app):
    nodes = walk(app)
    print_tree(nodes)
    return connect_screen_problems(nodes)


def check_main_window(app):
    deadline = time.monotonic() + 20
    nodes = walk(app)
    while missing(nodes, MAIN_WINDOW, "the main window") and time.monotonic() < deadline:
        time.sleep(0.3)
        nodes = walk(app)
    print_tree(nodes)
    return unnamed_controls(nodes) + missing(nodes, MAIN_WINDOW, "the main window")


def keep_album(url, user, selection, path):
    """Puts an album on disk for the account, as a finished download leaves it, and the window's place: a sidebar
    item's id, or a selection as the location file holds it."""
    if isinstance(selection, str):
        selection = {"item": {"_0": selection}}
    data = os.path.join(os.environ["XDG_DATA_HOME"], "Velto")
    server_key = f"{user}@{url}"
    folder = os.path.join(data, "Downloads", hashlib.sha256(server_key.encode()).hexdigest())
    os.makedirs(folder, exist_ok=True)
    key = "album:" + KEPT_ALBUM["id"]
    song = {"id": "s1", "title": "First Light", "album": KEPT_ALBUM["name"], "albumId": KEPT_ALBUM["id"],
            "artist": KEPT_ALBUM["artist"], "track": 1, "duration": 60, "suffix": "mp3"}
    manifest = {"songs": {"s1": {"song": song, "suffix": "mp3", "bytes": 1000, "owners": [key]}},
                "collections": {key: {"key": key, "name": KEPT_ALBUM["name"]}}}
    with open(os.path.join(folder, "manifest.json"), "w") as file:
        json.dump(manifest, file)
    location = {"serverKey": server_key, "selection": selection, "path": path}
    with open(os.path.join(data, "location.json"), "w") as file:
        json.dump(location, file)


def checker_for(expected, where, describe=None):
    def check(app):
        deadline = time.monotonic() + 20
        nodes = walk(app)
        while missing(nodes, expected, where) and time.monotonic() < deadline:
            time.sleep(0.3)
            nodes = walk(app)
        print_tree(nodes)
        found = unnamed_controls(nodes) + missing(nodes, expected, where)
        if describe and not any(description == describe for _, _, _, description, _ in nodes):
            found.append(f"{where} has nothing described as {describe!r}")
        return found
    return check


def main():
    velto, signin = sys.argv[1], sys.argv[2]
    problems = walk_running(velto, check_connect_screen)

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), FakeServer)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    url = f"http://127.0.0.1:{server.server_address[1]}"
    if subprocess.run([signin, url, "walker", "secret"]).returncode != 0:
        problems.append("could not sign in to the local server")
    else:
        problems += walk_running(velto, check_main_window)
        keep_album(url, "walker", "downloads", [])
        problems += walk_running(velto, checker_for(DOWNLOADS_SCREEN, "the Downloads screen"))
        keep_album(url, "walker", "downloads", [{"kind": "album", "record": KEPT_ALBUM}])
        problems += walk_running(velto, checker_for(ALBUM_PAGE, "the album page", "Available offline"))
        keep_album(url, "walker", "albums", [])
        problems += walk_running(velto, checker_for(ALBUMS_GRID, "the Albums grid"))
        keep_album(url, "walker", {"playlist": {"_0": "p1"}}, [])
        problems += walk_running(velto, checker_for(PLAYLIST_PAGE, "the playlist page"))
        keep_album(url, "walker", "artists", [])
        problems += walk_running(velto, checker_for(ARTISTS_SCREEN, "the artist screen"))
        keep_album(url, "walker", "songs", [])
        problems += walk_running(velto, checker_for(SONGS_TABLE, "the song table"))
    server.shutdown()

    for problem in problems:
        print("FAIL:", problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
