#!/usr/bin/env python3
"""Draws scenes of the game in a browser and looks for what differs from the desktop's pictures.

Usage: pictures.py chromium|firefox|webkit FOLDER_OF_SHOTS_JS DESKTOP_FOLDER PICTURE_FOLDER

Leaves the browser's pictures and worst.png: the worst one as desktop, browser, difference.
"""

import os
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))
from browsers import browser
from site_server import SiteServer

PATIENCE = 300  # seconds, for the next thing that the page sends
TILES = "20x16!"  # of 64x64 pixels
VISIBLE = "5%"  # a difference in one of a pixel's three values
ALLOWED = 0.005  # of the pixels may have one;
ALLOWED_THERE = 0.03  # and this part of any tile


def draw(name, program, folder):
    """Keeps the pictures that the page sends, until it says that the program has ended."""
    with SiteServer(ROOT / "tests/web", program) as server, \
            browser(name, server, "pictures.html") as posted:
        while True:
            path, content = posted(PATIENCE)
            if path.endswith(".ppm"):
                (folder / path.strip("/")).write_bytes(content)
            elif (path, content) == ("/end", b"0"):
                return
            else:
                sys.exit(f"{name}: {path} {content.decode()}")


def compare(desktop, drawn):
    """The part of all pixels that visibly differ, and that of the worst tile."""
    answer = subprocess.run(
        ["convert", desktop, drawn, "-compose", "difference", "-composite",
         "-grayscale", "Brightness", "-threshold", VISIBLE, "-format", "%[fx:mean] ",
         "-write", "info:", "-scale", TILES, "-format", "%[fx:maxima]", "info:"],
        check=True, stdout=subprocess.PIPE, text=True).stdout
    return tuple(map(float, answer.split()))


def main(name, program, desktop, folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    os.environ["LC_ALL"] = "C"  # a Turkish one has no info:
    draw(name, program, folder)
    sizes, wanted = ({file.name: file.stat().st_size for file in pictures.iterdir()}
                     for pictures in (folder, desktop))
    if sizes != wanted:
        sys.exit(f"{name} drew {sizes}, the desktop {wanted}")

    table = []
    for file in folder.iterdir():
        everywhere, worst = compare(desktop / file.name, file)
        table.append((max(everywhere / ALLOWED, worst / ALLOWED_THERE), everywhere, worst, file))
    table.sort(reverse=True)
    print("  in all  worst tile, % of the pixels")
    for _, everywhere, worst, file in table:
        print(f"{100 * everywhere:8.3f}    {100 * worst:8.3f}  {file.stem}")

    excess, *_, file = table[0]
    pair = [desktop / file.name, file]
    subprocess.run(["convert", *pair, "(", *pair, "-compose", "difference", "-composite", ")",
                    "+append", folder / "worst.png"], check=True)
    if excess > 1:
        sys.exit(f"look at {folder}/worst.png: of the pixels {100 * ALLOWED} % may differ by more "
                 f"than {VISIBLE}, in each tile {100 * ALLOWED_THERE} %")


if __name__ == "__main__":
    main(sys.argv[1], *map(pathlib.Path, sys.argv[2:]))
