#!/usr/bin/env python3
"""Shows the site in a browser that takes the whole display and all keys, as the program would. Ends
with status 0 when the page says that the game has ended, otherwise with 1 and the page's words.

Usage: browser_window.py chromium|firefox|webkit [SITE]
SITE is the folder that tools/web makes; without it, the current one.
"""

import contextlib
import pathlib
import signal
import subprocess
import sys

from browsers import BROWSERS, browser
from site_server import SiteServer

REPORTS = pathlib.Path(__file__).with_name("page_reports.js")
TAKE_DISPLAY = ("xdotool search --onlyvisible --limit 1 --name Talvery "
                "windowmove 0 0 windowsize 100% 100% windowfocus").split()


def take_display():
    """As a window manager would. A window that is new may go back to a size of its own, so this is
    done again when the game runs."""
    with contextlib.suppress(subprocess.TimeoutExpired):
        subprocess.run(TAKE_DISPLAY, stderr=subprocess.DEVNULL, timeout=10, check=False)


def play(name, site):
    """Returns the last words of the page."""
    with SiteServer(site) as server:
        server.scripts.append(REPORTS)
        with browser(name, server) as posted:
            while True:
                path, words = posted()
                state, words = path.strip("/"), words.decode()
                if state == "console":
                    print(words, flush=True)
                elif state in ("off", "loading", "running"):
                    take_display()
                else:
                    return words


def main():
    if len(sys.argv) not in (2, 3) or sys.argv[1] not in BROWSERS:
        sys.exit(__doc__)
    # The browser is ended with it.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    try:
        words = play(sys.argv[1], *sys.argv[2:] or ["."])
    except (OSError, subprocess.SubprocessError) as reason:
        words = str(reason)
    if not words.startswith("The game has ended."):
        sys.exit(f"browser_window.py: {words}")


if __name__ == "__main__":
    main()
