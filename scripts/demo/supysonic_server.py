#!/usr/bin/python3
"""Run a real Supysonic server on 127.0.0.1 with a small generated library.

Usage:
    python3 scripts/demo/supysonic_server.py --workdir DIR [--port N]
                                           [--user NAME --password PASS]
                                           [--keep-state] [--ignore-stdin] [--demo]

Everything lives under DIR: the generated library (DIR/library, described by
DIR/library.json), supysonic.conf, the sqlite database, caches and logs. The
library is generated with ffmpeg only once; later runs reuse it.

Supysonic only understands clear passwords, so a test-only WSGI shim turns
token requests (t, s) from the fixture user into p=<password> requests, in the
query or in a form; a wrong token is forwarded with a wrong password so
Supysonic answers error 40.

Each start restores the freshly scanned database (same IDs, no playlists,
stars or ratings left over) unless --keep-state is given.

With --demo the same albums are made as songs of a minute or so, plucked
notes instead of a bare tone, for a library that is pleasant to try by hand,
and an account without playlists gets one, "Demo Mix".

Once listening it prints "READY <port>" on stdout and serves until SIGTERM,
SIGINT or EOF on stdin (unless --ignore-stdin is given).
"""

import argparse
import hashlib
import io
import json
import logging
import math
import os
import shutil
import signal
import subprocess
import sys
import threading
from concurrent.futures import ThreadPoolExecutor
from urllib.parse import quote, unquote_plus, urlencode
from urllib.request import urlopen

SYSTEM_PYTHON = "/usr/bin/python3"
try:
    import mediafile
    import waitress
    from supysonic.config import IniConfig
    from supysonic.web import create_application
except ImportError:
    # Supysonic is a Debian package: use the system interpreter if we are not it.
    if os.path.exists(SYSTEM_PYTHON) and os.path.realpath(sys.executable) != os.path.realpath(SYSTEM_PYTHON):
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON] + sys.argv)
    sys.exit("supysonic_server: supysonic/waitress are not importable")

LIBRARY_VERSION = 1
DEMO_LIBRARY_VERSION = "demo-2"
# Demo songs are made louder or softer than each other, with ReplayGain tags that even them out again, so that
# volume levelling can be heard: by track every song is as loud as the next, by album (gain 0) they stay as made.
DEMO_LOUDNESS = [1.0, 0.5, 0.8, 1.3]
DEMO_STRETCH = 25  # a two-second test song becomes fifty seconds

# (artist, album, year, genre, cover colour or None, songs)
# song: (disc, track, title, seconds, extension)
LIBRARY = [
    ("Sigur Ós", "Ágætis Test", 2001, "Post-Rock", "0xC0392B", [
        (1, 1, "Intro", 2, "flac"),
        (1, 2, "Svefn-g-englar", 3, "flac"),
        (1, 3, "Starálfur", 2, "flac"),
        (1, 4, "Flugufrelsarinn", 3, "ogg"),
    ]),
    ("Sigur Ós", "Hvarf & Heim", 2007, "Post-Rock", "0x2E86C1", [
        (1, 1, "Salka", 2, "flac"),
        (1, 2, "Hljómalind", 3, "flac"),
        (2, 1, "Von", 2, "flac"),
        (2, 2, "Ágætis byrjun (live)", 3, "flac"),
    ]),
    ("The Null Pilots", "Sine Waves, Vol. 1", 1999, "Electronic", "0x27AE60", [
        (1, 1, "Four Forty", 2, "mp3"),
        (1, 2, "Square Root", 3, "mp3"),
        (1, 3, "Déjà Vu", 2, "flac"),
    ]),
    ("Zoë & the Oscillators", "Niño Tones", 2015, "Jazz", None, [
        (1, 1, "Café Noir", 3, "flac"),
        (1, 2, "Straße 5", 2, "flac"),
        (1, 3, "Ünïcode Blues", 2, "flac"),
    ]),
]

CODECS = {
    "flac": ["-c:a", "flac"],
    "mp3": ["-c:a", "libmp3lame", "-b:a", "128k"],
    "ogg": ["-c:a", "libvorbis", "-q:a", "3"],
}


def fail(message):
    print("supysonic_server: " + message, file=sys.stderr, flush=True)
    sys.exit(1)


def run(cmd, cwd=None, env=None):
    proc = subprocess.run(cmd, cwd=cwd, env=env, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if proc.returncode != 0:
        fail("command failed: {}\n{}".format(" ".join(cmd), proc.stdout.decode("utf-8", "replace")))


def safe_name(text):
    return "".join("_" if c in '/\\:*?"<>|' else c for c in text)


def tone_source(n, seconds, demo):
    if not demo:
        return "sine=frequency={}:sample_rate=44100:duration={}".format(220 + 55 * n, seconds)
    # A four-note arpeggio on a root that changes per song, each note fading out like a plucked string.
    root = 196 * 2 ** ((n * 5 % 12) / 12)
    note = "{r}*pow(2,floor(mod(t*4,4))*4/12)".format(r=root)
    expr = "{a}*sin(2*PI*{note}*t)*exp(-5*mod(t,0.25))".format(a=0.3 * DEMO_LOUDNESS[n % len(DEMO_LOUDNESS)], note=note)
    return "aevalsrc=exprs='{e}|{e}':sample_rate=44100:duration={d}".format(e=expr, d=seconds)


def generate_library(workdir, demo):
    """Create DIR/library with ffmpeg and describe it in DIR/library.json."""
    if shutil.which("ffmpeg") is None:
        fail("ffmpeg not found in PATH")
    tmp = os.path.join(workdir, "library.tmp")
    shutil.rmtree(tmp, ignore_errors=True)
    ffmpeg = ["ffmpeg", "-nostdin", "-hide_banner", "-loglevel", "error", "-y"]
    jobs, albums = [], []
    mtime = 1_600_000_000  # album created dates: older albums first, a day apart
    for artist, album, year, genre, colour, songs in LIBRARY:
        rel_dir = os.path.join(safe_name(artist), "{} - {}".format(year, safe_name(album)))
        os.makedirs(os.path.join(tmp, rel_dir))
        if colour:
            jobs.append((ffmpeg + ["-f", "lavfi", "-i", "color=c={}:s=600x600".format(colour),
                                   "-frames:v", "1", os.path.join(tmp, rel_dir, "cover.jpg")], None, 0))
        discs = max(s[0] for s in songs)
        entries = []
        for n, (disc, track, title, seconds, ext) in enumerate(songs):
            if demo:
                seconds *= DEMO_STRETCH
            name = "{}-{:02d} - {}.{}".format(disc, track, safe_name(title), ext)
            rel_path = os.path.join(rel_dir, name)
            tracks_on_disc = sum(1 for s in songs if s[0] == disc)
            tags = {"title": title, "artist": artist, "album": album, "album_artist": artist,
                    "track": "{}/{}".format(track, tracks_on_disc), "disc": "{}/{}".format(disc, discs),
                    "date": str(year), "genre": genre}
            if demo:
                loudness = DEMO_LOUDNESS[n % len(DEMO_LOUDNESS)]
                tags["REPLAYGAIN_TRACK_GAIN"] = "{:.2f} dB".format(-20 * math.log10(loudness))
                tags["REPLAYGAIN_TRACK_PEAK"] = "{:.6f}".format(0.3 * loudness)
                tags["REPLAYGAIN_ALBUM_GAIN"] = "0.00 dB"
                tags["REPLAYGAIN_ALBUM_PEAK"] = "0.390000"
            cmd = ffmpeg + ["-f", "lavfi", "-i", tone_source(n, seconds, demo)]
            for key, value in tags.items():
                cmd += ["-metadata", "{}={}".format(key, value)]
            jobs.append((cmd + CODECS[ext] + [os.path.join(tmp, rel_path)], os.path.join(tmp, rel_path), mtime + n))
            entries.append({"title": title, "artist": artist, "album": album, "track": track,
                            "disc": disc, "year": year, "genre": genre, "suffix": ext, "path": rel_path})
        albums.append({"name": album, "artist": artist, "year": year, "genre": genre,
                       "hasCover": colour is not None, "coverColor": colour, "path": rel_dir,
                       "discCount": discs, "songs": entries})
        mtime += 86400

    def work(job):
        cmd, path, stamp = job
        run(cmd)
        if path:
            os.utime(path, (stamp, stamp))

    with ThreadPoolExecutor(max_workers=max(2, os.cpu_count() or 2)) as pool:
        list(pool.map(work, jobs))

    for album in albums:  # real durations, as Supysonic computes them (int seconds)
        for song in album["songs"]:
            song["duration"] = int(mediafile.MediaFile(os.path.join(tmp, song["path"])).length)
        album["songCount"] = len(album["songs"])
        album["duration"] = sum(s["duration"] for s in album["songs"])

    artists = []
    for artist in dict.fromkeys(a["artist"] for a in albums):
        artists.append({"name": artist, "albums": [a["name"] for a in albums if a["artist"] == artist]})
    description = {
        "version": DEMO_LIBRARY_VERSION if demo else LIBRARY_VERSION,
        "artists": artists,
        "albums": albums,
        "newestAlbums": [a["name"] for a in reversed(albums)],
        "songCount": sum(a["songCount"] for a in albums),
    }
    library = os.path.join(workdir, "library")
    shutil.rmtree(library, ignore_errors=True)
    os.rename(tmp, library)
    with open(os.path.join(workdir, "library.json"), "w", encoding="utf-8") as f:
        json.dump(description, f, ensure_ascii=False, indent=2)


def library_is_ready(workdir, demo):
    expected = DEMO_LIBRARY_VERSION if demo else LIBRARY_VERSION
    try:
        with open(os.path.join(workdir, "library.json"), encoding="utf-8") as f:
            ok = json.load(f).get("version") == expected
        return ok and os.path.isdir(os.path.join(workdir, "library"))
    except (OSError, ValueError):
        return False


def write_config(workdir):
    path = os.path.join(workdir, "supysonic.conf")
    with open(path, "w", encoding="utf-8") as f:
        f.write("[base]\n"
                "database_uri = sqlite:///{db}\n"
                "follow_symlinks = no\n\n"
                "[webapp]\n"
                "cache_dir = {w}/cache\n"
                "cache_size = 64\n"
                "transcode_cache_size = 64\n"
                "log_file = {w}/supysonic.log\n"
                "log_level = WARNING\n"
                "mount_webui = no\n"
                "mount_api = yes\n\n"
                "[daemon]\n"
                "socket = {w}/supysonic.sock\n"
                "run_watcher = no\n"
                "log_file = {w}/daemon.log\n".format(w=workdir, db=os.path.join(workdir, "supysonic.db")))
    return path


def setup_database(workdir, user, password):
    """Create user and folder and scan, through supysonic's own CLI."""
    for name in ("supysonic.db", "supysonic.db.clean", "fixture-state.json"):
        if os.path.exists(os.path.join(workdir, name)):
            os.remove(os.path.join(workdir, name))
    env = dict(os.environ, HOME=workdir)  # keep ~/.supysonic out of the picture
    cli = [sys.executable, "-m", "supysonic.cli"]
    run(cli + ["user", "add", user, "-p", password], cwd=workdir, env=env)
    run(cli + ["user", "setroles", user, "--admin"], cwd=workdir, env=env)
    run(cli + ["folder", "add", "Music", os.path.join(workdir, "library")], cwd=workdir, env=env)
    run(cli + ["folder", "scan", "--foreground"], cwd=workdir, env=env)
    shutil.copyfile(os.path.join(workdir, "supysonic.db"), os.path.join(workdir, "supysonic.db.clean"))
    with open(os.path.join(workdir, "fixture-state.json"), "w", encoding="utf-8") as f:
        json.dump({"user": user, "password": password, "version": LIBRARY_VERSION}, f)


def database_is_ready(workdir, user, password):
    try:
        with open(os.path.join(workdir, "fixture-state.json"), encoding="utf-8") as f:
            state = json.load(f)
    except (OSError, ValueError):
        return False
    return (os.path.exists(os.path.join(workdir, "supysonic.db.clean"))
            and state == {"user": user, "password": password, "version": LIBRARY_VERSION})


def seed_demo_playlist(port, user, password):
    """Give a demo account without playlists one to try the playlist page on: a few songs, one of them twice."""
    base = "http://127.0.0.1:{}/rest/".format(port)
    auth = {"u": user, "p": password, "v": "1.16.1", "c": "velto-demo", "f": "json"}

    def call(endpoint, **params):
        query = urlencode(list(auth.items()) + [(k, v) for k, vs in params.items()
                                                 for v in (vs if isinstance(vs, list) else [vs])])
        with urlopen(base + endpoint + "?" + query, timeout=10) as answer:
            return json.load(answer)["subsonic-response"]

    if call("getPlaylists").get("playlists", {}).get("playlist"):
        return
    songs = [song["id"] for song in call("search3", query="", songCount=8).get("searchResult3", {}).get("song", [])]
    if songs:
        call("createPlaylist", name="Demo Mix", songId=songs + songs[:1])


def token_shim(app, user, password):
    """WSGI middleware: rewrite u/t/s token auth into u/p clear-password auth, in the query or in a form body."""
    def rewrite(encoded):
        parts = [p for p in encoded.split("&") if p]
        values = {}
        for part in parts:
            key, _, value = part.partition("=")
            values.setdefault(unquote_plus(key), unquote_plus(value))
        if "t" not in values or "s" not in values:
            return None
        expected = hashlib.md5((password + values["s"]).encode("utf-8")).hexdigest()
        good = values.get("u") == user and values["t"].lower() == expected
        given = password if good else "wrong-token-" + password
        kept = [p for p in parts if unquote_plus(p.partition("=")[0]) not in ("t", "s", "p")]
        return "&".join(kept + ["p=" + quote(given, safe="")])

    def shim(environ, start_response):
        if environ.get("PATH_INFO", "").startswith("/rest/"):
            query = environ.get("QUERY_STRING", "")
            rewritten = rewrite(query) if query else None
            if rewritten is not None:
                environ["QUERY_STRING"] = rewritten
            if environ.get("CONTENT_TYPE", "").startswith("application/x-www-form-urlencoded"):
                length = int(environ.get("CONTENT_LENGTH") or 0)
                body = environ["wsgi.input"].read(length).decode("latin-1")
                rewritten = rewrite(body)
                data = (rewritten if rewritten is not None else body).encode("latin-1")
                environ["wsgi.input"] = io.BytesIO(data)
                environ["CONTENT_LENGTH"] = str(len(data))
        return app(environ, start_response)
    return shim


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--workdir", required=True)
    parser.add_argument("--port", type=int, default=0, help="0 picks a free port")
    parser.add_argument("--user", default="alice")
    parser.add_argument("--password", default="sesame-ünï 1")
    parser.add_argument("--keep-state", action="store_true",
                        help="keep playlists, stars, ratings... from the previous run")
    parser.add_argument("--demo", action="store_true", help="minute-long songs for trying Velto by hand")
    parser.add_argument("--ignore-stdin", action="store_true",
                        help="do not stop on stdin EOF (for running in the background)")
    args = parser.parse_args()

    workdir = os.path.abspath(args.workdir)
    os.makedirs(workdir, exist_ok=True)
    fresh = not library_is_ready(workdir, args.demo)
    if fresh:
        generate_library(workdir, args.demo)
    config_path = write_config(workdir)
    if fresh or not database_is_ready(workdir, args.user, args.password):
        setup_database(workdir, args.user, args.password)
    elif not args.keep_state:  # same IDs as last time, but no playlists/stars/... left over
        db = os.path.join(workdir, "supysonic.db")
        for leftover in (db + "-journal", db + "-wal", db + "-shm"):
            if os.path.exists(leftover):
                os.remove(leftover)
        shutil.copyfile(db + ".clean", db)

    try:
        app = create_application(IniConfig([config_path]))
        server = waitress.create_server(token_shim(app, args.user, args.password),
                                        host="127.0.0.1", port=args.port, threads=8)
    except Exception as e:  # noqa: BLE001 - report anything as a startup failure
        fail("cannot start supysonic: {!r}".format(e))

    logging.getLogger("waitress.queue").setLevel(logging.ERROR)  # "Task queue depth" noise
    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())
    if not args.ignore_stdin:
        def watch_stdin():
            while sys.stdin.buffer.read1(4096):
                pass
            stop.set()
        threading.Thread(target=watch_stdin, daemon=True).start()
    threading.Thread(target=server.run, daemon=True).start()

    if args.demo:
        try:
            seed_demo_playlist(server.effective_port, args.user, args.password)
        except Exception as e:  # noqa: BLE001 - the demo works without it
            print("no demo playlist: {!r}".format(e), file=sys.stderr)
    print("READY {}".format(server.effective_port), flush=True)
    while not stop.wait(0.5):
        pass
    server.close()
    sys.stdout.flush()
    os._exit(0)  # daemon threads may sit in blocking calls; leave without joining them


if __name__ == "__main__":
    main()
