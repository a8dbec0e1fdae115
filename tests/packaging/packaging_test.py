"""What is installed beside the programs fits them, and the tools of the desktop accept it."""
import glob
import os
import re
import subprocess
import unittest

BUILD = os.environ["TYPEFORGE_BUILD"]
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PACKAGING = os.path.join(SOURCE, "packaging")
HELP = os.path.join(SOURCE, "src/Resources/help")


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def output(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


class Packaging(unittest.TestCase):
    def test_every_option_has_its_place_in_manual_and_completion(self):
        options = set(re.findall(r"--[a-z][a-z-]+", output(BUILD + "/typeforge-import", "--help")[1]))
        self.assertLess({"--output", "--help"}, options)
        manual = read(PACKAGING, "typeforge-import.1").replace("\\-", "-")
        completion = read(PACKAGING, "typeforge-import.bash")
        self.assertEqual(options, set(re.findall(r"(?m)^\.BR? .*?(--[a-z-]+)", manual)))
        self.assertEqual(options, set(re.findall(r"--[a-z-]+(?=[ \n\"])", re.search(r"compgen -W \"(--.*?)\"", completion, re.S)[0])))

    def test_completion_offers_what_fits_the_place(self):
        script = ("_init_completion() { cur=${COMP_WORDS[COMP_CWORD]}; prev=${COMP_WORDS[COMP_CWORD-1]};"
                  " words=(\"${COMP_WORDS[@]}\"); cword=$COMP_CWORD; }; _filedir() { COMPREPLY=(\"files $1\"); };"
                  " . %s/typeforge-import.bash; COMP_WORDS=(typeforge-import %s); COMP_CWORD=%d; _typeforge_import;"
                  " echo \"${COMPREPLY[@]}\"")
        for line, place, offered in [("x", 1, "xml xsd"), ("dtd ''", 2, "files @(dtd|DTD)"), ("dtd a --ov", 3, "--overwrite"),
                                     ("dtd a -o ''", 4, "files "), ("btd a --overwrite n", 4, "none")]:
            with self.subTest(line):
                self.assertEqual((0, offered + "\n"), output("bash", "-c", script % (PACKAGING, line, place)))

    def test_the_desktop_accepts_its_files(self):
        for command in [["desktop-file-validate", PACKAGING + "/org.typeforge.typeforge.desktop"],
                        ["man", "--warnings", "--local-file", "-Tutf8", "-Z", PACKAGING + "/typeforge.1"],
                        ["man", "--warnings", "--local-file", "-Tutf8", "-Z", PACKAGING + "/typeforge-import.1"]]:
            with self.subTest(command[0]):
                done = subprocess.run(command, capture_output=True, text=True)
                self.assertEqual((0, ""), (done.returncode, done.stderr))
        status, text = output("appstreamcli", "validate", "--no-net", PACKAGING + "/org.typeforge.typeforge.metainfo.xml")
        self.assertEqual(0, status, text)

    def test_help_pages_lead_to_one_another(self):
        carried = re.findall(r"<file>help/(.*)</file>", read(SOURCE, "src/Resources/wizard.qrc"))
        self.assertEqual(sorted(os.path.basename(page) for page in glob.glob(HELP + "/*")), sorted(carried))
        pages = {"index.html"}
        unread = ["index.html"]
        while unread:
            text = read(HELP, unread.pop())
            self.assertIn('href="help.css"', text)
            found = set(re.findall(r'<a href="([^"]*)"', text)) - pages
            pages |= found
            unread += found
        self.assertEqual(pages | {"help.css"}, set(carried))
        self.assertEqual(12, len(pages))


if __name__ == "__main__":
    unittest.main()
