#include <functional>

#include "tests/support/TestDocument.h"
#include "tests/support/XercesMemory.h"

namespace {

/// Longer than what a document has in store, so that each use of it asks for memory.
const I18NString& longText()
{
    static const I18NString text(std::u16string(20000, u'x').c_str());
    return text;
}

struct Place
{
    const char* operation;
    const char* file;
    int number; // 0: not a fixed one
    std::function<void(QRMIDOM_Document&, QRMIDOM_Element&, QRMIDOM_Text&)> call;
};

using Document = QRMIDOM_Document;
using Element = QRMIDOM_Element;
using Text = QRMIDOM_Text;

const Place kPlaces[] = {
    {"SubstringData", "QRMIDOM_CharacterData.cpp", 103,
     [](Document&, Element&, Text& text) { text.substringData(0, 20000); }},
    {"SubstringDataFilling", "QRMIDOM_CharacterData.cpp", 223,
     [](Document&, Element&, Text& text) {
         I18NString out;
         text.substringData(0, 20000, out);
     }},
    {"AppendData", "QRMIDOM_CharacterData.cpp", 125,
     [](Document&, Element&, Text& text) { text.appendData(longText()); }},
    {"InsertData", "QRMIDOM_CharacterData.cpp", 146,
     [](Document&, Element&, Text& text) { text.insertData(0, longText()); }},
    {"DeleteData", "QRMIDOM_CharacterData.cpp", 165,
     [](Document&, Element&, Text& text) { text.deleteData(0, 1); }},
    {"ReplaceData", "QRMIDOM_CharacterData.cpp", 186,
     [](Document&, Element&, Text& text) { text.replaceData(0, 1, longText()); }},
    {"SplitText", "QRMIDOM_Text.cpp", 81, [](Document&, Element&, Text& text) { text.splitText(1); }},
    {"CreateElement", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createElement(longText()); }},
    {"CreateElementNS", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createElementNS("urn:u", longText()); }},
    {"CreateTextNode", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createTextNode(longText()); }},
    {"CreateComment", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createComment(longText()); }},
    {"CreateCDATASection", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createCDATASection(longText()); }},
    {"CreateProcessingInstruction", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createProcessingInstruction(longText(), "d"); }},
    {"CreateAttribute", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createAttribute(longText()); }},
    {"CreateEntityReference", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element&, Text&) { document.createEntityReference(longText()); }},
    {"RenameNode", "QRMIDOM_Document.cpp", 0,
     [](Document& document, Element& element, Text&) { document.renameNode(element, "", longText()); }},
    {"SetAttribute", "QRMIDOM_Element.cpp", 0,
     [](Document&, Element& element, Text&) { element.setAttribute("n", longText()); }},
    {"SetAttributeNS", "QRMIDOM_Element.cpp", 0,
     [](Document&, Element& element, Text&) { element.setAttributeNS("urn:u", "p:n", longText()); }},
    {"CloneNode", "QRMIDOM_Node.cpp", 0, [](Document&, Element& element, Text&) { element.cloneNode(1); }},
};

class OutOfMemory : public testing::TestWithParam<Place>
{
};

INSTANTIATE_TEST_SUITE_P(Xerces, OutOfMemory, testing::ValuesIn(kPlaces),
                         [](const auto& place) { return place.param.operation; });

TEST_P(OutOfMemory, ComesAsTheErrorOfTheFamily)
{
    XercesMemory memory;
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element element = document.createElement("a");
    QRMIDOM_Text text = document.createTextNode(longText());
    element.appendChild(text);
    const unsigned int before = sharesOf(document);
    memory.failFrom(1);
    try {
        GetParam().call(document, element, text);
        memory.failFrom(0);
        FAIL() << "it worked";
    } catch (const QRMOutOfMemoryError& error) {
        memory.failFrom(0);
        EXPECT_EQ(error.getCode(), 300);
        EXPECT_STREQ(error.getText(), "Out of memory");
        ASSERT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace()[0].fileName, GetParam().file);
        if (GetParam().number != 0) {
            EXPECT_EQ(error.getBackTrace()[0].lineNumber, GetParam().number);
        }
        EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM -> Xerces");
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
    }
    EXPECT_EQ(sharesOf(document), before);
}

TEST(OutOfMemoryInAParser, IsNamedWhenThereIsNoneForTheParser)
{
    XercesMemory memory;
    int failures = 0;
    for (long n = 1; n < 1000; ++n) {
        memory.failFrom(n);
        try {
            const QRMIDOM_Parser parser;
            if (!memory.hasFailed()) {
                break;
            }
        } catch (const QRMOutOfMemoryError& error) {
            ++failures;
            EXPECT_EQ(error.getCode(), 0);
            ASSERT_EQ(error.getBackTrace().size(), 2u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_Parser.cpp");
            EXPECT_EQ(error.getBackTrace()[0].lineNumber, 61);
            EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
        }
    }
    EXPECT_GT(failures, 10);
}

TEST(OutOfMemoryInAParser, ComesFromEveryPointAndLeavesTheParserUsable)
{
    const std::string text = "<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST a d CDATA 'v'>]>"
                             "<a xmlns:p='urn:p' p:n='v'>text<b/>&e;<![CDATA[c]]></a>";
    int failures = 0;
    for (long n = 1; n < 1000; ++n) {
        XercesMemory memory;
        QRMIDOM_Parser parser;
        parser.setDoValidation(0);
        parser.setDoSchema(1);
        parser.setEntityExpansionLimit(5);
        QRMIDOM_Document document = documentOf("<former/>");
        memory.failFrom(n);
        try {
            const int result = parser.parse(text.data(), static_cast<int>(text.size()), document);
            const bool failed = memory.hasFailed();
            memory.failFrom(0);
            if (!failed) {
                EXPECT_EQ(result, 1);
                break;
            }
            ADD_FAILURE() << "failure " << n << " gave a result";
        } catch (const QRMOutOfMemoryError& error) {
            memory.failFrom(0);
            ++failures;
            if (error.getCode() != 0) { // 0: there was none for the holder or for the bytes
                EXPECT_EQ(error.getCode(), 300);
                EXPECT_STREQ(error.getText(), "Out of memory");
                EXPECT_EQ(error.getBackTrace().at(0).fileName, "QRMIDOM_Parser.cpp");
                // The first one is that of the source that the bytes are wrapped in.
                if (n > 1) {
                    EXPECT_EQ(error.getBackTrace().at(0).lineNumber, 223);
                }
                EXPECT_EQ(error.getBackTrace().at(0).context, "QRMIDOM -> Xerces");
            }
        } catch (const xercesc::OutOfMemoryException&) {
            memory.failFrom(0);
            ADD_FAILURE() << "failure " << n << " came as an error of Xerces";
        }
        EXPECT_EQ(parser.getErrorCode(), 0) << "the record is unchanged";
        EXPECT_EQ(written(document.getDocumentElement()), "<former/>");
        parser.reset();
        ASSERT_EQ(parser.parse(text.data(), static_cast<int>(text.size()), document), 1)
            << "after failure " << n << ": " << parser.errorString();
        EXPECT_EQ(parser.getDoSchema(), 1);
        EXPECT_EQ(sharesOf(document), 1u);
    }
    EXPECT_GT(failures, 20);
}

TEST(OutOfMemoryInWriting, ComesFromXercesThroughThePathAsTheErrorOfTheFamily)
{
    XercesMemory memory;
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Attr attribute = document.createAttribute("n");
    // The value of an attribute in two pieces is put together when it is asked for.
    attribute.appendChild(document.createTextNode(longText()));
    attribute.appendChild(document.createTextNode(longText()));
    QRMIDOM_Element element = document.createElement("a");
    element.setAttributeNode(attribute);
    const unsigned int before = sharesOf(document);
    memory.failFrom(1);
    try {
        QRMIDOM_Helper::write(element, "/dev/null", "UTF-8");
        memory.failFrom(0);
        FAIL() << "it worked";
    } catch (const QRMOutOfMemoryError& error) {
        memory.failFrom(0);
        EXPECT_EQ(error.getCode(), 300);
        EXPECT_STREQ(error.getText(), "Out of memory");
        ASSERT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace()[0].fileName, "QRMIDOM_Helper.cpp");
        EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM -> Xerces");
        EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
    }
    memory.failFrom(1);
    std::ostringstream stream;
    EXPECT_THROW(QRMIDOM_Helper::write(element, stream, "UTF-8"), xercesc::OutOfMemoryException);
    memory.failFrom(0);
    EXPECT_EQ(stream.str(), "<a n=\"") << "only the path translates, and what was written stays";
    EXPECT_EQ(sharesOf(document), before);
}

} // namespace
