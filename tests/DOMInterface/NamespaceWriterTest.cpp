#include <functional>
#include <sstream>

#include "tests/support/RandomTrees.h"
#include "tests/support/RecordingWriter.h"
#include "tests/support/TemporaryFile.h"
#include "tests/support/TestDocument.h"

namespace {

using Calls = std::vector<std::string>;

constexpr const char* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string writtenNS(const QRMIDOM_Node& node, const char* encoding = "UTF-8")
{
    std::ostringstream stream;
    QRMIDOM_Helper::writeNS(node, stream, encoding);
    return stream.str();
}

Calls callsFor(const QRMIDOM_Node& node)
{
    RecordingWriter writer;
    QRMIDOM_Helper::writeNS(node, writer);
    return writer.calls;
}

/// A document and its element, which has the namespace and the qualified name.
struct Tree
{
    Tree(const char* uri, const char* name)
    {
        root = document.createElementNS(uri, name);
        document.appendChild(root);
    }
    QRMIDOM_Element add(QRMIDOM_Element parent, const char* uri, const char* name)
    {
        return parent.appendChild(document.createElementNS(uri, name));
    }
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element root;
};

std::string contentOf(const TemporaryFile& file)
{
    std::ifstream stream(file.name(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

constexpr const char* kXmlns = "http://www.w3.org/2000/xmlns/";

TEST(NamespaceWriter, DeclaresWhereTheNamespaceChanges)
{
    Tree tree("urn:a", "p:root");
    tree.add(tree.root, "urn:a", "p:item");
    tree.add(tree.root, "urn:b", "q:x");
    EXPECT_EQ(writtenNS(tree.document),
              std::string(kHeader)
                  + "<p:root xmlns:p=\"urn:a\"><p:item/><q:x xmlns:q=\"urn:b\"/></p:root>\n");
}

TEST(NamespaceWriter, WritesADeclarationCallByCall)
{
    Tree tree("urn:<a>", "p:root");
    tree.add(tree.root, "", "c");
    tree.root.setAttribute("n", "v");
    EXPECT_EQ(callsFor(tree.root),
              (Calls{"<", "p:root",    " xmlns:", "p",  "=\"", "urn:", "&lt;",   "a", "&gt;",
                     "",  "\"",        " ",       "n",  "=\"", "v",    "\"",     ">", "<",
                     "c", " xmlns=\"", "",        "\"", "/>",  "</",   "p:root", ">"}));
}

TEST(NamespaceWriter, GivesARootWithoutANamespaceAnEmptyDeclaration)
{
    EXPECT_EQ(writtenNS(documentOf("<a><b/></a>").getDocumentElement()), "<a xmlns=\"\"><b/></a>");
    EXPECT_EQ(writtenNS(documentOf("<a><b xmlns='urn:x'/></a>").getDocumentElement()),
              "<a xmlns=\"\"><b xmlns=\"urn:x\"/></a>");
}

TEST(NamespaceWriter, DeclaresForAnUnprefixedChildInAnotherNamespace)
{
    Tree tree("", "a");
    tree.add(tree.root, "urn:x", "b");
    EXPECT_EQ(writtenNS(tree.root), "<a xmlns=\"\"><b xmlns=\"urn:x\"/></a>");
    Tree other("urn:x", "a");
    other.add(other.root, "urn:x", "b");
    other.add(other.root, "", "c");
    EXPECT_EQ(writtenNS(other.root), "<a xmlns=\"urn:x\"><b/><c xmlns=\"\"/></a>");
}

TEST(NamespaceWriter, DeclaresAPrefixAgainForAnotherNamespace)
{
    Tree tree("urn:a", "p:a");
    QRMIDOM_Element b = tree.add(tree.root, "urn:b", "p:b");
    tree.add(b, "urn:b", "p:c");
    EXPECT_EQ(writtenNS(tree.root), "<p:a xmlns:p=\"urn:a\"><p:b xmlns:p=\"urn:b\"><p:c/></p:b></p:a>");
}

TEST(NamespaceWriter, DeclaresAnotherPrefixForTheSameNamespace)
{
    Tree tree("urn:a", "p:a");
    tree.add(tree.root, "urn:a", "q:b");
    tree.add(tree.root, "urn:a", "c");
    EXPECT_EQ(writtenNS(tree.root), "<p:a xmlns:p=\"urn:a\"><q:b xmlns:q=\"urn:a\"/><c/></p:a>")
        << "an unprefixed element relies on its parent's declaration, whatever that is";
}

TEST(NamespaceWriter, LosesThePrefixOfARootWithBothKindsOfDeclaration)
{
    Tree tree("urn:a", "p:a");
    tree.root.setAttributeNS(kXmlns, "xmlns", "urn:d");
    tree.root.setAttributeNS(kXmlns, "xmlns:p", "urn:a");
    EXPECT_EQ(writtenNS(tree.root), "<p:a xmlns=\"urn:d\"/>");
}

TEST(NamespaceWriter, WritesADeclarationThatIsThereOnce)
{
    const QRMIDOM_Document prefixed = documentOf("<p:a xmlns:p='urn:a' n='v'><p:b xmlns:p='urn:a'/></p:a>");
    EXPECT_EQ(writtenNS(prefixed.getDocumentElement()), "<p:a xmlns:p=\"urn:a\" n=\"v\"><p:b/></p:a>");
    const QRMIDOM_Document plain = documentOf("<a xmlns='urn:a' n='v'><b/></a>");
    EXPECT_EQ(writtenNS(plain.getDocumentElement()), "<a n=\"v\" xmlns=\"urn:a\"><b/></a>");
}

TEST(NamespaceWriter, KeepsDeclarationsOfOtherPrefixes)
{
    const QRMIDOM_Document document =
        documentOf("<p:a xmlns:p='urn:a' xmlns:pp='urn:b' xmlns:q='urn:c' pp:n='v'/>");
    EXPECT_EQ(writtenNS(document.getDocumentElement()),
              "<p:a xmlns:p=\"urn:a\" pp:n=\"v\" xmlns:pp=\"urn:b\" xmlns:q=\"urn:c\"/>");
}

TEST(NamespaceWriter, LeavesOutWhateverLooksLikeTheOwnDeclaration)
{
    Tree tree("urn:a", "p:a");
    for (const char* const name :
         {"xmlns:p", "xmlnspX", "xmlnsXp", "xmlnsXX", "xmlnsp", "xmlns:pp", "ymlns:p"}) {
        tree.root.setAttribute(name, "v");
    }
    EXPECT_EQ(writtenNS(tree.root),
              "<p:a xmlns:p=\"urn:a\" xmlns:pp=\"v\" xmlnsXX=\"v\" xmlnsp=\"v\" ymlns:p=\"v\"/>");
}

TEST(NamespaceWriter, DeclaresNoPrefixThatOnlyAttributesUse)
{
    Tree tree("", "a");
    tree.root.setAttributeNS("urn:schema", "xsi:type", "t");
    EXPECT_EQ(writtenNS(tree.root), "<a xmlns=\"\" xsi:type=\"t\"/>");
}

TEST(NamespaceWriter, DoesNotCountADefaultOfTheDocumentType)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ATTLIST a xmlns CDATA 'urn:d' d CDATA 'x'>]><a s='1'/>");
    EXPECT_EQ(writtenNS(document.getDocumentElement()), "<a xmlns=\"urn:d\" s=\"1\"/>");
}

TEST(NamespaceWriter, AsksForTheParentOfTheFirstElement)
{
    const QRMIDOM_Document document = documentOf("<a xmlns='u' xmlns:p='v'><b/><p:c/><d xmlns=''/></a>");
    QRMIDOM_Node child = document.getDocumentElement().getFirstChild();
    EXPECT_EQ(writtenNS(child), "<b/>") << "its parent would have declared it";
    child = child.getNextSibling();
    EXPECT_EQ(writtenNS(child), "<p:c xmlns:p=\"v\"/>");
    EXPECT_EQ(writtenNS(child.getNextSibling()), "<d xmlns=\"\"/>");
    EXPECT_EQ(writtenNS(child.cloneNode(1)), "<p:c xmlns:p=\"v\"/>");
    QRMIDOM_Document other = document;
    QRMIDOM_DocumentFragment fragment = other.createDocumentFragment();
    fragment.appendChild(other.createElement("loose"));
    EXPECT_EQ(writtenNS(fragment.getFirstChild()), "<loose/>") << "a fragment has no namespace either";
}

TEST(NamespaceWriter, WritesOtherNodesAsThePlainWriter)
{
    QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ENTITY e 'x'><!ENTITY u SYSTEM 's' NDATA n><!NOTATION n SYSTEM 's'>]>"
                   "<?p d?><a n='v'>t&lt;<![CDATA[<&>]]><!--c-->&e;</a><!--end-->");
    const QRMIDOM_Element root = document.getDocumentElement();
    const QRMIDOM_DocumentType doctype = document.getDoctype();
    std::vector<QRMIDOM_Node> nodes = {doctype,
                                       doctype.getEntities().getNamedItem("u"),
                                       doctype.getNotations().item(0),
                                       root.getAttributeNode("n"),
                                       document.createDocumentFragment(),
                                       document.getLastChild()};
    for (QRMIDOM_Node child = root.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        nodes.push_back(child);
    }
    for (const QRMIDOM_Node& node : nodes) {
        EXPECT_EQ(writtenNS(node), written(node)) << node.getNodeType();
    }
    std::string expected = written(document);
    expected.replace(expected.find("<a n"), 2, "<a xmlns=\"\"");
    EXPECT_EQ(writtenNS(document), expected);
}

TEST(NamespaceWriter, UsesReferencesInTheUriAndNoneInThePrefix)
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element root = document.createElementNS(u"urn:\u0416", "a");
    EXPECT_EQ(writtenNS(root, "US-ASCII"), "<a xmlns=\"urn:&#1046;\"/>");
    std::ostringstream stream;
    EXPECT_THROW(QRMIDOM_Helper::writeNS(document.createElementNS("u", u"\u0416:a"), stream, "US-ASCII"),
                 I18NConversionError);
    EXPECT_EQ(stream.str(), "<");
}

TEST(NamespaceWriter, WritesToEveryKindOfSink)
{
    Tree tree("urn:a", "p:a");
    const std::string expected =
        std::string("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n") + "<p:a xmlns:p=\"urn:a\"/>\n";
    EXPECT_EQ(writtenNS(tree.document, "ISO-8859-1"), expected);
    const TemporaryFile file("");
    QRMIDOM_Helper::writeNS(tree.document, file.name(), "ISO-8859-1");
    EXPECT_EQ(contentOf(file), expected);
    std::FILE* const stdio = std::fopen(file.name(), "w");
    ASSERT_NE(stdio, nullptr);
    QRMIDOM_Helper::writeNS(tree.document, stdio, "ISO-8859-1");
    EXPECT_EQ(std::fclose(stdio), 0);
    EXPECT_EQ(contentOf(file), expected);
}

TEST(NamespaceWriter, FailsAnAssertionOnTheNullHandleAndANullFile)
{
    EXPECT_EQ(assertionOf([] { writtenNS(QRMIDOM_Node()); }), kNullHandle);
    RecordingWriter writer;
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::writeNS(QRMIDOM_Node(), writer); }), kNullHandle);
    EXPECT_EQ(writer.calls, Calls{});
    EXPECT_EQ(assertionOf([] {
                  QRMIDOM_Helper::writeNS(emptyDocument(), static_cast<std::FILE*>(nullptr), "UTF-8");
              }),
              "QRM_ASSERT(file != NULL);");
}

TEST(NamespaceWriter, NamesItselfInTheBackTraceOnly)
{
    const TemporaryFile file("");
    try {
        QRMIDOM_Helper::writeNS(QRMIDOM_Node(), file.name(), "UTF-8");
        FAIL() << "it was written";
    } catch (const QRMAssertError& error) {
        ASSERT_EQ(error.getBackTrace().size(), 2u);
        EXPECT_EQ(error.getBackTrace()[1].fileName, "QRMIDOM_Helper.cpp");
        EXPECT_EQ(error.getBackTrace()[1].context, "QRMIDOM_Helper::writeNS");
        EXPECT_EQ(error.getBackTrace()[1].macroName, "QRM_RETHROW");
    }
    Tree tree("u", "a");
    try {
        QRMIDOM_Helper::writeNS(tree.root, "/no/such/folder/f.xml", "UTF-8");
        FAIL() << "it was written";
    } catch (const QRMSystemError& error) {
        EXPECT_EQ(error.getCode(), 0);
        EXPECT_STREQ(error.getText(), "System error occured while trying to write (QRMIDOM_Helper::write): "
                                      "/no/such/folder/f.xml");
        ASSERT_EQ(error.getBackTrace().size(), 1u);
        EXPECT_EQ(error.getBackTrace()[0].context, "QRMIDOM_Helper::writeNS");
    }
}

class ThrowingWriter : public DomWriter
{
public:
    explicit ThrowingWriter(int after) : m_left(after) {}
    void write(const char*, int) override
    {
        if (m_left-- == 0) {
            throw 7;
        }
    }
    void endline() override {}

private:
    int m_left;
};

TEST(NamespaceWriter, LetsErrorsOfTheSinkThrough)
{
    Tree tree("urn:a", "p:a");
    const auto calls = static_cast<int>(callsFor(tree.root).size());
    for (int after = 0; after < calls; ++after) {
        ThrowingWriter writer(after);
        EXPECT_THROW(QRMIDOM_Helper::writeNS(tree.root, writer), int) << after;
    }
    EXPECT_EQ(sharesOf(tree.document), 2u);
}

/// Where the elements of two trees differ in namespace or local name; empty where they do not. Elements made without
/// namespaces have no local name but a tag name.
std::string firstDifferentName(const QRMIDOM_Node& a, const QRMIDOM_Node& b)
{
    const auto localOf = [](const QRMIDOM_Node& node) {
        return node.getLocalName().empty() ? node.getNodeName() : node.getLocalName();
    };
    if (a.getNodeType() == 1 && (localOf(a) != localOf(b) || a.getNamespaceURI() != b.getNamespaceURI())) {
        return a.getNodeName().toUtf8() + " in " + a.getNamespaceURI().toUtf8() + " became "
               + b.getNodeName().toUtf8() + " in " + b.getNamespaceURI().toUtf8();
    }
    const auto nextElement = [](QRMIDOM_Node node) {
        while (!node.isNull() && node.getNodeType() != 1) {
            node = node.getNextSibling();
        }
        return node;
    };
    QRMIDOM_Node child = nextElement(a.getFirstChild());
    QRMIDOM_Node other = nextElement(b.getFirstChild());
    while (!child.isNull() && !other.isNull()) {
        const std::string difference = firstDifferentName(child, other);
        if (!difference.empty()) {
            return difference;
        }
        child = nextElement(child.getNextSibling());
        other = nextElement(other.getNextSibling());
    }
    return child.isNull() && other.isNull() ? "" : "different children of " + a.getNodeName().toUtf8();
}

TEST(NamespaceWriter, WritesTreesThatParseBackWithTheSameNamespaces)
{
    RandomNamespaceTrees trees(99);
    for (int tree = 0; tree < 3000; ++tree) {
        const QRMIDOM_Document document = trees.next();
        const std::string text =
            std::string("<!DOCTYPE r [<!ENTITY e 'x'>]>") + writtenNS(document.getDocumentElement());
        const QRMIDOM_Document again = documentOf(text);
        ASSERT_EQ(firstDifferentName(document.getDocumentElement(), again.getDocumentElement()), "") << text;
    }
}

/// The rule in its own words, by recursion.
class Reference
{
public:
    std::string text;

    void write(const QRMIDOM_Element& element)
    {
        const QRMIDOM_Node parent = element.getParentNode();
        const I18NString prefix = element.getPrefix();
        text += "<" + element.getNodeName().toUtf8();
        const bool sameNamespace = !parent.isNull() && element.getNamespaceURI() == parent.getNamespaceURI();
        const bool samePrefix = !parent.isNull() && prefix == parent.getPrefix();
        if (!(sameNamespace && (prefix.empty() || samePrefix) && parent.getNodeType() != 9)
            && element.getAttribute("xmlns").empty()) {
            text += prefix.empty() ? " xmlns" : " xmlns:" + prefix.toUtf8();
            text += "=\"" + element.getNamespaceURI().toUtf8() + "\"";
        }
        const QRMIDOM_NamedNodeMap attributes = element.getAttributes();
        for (unsigned long i = 0; i < attributes.getLength(); ++i) {
            const QRMIDOM_Attr attribute = attributes.item(i);
            const I18NString name = attribute.getName();
            const bool isOwn = !prefix.empty() && name.startsWith("xmlns") && name.indexOf(prefix, 5) >= 5
                               && name.length() == prefix.length() + 6;
            if (attribute.getSpecified() && !isOwn) {
                text += " " + name.toUtf8() + "=\"" + attribute.getValue().toUtf8() + "\"";
            }
        }
        text += element.hasChildNodes() ? ">" : "/>";
        for (QRMIDOM_Node child = element.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
            if (child.getNodeType() == 1) {
                write(child);
            } else {
                text += written(child);
            }
        }
        text += element.hasChildNodes() ? "</" + element.getNodeName().toUtf8() + ">" : "";
    }
};

TEST(NamespaceWriter, WritesWhatTheRuleSaysForAnyTree)
{
    RandomNamespaceTrees trees(100);
    for (int tree = 0; tree < 1000; ++tree) {
        const QRMIDOM_Document document = trees.next();
        QRMIDOM_Element some = trees.any();
        if (trees.below(2) == 0) {
            some.setAttributeNS(kXmlns, trees.below(2) == 0 ? "xmlns:p" : "xmlns", "urn:other");
        }
        const QRMIDOM_Element start = trees.below(2) == 0 ? document.getDocumentElement() : trees.any();
        Reference reference;
        reference.write(start);
        ASSERT_EQ(writtenNS(start), reference.text) << "tree " << tree;
    }
}

} // namespace
