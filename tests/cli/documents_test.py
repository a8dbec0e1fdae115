"""Runs each command after a "$" in the documents, and compares its output with the lines shown below it."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
INDENT = "    "
DOCUMENTS = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "CHANGELOG.md", *sorted((ROOT / "docs").rglob("*.md"))]


def shown_commands(text):
    """Returns pairs of a command and the lines below it."""
    commands, is_below = [], False
    for line in text.splitlines():
        if line.startswith(INDENT + "$ "):
            commands.append((line[len(INDENT) + 2:], []))
            is_below = True
        elif is_below and line.startswith(INDENT):
            commands[-1][1].append(line[len(INDENT):])
        else:
            is_below = False
    return commands


class Documents(unittest.TestCase):
    def test_commands_print_what_is_shown(self):
        commands = [shown for document in DOCUMENTS for shown in shown_commands(document.read_text(encoding="utf-8"))]
        self.assertGreater(len(commands), 20)
        with tempfile.TemporaryDirectory() as folder:
            for name in ("examples", "scripts"):
                os.symlink(ROOT / name, os.path.join(folder, name))
            path = os.environ["TYPEFORGE_BUILD"] + os.pathsep + os.environ["PATH"]
            homes = {"XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder, "PATH": path}
            for command, lines in commands:
                with self.subTest(command):
                    run = subprocess.run(command, shell=True, cwd=folder, env=os.environ | homes,
                                         capture_output=True, text=True)
                    self.assertEqual((run.returncode, run.stdout.splitlines(), run.stderr), (0, lines, ""))

    def test_links_lead_to_files(self):
        for document in DOCUMENTS:
            for target in re.findall(r"\]\(([^)#:]+)[^):]*\)", document.read_text(encoding="utf-8")):
                self.assertTrue((document.parent / target).exists(), f"{document.name}: {target}")

    def test_units_and_scripts_that_are_named_are_there(self):
        folders = "src|tests|fuzz|bench|scripts|examples|docs|Base|Files|Xml|Database|Model|Import|Types|Broker|Cli|Ui|Wizard"
        for document in DOCUMENTS:
            for name in re.findall(rf"`((?:{folders})/[\w./-]+)[` ]", document.read_text(encoding="utf-8")):
                places = [*ROOT.glob(name + "*"), *(ROOT / "src").glob(name + "*")]
                self.assertTrue("NAME" in name or places, f"{document.name}: {name}")


if __name__ == "__main__":
    unittest.main()
