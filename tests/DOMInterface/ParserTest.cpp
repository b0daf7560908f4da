#include <fstream>
#include <functional>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "QRMUtils/XML/DOMInterface/QRMISAX_Parser.h"
#include "WQSStreams/WQSFileInputStream.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"

namespace {

using File = TemporaryFile;

class Parser : public testing::Test
{
protected:
    QRMIDOM_Parser parser;
    QRMIDOM_Document document;

    int parse(const std::string& text)
    {
        return parser.parse(text.data(), static_cast<int>(text.size()), document);
    }
    void expectRecord(int code, int line, int column, const char* text) const
    {
        EXPECT_EQ(parser.getErrorCode(), code);
        EXPECT_EQ(parser.getCurrentLineNumber(), line);
        EXPECT_EQ(parser.getCurrentColumnNumber(), column);
        EXPECT_EQ(parser.errorString(), I18NString(text));
        I18NString filled("before");
        parser.errorString(filled);
        EXPECT_EQ(filled, I18NString(text));
    }
    std::string root() const { return written(document.getDocumentElement()); }
};

constexpr const char* kThirdLine = "<a>\n<b/>\nabcd & x</a>";
constexpr const char* kThirdLineText = "expected entity name for reference";

TEST_F(Parser, HasAnEmptyRecordAtFirst)
{
    expectRecord(0, 0, 0, "");
    EXPECT_EQ(parser.getDoValidation(), 0);
    EXPECT_EQ(parser.getDoSchema(), 0);
}

TEST_F(Parser, ReadsEveryKindOfInput)
{
    const std::string text = "<?xml version='1.0' encoding='ISO-8859-1'?><a n='v'>\xE9</a>";
    const char* const expected = "<a n=\"v\">\u00e9</a>";
    EXPECT_EQ(parse(text), 1);
    EXPECT_EQ(root(), expected);

    const File file(text);
    EXPECT_EQ(parser.parse(file.name(), document), 1);
    EXPECT_EQ(root(), expected);

    std::istringstream stream(text);
    EXPECT_EQ(parser.parse(stream, document), 1);
    EXPECT_EQ(root(), expected);
    stream.clear();
    EXPECT_EQ(stream.tellg(), static_cast<std::streamoff>(text.size()));

    WQSFileInputStream wqs(file.name());
    EXPECT_EQ(parser.parse(wqs, document), 1);
    EXPECT_EQ(root(), expected);
    EXPECT_TRUE(wqs.isOpen()) << "it is not closed";

    xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "id");
    EXPECT_EQ(parser.parse(source, document), 1);
    EXPECT_EQ(root(), expected);
    expectRecord(0, 0, 0, "");
}

TEST_F(Parser, ReadsUnicodeInEveryForm)
{
    const I18NString text(u"\uFEFF<a>\u0416\U0001F600</a>");
    for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE"}) {
        int length = 0;
        const std::unique_ptr<char[]> bytes(text.toBytes(encoding, &length, QRMI18NStringAllocator, nullptr));
        EXPECT_EQ(parser.parse(bytes.get(), length - I18NConverter(encoding).sizeofLegacyNull(), document), 1)
            << encoding << parser.errorString();
        EXPECT_EQ(root(), "<a>\u0416\U0001F600</a>") << encoding;
    }
}

TEST_F(Parser, ProcessesNamespacesAndKeepsWhiteSpace)
{
    EXPECT_EQ(parse("<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]><a xmlns='urn:a'> <b/> </a>"), 1);
    EXPECT_EQ(document.getDocumentElement().getNamespaceURI(), I18NString("urn:a"));
    EXPECT_EQ(document.getDocumentElement().getChildNodes().getLength(), 3u);
}

TEST_F(Parser, GivesTheDocumentToTheHandle)
{
    EXPECT_EQ(parse("<a/>"), 1);
    EXPECT_EQ(sharesOf(document), 1u);
    const QRMIDOM_Document first = document;
    EXPECT_EQ(parse("<b/>"), 1);
    EXPECT_EQ(sharesOf(first), 1u);
    EXPECT_EQ(written(first.getDocumentElement()), "<a/>");
    EXPECT_EQ(root(), "<b/>");
}

TEST(ParserLifetime, ADocumentOutlivesItsParser)
{
    QRMIDOM_Document document;
    {
        QRMIDOM_Parser parser(1);
        EXPECT_EQ(parser.parse("<a>text</a>", 11, document), 1);
    }
    EXPECT_EQ(written(document.getDocumentElement()), "<a>text</a>");
}

TEST_F(Parser, RecordsWhereAndWhyItFailed)
{
    EXPECT_EQ(parse(kThirdLine), 0);
    expectRecord(-1, 3, 7, kThirdLineText);
    EXPECT_EQ(parse("<a/>"), 1);
    expectRecord(-1, 3, 7, kThirdLineText);
    EXPECT_EQ(root(), "<a/>");
    EXPECT_EQ(parse("<a>\n<b/>\n<c>d</a>"), 0);
    expectRecord(-1, 3, 7, "expected end of tag 'c'");
}

TEST_F(Parser, GivesThePartThatWasBuilt)
{
    EXPECT_EQ(parse("<former/>"), 1);
    EXPECT_EQ(parse(kThirdLine), 0);
    EXPECT_EQ(root(), "<a>\n<b/>\nabcd </a>");
    EXPECT_EQ(sharesOf(document), 1u);
    EXPECT_EQ(parse("<p:a/>"), 0);
    EXPECT_TRUE(document.isNull() || document.getDocumentElement().isNull())
        << "never the document of another call";
}

struct BadInput
{
    const char* name;
    std::string text;
    int line;
    int column;
    const char* message;
};

class ParserOnBadInput : public testing::TestWithParam<BadInput>
{
};

INSTANTIATE_TEST_SUITE_P(
    Parser, ParserOnBadInput,
    testing::Values(
        BadInput{"Truncated", "<a>", 1, 4,
                 "input ended before all started tags were ended; last tag started is 'a'"},
        BadInput{"WrongEndTag", "<a><b></a>", 1, 9, "expected end of tag 'b'"},
        BadInput{"SecondRoot", "<a/><b/>", 1, 5, "comment or processing instruction expected"},
        BadInput{"SameAttributeTwice", "<a x='1' x='2'/>", 1, 17,
                 "attribute 'x' is already specified for element 'a'"},
        BadInput{"UnknownPrefix", "<p:a/>", 1, 7, "prefix 'p' can not be resolved to namespace URI"},
        BadInput{"UnknownEntity", "<a>&foo;</a>", 1, 9, "entity 'foo' not found"},
        BadInput{"PlainText", "hello", 1, 1, "invalid document structure"},
        BadInput{"Blanks", "   ", 1, 4, "invalid document structure"},
        BadInput{"UnknownEncoding", "<?xml version='1.0' encoding='nope-99'?><a/>", 1, 41,
                 "unable to create converter for 'NOPE-99' encoding"},
        BadInput{"InvalidUtf8", "<a>\xC3<", 1, 1, "invalid byte '<' at position 2 of a 2-byte sequence"},
        BadInput{"Latin1WithoutADeclaration", "<a>\xE9t\xE9</a>", 1, 1,
                 "invalid byte 't' at position 2 of a 3-byte sequence"},
        BadInput{"Latin1DeclaredAsUtf8", "<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>", 1, 39,
                 "invalid byte '<' at position 2 of a 3-byte sequence"},
        BadInput{"Utf8DeclaredAsAscii", "<?xml version='1.0' encoding='US-ASCII'?><a>\xC3\xA9</a>", 1, 42,
                 "char 0xC3 is not representable in 'US-ASCII' encoding"},
        BadInput{"NoEncodingNamed", "<?xml version='1.0' encoding=''?><a/>", 1, 32,
                 "invalid XML encoding declaration ''"},
        BadInput{"EncodedSurrogate", "<a>\xED\xA0\x80</a>", 1, 1,
                 "irregular bytes '\uFFFD' and '\uFFFD' of a 3-byte sequence"},
        BadInput{"OverlongUtf8", "<a>\xC0\x80</a>", 1, 1,
                 "invalid byte '\uFFFD' at position 1 of a 1-byte sequence"},
        BadInput{"FiveByteUtf8", "<a>\xF8\x88\x80\x80\x80</a>", 1, 1,
                 "exceeded byte limit at byte '\uFFFD' in a 5-byte sequence"},
        BadInput{"NoCharacter", "<a>\uFFFF</a>", 1, 5, "invalid character 0xFFFF"},
        BadInput{"ControlCharacter", "<a>\x01</a>", 1, 5, "invalid character 0x1"},
        BadInput{"ReferenceToZero", "<a>&#0;</a>", 1, 8, "invalid character reference"},
        BadInput{"ReferenceToASurrogate", "<a>&#xD800;</a>", 1, 12, "invalid character reference"},
        BadInput{"OnlyAMark", "\xEF\xBB\xBF", 1, 1, "invalid document structure"},
        BadInput{"CutInsideAUnit", std::string("\xFF\xFE<\0a", 5), 1, 2, "element name expected"},
        BadInput{"Newline", "\n", 2, 1, "invalid document structure"},
        BadInput{"BinaryJunk", "\x7F\x45LF\x02\x01\x01", 1, 1, "invalid document structure"},
        BadInput{"ZeroByteInside", std::string("<a>\0</a>", 8), 1, 4,
                 "input ended before all started tags were ended; last tag started is 'a'"}),
    [](const auto& input) { return input.param.name; });

TEST_P(ParserOnBadInput, SaysSoAndWorksOn)
{
    const BadInput& input = GetParam();
    const auto expectFailure = [&](const std::function<int(QRMIDOM_Parser&, QRMIDOM_Document&)>& parse) {
        QRMIDOM_Parser parser;
        QRMIDOM_Document document = documentOf("<former/>");
        EXPECT_EQ(parse(parser, document), 0);
        EXPECT_EQ(parser.getErrorCode(), -1);
        EXPECT_EQ(parser.getCurrentLineNumber(), input.line);
        EXPECT_EQ(parser.getCurrentColumnNumber(), input.column);
        EXPECT_EQ(parser.errorString(), I18NString(input.message));
        EXPECT_TRUE(document.isNull() || document.getDocumentElement().isNull()
                    || document.getDocumentElement().getTagName() != I18NString("former"));
        EXPECT_EQ(parser.parse("<next/>", 7, document), 1);
        EXPECT_EQ(written(document.getDocumentElement()), "<next/>");
    };
    expectFailure([&](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
        return parser.parse(input.text.data(), static_cast<int>(input.text.size()), document);
    });
    expectFailure([&](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
        std::istringstream stream(input.text);
        return parser.parse(stream, document);
    });
    expectFailure([&](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
        const File file(input.text);
        return parser.parse(file.name(), document);
    });
}

TEST_F(Parser, CannotTellThatASingleByteEncodingIsTheWrongOne)
{
    EXPECT_EQ(parse("<?xml version='1.0' encoding='ISO-8859-1'?><a>\u00e9</a>"), 1);
    EXPECT_EQ(root(), "<a>\u00c3\u00a9</a>");
}

TEST_F(Parser, NeedsAMarkOrADeclarationForBigEndianText)
{
    const auto bigEndian = [](const I18NString& text) {
        int length = 0;
        const std::unique_ptr<char[]> bytes(
            text.toBytes("UTF-16BE", &length, QRMI18NStringAllocator, nullptr));
        return std::string(bytes.get(), static_cast<std::size_t>(length - 2));
    };
    const std::string bare = bigEndian("<a/>");
    const std::string declared = bigEndian("<?xml version='1.0' encoding='UTF-16'?><a/>");
    EXPECT_EQ(parse(bare), 0);
    EXPECT_EQ(parse(declared), 0);
    expectRecord(0, 0, 0, "");
    std::istringstream bareStream(bare);
    EXPECT_EQ(parser.parse(bareStream, document), 0) << "a stream is not looked at before the parse";
    expectRecord(-1, 1, 1, "invalid document structure");
    std::istringstream declaredStream(declared);
    EXPECT_EQ(parser.parse(declaredStream, document), 1) << parser.errorString();
    EXPECT_EQ(root(), "<a/>");
}

TEST_F(Parser, FailsOnADocumentCutOffAnywhere)
{
    const std::string text =
        "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e 'x'>]><a n='v'><!--c-->&e;<![CDATA[d]]></a>";
    for (std::size_t length = 1; length < text.size(); ++length) {
        ASSERT_EQ(parse(text.substr(0, length)), 0) << length;
        ASSERT_EQ(parser.getErrorCode(), -1) << length;
        ASSERT_FALSE(parser.errorString().empty()) << length;
    }
    EXPECT_EQ(parse(text), 1);
}

TEST_F(Parser, RefusesInputWithoutTouchingAnything)
{
    EXPECT_EQ(parse("<former/>"), 1);
    const char zero[] = "\0<a/>";
    const char* const none = nullptr;
    EXPECT_EQ(parser.parse(none, document), 0);
    EXPECT_EQ(parser.parse(none, 5, document), 0);
    EXPECT_EQ(parser.parse(none, 0, document), 0);
    EXPECT_EQ(parser.parse(zero, 5, document), 0);
    EXPECT_EQ(parser.parse("", 0, document), 0);
    EXPECT_EQ(parser.parse("<a/>", 0, document), 0);
    EXPECT_EQ(parser.parse("<a/>", -1, document), 0);
    EXPECT_EQ(parser.parse("<a/>", -2147483647 - 1, document), 0);
    EXPECT_EQ(parser.parse("/no/such/file.xml", document), 0);
    EXPECT_EQ(parser.parse("/", document), 0);
    EXPECT_EQ(parser.parse("file:///etc/hostname", document), 0) << "a name is never a URL";
    expectRecord(0, 0, 0, "");
    EXPECT_EQ(root(), "<former/>");
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST_F(Parser, RefusesAFileThatMayNotBeRead)
{
    const File file("<a/>");
    ASSERT_EQ(::chmod(file.name(), 0), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        // Root may read everything, so somebody else asks.
        const bool asked = ::geteuid() != 0 || ::seteuid(65534) == 0;
        ::_exit(asked && parser.parse(file.name(), document) == 0 && parser.getErrorCode() == 0 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(Parser, FailsOnAnEmptyFileAndAnEmptyOrFailedStream)
{
    const File file("");
    EXPECT_EQ(parser.parse(file.name(), document), 0);
    expectRecord(-1, 1, 1, "invalid document structure");
    for (const auto state : {std::ios::goodbit, std::ios::failbit, std::ios::badbit, std::ios::eofbit}) {
        std::istringstream stream(state == std::ios::goodbit ? "" : "<a/>");
        stream.setstate(state);
        EXPECT_EQ(parser.parse(stream, document), 0);
        expectRecord(-1, 1, 1, "invalid document structure");
    }
}

TEST_F(Parser, ReadsADocumentWhoseDeclarationNamesAnotherUnicodeForm)
{
    EXPECT_EQ(parse("<?xml version='1.0' encoding='UTF-16'?><a/>"), 1) << "only a warning";
    expectRecord(0, 0, 0, "");
}

TEST_F(Parser, StopsAtTheFirstValidityError)
{
    const std::string invalid = "<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]>\n<a><c/><d/></a>";
    EXPECT_EQ(parse(invalid), 1);
    parser.setDoValidation(7);
    EXPECT_EQ(parser.getDoValidation(), 1);
    EXPECT_EQ(parse(invalid), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(parser.getCurrentLineNumber(), 2);
    EXPECT_EQ(parser.errorString(), I18NString("no declaration found for element 'c'"));
    EXPECT_EQ(parse("<!DOCTYPE a [<!ELEMENT a (b)><!ELEMENT b EMPTY>]><a><b/></a>"), 1);
    EXPECT_EQ(parse("<a/>"), 0);
    parser.setDoValidation(0);
    EXPECT_EQ(parser.getDoValidation(), 0);
    EXPECT_EQ(parse(invalid), 1);
}

TEST_F(Parser, DropsWarnings)
{
    EXPECT_EQ(parse("<!DOCTYPE a [<!ATTLIST a x CDATA '1'><!ATTLIST a x CDATA '2'>]><a/>"), 1);
    expectRecord(0, 0, 0, "");
}

constexpr const char* kSchema =
    "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:o' "
    "elementFormDefault='qualified'><xs:element name='order'><xs:complexType><xs:sequence>"
    "<xs:element name='item' maxOccurs='unbounded'><xs:complexType>"
    "<xs:attribute name='price' type='xs:decimal' use='required'/>"
    "<xs:attribute name='currency' default='EUR'/>"
    "</xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element></xs:schema>";
constexpr const char* kOrder = "<order xmlns='urn:o'><item price='1.5'/></order>";
constexpr const char* kBadOrder = "<order xmlns='urn:o'>\n<item price='cheap'/></order>";

TEST_F(Parser, ValidatesAgainstASchema)
{
    const File schema(kSchema);
    const std::string location = std::string("urn:o ") + schema.name();
    for (const int mode : {0, 1}) {
        QRMIDOM_Parser validating(mode);
        validating.setDoValidation(1);
        validating.setDoSchema(1);
        EXPECT_EQ(validating.getDoSchema(), 1);
        validating.setExternalSchemaLocation(location.c_str());
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(validating.parse(kOrder, static_cast<int>(std::strlen(kOrder)), document), 1)
                << validating.errorString();
            const QRMIDOM_Element item = document.getDocumentElement().getFirstChild();
            EXPECT_EQ(item.getAttribute("currency"), I18NString("EUR"));
            EXPECT_FALSE(item.getAttributeNode("currency").getSpecified());
            EXPECT_EQ(validating.parse(kBadOrder, static_cast<int>(std::strlen(kBadOrder)), document), 0);
            EXPECT_EQ(validating.getErrorCode(), -1);
            EXPECT_EQ(validating.getCurrentLineNumber(), 2);
            EXPECT_EQ(validating.errorString(), I18NString("invalid character encountered"));
        }
        validating.setExternalSchemaLocation(nullptr);
        EXPECT_EQ(validating.parse(kOrder, static_cast<int>(std::strlen(kOrder)), document), 0);
    }
}

TEST_F(Parser, ValidatesAgainstTheSchemaOfDocBook)
{
    const char* const schema = "/usr/share/xml/docbook/schema/xsd/5.0/docbook.xsd";
    ASSERT_EQ(::access(schema, R_OK), 0) << "is the package docbook5-xml installed?";
    parser.setDoValidation(1);
    parser.setDoSchema(1);
    parser.setExternalSchemaLocation((std::string("http://docbook.org/ns/docbook ") + schema).c_str());
    const std::string start =
        "<article xmlns='http://docbook.org/ns/docbook' version='5.0'>\n<title>T</title>";
    for (const int refuse : {0, 1}) {
        // It includes two more schemas, which are no less trusted.
        parser.setRefuseExternal(refuse);
        EXPECT_EQ(parse(start + "<para>text</para></article>"), 1) << parser.errorString();
        EXPECT_EQ(parse(start + "<para><nonsense/></para></article>"), 0);
        EXPECT_EQ(parser.getErrorCode(), -1);
        EXPECT_EQ(parser.getCurrentLineNumber(), 2);
        EXPECT_EQ(parser.errorString(), I18NString("no declaration found for element 'nonsense'"));
    }
}

TEST_F(Parser, ValidatesARealDocumentAgainstItsDtd)
{
    parser.setDoValidation(1);
    for (const char* name :
         {"/usr/share/mime/packages/freedesktop.org.xml", "/usr/share/xml/iso-codes/iso_639_3.xml"}) {
        EXPECT_EQ(parser.parse(name, document), 1)
            << name << ":" << parser.getCurrentLineNumber() << ": " << parser.errorString();
    }
}

TEST_F(Parser, ValidatesAgainstASchemaWithoutANamespace)
{
    const File schema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                      "<xs:element name='n' type='xs:int'/></xs:schema>");
    parser.setDoValidation(1);
    parser.setDoSchema(1);
    parser.setExternalNoNamespaceSchemaLocation(schema.name());
    EXPECT_EQ(parse("<n>5</n>"), 1) << parser.errorString();
    EXPECT_EQ(parse("<n>five</n>"), 0);
    parser.setExternalNoNamespaceSchemaLocation(nullptr);
    EXPECT_EQ(parse("<n>5</n>"), 0);
}

TEST_F(Parser, LoadsASchemaAfreshForEachParse)
{
    const std::string location = "urn:o " + TemporaryFile::nameOfAny();
    for (const int mode : {0, 1}) {
        QRMIDOM_Parser validating(mode);
        validating.setDoValidation(1);
        validating.setDoSchema(1);
        validating.setExternalSchemaLocation(location.c_str());
        {
            const File schema(kSchema);
            EXPECT_EQ(validating.parse(kOrder, static_cast<int>(std::strlen(kOrder)), document), 1);
        }
        EXPECT_EQ(validating.parse(kOrder, static_cast<int>(std::strlen(kOrder)), document), 0)
            << "the schema is gone, and nothing of it was kept";
    }
}

TEST(ParserCaching, FailsOnAnInternalSubset)
{
    QRMIDOM_Document document;
    const std::string text = "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>";
    for (const int mode : {1, 0, 2, -1}) {
        QRMIDOM_Parser parser(mode);
        EXPECT_EQ(parser.parse(text.data(), static_cast<int>(text.size()), document), mode == 1 ? 0 : 1);
        parser.reset();
        EXPECT_EQ(parser.parse("<a/>", 4, document), 1);
        EXPECT_EQ(sharesOf(document), 1u);
    }
}

TEST_F(Parser, GoesThroughTheOneFormThatMayBeOverridden)
{
    class Recorder : public QRMIDOM_Parser
    {
    public:
        using QRMIDOM_Parser::parse;
        int parse(xercesc::InputSource& source, QRMIDOM_Document& target) override
        {
            ++calls;
            return QRMIDOM_Parser::parse(source, target) + 10;
        }
        int calls = 0;
    };
    Recorder recorder;
    const File file("<a/>");
    std::istringstream stream("<a/>");
    WQSFileInputStream wqs(file.name());
    EXPECT_EQ(recorder.parse("<a/>", 4, document), 11);
    EXPECT_EQ(recorder.parse(file.name(), document), 11);
    EXPECT_EQ(recorder.parse(stream, document), 11);
    EXPECT_EQ(recorder.parse(wqs, document), 11);
    EXPECT_EQ(recorder.calls, 4);
}

/// Does something in the middle of a parse: when Xerces asks for the bytes.
class ActingSource : public xercesc::InputSource
{
public:
    explicit ActingSource(std::function<void()> act) : m_act(std::move(act)) {}
    xercesc::BinInputStream* makeStream() const override
    {
        m_act();
        return new xercesc::BinMemInputStream(reinterpret_cast<const XMLByte*>("<outer/>"), 8);
    }

private:
    std::function<void()> m_act;
};

TEST_F(Parser, StopsAtTheLimitOfAmplification)
{
    std::string quadratic = "<!DOCTYPE a [<!ENTITY e '" + std::string(10000, 'x') + "'>]><a>";
    for (int i = 0; i < 1000; ++i) {
        quadratic += i % 2 == 0 ? "&e;" : "<b n='&e;'/>";
    }
    quadratic += "</a>";
    EXPECT_EQ(parse(quadratic), 1) << "no limit at first";
    parser.setAmplificationLimit(100, 100000);
    EXPECT_EQ(parse(quadratic), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(parser.errorString(), "the document expands to more than 100 times its size");
    EXPECT_EQ(parser.getCurrentLineNumber(), 1);
    EXPECT_GT(parser.getCurrentColumnNumber(), 10000);
    EXPECT_EQ(parse("<a>" + std::string(1000000, 'x') + "</a>"), 1) << "what it has is no expansion";
    parser.setAmplificationLimit(0);
    EXPECT_EQ(parse(quadratic), 1);
}

TEST_F(Parser, StopsAtTheLimitOfDepth)
{
    parser.setDepthLimit(3);
    for (const int linking : {1, 0}) {
        parser.setDirectLinking(linking);
        EXPECT_EQ(parse("<a><b><c/></b><b><c></c></b></a>"), 1);
        EXPECT_EQ(parse("<a>\n<b><c><d/></c></b></a>"), 0);
        expectRecord(-1, 2, 11, "the document has more than 3 levels of elements");
    }
    parser.setDepthLimit(0);
    EXPECT_EQ(parse("<a><b><c><d/></c></b></a>"), 1);
}

TEST_F(Parser, RefusesToParseWithinAParseThatHasLimits)
{
    parser.setDepthLimit(2);
    parser.setAmplificationLimit(10);
    int innerResult = -1;
    ActingSource source([&] {
        QRMIDOM_Document inner;
        innerResult = parser.parse("<inner/>", 8, inner);
    });
    EXPECT_EQ(parser.parse(source, document), 1) << parser.errorString();
    EXPECT_EQ(innerResult, 0);
    EXPECT_EQ(root(), "<outer/>");
}

TEST_F(Parser, RefusesToParseWithinAParse)
{
    QRMIDOM_Document inner = documentOf("<former/>");
    int innerResult = -1;
    ActingSource source([&] { innerResult = parser.parse("<inner/>", 8, inner); });
    EXPECT_EQ(parser.parse(source, document), 1);
    EXPECT_EQ(innerResult, 0);
    EXPECT_EQ(parser.getErrorCode(), static_cast<int>(xercesc::XMLExcepts::Gen_ParseInProgress));
    EXPECT_GT(parser.getCurrentLineNumber(), 0) << "a line of the Xerces sources";
    EXPECT_EQ(parser.getCurrentColumnNumber(), 0);
    EXPECT_FALSE(parser.errorString().empty());
    EXPECT_TRUE(inner.isNull());
    EXPECT_EQ(root(), "<outer/>");
}

TEST_F(Parser, RefusesToParseWithinAParseThatCachesGrammars)
{
    QRMIDOM_Parser caching(1);
    QRMIDOM_Document inner;
    int innerResult = -1;
    ActingSource source([&] { innerResult = caching.parse("<inner/>", 8, inner); });
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(caching.parse(source, document), 1) << caching.errorString();
        EXPECT_EQ(innerResult, 0);
        EXPECT_EQ(caching.getErrorCode(), static_cast<int>(xercesc::XMLExcepts::Gen_ParseInProgress));
        EXPECT_TRUE(inner.isNull());
        EXPECT_EQ(root(), "<outer/>");
        EXPECT_EQ(sharesOf(document), 1u);
    }
}

TEST_F(Parser, LeavesAnotherParserInPeaceWithinAParse)
{
    QRMIDOM_Parser other;
    QRMIDOM_Document inner;
    ActingSource source([&] { EXPECT_EQ(other.parse("<inner/>", 8, inner), 1); });
    EXPECT_EQ(parser.parse(source, document), 1);
    EXPECT_EQ(root(), "<outer/>");
    EXPECT_EQ(written(inner.getDocumentElement()), "<inner/>");
}

/// Takes the first field from a parser, the Xerces parser, for the length of a scope.
class Robbery
{
public:
    explicit Robbery(QRMIDOM_Parser& victim) : m_field(reinterpret_cast<char*>(&victim) + sizeof(void*))
    {
        const void* const none = nullptr;
        std::memcpy(&m_taken, m_field, sizeof m_taken);
        std::memcpy(m_field, &none, sizeof none);
    }
    Robbery(const Robbery&) = delete;
    Robbery& operator=(const Robbery&) = delete;
    ~Robbery() { std::memcpy(m_field, &m_taken, sizeof m_taken); }

private:
    char* m_field;
    const void* m_taken = nullptr;
};

TEST(ParserWithoutAXercesParser, FailsAnAssertion)
{
    QRMIDOM_Parser caching(1);
    QRMIDOM_Document document = documentOf("<former/>");
    const auto placeOf = [](const std::function<void()>& call) {
        try {
            call();
        } catch (const QRMAssertError& error) {
            EXPECT_EQ(error.getCode(), 0);
            EXPECT_STREQ(error.getText(), "QRM_ASSERT(m_parserImpl);");
            EXPECT_EQ(error.getBackTrace().size(), 1u);
            const auto& place = error.getBackTrace().at(0);
            EXPECT_EQ(place.macroName, "QRM_THROW");
            return place.fileName + ":" + std::to_string(place.lineNumber);
        }
        return std::string();
    };
    {
        const Robbery robbery(caching);
        EXPECT_EQ(placeOf([&] { caching.parse("<a/>", 4, document); }), "QRMIDOM_Parser.cpp:194");
        EXPECT_EQ(placeOf([&] { caching.reset(); }), "QRMIDOM_Parser.cpp:182");
    }
    EXPECT_EQ(caching.getErrorCode(), 0);
    EXPECT_EQ(written(document.getDocumentElement()), "<former/>");
    EXPECT_EQ(caching.parse("<a/>", 4, document), 1);
    QRMIDOM_Parser plain;
    {
        const Robbery robbery(plain);
        plain.reset();
    }
}

TEST_F(Parser, RecordsWhateverElseIsThrownAsMinusOne)
{
    EXPECT_EQ(parse(kThirdLine), 0);
    const std::function<void()> throwing[] = {
        [] { throw 42; }, [] { throw std::bad_alloc(); }, [] { throw QRMSystemError(7, "text"); },
        [] { throw xercesc::DOMException(xercesc::DOMException::SYNTAX_ERR, 0); }};
    for (const auto& act : throwing) {
        ActingSource source(act);
        EXPECT_EQ(parser.parse(source, document), 0);
        expectRecord(-1, 3, 7, kThirdLineText);
        EXPECT_EQ(parse("<next/>"), 1);
        EXPECT_EQ(root(), "<next/>");
    }
}

TEST_F(Parser, RefusesExternalResourcesOnRequest)
{
    const File secret("secret");
    const std::string entity =
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + std::string(secret.name()) + "'>]><a>&e;</a>";
    EXPECT_EQ(parse(entity), 1);
    EXPECT_EQ(document.getDocumentElement().getFirstChild().getFirstChild().getNodeValue(),
              I18NString("secret"));
    parser.setRefuseExternal(1);
    EXPECT_EQ(parse(entity), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_NE(parser.errorString().indexOf("unable to open external entity"), -1) << parser.errorString();
    EXPECT_EQ(root().find("secret"), std::string::npos);
    parser.setRefuseExternal(0);
    EXPECT_EQ(parse(entity), 1);
}

TEST_F(Parser, ReadsNamedSchemasWhileItRefusesOthers)
{
    const File schema(kSchema);
    parser.setDoValidation(1);
    parser.setDoSchema(1);
    parser.setRefuseExternal(1);
    const std::string hinted =
        std::string("<order xmlns='urn:o' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
                    "xsi:schemaLocation='urn:o ")
        + schema.name() + "'><item price='1'/></order>";
    EXPECT_EQ(parse(hinted), 0) << "the document names it, and nobody else";
    parser.setExternalSchemaLocation((std::string("urn:o ") + schema.name()).c_str());
    EXPECT_EQ(parse(kOrder), 1) << parser.errorString();
    EXPECT_EQ(parse(kBadOrder), 0);
}

TEST_F(Parser, LimitsEntityExpansionsOnRequest)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int i = 1; i <= 5; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) {
            text += "&e" + std::to_string(i - 1) + ";";
        }
        text += "'>";
    }
    text += "]><a>&e5;</a>";
    parser.setEntityExpansionLimit(1000);
    EXPECT_EQ(parse(text), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_NE(parser.errorString().indexOf("1000"), -1) << parser.errorString();
    EXPECT_EQ(parse("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"), 1);
    parser.setEntityExpansionLimit(0);
    EXPECT_EQ(parse("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;&e;</a>"), 1);
}

} // namespace
