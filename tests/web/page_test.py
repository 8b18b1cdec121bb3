"""What the page says and does, in a browser: a usual visit, and each thing that may go wrong.

Usage: page_test.py chromium|webkit SITE PICTURE_FOLDER [TEST...]
WebKit needs a display. The pictures are for looking at; failed.png is of what was waited for.
"""

import contextlib
import hashlib
import pathlib
import re
import sys
import tempfile
import threading
import time
import unittest

from selenium.common.exceptions import TimeoutException, WebDriverException
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

from driver import cdp, driven
from site_server import SiteServer

ENGINE = sys.argv[1]
SITE, PICTURES = (pathlib.Path(word).resolve() for word in sys.argv[2:4])
WATCH = pathlib.Path(__file__).with_name("watch.js")
SECONDS = 60       # the longest that anything may take in a slow software drawing
DRAW_CALLS = 1000  # in a frame, at the most
VERTICES = 200_000
# Runs before a page that is to keep nothing.
NO_WORKER = "Object.defineProperty(navigator, 'serviceWorker', {value: undefined})"


def chromium_only(why):
    return unittest.skipUnless(ENGINE == "chromium", why)


class PageTest(unittest.TestCase):
    """Each test has a window of its own, and a server that does all as it should."""

    @classmethod
    def setUpClass(cls):
        """A game that does not start needs no more tests."""
        first = cls()
        first.setUp()
        try:
            first.open()
        finally:
            first.doCleanups()

    def setUp(self):
        # What a test puts here lies over the site.
        self.over = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.server = self.enterContext(SiteServer(self.over, SITE.parent))
        window = self.browser.current_window_handle
        self.browser.switch_to.new_window("window")
        self.addCleanup(self.browser.switch_to.window, window)
        self.addCleanup(self.browser.close)
        self.browser.set_window_rect(width=1280, height=1024)

    # --- What a test does --------------------------------------------------------------

    def visit(self, before=None, kept=False):
        """Opens the page, from a folder of the server's, and runs a script before it does anything;
        without the files that the browser has kept, if they need not be."""
        if ENGINE == "chromium" and not kept:
            cdp(self.browser, "Network.clearBrowserCache")
        self.server.requests.clear()
        self.server.scripts = [WATCH]
        if before:
            self.server.scripts.append(self.over / "before.js")
            self.server.scripts[1].write_text(before, encoding="utf-8")
        self.browser.get(f"{self.server.address}{SITE.name}/")

    def open(self, **how):
        """Opens the page and waits for the game."""
        self.visit(**how)
        self.runs()

    def call(self, script, *words):
        """What this script returns in the page, or what that promises."""
        return self.browser.execute_script(script, *words)

    def step(self, count, ms=17, drawn=False, matrices=False):
        """So many frames: what each took."""
        return self.call("return watched.step(...arguments)", count, drawn, ms, matrices)

    def click(self, name):
        self.browser.find_element(By.ID, name).click()

    def again(self, key=None):
        """Presses the button under what the page says, or a key instead, and waits for the game."""
        self.call("document.body.dataset.state = 'pressed'")
        self.press(key) if key else self.click("again")
        self.runs()

    def press(self, *keys):
        """By real key events."""
        ActionChains(self.browser).send_keys(*keys).perform()

    def key(self, kind, **event):
        """By an event that no driver makes; whether the page takes it from the browser."""
        return not self.call("""
            return document.activeElement.dispatchEvent(
                new KeyboardEvent(arguments[0], {bubbles: true, cancelable: true, ...arguments[1]}))
            """, kind, event)

    def picture(self, name):
        time.sleep(0.2)  # what the page says may not be drawn yet
        self.browser.save_screenshot(str(PICTURES / f"{name}.png"))

    # --- What it looks for -------------------------------------------------------------

    def wait(self, what, script, *words):
        """What this script returns, as soon as it is true. While a page makes room for the next one
        it may fail."""
        waiting = WebDriverWait(self.browser, SECONDS, 0.05, [WebDriverException])
        with contextlib.suppress(TimeoutException):
            return waiting.until(lambda _: self.call(script, *words))
        self.picture("failed")
        return self.fail(f"waited in vain for {what}; the page says: {self.said()}")

    def said(self):
        return self.call("return document.querySelector('.card').innerText")

    def runs(self):
        """Waits for the first frame, before which nothing has gone wrong."""
        state = self.wait("the first frame", """
            const {state} = document.body.dataset;
            const over = ['stopped', 'failed'].includes(state);
            return over || (state === 'running' && watched.frames > 0) ? state : ''""")
        self.assertEqual(state, "running", self.said())
        self.assertEqual(self.call("return watched.errors"), [])

    def says(self, text, picture):
        """Waits until the page says this, a regular expression, and takes a picture of it."""
        self.wait(f"'{text}'", "return document.body.innerText.match(arguments[0])", text)
        self.picture(picture)

    def asked(self, part):
        """What the server was asked for with this in the path: files without their hashes."""
        return sorted(re.sub(r".*/|\.\w{12}(?=\.)", "", path)
                      for path in self.server.requests if part in path)

    def view(self):
        """The camera's matrix in the next frame, which follows that of the panels."""
        matrices = self.step(1, matrices=True)[0]["matrices"]["projection"]
        return [float(number) for number in matrices.split(",")[16:32]]

    def changes(self, name):
        """Whether these matrices of the shaders change from one frame to the next."""
        one, other = (frame["matrices"].get(name) for frame in self.step(2, matrices=True))
        return one != other

    # --- A visit -----------------------------------------------------------------------

    def test_visit(self):
        seen = threading.Event()
        self.server.fault = lambda path: "house" in path and not seen.wait(SECONDS) or None
        self.visit()
        self.says(r"\d of 10\.\d MB", "loading")
        seen.set()
        self.runs()
        self.assertEqual(len(self.asked("/data/")), 29)
        self.assertEqual(self.browser.title, "Talvery")

    @chromium_only("WebKit keeps no files while it is driven")
    def test_second_visit_loads_nothing(self):
        self.open()
        self.open(kept=True)
        self.assertEqual(self.asked("/data/"), [])

    def test_server_that_allows_only_its_own_scripts(self):
        self.server.headers = {"Content-Security-Policy":
                               "default-src 'self'; script-src 'self' 'wasm-unsafe-eval'"}
        self.open()

    def test_keys_of_the_game_and_of_the_browser(self):
        self.open()
        keys = [" ", "/", "'", "w", "Enter", "F5", "Tab"]
        self.assertEqual([key for key in keys if self.key("keydown", key=key)], keys[:5])
        self.assertFalse(self.key("keydown", key="r", ctrlKey=True))
        self.assertFalse(self.call("return document.getElementById('canvas').dispatchEvent("
                                   "new MouseEvent('contextmenu', {cancelable: true}))"))

    def test_keys_of_another_alphabet(self):
        self.open()
        self.step(1)
        self.assertFalse(self.changes("model"))
        self.key("keydown", key="т", code="KeyN")
        self.assertTrue(self.changes("model"), "the cube turns")
        self.step(200)
        self.assertFalse(self.changes("model"))
        self.key("keyup", key="т", code="KeyN", ctrlKey=True)
        self.assertTrue(self.changes("model"), "it turns when the key is let go of, too")

    def test_button_that_is_let_go_of_elsewhere(self):
        self.open()
        self.step(1)
        self.press("p")
        self.step(3)
        self.assertFalse(self.changes("projection"))
        mouse = ActionChains(self.browser)
        mouse.click_and_hold(self.browser.find_element(By.ID, "canvas")).perform()
        self.assertTrue(self.changes("projection"), "the view zooms")
        self.call("document.activeElement.blur()")
        self.assertFalse(self.changes("projection"), "it rests when the game has lost the focus")
        mouse.reset_actions()

    def shows(self, width, height):
        """Waits for a picture of this size, and one that has it whole."""
        self.wait(f"{width}x{height}", """
            const [width, height] = arguments;
            return watched.step(1, false).then(() => {
                const gl = document.getElementById('canvas').getContext('webgl2');
                const [, , right, top] = gl.getParameter(gl.VIEWPORT);
                return gl.drawingBufferWidth === width && gl.drawingBufferHeight === height
                    && right === width && top === height;
            })""", width, height)

    def white_rows(self, left, top, right, bottom):
        """In which rows of this part of the picture, told in parts of 1, there is pure white."""
        return self.call("""
            const [left, top, right, bottom] = arguments;
            return watched.step(1, true).then(() => {
                const gl = document.getElementById('canvas').getContext('webgl2');
                const [w, h] = [gl.drawingBufferWidth, gl.drawingBufferHeight];
                const [width, height] = [(right - left) * w, (bottom - top) * h].map(Math.round);
                const pixels = new Uint8Array(4 * width * height);
                gl.readPixels(Math.round(left * w), Math.round((1 - bottom) * h), width, height,
                    gl.RGBA, gl.UNSIGNED_BYTE, pixels);
                const rows = new Set();
                for (let i = 0; i < pixels.length; i += 4) {
                    if (pixels[i] + pixels[i + 1] + pixels[i + 2] === 3 * 255) {
                        rows.add(Math.floor(i / 4 / width));
                    }
                }
                return [...rows];
            })""", left, top, right, bottom)

    def emulate(self, width, height, ratio, **more):
        cdp(self.browser, "Emulation.setDeviceMetricsOverride", width=width, height=height,
            deviceScaleFactor=ratio, **{"mobile": False, **more})

    @chromium_only("WebKit's driver has one display")
    def test_displays(self):
        self.open()
        self.press("p")
        for display, picture in {
                (1366, 650, 1): (2152, 1024), (1920, 1080, 1): (1920, 1080),
                (2560, 1440, 2): (2560, 1440), (390, 844, 3): (1280, 1024),
                (844, 390, 3): (2532, 1170), (700, 900, 1): (1280, 1024),
                (1400, 1000, 1.25): (1750, 1250)}.items():
            with self.subTest(display):
                self.emulate(*display)
                self.shows(*picture)
                rows = self.white_rows(0.73, 0.81, 0.91, 0.95)
                lines = sum(row - 1 not in rows for row in rows)
                self.assertGreaterEqual(lines, 3, "the panel's lines run into each other")
                self.picture(f"display-{display[0]}x{display[1]}")

    def test_size(self):
        self.open()
        self.browser.set_window_rect(width=700, height=900)
        self.shows(1280, 1024)

    def test_display_that_is_faster_than_the_game(self):
        self.open()
        drawn = sum(frame["calls"] > 0 for frame in self.step(144, 1000 / 144))
        self.assertTrue(55 < drawn <= 61, f"{drawn} frames in a second")

    def test_frames_make_nothing_and_take_few_draw_calls(self):
        self.open()
        for place, key in (("title", ""), ("town", "p")):
            self.press(key)
            self.step(60)
            frames = self.step(60)
            self.assertEqual(max(frame["created"] for frame in frames), 0, place)
            calls = max(frame["calls"] for frame in frames)
            self.assertTrue(0 < calls <= DRAW_CALLS, f"{place}: {calls} draw calls")
            vertices = self.call("return watched.vertices()")
            self.assertTrue(0 < vertices <= VERTICES, f"{place}: {vertices} vertices")

    def test_end_and_another_round(self):
        self.open()
        self.press(Keys.ESCAPE)
        self.says("The game has ended. Another round?", "ended")
        self.again(Keys.ENTER)

    def test_buttons_leave_the_keys_to_the_game(self):
        self.open()
        self.click("keys")
        self.says("walk forward, back", "keys")
        self.says("Escape goes to the game" if ENGINE == "chromium" else "the first Escape", "keys")
        self.click("fullscreen")
        self.wait("the full screen", "return document.fullscreenElement")
        self.says("Leave full screen", "full-screen")
        self.assertEqual(self.call("return document.activeElement.id"), "canvas")
        self.click("fullscreen")
        self.wait("the window", "return !document.fullscreenElement")
        self.browser.set_window_rect(width=700, height=450)
        self.press(Keys.PAGE_DOWN)
        self.wait("the rest of the help", "return document.getElementById('page').scrollTop > 100")
        self.key("keydown", key="W", modifierCapsLock=True)
        self.says("Caps lock is on", "caps-lock")

    # --- Held keys, thumbs and gamepads ------------------------------------------------

    def test_held_key_repeats_by_the_games_own_count(self):
        self.open()
        self.press("p")
        self.step(5)
        self.key("keydown", key="s", code="KeyS")
        views = []
        for _ in range(10):
            self.key("keydown", key="s", code="KeyS", repeat=True)
            views.append(self.step(1, matrices=True)[0]["matrices"]["projection"])
        moved = [one != other for one, other in zip(views, views[1:])]
        self.assertEqual(moved, [False, True] * 4 + [False])

    def plays_to_a_talk(self, hold):
        """From the start of the town, by holding what walks and turns for so many frames."""
        hold("s", 4)
        hold("d", 64)
        for _ in range(20):
            hold("w", 10)
            if len(self.white_rows(0, 0, 0.2, 0.04)) > 10:
                return
        self.picture("failed")
        self.fail("no talk has begun")

    def scene(self):
        return self.call("return document.body.dataset.scene")

    @chromium_only("WebKit's driver has no fingers")
    def test_round_by_touch(self):
        for width, height in ((844, 390), (390, 844)):
            with self.subTest(f"{width}x{height}"):
                self.emulate(width, height, 3, mobile=True)
                cdp(self.browser, "Emulation.setTouchEmulationEnabled", enabled=True)
                self.open()
                self.step(1, drawn=True)
                self.play_by_touch(f"phone-{width}")

    def play_by_touch(self, name):
        names = {"w": "walk forward", "s": "walk back", "a": "turn left", "d": "turn right",
                 ",": "glide left", "go": "go, make the move"}

        def hold(key, frames=3):
            self.check_buttons()
            button = self.browser.find_element(
                By.CSS_SELECTOR, f"#touch > [data-in={self.scene()}] "
                                 f"[aria-label='{names.get(key, key)}']")
            box = button.rect
            point = box["x"] + box["width"] / 2, box["y"] + box["height"] / 2
            self.touch("Start", point)
            self.step(frames)
            self.touch("End")
            self.step(1)

        def move(*downs):
            for button in (*downs, "go"):
                hold(button)
            for _ in range(8):
                self.step(50)  # until both messages are gone

        self.picture(f"{name}-title")
        hold("start")
        self.step(5)
        self.look_by_touch()
        self.plays_to_a_talk(hold)
        self.picture(f"{name}-talk")
        self.step(100)
        hold("a", 64)
        hold("s", 32)
        hold(",", 84)
        hold("a", 32)
        while self.scene() == "town":
            hold("w", 10)
        self.step(2, drawn=True)
        self.picture(f"{name}-battle")
        self.key("keydown", key="s", code="KeyS")
        self.step(20)
        self.key("keyup", key="s", code="KeyS")
        options = (0, 0.81, 0.2, 0.95)
        second = self.white_rows(*options)
        hold("move below")
        self.assertNotEqual(self.white_rows(*options), second, "a held key chooses the next option")
        hold("move above")
        move()
        move("move below")
        move("move above", "move above")
        self.assertEqual(self.scene(), "town", "the battle is won")
        hold("back to the title")
        hold("end the game")
        self.says("The game has ended", f"{name}-ended")

    @chromium_only("WebKit's driver has one display")
    def test_thumbs_in_small_and_square_windows(self):
        self.open()
        self.step(1)
        for size in ((320, 320), (390, 400), (390, 480), (568, 320), (800, 800), (852, 852)):
            self.emulate(*size, 2, mobile=True)
            for scene in ("title", "town", "battle"):
                self.call("""
                    document.body.classList.add('touch');
                    document.body.dataset.scene = arguments[0]""", scene)
                with self.subTest(f"{size} {scene}"):
                    self.check_buttons()
            self.picture(f"thumbs-{size[0]}x{size[1]}")

    def touch(self, kind, *places):
        cdp(self.browser, "Input.dispatchTouchEvent", type=f"touch{kind}",
            touchPoints=[{"x": x, "y": y, "id": i} for i, (x, y) in enumerate(places)])

    def look_by_touch(self):
        """A finger moves the view by as much as itself, wherever the mouse was; two zoom."""
        ActionChains(self.browser).move_by_offset(7, 7).perform()
        before = self.view()
        self.touch("Start", (200, 150))
        self.touch("Move", (210, 150))
        moved = max(abs(one - other) for one, other in zip(before, self.view()))
        self.assertTrue(0.01 < moved < 1, f"the view is off by {moved}")
        self.touch("End")
        self.assertFalse(self.changes("projection"))
        one, other = self.call("""
            const finger = (type, pointerId, clientX) => document.getElementById('canvas').dispatchEvent(
                new PointerEvent(type, {pointerType: 'touch', pointerId, clientX, clientY: 150}));
            finger('pointerdown', 1, 150);
            finger('pointerdown', 2, 200);
            finger('pointermove', 2, 220);
            return watched.step(2, false, 17, true)""")
        self.assertNotEqual(one["matrices"], other["matrices"], "the view zooms")
        time.sleep(0.3)
        self.step(1)
        self.assertFalse(self.changes("projection"), "it rests with the fingers")
        self.call("""
            [1, 2].forEach((pointerId) => document.getElementById('canvas').dispatchEvent(
                new PointerEvent('pointerup', {pointerId})))""")
        touched = "return document.body.classList.contains('touch')"
        self.press(" ")
        self.assertFalse(self.call(touched), "a key takes the buttons away")
        self.touch("Start", (200, 150))
        self.touch("End")
        self.assertTrue(self.call(touched), "a touch brings them back")

    def check_buttons(self):
        """The buttons that show are large enough, in the window, named, and over no panel."""
        wrong = self.call("""
            const picture = document.getElementById('canvas').getBoundingClientRect();
            const panels = [[0, 0, 0.41, 0.15], [0, 0.81, 0.2, 0.95], [0.73, 0.81, 0.91, 0.95]];
            return [...document.querySelectorAll('#touch button')].filter((button) => {
                const {left, top, right, bottom, width, height} = button.getBoundingClientRect();
                return width > 0 && (width < 48 || height < 48 || left < 0 || top < 0
                    || right > innerWidth || bottom > innerHeight || !button.ariaLabel
                    || panels.some(([a, b, c, d]) =>
                        left < picture.width * c && right > picture.width * a
                        && top < picture.height * d && bottom > picture.height * b));
            }).map((button) => button.ariaLabel ?? button.outerHTML)""")
        self.assertEqual(wrong, [])

    def test_gamepad(self):
        self.open(before="""
            const pad = {mapping: 'standard', axes: [0, 0, 0, 0],
                buttons: Array.from({length: 17}, () => ({value: 0}))};
            navigator.getGamepads = () => [null, pad];
            window.pad = pad""")
        self.call("dispatchEvent(new Event('gamepadconnected'))")
        self.says("A gamepad is found", "gamepad")

        def hold(key, frames=3):
            where, number, value = {"a": ("buttons", 0, 1), "s": ("axes", 1, 1),
                                    "d": ("axes", 0, 1), "w": ("axes", 1, -1)}[key]
            push = "pad[arguments[0]][arguments[1]] = arguments[2]"
            self.call(push, where, number, {"value": value} if where == "buttons" else value)
            self.step(frames)
            self.call(push, where, number, {"value": 0} if where == "buttons" else 0)
            self.step(2)

        self.step(1)
        hold("a")
        self.step(5)
        self.plays_to_a_talk(hold)

    # --- Without a network -------------------------------------------------------------

    def kept(self):
        self.wait("the worker", """
            return navigator.serviceWorker.getRegistration().then((it) => it?.active)""")

    def test_game_is_kept_and_plays_without_a_network(self):
        self.open()
        self.kept()
        if ENGINE == "chromium":
            self.assertEqual(cdp(self.browser, "Page.getInstallabilityErrors"),
                             {"installabilityErrors": []})
        self.server.fault = lambda path: 503 if SITE.name in path else None
        self.open(kept=True)

    def deploy(self):
        """Puts a new version onto the server, whose page says so and which has one more file."""
        page, worker = ((SITE / name).read_text(encoding="utf-8")
                        for name in ("index.html", "service_worker.js"))
        page = page.replace("<head>", "<head><meta name='version' content='new'>", 1)
        index, more = (f"{name}.{hashlib.sha256(text.encode()).hexdigest()[:12]}.{kind}"
                       for name, text, kind in (("index", page, "html"), ("more", "more", "txt")))
        worker = re.sub(r"index\.\w+\.html", index, worker)
        worker = worker.replace("FILES = '", f"FILES = '{more} ", 1)
        (self.over / SITE.name).mkdir()
        for name, text in {"index.html": page, index: page, "service_worker.js": worker,
                           more: "more"}.items():
            (self.over / SITE.name / name).write_text(text, encoding="utf-8")

    def is_new(self):
        return self.call("return document.querySelector('meta[name=version]') !== null")

    def test_new_version_shows_when_it_is_there_as_a_whole(self):
        self.open()
        self.kept()
        self.deploy()
        for fault in ("broken", "half", None):  # in the end it comes whole
            self.server.fault = lambda path, fault=fault: fault if "more." in path else None
            self.open(kept=True)
            self.assertFalse(self.is_new())
            WebDriverWait(self.browser, SECONDS).until(lambda _: self.asked("more."))
        self.wait("the new version", """
            return caches.keys().then((names) => Promise.all(
                    names.map((cacheName) => caches.match('./', {cacheName}))))
                .then((pages) => pages.filter(Boolean).length === 2)""")
        self.server.fault = lambda path: 503 if SITE.name in path else None
        self.open(kept=True)
        self.assertTrue(self.is_new())

    # --- What may go wrong -------------------------------------------------------------

    def test_files_that_are_missing_or_damaged(self):
        faults = {"castleMAPPED": 404, "brick": "half"}
        self.server.fault = lambda path: next(
            (fault for name, fault in faults.items() if name in path), None)
        self.visit()
        self.says(r"castleMAPPED.obj \(the server answers 404", "missing")
        self.says(r"brick.bmp \(not whole", "missing")
        page = f"/{SITE.name}/"
        self.assertEqual(self.server.requests.count(page), 2, "the page itself may be an old one")
        faults.clear()
        self.again()

    def test_connection_that_breaks_off(self):
        self.server.fault = lambda path: "broken" if "brick" in path else None
        self.visit()
        self.says(r"brick.bmp \(the connection broke off", "broken")
        self.server.fault = lambda path: None
        self.server.requests.clear()
        self.again()
        self.assertEqual(self.asked("/data/"), ["brick.webp"])

    def test_page_that_was_kept_while_the_files_got_other_names(self):
        index = self.over / SITE.name / "index.html"
        index.parent.mkdir()
        self.server.fault = lambda path: path.endswith("gone") and index.unlink(True) or None
        for name in (r"brick\.\w+\.webp", r"page\.\w+\.css", r"talvery\.\w+\.js",
                     r"touch\.\w+\.js"):
            page = (SITE / "index.html").read_text(encoding="utf-8")
            index.write_text(re.sub(name, "gone", page), encoding="utf-8")
            self.open(before=NO_WORKER)
            self.assertEqual(self.server.requests.count(f"/{SITE.name}/"), 2, name)

    def test_page_without_its_script(self):
        self.server.fault = lambda path: 404 if re.search(r"(page|talvery)\..*js$", path) else None
        self.visit()
        self.says("load the page anew", "no-page-script")

    def test_picture_that_the_graphics_card_takes_away(self):
        self.open()
        self.call("""
            Promise.reject(new Error("an extension's"));  // which is not the game's affair
            document.getElementById('canvas').getContext('webgl2')
                .getExtension('WEBGL_lose_context').loseContext()""")
        self.says("The graphics card took its picture away", "lost")
        time.sleep(0.5)
        last = self.call("return watched.frames")
        time.sleep(0.5)
        self.assertEqual(self.call("return watched.frames"), last, "no turn is taken any more")
        self.again()

    def test_program_that_cannot_start(self):
        self.visit("WebAssembly.instantiate = () => Promise.reject(new Error('no room for it'))")
        self.says("no room for it", "stopped")

    def test_turn_that_fails(self):
        self.open()
        self.call("""
            WebGL2RenderingContext.prototype.clear = () => { throw new Error('no picture'); }""")
        self.says("The game had to stop: no picture", "stopped")

    def test_browser_without_webgl(self):
        self.visit("HTMLCanvasElement.prototype.getContext = () => null")
        self.says("draws with WebGL 2", "no-webgl")

    @chromium_only("WebKit's driver needs JavaScript")
    def test_browser_without_javascript(self):
        cdp(self.browser, "Emulation.setScriptExecutionDisabled", value=True)
        self.visit()
        self.says("JavaScript switched off", "no-script")

    def test_browser_that_alters_what_a_canvas_holds_or_keeps_it(self):
        for harm in ("image.data[0] ^= 1", "throw new Error('not for you')"):
            self.visit(f"""
                {NO_WORKER};
                const {{getImageData}} = CanvasRenderingContext2D.prototype;
                CanvasRenderingContext2D.prototype.getImageData = function(...words) {{
                    const image = getImageData.apply(this, words);
                    {harm};
                    return image;
                }}""")
            self.says("some browsers alter", "altered")
            self.runs()
            self.assertEqual(self.asked("brick"), ["brick.bmp", "brick.webp"])

    def test_page_that_was_opened_as_a_file(self):
        self.browser.get(f"{SITE.as_uri()}/index.html")
        self.says("Any web server will do", "file")


if __name__ == "__main__":
    PICTURES.mkdir(parents=True, exist_ok=True)
    with driven(ENGINE) as PageTest.browser:
        unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
