#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/LoopbackServer.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

struct Result
{
    int status;
    std::string out;
    std::string err;
};

class Qrmxml : public testing::Test
{
protected:
    fs::path folder = fs::path(testing::TempDir()) / ("qrmxml-" + std::to_string(::getpid()));

    Qrmxml()
    {
        fs::create_directories(folder);
        fs::current_path(folder);
    }
    ~Qrmxml() override
    {
        fs::current_path("/");
        fs::remove_all(folder);
    }

    static void file(const std::string& name, const std::string& content)
    {
        std::ofstream(name, std::ios::binary) << content;
    }

    /// Runs the tool through a shell, so that arguments may redirect; `before` comes before its name. What a
    /// sanitizer finds ends it with a status that no test expects.
    static Result run(const std::string& arguments, const std::string& before = "")
    {
        const std::string command = "export ASAN_OPTIONS=\"$ASAN_OPTIONS:exitcode=99\" "
                                    "LSAN_OPTIONS=\"$LSAN_OPTIONS:suppressions=" XERCES_LEAKS
                                    ":print_suppressions=0\"; { "
                                    + before + " '" QRMXML "' " + arguments + " ; } >.out 2>.err";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(".out"), contentOf(".err")};
    }

    /// All that lies here but what run() makes, hidden files included.
    static std::set<std::string> filesHere()
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(".")) {
            names.insert(entry.path().filename());
        }
        names.erase(".out");
        names.erase(".err");
        return names;
    }

    /// A document of some megabytes, so that reading and writing it takes a while.
    static void largeFile(const std::string& name)
    {
        std::string content = "<a>";
        for (int i = 0; i < 500000; ++i) {
            content += "<b/>";
        }
        file(name, content + "</a>");
    }
};

/// What is wrong, without the excerpt that shows where.
std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n') + 1);
}

constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

TEST_F(Qrmxml, WritesADocument)
{
    file("a.xml", "<a  n = 'v' >\u0416</a>");
    const Result result = run("write a.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, kHeader + std::string("<a n=\"v\">\u0416</a>\n"));
    EXPECT_EQ(result.err, "");
}

TEST_F(Qrmxml, WritesInAnotherEncoding)
{
    file("a.xml", "<a>\u00e9\u0416</a>");
    EXPECT_EQ(run("write --encoding ISO-8859-1 a.xml").out,
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE9&#1046;</a>\n");
}

TEST_F(Qrmxml, ReadsStandardInput)
{
    const Result good = run("write -", "printf '<a/>' |");
    EXPECT_EQ(good.out, kHeader + std::string("<a/>\n"));
    const Result bad = run("check -", "printf '<a>' |");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(
        bad.err,
        "<stdin>:1:4: error: input ended before all started tags were ended; last tag started is 'a'\n");
    EXPECT_EQ(run("write -i -", "printf '<a/>' |").status, 2);
}

TEST_F(Qrmxml, ReplacesAFileAndKeepsItsPermissions)
{
    file("a.xml", "<a/>");
    file("old.xml", "old");
    fs::permissions("old.xml", fs::perms(0640));
    const Result result = run("write -o old.xml a.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(contentOf("old.xml"), kHeader + std::string("<a/>\n"));
    EXPECT_EQ(fs::status("old.xml").permissions(), fs::perms(0640));
    EXPECT_EQ(run("write -i a.xml").status, 0);
    EXPECT_EQ(contentOf("a.xml"), kHeader + std::string("<a/>\n"));
    EXPECT_EQ(run("write -o new.xml a.xml").status, 0);
    EXPECT_EQ(contentOf("new.xml"), kHeader + std::string("<a/>\n"));
    EXPECT_EQ(filesHere(), (std::set<std::string>{"a.xml", "new.xml", "old.xml"}));
}

TEST_F(Qrmxml, GivesNewFilesThePermissionsOfTheUsersMask)
{
    file("a.xml", "<a/>");
    EXPECT_EQ(run("write -o new.xml a.xml", "umask 027;").status, 0);
    EXPECT_EQ(fs::status("new.xml").permissions(), fs::perms(0640));
}

TEST_F(Qrmxml, LeavesAFileToItsOwner)
{
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can write the files of others";
    }
    file("a.xml", "<a/>");
    ASSERT_EQ(::chown("a.xml", 12345, 23456), 0);
    ASSERT_EQ(::chmod("a.xml", 04755), 0);
    EXPECT_EQ(run("write -i a.xml").status, 0);
    struct stat status = {};
    ASSERT_EQ(::stat("a.xml", &status), 0);
    EXPECT_EQ(status.st_uid, 12345u);
    EXPECT_EQ(status.st_gid, 23456u);
    EXPECT_EQ(status.st_mode & 07777u, 04755u);
}

TEST_F(Qrmxml, WritesThroughALink)
{
    file("a.xml", "<a/>");
    file("target.xml", "old");
    fs::create_symlink("target.xml", "link.xml");
    EXPECT_EQ(run("write -o link.xml a.xml").status, 0);
    EXPECT_TRUE(fs::is_symlink("link.xml"));
    EXPECT_EQ(contentOf("target.xml"), kHeader + std::string("<a/>\n"));

    fs::create_directory("folder");
    fs::create_symlink("folder/none.xml", "early.xml");
    EXPECT_EQ(run("write -o early.xml a.xml").status, 0);
    EXPECT_TRUE(fs::is_symlink("early.xml"));
    EXPECT_EQ(contentOf("folder/none.xml"), kHeader + std::string("<a/>\n"));

    fs::create_symlink("ring.xml", "ring.xml");
    const Result ring = run("write -o ring.xml a.xml");
    EXPECT_EQ(ring.status, 2);
    EXPECT_EQ(ring.err, "ring.xml: error: cannot write: Too many levels of symbolic links\n");
}

TEST_F(Qrmxml, WritesIntoWhatIsNoFile)
{
    file("a.xml", "<a/>");
    const std::string written = kHeader + std::string("<a/>\n");
    EXPECT_EQ(run("write -o - a.xml").out, written);
    EXPECT_EQ(run("write -o /dev/stdout a.xml | cat").out, written);
    file("log", "old\n");
    EXPECT_EQ(run("write -o /dev/stdout a.xml >>log").status, 0);
    EXPECT_EQ(run("write -o /dev/fd/3 a.xml 3>>log").status, 0);
    EXPECT_EQ(contentOf("log"), "old\n" + written + written);
    ASSERT_EQ(::mkfifo("fifo", 0600), 0);
    const Result fifo = run("write -o fifo a.xml & cat fifo; wait $!");
    EXPECT_EQ(fifo.status, 0);
    EXPECT_EQ(fifo.out, written);
    EXPECT_TRUE(fs::is_fifo("fifo"));
    EXPECT_EQ(filesHere(), (std::set<std::string>{"a.xml", "fifo", "log"}));
}

/// Writes large.xml to old.xml and sends the signal when the temporary file shows up.
/// @return the status of wait; that of a normal end where the writing was over before anybody saw it
int interruptedWrite(int signal, const std::function<bool()>& isTemporaryFileThere)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::execl(QRMXML, QRMXML, "write", "-o", "old.xml", "large.xml", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    int status = 0;
    while (!isTemporaryFileThere()) {
        if (::waitpid(child, &status, WNOHANG) == child) {
            return status;
        }
    }
    ::kill(child, signal);
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(Qrmxml, RemovesItsTemporaryFileWhenASignalEndsIt)
{
    largeFile("large.xml");
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        int status = 0;
        // On a busy machine the moment is missed now and then.
        for (int attempt = 0; attempt < 50 && !WIFSIGNALED(status); ++attempt) {
            file("old.xml", "old");
            status = interruptedWrite(signal, [] { return filesHere().size() > 2; });
            EXPECT_EQ(filesHere(), (std::set<std::string>{"large.xml", "old.xml"}));
        }
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_EQ(contentOf("old.xml"), "old");
    }
}

TEST_F(Qrmxml, RefusesEncodingsInWhichADocumentWouldBeDamaged)
{
    file("a.xml", "<a>\u3042&lt;</a>");
    for (const std::string encoding : {"UTF-16", "UTF-16LE", "UTF-32", "UTF-7", "IBM037", "ISO-2022-JP",
                                       "ISO-2022-KR", "HZ", "SCSU", "BOCU-1"}) {
        const Result result = run("write -i --encoding " + encoding + " a.xml");
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, "qrmxml: error: cannot write documents in " + encoding
                                  + ": only encodings that contain ASCII byte for byte can be written\n");
    }
    const Result blanks = run("write -i --encoding 'ISO 8859 1' a.xml");
    EXPECT_EQ(blanks.status, 2);
    EXPECT_EQ(blanks.err, "qrmxml: error: no XML declaration can name the encoding \"ISO 8859 1\"\n");
    EXPECT_EQ(contentOf("a.xml"), "<a>\u3042&lt;</a>");
}

TEST_F(Qrmxml, WritesEncodingsOfSeveralBytesThatKeepAscii)
{
    file("a.xml", "<a>\u3042&lt;</a>");
    EXPECT_EQ(run("write --encoding Shift_JIS a.xml").out,
              "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>\n<a>\x82\xA0&lt;</a>\n");
    EXPECT_EQ(run("write --encoding EUC-JP a.xml").out,
              "<?xml version=\"1.0\" encoding=\"EUC-JP\"?>\n<a>\xA4\xA2&lt;</a>\n");
    for (const char* encoding :
         {"Big5", "EUC-KR", "GB18030", "GBK", "KOI8-R", "windows-1251", "ISO-8859-15"}) {
        EXPECT_EQ(run(std::string("write --encoding ") + encoding + " a.xml").status, 0) << encoding;
    }
}

TEST_F(Qrmxml, TellsWhatTheEncodingCannotExpress)
{
    const std::string before = "a.xml: error: cannot express U+0416 in US-ASCII (unit ";
    const std::pair<const char*, const char*> cases[] = {
        {"<a><b>\u0416</b><\u0416/></a>", "0): the element name \"\u0416\"\n"},
        {"<a \u0416='v'/>", "0): the attribute name \"\u0416\"\n"},
        {"<a><!--\u0416--></a>", "0): the comment \"\u0416\"\n"},
        {"<a><![CDATA[\u0416]]></a>", "0): the CDATA section \"\u0416\"\n"},
        {"<a><?\u0416 d?></a>", "0): the instruction name \"\u0416\"\n"},
        {"<a><?p \u0416?></a>", "0): the instruction \"\u0416\"\n"},
        {"<!DOCTYPE \u0416><a/>", "0): the document type name \"\u0416\"\n"},
        {"<!DOCTYPE a [<!ENTITY e \"\u0416\">]><a/>",
         "12): the internal subset \"<!ENTITY e \"\u0416\">\"\n"},
    };
    for (const auto& [document, piece] : cases) {
        file("a.xml", document);
        const Result result = run("write --encoding US-ASCII -o old.xml a.xml");
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err, piece != nullptr
                                  ? before + piece
                                  : "a.xml: error: cannot express U+0416 in US-ASCII (unit 4): the internal "
                                    "subset \"<!--\u0416-->\"\n");
        EXPECT_EQ(filesHere(), (std::set<std::string>{"a.xml"}));
    }
}

TEST_F(Qrmxml, LeavesTheOldFileWholeWhenAnythingFails)
{
    file("a.xml", "<a/>");
    file("bad.xml", "<a>");
    file("name.xml", "<\u0416/>");
    largeFile("large.xml");
    file("old.xml", "old");

    EXPECT_EQ(run("write -o old.xml bad.xml").status, 1);
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result unknown = run("write --encoding no-such -o old.xml a.xml");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "qrmxml: error: unknown encoding \"no-such\"\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result inexpressible = run("write --encoding ISO-8859-1 -o old.xml name.xml");
    EXPECT_EQ(inexpressible.status, 2);
    EXPECT_EQ(inexpressible.err, "name.xml: error: cannot express U+0416 in ISO-8859-1 (unit 0): "
                                 "the element name \"\u0416\"\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result tooLarge = run("write -o old.xml large.xml", "ulimit -f 100;");
    EXPECT_EQ(tooLarge.status, 2);
    EXPECT_EQ(tooLarge.err, "old.xml: error: cannot write: File too large\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    EXPECT_EQ(filesHere(), (std::set<std::string>{"a.xml", "bad.xml", "large.xml", "name.xml", "old.xml"}));
}

TEST_F(Qrmxml, TellsWhatCannotBeWritten)
{
    file("a.xml", "<a/>");
    const Result full = run("write -o /dev/full a.xml");
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(full.err, "/dev/full: error: cannot write: No space left on device\n");
    const Result standard = run("write a.xml >/dev/full");
    EXPECT_EQ(standard.status, 2);
    EXPECT_EQ(standard.err, "<stdout>: error: cannot write: No space left on device\n");
    const Result missing = run("write -o no/such/folder a.xml");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.err, "no/such/folder: error: cannot write: No such file or directory\n");
    const Result directory = run("write -o / a.xml");
    EXPECT_EQ(directory.status, 2);
    EXPECT_EQ(directory.err, "/: error: cannot write: Is a directory\n");
    const Result unnamed = run("write -o '' a.xml");
    EXPECT_EQ(unnamed.status, 2);
    EXPECT_EQ(unnamed.err, "'': error: cannot write: No such file or directory\n");
    const Result closed = run("write a.xml >&-");
    EXPECT_EQ(closed.status, 2);
    EXPECT_EQ(closed.err, "<stdout>: error: cannot write: Bad file descriptor\n");
    for (const char* arguments : {"--help >/dev/full", "--version >/dev/full", "tree a.xml >/dev/full"}) {
        const Result help = run(arguments);
        EXPECT_EQ(help.status, 2) << arguments;
        EXPECT_EQ(help.err, "<stdout>: error: cannot write: No space left on device\n") << arguments;
    }
    EXPECT_EQ(run("write -o /dev/null a.xml").status, 0);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Qrmxml, WorksWithAllStandardStreamsClosed)
{
    file("a.xml", "<a/>");
    EXPECT_EQ(run("write -o out.xml a.xml <&- >&- 2>&-").status, 0);
    EXPECT_EQ(contentOf("out.xml"), kHeader + std::string("<a/>\n"));
    EXPECT_EQ(run("write -o out.xml missing.xml <&- >&- 2>&-").status, 2);
    EXPECT_EQ(contentOf("out.xml"), kHeader + std::string("<a/>\n"));
}

TEST_F(Qrmxml, EndsQuietlyWhenNobodyReadsOn)
{
    largeFile("large.xml");
    for (const char* command : {"write", "tree"}) {
        const Result result =
            run(std::string(command) + " large.xml; echo $? >status; } | { head -c 10 >/dev/null");
        EXPECT_EQ(result.err, "") << command;
        EXPECT_EQ(contentOf("status"), "0\n") << command;
    }
}

TEST_F(Qrmxml, TellsWhatCannotBeRead)
{
    file("locked.xml", "<a/>");
    for (const char* command : {"write", "check", "tree"}) {
        const Result missing = run(std::string(command) + " missing.xml");
        EXPECT_EQ(missing.status, 2);
        EXPECT_EQ(missing.out, "");
        EXPECT_EQ(missing.err, "missing.xml: error: No such file or directory\n");
        const Result directory = run(std::string(command) + " /");
        EXPECT_EQ(directory.status, 2);
        EXPECT_EQ(directory.err, "/: error: Is a directory\n");
    }
    const Result broken = run("check /proc/self/mem");
    EXPECT_EQ(broken.status, 2);
    EXPECT_EQ(broken.err, "/proc/self/mem: error: cannot read: Input/output error\n");
    const Result closed = run("check - <&-");
    EXPECT_EQ(closed.status, 2);
    EXPECT_EQ(closed.err, "<stdin>: error: cannot read: Bad file descriptor\n");
}

TEST_F(Qrmxml, TellsThatItMayNotReadOrWrite)
{
    std::string asNobody;
    if (::geteuid() == 0) {
        asNobody = "setpriv --reuid 65534 --regid 65534 --clear-groups ";
        if (std::system((asNobody + "test -x '" QRMXML "' 2>.err").c_str()) != 0) {
            GTEST_SKIP() << "root cannot become somebody who may not";
        }
    }
    file("a.xml", "<a/>");
    file("locked.xml", "<b/>");
    fs::permissions("locked.xml", fs::perms::none);
    const Result unreadable = run("check locked.xml", asNobody);
    EXPECT_EQ(unreadable.status, 2);
    EXPECT_EQ(unreadable.err, "locked.xml: error: Permission denied\n");
    const Result unwritable = run("write -o locked.xml a.xml", asNobody);
    EXPECT_EQ(unwritable.status, 2);
    EXPECT_EQ(unwritable.err, "locked.xml: error: cannot write: Permission denied\n");
    fs::permissions(".", fs::perms(0555));
    const Result inFolder = run("write -o new.xml a.xml", asNobody);
    fs::permissions(".", fs::perms(0755));
    EXPECT_EQ(inFolder.status, 2);
    EXPECT_EQ(inFolder.err, "new.xml: error: cannot write: Permission denied\n");
    fs::permissions("locked.xml", fs::perms(0600));
    EXPECT_EQ(contentOf("locked.xml"), "<b/>");
    EXPECT_EQ(filesHere(), (std::set<std::string>{"a.xml", "locked.xml"}));
}

TEST_F(Qrmxml, ShowsNamesOfFilesWithoutDisturbingATerminal)
{
    EXPECT_EQ(run("check \"$(printf 'a\\033[31m\\233\\342\\200\\256\\303\\251')\"").err,
              "a\\x1B[31m\\x9B\\u202E\u00E9: error: No such file or directory\n");
    // A name that is no UTF-8 is good enough to be read.
    EXPECT_EQ(run("write \"$(printf 'l\\351.xml')\"", "printf '<a/>' >\"$(printf 'l\\351.xml')\";").out,
              kHeader + std::string("<a/>\n"));
}

TEST_F(Qrmxml, TellsWhereADocumentIsWrong)
{
    file("bad.xml", "<a>\n<b/>\nabcd & x</a>");
    file("empty.xml", "");
    file("junk.xml", "\x7F\x45LF\x02\x01\x01");
    for (const char* command : {"write", "check", "tree"}) {
        const Result bad = run(std::string(command) + " bad.xml");
        EXPECT_EQ(bad.status, 1);
        EXPECT_EQ(bad.out, "");
        EXPECT_EQ(bad.err, "bad.xml:3:7: error: expected entity name for reference\nabcd & x</a>\n      ^\n");
        for (const std::string name : {"empty.xml", "junk.xml"}) {
            const Result result = run(command + (" " + name));
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err, name + ":1:1: error: invalid document structure\n"
                                      + (name == "junk.xml" ? "\\x7FELF\\x02\\x01\\x01\n^\n" : ""));
        }
    }
}

TEST_F(Qrmxml, ShowsTheLineAndThePlaceOfAnError)
{
    const auto excerpt = [](const std::string& content) {
        file("x.xml", content);
        const std::string error = run("check x.xml").err;
        return error.substr(error.find('\n') + 1);
    };
    EXPECT_EQ(excerpt("<a>\r\n  <b></c>\r\n</a>"), "  <b></c>\n       ^\n") << "either line end";
    EXPECT_EQ(excerpt("<a>\r\r<b></c></a>"), "<b></c></a>\n     ^\n");
    EXPECT_EQ(excerpt("<a>\t\u0416<b></c></a>"), "<a>\\t\u0416<b></c></a>\n           ^\n")
        << "what is shown counts";
    EXPECT_EQ(excerpt("<a>\u65e5\u672c<b></c></a>"), "<a>\u65e5\u672c<b></c></a>\n            ^\n")
        << "wide ones";
    EXPECT_EQ(excerpt("<a>\U0001F600<b></c></a>"), "<a>\U0001F600<b></c></a>\n          ^\n") << "two units";
    EXPECT_EQ(excerpt("\xEF\xBB\xBF<a></b>"), "<a></b>\n     ^\n") << "a mark does not count";
    EXPECT_EQ(excerpt("<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</b>"), "") << "not UTF-8";
    const std::string late = excerpt("<a>" + std::string(500, 'x') + "</b>" + std::string(500, 'y'));
    EXPECT_EQ(late, "\u2026" + std::string(57, 'x') + "</b>" + std::string(56, 'y') + "\u2026\n"
                        + std::string(60, ' ') + "^\n");
    EXPECT_EQ(excerpt(std::string(2 << 20, ' ') + "<a></b>"), "") << "very long";
    EXPECT_EQ(run("check -", "printf '<a></b>' |").err, "<stdin>:1:6: error: expected end of tag 'a'\n");
    EXPECT_EQ(run("check /dev/stdin", "printf '<a></b>' |").err,
              "/dev/stdin:1:6: error: expected end of tag 'a'\n");
}

TEST_F(Qrmxml, ChecksManyAndGivesTheWorst)
{
    file("a.xml", "<a/>");
    file("b.xml", "<b");
    const Result good = run("check a.xml a.xml");
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.out + good.err, "");
    EXPECT_EQ(run("check a.xml b.xml a.xml").status, 1);
    const Result all = run("check missing.xml b.xml a.xml");
    EXPECT_EQ(all.status, 2);
    EXPECT_EQ(all.err, "missing.xml: error: No such file or directory\n"
                       "b.xml:1:3: error: unexpected end of input\n<b\n  ^\n");
}

TEST_F(Qrmxml, ValidatesAgainstADtdAndASchema)
{
    file("good.xml", "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a/>");
    file("bad.xml", "<!DOCTYPE a [<!ELEMENT a EMPTY>]>\n<a>x</a>");
    EXPECT_EQ(run("check --dtd good.xml").status, 0);
    EXPECT_EQ(run("check bad.xml").status, 0);
    const Result invalid = run("check --dtd bad.xml");
    EXPECT_EQ(invalid.status, 1);
    EXPECT_EQ(invalid.err,
              "bad.xml:2:5: error: no character data is allowed by content model\n<a>x</a>\n    ^\n");

    file("n.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='n' "
                  "type='xs:int'/></xs:schema>");
    file("five.xml", "<n>5</n>");
    file("word.xml", "<n>five</n>");
    EXPECT_EQ(run("check --no-namespace-schema n.xsd five.xml").status, 0);
    const Result word = run("check --no-namespace-schema n.xsd word.xml");
    EXPECT_EQ(word.status, 1);
    EXPECT_EQ(firstLine(word.err),
              "word.xml:1:12: error: value 'five' does not match regular expression facet '[+\\-]?[0-9]+'\n");
    file("u.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:u'>"
                  "<xs:element name='n' type='xs:int'/></xs:schema>");
    file("u.xml", "<n xmlns='urn:u'>5</n>");
    EXPECT_EQ(run("check --schema-location 'urn:u u.xsd' u.xml").status, 0);
    EXPECT_EQ(run("check --schema u.xml").status, 1);
    file("named.xml", "<n xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                      "xsi:noNamespaceSchemaLocation='n.xsd'>5</n>");
    EXPECT_EQ(run("check --schema named.xml").status, 1);
    EXPECT_EQ(run("check --schema --allow-external named.xml").status, 0);
}

TEST_F(Qrmxml, FindsSchemasInTheCurrentFolderWhereverTheDocumentLies)
{
    fs::create_directories("in here/below");
    fs::current_path("in here");
    file("u.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:u'>"
                  "<xs:element name='n' type='xs:int'/></xs:schema>");
    file("n.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='n' "
                  "type='xs:int'/></xs:schema>");
    file("below/u.xml", "<n xmlns='urn:u'>5</n>");
    file("below/five.xml", "<n>5</n>");
    for (const char* allowed : {"", " --allow-external"}) {
        const Result pairs = run(std::string("check --schema-location 'urn:u u.xsd' below/u.xml") + allowed);
        EXPECT_EQ(pairs.status, 0) << pairs.err;
        const Result single = run(std::string("check --no-namespace-schema n.xsd below/five.xml") + allowed);
        EXPECT_EQ(single.status, 0) << single.err;
    }
}

TEST_F(Qrmxml, TellsWhatIsWrongWithASchema)
{
    file("a.xml", "<a/>");
    file("broken.xsd", "<xs:schema\n>");
    for (const std::string option : {"--no-namespace-schema ", "--schema-location urn:u\\ "}) {
        const Result missing = run("check " + option + "missing.xsd a.xml");
        EXPECT_EQ(missing.status, 2);
        EXPECT_EQ(missing.err, "missing.xsd: error: No such file or directory\n");
        const Result broken = run("check " + option + "broken.xsd a.xml");
        EXPECT_EQ(broken.status, 2);
        EXPECT_EQ(firstLine(broken.err),
                  "broken.xsd:2:2: error: prefix 'xs' can not be resolved to namespace URI\n");
    }
    const Result half = run("check --schema-location urn:u a.xml");
    EXPECT_EQ(half.status, 2);
    EXPECT_EQ(half.err, "qrmxml: error: --schema-location: there is no schema file after urn:u\n");
    const Result standard = run("check --no-namespace-schema - a.xml");
    EXPECT_EQ(standard.status, 2);
    EXPECT_EQ(standard.err, "<stdin>: error: a schema cannot come from standard input\n");
}

TEST_F(Qrmxml, FindsWhatADocumentNamesBesideIt)
{
    fs::create_directory("below");
    file("below/a.dtd", "<!ELEMENT a (#PCDATA)><!ENTITY e 'from the DTD'>");
    file("below/a.xml", "<!DOCTYPE a SYSTEM 'a.dtd'><a>&e;</a>");
    EXPECT_EQ(run("tree --allow-external below/a.xml").out, "document\n"
                                                            "  doctype a system \"a.dtd\"\n"
                                                            "  element a\n"
                                                            "    reference &e;\n"
                                                            "      text \"from the DTD\"\n");
    EXPECT_EQ(run("check --dtd --allow-external below/a.xml").status, 0);
    const Result refused = run("check --dtd below/a.xml");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(firstLine(refused.err),
              "below/a.xml:1:28: error: unable to open DTD document 'a.dtd' (nothing that a document "
              "names is loaded without --allow-external)\n");
}

TEST_F(Qrmxml, LoadsNothingFromOutsideUnlessAllowed)
{
    file("secret", "top secret");
    file("entity.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'secret'>]><a>&e;</a>");
    const Result refused = run("tree entity.xml");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err, "entity.xml:1:49: error: unable to open external entity 'secret' (nothing that a "
                           "document names is loaded without --allow-external)\n"
                           "<!DOCTYPE a [<!ENTITY e SYSTEM 'secret'>]><a>&e;</a>\n"
                           "                                                ^\n");
    const Result allowed = run("tree --allow-external entity.xml");
    EXPECT_EQ(allowed.status, 0);
    EXPECT_EQ(allowed.out, "document\n"
                           "  doctype a\n"
                           "  element a\n"
                           "    reference &e;\n"
                           "      text \"top secret\"\n");
    file("dtd.xml", "<!DOCTYPE a SYSTEM 'no-such.dtd'><a/>");
    EXPECT_EQ(run("check dtd.xml").status, 0);
    EXPECT_EQ(run("check --allow-external dtd.xml").status, 1);
}

TEST_F(Qrmxml, StopsEntitiesThatMultiply)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i <= 9; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) {
            text += "&e" + std::to_string(i - 1) + ";";
        }
        text += "'>";
    }
    file("laughs.xml", text + "]><a>&e9;</a>");
    const Result result = run("check laughs.xml");
    EXPECT_EQ(result.status, 1);
    const std::string report = "laughs.xml:1:535: error: parser has encountered more than '50000' entity "
                               "expansions in the document; this is the limit imposed by the application\n";
    EXPECT_EQ(result.err.substr(0, report.size()), report);
}

TEST_F(Qrmxml, PrintsEvents)
{
    file("a.xml", "<!--c\t--><?p d?><a xmlns:p='u' p:n='1' m='&quot;'>x&#10;<p:b/>\u00e9</a>");
    const Result plain = run("events a.xml");
    EXPECT_EQ(plain.status, 0);
    EXPECT_EQ(plain.err, "");
    EXPECT_EQ(plain.out, "comment \"c\\t\"\ninstruction p \"d\"\nnamespace \"p\" \"u\"\n"
                         "start a {u}n=\"1\" m=\"\\\"\"\ntext \"x\"\ntext \"\\n\"\nstart {u}b\nend {u}b\n"
                         "text \"\u00e9\"\nend a\nend-namespace \"p\"\n");
    EXPECT_EQ(
        run("events --json a.xml").out,
        "{\"event\":\"comment\",\"data\":\"c\\t\"}\n"
        "{\"event\":\"instruction\",\"target\":\"p\",\"data\":\"d\"}\n"
        "{\"event\":\"namespace\",\"prefix\":\"p\",\"uri\":\"u\"}\n"
        "{\"event\":\"start\",\"name\":\"a\",\"attributes\":{\"{u}n\":\"1\",\"m\":\"\\\"\"}}\n"
        "{\"event\":\"text\",\"data\":\"x\"}\n{\"event\":\"text\",\"data\":\"\\n\"}\n"
        "{\"event\":\"start\",\"name\":\"{u}b\",\"attributes\":{}}\n{\"event\":\"end\",\"name\":\"{u}b\"}\n"
        "{\"event\":\"text\",\"data\":\"\u00e9\"}\n{\"event\":\"end\",\"name\":\"a\"}\n"
        "{\"event\":\"end-namespace\",\"prefix\":\"p\"}\n");
}

TEST_F(Qrmxml, PrintsEventsUpToAnError)
{
    file("a.xml", "<a><b/>\n<c></a>");
    const Result result = run("events a.xml");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "start a\nstart b\nend b\ntext \"\\n\"\nstart c\n");
    EXPECT_EQ(firstLine(result.err), "a.xml:2:6: error: expected end of tag 'c'\n");
    EXPECT_EQ(run("events none.xml").status, 2);
    EXPECT_EQ(run("events .").status, 2);
    EXPECT_EQ(run("events -", "printf '' |").status, 1);
}

TEST_F(Qrmxml, EndsQuietlyWhenNobodyReadsOnEvents)
{
    largeFile("large.xml");
    const Result result = run("events large.xml | head -n 2");
    EXPECT_EQ(result.out, "start a\nstart b\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(Qrmxml, ShowsThePartsOfAUrl)
{
    EXPECT_EQ(
        run("url 'http://u:p@h.example:8080/a/b.xml?q=1#f'").out,
        "url http://u:p@h.example:8080/a/b.xml?q=1#f\nprotocol http\nuser u\npassword p\nhost h.example\n"
        "port 8080\npath /a/b.xml\nquery q=1\nfragment f\n");
    EXPECT_EQ(run("url --base http://h/a/b ../c.xml").out,
              "url http://h/c.xml\nprotocol http\nhost h\nport 80\npath /c.xml\n");
    EXPECT_EQ(run("url a/b").out, "url a/b\nrelative yes\npath a/b\n");
    const Result wrong = run("url foo:bar");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.err, "foo:bar: error: URL protocol 'foo' is unsupported\n");
    EXPECT_EQ(run("url ''").status, 2);
    EXPECT_EQ(run("url --base relative x").status, 2);
    EXPECT_EQ(run("url --fetch relative").err,
              "relative: error: is relative and has to be resolved against a --base\n");
}

TEST_F(Qrmxml, ReadsUrls)
{
    const LoopbackServer server([](const Connection& connection) {
        if (connection.path() == "/a.xml") {
            connection.answer("<a>\u00e9</a>");
        } else if (connection.path() == "/cut") {
            connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n<a>");
        } else if (connection.path() == "/bad.xml") {
            connection.answer("<a>");
        } else {
            connection.answer("<page/>", "404 Not Found");
        }
    });
    const std::string url = server.url("/a.xml");
    EXPECT_EQ(run("write " + url).out, kHeader + std::string("<a>\u00e9</a>\n"));
    EXPECT_EQ(run("check " + url).status, 0);
    EXPECT_EQ(run("events " + url).out, "start a\ntext \"\u00e9\"\nend a\n");
    EXPECT_EQ(run("url --fetch " + url).out, "<a>\u00e9</a>");
    EXPECT_EQ(run("url --fetch --base " + url + " a.xml").out, "<a>\u00e9</a>");

    const Result bad = run("check " + server.url("/bad.xml"));
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.err.find(server.url("/bad.xml") + ":1:4: error: input ended before"), 0u) << bad.err;
    const Result missing = run("events " + server.url("/none"));
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.err.find("HTTP status 404"), std::string::npos) << missing.err;
    for (const char* const command : {"check ", "events ", "url --fetch "}) {
        const Result cut = run(command + server.url("/cut"));
        EXPECT_EQ(cut.status, 2) << command;
        EXPECT_NE(cut.err.find("cannot read: unable to read from socket"), std::string::npos) << cut.err;
    }
    const std::string refused = "http://127.0.0.1:" + std::to_string(LoopbackServer::closedPort()) + "/";
    EXPECT_EQ(run("check " + refused).status, 2);
    EXPECT_EQ(run("check file:///no/such/file").err,
              "file:///no/such/file: error: No such file or directory\n");
    file("local.xml", "<l/>");
    EXPECT_EQ(run("write file://" + (folder / "local.xml").string()).out, kHeader + std::string("<l/>\n"));
}

TEST_F(Qrmxml, StopsDocumentsThatGoTooFar)
{
    std::string deep;
    for (int i = 0; i < 10001; ++i) {
        deep += "<a>";
    }
    file("deep.xml", deep);
    std::string quadratic = "<!DOCTYPE a [<!ENTITY e '" + std::string(100000, 'x') + "'>]><a>";
    for (int i = 0; i < 20000; ++i) {
        quadratic += "&e;";
    }
    file("quadratic.xml", quadratic + "</a>");
    for (const char* const command : {"check", "events"}) {
        const Result tooDeep = run(std::string(command) + " deep.xml >/dev/null");
        EXPECT_EQ(tooDeep.status, 1);
        EXPECT_EQ(firstLine(tooDeep.err),
                  "deep.xml:1:30004: error: the document has more than 10000 levels of elements\n");
        const Result tooMuch = run(std::string(command) + " quadratic.xml >/dev/null");
        EXPECT_EQ(tooMuch.status, 1);
        EXPECT_NE(
            firstLine(tooMuch.err).find("error: the document expands to more than 100 times its size\n"),
            std::string::npos)
            << firstLine(tooMuch.err);
    }
}

constexpr const char* kShelf = "<shelf xmlns:dc='urn:dc'>\n<book id='1'><dc:title>One</dc:title></book>"
                               "<box><book id='2' lent='yes'><dc:title>Two &amp; more</dc:title></book></box>"
                               "<book id='3'><title>One</title></book></shelf>";

TEST_F(Qrmxml, FindsTheFirstElement)
{
    file("s.xml", kShelf);
    const std::pair<const char*, const char*> found[] = {
        {"--tag book --as path", "/shelf[1]/book[1]\n"},
        {"--tag dc:title --as path", "/shelf[1]/book[1]/dc:title[1]\n"},
        {"--tag title --as path", "/shelf[1]/book[2]/title[1]\n"},
        {"--name title --as path", "/shelf[1]/book[1]/dc:title[1]\n"},
        {"--name title --ns-uri urn:dc --as path", "/shelf[1]/book[1]/dc:title[1]\n"},
        {"--name title --ns-uri '' --as path", "/shelf[1]/book[2]/title[1]\n"},
        {"--tag book --attr id=2 --as path", "/shelf[1]/box[1]/book[1]\n"},
        {"--tag book --attr lent= --as path", "/shelf[1]/book[1]\n"},
        {"--name title --text 'Two & more' --as path", "/shelf[1]/box[1]/book[1]/dc:title[1]\n"},
        {"--tag dc:title --text 'Two & more' --as path", "/shelf[1]/box[1]/book[1]/dc:title[1]\n"},
        {"--name book --attr id=3 --as path", "/shelf[1]/book[2]\n"},
        {"--tag book --attr id=3 --text '' --as path", "/shelf[1]/book[2]\n"},
        {"--tag book --attr id=3", "<book id=\"3\"><title>One</title></book>\n"},
        {"--tag dc:title --text 'Two & more' --as xml", "<dc:title>Two &amp; more</dc:title>\n"},
        {"--tag dc:title --text 'Two & more' --as text", "Two & more\n"},
    };
    for (const auto& [arguments, out] : found) {
        const Result result = run(std::string("find s.xml ") + arguments);
        EXPECT_EQ(result.status, 0) << arguments;
        EXPECT_EQ(result.out, out) << arguments;
        EXPECT_EQ(result.err, "") << arguments;
    }
}

TEST_F(Qrmxml, FindsAmongTheChildrenOfTheDocumentElement)
{
    file("s.xml", kShelf);
    EXPECT_EQ(run("find s.xml --tag book --children --all --as path").out,
              "/shelf[1]/book[1]\n/shelf[1]/book[2]\n");
    EXPECT_EQ(run("find s.xml --tag book --children --attr id=3 --as path").out, "/shelf[1]/book[2]\n");
    EXPECT_EQ(run("find s.xml --tag book --children --attr id=2").status, 1);
    EXPECT_EQ(run("find s.xml --tag box --children --as path").out, "/shelf[1]/box[1]\n");
    EXPECT_EQ(run("find s.xml --name title --children").status, 1);
    EXPECT_EQ(run("find s.xml --name box --children --as path").out, "/shelf[1]/box[1]\n");
}

TEST_F(Qrmxml, FindsAllInDocumentOrder)
{
    file("s.xml", kShelf);
    EXPECT_EQ(run("find s.xml --name title --all --as text").out, "One\nTwo & more\nOne\n");
    EXPECT_EQ(run("find s.xml --tag book --all --as path").out,
              "/shelf[1]/book[1]\n/shelf[1]/box[1]/book[1]\n/shelf[1]/book[2]\n");
    EXPECT_EQ(run("find s.xml --tag book --all --attr lent=").out,
              "<book id=\"1\"><dc:title>One</dc:title></book>\n<book id=\"3\"><title>One</title></book>\n");
}

TEST_F(Qrmxml, FindsNothingWithStatusOne)
{
    file("s.xml", kShelf);
    for (const char* const arguments :
         {"--tag Book", "--tag book --attr id=4", "--name title --ns-uri urn:other", "--tag title --text Two",
          "--tag book --attr id=4 --all", "--tag shelf --children"}) {
        const Result result = run(std::string("find s.xml ") + arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_EQ(result.out + result.err, "") << arguments;
    }
    file("bad.xml", "<a>");
    EXPECT_EQ(run("find bad.xml --tag a").status, 1);
    EXPECT_EQ(run("find none.xml --tag a").status, 2);
    EXPECT_EQ(run("find . --tag a").status, 2);
}

TEST_F(Qrmxml, FindsWhatStandsBehindAnEntityReference)
{
    file("e.xml", "<!DOCTYPE a [<!ENTITY e 'x<d/>'>]><a>&e;<d i='1'/></a>");
    EXPECT_EQ(run("find e.xml --tag d --all").out, "<d i=\"1\"/>\n");
}

TEST_F(Qrmxml, FindsInDocumentsOfAnySize)
{
    largeFile("large.xml");
    EXPECT_EQ(run("find large.xml --tag b --all --as path | tail -n 1").out, "/a[1]/b[500000]\n");
    EXPECT_EQ(run("find large.xml --tag b --all | head -n 1").out, "<b/>\n");
}

TEST_F(Qrmxml, SetsAPath)
{
    file("c.xml", "<cfg><x><b/></x></cfg>");
    const Result result = run("set c.xml a/b");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, kHeader + std::string("<cfg><x><b/></x><a><b/></a></cfg>\n"));
    EXPECT_EQ(run("set c.xml b").out, kHeader + std::string("<cfg><x><b/></x></cfg>\n")) << "it is there";
    EXPECT_EQ(run("set c.xml b --attr k=v=w").out,
              kHeader + std::string("<cfg><x><b/></x><b k=\"v=w\"/></cfg>\n"));
    EXPECT_EQ(run("set c.xml x/c --text '<1>'").out,
              kHeader + std::string("<cfg><x><b/><c>&lt;1&gt;</c></x></cfg>\n"));
    EXPECT_EQ(contentOf("c.xml"), "<cfg><x><b/></x></cfg>");
}

TEST_F(Qrmxml, SetsWhereAFoundPathLeads)
{
    file("c.xml", "<s xmlns:p='u'><u/><u>a<i/></u><p:v>x</p:v></s>");
    EXPECT_EQ(run("find --tag u --all --as path c.xml").out, "/s[1]/u[1]\n/s[1]/u[2]\n");
    const std::string start = kHeader + std::string("<s xmlns:p=\"u\">");
    EXPECT_EQ(run("set c.xml '/s[1]/u[2]' --text new").out, start + "<u/><u>new</u><p:v>x</p:v></s>\n");
    EXPECT_EQ(run("set c.xml '/s[1]/u[1]' --attr k=v").out,
              start + "<u k=\"v\"/><u>a<i/></u><p:v>x</p:v></s>\n");
    EXPECT_EQ(run("set c.xml '/s[1]/p:v[1]'").out, start + "<u/><u>a<i/></u><p:v>x</p:v></s>\n");
    EXPECT_EQ(run("set c.xml '/s[1]' --text t").out, start + "t</s>\n");
    EXPECT_EQ(run("set c.xml '/s[1]/u[3]/w[1]' --text t").out,
              start + "<u/><u>a<i/></u><p:v>x</p:v><u><w>t</w></u></s>\n")
        << "the next of its name is made";
    EXPECT_EQ(run("set c.xml \"$('" QRMXML "' find --tag i --as path c.xml)\" --text t").out,
              start + "<u/><u>a<i>t</i></u><p:v>x</p:v></s>\n");
    const std::pair<const char*, const char*> refused[] = {
        {"/s[1]/u[4]", "there are only 2 elements \"u\" where the path leads, not 4"},
        {"/t[1]/u[1]", "the document element is \"s\", so nothing is at /t[1]/u[1]"},
        {"/s[2]", "the document element is \"s\", so nothing is at /s[2]"},
        {"/s[1]/1x[1]", "no element or attribute can be named like that: /s[1]/1x[1]"},
    };
    for (const auto& [path, error] : refused) {
        const Result result = run("set -i c.xml '" + std::string(path) + "' --text t");
        EXPECT_EQ(result.status, 2) << path;
        EXPECT_EQ(result.err, "qrmxml: error: " + std::string(error) + "\n");
    }
    for (const char* const path : {"/s[1]/u[2", "/s[1]/u[]", "/s[1]/u]2[", "/s[1]//u[2]", "/s[1]u[2]", "/[1]",
                                   "/s[0]", "/s[-1]", "/s[99999999999999]", "/s[1x]"}) {
        EXPECT_EQ(run("set c.xml '" + std::string(path) + "'").err,
                  "qrmxml: error: no element or attribute can be named like that: " + std::string(path)
                      + "\n");
    }
}

TEST_F(Qrmxml, SetsInPlaceOrElsewhere)
{
    file("c.xml", "<cfg/>");
    fs::permissions("c.xml", fs::perms(0640));
    EXPECT_EQ(run("set -i c.xml item --attr id=1").out, "");
    EXPECT_EQ(run("set -i c.xml item --attr id=2").status, 0);
    EXPECT_EQ(run("set -i c.xml item --attr id=2").status, 0);
    EXPECT_EQ(contentOf("c.xml"), kHeader + std::string("<cfg><item id=\"1\"/><item id=\"2\"/></cfg>\n"));
    EXPECT_EQ(fs::status("c.xml").permissions(), fs::perms(0640));
    EXPECT_EQ(run("set c.xml n --encoding ISO-8859-1 --text \u00e9 -o out.xml").status, 0);
    EXPECT_EQ(contentOf("out.xml"), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<cfg><item id=\"1\"/>"
                                    "<item id=\"2\"/><n>\xE9</n></cfg>\n");
    EXPECT_EQ(filesHere(), (std::set<std::string>{"c.xml", "out.xml"}));
}

TEST_F(Qrmxml, LeavesTheFileWholeWhereNothingCanBeSet)
{
    file("c.xml", "<cfg/>");
    const std::pair<const char*, const char*> refused[] = {
        {"''", "qrmxml: error: the path \"\" names no element\n"},
        {"//", "qrmxml: error: the path \"//\" names no element\n"},
        {"a/1b", "qrmxml: error: no element or attribute can be named like that: a/1b\n"},
        {"a --attr 1=v", "qrmxml: error: no element or attribute can be named like that: a, 1\n"},
    };
    for (const auto& [arguments, error] : refused) {
        const Result result = run(std::string("set -i c.xml ") + arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.err, error) << arguments;
        EXPECT_EQ(contentOf("c.xml"), "<cfg/>") << arguments;
    }
    EXPECT_EQ(run("set -i - a", "printf '<a/>' |").status, 2);
    EXPECT_EQ(run("set c.xml a --text t --attr k=v").status, 2);
    EXPECT_EQ(run("set c.xml a --attr kv").err,
              "qrmxml: error: --attr: takes NAME=VALUE, not kv\nRun with --help for more information.\n");
    EXPECT_EQ(run("set c.xml a --attr =v").status, 2);
    file("bad.xml", "<a>");
    EXPECT_EQ(run("set -i bad.xml a").status, 1);
    EXPECT_EQ(contentOf("bad.xml"), "<a>");
    EXPECT_EQ(filesHere(), (std::set<std::string>{"bad.xml", "c.xml"}));
}

TEST_F(Qrmxml, ShowsTheNamespacesInScope)
{
    file("n.xml", "<a xmlns='d' xmlns:p='u&amp;v'><b xmlns:q='x' xmlns:p='y'/></a>");
    EXPECT_EQ(run("namespaces n.xml").out, "xmlns:p=\"u&amp;v\"\n");
    EXPECT_EQ(run("namespaces n.xml --tag b").out, "xmlns:p=\"y\"\nxmlns:q=\"x\"\n");
    EXPECT_EQ(run("namespaces n.xml --prefix-of 'u&v'").out, "p\n");
    EXPECT_EQ(run("namespaces n.xml --tag b --prefix-of x").out, "q\n");
    for (const char* const arguments :
         {"--prefix-of x", "--prefix-of d", "--tag c", "--tag c --prefix-of x"}) {
        const Result result = run(std::string("namespaces n.xml ") + arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_EQ(result.out + result.err, "") << arguments;
    }
    file("none.xml", "<a/>");
    const Result none = run("namespaces none.xml");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "");
}

TEST_F(Qrmxml, WritesNamespaceDeclarations)
{
    file("n.xml", "<a xmlns='d'><p:b xmlns:p='u' p:n='v'><p:c/></p:b></a>");
    EXPECT_EQ(run("write --ns n.xml").out,
              kHeader + std::string("<a xmlns=\"d\"><p:b xmlns:p=\"u\" p:n=\"v\"><p:c/></p:b></a>\n"));
    file("plain.xml", "<a/>");
    EXPECT_EQ(run("write --ns plain.xml").out, kHeader + std::string("<a xmlns=\"\"/>\n"));
}

TEST_F(Qrmxml, ShowsATree)
{
    file("a.xml", "<!DOCTYPE a [<!ATTLIST a d CDATA 'x'><!ENTITY e 'y'>]>"
                  "<a xmlns='urn:u' n='v'>line\n\tbreak<!--c--><?p d?><![CDATA[z]]>&e;<b/></a>");
    const Result result = run("tree a.xml");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "document\n"
                          "  doctype a\n"
                          "  element a {urn:u} d=\"x\" (default) n=\"v\" xmlns=\"urn:u\"\n"
                          "    text \"line\\n\\tbreak\"\n"
                          "    comment \"c\"\n"
                          "    instruction p \"d\"\n"
                          "    cdata \"z\"\n"
                          "    reference &e;\n"
                          "      text \"y\"\n"
                          "    element b {urn:u}\n");
    EXPECT_EQ(run("tree --depth 0 a.xml").out, "document\n");
    EXPECT_EQ(run("tree --depth 1 a.xml").out,
              "document\n"
              "  doctype a\n"
              "  element a {urn:u} d=\"x\" (default) n=\"v\" xmlns=\"urn:u\"\n");
    EXPECT_EQ(run("tree --depth -1 a.xml").status, 2);
}

TEST_F(Qrmxml, ShowsLongTextShortAndControlCharactersAsEscapes)
{
    file("a.xml", "<a>" + std::string(59, 'x') + "\U0001F600yyy</a>");
    EXPECT_EQ(run("tree a.xml").out, "document\n  element a\n    text \"" + std::string(59, 'x') + "...\"\n");
    file("b.xml", "<?xml version='1.1'?><a>&#27;[31m&#x9B;x&#x202E;&#13;</a>");
    EXPECT_EQ(run("tree b.xml").out, "document\n  element a\n    text \"\\x1B[31m\\u009Bx\\u202E\\r\"\n");
    file("c.xml", "<a b='\"\\'>\"\\n\n\"</a>");
    EXPECT_EQ(run("tree c.xml").out, "document\n  element a b=\"\\\"\\\\\"\n    text \"\\\"\\\\n\\n\\\"\"\n");
}

TEST_F(Qrmxml, ShowsADeepTree)
{
    std::string document;
    std::string end;
    std::string outline = "document\n";
    for (int i = 1; i <= 2000; ++i) {
        document += "<a>";
        end += "</a>";
        outline += std::string(2 * static_cast<std::size_t>(i), ' ') + "element a\n";
    }
    file("a.xml", document + end);
    EXPECT_EQ(run("tree a.xml").out, outline);
}

TEST_F(Qrmxml, ExplainsItself)
{
    const Result help = run("-h");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (const char* word : {"write", "check", "tree", "Examples:", "Exit status:"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    for (const char* command : {"write", "check", "tree"}) {
        const Result own = run(std::string(command) + " -h");
        EXPECT_EQ(own.status, 0);
        EXPECT_NE(own.out.find(std::string("Examples:\n  qrmxml ") + command), std::string::npos) << own.out;
    }
    EXPECT_EQ(run("--version").out, "qrmxml " QRMXML_VERSION "\n");
}

/// The long options in what --help prints; for all but the common ones, "OPTION" may have an argument.
std::set<std::string> optionsIn(const std::string& help)
{
    std::set<std::string> options;
    std::istringstream lines(help.substr(0, help.find("Examples:")));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find("--");
        if (at != std::string::npos && line.find_first_not_of(" ") <= at
            && line[line.find_first_not_of(" ")] == '-') {
            options.insert(line.substr(at, line.find_first_of(" ,=", at) - at));
        }
    }
    return options;
}

TEST_F(Qrmxml, HasAManualAndCompletionsThatKnowEveryOption)
{
    std::string manual = contentOf(QRMXML_MANUAL);
    for (std::size_t at = 0; (at = manual.find("\\-", at)) != std::string::npos;) {
        manual.replace(at, 2, "-");
    }
    const std::string zsh = contentOf(QRMXML_COMPLETIONS "/_qrmxml");
    const std::string words = "source '" QRMXML_COMPLETIONS "/qrmxml.bash'; COMP_WORDS=(qrmxml ";
    const auto completed = [&](const std::string& typed, int word) {
        std::ofstream("complete.sh") << words << typed << "); COMP_CWORD=" << word
                                     << "; _qrmxml; printf '%s\\n' \"${COMPREPLY[@]}\"";
        EXPECT_EQ(std::system("bash complete.sh >.out"), 0);
        std::set<std::string> result;
        std::ifstream lines(".out");
        for (std::string line; std::getline(lines, line);) {
            result.insert(line);
        }
        return result;
    };
    const std::set<std::string> commands = {"write",      "check",  "find", "set",
                                            "namespaces", "events", "url",  "tree"};
    std::set<std::string> first = completed("''", 1);
    first.erase("--help");
    first.erase("--version");
    EXPECT_EQ(first, commands);
    for (const std::string& command : commands) {
        EXPECT_NE(manual.find(".SS " + command + "\n"), std::string::npos) << command;
        EXPECT_NE(zsh.find("'" + command + ":"), std::string::npos) << command;
        const std::set<std::string> options = optionsIn(run(command + " --help").out);
        EXPECT_GE(options.size(), 4u) << command;
        EXPECT_EQ(completed(command + " --", 2), options) << command;
        for (const std::string& option : options) {
            EXPECT_NE(manual.find(option), std::string::npos) << option;
            EXPECT_NE(zsh.find(option), std::string::npos) << option;
        }
    }
    EXPECT_EQ(completed("find --as ''", 3), (std::set<std::string>{"path", "text", "xml"}));
    EXPECT_EQ(completed("find --as pa", 3), (std::set<std::string>{"path"}));
    file("some.xml", "");
    EXPECT_EQ(completed("tree som", 2), (std::set<std::string>{"some.xml"}));
}

TEST_F(Qrmxml, RefusesWrongUsage)
{
    file("a.xml", "<a/>");
    for (const char* arguments :
         {"", "write", "check", "no-such-command a.xml", "write --no-such-option a.xml",
          "write -i -o b.xml a.xml", "write a.xml b.xml"}) {
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_NE(result.err, "") << arguments;
    }
    EXPECT_EQ(contentOf("a.xml"), "<a/>");
    EXPECT_EQ(run("no-such-command a.xml").err,
              "qrmxml: error: The following arguments were not expected: a.xml no-such-command\n"
              "Run with --help for more information.\n");
    EXPECT_EQ(run("").err,
              "qrmxml: error: A subcommand is required\nRun with --help for more information.\n");
}

TEST_F(Qrmxml, TakesFilesThatAreNamedLikeCommands)
{
    file("tree", "<a/>");
    EXPECT_EQ(run("write tree").out, kHeader + std::string("<a/>\n"));
    EXPECT_EQ(run("check tree tree").status, 0);
}

/// What a terminal of so many columns shows of a run; lines end with "\r\n". Settings come before the tool's name.
std::string onTerminal(const std::string& arguments, const std::string& settings = "NO_COLOR=1",
                       unsigned short columns = 80)
{
    int terminal = -1;
    struct winsize size = {};
    size.ws_col = columns;
    size.ws_row = 24;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        const std::string command = "TERM=xterm " + settings + " '" QRMXML "' " + arguments;
        ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    std::string shown;
    char bytes[4096];
    for (ssize_t count = 0; (count = ::read(terminal, bytes, sizeof bytes)) > 0;) {
        shown.append(bytes, static_cast<std::size_t>(count));
    }
    ::close(terminal);
    ::waitpid(child, nullptr, 0);
    return shown;
}

TEST_F(Qrmxml, ShowsProgressOnATerminalOnly)
{
    file("long.xml", "<a><!--" + std::string(9 << 20, 'x') + "--></a>");
    file("short.xml", "<a/>");
    const std::string shown = onTerminal("check long.xml");
    EXPECT_NE(shown.find("]  50 %"), std::string::npos) << shown.substr(0, 200);
    EXPECT_NE(shown.find("] 100 %\r\033[K"), std::string::npos) << "it is wiped away in the end";
    file("bad.xml", "<a><!--" + std::string(9 << 20, 'x') + "--><b>");
    EXPECT_NE(onTerminal("check bad.xml").find("\r\033[Kbad.xml:1:9437198: error: "), std::string::npos)
        << "errors do not begin behind the bar";
    EXPECT_EQ(onTerminal("check --no-progress long.xml"), "");
    EXPECT_EQ(onTerminal("check short.xml"), "");
    EXPECT_EQ(run("check long.xml").err, "");
}

TEST_F(Qrmxml, ShowsColorsOnATerminalThatHasThemUnlessToldNotTo)
{
    file("a.xml", "<a k='v'>t</a>");
    file("bad.xml", "<a></b>");
    const std::string outline =
        "\033[2mdocument\033[0m\r\n"
        "  \033[2melement \033[0m\033[36ma\033[0m \033[36mk\033[0m=\033[32m\"v\"\033[0m\r\n"
        "    \033[2mtext \033[0m\033[32m\"t\"\033[0m\r\n";
    EXPECT_EQ(onTerminal("tree a.xml", "NO_COLOR="), outline) << "empty is not set";
    const std::string plain = "document\r\n  element a k=\"v\"\r\n    text \"t\"\r\n";
    EXPECT_EQ(onTerminal("tree a.xml", "NO_COLOR=1"), plain);
    EXPECT_EQ(onTerminal("tree a.xml", "NO_COLOR= TERM=dumb"), plain);
    EXPECT_EQ(onTerminal("check bad.xml", "NO_COLOR="),
              "bad.xml:1:6: \033[1;31merror:\033[0m expected end of tag 'a'\r\n<a></b>\r\n     ^\r\n");
    EXPECT_EQ(onTerminal("check bad.xml", "NO_COLOR=1"),
              "bad.xml:1:6: error: expected end of tag 'a'\r\n<a></b>\r\n     ^\r\n");
    EXPECT_EQ(onTerminal("tree a.xml | cat", "NO_COLOR="), plain) << "no terminal";
}

TEST_F(Qrmxml, FitsTheOutlineIntoTheTerminal)
{
    file("a.xml", "<a name='value'><b><c>" + std::string(200, 'x')
                      + "</c></b><d>\u65e5\u672c\u8a9e\u6587\u5b57</d></a>");
    EXPECT_EQ(onTerminal("tree a.xml", "NO_COLOR=1", 16), "document\r\n"
                                                          "  element a nam\u2026\r\n"
                                                          "    element b\r\n"
                                                          "      element c\r\n"
                                                          "        text \"x\u2026\r\n"
                                                          "    element d\r\n"
                                                          "      text \"\u65e5\u2026\r\n");
    const std::string wide = onTerminal("tree a.xml", "NO_COLOR=1", 300);
    EXPECT_NE(wide.find("        text \"" + std::string(200, 'x') + "\"\r\n"), std::string::npos) << wide;
    EXPECT_NE(run("tree a.xml").out.find("text \"" + std::string(60, 'x') + "...\"\n"), std::string::npos);
}

TEST_F(Qrmxml, EndsQuietlyWhenThePipeIsClosedByATerminalsPager)
{
    file("a.xml", "<a>" + std::string(300000, 'x') + "</a>");
    EXPECT_EQ(onTerminal("write a.xml | head -c 5"), "<?xml");
}

} // namespace
