#include "QRMUtils/XML/DOMInterface/DomWriter.h"

#include <random>
#include <type_traits>

#include "tests/support/FailingAllocator.h"
#include "tests/support/RecordingWriter.h"
#include "tests/support/TestDocument.h"

namespace {

using Calls = std::vector<std::string>;

static_assert(!std::is_copy_constructible_v<DomWriter>);

constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

Calls callsFor(QRMIDOM_Node node, const char* encoding = nullptr)
{
    RecordingWriter writer(encoding);
    writer << node;
    return writer.calls;
}

QRMIDOM_Node rootOf(const QRMIDOM_Document& document)
{
    return document.getDocumentElement();
}

TEST(DomWriter, NamesItsEncodingInTheHeader)
{
    EXPECT_STREQ(RecordingWriter().getXMLHeader(), kHeader);
    EXPECT_STREQ(RecordingWriter(nullptr).getXMLHeader(), kHeader);
    EXPECT_EQ(RecordingWriter().getOutputEncoding(), nullptr);
    EXPECT_EQ(RecordingWriter(nullptr).getOutputEncoding(), nullptr);
    std::string name = "ISO-8859-1";
    RecordingWriter writer(name.c_str());
    name = "changed";
    EXPECT_STREQ(writer.getXMLHeader(), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n");
    EXPECT_STREQ(writer.getOutputEncoding(), "ISO-8859-1");
    EXPECT_STREQ(RecordingWriter("no such %s").getXMLHeader(),
                 "<?xml version=\"1.0\" encoding=\"no such %s\"?>\n");
}

TEST(DomWriter, WritesElementsCallByCall)
{
    EXPECT_EQ(
        callsFor(rootOf(documentOf("<a x='1&lt;2'>y &amp; z</a>"))),
        (Calls{"<", "a", " ", "x", "=\"", "1", "&lt;", "2", "\"", ">", "y ", "&amp;", " z", "</", "a", ">"}));
    EXPECT_EQ(callsFor(rootOf(documentOf("<b/>"))), (Calls{"<", "b", "/>"}));
    EXPECT_EQ(callsFor(rootOf(documentOf("<b e=''/>"))), (Calls{"<", "b", " ", "e", "=\"", "", "\"", "/>"}));
}

TEST(DomWriter, WritesAnElementWithAnEmptyTextAsOneWithChildren)
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element element = document.createElement("b");
    element.appendChild(document.createTextNode(""));
    EXPECT_EQ(callsFor(element), (Calls{"<", "b", ">", "", "</", "b", ">"}));
}

TEST(DomWriter, LeavesDefaultedAttributesOut)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ATTLIST a d CDATA 'default' s CDATA 'x'>]><a s='set'/>");
    EXPECT_EQ(written(document.getDocumentElement()), "<a s=\"set\"/>");
}

TEST(DomWriter, WritesTextEscaped)
{
    EXPECT_EQ(callsFor(rootOf(documentOf("<a>it's \"q\"</a>")).getFirstChild()),
              (Calls{"it", "&apos;", "s ", "&quot;", "q", "&quot;", ""}));
}

TEST(DomWriter, WritesCdataAsItIs)
{
    EXPECT_EQ(callsFor(rootOf(documentOf("<a><![CDATA[<&>]]></a>")).getFirstChild()),
              (Calls{"<![CDATA[", "<&>", "]]>"}));
    EXPECT_EQ(callsFor(emptyDocument().createCDATASection("")), (Calls{"<![CDATA[", "", "]]>"}));
}

TEST(DomWriter, WritesEntityReferencesWithoutTheirChildren)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>");
    EXPECT_EQ(callsFor(rootOf(document).getFirstChild()), (Calls{"&", "e", ";"}));
}

TEST(DomWriter, WritesComments)
{
    EXPECT_EQ(callsFor(emptyDocument().createComment("c")), (Calls{"<!--", "c", "-->"}));
    EXPECT_EQ(callsFor(emptyDocument().createComment("a<b")), (Calls{"<!--", "a", "&lt;", "b", "-->"}));
    EXPECT_EQ(callsFor(emptyDocument().createComment("")), (Calls{"<!--", "", "-->"}));
}

TEST(DomWriter, WritesProcessingInstructions)
{
    EXPECT_EQ(callsFor(emptyDocument().createProcessingInstruction("t", "d>")),
              (Calls{"<?", "t", " ", "d", "&gt;", "", "?>"}));
    EXPECT_EQ(callsFor(emptyDocument().createProcessingInstruction("target", "")),
              (Calls{"<?", "target", "?>"}));
}

TEST(DomWriter, WritesDocumentTypes)
{
    const auto implementation = QRMIDOM_DOMImplementation::getInstance();
    const auto callsForType = [&](const char* publicId, const char* systemId) {
        const QRMIDOM_DocumentType doctype = implementation.createDocumentType("a", publicId, systemId);
        const Calls calls = callsFor(doctype);
        doctype.getDOM_NodeImpl()->release();
        return calls;
    };
    EXPECT_EQ(callsForType("", ""), (Calls{"<!DOCTYPE ", "a", ">\n"}));
    EXPECT_EQ(callsForType("p", ""), (Calls{"<!DOCTYPE ", "a", " PUBLIC \"", "p", "\"", ">\n"}));
    EXPECT_EQ(callsForType("", "s"), (Calls{"<!DOCTYPE ", "a", " SYSTEM \"", "s", "\"", ">\n"}));
    EXPECT_EQ(callsForType("p", "s"),
              (Calls{"<!DOCTYPE ", "a", " PUBLIC \"", "p", "\"", " SYSTEM \"", "s", "\"", ">\n"}));
}

TEST(DomWriter, EscapesTheInternalSubset)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ELEMENT a ANY>]><a/>");
    EXPECT_EQ(callsFor(document.getDoctype()),
              (Calls{"<!DOCTYPE ", "a", "[", "", "&lt;", "!ELEMENT a ANY", "&gt;", "", "]", ">\n"}));
    EXPECT_EQ(written(document.getDoctype()), "<!DOCTYPE a[&lt;!ELEMENT a ANY&gt;]>\n");
}

TEST(DomWriter, WritesEntities)
{
    QRMIDOM_Parser parser;
    QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!NOTATION n SYSTEM 'x'><!ENTITY i 'text'>"
                                           "<!ENTITY u PUBLIC 'p' 's' NDATA n>]><a/>");
    QRMIDOM_NamedNodeMap entities = document.getDoctype().getEntities();
    EXPECT_EQ(written(entities.getNamedItem("i")), "<!ENTITY i>\n");
    EXPECT_EQ(callsFor(entities.getNamedItem("u")),
              (Calls{"<!ENTITY ", "u", " PUBLIC \"", "p", "\"", " SYSTEM \"", "s", "\"", " NDATA \"", "n",
                     "\"", ">\n"}));
}

TEST(DomWriter, WritesADocumentBetweenHeaderAndEndOfLine)
{
    EXPECT_EQ(callsFor(documentOf("<!--c--><root/>")),
              (Calls{kHeader, "<!--", "c", "-->", "<", "root", "/>", "(endline)"}));
    EXPECT_EQ(callsFor(emptyDocument()), (Calls{kHeader, "(endline)"}));
}

TEST(DomWriter, WritesNothingForWhatHasNoTextForm)
{
    QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!NOTATION n SYSTEM 'x'>]><a n='v'/>");
    QRMIDOM_DocumentFragment fragment = document.createDocumentFragment();
    fragment.appendChild(document.createElement("b"));
    EXPECT_EQ(callsFor(QRMIDOM_Node()), Calls());
    EXPECT_EQ(callsFor(document.getDocumentElement().getAttributeNode("n")), Calls());
    EXPECT_EQ(callsFor(fragment), Calls());
    EXPECT_EQ(callsFor(document.getDoctype().getNotations().item(0)), Calls());
}

TEST(DomWriter, WritesASubtreeAndNotWhatFollowsIt)
{
    const QRMIDOM_Document document = documentOf("<a><b><c/>x</b><d/></a>");
    EXPECT_EQ(written(rootOf(document).getFirstChild()), "<b><c/>x</b>");
    EXPECT_EQ(written(rootOf(document).getFirstChild().getFirstChild()), "<c/>");
}

TEST(DomWriter, ChainsItsCalls)
{
    RecordingWriter writer;
    QRMIDOM_Node text = emptyDocument().createTextNode("t");
    DomWriter& result = writer << text << text;
    EXPECT_EQ(&result, &writer);
    EXPECT_EQ(writer.calls, (Calls{"t", "t"}));
}

TEST(DomWriter, AsksForTheEncodingOfEachString)
{
    class Changing : public RecordingWriter
    {
    public:
        const char* getOutputEncoding() override { return ++asked % 2 != 0 ? "UTF-8" : "ISO-8859-1"; }
        int asked = 0;
    };
    const QRMIDOM_Document document = documentOf("<a>\u00e9<b/>\u00e9<![CDATA[\u00e9]]></a>");
    QRMIDOM_Node root = document.getDocumentElement();
    Changing writer;
    writer << root;
    EXPECT_EQ(writer.calls, (Calls{"<", "a", ">", "\xE9", "<", "b", "/>", "\xE9", "<![CDATA[", "\xC3\xA9",
                                   "]]>", "</", "a", ">"}));
    EXPECT_EQ(writer.asked, 6);
    EXPECT_STREQ(writer.getXMLHeader(), kHeader);
}

TEST(DomWriter, PutsReferencesForCharactersThatTheEncodingLacks)
{
    const QRMIDOM_Document document = documentOf("<a n='x\u0416'>\u0416b\U0001F600</a>");
    EXPECT_EQ(callsFor(rootOf(document), "ISO-8859-1"),
              (Calls{"<", "a", " ", "n", "=\"", "x", "&#1046;", "", "\"", ">", "", "&#1046;", "b",
                     "&#128512;", "", "</", "a", ">"}));
    EXPECT_EQ(callsFor(documentOf("<a>&lt;\u4e2d&gt;</a>").getDocumentElement().getFirstChild(), "KOI8-R"),
              (Calls{"", "&lt;", "", "&#20013;", "", "&gt;", ""}));
}

TEST(DomWriter, LetsTheErrorThroughWhereAReferenceWouldBeNone)
{
    QRMIDOM_Document document = emptyDocument();
    const QRMIDOM_Node nodes[] = {document.createElement(u"\u0416"), document.createComment(u"\u0416"),
                                  document.createCDATASection(u"\u0416"),
                                  document.createProcessingInstruction("t", u"\u0416"),
                                  document.createEntityReference(u"\u0416")};
    for (QRMIDOM_Node node : nodes) {
        RecordingWriter writer("ISO-8859-1");
        try {
            writer << node;
            ADD_FAILURE() << "it was written";
        } catch (const I18NConversionError& error) {
            EXPECT_STREQ(error.getText(), "cannot express U+0416 in ISO-8859-1 (unit 0)");
        }
        EXPECT_FALSE(writer.calls.empty()) << "what was written before stays";
        EXPECT_EQ(sharesOf(document), 7u);
    }
}

TEST(DomWriter, LetsTheErrorThroughForALoneSurrogate)
{
    for (const char* encoding : {"UTF-8", "ISO-8859-1", "KOI8-R"}) {
        EXPECT_THROW(callsFor(emptyDocument().createTextNode(std::u16string{u'a', 0xD800}.c_str()), encoding),
                     I18NConversionError);
    }
}

TEST(DomWriter, LetsTheErrorThroughForAnUnknownEncoding)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Node node = document;
    RecordingWriter writer("no-such-encoding");
    EXPECT_THROW(writer << node, I18NConversionError);
    EXPECT_EQ(writer.calls, (Calls{"<?xml version=\"1.0\" encoding=\"no-such-encoding\"?>\n", "<"}));
}

TEST(DomWriter, NamesItsPlaceWhenThereIsNoMemory)
{
    for (int n = 1; n <= 3; ++n) {
        bool failed = false;
        try {
            const failing_allocator::FailNth fail(n);
            const RecordingWriter writer("ISO-8859-1");
            failed = fail.hasFailed();
        } catch (const QRMOutOfMemoryError& error) {
            EXPECT_LE(n, 2);
            EXPECT_EQ(error.getCode(), 0);
            ASSERT_EQ(error.getBackTrace().size(), 2u);
            EXPECT_EQ(error.getBackTrace()[0].fileName, "DomWriter.cpp");
            EXPECT_EQ(error.getBackTrace()[0].macroName, "QRM_THROW");
            EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
            continue;
        }
        EXPECT_EQ(n, 3);
        EXPECT_FALSE(failed);
    }
}

/// What the writer does, told in the plainest way: by recursion, string by string.
class Reference
{
public:
    Calls calls;

    void escaped(const I18NString& text)
    {
        std::string run;
        for (const char byte : text.toUtf8()) {
            const char* const entity = byte == '<'    ? "&lt;"
                                       : byte == '>'  ? "&gt;"
                                       : byte == '&'  ? "&amp;"
                                       : byte == '\'' ? "&apos;"
                                       : byte == '"'  ? "&quot;"
                                                      : nullptr;
            if (entity != nullptr) {
                calls.push_back(run);
                calls.emplace_back(entity);
                run.clear();
            } else {
                run += byte;
            }
        }
        calls.push_back(run);
    }

    void write(const QRMIDOM_Node& node)
    {
        switch (node.getNodeType()) {
        case 1: {
            calls.emplace_back("<");
            escaped(node.getNodeName());
            const QRMIDOM_NamedNodeMap attributes = node.getAttributes();
            for (unsigned long i = 0; i < attributes.getLength(); ++i) {
                calls.emplace_back(" ");
                escaped(attributes.item(i).getNodeName());
                calls.emplace_back("=\"");
                escaped(attributes.item(i).getNodeValue());
                calls.emplace_back("\"");
            }
            if (!node.hasChildNodes()) {
                calls.emplace_back("/>");
                return;
            }
            calls.emplace_back(">");
            children(node);
            calls.emplace_back("</");
            escaped(node.getNodeName());
            calls.emplace_back(">");
            return;
        }
        case 3: escaped(node.getNodeValue()); return;
        case 4: calls.insert(calls.end(), {"<![CDATA[", node.getNodeValue().toUtf8(), "]]>"}); return;
        case 7:
            calls.emplace_back("<?");
            escaped(node.getNodeName());
            if (!node.getNodeValue().empty()) {
                calls.emplace_back(" ");
                escaped(node.getNodeValue());
            }
            calls.emplace_back("?>");
            return;
        case 8:
            calls.emplace_back("<!--");
            escaped(node.getNodeValue());
            calls.emplace_back("-->");
            return;
        case 9:
            calls.emplace_back(kHeader);
            children(node);
            calls.emplace_back("(endline)");
            return;
        default: return;
        }
    }

private:
    void children(const QRMIDOM_Node& node)
    {
        for (QRMIDOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
            write(child);
        }
    }
};

TEST(DomWriter, MakesTheCallsOfTheRecursiveDescriptionOnAnyTree)
{
    std::mt19937 random(20240229);
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const auto text = [&] {
        const char16_t* const pieces[] = {
            u"",           u"<",
            u">",          u"&",
            u"'",          u"\"",
            u"plain ",     u"\u0416",
            u"\U0001F600", u"a rather longer piece of text, beyond every short string "};
        I18NString all;
        for (unsigned i = below(6); i > 0; --i) {
            all += pieces[below(10)];
        }
        return all;
    };
    for (int tree = 0; tree < 500; ++tree) {
        QRMIDOM_Document document = emptyDocument();
        QRMIDOM_Element root = document.createElement("root");
        document.appendChild(root);
        std::vector<QRMIDOM_Element> elements = {root};
        for (unsigned step = below(60); step > 0; --step) {
            QRMIDOM_Element parent = elements[below(static_cast<unsigned>(elements.size()))];
            switch (below(6)) {
            case 0: parent.appendChild(document.createTextNode(text())); break;
            case 1: parent.appendChild(document.createCDATASection(text())); break;
            case 2: parent.appendChild(document.createComment(text())); break;
            case 3: parent.appendChild(document.createProcessingInstruction("pi", text())); break;
            case 4: parent.setAttribute(below(2) != 0 ? u"n" : u"\u0416", text()); break;
            default:
                elements.emplace_back(parent.appendChild(document.createElementNS("urn:u", "p:e")));
                break;
            }
        }
        Reference reference;
        reference.write(document);
        ASSERT_EQ(callsFor(document), reference.calls) << "tree " << tree;
    }
}

} // namespace
