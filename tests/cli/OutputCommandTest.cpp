#include "CommandFixture.h"
#include "TestFolders.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

const std::string kDisk = TEST_BUILD_DIR "/libtest_disk.so";
const std::string kNoLinkOrder = " ASAN_OPTIONS=verify_asan_link_order=0"; // a library is loaded before the sanitizer's

TEST_F(ImportCommand, WritesWhereItMay)
{
    const Case rows[] = {
        {"$import dtd r.dtd -o none/x", {3, "", says("can't write none/x: No such file or directory")}},
        {"$import dtd r.dtd -o .", {3, "", says("can't write .: Is a directory")}},
        {"ln -s l l; $import dtd r.dtd -o l; rm l", {0, "", says("can't write l: Too many levels of symbolic links")}},
        {"$import dtd r.dtd -o /dev/full", {3, "", says("can't write /dev/full: No space left on device")}},
        {"$import dtd r.dtd >/dev/full", {3, "", says("can't write standard output: No space left on device")}},
        {"$import --help >/dev/full", {3, "", says("can't write standard output: No space left on device")}},
        {"for what in --version --importers '--completion fish'; do $import $what >/dev/full || echo $? >&2; done",
         {0, "",
          says("can't write standard output: No space left on device") + "3\n" +
              says("can't write standard output: No space left on device") + "3\n" +
              says("can't write standard output: No space left on device") + "3\n"}},
        {"$import r.dtd -o /dev/null --report - 2>/dev/full", {3, "", ""}},
        {"$import dtd r.dtd >&-", {3, "", says("can't write standard output: Bad file descriptor")}},
        // Pipes are read and written. Standard output is written into the open file.
        {"mkfifo p q; cat r.dtd >p & cat q & $import dtd p -l -o q; wait", {0, kList, ""}},
        {"echo >new; $import dtd r.dtd -l -o /dev/stdout >>new; cat new", {0, "\n" + kList, ""}},
        // A large piece after small ones.
        {"export SOURCE_DATE_EPOCH=0; $import dtd wide -q >a; $import dtd wide -q -o b; cmp a b", {0, "", ""}},

        // An output that is read: the options, a database, a file that the source refers to.
        {"printf 'r.dtd\\n-o\\nargs\\n' >args; $import @args; wc -l <args",
         {0, "3\n", mistake("args: it would be read and written, or written twice")}},
        {"python3 -c \"import sqlite3; sqlite3.connect('o.db').execute('CREATE TABLE t (a INTEGER)')\"; "
         "$import odbc \"Driver=SQLite3;Database=$PWD/o.db;\" -o o.db; head -c 6 o.db",
         {0, "SQLite", mistake("o.db: it would be read and written, or written twice")}},
        {"printf '<!ENTITY %% m SYSTEM \"y.mod\">%%m;<!ELEMENT a (b)>' >y.dtd; echo '<!ELEMENT b EMPTY>' >y.mod; ln -s "
         "y.mod y; "
         "for o in '-o y.mod' '-l --report y' '-o o --depfile y.mod'; do $import y.dtd --full -q $o; done; cat y.mod",
         {0, "<!ELEMENT b EMPTY>\n",
          mistake("y.mod: the source refers to it, so it can't be an output") +
              mistake("y: the source refers to it, so it can't be an output") +
              mistake("y.mod: the source refers to it, so it can't be an output")}},
        {"mkdir -p d/y; $import r.dtd -o d/x --report d/y/../x",
         {2, "", mistake("d/y/../x: it would be read and written, or written twice")}},
        {"ln -s y/../x d/l; $import r.dtd --report d/l -o $PWD/d/x",
         {2, "", mistake("d/l: it would be read and written, or written twice")}},
        {"for report in /dev/stdout /dev/fd/1 -; do $import r.dtd -o d/x --report $report >d/x 2>d/x; cat "
         "d/x; done",
         {0,
          mistake("/dev/stdout: it would be read and written, or written twice") +
              mistake("/dev/fd/1: it would be read and written, or written twice") +
              mistake("d/x: it would be read and written, or written twice"),
          ""}},
        {"$import r.dtd --report d/x >d/x; $import r.dtd -o d/x -l; $import r.dtd --report d/x/../x",
         {3, "",
          mistake("d/x: it would be read and written, or written twice") +
              says("can't write d/x/../x: Not a directory")}},
    };
    folder.write("wide", wide);
    for (const Case& row : rows)
        EXPECT_EQ(run(row.line), row.answer) << row.line;
}

// The folder is unchanged afterwards, including the file to be replaced.
TEST_F(ImportCommand, FailureLeavesNoFile)
{
    const std::string full = "ulimit -f 1; "; // a limit on file sizes stands in for a full disk
    const struct
    {
        std::string line;
        Answer answer;
    } rows[] = {
        {"$import dtd none -o old", {1, "", "none: error: No such file or directory\n"}},
        {"$import dtd r.dtd --type x -o old", {1, "", "r.dtd: error: there is no type called x\n"}},
        {"$import dtd - -o old </", {1, "", says("can't copy standard input: Is a directory")}},
        {full + "$import dtd wide -q -o old", {3, "", says("can't write old: File too large")}},
        {full + "$import dtd wide -q -o new", {3, "", says("can't write new: File too large")}},
    };
    folder.write("wide", wide);
    for (const auto& [line, answer] : rows) {
        EXPECT_EQ(run(line), answer) << line;
        EXPECT_EQ(TempDir::read(folder.path("old")), "old") << line;
        EXPECT_EQ(names(), "old r.dtd wide ") << line;
    }
}

// The name refers to the new file only after that is on the disk. Until then it refers to the old file, which other
// hard links keep.
TEST_F(ImportCommand, PutsAFileIntoItsPlaceWhenItIsWhole)
{
    EXPECT_EQ(run("ln old other; LD_PRELOAD=" + kDisk + kNoLinkOrder + " $import r.dtd -l -o old; cat other old"),
              (Answer{0, "old" + kList, "fsync\nrename\n"}));
    if (geteuid() == 0) { // no file can be created in /proc, the current folder
        EXPECT_EQ(run("file=$PWD/r.dtd; out=/typeforge-test-$$; cd /proc; $import $file -l -o $out; cat $out; rm $out"),
                  (Answer{0, kList, ""}));
    }
}

// A file without write permission stays. A writable file in a folder without write permission is overwritten in place.
TEST_F(ImportCommand, GoesByTheRightsOfFileAndFolder)
{
    // Root may write everything, so root becomes another user, with a program that every user can reach.
    fs::copy_file(TEST_BUILD_DIR "/typeforge-import", folder.path("import"));
    fs::copy_file(kDisk, folder.path("disk.so"));
    const std::string disk = "$as env LD_PRELOAD=$PWD/disk.so " + kNoLinkOrder;
    const bool isRoot = geteuid() == 0;
    const std::string somebody = isRoot ? "as='setpriv --reuid=65534 --clear-groups' own=chown; " : "own=:; ";
    const auto refused = [](const std::string& name) { return says("can't write " + name + ": Permission denied"); };
    const std::string denied = "s.xsd:2:1: error: x.xsd: Permission denied\n";
    const struct
    {
        std::string line;
        Answer answer;
    } rows[] = {
        {"chmod 777 .; chmod 444 old; $own 65534 old; $as ./import dtd r.dtd -o old; $own 0 old; cat old",
         {0, "old", refused("old")}},
        {"chmod 0 x.xsd; for how in '' --full; do $as ./import xsd $how s.xsd; done; rm -f s.xsd x.xsd",
         {0, "", denied + denied}},
        {"chmod 0 closed; $as ./import xsd hidden.xsd; rm -r closed hidden.xsd",
         {0, "", "hidden.xsd:1:56: error: closed/x.xsd: Permission denied\n"}},
        {"chmod 0 m.mod; $as ./import dtd --full m.dtd; rm -f m.dtd m.mod",
         {0, "", "m.dtd:2:1: error: m.mod: Permission denied\n"}},
        {R"(echo '{"$ref":"b.json"}' >a.json; echo {} >b.json; chmod 0 b.json; $as ./import jsonschema a.json; rm -f ?.json)",
         {0, "", "a.json:1:9: error: b.json: Permission denied\n"}},
        {"chmod 777 .; chmod 666 old; $as ./import dtd r.dtd -l -o old; stat -c '%u %a' old; cat old",
         {0, std::to_string(geteuid()) + " 666\n" + kList, ""}},
        {"chmod 555 .; chmod 666 old; $as ./import dtd r.dtd -o new", {3, "", refused("new")}},
        {"seq 1000 >old; $as ./import dtd r.dtd -l -o old; cat old", {0, kList, ""}},
        {"seq 1000 >old; exec 2>/dev/null; " + disk +
             " DISK_KILLS=sendfile ./import dtd r.dtd -l -o old; stat -c %s old",
         {0, std::to_string(kList.size()) + "\n", ""}},
        {"seq 1000 >old; " + disk + " DISK_FAILS=ftruncate ./import dtd r.dtd -l -o old; seq 1000 | cmp - old",
         {0, "", says("can't write old: Input/output error")}},
        {"printf old >old; $as sh -c 'ulimit -f 1; ./import dtd wide -q -o old'; cat old; chmod 755 .",
         {0, "old", says("can't write old: File too large")}},
    };
    folder.write("wide", wide);
    folder.write("m.mod", "<!ELEMENT b (#PCDATA)>");
    folder.write("m.dtd", "<!ENTITY % m SYSTEM 'm.mod'>\n%m;<!ELEMENT a (b)>");
    folder.write("x.xsd", "<s/>");
    folder.write("closed/x.xsd", "<s/>");
    folder.write("hidden.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                               "<xs:include schemaLocation='closed/x.xsd'/></xs:schema>");
    folder.write("s.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n"
                          "<xs:include schemaLocation='x.xsd'/></xs:schema>");
    for (const auto& [line, answer] : rows)
        EXPECT_EQ(run(somebody + line), answer) << line;
    EXPECT_EQ(names(), "disk.so import old r.dtd wide ");
}

TEST_F(ImportCommand, ReplacesWhatALinkNamesAndKeepsItsOwnerAndPermissions)
{
    fs::create_symlink("old", folder.path("link"));
    EXPECT_EQ(run("umask 022; chmod 640 old; chown 65534:65534 old 2>&-; stat -c %u:%g old >new;"
                  "$import dtd r.dtd -l -o link; stat -c %u:%g old | cmp - new; $import dtd r.dtd -l -o made;"
                  "readlink link; stat -c %a old made; cat old"),
              (Answer{0, "old\n640\n644\n" + kList, ""}));
}

} // namespace
