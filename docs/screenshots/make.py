#!/usr/bin/python3
"""Takes pictures of the window's states; make brings a display for it.

  make.py FLOWTIDE CLIP SCALE FOLDER [LAST] WORK

`LAST`: the state with which to stop.
Pictures are called after their state; at a scale other than 1 they end in "@SCALE".
"""
import os
import shutil
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "tests", "window"))
from person import ONE_X, Window, eventually  # noqa: E402


class Photographer:
    def __init__(self, program, scale, folder, last):
        self.last = last
        self.program = program
        self.scale = scale
        self.folder = folder
        self.window = Window("Flowtide", float(scale))
        self.process = None

    def start(self, *arguments, size=(1440, 900)):
        environment = {**os.environ, "QT_SCALE_FACTOR": self.scale}
        self.process = subprocess.Popen([self.program, *arguments], env=environment, stdout=subprocess.DEVNULL)
        self.window.find("Top bar")
        found = eventually("the window", lambda: subprocess.run(
            ["xdotool", "search", "--onlyvisible", "--class", "Flowtide"], capture_output=True, text=True).stdout.split())
        self.id = found[-1]
        pixels = [round(length * float(self.scale)) for length in size]

        self.window.pixels_per_unit = 1

        def width_in_tree():
            self.window.do("windowsize", self.id, *pixels)
            width = self.window.place("Top bar")[2]
            return width if width in (pixels[0], size[0]) else None

        self.window.pixels_per_unit = pixels[0] / eventually("the window's size", width_in_tree)

    def end(self):
        self.process.terminate()
        self.process.wait()

    def take(self, name, share="50%", whole=False, after=1.5):
        """A picture, `after` so many seconds in which things fade in. After the last one that is wanted it ends all."""
        time.sleep(after)
        end = "" if float(self.scale) == 1 else "@" + self.scale
        file = os.path.join(self.folder, name + end + ".png")
        subprocess.run(["import", "-window", "root" if whole else self.id, "-resize", share, "-depth", "8",
                        "-colors", "255", "PNG8:" + file], check=True)
        if name == self.last:
            self.end()
            sys.exit()


def main(program, clip, scale, folder, *last_and_work):
    *last, work = last_and_work
    os.makedirs(folder, exist_ok=True)
    camera = Photographer(program, scale, folder, last[0] if last else None)
    window = camera.window
    copy = os.path.join(work, os.path.basename(clip))
    shutil.copy(clip, copy)
    with open(os.path.join(work, "broken.mov"), "wb") as broken:
        broken.write(b"no film")

    camera.start()
    window.find("Open a video to edit")
    camera.take("start-empty")
    camera.end()

    camera.start(copy)
    left, top, width, height = window.plot()
    line = top + height * ONE_X
    ramp = ((0.1, 0.62), (0.25, 0.2), (0.42, 0.14), (0.53, 0.88), (0.7, 0.88), (0.75, 0.3), (0.9, 0.3))
    # While the curve is a line it is known where it can be pressed.
    for at, _ in ramp:
        window.press(left + width * at, line)
    for at, value in ramp:
        window.drag(left + width * at, line, left + width * at, top + height * value)
    for at in (0.2, 0.6):
        window.press(left + width * at, top + height * 0.02)
        time.sleep(0.5)  # the window manager holds a click back for a moment, but no key
        window.key("z")
    window.click("Render all ranges", "push button")
    time.sleep(2)
    camera.take("workspace", "100%")

    window.hold(left + width * 0.42, top + height * 0.14, left + width * 0.46, top + height * 0.19)
    camera.take("drag")
    window.do("mouseup", 1)
    window.key("ctrl+z", "v", "Tab")
    camera.take("framing")
    window.click("Framing", "radio button")
    window.click("Track subject", "push button")
    window.wait_for("Draw a tight box", 2)  # the hint beside it says so all the time
    px, py, pwidth, pheight = window.place("Picture")
    window.drag(px + pwidth * 0.25, py + pheight * 0.25, px + pwidth * 0.62, py + pheight * 0.8)
    camera.take("tracking", after=0.2)  # of a few seconds' clip it takes less than one
    window.find("Tracking complete")
    camera.take("tracked")
    window.key("Escape", "Escape")
    window.click("Speed", "radio button")
    window.key("Tab", "v", "ctrl+f")
    window.find("Full-screen preview")
    camera.take("full-screen", whole=True)
    window.key("Escape")
    window.click("Compare")
    camera.take("compare")
    window.key("Escape")
    window.key("question")
    camera.take("shortcuts")
    window.key("Escape", "ctrl+e")
    window.find("File name", "text")
    window.do("type", "--delay", 10, os.path.join(work, "retimed.mp4"))
    window.key("Return")
    camera.take("exporting")
    window.key("ctrl+q")
    camera.take("closing")
    window.key("Escape")
    window.find("Last export verified")
    camera.take("verified")
    window.key("Escape")
    window.do("windowsize", "--sync", camera.id, *[round(length * float(scale)) for length in (1024, 700)])
    camera.take("narrow")
    camera.end()

    camera.start(os.path.join(os.path.dirname(copy), "broken.mov"))
    window.find("OK", "push button")
    camera.take("alert")
    camera.end()

    # The start screen with a project in its list.
    os.rename(copy, copy + ".gone")
    camera.start()
    camera.take("relink")
    camera.end()


if __name__ == "__main__":
    main(*sys.argv[1:])
