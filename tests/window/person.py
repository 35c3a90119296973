"""Somebody who uses the window: sees what is where through the accessibility tree, and has a mouse and keys (xdotool)."""
import subprocess
import sys
import time

import pyatspi

PATIENCE_SECONDS = 120
# Where a speed of 1 stands in a plot of 4 to 0.1, as a share of its height from above.
ONE_X = 0.3758


def fail(sentence):
    sys.exit("Window: " + sentence)


def eventually(what, found):
    """The first true answer of `found`."""
    deadline = time.monotonic() + PATIENCE_SECONDS
    while time.monotonic() < deadline:
        try:
            answer = found()
        except Exception:  # the tree changes while it is read
            answer = None
        if answer:
            return answer
        time.sleep(0.1)
    fail("waited in vain for " + what)


class Window:
    """The program's accessibility tree, and hands."""

    def __init__(self, name, scale=1):
        self.name = name
        self.scale = scale  # of the display
        self.pixels_per_unit = 1  # of the tree, which measures in pixels or in units of the scale

    def nodes(self):
        def below(node):
            yield node
            for index in range(node.childCount):
                child = node.getChildAtIndex(index)
                if child:
                    yield from below(child)

        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            application = desktop.getChildAtIndex(index)
            if application and application.name == self.name:
                yield from below(application)

    def find(self, name, role=None):
        def look():
            for node in self.nodes():
                if node.name.startswith(name) and (role is None or node.getRoleName() == role):
                    if node.getState().contains(pyatspi.STATE_SHOWING):
                        return node
            return None

        return eventually(f"“{name}”", look)

    def wait_for(self, name, count):
        """Until so many things of a name are shown."""
        def are_there():
            return sum(node.name.startswith(name) and node.getState().contains(pyatspi.STATE_SHOWING)
                       for node in self.nodes()) == count

        eventually(f"{count} of “{name}”", are_there)

    def place(self, name, role=None):
        extents = self.find(name, role).queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        lengths = extents.x, extents.y, extents.width, extents.height
        return tuple(length * self.pixels_per_unit for length in lengths)

    def click(self, name, role=None):
        x, y, width, height = self.place(name, role)
        self.press(x + width / 2, y + height / 2)

    @staticmethod
    def do(*arguments):
        subprocess.run(["xdotool", *[str(argument) for argument in arguments]], check=True)

    def press(self, x, y):
        self.do("mousemove", "--sync", round(x), round(y), "click", 1)

    def hold(self, x0, y0, x1, y1):
        """A drag that goes on."""
        self.do("mousemove", "--sync", round(x0), round(y0), "mousedown", 1)
        for step in range(1, 11):
            self.do("mousemove", "--sync", round(x0 + (x1 - x0) * step / 10), round(y0 + (y1 - y0) * step / 10))

    def drag(self, x0, y0, x1, y1):
        self.hold(x0, y0, x1, y1)
        self.do("mouseup", 1)

    def plot(self, name="Speed curve"):
        """Left, top, width and height of the graph's plot, once it no longer moves."""
        last = None
        while last != (last := self.place(name)):
            time.sleep(0.5)
        x, y, width, height = last
        return x + 44 * self.scale, y + 16 * self.scale, width - 88 * self.scale, height - 24 * self.scale

    def key(self, *keys):
        self.do("key", "--delay", 40, *keys)
