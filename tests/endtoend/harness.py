"""Drives the built wizard in a real window by keyboard, as a user does.

Every test case gets a home folder of its own; the display and its window manager are started once for the process.
TYPEFORGE_BUILD names the folder with the programs.
"""
import atexit
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time
import unittest

BUILD = os.environ["TYPEFORGE_BUILD"]
HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = os.path.join(os.path.dirname(os.path.dirname(HERE)), "examples")
PATIENCE = 60  # seconds; only failures take that long


def wait_until(what, condition):
    """Polls a condition and returns its first true result."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        answer = condition()
        if answer:
            return answer
        time.sleep(0.02)
    raise AssertionError("waited in vain for " + what)


def ask(*command):
    """Returns the output of a command; empty if it fails."""
    done = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE)
    return done.stdout.strip() if done.returncode == 0 else ""


def setUpModule():
    """Starts a display, on a free number chosen by the server, with a window manager."""
    def start(*command, **how):
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **how)
        atexit.register(process.wait)
        atexit.register(process.terminate)
    reader, writer = os.pipe()
    # Without -noreset, the end of the first xdotool resets the server, which may break the window manager's connection.
    start("Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-noreset",
          pass_fds=[writer])
    os.close(writer)
    with os.fdopen(reader) as numbers:
        os.environ["DISPLAY"] = ":" + numbers.readline().strip()
    start("openbox", "--sm-disable")
    # A window mapped before the window manager runs never gets the focus.
    wait_until("the window manager", lambda: ask("xdotool", "get_desktop"))


class WizardTest(unittest.TestCase):
    """A test case with one wizard. Titles are full window titles; page titles are given without their common prefix."""

    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="typeforge-")
        self.addCleanup(shutil.rmtree, self.home)
        self.environment = dict(
            os.environ, HOME=self.home, XDG_CONFIG_HOME=self.home + "/config", XDG_DATA_HOME=self.home + "/data",
            XDG_RUNTIME_DIR=self.home, TMP=self.home, ODBCINI=self.home + "/odbc.ini", SOURCE_DATE_EPOCH="1700000000",
            QT_QPA_PLATFORM="xcb", LC_ALL="C.UTF-8",
            LSAN_OPTIONS="print_suppressions=0:fast_unwind_on_malloc=0:suppressions=" + HERE + "/leaks.supp")
        pathlib.Path(self.home, "odbc.ini").touch()

    def start(self, page="Introduction"):
        """Starts the wizard and waits for its first page."""
        with open(self.home + "/wizard.log", "w") as log:
            self.wizard = subprocess.Popen([BUILD + "/typeforge"], cwd=self.home, env=self.environment, stdout=log, stderr=log)
        self.addCleanup(self.wizard.wait)
        self.addCleanup(self.wizard.kill)
        self.expect_page(page)

    def window(self, title):
        """Returns the visible window with that title; empty if there is none."""
        return ask("xdotool", "search", "--onlyvisible", "--name", "^" + re.escape(title) + "$").split("\n")[0]

    def expect_title(self, title):
        """Waits until a window with that title has the keyboard focus."""
        def focused():
            self.assertIsNone(self.wizard.poll(), "the wizard ended where '%s' was expected" % title)
            window = self.window(title)
            if window and ask("xdotool", "getwindowfocus", "getwindowname") != title:
                ask("xdotool", "windowactivate", window)
                return None
            return window
        return wait_until("the window '%s'" % title, focused)

    def expect_page(self, title):
        self.expect_title("Typeforge - " + title)

    def expect_error(self, page):
        """Waits for the error box, closes it, and expects that page."""
        self.expect_title("Typeforge Error")
        self.key("Return")
        wait_until("the end of the error", lambda: not self.window("Typeforge Error"))
        self.expect_page(page)

    def key(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True, timeout=PATIENCE)

    def type(self, *texts):
        """Replaces the contents of the focused field, and of the fields after it."""
        for text in texts:
            self.key(*["Tab"] if text is not texts[0] else [], "ctrl+a")
            subprocess.run(["xdotool", "type", "--clearmodifiers", "--delay", "4", text], check=True, timeout=PATIENCE)

    def next(self, *pages):
        """For each title, presses Next and waits for that page."""
        for page in pages:
            self.key("alt+n")
            self.expect_page(page)

    def choose_importer(self, name, page):
        """On the importer page: selects the importer with this name on the command line, and continues to that page."""
        names = [line.split("\t")[0] for line in self.imported("--importers").decode().splitlines()]
        self.key("Home", *["Down"] * names.index(name))
        self.next(page)

    def end(self, key):
        """Presses the key that ends the program, and expects exit status 0."""
        self.key(key)
        self.assertEqual(0, self.wizard.wait(PATIENCE), pathlib.Path(self.home, "wizard.log").read_text())

    def write(self, name="types.xml"):
        """Walks from the page before the types to the last page. Returns the written file."""
        self.next("Generated types", "Select output mode", "Select output file")
        self.type(os.path.join(self.home, name))
        self.next("Finish")
        return pathlib.Path(self.home, name).read_bytes()

    def imported(self, *arguments):
        """Returns the output of typeforge-import for these arguments."""
        return subprocess.run([BUILD + "/typeforge-import", *arguments], env=self.environment, stdout=subprocess.PIPE,
                              timeout=PATIENCE, check=True).stdout

    def postgres(self, *statements):
        """Starts a server and executes the statements. Returns its port, user and password."""
        server = subprocess.Popen([BUILD + "/test_postgres", *statements], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  text=True)
        self.addCleanup(server.communicate)
        return [server.stdout.readline().strip() for _ in range(3)]
