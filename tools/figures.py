"""Measures the site in Chromium: see tools/figures, which builds it.

Usage: figures.py SITE
"""

import contextlib
import os
import pathlib
import re
import statistics
import sys

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.support.wait import WebDriverWait

from driver import driven
from site_server import SiteServer

WATCH = pathlib.Path(__file__).parents[1] / "tests" / "web" / "watch.js"
SECONDS = 60  # the longest that the title may take in a slow software drawing
FRAMES = 60
VISITS = 5    # besides the first, which loads the files


def visit(driver, address):
    """Seconds from navigation to the title."""
    driver.get(address)
    WebDriverWait(driver, SECONDS, 0.05).until(
        lambda _: driver.execute_script("return watched.frames > 2"))
    return driver.execute_script("return watched.first") / 1000


def step(driver, count, drawn):
    return driver.execute_script("return watched.step(...arguments)", count, drawn)


def frame(driver, name):
    """Prints what a frame is. What is drawn is left out: in software it takes many times what the
    program itself does. Each is asked for by itself, so that none waits for what the one before
    left to be done."""
    frames = [step(driver, 1, False)[0] for _ in range(FRAMES)]
    ms, calls = (statistics.median(one[key] for one in frames) for key in ("ms", "calls"))
    vertices = driver.execute_script("return watched.vertices()")
    print(f"{name}: {ms:.1f} ms a frame without the drawing, {calls:.0f} draw calls, "
          f"{vertices} distinct vertices")


def megabytes(driver, kind):
    """What the largest process of this kind holds, its share of what processes share included."""
    browser = os.getsid(driver.capabilities["goog:processID"])
    held = [0]
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):  # it has ended, or is another user's
            if (os.getsid(int(process.name)) == browser
                    and f"--type={kind}" in (process / "cmdline").read_text(encoding="utf-8")):
                rollup = (process / "smaps_rollup").read_text(encoding="ascii")
                held.append(int(re.search(r"^Pss:\s+(\d+)", rollup, re.MULTILINE)[1]))
    return max(held) / 1000


with SiteServer(sys.argv[1]) as server, driven("chromium") as driver:
    server.scripts = [WATCH]
    driver.set_window_size(1280, 1024)
    visit(driver, server.address)
    seconds = statistics.median(visit(driver, server.address) for _ in range(VISITS))
    print(f"the title {seconds:.1f} s after navigation, files kept")
    frame(driver, "title")
    ActionChains(driver).send_keys("p").perform()
    step(driver, FRAMES, False)
    step(driver, 1, True)
    frame(driver, "town")
    print(f"the tab holds {megabytes(driver, 'renderer'):.0f} MB, and the process that draws for "
          f"all tabs (here in software) {megabytes(driver, 'gpu-process'):.0f} MB")
