#!/usr/bin/python3
# The desktop as a screen reader sees it, for journeys where no X display is there to look:
#   accessible.py windows           the title of every program's every window, one a line
#   accessible.py press TITLE NAME  presses the button NAME in the window TITLE
#   accessible.py labels TITLE      the text of every label in the window TITLE, one a line
import sys

import pyatspi


def windows():
    for app in pyatspi.Registry.getDesktop(0):
        yield from (window for window in app if window)


if sys.argv[1] == "windows":
    print("\n".join(window.name for window in windows()))
    sys.exit(0)
if sys.argv[1] == "labels":
    for window in (w for w in windows() if w.name == sys.argv[2]):
        labels = pyatspi.findAllDescendants(window, lambda a: a.getRoleName() == "label")
        print("\n".join(label.name for label in labels))
    sys.exit(0)
for window in (w for w in windows() if w.name == sys.argv[2]):
    button = pyatspi.findDescendant(
        window, lambda a: a.getRoleName() == "push button" and a.name == sys.argv[3])
    if button:
        sys.exit(not button.queryAction().doAction(0))
sys.exit(1)
