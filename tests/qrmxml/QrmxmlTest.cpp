#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

    /// Runs the tool through a shell, so that arguments may redirect; `before` comes before its name.
    static Result run(const std::string& arguments, const std::string& before = "")
    {
        const std::string command = "{ " + before + " '" QRMXML "' " + arguments + " ; } >.out 2>.err";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(".out"), contentOf(".err")};
    }

    static std::size_t filesHere()
    {
        std::size_t count = 0;
        for (const auto& entry : fs::directory_iterator(".")) {
            count += entry.path().filename().string()[0] != '.' ? 1 : 0;
        }
        return count;
    }
};

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
    EXPECT_EQ(filesHere(), 3u);
}

TEST_F(Qrmxml, WritesThroughALink)
{
    file("a.xml", "<a/>");
    file("target.xml", "old");
    fs::create_symlink("target.xml", "link.xml");
    EXPECT_EQ(run("write -o link.xml a.xml").status, 0);
    EXPECT_TRUE(fs::is_symlink("link.xml"));
    EXPECT_EQ(contentOf("target.xml"), kHeader + std::string("<a/>\n"));
}

TEST_F(Qrmxml, LeavesTheOldFileWholeWhenAnythingFails)
{
    file("a.xml", "<a/>");
    file("bad.xml", "<a>");
    file("name.xml", "<\u0416/>");
    std::string large = "<a>";
    for (int i = 0; i < 100000; ++i) {
        large += "<b/>";
    }
    file("large.xml", large + "</a>");
    file("old.xml", "old");

    EXPECT_EQ(run("write -o old.xml bad.xml").status, 1);
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result unknown = run("write --encoding no-such -o old.xml a.xml");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "qrmxml: error: unknown encoding \"no-such\"\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result inexpressible = run("write --encoding ISO-8859-1 -o old.xml name.xml");
    EXPECT_EQ(inexpressible.status, 2);
    EXPECT_EQ(inexpressible.err, "qrmxml: error: cannot express U+0416 in ISO-8859-1 (unit 0)\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    const Result tooLarge = run("write -o old.xml large.xml", "ulimit -f 100;");
    EXPECT_EQ(tooLarge.status, 2);
    EXPECT_EQ(tooLarge.err, "old.xml: error: cannot write: File too large\n");
    EXPECT_EQ(contentOf("old.xml"), "old");
    EXPECT_EQ(filesHere(), 5u) << "nothing is left beside it";
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
    EXPECT_EQ(run("write -o /dev/null a.xml").status, 0);
}

TEST_F(Qrmxml, EndsQuietlyWhenNobodyReadsOn)
{
    std::string large = "<a>";
    for (int i = 0; i < 100000; ++i) {
        large += "<b/>";
    }
    file("large.xml", large + "</a>");
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
    if (::geteuid() != 0) {
        fs::permissions("locked.xml", fs::perms::none);
        const Result locked = run("check locked.xml");
        EXPECT_EQ(locked.status, 2);
        EXPECT_EQ(locked.err, "locked.xml: error: Permission denied\n");
    }
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
        EXPECT_EQ(bad.err, "bad.xml:3:7: error: expected entity name for reference\n");
        EXPECT_EQ(run(std::string(command) + " empty.xml").err,
                  "empty.xml:1:1: error: invalid document structure\n");
        EXPECT_EQ(run(std::string(command) + " junk.xml").err,
                  "junk.xml:1:1: error: invalid document structure\n");
    }
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
    EXPECT_NE(all.err.find("missing.xml: error: "), std::string::npos);
    EXPECT_NE(all.err.find("b.xml:1:3: error: "), std::string::npos);
}

TEST_F(Qrmxml, ValidatesAgainstADtdAndASchema)
{
    file("good.xml", "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a/>");
    file("bad.xml", "<!DOCTYPE a [<!ELEMENT a EMPTY>]>\n<a>x</a>");
    EXPECT_EQ(run("check --dtd good.xml").status, 0);
    EXPECT_EQ(run("check bad.xml").status, 0);
    EXPECT_EQ(run("check --dtd bad.xml").status, 1);

    file("n.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='n' "
                  "type='xs:int'/></xs:schema>");
    file("five.xml", "<n>5</n>");
    file("word.xml", "<n>five</n>");
    EXPECT_EQ(run("check --no-namespace-schema n.xsd five.xml").status, 0);
    EXPECT_EQ(run("check --no-namespace-schema n.xsd word.xml").status, 1);
    file("u.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:u'>"
                  "<xs:element name='n' type='xs:int'/></xs:schema>");
    file("u.xml", "<n xmlns='urn:u'>5</n>");
    EXPECT_EQ(run("check --schema-location 'urn:u u.xsd' u.xml").status, 0);
    EXPECT_EQ(run("check --schema u.xml").status, 1);
}

TEST_F(Qrmxml, LoadsNothingFromOutsideUnlessAllowed)
{
    file("secret", "top secret");
    file("entity.xml", "<!DOCTYPE a [<!ENTITY e SYSTEM 'secret'>]><a>&e;</a>");
    const Result refused = run("tree entity.xml");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_NE(refused.err.find("unable to open external entity"), std::string::npos) << refused.err;
    const Result allowed = run("tree --allow-external entity.xml");
    EXPECT_EQ(allowed.status, 0);
    EXPECT_NE(allowed.out.find("top secret"), std::string::npos) << allowed.out;
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
    EXPECT_NE(result.err.find("50000"), std::string::npos) << result.err;
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
    EXPECT_EQ(run("tree --depth 1 a.xml").out.find("    text"), std::string::npos);
    EXPECT_EQ(run("tree --depth -1 a.xml").status, 2);
}

TEST_F(Qrmxml, ShowsLongTextShortAndControlCharactersAsEscapes)
{
    file("a.xml", "<a>" + std::string(59, 'x') + "\U0001F600yyy</a>");
    EXPECT_EQ(run("tree a.xml").out, "document\n  element a\n    text \"" + std::string(59, 'x') + "...\"\n");
    file("b.xml", "<?xml version='1.1'?><a>&#27;[31m&#x9B;x</a>");
    EXPECT_EQ(run("tree b.xml").out, "document\n  element a\n    text \"\\x1B[31m\\x9Bx\"\n");
}

TEST_F(Qrmxml, ExplainsItself)
{
    const Result help = run("-h");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (const char* word : {"write", "check", "tree", "Examples:", "Exit status:"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(run("write --help").status, 0);
    EXPECT_EQ(run("--version").out.find("qrmxml "), 0u);
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
}

/// What a terminal shows of a run.
std::string onTerminal(const std::string& arguments)
{
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        const std::string command = "'" QRMXML "' " + arguments;
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
    EXPECT_EQ(onTerminal("check --no-progress long.xml"), "");
    EXPECT_EQ(onTerminal("check short.xml"), "");
    EXPECT_EQ(run("check long.xml").err, "");
}

} // namespace
