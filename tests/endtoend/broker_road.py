"""From the welcome page to types in a repository, and again over types that exist, with the keyboard alone."""
import os
import sqlite3
import subprocess
import unittest

from harness import BUILD, WizardTest, wait_until

LOGIN = "Typeforge - Login to Broker"
RESULT = "Typeforge - Creation result"
QUESTION = "Overwrite confirmation"
SELECT = "SELECT document, revision FROM typeforge_types ORDER BY name"


class BrokerRoad(WizardTest):
    def walk_to_login(self):
        self.source = os.path.join(self.home, "twenty.dtd")
        with open(self.source, "w") as file:
            file.write("<!ELEMENT r (%s)>" % ",".join("e%02d" % i for i in range(19)))
            file.writelines("<!ELEMENT e%02d (x, y)>" % i for i in range(19))
        self.start()
        self.next("Typeforge - Select source type")
        self.choose_importer("dtd", "Typeforge - Select source")
        self.type(self.source)
        self.next("Typeforge - Generated types")
        self.next("Typeforge - Select output mode")
        self.key("Down")  # a letter with Alt would take its time to arrive at the radio button
        self.next(LOGIN, "Return")

    def log_on(self, server, port, *account):
        self.key("alt+n")
        self.type(server)
        self.key("Tab")
        self.type(port)
        self.key("Tab", "Down", *[] if account else ["Up"])
        for text in account:
            self.key("Tab")
            self.type(text)

    def create(self, *answers):
        self.key("Return")
        for key in answers:
            question = self.expect_title(QUESTION)
            self.key(key)
            wait_until("the end of the question", lambda: self.window(QUESTION) != question)
        self.expect_title(RESULT)

    def check(self, rows):
        """Creates and replaces; the revision of a row tells how often it was replaced."""
        documents = sorted(self.imported("dtd", self.source, "--type", name).decode()
                           for name in ["r"] + ["e%02d" % i for i in range(19)])
        first = self.imported("dtd", self.source, "--list").decode().split("\t")[0]
        self.create()
        self.assertEqual([(document, 0) for document in documents], sorted(rows()))
        for answers, first_replaced, rest_replaced in [
                (["alt+y", "alt+a"], 1, 1), (["Return", "alt+t"], 1, 1), (["alt+y", "Escape", "alt+t"], 2, 1)]:
            with self.subTest(answers):
                self.key("alt+b")
                self.expect_title(LOGIN)
                self.create(*answers)
                self.assertEqual([(document, first_replaced if ' NAME="%s"' % first in document else rest_replaced)
                                  for document in documents], sorted(rows()))
        self.next("Typeforge - Finish")
        self.finish()

    def test_the_local_repository(self):
        self.walk_to_login()
        self.log_on("local", "7250")

        def rows():
            with sqlite3.connect(self.home + "/data/typeforge/types.db") as database:
                return list(database.execute(SELECT))
        self.check(rows)

    def test_a_repository_in_postgresql(self):
        server = subprocess.Popen([BUILD + "/test_postgres", "CREATE DATABASE typeforge"], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.communicate)
        port, user, password = (server.stdout.readline().strip() for _ in range(3))
        self.walk_to_login()
        self.log_on("127.0.0.1", port, user, "wrong")
        self.key("Return")
        self.expect_error()
        self.expect_title(LOGIN)
        self.log_on("127.0.0.1", port, user, password)

        def rows():
            lines = subprocess.check_output(["psql", "-XAtqh", "127.0.0.1", "-p", port, "-U", user, "-c", SELECT,
                                             "typeforge"], env=dict(os.environ, PGPASSWORD=password), text=True)
            return [(document, int(revision)) for document, revision in (line.rsplit("|", 1) for line in lines.splitlines())]
        self.check(rows)
        for folder, _, names in os.walk(self.home):
            for name in names:
                with open(os.path.join(folder, name), "rb") as file:
                    self.assertNotIn(password.encode(), file.read(), name)


if __name__ == "__main__":
    unittest.main()
