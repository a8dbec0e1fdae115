"""Creates types in a repository, new and existing ones, from the welcome page on by keyboard only."""
import os
import pathlib
import sqlite3
import unittest

from harness import WizardTest, ask, setUpModule, wait_until

LOGIN = "Login to Broker"
QUESTION = "Overwrite confirmation"
SELECT = "SELECT document, revision FROM typeforge_types ORDER BY name"


class BrokerRoad(WizardTest):
    def walk_to_login(self):
        self.source = os.path.join(self.home, "twenty.dtd")
        self.names = ["e%02d" % i for i in range(19)]
        with open(self.source, "w") as file:
            file.write("<!ELEMENT r (%s)>" % ",".join(self.names))
            file.writelines("<!ELEMENT %s (x, y)>" % name for name in self.names)
        self.start()
        self.next("Select source type")
        self.choose_importer("dtd", "Select source")
        self.type(self.source)
        self.next("Generated types", "Select output mode")
        self.key("Down")  # an Alt key would reach the radio button later
        self.key("Return")
        self.expect_page(LOGIN)

    def log_on(self, server, port, *account):
        self.key("alt+n")
        self.type(server, port)
        self.key("Tab", "Down", "Tab" if account else "Up")
        if account:
            self.type(*account)
        self.key("Return")

    def check(self, rows):
        """Creates and replaces types; the revision of a row counts its replacements."""
        documents = sorted(self.imported("dtd", self.source, "--type", name).decode() for name in ["r"] + self.names)
        first = self.imported("dtd", self.source, "--list").decode().split("\t")[0]
        for answers, first_replaced, rest_replaced in [
                ([], 0, 0), (["alt+y", "alt+a"], 1, 1), (["Return", "alt+t"], 1, 1), (["alt+y", "Escape", "alt+t"], 2, 1)]:
            if answers:
                self.key("alt+b")
                self.expect_page(LOGIN)
                self.key("Return")
            for key in answers:
                question = self.expect_title(QUESTION)
                self.key(key)
                wait_until("the end of the question", lambda: self.window(QUESTION) != question)
            self.expect_page("Creation result")
            self.assertEqual([(document, first_replaced if ' NAME="%s"' % first in document else rest_replaced)
                              for document in documents], sorted(rows()), answers)
        self.next("Finish")
        self.end("alt+f")

    def test_the_local_repository(self):
        self.walk_to_login()
        self.log_on("local", "7250")

        def rows():
            with sqlite3.connect(self.home + "/data/typeforge/types.db") as database:
                return list(database.execute(SELECT))
        self.check(rows)

    def test_a_repository_in_postgresql(self):
        port, user, password = self.postgres("CREATE DATABASE typeforge")
        self.walk_to_login()
        self.log_on("127.0.0.1", port, user, "wrong")
        self.expect_error(LOGIN)
        self.log_on("127.0.0.1", port, user, password)

        def rows():
            place = "host=127.0.0.1 port=%s user=%s password='%s' dbname=typeforge" % (port, user, password)
            lines = [line.rsplit("|", 1) for line in ask("psql", "-XAtqc", SELECT, place).splitlines()]
            return [(document, int(revision)) for document, revision in lines]
        self.check(rows)
        for path in filter(pathlib.Path.is_file, pathlib.Path(self.home).rglob("*")):
            self.assertNotIn(password.encode(), path.read_bytes(), path)


if __name__ == "__main__":
    unittest.main()
