"""Writes a file from each kind of source file, from the welcome page on by keyboard only."""
import os
import subprocess
import unittest

from harness import BUILD, EXAMPLES, WizardTest, setUpModule


class FileRoad(WizardTest):
    def test_says_what_it_is_without_a_display(self):
        no_display = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        for option, start in [("--help", "Usage: typeforge [FILE]"), ("--version", "typeforge 1.")]:
            ran = subprocess.run([BUILD + "/typeforge", option], env=no_display, capture_output=True, text=True)
            self.assertEqual((0, start, ""), (ran.returncode, ran.stdout[:len(start)], ran.stderr))
            with open("/dev/full", "w") as full:
                self.assertEqual(1, subprocess.run([BUILD + "/typeforge", option], env=no_display, stdout=full).returncode)

    def walk(self, importer, source):
        """Walks from the importer page to the finish page. Returns the written file."""
        self.choose_importer(importer, "Select source")
        self.type(source)
        return self.write(importer + "-types.xml")

    def test_every_kind_of_file_is_written_as_the_command_line_does(self):
        self.start()
        self.key("alt+h")
        self.next("Select source type")
        self.key("F1")
        self.expect_title("Choosing an importer - Typeforge help")
        self.expect_page("Select source type")  # the wizard stays usable beside the help window
        for importer, folder, name in [("dtd", EXAMPLES, "order.dtd"), ("xsd", EXAMPLES, "order.xsd"),
                                       ("btd", self.home, "dtd-types.xml"), ("xml", EXAMPLES, "order.xml")]:
            with self.subTest(importer):
                source = os.path.join(folder, name)
                self.assertEqual(self.imported(importer, source), self.walk(importer, source))
                self.key("alt+b")
                self.expect_page("Select source type")
        self.next("Select source", "Generated types", "Select output mode", "Select output file", "Finish")
        self.assertTrue(self.window("Choosing an importer - Typeforge help"))
        self.end("alt+f")
        self.environment["TYPEFORGE_VIEWER"] = "false"
        self.start("Select source type")  # the next run starts with the last importer and file
        self.next("Select source", "Generated types")
        self.key("Home", "Tab", "Tab", "space", "shift+Tab", "End", "Return")  # from a type's structure to its users
        for keys, window in [(["alt+v"], "t_Line - Typeforge type"), (["alt+p"], "t_Line - Typeforge picture")]:
            self.key(*keys)
            self.expect_title(window)
            self.key("Escape")
            self.expect_page("Generated types")
        self.end("Escape")


if __name__ == "__main__":
    unittest.main()
