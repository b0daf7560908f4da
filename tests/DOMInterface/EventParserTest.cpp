#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>
#include <xercesc/util/XMLException.hpp>

#include "QRMCore/I18NString.h"
#include "QRMCore/QRMThrowable.h"
#include "QRMUtils/XML/DOMInterface/WQSStreamInputSource.h"
#include "WQSStreams/WQSFileInputStream.h"
#include "tests/support/RecordingParser.h"
#include "tests/support/TemporaryFile.h"

namespace {

using Events = std::vector<std::string>;

class EventParser : public testing::Test
{
protected:
    RecordingParser parser;

    void expectRecord(int code, int line, int column, const char* text) const
    {
        EXPECT_EQ(parser.getErrorCode(), code);
        EXPECT_EQ(parser.getCurrentLineNumber(), line);
        EXPECT_EQ(parser.getCurrentColumnNumber(), column);
        EXPECT_STREQ(parser.errorString(), text);
        EXPECT_EQ(parser.getCurrentByteIndex(), 0);
    }
};

TEST_F(EventParser, HasNoRecordAtFirst)
{
    expectRecord(0, 0, 0, nullptr);
}

TEST_F(EventParser, RecordsWhatIsWrongAndGoesOn)
{
    EXPECT_EQ(parser.parseText("<a>\n<b/>\nabcd & x</a>"), 0);
    expectRecord(-1, 3, 7, "expected entity name for reference");
    EXPECT_EQ(parser.events, (Events{"<a", "'\n", "<b", ">b", "'\nabcd "}));
    EXPECT_EQ(parser.parseText("<a/>"), 1);
    expectRecord(0, 3, 7, "expected entity name for reference");
    EXPECT_EQ(parser.parseText("<a>"), 0);
    expectRecord(-1, 1, 4, "input ended before all started tags were ended; last tag started is 'a'");
}

TEST_F(EventParser, ReadsNothingAsADocumentWithoutContent)
{
    EXPECT_EQ(parser.parse("", 0), 0);
    expectRecord(-1, 1, 1, "invalid document structure");
    EXPECT_EQ(parser.parse(static_cast<const char*>(nullptr), 0), 0);
    EXPECT_EQ(parser.parse(static_cast<const char*>(nullptr), 5), 0);
    EXPECT_EQ(parser.parse("<a/>", -1), 0);
    expectRecord(-1, 1, 1, "invalid document structure");
    std::istringstream empty;
    EXPECT_EQ(parser.parse(empty), 0);
    expectRecord(-1, 1, 1, "invalid document structure");
}

TEST_F(EventParser, StopsAtAValidityErrorOnlyWhenValidating)
{
    const char* const text = "<!DOCTYPE a [<!ELEMENT a EMPTY>]><a>text</a>";
    EXPECT_EQ(parser.getFeature(QRMISAX_Parser::FEATURE_VALIDATION), 0);
    EXPECT_EQ(parser.parseText(text), 1);
    EXPECT_EQ(parser.setFeature(QRMISAX_Parser::FEATURE_VALIDATION, 7), 1);
    EXPECT_EQ(parser.getFeature(QRMISAX_Parser::FEATURE_VALIDATION), 1);
    EXPECT_EQ(parser.parseText(text), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(
        parser.parseText("<!DOCTYPE a [<!ATTLIST a x CDATA '1'><!ATTLIST a x CDATA '2'><!ELEMENT a EMPTY>]>"
                         "<a/>"),
        1)
        << "a warning";
}

TEST_F(EventParser, HasTheFeaturesByTheirNumbers)
{
    const int defaults[] = {1, 0, 0, 0, 0, 1, 0};
    for (int number = 0; number < 7; ++number) {
        const auto feature = static_cast<QRMISAX_Parser::SAXFeature>(number);
        RecordingParser fresh;
        EXPECT_EQ(fresh.getFeature(feature), defaults[number]) << number;
        EXPECT_EQ(fresh.setFeature(feature, 2), 1) << number;
        EXPECT_EQ(fresh.getFeature(feature), 1) << number;
        if (number != QRMISAX_Parser::FEATURE_CACHE_GRAMMAR_FROM_PARSE) {
            EXPECT_EQ(fresh.setFeature(feature, 0), 1) << number;
            EXPECT_EQ(fresh.getFeature(feature), 0) << number;
        }
    }
    for (const int number : {7, -1, 1000}) {
        const auto feature = static_cast<QRMISAX_Parser::SAXFeature>(number);
        EXPECT_EQ(parser.setFeature(feature, 1), 0) << number;
        EXPECT_EQ(parser.getFeature(feature), 0) << number;
    }
    parser.setParamEntityParsing(QRMISAX_Parser::PARAM_ENTITY_PARSING_ALWAYS);
}

TEST_F(EventParser, KeepsThePropertyAsACopy)
{
    const auto property = QRMISAX_Parser::PROPERTY_EXTERNAL_SCHEMA_LOCATION;
    EXPECT_EQ(parser.getProperty(property), nullptr);
    std::string value = "urn:a a\u00e9.xsd";
    EXPECT_EQ(parser.setProperty(property, value.c_str()), 1);
    value = "changed";
    const std::unique_ptr<char[]> read(parser.getProperty(property));
    ASSERT_NE(read, nullptr);
    EXPECT_STREQ(read.get(), "urn:a a\u00e9.xsd");
    EXPECT_EQ(parser.setProperty(property, nullptr), 1);
    EXPECT_EQ(std::unique_ptr<char[]>(parser.getProperty(property)), nullptr);
    for (const int number : {1, -1}) {
        const auto other = static_cast<QRMISAX_Parser::SAXProperty>(number);
        EXPECT_EQ(parser.setProperty(other, "x"), 0);
        EXPECT_EQ(parser.getProperty(other), nullptr);
    }
}

TEST_F(EventParser, ValidatesAgainstASchema)
{
    const TemporaryFile schema("<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:a'>"
                               "<s:element name='n' type='s:int'/></s:schema>");
    parser.setFeature(QRMISAX_Parser::FEATURE_VALIDATION, 1);
    parser.setProperty(QRMISAX_Parser::PROPERTY_EXTERNAL_SCHEMA_LOCATION,
                       (std::string("urn:a ") + schema.name()).c_str());
    EXPECT_EQ(parser.parseText("<n xmlns='urn:a'>5</n>"), 1) << parser.errorString();
    EXPECT_EQ(parser.parseText("<n xmlns='urn:a'>x</n>"), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    parser.setRefuseExternal(1);
    EXPECT_EQ(parser.parseText("<n xmlns='urn:a'>5</n>"), 1) << parser.errorString();
}

TEST_F(EventParser, ReadsAFileByName)
{
    const TemporaryFile file("<a>t</a>");
    EXPECT_EQ(parser.parse(file.name()), 1);
    EXPECT_EQ(parser.events, (Events{"<a", "'t", ">a"}));
    EXPECT_EQ(parser.parse(static_cast<const char*>(nullptr)), 0);
    expectRecord(0, 0, 0, nullptr);
}

TEST_F(EventParser, ReadsAFileUrl)
{
    const TemporaryFile file("<a>t</a>");
    EXPECT_EQ(parser.parse((std::string("file://") + file.name()).c_str()), 1) << parser.errorString();
    EXPECT_EQ(parser.events, (Events{"<a", "'t", ">a"}));
    EXPECT_EQ(parser.parse("file:///no/such/file.xml"), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_STREQ(parser.errorString(), "unable to open primary document entity 'file:///no/such/file.xml'");
}

TEST_F(EventParser, TakesAFileThatIsNamedLikeAUrl)
{
    const std::string folder = testing::TempDir() + "http:";
    ::mkdir(folder.c_str(), 0777);
    ::chdir(testing::TempDir().c_str());
    std::ofstream("http:/local.xml") << "<local/>";
    EXPECT_EQ(parser.parse("http:/local.xml"), 1);
    EXPECT_EQ(parser.events, (Events{"<local", ">local"}));
    ::unlink("http:/local.xml");
    ::rmdir(folder.c_str());
}

TEST_F(EventParser, TellsThatAFileDoesNotExistAndKeepsTheCode)
{
    EXPECT_EQ(parser.parseText("<a>"), 0);
    EXPECT_EQ(parser.parse("nosuchfile.xml"), 0);
    expectRecord(-1, 1, 4, "nosuchfile.xml does not exist.\n");
    for (const char* const name : {"/x/y", "c:/x", "", " ", "foo:bar", "urn:a:b"}) {
        EXPECT_EQ(parser.parse(name), 0);
        EXPECT_EQ(parser.errorString(), std::string(name) + " does not exist.\n");
    }
    EXPECT_EQ(parser.parse("/tmp"), 0) << "a directory";
}

TEST_F(EventParser, CutsALongNameInTheText)
{
    const std::string name(1000, 'n');
    EXPECT_EQ(parser.parse(name.c_str()), 0);
    EXPECT_EQ(parser.errorString(), std::string(255 - 17, 'n') + " does not exist.\n");
    EXPECT_EQ(std::string(parser.errorString()).size(), 255u);
}

TEST_F(EventParser, RefusesNamesThatAreTooLong)
{
    EXPECT_EQ(parser.parse(std::string(3840, 'n').c_str()), 0);
    EXPECT_EQ(parser.getErrorCode(), 0);
    EXPECT_EQ(parser.errorString(), std::string(255 - 17, 'n') + " does not exist.\n");
    EXPECT_EQ(parser.parse(std::string(3841, 'n').c_str()), 0);
    expectRecord(-5, 0, 0, "The specified URL exceeds the maximum length of 3840.\n");
    EXPECT_EQ(parser.parse(("file:///" + std::string(3832, 'n')).c_str()), 0);
    EXPECT_EQ(parser.getErrorCode(), -1) << "3840 bytes go on to the URL";
    EXPECT_EQ(parser.parse(("file:///" + std::string(3833, 'n')).c_str()), 0);
    EXPECT_EQ(parser.getErrorCode(), -5);
}

TEST_F(EventParser, GivesTheSameEventsWhateverItReadsFrom)
{
    const I18NString text(
        u"<?xml version='1.0' encoding='ENC'?><a n='\u00e9'>\u00fc<b xmlns='u'/>\u00e4&amp;</a>");
    for (const char* const encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "ISO-8859-1"}) {
        const bool isWide = std::string(encoding).find("16") != std::string::npos;
        I18NString declared = text.substring(0, text.indexOf("ENC"));
        declared += isWide ? "UTF-16" : encoding;
        declared += text.substring(text.indexOf("ENC") + 3);
        int length = 0;
        const std::unique_ptr<char[]> converted(
            declared.toBytes(encoding, &length, QRMI18NStringAllocator, nullptr));
        const std::string mark = !isWide                                    ? ""
                                 : encoding[7] == 'E' && encoding[6] == 'L' ? "\xFF\xFE"
                                                                            : "\xFE\xFF";
        const std::string bytes =
            mark + std::string(converted.get(), static_cast<std::size_t>(length - (isWide ? 2 : 1)));
        const Events expected = {"<a n=\u00e9", "'\u00fc", "+=u", "<u|b", ">u|b", "-", "'\u00e4&", ">a"};

        const TemporaryFile file(bytes);
        const std::pair<const char*, std::function<int()>> roads[] = {
            {"buffer", [&] { return parser.parse(bytes.data(), static_cast<int>(bytes.size())); }},
            {"file", [&] { return parser.parse(file.name()); }},
            {"URL", [&] { return parser.parse((std::string("file://") + file.name()).c_str()); }},
            {"std::istream",
             [&] {
                 std::istringstream stream(bytes);
                 return parser.parse(stream);
             }},
            {"WQSInputStream",
             [&] {
                 WQSFileInputStream stream(file.name());
                 return parser.parse(stream);
             }},
            {"InputSource",
             [&] {
                 xercesc::LocalFileInputSource source(I18NString(file.name()).getExternalBuffer());
                 return parser.parse(source);
             }},
        };
        for (const auto& [name, parse] : roads) {
            parser.events.clear();
            EXPECT_EQ(parse(), 1) << encoding << " " << name << ": " << parser.errorString();
            EXPECT_EQ(parser.joined(), expected) << encoding << " " << name;
        }
    }
}

TEST_F(EventParser, FailsOnADocumentCutOffAnywhere)
{
    const std::string text =
        "<?xml version='1.0'?><!DOCTYPE a [<!ENTITY e 'x'>]><a n='v'>t&e;<![CDATA[c]]><!--k-->"
        "<p:b xmlns:p='u'/></a>";
    EXPECT_EQ(parser.parseText(text), 1);
    for (std::size_t length = 0; length < text.size(); ++length) {
        std::istringstream stream(text.substr(0, length));
        EXPECT_EQ(parser.parse(stream), 0) << length;
        EXPECT_EQ(parser.getErrorCode(), -1) << length;
    }
    EXPECT_EQ(parser.parseText(text), 1);
}

TEST_F(EventParser, LetsWhatACallbackThrowsThroughAndWorksOn)
{
    const std::string text = "<!--c--><a xmlns='u' n='v'>t<b/><?p d?></a>";
    ASSERT_EQ(parser.parseText(text), 1);
    const Events all = parser.events;
    parser.parseText("<x>");
    for (std::size_t failing = 1; failing <= all.size(); ++failing) {
        parser.action = [&] {
            if (parser.events.size() == failing) {
                throw static_cast<int>(failing);
            }
        };
        try {
            parser.parseText(text);
            ADD_FAILURE() << failing;
        } catch (const int thrown) {
            EXPECT_EQ(thrown, static_cast<int>(failing));
        }
        expectRecord(0, 1, 4, "input ended before all started tags were ended; last tag started is 'x'");
        parser.action = nullptr;
        EXPECT_EQ(parser.parseText(text), 1);
        EXPECT_EQ(parser.events, all);
    }
}

TEST_F(EventParser, TellsXercesErrorsOfCallbacksApart)
{
    parser.action = [] { throw QRMSystemError(7, "mine"); };
    EXPECT_THROW(parser.parseText("<a/>"), QRMSystemError);
    parser.action = nullptr;
    EXPECT_EQ(parser.parseText("<a/>"), 1);
}

TEST_F(EventParser, RefusesToParseWithinAParse)
{
    int inner = 1;
    int code = 0;
    int feature = 1;
    int depth = 1;
    parser.action = [&] {
        if (parser.events.back() == "<a") {
            inner = parser.parse("<inner/>", 8);
            code = parser.getErrorCode();
            feature = parser.setFeature(QRMISAX_Parser::FEATURE_VALIDATION, 1);
            depth = parser.setDepthLimit(1);
        }
    };
    EXPECT_EQ(parser.parseText("<a><b/></a>"), 1);
    EXPECT_EQ(parser.events, (Events{"<a", "<b", ">b", ">a"}));
    EXPECT_EQ(inner, 0);
    EXPECT_EQ(code, static_cast<int>(xercesc::XMLExcepts::Gen_ParseInProgress));
    EXPECT_EQ(feature, 0);
    EXPECT_EQ(depth, 0);
}

TEST_F(EventParser, LeavesAnotherParserInPeaceWithinAParse)
{
    RecordingParser other;
    parser.action = [&] { EXPECT_EQ(other.parseText("<o/>"), 1); };
    EXPECT_EQ(parser.parseText("<a>t</a>"), 1);
    EXPECT_EQ(parser.events, (Events{"<a", "'t", ">a"}));
}

TEST_F(EventParser, NeedsNoCallbacks)
{
    QRMISAX_Parser plain;
    const std::string text = "<!--c--><?p d?><a xmlns='u' n='v'>t<![CDATA[c]]></a>";
    EXPECT_EQ(plain.parse(text.data(), static_cast<int>(text.size())), 1);
    plain.notationDecl("", "", "", "");
    plain.startCDataSection();
    plain.endCDataSection();
    plain.defaultHandler("", 0);
    plain.unparseEntityDecl("", "", "", "", "");
    EXPECT_EQ(plain.notStandalone(), 0);
    EXPECT_EQ(plain.externalEntityRef("", "", "", ""), 0);
}

TEST_F(EventParser, IsAskedThroughItsVirtualParse)
{
    struct Refusing : QRMISAX_Parser
    {
        using QRMISAX_Parser::parse;
        int parse(xercesc::InputSource&) override { return 42; }
    } refusing;
    const TemporaryFile file("<a/>");
    std::istringstream stream;
    WQSFileInputStream wqs(file.name());
    EXPECT_EQ(refusing.parse("<a/>", 4), 42);
    EXPECT_EQ(refusing.parse(file.name()), 42);
    EXPECT_EQ(refusing.parse("file:///x"), 42);
    EXPECT_EQ(refusing.parse(stream), 42);
    EXPECT_EQ(refusing.parse(wqs), 42);
}

TEST_F(EventParser, RecordsWhatASourceThrowsAsAnErrorOfTheDocument)
{
    class Failing : public xercesc::InputSource
    {
    public:
        xercesc::BinInputStream* makeStream() const override
        {
            throw xercesc::XMLPlatformUtilsException(__FILE__, __LINE__,
                                                     xercesc::XMLExcepts::File_CouldNotReadFromFile);
        }
    } failing;
    EXPECT_EQ(parser.parse(failing), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(parser.getCurrentLineNumber(), 0);
    class Throwing : public xercesc::InputSource
    {
    public:
        xercesc::BinInputStream* makeStream() const override { throw 5; }
    } throwing;
    EXPECT_THROW(parser.parse(throwing), int);
    EXPECT_EQ(parser.parseText("<a/>"), 1);
}

/// Gives the number of the callback that was called last.
class Numbering : public QRMISAX_Parser
{
public:
    using QRMISAX_Parser::parse;
    int last = 0;
    void startElement(const char*, const char**) override { last = 2; }
    void endElement(const char*) override { last = 3; }
    void notationDecl(const char*, const char*, const char*, const char*) override { last = 4; }
    void processingInstruction(const char*, const char*) override { last = 5; }
    void comment(const char*) override { last = 6; }
    void startCDataSection() override { last = 7; }
    void endCDataSection() override { last = 8; }
    void characterData(const char*, int) override { last = 9; }
    void startNamespaceDecl(const char*, const char*) override { last = 10; }
    void endNamespaceDecl(const char*) override { last = 11; }
    void defaultHandler(const char*, int) override { last = 12; }
    void unparseEntityDecl(const char*, const char*, const char*, const char*, const char*) override
    {
        last = 13;
    }
    int notStandalone() override { return last = 14; }
    int externalEntityRef(const char*, const char*, const char*, const char*) override { return last = 15; }
    int parse(xercesc::InputSource&) override { return last = 16; }
};

TEST(EventParserLayout, HasItsVirtualOperationsInOrder)
{
    // Every slot behind the two of the destructor takes the object and pointers, so that one type of call fits all.
    using Slot = int (*)(void*, const void*, const void*, const void*, const void*, const void*);
    Numbering parser;
    Slot* slots = nullptr;
    std::memcpy(&slots, static_cast<void*>(&parser), sizeof slots);
    for (int number = 2; number <= 16; ++number) {
        slots[number](&parser, nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(parser.last, number);
    }
}

TEST(EventParserLayout, HasItsFieldsInOrder)
{
    RecordingParser parser;
    EXPECT_EQ(parser.parseText("<a>\n<b></a>"), 0);
    const auto* const bytes = reinterpret_cast<const char*>(static_cast<const QRMISAX_Parser*>(&parser));
    const std::size_t handler = 2 * sizeof(void*);
    const std::size_t record = handler + sizeof(DefaultHandlerImpl);
    int numbers[3] = {};
    std::memcpy(numbers, bytes + record, sizeof numbers);
    EXPECT_EQ(numbers[0], parser.getErrorCode());
    EXPECT_EQ(numbers[1], parser.getCurrentLineNumber());
    EXPECT_EQ(numbers[2], parser.getCurrentColumnNumber());
    EXPECT_EQ(numbers[1], 2);
    const char* text = nullptr;
    const std::size_t textAt = (record + sizeof numbers + sizeof text - 1) / sizeof text * sizeof text;
    std::memcpy(&text, bytes + textAt, sizeof text);
    EXPECT_EQ(text, parser.errorString());
    const void* owner = nullptr;
    std::memcpy(&owner, bytes + record - sizeof owner, sizeof owner);
    EXPECT_EQ(owner, &parser) << "the handler's owner";
}

class HostileEvents : public EventParser
{
};

std::string exponential(int levels)
{
    std::string text = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxx'>";
    for (int i = 1; i <= levels; ++i) {
        const std::string reference = "&e" + std::to_string(i - 1) + ";";
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) {
            text += reference;
        }
        text += "'>";
    }
    return text + "]><a>&e" + std::to_string(levels) + ";</a>";
}

TEST_F(HostileEvents, StopAtTheLimitOfExpansions)
{
    EXPECT_EQ(parser.setEntityExpansionLimit(1000), 1);
    EXPECT_EQ(parser.parseText(exponential(9)), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_EQ(
        std::string(parser.errorString()).find("parser has encountered more than '1000' entity expansions"),
        0u)
        << parser.errorString();
    EXPECT_EQ(parser.parseText(exponential(2)), 1);
    EXPECT_EQ(parser.setEntityExpansionLimit(0), 1);
    EXPECT_EQ(parser.parseText(exponential(4)), 1);
}

TEST_F(HostileEvents, StopAtTheLimitOfAmplification)
{
    std::string quadratic = "<!DOCTYPE a [<!ENTITY e '" + std::string(10000, 'x') + "'>]><a>";
    for (int i = 0; i < 1000; ++i) {
        quadratic += "&e;";
    }
    quadratic += "</a>";
    EXPECT_EQ(parser.parseText(quadratic), 1) << "no limit at first";
    EXPECT_EQ(parser.setAmplificationLimit(100, 100000), 1);
    EXPECT_EQ(parser.parseText(quadratic), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    EXPECT_STREQ(parser.errorString(), "the document expands to more than 100 times its size");
    EXPECT_EQ(parser.getCurrentLineNumber(), 1);
    EXPECT_EQ(parser.parseText(exponential(7)), 0);
    EXPECT_STREQ(parser.errorString(), "the document expands to more than 100 times its size");
    std::string inAttributes = "<!DOCTYPE a [<!ENTITY e '" + std::string(10000, 'x') + "'>]><a>";
    for (int i = 0; i < 1000; ++i) {
        inAttributes += "<b n='&e;&e;'/>";
    }
    EXPECT_EQ(parser.parseText(inAttributes + "</a>"), 0);
    EXPECT_STREQ(parser.errorString(), "the document expands to more than 100 times its size");
    EXPECT_EQ(parser.parseText("<a>" + std::string(1000000, 'x') + "</a>"), 1)
        << "what it has is no expansion";
    EXPECT_EQ(parser.setAmplificationLimit(0), 1);
    EXPECT_EQ(parser.parseText(quadratic), 1);
}

TEST_F(HostileEvents, StopAtTheLimitOfDepth)
{
    EXPECT_EQ(parser.setDepthLimit(3), 1);
    EXPECT_EQ(parser.parseText("<a><b><c/></b><b><c/></b></a>"), 1);
    EXPECT_EQ(parser.parseText("<a>\n<b><c><d/></c></b></a>"), 0);
    expectRecord(-1, 2, 11, "the document has more than 3 levels of elements");
    EXPECT_EQ(parser.parseText("<a><b><c/></b></a>"), 1) << "levels are counted afresh";
    EXPECT_EQ(parser.setDepthLimit(0), 1);
    EXPECT_EQ(parser.parseText("<a><b><c><d/></c></b></a>"), 1);
}

} // namespace
