"""Starts Chromium, Firefox or WebKit on an address, in a window on the display, drawn in software.

The window shows the page and nothing else, and takes any size that it is given.
The profile is a fresh one, and nothing but this machine is asked for anything.
"""

import contextlib
import glob
import math
import os
import pathlib
import queue
import signal
import subprocess
import tempfile
import time

NOWHERE = "127.0.0.1:9"  # the proxy for all addresses but this machine's own

CHROMIUM_FLAGS = ("--no-sandbox --no-first-run --test-type --disable-dev-shm-usage "
                  "--disable-background-networking --disable-component-update --disable-sync "
                  "--use-angle=swiftshader --enable-unsafe-swiftshader "
                  f"--force-device-scale-factor=1 --proxy-server={NOWHERE}").split()

FIREFOX_PREFERENCES = """
user_pref("webgl.force-enabled", true);
user_pref("layout.css.devPixelsPerPx", "1.0");
user_pref("dom.max_script_run_time", 0);
user_pref("network.proxy.type", 1);
user_pref("network.proxy.http", "127.0.0.1");
user_pref("network.proxy.http_port", 9);
user_pref("network.proxy.ssl", "127.0.0.1");
user_pref("network.proxy.ssl_port", 9);
user_pref("browser.aboutwelcome.enabled", false);
user_pref("browser.shell.checkDefaultBrowser", false);
user_pref("browser.sessionstore.resume_from_crash", false);
user_pref("datareporting.policy.dataSubmissionEnabled", false);
user_pref("toolkit.telemetry.reportingpolicy.firstRun", false);
"""

# Without a window manager it does not always draw all of a window that has grown.
FIREFOX_WINDOW = """{"chrome://browser/content/browser.xhtml": {"main-window": {
    "screenX": "0", "screenY": "0", "width": "1280", "height": "1024", "sizemode": "normal"}}}"""


def _chromium(profile, address):
    # On a display, Mesa draws three times as fast as Chromium's own software does.
    return ["chromium", *CHROMIUM_FLAGS, "--use-angle=gl", "--ignore-gpu-blocklist",
            f"--user-data-dir={profile}", "--kiosk", "--window-position=0,0",
            "--window-size=1280,1024", address]


def _firefox(profile, address):
    pathlib.Path(profile, "user.js").write_text(FIREFOX_PREFERENCES, encoding="ascii")
    pathlib.Path(profile, "xulstore.json").write_text(FIREFOX_WINDOW, encoding="ascii")
    return ["firefox-esr", "--no-remote", "--kiosk", "--profile", profile, address]


def _webkit(_, address):
    programs = glob.glob("/usr/lib/*/webkit2gtk-4.1/MiniBrowser")
    if not programs:
        raise FileNotFoundError("there is no MiniBrowser: install libwebkit2gtk-4.1-0")
    return [programs[0], "--full-screen", address]


BROWSERS = {"chromium": _chromium, "firefox": _firefox, "webkit": _webkit}


def environment(home):
    """A browser's: it keeps everything in this folder."""
    return {**os.environ, "HOME": home, "TMPDIR": home, "XDG_CONFIG_HOME": home,
            "XDG_DATA_HOME": home, "XDG_CACHE_HOME": home, "LIBGL_ALWAYS_SOFTWARE": "1",
            "http_proxy": f"http://{NOWHERE}", "no_proxy": "127.0.0.1"}


@contextlib.contextmanager
def browser(name, server, page=""):
    """Shows a page of the server's until the `with` block ends. Yields a function that returns the
    next path and content that the page posts; where that takes longer than so many seconds it raises
    TimeoutError, where the browser ends ChildProcessError, with the last of what it complained of."""
    with tempfile.TemporaryDirectory(prefix="talvery-", ignore_cleanup_errors=True) as home:
        complaints = pathlib.Path(home, "complaints.txt")
        with complaints.open("wb") as out:
            process = subprocess.Popen(BROWSERS[name](home, server.address + page),
                                       env=environment(home), stdout=subprocess.DEVNULL,
                                       stderr=out, start_new_session=True)

        def posted(patience=math.inf):
            end = time.monotonic() + patience
            while time.monotonic() < end:
                with contextlib.suppress(queue.Empty):
                    return server.posted.get(timeout=1)
                if process.poll() is not None:
                    last = complaints.read_text("utf-8", "replace")[-500:]
                    raise ChildProcessError(f"{name} ended: {last}")
            raise TimeoutError(f"{name} sent nothing for {patience} s")

        try:
            yield posted
        finally:
            # Its helpers with it, also those that stay when it goes.
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGTERM)
                with contextlib.suppress(subprocess.TimeoutExpired):
                    process.wait(10)
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()
