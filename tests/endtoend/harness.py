"""Drives the built wizard in a real window, as a person at the keyboard does.

Every test case gets a home folder of its own; the display and its window manager are started once for the process.
TYPEFORGE_BUILD names the folder with the programs.
"""
import atexit
import os
import re
import shutil
import subprocess
import tempfile
import time
import unittest

BUILD = os.environ["TYPEFORGE_BUILD"]
HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.dirname(os.path.dirname(HERE))
PATIENCE = 60  # seconds; only a failure ever waits that long
ERROR_BOX = "Typeforge Error"
EPOCH = "1700000000"


def wait_until(what, condition):
    """Polls for the condition's first true answer and gives it."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        answer = condition()
        if answer:
            return answer
        time.sleep(0.02)
    raise AssertionError("waited in vain for " + what)


class Display:
    """An X display with a window manager, on a number that the server finds free itself."""

    def __init__(self):
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
            pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as numbers:
            self.name = ":" + numbers.readline().strip()
        if self.name == ":":
            raise RuntimeError("Xvfb didn't start")
        self.environment = dict(os.environ, DISPLAY=self.name)
        self.manager = subprocess.Popen(["openbox", "--sm-disable"], env=self.environment,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        atexit.register(self.close)
        # Windows mapped before the window manager runs would never get the focus.
        wait_until("the window manager", lambda: self.ask("xdotool", "get_desktop"))

    def ask(self, *command):
        """What the command prints, or nothing where it fails."""
        done = subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=PATIENCE)
        return done.stdout.strip() if done.returncode == 0 else ""

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()


_display = None


def display():
    global _display
    if _display is None:
        _display = Display()
    return _display


class WizardTest(unittest.TestCase):
    """A test case with one wizard. Titles are whole window titles."""

    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="typeforge-")
        self.addCleanup(shutil.rmtree, self.home)
        self.environment = dict(
            display().environment, HOME=self.home, XDG_CONFIG_HOME=self.home + "/config",
            XDG_DATA_HOME=self.home + "/data", XDG_RUNTIME_DIR=self.home, TMP=self.home, ODBCINI=self.home + "/odbc.ini",
            SOURCE_DATE_EPOCH=EPOCH, QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8",
            LSAN_OPTIONS="print_suppressions=0:suppressions=" + HERE + "/leaks.supp")
        open(self.environment["ODBCINI"], "w").close()
        self.wizard = None

    def start(self, title="Typeforge - Introduction"):
        """Starts the wizard and waits for its first page."""
        log = open(self.home + "/wizard.log", "w")
        self.addCleanup(log.close)
        self.wizard = subprocess.Popen([BUILD + "/typeforge"], cwd=self.home, env=self.environment, stdout=log, stderr=log)
        self.addCleanup(self._stop, self.wizard)
        self.expect_title(title)

    def _stop(self, wizard):
        if wizard.poll() is None:
            wizard.kill()
        wizard.wait()

    def window(self, title):
        """The visible window of that title, or nothing."""
        return display().ask("xdotool", "search", "--onlyvisible", "--name", "^" + re.escape(title) + "$").split("\n")[0]

    def expect_title(self, title):
        """Waits until a window of that title is there and has the keyboard."""
        def focused():
            self.assertIsNone(self.wizard.poll(), "the wizard ended where '%s' was expected" % title)
            window = self.window(title)
            if window and display().ask("xdotool", "getwindowfocus", "getwindowname") != title:
                display().ask("xdotool", "windowactivate", window)
                return False
            return window
        try:
            return wait_until("the window '%s'" % title, focused)
        except AssertionError as failure:
            titles = display().ask("xdotool", "search", "--onlyvisible", "--name", "Typeforge", "getwindowname", "%@")
            raise AssertionError("%s; there is: %s" % (failure, titles)) from None

    def expect_gone(self, title):
        """Waits until no window of that title is left."""
        wait_until("the end of '%s'" % title, lambda: not self.window(title))

    def key(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], env=self.environment, check=True, timeout=PATIENCE)

    def type(self, text):
        """Types over whatever the field with the focus holds."""
        self.key("ctrl+a")
        subprocess.run(["xdotool", "type", "--clearmodifiers", "--delay", "4", text], env=self.environment, check=True,
                       timeout=PATIENCE)

    def next(self, title, keys="alt+n"):
        """Presses Next and waits for the page of that title."""
        self.key(keys)
        self.expect_title(title)

    def expect_error(self):
        """Waits for the error box and closes it."""
        self.expect_title(ERROR_BOX)
        self.key("Return")
        self.expect_gone(ERROR_BOX)

    def choose_importer(self, name, title):
        """On the importer page: picks the importer that typeforge-import calls so, and goes on to the page of that title."""
        names = re.search(r"\{(.*?)\}", self.run_import("--help").stdout.decode()).group(1).split(",")
        self.key("Home", *["Down"] * names.index(name))
        self.next(title)

    def finish(self):
        """On the last page: presses Finish and waits for the program's end."""
        self.key("alt+f")
        self.expect_end()

    def expect_end(self):
        """Waits for the program's end and wants it clean."""
        status = self.wizard.wait(PATIENCE)
        self.assertEqual(0, status, contents(self.home + "/wizard.log").decode(errors="replace"))

    def imported(self, *arguments):
        """What typeforge-import prints for these arguments."""
        done = self.run_import(*arguments)
        self.assertEqual(0, done.returncode, done.stderr)
        return done.stdout

    def run_import(self, *arguments):
        return subprocess.run([BUILD + "/typeforge-import", *arguments], env=self.environment, capture_output=True,
                              timeout=PATIENCE)


def contents(path):
    with open(path, "rb") as file:
        return file.read()
