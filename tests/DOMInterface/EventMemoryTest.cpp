// Memory runs out under the event parser, at every point.

#include <memory>
#include <set>

#include "QRMCore/QRMThrowable.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/RecordingParser.h"
#include "tests/support/XercesMemory.h"

namespace {

const std::string kText = "<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST a d CDATA 'v'>]><!--c--><?p d?>"
                          "<a xmlns:p='urn:p' p:n='v'>text<b/>&e;<![CDATA[c]]></a>";

int lineOf(const QRMThrowable& error)
{
    EXPECT_EQ(error.getBackTrace().at(0).fileName, "QRMISAX_Parser.cpp");
    EXPECT_EQ(error.getBackTrace().at(0).macroName, "QRM_THROW");
    return error.getBackTrace().at(0).lineNumber;
}

void expectXercesOutOfMemory(const QRMOutOfMemoryError& error, int line)
{
    EXPECT_EQ(error.getCode(), 300);
    EXPECT_STREQ(error.getText(), "Out of memory");
    EXPECT_EQ(error.getBackTrace().size(), 1u);
    EXPECT_EQ(error.getBackTrace().at(0).context, "QRMIDOM -> Xerces");
    EXPECT_EQ(lineOf(error), line);
}

TEST(EventParserMemory, RunsOutInTheConstructor)
{
    int failures = 0;
    bool made = false;
    for (long n = 1; !made && n < 1000; ++n) {
        XercesMemory memory;
        memory.failFrom(n);
        try {
            const RecordingParser parser;
            made = !memory.hasFailed();
            memory.failFrom(0);
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            ++failures;
            expectXercesOutOfMemory(error, 310);
        }
    }
    EXPECT_TRUE(made);
    EXPECT_GT(failures, 10);
}

TEST(EventParserMemory, RunsOutInAParseAndLeavesTheParserUsable)
{
    int failures = 0;
    bool parsed = false;
    for (long n = 1; !parsed && n < 1000; ++n) {
        XercesMemory memory;
        RecordingParser parser;
        parser.setFeature(QRMISAX_Parser::FEATURE_NAMESPACE_PREFIXES, 1);
        parser.setFeature(QRMISAX_Parser::FEATURE_SCHEMA, 0);
        parser.setProperty(QRMISAX_Parser::PROPERTY_EXTERNAL_SCHEMA_LOCATION, "urn:a a.xsd");
        parser.setRefuseExternal(1);
        parser.setEntityExpansionLimit(5);
        parser.setDepthLimit(7);
        memory.failFrom(n);
        try {
            const int result = parser.parseText(kText);
            parsed = !memory.hasFailed();
            memory.failFrom(0);
            EXPECT_EQ(result, parsed ? 1 : 0) << n;
            EXPECT_TRUE(parsed) << "a failure was passed over: " << n;
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            ++failures;
            if (n > 2) { // before that it is the source for the bytes that cannot be made
                expectXercesOutOfMemory(error, 628);
            }
        }
        EXPECT_EQ(parser.getErrorCode(), 0);
        ASSERT_EQ(parser.parseText(kText), 1) << n << ": " << parser.errorString();
        EXPECT_EQ(parser.getFeature(QRMISAX_Parser::FEATURE_NAMESPACE_PREFIXES), 1);
        EXPECT_EQ(parser.getFeature(QRMISAX_Parser::FEATURE_SCHEMA), 0);
        EXPECT_STREQ(
            std::unique_ptr<char[]>(parser.getProperty(QRMISAX_Parser::PROPERTY_EXTERNAL_SCHEMA_LOCATION))
                .get(),
            "urn:a a.xsd");
        EXPECT_EQ(parser.parseText("<!DOCTYPE a SYSTEM 'x.dtd'><a/>"), 0) << "external resources are refused";
        EXPECT_EQ(parser.parseText("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;&e;&e;&e;&e;&e;</a>"), 0);
        EXPECT_EQ(parser.parseText("<a><a><a><a><a><a><a><a/></a></a></a></a></a></a></a>"), 0);
    }
    EXPECT_TRUE(parsed);
    EXPECT_GT(failures, 20);
}

TEST(EventParserMemory, RunsOutInTheSettings)
{
    RecordingParser parser;
    const auto property = QRMISAX_Parser::PROPERTY_EXTERNAL_SCHEMA_LOCATION;
    {
        XercesMemory memory;
        memory.failFrom(1);
        try {
            parser.setProperty(property, "urn:a a.xsd");
            ADD_FAILURE() << "it was set";
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            expectXercesOutOfMemory(error, 390);
        }
    }
    EXPECT_EQ(parser.setProperty(property, "urn:a a.xsd"), 1);
    {
        XercesMemory memory;
        memory.failFrom(1);
        try {
            const std::unique_ptr<char[]> value(parser.getProperty(property));
            ADD_FAILURE() << "it was read";
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            expectXercesOutOfMemory(error, 423);
        }
    }
}

TEST(EventParserMemory, RunsOutForTheStringsOfAnEvent)
{
    std::set<int> lines;
    bool parsed = false;
    // Strings of more and more bytes, so that memory is asked for in every kind of event.
    const std::string longName(2000, 'n');
    std::string text =
        "<!--" + std::string(500, 'c') + "--><p:" + longName + " xmlns:p='" + std::string(4000, 'u') + "'";
    for (int i = 0; i < 40; ++i) {
        text += " a" + std::to_string(i) + "='" + std::string(static_cast<std::size_t>(1000 + i), 'v') + "'";
    }
    text += ">" + std::string(200000, 't') + "<" + std::string(300000, 'e') + "/></p:" + longName + ">";
    for (long n = 1; !parsed && n < 20000; ++n) {
        RecordingParser parser;
        try {
            const failing_allocator::FailNth fail(n);
            const int result = parser.parse(text.data(), static_cast<int>(text.size()));
            parsed = !fail.hasFailed();
            EXPECT_TRUE(parsed) << "a failure was passed over: " << n;
            EXPECT_EQ(result, 1) << parser.errorString();
        } catch (const QRMOutOfMemoryError& error) {
            lines.insert(lineOf(error));
        } catch (const std::bad_alloc&) { // of the recorder
        }
        if (n % 50 == 0) {
            ASSERT_EQ(parser.parseText("<a>works</a>"), 1) << n;
        }
    }
    EXPECT_TRUE(parsed);
    for (const int line : {101, 108, 164, 628, 645}) {
        EXPECT_EQ(lines.count(line), 1u) << line;
    }
}

TEST(EventParserMemory, RunsOutForTheTextsOfTheRecord)
{
    const std::pair<std::string, int> names[] = {{"nosuchfile.xml", 475}, {std::string(4000, 'n'), 447}};
    for (const auto& [name, line] : names) {
        RecordingParser parser;
        bool isNamed = false;
        for (long n = 1; !isNamed && n < 200; ++n) {
            try {
                const failing_allocator::FailNth fail(n);
                EXPECT_EQ(parser.parse(name.c_str()), 0);
            } catch (const QRMOutOfMemoryError& error) {
                EXPECT_EQ(lineOf(error), line);
                EXPECT_EQ(error.getCode(), 0);
                EXPECT_EQ(error.getBackTrace().back().macroName, "QRM_RETHROW");
                isNamed = true;
            }
        }
        EXPECT_TRUE(isNamed) << line;
        EXPECT_EQ(parser.parse(name.c_str()), 0);
    }
}

} // namespace
