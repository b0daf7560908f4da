#include <fstream>

#include <unistd.h>

#include "tests/support/RecordingParser.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"

namespace {

class ExternalDTD : public testing::Test
{
protected:
    std::string dtd = testing::TempDir() + "qrmidom-" + std::to_string(::getpid()) + ".dtd";
    std::string text = "<!DOCTYPE a SYSTEM '" + dtd + "'><a/>";
    QRMIDOM_Document document;

    ~ExternalDTD() override { ::unlink(dtd.c_str()); }

    int parseWith(QRMIDOM_Parser& parser)
    {
        return parser.parse(text.data(), static_cast<int>(text.size()), document);
    }
};

TEST_F(ExternalDTD, IsLoadedPassedOverOrRefused)
{
    std::ofstream(dtd) << "<!ELEMENT a EMPTY><!ATTLIST a n CDATA 'default'>";
    QRMIDOM_Parser parser;
    EXPECT_EQ(parseWith(parser), 1);
    EXPECT_EQ(document.getDocumentElement().getAttribute("n"), I18NString("default"));
    parser.setRefuseExternal(1);
    EXPECT_EQ(parseWith(parser), 0);
    EXPECT_NE(parser.errorString().indexOf("unable to open DTD document"), -1) << parser.errorString();
    parser.setLoadExternalDTD(0);
    EXPECT_EQ(parseWith(parser), 1);
    EXPECT_EQ(document.getDocumentElement().getAttribute("n"), I18NString(""));
    parser.setRefuseExternal(0);
    parser.setLoadExternalDTD(5);
    EXPECT_EQ(parseWith(parser), 1);
    EXPECT_EQ(document.getDocumentElement().getAttribute("n"), I18NString("default"));
}

TEST_F(ExternalDTD, IsMissedUnlessItIsPassedOver)
{
    QRMIDOM_Parser parser;
    EXPECT_EQ(parseWith(parser), 0);
    EXPECT_EQ(parser.getErrorCode(), -1);
    parser.setLoadExternalDTD(0);
    EXPECT_EQ(parseWith(parser), 1);
}

TEST_F(ExternalDTD, ValidatesAndIsCached)
{
    std::ofstream(dtd) << "<!ELEMENT a EMPTY>";
    for (const int mode : {0, 1}) {
        QRMIDOM_Parser parser(mode);
        parser.setDoValidation(1);
        EXPECT_EQ(parseWith(parser), 1) << parser.errorString();
        EXPECT_EQ(parseWith(parser), 1) << parser.errorString();
        const std::string invalid = "<!DOCTYPE a SYSTEM '" + dtd + "'><a>text</a>";
        EXPECT_EQ(parser.parse(invalid.data(), static_cast<int>(invalid.size()), document), 0);
    }
}

TEST(ExternalFiles, GiveNoEventsWhereTheyAreRefused)
{
    RecordingParser parser;
    const TemporaryFile secret("secret");
    const std::string name = secret.name();
    const std::string tricks[] = {
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + name + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e PUBLIC 'p' 'file://" + name + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY % p SYSTEM '" + name + "'>%p;]><a/>",
        "<!DOCTYPE a SYSTEM '" + name + "'><a/>",
    };
    for (const std::string& trick : tricks) {
        parser.setRefuseExternal(0);
        parser.parseText(trick);
        const bool read = parser.getErrorCode() == 0 || std::string(parser.errorString()).find("unable") != 0;
        EXPECT_TRUE(read) << "the trick works by default: " << trick << parser.errorString();
        EXPECT_EQ(parser.setRefuseExternal(1), 1);
        EXPECT_EQ(parser.parseText(trick), 0) << trick;
        EXPECT_EQ(parser.getErrorCode(), -1);
        EXPECT_EQ(std::string(parser.errorString()).find("unable to open"), 0u) << parser.errorString();
        for (const std::string& event : parser.events) {
            EXPECT_EQ(event.find("secret"), std::string::npos);
        }
    }
    EXPECT_EQ(parser.setLoadExternalDTD(0), 1);
    EXPECT_EQ(parser.parseText(tricks[3]), 1) << "it is passed over";
}

} // namespace
