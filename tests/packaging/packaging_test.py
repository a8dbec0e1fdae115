"""The installed manuals, completions and desktop files match the programs, and are valid."""
import os
import re
import subprocess
import tempfile
import unittest

BUILD = os.environ["TYPEFORGE_BUILD"]
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PACKAGING = os.path.join(SOURCE, "packaging/")
HELP = os.path.join(SOURCE, "src/Resources/help/")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, cwd=PACKAGING)
    return done.returncode, done.stdout, done.stderr


class Packaging(unittest.TestCase):
    def test_every_option_has_its_place_in_manual_and_completion(self):
        options = set(re.findall(r"--[a-z][a-z-]+", run(BUILD + "/typeforge-import", "--help")[1]))
        self.assertLess({"--output", "--help"}, options)
        manual = read(PACKAGING + "typeforge-import.1").replace("\\-", "-")
        self.assertEqual(options, set(re.findall(r"(?m)^\.BR? .*?(--[a-z-]+)", manual)))
        for shell in "bash", "zsh", "fish":
            script = run(BUILD + "/typeforge-import", "--completion", shell)[1]
            self.assertLessEqual(options, {"--" + name for name in re.findall(r"(?: -l |--)([a-z][a-z-]*)", script)}, shell)

    def test_completion_offers_what_fits_the_place(self):
        script = ("eval \"$(" + BUILD + "/typeforge-import --completion bash)\"; _init_completion() { cur=${COMP_WORDS[COMP_CWORD]}; prev=${COMP_WORDS[COMP_CWORD-1]};"
                  " words=(\"${COMP_WORDS[@]}\"); cword=$COMP_CWORD; }; _filedir() { COMPREPLY=(\"files $1\"); };"
                  " COMP_WORDS=(typeforge-import %s); COMP_CWORD=%d; _typeforge_import " + BUILD + "/typeforge-import;"
                  " echo \"${COMPREPLY[@]}\"")
        sources = tempfile.NamedTemporaryFile("w")
        self.addCleanup(sources.close)
        print("[Sales (EU)]\nDriver=SQLite3\n[Sa$(echo run)]\nDriver=SQLite3\n[Other]\nDriver=SQLite3", file=sources, flush=True)
        script = "export ODBCINI=" + sources.name + "; " + script
        for line, place, offered in [("x", 1, "files  xml xsd"), ("odbc Sa", 2, "Sales\\ \\(EU\\) Sa\\$\\(echo\\ run\\)"), ("dtd ''", 2, "files @(dtd)"), ("xsd ", 2, "files @(xsd|xml)"),
                                     ("dtd a --ov", 3, "--overwrite"), ("-l x", 2, "files  xml xsd"), ("-o a dtd ''", 4, "files @(dtd)"),
                                     ("odbc --fu", 2, ""), ("odbc --tab", 2, "--table"),
                                     ("dtd a -o ''", 4, "files "), ("btd a --overwrite n", 4, "none")]:
            self.assertEqual((0, offered + "\n", ""), run("bash", "-c", script % (line, place)), line)

        # Tries the shells themselves. The rows above replace functions of bash-completion.
        said = "Replace existing types: all, none or ask (default: ask on a terminal, else keep)"
        load = "source (" + BUILD + "/typeforge-import --completion fish | psub); complete -C '" + BUILD + "/typeforge-import "
        self.assertEqual((0, "none\t" + said + "\n", ""), run("fish", "-c", load + "dtd a --overwrite n'"))
        self.assertEqual((0, "xml\tXML data importer\nxsd\tXML Schema importer\n", ""), run("fish", "-c", load + "x'"))
        self.assertEqual((0, "xml\tXML data importer\nxsd\tXML Schema importer\n", ""), run("fish", "-c", load + "-l -o a x'"))
        self.assertEqual((0, "", ""), run("fish", "-c", load + "odbc --fu'"))
        zsh = "eval \"$(" + BUILD + "/typeforge-import --completion zsh | sed '$d')\"; _arguments() { print -rl -- $@; }; "
        zsh += "_files() { print -r -- files $@; }; compadd() { shift; print -r -- $@; }; words=(" + BUILD + "/typeforge-import %s); CURRENT=%d; "
        self.assertEqual((0, "--overwrite[" + said.replace(":", "\\:") + "]:all|none|ask:(all none ask)"),
                         (lambda done: (done[0], [row for row in done[1].split("\n") if "overwrite" in row][-1]))(run("zsh", "-fc", zsh % ("''", 2) + "_typeforge_import")))
        for line, place, offered in [("-l ''", 3, "dtd xml xsd btd odbc wsdl jsonschema openapi avro json\nfiles"), ("-l -o a xsd ''", 6, "files -g (#i)(*.XSD|*.XML)")]:
            self.assertEqual((0, offered + "\n", ""), run("zsh", "-fc", zsh % (line, place) + "_typeforge_import_sources"), line)
        for line, place, is_offered in [("odbc --f", 3, False), ("dtd --f", 3, True), ("--f", 2, True)]:
            self.assertEqual(is_offered, "--full[" in run("zsh", "-fc", zsh % (line, place) + "_typeforge_import")[1], line)

    def test_the_desktop_accepts_its_files(self):
        manual = "man --warnings --local-file -Tutf8 -Z ./typeforge"
        for command in ["desktop-file-validate org.typeforge.typeforge.desktop", manual + ".1", manual + "-import.1"]:
            status, out, err = run(*command.split())
            self.assertEqual((0, ""), (status, err), command + "\n" + out)
        # There is no home page; newer versions warn of that.
        _, out, err = run("appstreamcli", "validate", "--no-net", "org.typeforge.typeforge.metainfo.xml")
        self.assertIn("Validation ", out + err)
        self.assertEqual([], [row for row in out.split("\n") if re.match("[EW]: ", row) and "url-homepage-missing" not in row])

    def test_help_pages_lead_to_one_another(self):
        carried = re.findall(r"<file>help/(.*)</file>", read(SOURCE + "/src/Resources/wizard.qrc"))
        self.assertEqual(sorted(os.listdir(HELP)), sorted(carried))
        pages = ["index.html"]
        for page in pages:  # the list grows during the loop
            text = read(HELP + page)
            self.assertIn('href="help.css"', text)
            pages += sorted(set(re.findall(r'<a href="([^"]*)"', text)) - set(pages))
        self.assertEqual(sorted(pages + ["help.css"]), sorted(carried))
        self.assertEqual(13, len(pages))


if __name__ == "__main__":
    unittest.main()
