#!/usr/bin/python3
"""Does a whole job in the real window as a person would, by mouse and keys, and looks at the file that comes of it.

  whole_job.py FLOWTIDE FOLDER

Needs a display with a window manager and a session bus (run_on_display brings all three). What is where comes from the
accessibility tree, so that every control that is used has its name there; at the end every control is asked for one.
"""
import json
import os
import subprocess
import sys

import pyatspi
from person import ONE_X, PATIENCE_SECONDS, Window, fail

CONTROLS = {"push button", "check box", "radio button", "slider", "text", "combo box", "spin button", "toggle button"}


def probed(file):
    answer = subprocess.run(
        ["ffprobe", "-v", "error", "-of", "json", "-show_streams", "-show_format", file],
        check=True, capture_output=True, text=True)
    return json.loads(answer.stdout)


def main(program, folder):
    subprocess.run([program, "demo", folder], check=True, stdout=subprocess.DEVNULL)
    clip = os.path.join(folder, "demo.mov")
    export = os.path.join(folder, "out.mov")
    before = open(clip, "rb").read()
    source = probed(clip)["streams"][0]

    process = subprocess.Popen([program, clip])
    window = Window("Flowtide")

    # A ramp: a point on the line at 1x, dragged down to slow motion.
    window.find("demo.mov")
    left, top, width, height = window.plot()
    window.drag(left + width * 0.5, top + height * ONE_X, left + width * 0.5, top + height * 0.7)
    window.find("Point 2 of 3, ", "list item")
    # A zoom block at the playhead, and a crop to 9:16.
    window.press(left + width * 0.2, top + height * 0.95)
    window.key("z", "v")
    window.find("Zoom block ", "list item")
    # The subject.
    window.click("Framing", "radio button")
    window.click("Track subject", "push button")
    window.wait_for("Draw a tight box", 2)  # the hint beside it says so all the time
    px, py, pwidth, pheight = window.place("Picture")
    window.drag(px + pwidth * 0.4, py + pheight * 0.35, px + pwidth * 0.55, py + pheight * 0.6)
    window.find("Tracking ")

    # The export, through the file dialog.
    window.key("Escape")
    window.key("ctrl+e")
    window.find("File name", "text")
    window.do("type", "--delay", 10, export)
    window.key("Return")
    window.find("Last export verified")

    nameless = [node for node in window.nodes() if node.getRoleName() in CONTROLS and not node.name]
    if nameless:
        fail("controls without a name: " + ", ".join(
            f"{node.getRoleName()} at {node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)}" for node in nameless))

    window.key("ctrl+q")
    if process.wait(timeout=PATIENCE_SECONDS) != 0:
        fail(f"the program ended with {process.returncode}")

    made = probed(export)
    video = made["streams"][0]
    if video["height"] != source["height"] or abs(video["width"] / video["height"] - 9 / 16) > 0.01:
        fail(f"the export is {video['width']} × {video['height']}")
    if float(made["format"]["duration"]) < float(source["duration"]) * 1.1:
        fail("the export is not slower than its clip")
    if open(clip, "rb").read() != before:
        fail("the clip was touched")
    print("whole_job: done")


if __name__ == "__main__":
    main(*sys.argv[1:])
