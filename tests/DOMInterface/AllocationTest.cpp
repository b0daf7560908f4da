// Here every allocation of the program may fail, those of Xerces and of the standard library included.

#include <functional>
#include <memory>
#include <vector>

#include <xercesc/framework/MemBufInputSource.hpp>

#include "WQSStreams/WQSFileInputStream.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"

namespace {

using failing_allocator::FailNth;

constexpr long kEnough = 5000; // allocations; every operation here does with fewer

const std::string kText = "<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST a d CDATA 'v'>]>"
                          "<a xmlns:p='urn:p' p:n='v'>text<b/>&e;<![CDATA[c]]></a>";
const std::string kPlainText = "<a xmlns:p='urn:p' p:n='v'>text<b/><![CDATA[c]]></a>"; // without a subset

TEST(ParserConstruction, NamesThePlaceOfEachOfItsTwoParts)
{
    for (const int mode : {0, 1}) {
        std::vector<int> lines;
        bool made = false;
        for (long n = 1; n < kEnough && !made; ++n) {
            try {
                const FailNth fail(n);
                const QRMIDOM_Parser parser(mode);
                made = true;
                EXPECT_FALSE(fail.hasFailed()) << "a failure was passed over: " << n;
            } catch (const QRMOutOfMemoryError& error) {
                EXPECT_EQ(error.getCode(), 0);
                EXPECT_EQ(error.getText(), nullptr);
                ASSERT_EQ(error.getBackTrace().size(), 2u);
                EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_Parser.cpp");
                EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
                EXPECT_EQ(error.getBackTrace()[1].lineNumber, error.getBackTrace()[0].lineNumber);
                EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
                lines.push_back(error.getBackTrace()[0].lineNumber);
            }
        }
        EXPECT_TRUE(made);
        ASSERT_GT(lines.size(), 10u);
        EXPECT_EQ(lines.back(), 62) << "the error handler comes last";
        lines.pop_back();
        EXPECT_EQ(lines, std::vector<int>(lines.size(), 61));
    }
}

/// A parse of one text, with all that it needs made beforehand.
using Parse = std::function<int(QRMIDOM_Parser&, QRMIDOM_Document&)>;

struct Road
{
    friend void PrintTo(const Road& road, std::ostream* stream) { *stream << road.name; }

    const char* name;
    bool makesItsStream; // the library's own byte stream, that is
    Parse (*prepare)(const std::string& text);
};

const Road kRoads[] = {
    {"Buffer", false,
     [](const std::string& text) -> Parse {
         return [text](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
             return parser.parse(text.data(), static_cast<int>(text.size()), document);
         };
     }},
    {"File", true,
     [](const std::string& text) -> Parse {
         const auto file = std::make_shared<TemporaryFile>(text);
         return [file](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
             return parser.parse(file->name(), document);
         };
     }},
    {"StandardStream", true,
     [](const std::string& text) -> Parse {
         const auto stream = std::make_shared<std::istringstream>(text);
         return [stream](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
             return parser.parse(*stream, document);
         };
     }},
    {"FamilyStream", true,
     [](const std::string& text) -> Parse {
         const auto file = std::make_shared<TemporaryFile>(text);
         const auto stream = std::make_shared<WQSFileInputStream>(file->name());
         return [file, stream](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
             return parser.parse(*stream, document);
         };
     }},
    {"InputSource", false,
     [](const std::string& text) -> Parse {
         const auto kept = std::make_shared<std::string>(text);
         const auto source = std::make_shared<xercesc::MemBufInputSource>(
             reinterpret_cast<const XMLByte*>(kept->data()), kept->size(), "id");
         return [kept, source](QRMIDOM_Parser& parser, QRMIDOM_Document& document) {
             return parser.parse(*source, document);
         };
     }},
};

class ParseWithoutMemory : public testing::TestWithParam<Road>
{
};

INSTANTIATE_TEST_SUITE_P(Roads, ParseWithoutMemory, testing::ValuesIn(kRoads),
                         [](const auto& road) { return road.param.name; });

TEST_P(ParseWithoutMemory, ThrowsTheErrorOfTheFamilyAndWorksAgain)
{
    for (const int mode : {0, 1}) {
        const std::string& text = mode == 1 ? kPlainText : kText;
        QRMIDOM_Document expected;
        QRMIDOM_Parser plain;
        ASSERT_EQ(GetParam().prepare(text)(plain, expected), 1);
        int thrown = 0;
        int recorded = 0;
        bool done = false;
        for (long n = 1; n < kEnough && !done; ++n) {
            SCOPED_TRACE("mode " + std::to_string(mode) + ", allocation " + std::to_string(n));
            QRMIDOM_Parser parser(mode);
            QRMIDOM_Document document = documentOf("<former/>");
            const QRMIDOM_Document former = document;
            const Parse parse = GetParam().prepare(text);
            try {
                int result = -1;
                bool hasFailed = false;
                {
                    const FailNth fail(n); // the checks below ask for memory, too
                    result = parse(parser, document);
                    hasFailed = fail.hasFailed();
                }
                done = !hasFailed;
                if (result == 0) {
                    // Xerces asked for the byte stream and passed on what came instead of it.
                    ++recorded;
                    EXPECT_TRUE(hasFailed);
                    EXPECT_EQ(parser.getErrorCode(), -1);
                    EXPECT_TRUE(parser.errorString().empty());
                } else {
                    EXPECT_EQ(written(document), written(expected));
                }
            } catch (const QRMOutOfMemoryError& error) {
                ++thrown;
                const auto& place = error.getBackTrace().at(0);
                EXPECT_EQ(place.fileName, "QRMIDOM_Parser.cpp");
                if (error.getCode() == 0) { // the holder of the document that was parsed
                    ASSERT_EQ(error.getBackTrace().size(), 2u);
                    EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
                } else {
                    EXPECT_EQ(error.getCode(), 300);
                    EXPECT_STREQ(error.getText(), "Out of memory");
                    EXPECT_EQ(place.context, "QRMIDOM -> Xerces");
                    EXPECT_EQ(place.macroName, "QRM_THROW");
                    const bool wrapsBytes = n == 1 && std::string(GetParam().name) == "Buffer";
                    EXPECT_EQ(place.lineNumber == 223, !wrapsBytes) << place.lineNumber;
                }
                EXPECT_EQ(parser.getErrorCode(), 0);
                EXPECT_EQ(document, former);
                EXPECT_EQ(sharesOf(former), 2u);
            }
            QRMIDOM_Document again;
            ASSERT_EQ(GetParam().prepare(text)(parser, again), 1) << parser.errorString();
            EXPECT_EQ(written(again), written(expected));
            EXPECT_EQ(sharesOf(again), 1u);
        }
        EXPECT_TRUE(done);
        EXPECT_GT(thrown, 20);
        EXPECT_EQ(recorded, GetParam().makesItsStream ? 1 : 0);
    }
}

TEST(ParserWithoutMemory, KeepsAllItsSettings)
{
    const auto outOfMemory = [](QRMIDOM_Parser& parser) {
        QRMIDOM_Document document;
        const FailNth fail(5);
        parser.parse("<a/>", 4, document);
    };
    const auto parse = [](QRMIDOM_Parser& parser, const std::string& text) {
        QRMIDOM_Document document;
        return parser.parse(text.data(), static_cast<int>(text.size()), document);
    };
    const auto bothTimes = [&](QRMIDOM_Parser& parser, const std::function<void()>& check) {
        check();
        EXPECT_THROW(outOfMemory(parser), QRMOutOfMemoryError);
        check();
    };
    {
        QRMIDOM_Parser parser;
        parser.setDoValidation(1);
        bothTimes(parser, [&] {
            EXPECT_EQ(parser.getDoValidation(), 1);
            EXPECT_EQ(parse(parser, "<a/>"), 0);
        });
    }
    {
        QRMIDOM_Parser parser;
        parser.setLoadExternalDTD(0);
        bothTimes(parser, [&] { EXPECT_EQ(parse(parser, "<!DOCTYPE a SYSTEM '/no/such.dtd'><a/>"), 1); });
    }
    {
        QRMIDOM_Parser parser;
        parser.setEntityExpansionLimit(1);
        bothTimes(parser, [&] {
            EXPECT_EQ(parse(parser, "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"), 1);
            EXPECT_EQ(parse(parser, "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;&e;</a>"), 0);
        });
    }
    {
        QRMIDOM_Parser parser(1);
        bothTimes(parser, [&] { EXPECT_EQ(parse(parser, "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>"), 0); });
        EXPECT_THROW(outOfMemory(parser), QRMOutOfMemoryError);
        parser.reset();
        EXPECT_EQ(parse(parser, "<a/>"), 1);
    }
    {
        const TemporaryFile schema(
            "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' "
            "targetNamespace='urn:o'><xs:element name='n' type='xs:int'/></xs:schema>");
        QRMIDOM_Parser parser;
        parser.setDoValidation(1);
        parser.setDoSchema(1);
        parser.setExternalSchemaLocation((std::string("urn:o ") + schema.name()).c_str());
        bothTimes(parser, [&] {
            EXPECT_EQ(parser.getDoSchema(), 1);
            EXPECT_EQ(parse(parser, "<n xmlns='urn:o'>5</n>"), 1) << parser.errorString();
            EXPECT_EQ(parse(parser, "<n xmlns='urn:o'>five</n>"), 0);
        });
    }
    {
        const TemporaryFile schema("<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
                                   "<xs:element name='n' type='xs:int'/></xs:schema>");
        QRMIDOM_Parser parser;
        parser.setDoValidation(1);
        parser.setDoSchema(1);
        parser.setRefuseExternal(1);
        parser.setExternalNoNamespaceSchemaLocation(schema.name());
        bothTimes(parser, [&] {
            EXPECT_EQ(parse(parser, "<n>5</n>"), 1) << parser.errorString();
            EXPECT_EQ(parse(parser, "<!DOCTYPE n [<!ENTITY e SYSTEM '/etc/hostname'>]><n>&e;</n>"), 0);
            EXPECT_NE(parser.errorString().indexOf("unable to open external entity"), -1)
                << parser.errorString();
        });
    }
}

TEST(WriterWithoutMemory, TellsWhichAndLeavesTheFileClosed)
{
    const QRMIDOM_Document document = documentOf("<a n='v'>\u0416 &lt; and so on</a>");
    const TemporaryFile file("");
    int own = 0;
    int unknown = 0;
    bool done = false;
    for (long n = 1; n < kEnough && !done; ++n) {
        SCOPED_TRACE(n);
        try {
            const FailNth fail(n);
            QRMIDOM_Helper::write(document, file.name(), "UTF-8");
            done = !fail.hasFailed();
            EXPECT_TRUE(done) << "a failure was passed over";
        } catch (const QRMOutOfMemoryError& error) {
            ++own; // the writer's two strings
            EXPECT_EQ(error.getCode(), 0);
            ASSERT_EQ(error.getBackTrace().size(), 3u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "DomWriter.cpp");
            EXPECT_EQ(error.getBackTrace()[2].fileName, "QRMIDOM_Helper.cpp");
            EXPECT_EQ(error.getBackTrace()[2].context, "QRMIDOM_Helper::write");
            EXPECT_EQ(error.getBackTrace()[2].macroName, "QRM_RETHROW");
        } catch (const QRMSystemError& error) {
            ++unknown;
            EXPECT_EQ(error.getCode(), 0);
            EXPECT_STREQ(error.getText(), "Unknown error occured while doing QRMIDOM_Helper::write");
            EXPECT_TRUE(error.getBackTrace().empty());
        }
        EXPECT_EQ(sharesOf(document), 1u);
    }
    EXPECT_TRUE(done);
    EXPECT_EQ(own, 2);
    EXPECT_GT(unknown, 0);
    QRMIDOM_Document again;
    QRMIDOM_Parser parser;
    EXPECT_EQ(parser.parse(file.name(), again), 1) << parser.errorString();
    EXPECT_EQ(written(again), written(document));
}

} // namespace
