"""Runs each command that README.md shows behind a "$" and compares what it prints with the lines shown below it."""

import os
import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
INDENT = "    "


def shown_commands():
    """Pairs of a command and the lines below it."""
    commands = []
    for line in (ROOT / "README.md").read_text(encoding="utf-8").splitlines():
        if line.startswith(INDENT + "$ "):
            commands.append((line[len(INDENT) + 2:], []))
        elif commands and line.startswith(INDENT):
            commands[-1][1].append(line[len(INDENT):])
    return commands


class Readme(unittest.TestCase):
    def test_commands_print_what_is_shown(self):
        commands = shown_commands()
        self.assertGreater(len(commands), 2)
        with tempfile.TemporaryDirectory() as folder:
            os.symlink(os.environ["TYPEFORGE_BUILD"], os.path.join(folder, "build"))
            os.symlink(ROOT / "examples", os.path.join(folder, "examples"))
            homes = {"XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder}
            for command, lines in commands:
                with self.subTest(command):
                    run = subprocess.run(command, shell=True, cwd=folder, env=os.environ | homes,
                                         capture_output=True, text=True)
                    self.assertEqual((run.returncode, run.stdout.splitlines(), run.stderr), (0, lines, ""))


if __name__ == "__main__":
    unittest.main()
