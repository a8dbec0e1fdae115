"""Each form of JSON that the command line writes conforms to its schema in docs/."""

import itertools
import json
import os
import pathlib
import sqlite3
import subprocess
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
ARRAY = r"""<x><BROKERTYPEDESCRIPTION NAME="\a\l"><ARRAY SIZE="3"><COMPONENT TYPE="Time"/></ARRAY></BROKERTYPEDESCRIPTION>
<BROKERTYPEDESCRIPTION NAME=""/><BROKERTYPEDESCRIPTION NAME="\a\e"><ROW/></BROKERTYPEDESCRIPTION></x>"""


def validator(form):
    schema = json.loads((ROOT / "docs" / f"{form}.schema.json").read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


class Json(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "array.btd").write_text(ARRAY, encoding="utf-8")
        dtds = {"r": "<!ELEMENT r (s, u)><!ATTLIST r k (y|n) 'y' j (a|b) 'a'><!ELEMENT s (t)>",
                "q": "<!ELEMENT r (s*, j)><!ATTLIST r k (y|m) 'y'><!ELEMENT j (t)><!ELEMENT s (t)>"}
        for name, text in dtds.items():
            (self.folder / f"{name}.dtd").write_text(text, encoding="utf-8")
        sources = [["btd", "array.btd"], ["r.dtd", "--full"], ["q.dtd", "--full"], ["r.dtd"], ["Driver=SQLite3;Database=t.db"]]
        with sqlite3.connect(self.folder / "t.db") as database:
            database.execute("CREATE TABLE t (a INTEGER, b BLOB)")  # a loss without a line
        for file in sorted((ROOT / "examples").glob("*.*")):
            sources += [[str(file), "--full"] if file.suffix in (".dtd", ".xsd") else [str(file)]]
        self.sources = [source + ["--allow-empty", "-q"] for source in sources]

    def run_import(self, arguments, statuses=(0,)):
        done = subprocess.run([os.environ["TYPEFORGE_BUILD"] + "/typeforge-import", *arguments], cwd=self.folder,
                              capture_output=True, text=True)
        self.assertIn(done.returncode, statuses, (arguments, done.stderr))
        return done.stdout

    def test_lists_and_reports(self):
        lists, reports = validator("list"), validator("report")
        for source in self.sources:
            with self.subTest(source):
                lists.validate(json.loads(self.run_import([*source, "--list", "--json"])))
                options = ["-o", "/dev/null", "--report", "/dev/stdout", "--report-format", "json"]
                reports.validate(json.loads(self.run_import([*source, *options])))

    def test_differences(self):
        seen = set()
        for i, source in enumerate(self.sources):
            self.run_import([*source, "-o", f"{i}.btd"])
        for source, other in itertools.product(self.sources, range(len(self.sources) - 1)):
            text = self.run_import([*source, "--diff", f"{other}.btd", "--json", "--allow", "field-added"], (0, 1, 2))
            if text:
                differences = json.loads(text)
                validator("diff").validate(differences)
                seen |= {change["id"] for change in differences["changes"]}
        self.assertEqual(10, len(seen), seen)


if __name__ == "__main__":
    unittest.main()
