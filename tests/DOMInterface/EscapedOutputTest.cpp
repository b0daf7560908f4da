#include <climits>
#include <cstdio>
#include <fstream>
#include <memory>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/RecordingWriter.h"
#include "tests/support/TestDocument.h"

namespace {

using Calls = std::vector<std::string>;

Calls escapedCalls(const I18NString& text, const char* encoding = nullptr)
{
    RecordingWriter writer(encoding);
    QRMIDOM_Helper::write(writer, text);
    return writer.calls;
}

Calls escapedCalls(const char* bytes)
{
    RecordingWriter writer;
    QRMIDOM_Helper::write(writer, bytes);
    return writer.calls;
}

std::string contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// What a stdio file gets.
template <class Write>
std::string throughFile(Write&& write)
{
    std::FILE* const file = std::tmpfile();
    write(file);
    std::string content(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    EXPECT_EQ(std::fread(content.data(), 1, content.size(), file), content.size());
    std::fclose(file);
    return content;
}

TEST(EscapedOutput, WritesRunsAndEntitiesOneByOne)
{
    EXPECT_EQ(escapedCalls("a<b"), (Calls{"a", "&lt;", "b"}));
    EXPECT_EQ(escapedCalls("<"), (Calls{"", "&lt;", ""}));
    EXPECT_EQ(escapedCalls(""), (Calls{""}));
    EXPECT_EQ(escapedCalls("plain"), (Calls{"plain"}));
    EXPECT_EQ(escapedCalls("<>"), (Calls{"", "&lt;", "", "&gt;", ""}));
    EXPECT_EQ(escapedCalls(I18NString("a<b")), (Calls{"a", "&lt;", "b"}));
    EXPECT_EQ(escapedCalls(I18NString("")), (Calls{""}));
}

TEST(EscapedOutput, ReplacesTheFiveMarkupCharacters)
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(stream, "Tom & Jerry's \"show\" > 2", "UTF-8");
    EXPECT_EQ(stream.str(), "Tom &amp; Jerry&apos;s &quot;show&quot; &gt; 2");
    EXPECT_EQ(throughFile([](std::FILE* file) { QRMIDOM_Helper::write(file, "<&>", "UTF-8"); }),
              "&lt;&amp;&gt;");
}

TEST(EscapedOutput, LeavesEverythingElseAsItIs)
{
    std::string others;
    for (int byte = 1; byte < 256; ++byte) {
        if (std::strchr("<>&'\"", byte) == nullptr) {
            others += static_cast<char>(byte);
        }
    }
    EXPECT_EQ(escapedCalls(others.c_str()), (Calls{others}));
    EXPECT_EQ(escapedCalls(I18NString("\t\r\n")), (Calls{"\t\r\n"}));
}

TEST(EscapedOutput, ConvertsToTheEncodingOfTheWriter)
{
    EXPECT_EQ(escapedCalls(I18NString(u"\u00e9<"), "ISO-8859-1"), (Calls{"\xE9", "&lt;", ""}));
    EXPECT_EQ(escapedCalls(I18NString(u"\u00e9\u4e2d\U0001F600")), (Calls{"\u00e9\u4e2d\U0001F600"}));
    std::ostringstream stream;
    QRMIDOM_Helper::write(stream, u"\u0416", "KOI8-R");
    EXPECT_EQ(stream.str(), "\xF6");
}

TEST(EscapedOutput, StopsAtTheFirstZeroByte)
{
    const char16_t units[] = {u'a', 0, u'b'};
    EXPECT_EQ(escapedCalls(I18NString(units, 6, nullptr, nullptr)), (Calls{"a"}));
    EXPECT_EQ(escapedCalls(I18NString("ab"), "UTF-16LE"), (Calls{"a"}));
    EXPECT_EQ(escapedCalls(I18NString("ab"), "UTF-16BE"), (Calls{""}));
}

TEST(EscapedOutput, StopsAtAZeroByteAlsoBetweenReferences)
{
    const char16_t before[] = {u'a', 0, u'b', u'\u0416', u'c'};
    EXPECT_EQ(escapedCalls(I18NString(before, sizeof before, nullptr, nullptr), "ISO-8859-1"), (Calls{"a"}));
    const char16_t after[] = {u'\u0416', u'a', 0, u'\u0417', u'b'};
    EXPECT_EQ(escapedCalls(I18NString(after, sizeof after, nullptr, nullptr), "ISO-8859-1"),
              (Calls{"", "&#1046;", "a"}));
}

TEST(EscapedOutput, PutsReferencesForCharactersThatTheEncodingLacks)
{
    EXPECT_EQ(escapedCalls(I18NString(u"\u0416"), "US-ASCII"), (Calls{"", "&#1046;", ""}));
    EXPECT_EQ(escapedCalls(I18NString(u"a\u0416b<\U0001F600"), "US-ASCII"),
              (Calls{"a", "&#1046;", "b", "&lt;", "", "&#128512;", ""}));
    EXPECT_EQ(escapedCalls(I18NString(u"\u0416\u0417"), "US-ASCII"),
              (Calls{"", "&#1046;", "", "&#1047;", ""}));
    EXPECT_EQ(escapedCalls(I18NString(u"\u200B\u65e5"), "ISO-2022-JP"),
              (Calls{"", "&#8203;", "\x1b$BF|\x1b(B"}));
}

TEST(EscapedOutput, LetsConversionErrorsThrough)
{
    EXPECT_THROW(escapedCalls(I18NString(std::u16string{0xD800}.c_str()), "US-ASCII"), I18NConversionError);
    EXPECT_THROW(escapedCalls(I18NString("a"), "no-such-encoding"), I18NConversionError);
}

TEST(RawOutput, WritesTheConvertedTextInOneCall)
{
    const auto rawCalls = [](const I18NString& text, const char* encoding) {
        RecordingWriter writer(encoding);
        QRMIDOM_Helper::writeNoEscape(writer, text);
        return writer.calls;
    };
    EXPECT_EQ(rawCalls("<&>", nullptr), (Calls{"<&>"}));
    EXPECT_EQ(rawCalls("", nullptr), (Calls{""}));
    EXPECT_EQ(rawCalls("ab", "UTF-16LE"), (Calls{std::string("a\0b\0", 4)}));
    EXPECT_EQ(rawCalls("a", "UTF-32BE"), (Calls{std::string("\0\0\0a", 4)}));
    EXPECT_THROW(rawCalls(u"\u0416", "ISO-8859-1"), I18NConversionError);
    EXPECT_THROW(rawCalls("a", "no-such-encoding"), I18NConversionError);
    RecordingWriter writer;
    QRMIDOM_Helper::writeNoEscape(writer, "<&>");
    EXPECT_EQ(writer.calls, (Calls{"<&>"}));
}

TEST(RawOutput, IgnoresTheEncodingNamedWithAStream)
{
    std::ostringstream stream;
    QRMIDOM_Helper::writeNoEscape(stream, I18NString(u"<\u00e9>"), "ISO-8859-1");
    EXPECT_EQ(stream.str(), "<\u00e9>");
    stream.str("");
    QRMIDOM_Helper::writeNoEscape(stream, "<\xE9>", "no-such-encoding");
    EXPECT_EQ(stream.str(), "<\xE9>");
    EXPECT_EQ(throughFile(
                  [](std::FILE* file) { QRMIDOM_Helper::writeNoEscape(file, "<\xE9>", "no-such-encoding"); }),
              "<\xE9>");
}

TEST(FindSpecialChar, FindsTheFirstMarkupCharacterInItsRange)
{
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("abc", 3, 3), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("abc", 0, 3), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("a&b", 0, 3), 1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("a&b", 2, 3), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("a&b", 0, 1), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("a&b", 3, 1), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("a\0<", 0, 3), 2);
    for (const char* special : {"<", ">", "&", "'", "\""}) {
        EXPECT_EQ(QRMIDOM_Helper::findSpecialChar(special, 0, 1), 0);
    }
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("\xBC\xBE\xA6", 0, 3), -1);
}

TEST(FindSpecialChar, FindsNothingInARangeThatEndsBeforeItStarts)
{
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("<<<", 2, 2), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("<<<", 2, -2), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("<<<", 2000000000, -2000000000), -1);
    EXPECT_EQ(QRMIDOM_Helper::findSpecialChar("<<<", INT_MAX, INT_MIN), -1);
}

TEST(FindSpecialChar, FindsACharacterAtEveryPlaceOfALongText)
{
    for (int length = 1; length <= 70; ++length) {
        for (int place = 0; place < length; ++place) {
            std::string text(static_cast<std::size_t>(length), '=');
            text[static_cast<std::size_t>(place)] = "<>&'\""[place % 5];
            const std::unique_ptr<char[]> exact(new char[text.size()]); // no byte beyond, and none looked at
            std::memcpy(exact.get(), text.data(), text.size());
            for (const int start : {0, 1, place, place + 1}) {
                ASSERT_EQ(QRMIDOM_Helper::findSpecialChar(exact.get(), start, length),
                          start <= place ? place : -1)
                    << length << " " << place << " " << start;
            }
            ASSERT_EQ(QRMIDOM_Helper::findSpecialChar(exact.get(), 0, place), -1) << length << " " << place;
        }
    }
}

class NodeOutput : public testing::Test
{
protected:
    QRMIDOM_Document document = documentOf("<a>\u00e9</a>");
    std::string path = testing::TempDir() + "qrmidom-output-" + std::to_string(::getpid());
    ~NodeOutput() override { ::unlink(path.c_str()); }
};

constexpr const char* kLatin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE9</a>\n";

TEST_F(NodeOutput, GoesToEverySink)
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(document, stream, "ISO-8859-1");
    EXPECT_EQ(stream.str(), kLatin1);
    EXPECT_EQ(throughFile([&](std::FILE* file) { QRMIDOM_Helper::write(document, file, "ISO-8859-1"); }),
              kLatin1);
    QRMIDOM_Helper::write(document, path.c_str(), "ISO-8859-1");
    EXPECT_EQ(contentOf(path), kLatin1);
    RecordingWriter writer("ISO-8859-1");
    QRMIDOM_Helper::write(document, writer);
    std::string all;
    for (const std::string& call : writer.calls) {
        all += call == "(endline)" ? "\n" : call;
    }
    EXPECT_EQ(all, kLatin1);
}

TEST_F(NodeOutput, FlushesAStreamAtTheEndOfTheDocument)
{
    class Counting : public std::stringbuf
    {
    public:
        int flushes = 0;

    protected:
        int sync() override { return ++flushes, 0; }
    };
    Counting buffer;
    std::ostream stream(&buffer);
    QRMIDOM_Helper::write(document, stream, "UTF-8");
    EXPECT_EQ(buffer.flushes, 1);
}

TEST_F(NodeOutput, ReplacesAFile)
{
    std::ofstream(path) << std::string(10000, 'x');
    QRMIDOM_Helper::write(document.getDocumentElement(), path.c_str(), nullptr);
    EXPECT_EQ(contentOf(path), "<a>\u00e9</a>");
}

TEST_F(NodeOutput, FailsForAFileThatCannotBeOpened)
{
    for (const std::string& target : {std::string("/no/such/folder/file"), std::string("/"), std::string()}) {
        try {
            QRMIDOM_Helper::write(document, target.c_str(), "UTF-8");
            ADD_FAILURE() << "it was written";
        } catch (const QRMSystemError& error) {
            EXPECT_EQ(error.getCode(), 0);
            EXPECT_EQ(error.getText(),
                      "System error occured while trying to write (QRMIDOM_Helper::write): " + target);
            ASSERT_EQ(error.getBackTrace().size(), 1u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_Helper.cpp");
            EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM_Helper::write");
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_RETHROW");
        }
    }
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST_F(NodeOutput, LeavesAFileAloneThatMayNotBeWritten)
{
    std::ofstream(path) << "old";
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // Root may write everything, so somebody else asks.
        if (::geteuid() == 0 && ::seteuid(65534) != 0) {
            ::_exit(2);
        }
        try {
            QRMIDOM_Helper::write(document, path.c_str(), "UTF-8");
        } catch (const QRMSystemError& error) {
            const std::string expected =
                "System error occured while trying to write (QRMIDOM_Helper::write): " + path;
            ::_exit(error.getText() == expected ? 0 : 3);
        }
        ::_exit(1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(contentOf(path), "old");
}

TEST_F(NodeOutput, LeavesAStdioFileUnflushedAndOpen)
{
    std::FILE* const file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    QRMIDOM_Helper::write(document, file, "UTF-8");
    EXPECT_EQ(contentOf(path), "") << "the few bytes are still in its buffer";
    QRMIDOM_Helper::write(file, "<", "UTF-8");
    EXPECT_EQ(std::fclose(file), 0);
    EXPECT_EQ(contentOf(path), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\u00e9</a>\n&lt;");
}

TEST_F(NodeOutput, LetsConversionErrorsThroughToStreamsAndFilesAsTheyAre)
{
    std::ostringstream stream;
    try {
        QRMIDOM_Helper::write(document, stream, "no-such-encoding");
        FAIL() << "it was written";
    } catch (const I18NConversionError& error) {
        EXPECT_TRUE(error.getBackTrace().empty());
    }
    EXPECT_EQ(stream.str(), "<?xml version=\"1.0\" encoding=\"no-such-encoding\"?>\n<");
    EXPECT_EQ(throughFile([&](std::FILE* file) {
                  EXPECT_THROW(QRMIDOM_Helper::write(document, file, "no-such-encoding"),
                               I18NConversionError);
              }),
              stream.str());
    EXPECT_THROW(QRMIDOM_Helper::write(stream, "x", "no-such-encoding"), I18NConversionError);
}

TEST_F(NodeOutput, WritesOnIntoAStreamThatHasFailed)
{
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    QRMIDOM_Helper::write(document, stream, "UTF-8");
    EXPECT_TRUE(stream.bad()) << "nothing is cleared, nothing is thrown";
    EXPECT_EQ(stream.str(), "");
}

/// Takes a few bytes, and then fails in its own way.
class FailingBuffer : public std::streambuf
{
public:
    explicit FailingBuffer(bool throws) : m_throws(throws) {}
    std::string taken;

protected:
    std::streamsize xsputn(const char* data, std::streamsize count) override
    {
        if (taken.size() > 10) {
            if (m_throws) {
                throw 5;
            }
            return 0;
        }
        taken.append(data, static_cast<std::size_t>(count));
        return count;
    }
    int overflow(int) override { return EOF; }

private:
    bool m_throws;
};

TEST_F(NodeOutput, LeavesAStreamBadWhoseBufferFails)
{
    for (const bool throws : {false, true}) {
        FailingBuffer buffer(throws);
        std::ostream stream(&buffer);
        QRMIDOM_Helper::write(document.getDocumentElement(), stream, "UTF-8");
        QRMIDOM_Helper::write(document, stream, "UTF-8");
        EXPECT_TRUE(stream.bad()) << throws;
        EXPECT_EQ(buffer.taken, "<a>\u00e9</a><?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")
            << "the header is the last that is taken";

        std::ostream telling(&buffer);
        telling.exceptions(std::ios::badbit);
        buffer.taken = "more than ten bytes";
        if (throws) {
            EXPECT_THROW(QRMIDOM_Helper::write(document, telling, "UTF-8"), int);
        } else {
            EXPECT_THROW(QRMIDOM_Helper::write(document, telling, "UTF-8"), std::ios::failure);
        }
    }
}

TEST_F(NodeOutput, FlushesAsTheStreamSaysAfterEachPiece)
{
    struct Counting : std::stringbuf
    {
        int flushes = 0;
        int sync() override
        {
            ++flushes;
            return 0;
        }
    } buffer, tied;
    std::ostream stream(&buffer);
    std::ostream other(&tied);
    stream.tie(&other);
    QRMIDOM_Helper::write(document.getDocumentElement(), stream, "UTF-8");
    EXPECT_EQ(tied.flushes, 7) << "before each of the pieces < a > \u00e9 </ a >";
    EXPECT_EQ(buffer.flushes, 0);
    stream.tie(nullptr);
    stream << std::unitbuf;
    QRMIDOM_Helper::write(document.getDocumentElement(), stream, "UTF-8");
    EXPECT_EQ(buffer.flushes, 7);
    EXPECT_EQ(buffer.str(), "<a>\u00e9</a><a>\u00e9</a>");
}

TEST_F(NodeOutput, CutsTheTextForAVeryLongPath)
{
    const std::string target = "/no/" + std::string(5000, 'x');
    try {
        QRMIDOM_Helper::write(document, target.c_str(), "UTF-8");
        FAIL() << "it was written";
    } catch (const QRMSystemError& error) {
        const std::string whole =
            "System error occured while trying to write (QRMIDOM_Helper::write): " + target;
        EXPECT_EQ(error.getText(), whole.substr(0, 1023));
    }
}

TEST_F(NodeOutput, AddsItsNameToConversionErrors)
{
    try {
        QRMIDOM_Helper::write(document, path.c_str(), "no-such-encoding");
        FAIL() << "it was written";
    } catch (const I18NConversionError& error) {
        EXPECT_STREQ(error.getText(), "unknown encoding \"no-such-encoding\"");
        ASSERT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM_Helper::write");
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_RETHROW");
    }
    EXPECT_EQ(contentOf(path), "<?xml version=\"1.0\" encoding=\"no-such-encoding\"?>\n<")
        << "what was written stays";
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST_F(NodeOutput, DoesNotReportAFullDisk)
{
    QRMIDOM_Helper::write(document, "/dev/full", "UTF-8");
    std::ofstream stream("/dev/full");
    QRMIDOM_Helper::write(document, stream, "UTF-8");
    EXPECT_TRUE(stream.fail()) << "the stream knows";
    std::FILE* const file = std::fopen("/dev/full", "w");
    QRMIDOM_Helper::write(document, file, "UTF-8");
    EXPECT_NE(std::fclose(file), 0) << "the file knows";
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST_F(NodeOutput, WritesNothingForANullHandle)
{
    std::ostringstream stream;
    QRMIDOM_Helper::write(QRMIDOM_Node(), stream, "UTF-8");
    EXPECT_EQ(stream.str(), "");
    QRMIDOM_Helper::write(QRMIDOM_Node(), path.c_str(), "UTF-8");
    EXPECT_EQ(contentOf(path), "");
}

} // namespace
