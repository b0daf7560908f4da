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
    const Calls before[] = {{"<"}, {"<!--"}, {"<![CDATA["}, {"<?", "t", " "}, {"&"}};
    for (std::size_t i = 0; i < std::size(nodes); ++i) {
        QRMIDOM_Node node = nodes[i];
        RecordingWriter writer("ISO-8859-1");
        try {
            writer << node;
            ADD_FAILURE() << "it was written";
        } catch (const I18NConversionError& error) {
            EXPECT_STREQ(error.getText(), "cannot express U+0416 in ISO-8859-1 (unit 0)");
        }
        EXPECT_EQ(writer.calls, before[i]) << "what was written before stays";
        EXPECT_EQ(sharesOf(document), 7u);
    }
}

TEST(DomWriter, LetsTheErrorThroughForTheNamesOfAttributesAndDeclarations)
{
    const auto callsUntilError = [](QRMIDOM_Node node) {
        RecordingWriter writer("ISO-8859-1");
        EXPECT_THROW(writer << node, I18NConversionError);
        return writer.calls;
    };
    EXPECT_EQ(callsUntilError(rootOf(documentOf("<a b='\u0416' \u0416='v'/>"))),
              (Calls{"<", "a", " ", "b", "=\"", "", "&#1046;", "", "\"", " "}));
    EXPECT_EQ(callsUntilError(rootOf(documentOf("<a><b/><\u0416/></a>"))),
              (Calls{"<", "a", ">", "<", "b", "/>", "<"}));
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!NOTATION n SYSTEM 'x'><!ENTITY u SYSTEM '\u0416' NDATA n>]><a/>");
    EXPECT_EQ(callsUntilError(document.getDoctype()), (Calls{"<!DOCTYPE ", "a", "["}));
    EXPECT_EQ(callsUntilError(document.getDoctype().getEntities().item(0)),
              (Calls{"<!ENTITY ", "u", " SYSTEM \""}));
    EXPECT_EQ(callsUntilError(document),
              (Calls{"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n", "<!DOCTYPE ", "a", "["}));
}

TEST(DomWriter, CutsEscapedTextInEncodingsWithZeroBytes)
{
    const QRMIDOM_Document document = documentOf("<ab>cd<![CDATA[ef]]></ab>");
    EXPECT_EQ(callsFor(rootOf(document), "UTF-16LE"),
              (Calls{"<", "a", ">", "c", "<![CDATA[", std::string("e\0f\0", 4), "]]>", "</", "a", ">"}));
    EXPECT_EQ(callsFor(rootOf(document), "UTF-16BE"),
              (Calls{"<", "", ">", "", "<![CDATA[", std::string("\0e\0f", 4), "]]>", "</", "", ">"}));
}

TEST(DomWriter, TakesANameOfAnyLengthForTheEncoding)
{
    const std::string name(100000, 'x');
    RecordingWriter writer(name.c_str());
    EXPECT_EQ(writer.getXMLHeader(), "<?xml version=\"1.0\" encoding=\"" + name + "\"?>\n");
    EXPECT_EQ(writer.getOutputEncoding(), name);
    QRMIDOM_Node text = emptyDocument().createTextNode("t");
    EXPECT_THROW(writer << text, I18NConversionError);
    EXPECT_EQ(writer.calls, Calls());
    EXPECT_STREQ(RecordingWriter("").getXMLHeader(), "<?xml version=\"1.0\" encoding=\"\"?>\n");
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
    std::string header = kHeader;

    /// @param highest the last character that the encoding has
    /// @param encode gives the bytes of a character up to that one
    Reference(char32_t highest, std::string (*encode)(char32_t)) : m_highest(highest), m_encode(encode) {}

    void escaped(const I18NString& text)
    {
        std::string run;
        for (int i = 0; i < text.length(); ++i) {
            char32_t character = text.charAt(i);
            if (character >= 0xD800 && character < 0xE000) {
                ++i;
                character = 0x10000 + (character - 0xD800) * 0x400 + (text.charAt(i) - 0xDC00u);
            }
            const std::string entity =
                character == '<'        ? "&lt;"
                : character == '>'      ? "&gt;"
                : character == '&'      ? "&amp;"
                : character == '\''     ? "&apos;"
                : character == '"'      ? "&quot;"
                : character > m_highest ? "&#" + std::to_string(static_cast<unsigned long>(character)) + ";"
                                        : "";
            if (entity.empty()) {
                run += m_encode(character);
            } else {
                calls.insert(calls.end(), {run, entity});
                run.clear();
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
                if (!QRMIDOM_Attr(attributes.item(i)).getSpecified()) {
                    continue;
                }
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
        case 5:
            calls.emplace_back("&");
            escaped(node.getNodeName());
            calls.emplace_back(";");
            return;
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
        case 10: {
            const QRMIDOM_DocumentType doctype = node;
            calls.emplace_back("<!DOCTYPE ");
            escaped(doctype.getName());
            if (!doctype.getInternalSubset().empty()) {
                calls.emplace_back("[");
                escaped(doctype.getInternalSubset());
                calls.emplace_back("]");
            }
            calls.emplace_back(">\n");
            return;
        }
        case 9:
            calls.emplace_back(header);
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

    char32_t m_highest;
    std::string (*m_encode)(char32_t);
};

std::string utf8Of(char32_t character)
{
    const char16_t pair[] = {static_cast<char16_t>(0xD7C0 + (character >> 10)),
                             static_cast<char16_t>(0xDC00 + (character & 0x3FF)), 0};
    const char16_t single[] = {static_cast<char16_t>(character), 0};
    return I18NString(character > 0xFFFF ? pair : single).toUtf8();
}

std::string byteOf(char32_t character)
{
    return std::string(1, static_cast<char>(character));
}

/// Trees of every kind of node that a tree may have, the same ones in every run.
class RandomTrees
{
public:
    /// @param names what elements, attributes and the other named nodes are called
    /// @param plain pieces of text for the nodes in which no reference stands for a character
    RandomTrees(std::vector<I18NString> names, std::vector<I18NString> plain)
        : m_names(std::move(names)), m_plain(std::move(plain))
    {
    }

    QRMIDOM_Document next()
    {
        QRMIDOM_Document document =
            below(2) == 0
                ? documentOf("<!DOCTYPE root [<!ENTITY e 'x'><!ATTLIST el d CDATA 'default'>]><root/>")
                : documentOf("<root/>");
        QRMIDOM_Node doctype = document.getDoctype();
        if (!doctype.isNull() && below(2) == 0) {
            document.removeChild(doctype);
        }
        document.appendChild(document.createComment(text(m_plain)));
        std::vector<QRMIDOM_Element> elements = {document.getDocumentElement()};
        for (unsigned step = below(60); step > 0; --step) {
            QRMIDOM_Element parent = elements[below(static_cast<unsigned>(elements.size()))];
            switch (below(8)) {
            case 0:
            case 1: parent.appendChild(document.createTextNode(text(m_any))); break;
            case 2: parent.appendChild(document.createCDATASection(text(m_plain))); break;
            case 3: parent.appendChild(document.createComment(text(m_plain))); break;
            case 4: parent.appendChild(document.createProcessingInstruction("pi", text(m_plain))); break;
            case 5: parent.setAttribute(name(), text(m_any)); break;
            case 6: parent.appendChild(document.createEntityReference("e")); break;
            default: elements.emplace_back(parent.appendChild(document.createElement(name()))); break;
            }
        }
        return document;
    }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }
    const I18NString& name() { return m_names[below(static_cast<unsigned>(m_names.size()))]; }
    I18NString text(const std::vector<I18NString>& pieces)
    {
        I18NString all;
        for (unsigned i = below(6); i > 0; --i) {
            all += pieces[below(static_cast<unsigned>(pieces.size()))];
        }
        return all;
    }

    static constexpr unsigned kSeed = 20240229;

    std::mt19937 m_random{kSeed};
    std::vector<I18NString> m_names;
    std::vector<I18NString> m_plain;
    const std::vector<I18NString> m_any = {
        u"",       u"<",          u">",       u"&",
        u"'",      u"\"",         u"plain ",  u"\u00e9",
        u"\u0416", u"\U0001F600", u"\u00ff ", u"a rather longer piece of text, beyond every short string "};
};

TEST(DomWriter, MakesTheCallsOfTheRecursiveDescriptionOnAnyTree)
{
    RandomTrees trees({u"n", u"el", u"\u0416", u"p:\u00e9"},
                      {u"", u"<&>", u"plain ", u"\u0416", u"\U0001F600'\""});
    for (int tree = 0; tree < 500; ++tree) {
        const QRMIDOM_Document document = trees.next();
        Reference reference(0x10FFFF, utf8Of);
        reference.write(document);
        ASSERT_EQ(callsFor(document), reference.calls) << "tree " << tree;
        ASSERT_EQ(callsFor(document, "UTF-8"), reference.calls) << "tree " << tree;
    }
}

TEST(DomWriter, MakesTheCallsOfTheRecursiveDescriptionInANarrowEncoding)
{
    const std::pair<const char*, char32_t> encodings[] = {{"ISO-8859-1", 0xFF}, {"US-ASCII", 0x7F}};
    for (const auto& [encoding, highest] : encodings) {
        RandomTrees trees({u"n", u"el", u"longer-name"}, {u"", u"<&>", u"plain ", u"'\""});
        for (int tree = 0; tree < 250; ++tree) {
            const QRMIDOM_Document document = trees.next();
            Reference reference(highest, byteOf);
            reference.header = std::string("<?xml version=\"1.0\" encoding=\"") + encoding + "\"?>\n";
            reference.write(document);
            ASSERT_EQ(callsFor(document, encoding), reference.calls) << encoding << ", tree " << tree;
        }
    }
}

} // namespace
