"""Imports in which one allocation fails: each ends with a clear error and no file, or with the whole file.

Tables are left out, because the ODBC driver manager doesn't check its allocations and crashes. The tests fail some
allocations, evenly spread and different in each run; TYPEFORGE_ALLOCATIONS=all fails each of them.
"""
import concurrent.futures
import os
import pathlib
import random
import re
import subprocess
import tempfile
import unittest

BUILD = os.environ["TYPEFORGE_BUILD"]
EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"
AT_MOST = int(os.environ.get("TYPEFORGE_ALLOCATIONS", "100").replace("all", "1000000"))


class Memory(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_import(self, arguments, name, **environment):
        """Returns the exit status, standard error and the contents of the output file."""
        place = self.folder / name
        place.mkdir()
        run = subprocess.run([BUILD + "/typeforge-import", *arguments, "-o", "out"], cwd=place, timeout=60,
                             env=dict(os.environ, SOURCE_DATE_EPOCH="0", LC_ALL="C",
                                      LD_PRELOAD=BUILD + "/libfailing_allocator.so", **environment),
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace")
        files = {path.name: path.read_bytes() for path in place.iterdir()}
        return run.returncode, run.stderr, files

    def check(self, *arguments):
        count = self.folder / "count"
        status, errors, whole = self.run_import(arguments, "whole", ALLOCATION_COUNT=str(count))
        self.assertEqual((status, errors, list(whole)), (0, "", ["out"]))
        allocations = int(count.read_text())
        step = max(1, allocations // AT_MOST)
        numbers = range(random.randint(1, step), allocations + 1, step)

        def fail_at(number):
            answer = self.run_import(arguments, str(number), FAILING_ALLOCATION=str(number))
            said_so = answer[0] == 1 and re.match(r"(typeforge-import|.*: error): ", answer[1]) and not answer[2]
            return None if said_so or (answer[0] == 0 and answer[2] == whole) else (number, *answer[:2], list(answer[2]))

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            bad = [answer for answer in pool.map(fail_at, numbers) if answer]
        self.assertEqual(bad, [], f"{len(bad)} of {len(numbers)} runs, of {allocations} allocations")

    def test_dtd(self):
        self.check("dtd", EXAMPLES / "order.dtd")

    def test_dtd_in_full(self):
        self.check("dtd", "--full", EXAMPLES / "catalog.dtd")

    def test_xml(self):
        self.check("xml", EXAMPLES / "order.xml")

    def test_xsd(self):
        self.check("xsd", EXAMPLES / "order.xsd")

    def test_xsd_in_full(self):
        self.check("xsd", "--full", EXAMPLES / "order.xsd")

    def test_btd(self):
        _, _, files = self.run_import(["dtd", EXAMPLES / "order.dtd"], "made")
        (self.folder / "types.xml").write_bytes(files["out"])
        self.check("btd", self.folder / "types.xml")


if __name__ == "__main__":
    unittest.main()
