#include <fstream>

#include <unistd.h>

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

} // namespace
