"""Chromium and WebKit, driven by Selenium through the drivers that Debian has for them."""

import contextlib
import os
import signal
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service as ChromiumService
from selenium.webdriver.chromium.remote_connection import ChromiumRemoteConnection
from selenium.webdriver.webkitgtk.options import Options as WebKitOptions
from selenium.webdriver.webkitgtk.service import Service as WebKitService

from browsers import CHROMIUM_FLAGS, environment


@contextlib.contextmanager
def driven(name):
    """The driver of chromium, which shows no window, or of webkit, which needs a display, until the
    `with` block ends. The profile is a fresh one."""
    with tempfile.TemporaryDirectory(prefix="talvery-", ignore_cleanup_errors=True) as home:
        how = {"env": environment(home), "popen_kw": {"start_new_session": True}}
        # The drivers' paths are given, or Selenium would look for newer ones elsewhere.
        if name == "chromium":
            service = ChromiumService("/usr/bin/chromedriver", **how)
            options = webdriver.ChromeOptions()
            for flag in (*CHROMIUM_FLAGS, "--headless=new", "--hide-scrollbars"):
                options.add_argument(flag)
        else:
            service = WebKitService("/usr/bin/WebKitWebDriver", **how)
            options = WebKitOptions()
        service.start()
        try:
            connection = ChromiumRemoteConnection(service.service_url, "goog", name,
                                                  ignore_proxy=True)
            driver = webdriver.Remote(connection, options=options)
            try:
                yield driver
            finally:
                driver.quit()
        finally:
            # Whatever is left of the browser, with it.
            os.killpg(service.process.pid, signal.SIGKILL)
            service.process.wait()


def cdp(driver, command, **words):
    """Calls Chromium's own protocol, for what the other browsers can't."""
    return driver.execute("executeCdpCommand", {"cmd": command, "params": words})["value"]
