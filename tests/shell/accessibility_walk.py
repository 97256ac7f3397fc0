#!/usr/bin/python3
"""Walks Velto's accessibility tree over AT-SPI, as a screen reader sees it, and checks what a listener needs:
every control that takes input says what it is, no name carries a mnemonic marker, and each screen's own
controls are there by name.

    accessibility_walk.py VELTO_BINARY

Runs inside test-env.sh --display --a11y, which provides the accessibility bus."""

import subprocess
import sys
import time

import pyatspi

# Roles a user acts on; each must have a name (a password field its description: Qt keeps the name empty).
INTERACTIVE = {"push button", "toggle button", "check box", "radio button", "text", "password text", "combo box",
               "slider", "spin button", "menu item", "page tab", "list item", "table cell"}

CONNECT_SCREEN = {
    ("text", "Server URL"), ("text", "Username"), ("push button", "Connect"), ("push button", "Advanced"),
    ("check box", "Use legacy authentication"),
}
MENU_BAR = ["File", "Library", "Playback", "Help"]


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


def problems_of(nodes):
    found = []
    for _, role, name, description, node in nodes:
        if "&" in name:
            found.append(f"{role} {name!r} carries a mnemonic marker")
        showing = node.getState().contains(pyatspi.STATE_SHOWING)
        if role in INTERACTIVE and showing and not (name or (role == "password text" and description)):
            found.append(f"a {role} without a name")
    present = {(role, name) for _, role, name, _, _ in nodes}
    for control in sorted(CONNECT_SCREEN - present):
        found.append(f"the connect screen lacks the {control[0]} {control[1]!r}")
    if not any(role == "password text" and description == "Password" for _, role, _, description, _ in nodes):
        found.append("the password field does not say what it is")
    menus = [name for _, role, name, _, node in nodes if node.parent is not None
             and node.parent.getRoleName() == "menu bar"]
    if menus != MENU_BAR:
        found.append(f"the menu bar reads {menus}, not {MENU_BAR}")
    return found


def main():
    velto = subprocess.Popen([sys.argv[1]])
    try:
        app = find_application("Velto")
        if app is None:
            print("Velto never appeared on the accessibility bus")
            return 1
        time.sleep(1)  # the window's first layout
        nodes = walk(app)
        problems = problems_of(nodes)
        for depth, role, name, description, _ in nodes:
            print("  " * depth + f"{role} {name!r}" + (f" ({description})" if description else ""))
        for problem in problems:
            print("FAIL:", problem)
        return 1 if problems else 0
    finally:
        velto.terminate()
        velto.wait(timeout=20)


if __name__ == "__main__":
    sys.exit(main())
