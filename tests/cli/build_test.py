"""The build projects of examples/ build, rebuild after a schema change, and reject a change that breaks readers."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Build(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.examples = pathlib.Path(self.folder.name, "examples")
        shutil.copytree(ROOT / "examples", self.examples)

    def run_in(self, project, *command):
        env = os.environ | {"PATH": os.environ["TYPEFORGE_BUILD"] + os.pathsep + os.environ["PATH"]}
        env.pop("SOURCE_DATE_EPOCH", None)
        done = subprocess.run(command, cwd=self.examples / "build" / project, env=env, capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr

    def change(self, file, old, new):
        path = self.examples / file
        path.write_text(path.read_text(encoding="utf-8").replace(old, new, 1), encoding="utf-8")
        later = path.stat().st_mtime_ns + 2 * 10**9  # built files may have a time within this second
        os.utime(path, ns=(later, later))

    def test_make(self):
        self.assertEqual(0, self.run_in("make", "make")[0])
        self.assertIn("Nothing to be done", self.run_in("make", "make")[1])
        self.change("party.xsd", 'name="Name"', 'name="FullName"')
        status, said = self.run_in("make", "make")
        self.assertEqual(2, status)
        self.assertIn("If the change is intended, apply it: make accept", said)
        self.assertIn(r"removed field \sys\xml\Order\Party.Name: String [field-removed]", said)
        self.assertEqual((0, 0), (self.run_in("make", "make", "accept")[0], self.run_in("make", "make")[0]))

    def test_ninja(self):
        self.assertEqual(0, self.run_in("ninja", "ninja")[0])
        self.assertIn("no work to do", self.run_in("ninja", "ninja")[1])
        self.change("party.xsd", "<!--", "<!-- ")
        status, said = self.run_in("ninja", "ninja")
        self.assertEqual(0, status)
        self.assertIn("types of", said)
        self.assertNotIn("list of", said)  # the types are the same
        self.change("party.xsd", 'name="Name"', 'name="FullName"')
        self.assertIn("list of", self.run_in("ninja", "ninja")[1])


if __name__ == "__main__":
    unittest.main()
