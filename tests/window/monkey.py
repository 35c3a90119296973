#!/usr/bin/python3
"""Uses the window at random, by mouse and keys, for as long as it is told to, and fails when the program ends.

  monkey.py FLOWTIDE SECONDS SEED CLIP FOLDER

For a build with a sanitizer: `run_on_display monkey.py build/asan/Flowtide 1800 1 CLIP`.
"""
import os
import random
import shutil
import subprocess
import sys
import time

KEYS = ["space", "j", "k", "l", "Left", "Right", "Up", "Down", "plus", "minus", "shift+Left", "shift+Right", "shift+z",
        "backslash", "q", "w", "z", "v", "Tab", "Delete", "BackSpace", "ctrl+z", "ctrl+shift+z", "ctrl+a", "ctrl+c",
        "ctrl+v", "Insert", "alt+Up", "alt+Down", "alt+Left", "alt+Right", "question", "Escape", "Escape", "ctrl+f",
        "ctrl+alt+s", "ctrl+alt+i", "F6", "shift+F6", "Return", "ctrl+s", "Home", "End", "5"]
SIZES = [(880, 568), (1000, 640), (1240, 720), (1440, 900), (1600, 960)]


def do(*arguments):
    subprocess.run(["xdotool", *[str(argument) for argument in arguments]], check=False, stderr=subprocess.DEVNULL)


def step(chance, window):
    place = chance.randrange(1600), chance.randrange(1000)
    kind = chance.random()
    if kind < 0.4:
        do("key", chance.choice(KEYS))
    elif kind < 0.6:
        do("mousemove", *place, "click", chance.choice([1, 1, 1, 3]))
    elif kind < 0.85:
        do("mousemove", *place, "mousedown", 1)
        for _ in range(chance.randrange(1, 6)):
            do("mousemove_relative", "--", chance.randrange(-200, 200), chance.randrange(-80, 80))
        do("mouseup", 1)
    elif kind < 0.95:
        hold = chance.choice(["ctrl", "shift", "alt"])
        do("mousemove", *place, "keydown", hold, "click", chance.choice([1, 4, 5]), "keyup", hold)
    else:
        do("windowsize", window, *chance.choice(SIZES))


def start(program, clip):
    """The program and its window."""
    process = subprocess.Popen([program, clip])
    while process.poll() is None:
        time.sleep(0.2)
        answer = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "Flowtide"], capture_output=True,
                                text=True, check=False)
        if found := answer.stdout.split():
            return process, found[-1]
    sys.exit(f"monkey: the program ended with {process.returncode} before its window came")


def main(program, seconds, seed, clip, folder):
    copy = os.path.join(folder, os.path.basename(clip))
    shutil.copy(clip, copy)
    process, window = start(program, copy)
    chance = random.Random(int(seed))
    end = time.monotonic() + float(seconds)
    steps = 0
    closed = 0
    while time.monotonic() < end:
        if process.poll():
            sys.exit(f"monkey: the program ended with {process.returncode} after {steps} steps")
        if process.poll() == 0:  # it has found the way out
            process, window = start(program, copy)
            closed += 1
        step(chance, window)
        steps += 1
    process.terminate()
    process.wait()
    print(f"monkey: {steps} steps, {closed} times it closed the window, and the window is still there")


if __name__ == "__main__":
    main(*sys.argv[1:])
