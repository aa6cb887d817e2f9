#!/usr/bin/python3 -Wignore
"""Sees and uses a program as a screen reader does: by the names of its controls.

  accessible.py PROGRAM tree              everything that it shows
  accessible.py PROGRAM wait NAME         until something of that name is shown, or begins so with "..."
  accessible.py PROGRAM press NAME        presses or toggles it
  accessible.py PROGRAM focus NAME        gives it the keyboard
  accessible.py PROGRAM where NAME        the place of its middle on the screen
  accessible.py PROGRAM checked NAME      "yes" or "no"
"""

import re
import sys
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402  (the version has to be asked for first)

PATIENCE = 60
PRESSES = ("press", "toggle", "click", "showmenu")


def until(find, what):
    """What `find` gives as soon as it is not None."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        try:
            found = find()
        except GLib.Error:  # it went away while it was looked at
            found = None
        if found is not None:
            return found
        time.sleep(0.05)
    sys.exit(f"no {what}")


def program(name):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(index)
        if child and child.get_name().lower() == name.lower():
            child.clear_cache()
            return child
    return None


def walk(accessible, depth=0):
    yield accessible, depth
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child:
            yield from walk(child, depth + 1)


def shows(accessible):
    return accessible.get_state_set().contains(Atspi.StateType.SHOWING)


def named(root, name):
    prefix = name[:-3] if name.endswith("...") and len(name) > 3 else None
    for accessible, _ in walk(root):
        text = accessible.get_name()
        if (text == name or (prefix and text.startswith(prefix))) and shows(accessible):
            return accessible
    return None


def middle(accessible):
    extents = accessible.get_component_iface().get_extents(Atspi.CoordType.SCREEN)
    return f"{extents.x + extents.width // 2} {extents.y + extents.height // 2}"


def actions(accessible):
    interface = accessible.get_action_iface()
    if not interface:
        return []
    return [interface.get_action_name(index).lower() for index in range(interface.get_n_actions())]


def press(accessible):
    known = actions(accessible)
    for index, action in enumerate(known):
        if re.sub("[^a-z]", "", action) in PRESSES:
            return accessible.get_action_iface().do_action(index)
    return sys.exit(f"nothing to press among {known}")


def main():
    warnings.simplefilter("ignore")
    name, command, *arguments = sys.argv[1:]
    if command == "tree":
        for accessible, depth in walk(until(lambda: program(name), name)):
            print("  " * depth, accessible.get_role_name(), repr(accessible.get_name()),
                  repr(accessible.get_description()), actions(accessible),
                  "" if shows(accessible) else "hidden")
        return

    def find():
        root = program(name)
        return root and named(root, arguments[0])

    found = until(find, f'"{arguments[0]}" in {name}')
    if command == "press":
        press(found)
    elif command == "focus":
        found.get_component_iface().grab_focus()
    elif command == "where":
        print(middle(found))
    elif command == "checked":
        print("yes" if found.get_state_set().contains(Atspi.StateType.CHECKED) else "no")


if __name__ == "__main__":
    main()
