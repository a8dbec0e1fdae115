"""From the welcome page to a written file with the keyboard alone, for each kind of file."""
import os
import unittest

from harness import SOURCE, WizardTest, contents

EXAMPLES = os.path.join(SOURCE, "examples")


class FileRoad(WizardTest):
    def walk(self, importer, source):
        """From the importer page to the finish page; gives the path of the written file."""
        written = os.path.join(self.home, importer + "-types.xml")
        self.choose_importer(importer, "Typeforge - Select source")
        self.type(source)
        self.next("Typeforge - Generated types")
        self.next("Typeforge - Select output mode")
        self.next("Typeforge - Select output file")
        self.type(written)
        self.next("Typeforge - Finish")
        return written

    def test_every_kind_of_file_is_written_as_the_command_line_does(self):
        self.start()
        self.next("Typeforge - Select source type")
        earlier = None
        for importer, name in [("dtd", "order.dtd"), ("xsd", "order.xsd"), ("xml", "order.xml"), ("btd", None)]:
            with self.subTest(importer):
                source = os.path.join(EXAMPLES, name) if name else earlier
                written = self.walk(importer, source)
                self.assertEqual(self.imported(importer, source), contents(written))
                earlier = earlier or written
                self.key("alt+b")
                self.expect_title("Typeforge - Select source type")

    def test_finish_stores_what_the_next_run_starts_with(self):
        self.start()
        self.key("alt+h")
        self.next("Typeforge - Select source type")
        self.walk("xml", os.path.join(EXAMPLES, "order.xml"))
        self.finish()
        self.start("Typeforge - Select source type")
        self.next("Typeforge - Select source")
        self.next("Typeforge - Generated types")  # with the importer and the file of the first run

    def test_cancel_stores_nothing(self):
        self.start()
        self.next("Typeforge - Select source type")
        self.walk("dtd", os.path.join(EXAMPLES, "order.dtd"))
        self.key("Escape")
        self.expect_end()
        self.assertFalse(os.path.exists(self.environment["XDG_CONFIG_HOME"] + "/typeforge/settings.json"))

    def test_an_error_leaves_the_page_and_help_stays_beside_it(self):
        self.start()
        self.next("Typeforge - Select source type")
        self.choose_importer("dtd", "Typeforge - Select source")
        self.type("nowhere.dtd")
        self.key("alt+n")
        self.expect_error()
        self.expect_title("Typeforge - Select source")
        self.key("F1")
        self.expect_title("Choosing the input file - Typeforge help")
        self.expect_title("Typeforge - Select source")
        self.type(os.path.join(EXAMPLES, "order.dtd"))
        self.next("Typeforge - Generated types")
        self.assertTrue(self.window("Choosing the input file - Typeforge help"))


if __name__ == "__main__":
    unittest.main()
