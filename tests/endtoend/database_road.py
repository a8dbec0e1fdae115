"""From the welcome page to a written file with the keyboard alone, out of databases."""
import os
import sqlite3
import subprocess
import unittest

from harness import BUILD, WizardTest, contents, wait_until

TABLES = ["CREATE TABLE one (a integer, b varchar(20))", "CREATE TABLE three (d text)", "CREATE TABLE two (c date)"]


class DatabaseRoad(WizardTest):
    def add_source(self, name, settings):
        with open(self.environment["ODBCINI"], "a") as sources:
            sources.write("[%s]\n%s\n" % (name, settings))

    def to_data_sources(self):
        self.start()
        self.next("Typeforge - Select source type")
        self.choose_importer("odbc", "Typeforge - Select data source")

    def write_two_tables(self):
        """From the table page to the finish page, with the first two tables; gives the written file."""
        written = os.path.join(self.home, "tables.xml")
        self.expect_title("Typeforge - Select table(s)")
        self.key("Home", "shift+Down")
        self.next("Typeforge - Generated types")
        self.next("Typeforge - Select output mode")
        self.next("Typeforge - Select output file")
        self.type(written)
        self.next("Typeforge - Finish")
        return contents(written)

    def test_sqlite_tables_are_written_as_the_command_line_does(self):
        file = self.home + "/orders.db"
        database = sqlite3.connect(file)
        for statement in TABLES:
            database.execute(statement)
        database.close()
        self.add_source("Broken", "Driver=/no/such/driver.so")
        self.add_source("Orders", "Driver=SQLite3\nDatabase=" + file)
        self.to_data_sources()
        self.key("Home", "alt+n")
        self.expect_error()
        self.expect_title("Typeforge - Select data source")
        self.key("End", "alt+n")
        self.assertEqual(self.imported("odbc", "Orders", "-t", "one", "-t", "three"), self.write_two_tables())

    def test_a_server_is_logged_on_to_and_its_tables_are_written(self):
        server = subprocess.Popen([BUILD + "/test_postgres", *TABLES], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  text=True)
        self.addCleanup(server.communicate)
        port, user, password = (server.stdout.readline().strip() for _ in range(3))
        self.add_source("Server", "Driver=PostgreSQL Unicode\nServername=127.0.0.1\nDatabase=postgres\nPort=" + port)
        self.to_data_sources()
        self.key("Home", "alt+n")
        refused = None
        for attempt in ("wrong", password):
            wait_until("the logon", lambda: self.window("Log on to Server") not in ("", refused))
            self.expect_title("Log on to Server")
            refused = self.window("Log on to Server")
            self.type(user)
            self.key("Tab")
            self.type(attempt)
            self.key("Return")
        source = "DSN=Server;UID=%s;PWD={%s};" % (user, password.replace("}", "}}"))
        self.assertEqual(self.imported("odbc", source, "-t", "one", "-t", "three"), self.write_two_tables())


if __name__ == "__main__":
    unittest.main()
