"""Creating types from the command line: killed runs, secrecy of passwords, prompts."""
import contextlib
import os
import pty
import re
import resource
import shutil
import signal
import socket
import sqlite3
import subprocess
import tempfile
import time
import unittest

IMPORT = os.environ["TYPEFORGE_BUILD"] + "/typeforge-import"
KILLS = int(os.environ.get("TYPEFORGE_KILLS", "20"))

LEAVES = "".join("<!ELEMENT %s EMPTY>" % name for name in "bcdefghijk")


class Create(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.environment = dict(os.environ, XDG_CONFIG_HOME=self.folder, XDG_DATA_HOME=self.folder)
        self.write("pair.dtd", "<!ELEMENT r (a)><!ELEMENT a (b)>" + LEAVES)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def start(self, *arguments, **how):
        return subprocess.Popen([IMPORT, "dtd", *arguments], cwd=self.folder, env=self.environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=subprocess.PIPE, **how)

    def run_import(self, *arguments, answers="", **how):
        started = self.start(*arguments, **how)
        out, err = started.communicate(answers)
        return started.returncode, out, err

    def rows(self):
        with sqlite3.connect(self.folder + "/typeforge/types.db") as database:
            self.assertEqual([("ok",)], list(database.execute("PRAGMA integrity_check")))
            return [row[0] for row in database.execute("SELECT document FROM typeforge_types ORDER BY rowid")]

    def test_a_killed_run_leaves_whole_types_up_to_where_it_came(self):
        count = 1000
        self.write("many.dtd", "<!ELEMENT r (%s)>" % ",".join("e%d" % i for i in range(count)) +
                   "".join("<!ELEMENT e%d (x,y,z)>" % i for i in range(count)))
        documents = self.run_import("many.dtd")[1]
        for kill in range(KILLS):
            lines = 500 * kill // KILLS  # lines read before the kill; a pipe holds less than the others
            shutil.rmtree(self.folder + "/typeforge", ignore_errors=True)
            with self.subTest(lines=lines), self.start("many.dtd", "--create", "local", pipesize=4096) as running:
                for _ in range(lines):
                    running.stdout.readline()
                running.kill()
                running.communicate()
                self.assertEqual(-signal.SIGKILL, running.returncode)
                if lines:
                    kept = self.rows()
                    self.assertGreaterEqual(len(kept), lines)
                    self.assertIn("<r>\n" + "".join(kept), documents)

    def test_settings_that_can_not_be_used_are_told(self):
        os.mkdir(self.folder + "/typeforge")
        for text, reason in ("{}" + " " * (4 << 20), "it is larger than 4 MB"), ("{", "it is not well-formed"):
            self.write("typeforge/settings.json", text)
            status, _, err = self.run_import("pair.dtd", "--create", "local")
            self.assertEqual((0, "typeforge-import: warning: The settings are the defaults, because "
                                 f"{self.folder}/typeforge/settings.json can't be used: {reason}, and is now "
                                 "settings.json.bad.\n"), (status, err))

    def test_a_password_is_in_no_command_line_environment_or_core(self):
        self.write("password", "never seen\n")
        with socket.create_server(("127.0.0.1", 0)) as silent:
            address = "127.0.0.1:%d" % silent.getsockname()[1]
            with self.start("pair.dtd", "--create", address, "--user", "u", "--password-file", "password",
                            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CORE, (resource.RLIM_INFINITY,) * 2)
                            ) as waiting:
                with silent.accept()[0]:
                    for name in "cmdline", "environ":
                        with open("/proc/%d/%s" % (waiting.pid, name), "rb") as file:
                            self.assertNotIn(b"never seen", file.read())
                    os.kill(waiting.pid, signal.SIGQUIT)
                    status = os.waitpid(waiting.pid, 0)[1]
                    self.assertTrue(os.WIFSIGNALED(status))
                    self.assertFalse(os.WCOREDUMP(status))
                    self.assertEqual(["pair.dtd", "password"], sorted(os.listdir(self.folder)))

    def test_the_terminal_is_asked_for_a_password_and_shows_none(self):
        for typed, end in [(b"never seen\n", "created"), (b"\x03", "")]:
            child, terminal = pty.fork()
            if child == 0:
                os.chdir(self.folder)
                os.execve(IMPORT, [IMPORT, "dtd", "pair.dtd", "--create", "local", "--user", "u"], self.environment)
            self.assertEqual(b"Password for u: ", screen := os.read(terminal, 100))
            os.write(terminal, typed)
            try:
                while piece := os.read(terminal, 1000):
                    screen += piece
            except OSError:  # reading the terminal of a process that has ended
                pass
            self.assertNotIn(b"never", screen)
            self.assertIn(end, screen.decode())
            status = os.waitpid(child, 0)[1]
            self.assertEqual(0 if end else signal.SIGINT, os.WTERMSIG(status) or os.WEXITSTATUS(status))

    def test_questions_erase_the_progress_on_the_terminal(self):
        self.run_import("pair.dtd", "--create", "local")
        os.mkfifo(self.folder + "/slow")
        line = "(sleep 1.2; sed 's/(b)/(c)/' pair.dtd) >slow & exec $0 dtd slow --create local --user u --overwrite ask >lines"
        child, terminal = pty.fork()
        if child == 0:
            os.chdir(self.folder)
            os.execve("/bin/sh", ["sh", "-c", line, IMPORT], self.environment)
        for question, typed in (b"Password for u: ", b"p\n"), (b"The existing type is different", b"x\n"):
            screen = b""
            while question not in screen:
                screen += os.read(terminal, 1000)
            self.assertRegex(screen, rb"\r\x1b\[K[A-Z][^\r]+\r\r\x1b\[K" + re.escape(question))
            time.sleep(0.3)  # the next progress is due
            os.write(terminal, typed)
        os.waitpid(child, 0)

    def test_existing_types_are_replaced_as_asked_for(self):
        create = ["pair.dtd", "--create", "local", "--trusted"]
        self.assertEqual((0, "a created successfully\nr created successfully\n", ""), self.run_import(*create))
        question = "\\sys\\rosettanet\\r\\%s already exists.\nOverwrite? [y]es, yes to [a]ll, [n]o, no to all [x]: "
        left = "typeforge-import: existing types are kept; use --overwrite all to replace them, or --overwrite ask\n"
        for overwrite, answers, status, a, r, said in [
                ("all", "", 0, "modifed", "modifed", ""),
                ("none", "", 0, "skipped", "skipped", ""),
                ("ask", "", 0, "skipped", "skipped", "ar"),
                ("ask", "Y\nn\n", 0, "modifed", "skipped", "ar"),
                ("ask", "N\nx\n", 0, "skipped", "skipped", "ar"),
                ("ask", "A\n", 0, "modifed", "modifed", "a"),
                ("", "y\ny\n", 4, "skipped", "skipped", left)]:
            with self.subTest(overwrite=overwrite, answers=answers):
                option = ["--overwrite", overwrite] if overwrite else []
                self.write("pair.dtd", "<!ELEMENT r (a)><!ELEMENT a (b)>" + LEAVES)
                self.run_import(*create, "--overwrite", "all")
                self.assertEqual((0, "a unchanged\nr unchanged\n", ""), self.run_import(*create, *option))
                self.write("pair.dtd", "<!ELEMENT r (a,c)><!ELEMENT a (b,c)>" + LEAVES)
                said = said if said == left else "".join(question % name for name in said)
                self.assertEqual((status, "a %s\nr %s\n" % (a, r), said),
                                 self.run_import(*create, *option, answers=answers))

    def test_a_dry_run_and_a_comparison_change_nothing(self):
        create, compare = ["pair.dtd", "--create", "local", "--dry-run"], ["pair.dtd", "--diff", "broker:local"]
        added = "added record \\sys\\rosettanet\\r\\%s [type-added]\n"
        self.assertEqual((0, "a would be created\nr would be created\n", ""), self.run_import(*create))
        self.assertEqual((1, added % "a" + added % "r" + "compatible: only additions\n", ""), self.run_import(*compare))
        self.assertEqual(["pair.dtd"], os.listdir(self.folder))
        self.run_import("pair.dtd", "--create", "local")
        repository = self.folder + "/typeforge/types.db"
        os.chmod(repository, 0o640)
        self.assertEqual((0, "", ""), self.run_import(*compare))
        self.assertEqual(0o640, os.stat(repository).st_mode & 0o777)
        self.write("pair.dtd", "<!ELEMENT r (a,c)><!ELEMENT a (b)><!ELEMENT c (b)><!ELEMENT b ANY>")
        before = self.rows()
        self.assertEqual(1, self.run_import(*compare)[0])
        for option, status, fate in [
                (["--overwrite", "all"], 0, "would be replaced"), ([], 4, "exists and is different, would be kept"),
                (["--overwrite", "ask"], 0, "exists and is different, you would be asked")]:
            said = "c would be created\na unchanged\nr %s\n" % fate
            self.assertEqual((status, said, ""), self.run_import(*create, *option))
        self.assertEqual(before, self.rows())
        with sqlite3.connect(repository) as database:
            database.execute("ALTER TABLE typeforge_types RENAME COLUMN name TO other")
        for status, arguments in (1, create), (2, compare):
            answer = self.run_import(*arguments)
            self.assertEqual((status, ""), answer[:2])
            self.assertIn("Repository Error ([SQLite]no such column: name", answer[2])
        for mistake in ["--dry-run"], ["--diff", "broker:"], ["--diff", "broker:a:b"]:
            self.assertEqual(2, self.run_import("pair.dtd", *mistake)[0])

    def test_the_other_source_of_a_type_is_named(self):
        os.mkdir(self.folder + "/sub")
        end = "; --base-path keeps them apart\n"
        one, more = " was replaced by a different one" + end, " were replaced by different ones" + end
        left = "existing types are kept; use --overwrite all to replace them, or --overwrite ask\n"
        for source, r, a, option, *told in [
                ("one.dtd", "a", "b", "all"),
                ("two.dtd", "a", "c", "all", "1 type of one.dtd" + one),
                ("three.dtd", "a,b", "d", "all", "1 type of two.dtd" + one, "1 type of one.dtd" + one),
                ("three.dtd", "a,c", "e", "all"),
                ("sub/../three.dtd", "a,d", "f", "all"),
                ("sub/three.dtd", "a,e", "g", "all", "2 types of %s/three.dtd" % self.folder + more),
                ("-", "a,f", "h", "all", "2 types of three.dtd" + more),
                ("-", "a,g", "i", "all", "2 types of standard input" + more),
                ("four.dtd", "a,h", "j", "all"),
                ("five.dtd", "a,i", "j", "", left, "1 type of four.dtd is different" + end),
                ("five.dtd", "a,j", "k", "", left, "2 types of four.dtd are different" + end)]:
            with self.subTest(source=source, a=a):
                dtd = "<!ELEMENT r (%s)><!ELEMENT a (%s)>" % (r, a) + LEAVES
                if source != "-":
                    self.write(source, dtd)
                status, _, said = self.run_import(
                    source, "--create", "local", *["--overwrite", option] if option else [],
                    *["-q"] if source == "four.dtd" else [], answers=dtd if source == "-" else "")
                self.assertEqual((0 if option else 4, "".join("typeforge-import: " + line for line in told)), (status, said))
        said = self.run_import("five.dtd", "--create", "local", "--overwrite", "ask")[2]
        self.assertRegex(said, r"^The existing type is different and comes from %s/four.dtd \(2[-0-9]+T[0-9:]+Z\)\.\n.*a already exists" % self.folder)

    def test_a_lock_of_another_program_is_waited_for_once(self):
        self.run_import("pair.dtd", "--create", "local")
        self.write("pair.dtd", "<!ELEMENT r (a,c)><!ELEMENT a (b,c)>" + LEAVES)
        tables = self.folder + "/tables.db"
        with self.start("pair.dtd", "--create", "local", "--overwrite", "ask") as running:
            question = ""
            while not question.endswith("[x]: "):
                question += running.stderr.read(1)
            for name in tables, self.folder + "/typeforge/types.db":
                other = sqlite3.connect(name, isolation_level=None)
                self.addCleanup(other.close)
                other.execute("BEGIN EXCLUSIVE")
            with self.longer_wait(tables), subprocess.Popen([IMPORT, "odbc", "Driver=SQLite3;Database=" + tables],
                                                            stderr=subprocess.PIPE, text=True) as reading:
                reason = "[SQLite]database is locked (5) (SQLSTATE S1000)\n"
                self.assertEqual("a - creation error\n%sr - creation error\n%s" % (reason, reason), running.communicate("a\n")[0])
                self.assertEqual("Driver=SQLite3;Database=%s: error: %s" % (tables, reason), reading.communicate()[1])
                self.assertEqual(4, running.wait())
            with self.longer_wait(tables):
                self.assertEqual((1, "", "typeforge-import: Repository Error (%s)\n" % reason.rstrip()),
                                 self.run_import("pair.dtd", "--create", "local"))

    @contextlib.contextmanager
    def longer_wait(self, tables):
        """Waits for a locked database 1.5 times as long as imports do by themselves. The body must end before."""
        source = "Driver=SQLite3;Timeout=5100;Database=" + tables
        with subprocess.Popen([IMPORT, "odbc", source], stderr=subprocess.DEVNULL) as waiting:
            yield
            self.assertIsNone(waiting.poll())
            waiting.kill()

    def test_types_are_created_whether_or_not_their_lines_are_read(self):
        lost = "typeforge-import: can't write standard output: %s\n"
        for out, cause in [("/dev/full", "No space left on device"), ("|true", "Broken pipe")]:
            shutil.rmtree(self.folder + "/typeforge", ignore_errors=True)
            target = "exec >/dev/full" if out == "/dev/full" else "exec > >(sleep 0)\nsleep 0.3"
            done = subprocess.run(["bash", "-c", target + '\n"$0" dtd pair.dtd --create local', IMPORT], cwd=self.folder,
                                  env=self.environment, text=True, stderr=subprocess.PIPE, check=False)
            self.assertEqual((3, lost % cause), (done.returncode, done.stderr))
            self.assertEqual(2, len(self.rows()))

    def test_the_repository_is_private_whatever_the_umask(self):
        for mask in 0, 0o777:
            shutil.rmtree(self.folder + "/typeforge", ignore_errors=True)
            os.makedirs(self.folder + "/typeforge", 0o755)
            self.assertEqual(0, self.run_import("pair.dtd", "--create", "local", "--overwrite", "all", umask=mask)[0])
            self.assertEqual([0o700, 0o600], [os.stat(self.folder + "/typeforge" + name).st_mode & 0o777
                                              for name in ("", "/types.db")])

    def test_a_missing_driver_is_named_with_its_package(self):
        self.environment["ODBCSYSINI"] = self.folder  # no driver is registered there
        for server, driver, package in ("local", "SQLite3", "libsqliteodbc"), ("[::1]", "PostgreSQL Unicode", "odbc-postgresql"):
            said = ("typeforge-import: Unable to establish a connection to Broker: [unixODBC][Driver Manager]Can't open lib "
                    f"'{driver}' : file not found (SQLSTATE 01000); the package is {package}\n")
            self.assertEqual((1, "", said), self.run_import("pair.dtd", "--create", server, "--trusted"))

    def test_a_data_folder_that_cant_be_created_is_named(self):
        self.environment["XDG_DATA_HOME"] = "/proc/none/data"
        said = "typeforge-import: Unable to establish a connection to Broker: /proc/none/data: No such file or directory\n"
        self.assertEqual((1, "", said), self.run_import("pair.dtd", "--create", "local"))

    def test_mistakes_and_failures_have_their_status(self):
        self.write("two", "")
        for status, words, *arguments in [
                (2, "not SERVER", "--create", "local:0"), (2, "not SERVER", "--create", ":1"),
                (2, "--create", "--trusted"), (2, "--user", "--create", "local", "--password-file", "two"),
                (2, "--trusted", "--create", "local", "--user", "u", "--trusted"),
                (2, "--output", "--create", "local", "-o", "out"),
                (1, "can't open none: No such file or directory\n", "--create", "local", "--user", "u", "--password-file", "none"),
                (1, "Unable to establish a connection to Broker: ", "--create", "127.0.0.1:1")]:
            with self.subTest(arguments=arguments):
                answer = self.run_import("pair.dtd", *arguments)
                self.assertEqual((status, ""), answer[:2])
                self.assertIn(words, answer[2])


if __name__ == "__main__":
    unittest.main()
