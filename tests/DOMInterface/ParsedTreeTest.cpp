// The parser links nodes itself. Whatever a tree tells its callers, and what it keeps to itself, is as Xerces' own parser
// makes it.

#include <algorithm>
#include <fstream>

#include "tests/support/RealDocuments.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"
#include "tests/support/TreeComparison.h"

namespace {

using tree_comparison::differenceOf;
using tree_comparison::Settings;

const std::string kEverything =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><!--before--><?p before?>"
    "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT item (#PCDATA|b)*><!ATTLIST item id ID #REQUIRED kind CDATA 'd' "
    "n NMTOKEN #IMPLIED><!ATTLIST b i ID #IMPLIED t CDATA #IMPLIED><!ENTITY e 'x<b t=\"1\">y</b>z'>"
    "<!ENTITY inner '<b>&e;</b>'><!NOTATION n SYSTEM 's'><!ENTITY u SYSTEM 's' NDATA n>]>"
    "<r xmlns='urn:d' xmlns:p='urn:p' p:a='1' b='2'>\n text <item id='one'>a</item><item id='two' kind='k'/>"
    "<b i='three' t='&lt;&#65;&e2;'/>&e;<p:c p:x='1' x='2' xml:lang='en'><d xmlns=''/><p:c/></p:c>"
    "<![CDATA[cdata]]>more&amp;text<!--c--><?pi data?>&inner;tail<b/><b "
    "i='four'></b>\xC3\xA9</r><!--after-->";

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    text.replace(text.find(what), what.size(), by);
    return text;
}

TEST(ParsedTree, IsThatOfXercesForEveryKindOfContent)
{
    const std::string text = replaced(kEverything, "&e2;", "&quot;");
    EXPECT_EQ(differenceOf(text, {}), "");
    QRMIDOM_Document document = documentOf(text);
    EXPECT_EQ(document.getElementById("one").getTagName(), "item");
    EXPECT_EQ(document.getElementById("four").getTagName(), "b");
}

TEST(ParsedTree, IsThatOfXercesWhereverAParseEnds)
{
    const std::string text = replaced(kEverything, "&e2;", "");
    for (std::size_t length = 1; length <= text.size(); ++length) {
        ASSERT_EQ(differenceOf(text.substr(0, length), {}), "") << text.substr(0, length);
    }
    EXPECT_EQ(differenceOf(kEverything, {}), "") << "an entity that is not declared";
}

TEST(ParsedTree, IsThatOfXercesWhenValidating)
{
    const std::string dtd = "<!DOCTYPE r [<!ELEMENT r (a*)><!ELEMENT a (#PCDATA)><!ATTLIST a i ID #IMPLIED "
                            "d CDATA 'default' f CDATA #FIXED 'fixed' k (x|y) 'x'>]>";
    Settings settings;
    settings.validates = true;
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a i='one'>t</a>\n <a d='given'/>  <a/>\n</r>", settings), "");
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a i='one'>t</a>\n <a i='one'/>  <a/>\n</r>", settings), "");
    EXPECT_EQ(differenceOf(dtd + "<r>\n <a>t</a>\n <b/></r>", settings), "");
    EXPECT_EQ(differenceOf("<a><b/></a>", settings), "");
}

TEST(ParsedTree, IsThatOfXercesWithASchema)
{
    const TemporaryFile schema(
        "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'><s:element name='r'><s:complexType><s:sequence>"
        "<s:element name='n' type='s:int' maxOccurs='unbounded' default='7'/></s:sequence>"
        "<s:attribute name='k' type='s:ID'/><s:attribute name='d' default='v'/></s:complexType></s:element>"
        "</s:schema>");
    for (const bool validates : {false, true}) {
        Settings settings;
        settings.validates = validates;
        settings.schema = schema.name();
        EXPECT_EQ(differenceOf("<r k='id'> <n> 1 </n>\n<n/><n>3</n> </r>", settings), "") << validates;
        EXPECT_EQ(differenceOf("<r><n>x</n></r>", settings), "") << validates;
    }
}

TEST(ParsedTree, IsThatOfXercesForTextOfManyPieces)
{
    std::string text = "<r>";
    for (int i = 0; i < 2000; ++i) {
        text += std::string(static_cast<std::size_t>(i), 'x') + "&amp;" + (i % 7 == 0 ? "<b/>" : "");
    }
    EXPECT_EQ(differenceOf(text + "</r>", {}), "");
}

TEST(ParsedTree, IsThatOfXercesForManyAttributes)
{
    std::string text = "<r><a";
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string((i * 7919) % 1000);
        text += " n" + number + "='" + number + "'";
    }
    EXPECT_EQ(differenceOf(text + " xmlns:p='u' p:n1='' xmlns='d'/></r>", {}), "");
}

TEST(ParsedTree, CanBeLeftToXerces)
{
    QRMIDOM_Parser parser;
    parser.setDirectLinking(0);
    QRMIDOM_Document document;
    const std::string text = "<r><a n='1'>x</a>y<b/></r>";
    EXPECT_EQ(parser.parse(text.data(), static_cast<int>(text.size()), document), 1);
    EXPECT_EQ(written(document.getDocumentElement()), "<r><a n=\"1\">x</a>y<b/></r>");
    const QRMIDOM_Document linked = documentOf(text);
    EXPECT_EQ(tree_comparison::differenceOf(document, linked), "");
}

TEST(ParsedTree, CanBeChangedAsAnyOther)
{
    QRMIDOM_Document document = documentOf("<r>a<b>c</b>d<e/><e/></r>");
    QRMIDOM_Element root = document.getDocumentElement();
    root.insertBefore(root.getLastChild(), root.getFirstChild());
    root.removeChild(root.getFirstChild().getNextSibling());
    root.appendChild(root.getFirstChild());
    EXPECT_EQ(written(root), "<r><b>c</b>d<e/><e/></r>");
    root.removeChild(root.getLastChild());
    root.getFirstChild().removeChild(root.getFirstChild().getFirstChild());
    root.replaceChild(document.createTextNode("f"), root.getLastChild());
    EXPECT_EQ(written(root), "<r><b/>df</r>");
    root.normalize();
    EXPECT_EQ(root.getLastChild().getNodeValue(), "df");
}

class RealTree : public testing::TestWithParam<real_documents::Package>
{
};

TEST_P(RealTree, IsThatOfXerces)
{
    const auto documents = real_documents::of(GetParam());
    EXPECT_GE(documents.size(), GetParam().atLeast) << "is the package installed?";
    for (const auto& path : documents) {
        std::ifstream stream(path, std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        Settings settings;
        settings.loadsExternal = false;
        if (!text.empty()) { // which is refused before it comes to Xerces
            ASSERT_EQ(differenceOf(text, settings), "") << path;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Debian, RealTree, testing::ValuesIn(real_documents::packages()),
                         [](const auto& package) {
                             std::string name = package.param.name;
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

} // namespace
