"""Writes a file from databases, from the welcome page on by keyboard only."""
import pathlib
import sqlite3
import unittest

from harness import WizardTest, setUpModule, wait_until

TABLES = ["CREATE TABLE one (a integer, b varchar(20))", "CREATE TABLE three (d text)", "CREATE TABLE two (c date)"]


class DatabaseRoad(WizardTest):
    def to_data_sources(self, sources):
        pathlib.Path(self.home, "odbc.ini").write_text(sources)
        self.start()
        self.next("Select source type")
        self.choose_importer("odbc", "Select data source")
        self.key("Home", "alt+n")

    def check(self, source):
        """Writes the first two tables of the list."""
        self.expect_page("Select table(s)")
        self.key("Home", "shift+Down")
        self.assertEqual(self.imported("odbc", source, "-t", "one", "-t", "three"), self.write())

    def test_sqlite_tables_are_written_as_the_command_line_does(self):
        database = sqlite3.connect(self.home + "/orders.db")
        database.executescript(";".join(TABLES))
        database.close()
        self.to_data_sources("[Broken]\nDriver=/no/such/driver.so\n[Orders]\nDriver=SQLite3\nDatabase=%s/orders.db" % self.home)
        self.expect_error("Select data source")
        self.key("End", "alt+n")
        self.check("Orders")

    def test_a_server_is_logged_on_to_and_its_tables_are_written(self):
        port, user, password = self.postgres(*TABLES)
        self.to_data_sources("[S]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\nDatabase=postgres\nPort=" + port)
        refused = None
        for fields in ((user, "wrong"), (password,)):  # the user name is still filled in
            wait_until("the logon", lambda: self.window("Log on to S") not in ("", refused))
            self.expect_title("Log on to S")
            refused = self.window("Log on to S")
            self.type(*fields)
            self.key("Return")
        self.check("DSN=S;UID=%s;PWD={%s};" % (user, password.replace("}", "}}")))


if __name__ == "__main__":
    unittest.main()
