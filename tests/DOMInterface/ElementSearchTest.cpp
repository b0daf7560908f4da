#include <functional>

#include "tests/support/FailingAllocator.h"
#include "tests/support/RandomTrees.h"
#include "tests/support/TestDocument.h"

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

I18NString idOf(const QRMIDOM_Element& element)
{
    return element.isNull() ? I18NString("(null)") : element.getAttribute("id");
}

/// The ids of elements, with blanks between them.
std::string idsOf(const std::vector<QRMIDOM_Node>& nodes)
{
    std::string ids;
    for (const QRMIDOM_Node& node : nodes) {
        ids += (ids.empty() ? "" : " ") + idOf(node).toUtf8();
    }
    return ids;
}

TEST(FindFirstElement, NeverFindsTheStartItself)
{
    const QRMIDOM_Document nested = documentOf("<root id='1'><root id='2'/></root>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(nested.getDocumentElement(), "root")), "2");
    const QRMIDOM_Document single = documentOf("<root/>");
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(single.getDocumentElement(), "root").isNull());
}

TEST(FindFirstElement, FindsTheDocumentElementFromTheDocument)
{
    const QRMIDOM_Document document = documentOf("<!--c--><?p?><root id='1'/><!--c-->");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(document, "root")), "1");
}

TEST(FindFirstElement, GoesInDocumentOrder)
{
    const QRMIDOM_Document document =
        documentOf("<r><x><y><a id='deep'/></y></x><a id='near'/><x><a id='late'/></x></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(document, "a")), "deep");
}

TEST(FindFirstElement, ComparesTheQualifiedNameExactly)
{
    const QRMIDOM_Document document =
        documentOf("<r xmlns:x='u'><x:a id='1'/><A id='2'/><aa id='3'/><a id='4'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(document, "a")), "4");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(document, "x:a")), "1");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(document, "A")), "2");
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(document, "").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(document, "*").isNull());
}

TEST(FindFirstElement, DoesNotLeaveTheSubtree)
{
    const QRMIDOM_Document document = documentOf("<r><x><y/></x><a/></r>");
    const QRMIDOM_Node x = document.getDocumentElement().getFirstChild();
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(x, "a").isNull());
    EXPECT_FALSE(QRMIDOM_Helper::findFirstElement(x, "y").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(x.getFirstChild(), "a").isNull());
}

TEST(FindFirstElement, GoesOnBehindAnEntityReferenceAndNotIntoIt)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ENTITY e 'text<i/>'>]><a>x&e;<d id='1'/></a>");
    const QRMIDOM_Element root = document.getDocumentElement();
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElement(root, "d")), "1");
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(root, "i").isNull());
    const QRMIDOM_Node reference = root.getFirstChild().getNextSibling();
    ASSERT_EQ(reference.getNodeType(), 5);
    ASSERT_TRUE(reference.hasChildNodes());
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(reference, "i").isNull());
}

TEST(FindFirstElement, SharesTheDocument)
{
    QRMIDOM_Element found;
    {
        const QRMIDOM_Document document = documentOf("<r><a>kept</a></r>");
        found = QRMIDOM_Helper::findFirstElement(document, "a");
        EXPECT_EQ(sharesOf(document), 2u);
        EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(document, "none").isNull());
        EXPECT_EQ(sharesOf(document), 2u);
    }
    EXPECT_EQ(QRMIDOM_Helper::getElementText(found), "kept");
    EXPECT_EQ(sharesOf(found), 1u);
}

TEST(FindFirstElement, LeavesNothingBehindInTheDocument)
{
    const QRMIDOM_Document document = documentOf("<r><x><y/></x><a/></r>");
    QRMIDOM_Helper::findFirstElement(document, "a");
    failing_allocator::countAllocations();
    for (int i = 0; i < 100000; ++i) {
        QRMIDOM_Helper::findFirstElement(document, "a");
        QRMIDOM_Helper::findFirstElement(document, "none");
    }
    EXPECT_EQ(failing_allocator::countAllocations(), 0);
}

TEST(FindFirstElement, StartsAtNodesOfEveryType)
{
    QRMIDOM_Document document = documentOf("<!DOCTYPE r [<!ENTITY e '<i/>'><!NOTATION n SYSTEM 's'>]>"
                                           "<r at='v'>t<![CDATA[c]]><!--k--><?p d?>&e;<a/></r>");
    const QRMIDOM_Element root = document.getDocumentElement();
    const QRMIDOM_DocumentType doctype = document.getDoctype();
    std::vector<QRMIDOM_Node> nodes = {
        doctype, doctype.getNotations().item(0), root.getAttributeNode("at"),
        QRMIDOM_DOMImplementation::getInstance().createDocumentType("d", "", "")};
    const QRMIDOM_Node loose = nodes.back();
    for (QRMIDOM_Node child = root.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        nodes.push_back(child);
    }
    for (const QRMIDOM_Node& node : nodes) {
        EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(node, "a").isNull()) << node.getNodeType();
        EXPECT_TRUE(QRMIDOM_Helper::findFirstElement(node, "i").isNull()) << node.getNodeType();
        EXPECT_TRUE(QRMIDOM_Helper::findChildElement(node, "a").isNull()) << node.getNodeType();
        EXPECT_TRUE(QRMIDOM_Helper::findChildElementWithAttribute(node, "a", "x", "").isNull());
    }
    loose.getDOM_NodeImpl()->release();
    QRMIDOM_DocumentFragment fragment = document.createDocumentFragment();
    fragment.appendChild(document.createElement("a"));
    EXPECT_EQ(QRMIDOM_Helper::findFirstElement(fragment, "a"), fragment.getFirstChild());
    EXPECT_EQ(QRMIDOM_Helper::findFirstElement(document, "a"), root.getLastChild());
}

TEST(FindElementWithAttribute, TakesTheFirstOfTheTagNameWithTheValue)
{
    const QRMIDOM_Document document = documentOf(
        "<r><other k='2' id='0'/><item k='1' id='1'/><x><item k='2' id='2'/></x><item k='2' id='3'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "k", "2")), "2");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "k", "3")), "(null)");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "K", "2")), "(null)");
}

TEST(FindElementWithAttribute, TakesAnAbsentAttributeForAnEmptyOne)
{
    const QRMIDOM_Document document =
        documentOf("<root><item id='1' k='v'/><item id='2'/><item id='3' k=''/></root>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "k", "")), "2");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "", "")), "1");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "item", "", "v")), "(null)");
}

TEST(FindElementWithAttribute, SeesDefaultsOfTheDocumentType)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE r [<!ATTLIST a k CDATA 'd'>]><r><a id='1' k='x'/><a id='2'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findElementWithAttribute(document, "a", "k", "d")), "2");
}

TEST(FindFirstElementNS, TakesLocalNameAndNamespace)
{
    const QRMIDOM_Document document =
        documentOf("<r><a id='1'/><p:a xmlns:p='u' id='2'/><a xmlns='u' id='3'/>"
                   "<p:b xmlns:p='u' id='4'/><b id='5'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "u", "a")), "2");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "", "a")), "1");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "", "b")), "5");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "U", "a")), "(null)");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "u", "p:a")), "(null)");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementNS(document, "*", "a")), "(null)");
}

TEST(FindFirstElementWithName, TakesTheLocalNameInAnyNamespace)
{
    const QRMIDOM_Document document = documentOf("<r><p:a xmlns:p='u' id='1'/><a id='2'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementWithName(document, "a")), "1");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findFirstElementWithName(document, "p:a")), "(null)");
}

TEST(FindFirstElementWithName, DoesNotKnowElementsMadeWithoutNamespaces)
{
    QRMIDOM_Document document = documentOf("<r/>");
    QRMIDOM_Element root = document.getDocumentElement();
    QRMIDOM_Element old = document.createElement("a");
    root.appendChild(old);
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElementWithName(root, "a").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findFirstElementNS(root, "", "a").isNull());
    EXPECT_EQ(QRMIDOM_Helper::findFirstElementWithName(root, ""), old) << "no local name equals an empty one";
    EXPECT_EQ(QRMIDOM_Helper::findFirstElementNS(root, "", ""), old);
    EXPECT_EQ(QRMIDOM_Helper::findFirstElement(root, "a"), old);
}

TEST(FindChildElementWithText, SearchesAllLevels)
{
    const QRMIDOM_Document document = documentOf("<a><b><c/></b></a>");
    const QRMIDOM_Element a = document.getDocumentElement();
    EXPECT_EQ(QRMIDOM_Helper::findChildElementWithText(a, "c", ""), a.getFirstChild().getFirstChild());
    EXPECT_TRUE(QRMIDOM_Helper::findChildElement(a, "c").isNull());
}

TEST(FindChildElementWithText, ComparesAllOfTheOwnText)
{
    const QRMIDOM_Document document =
        documentOf("<r><n id='1'>xy</n><n id='2'>x<i/></n><n id='3'>x<!--c-->y<i>z</i></n>"
                   "<n id='4'>x<![CDATA[y]]></n><n id='5'>xyz</n><n id='6'><i>q</i></n><m id='7'>q</m></r>");
    const auto find = [&](const I18NString& text) {
        return idOf(QRMIDOM_Helper::findChildElementWithText(document, "n", text));
    };
    EXPECT_EQ(find("xy"), "1");
    EXPECT_EQ(find("x"), "2");
    EXPECT_EQ(find("xyz"), "5");
    EXPECT_EQ(find(""), "6");
    EXPECT_EQ(find("q"), "(null)");
    EXPECT_EQ(find("y"), "(null)");
    EXPECT_EQ(find("xyzz"), "(null)");
    EXPECT_EQ(find(I18NString(u"xy\0", 6, nullptr, nullptr)), "1") << "a zero at the end is the terminator";
    EXPECT_EQ(find(I18NString(u"xy\0z", 8, nullptr, nullptr)), "(null)");
}

TEST(FindChildElementWithText, PutsThePiecesTogether)
{
    QRMIDOM_Document document = documentOf("<r><n/></r>");
    QRMIDOM_Node n = document.getDocumentElement().getFirstChild();
    for (const char* const piece : {"one ", "", "two ", "three"}) {
        n.appendChild(document.createTextNode(piece));
        n.appendChild(document.createComment("between"));
    }
    EXPECT_EQ(QRMIDOM_Helper::findChildElementWithText(document, "n", "one two three"), n);
    EXPECT_TRUE(QRMIDOM_Helper::findChildElementWithText(document, "n", "one two thre").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findChildElementWithText(document, "n", "one two threee").isNull());
    EXPECT_TRUE(QRMIDOM_Helper::findChildElementWithText(document, "n", "two three").isNull());
}

TEST(FindChildElementsWithAttribute, AppendsEveryMatchOnAllLevels)
{
    const QRMIDOM_Document document =
        documentOf("<r id='0'><n k='v' id='1'><n k='v' id='2'/></n><m k='v' id='3'/><n id='4'/>"
                   "<x><n k='v' id='5'/></x></r>");
    std::vector<QRMIDOM_Node> out = {document.getDocumentElement(), QRMIDOM_Node()};
    QRMIDOM_Helper::findChildElementsWithAttribute(document, "n", "k", "v", out);
    ASSERT_EQ(out.size(), 5u);
    EXPECT_EQ(out[0], document.getDocumentElement());
    EXPECT_TRUE(out[1].isNull());
    EXPECT_EQ(idsOf({out[2], out[3], out[4]}), "1 2 5");
    EXPECT_EQ(sharesOf(document), 1u + 4u);
    QRMIDOM_Helper::findChildElementsWithAttribute(document, "n", "k", "none", out);
    EXPECT_EQ(out.size(), 5u);
    out.clear();
    QRMIDOM_Helper::findChildElementsWithAttribute(document, "n", "k", "", out);
    EXPECT_EQ(idsOf(out), "4");
}

TEST(FindChildElement, LooksAtChildrenOnly)
{
    const QRMIDOM_Document document =
        documentOf("<r>text<!--c--><x id='1'><a id='2'/></x><a id='3'/><a id='4'/></r>");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findChildElement(document.getDocumentElement(), "a")), "3");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findChildElement(document, "a")), "(null)");
    EXPECT_EQ(QRMIDOM_Helper::findChildElement(document, "r"), document.getDocumentElement());
    EXPECT_TRUE(QRMIDOM_Helper::findChildElement(QRMIDOM_Node(), "a").isNull());
}

TEST(FindChildElement, TakesNoShareOfTheDocument)
{
    const QRMIDOM_Document document = documentOf("<r><a><b/></a></r>");
    const QRMIDOM_Element found = QRMIDOM_Helper::findChildElement(document.getDocumentElement(), "a");
    EXPECT_EQ(found.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(found.getFirstChild().getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(FindChildElementWithAttribute, LooksAtChildrenOnly)
{
    const QRMIDOM_Document document =
        documentOf("<r><x><a k='v' id='1'/></x>t<a id='2'/><b k='v'/><a k='v' id='3'/></r>");
    const QRMIDOM_Element root = document.getDocumentElement();
    const QRMIDOM_Element found = QRMIDOM_Helper::findChildElementWithAttribute(root, "a", "k", "v");
    EXPECT_EQ(idOf(found), "3");
    EXPECT_EQ(found.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    EXPECT_EQ(idOf(QRMIDOM_Helper::findChildElementWithAttribute(root, "a", "k", "")), "2");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findChildElementWithAttribute(root, "a", "k", "w")), "(null)");
    EXPECT_EQ(idOf(QRMIDOM_Helper::findChildElementWithAttribute(root.getFirstChild().getFirstChild(), "a",
                                                                 "k", "v")),
              "(null)");
}

TEST(ElementText, IsThatOfTheOwnTextNodes)
{
    const QRMIDOM_Document document = documentOf("<p>x<![CDATA[y]]>z<b>w</b></p>");
    EXPECT_EQ(QRMIDOM_Helper::getElementText(document.getDocumentElement()), "xz");
    const QRMIDOM_Document referring = documentOf("<!DOCTYPE p [<!ENTITY e 'no'>]><p>a&e;b&amp;&#x63;</p>");
    EXPECT_EQ(QRMIDOM_Helper::getElementText(referring.getDocumentElement()), "ab&c");
    EXPECT_EQ(QRMIDOM_Helper::getElementText(documentOf("<p/>").getDocumentElement()), "");
    EXPECT_EQ(QRMIDOM_Helper::getElementText(QRMIDOM_Element()), "");
}

TEST(ElementText, IsAppendedToAString)
{
    const QRMIDOM_Document document = documentOf("<p>x<b/>z</p>");
    I18NString text("before ");
    QRMIDOM_Helper::getElementText(document.getDocumentElement(), text);
    EXPECT_EQ(text, "before xz");
    QRMIDOM_Helper::getElementText(QRMIDOM_Element(), text);
    EXPECT_EQ(text, "before xz");
}

TEST(Searches, FailTheAssertionOnTheNullHandle)
{
    std::vector<QRMIDOM_Node> out;
    const std::function<void()> calls[] = {
        [] { QRMIDOM_Helper::findFirstElement(QRMIDOM_Node(), "a"); },
        [] { QRMIDOM_Helper::findElementWithAttribute(QRMIDOM_Node(), "a", "k", "v"); },
        [] { QRMIDOM_Helper::findFirstElementNS(QRMIDOM_Node(), "u", "a"); },
        [] { QRMIDOM_Helper::findFirstElementWithName(QRMIDOM_Node(), "a"); },
        [] { QRMIDOM_Helper::findChildElementWithText(QRMIDOM_Node(), "a", "t"); },
        [&out] { QRMIDOM_Helper::findChildElementsWithAttribute(QRMIDOM_Node(), "a", "k", "v", out); },
        [] { QRMIDOM_Helper::findChildElementWithAttribute(QRMIDOM_Node(), "a", "k", "v"); },
    };
    for (const auto& call : calls) {
        EXPECT_EQ(assertionOf(call), kNullHandle);
    }
    EXPECT_TRUE(out.empty());
}

// The same searches written down by recursion on raw nodes.

using Matches = std::function<bool(const DOMElement*)>;

void collectBelow(DOMNode* node, const Matches& matches, std::vector<DOMElement*>& found)
{
    if (node->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE) {
        return;
    }
    for (DOMNode* child = node->getFirstChild(); child != nullptr; child = child->getNextSibling()) {
        if (child->getNodeType() == DOMNode::ELEMENT_NODE && matches(static_cast<DOMElement*>(child))) {
            found.push_back(static_cast<DOMElement*>(child));
        }
        collectBelow(child, matches, found);
    }
}

std::u16string textOf(const XMLCh* text)
{
    return text == nullptr ? std::u16string() : std::u16string(text);
}

TEST(Searches, FindWhatARecursiveSearchFindsInAnyTree)
{
    RandomNamespaceTrees trees(20261121);
    int hits = 0;
    for (int tree = 0; tree < 3000; ++tree) {
        const QRMIDOM_Document document = trees.next();
        const QRMIDOM_Node start = trees.below(3) == 0 ? QRMIDOM_Node(document) : QRMIDOM_Node(trees.any());
        const auto all = [&](const Matches& matches) {
            std::vector<DOMElement*> found;
            collectBelow(start, matches, found);
            return found;
        };
        const auto expectFirst = [&](const QRMIDOM_Element& found, const Matches& matches) {
            const std::vector<DOMElement*> expected = all(matches);
            hits += expected.empty() ? 0 : 1;
            ASSERT_EQ(static_cast<DOMElement*>(found), expected.empty() ? nullptr : expected[0])
                << "tree " << tree;
        };
        const I18NString tag = trees.oneOf({u"a", u"b", u"p:a", u"q:c"});
        const I18NString local = trees.oneOf({u"a", u"b", u"c", u""});
        const I18NString uri = trees.oneOf({u"", u"urn:d", u"urn:p"});
        const I18NString name = trees.oneOf({u"i", u"d", u"p:i"});
        const I18NString value = trees.oneOf({u"1", u"2", u"", u"default"});
        const I18NString text = trees.oneOf({u"x", u"xy", u"", u"xyx"});

        const auto isTag = [&](const DOMElement* e) {
            return textOf(e->getTagName()) == tag.getExternalBuffer();
        };
        const auto isLocal = [&](const DOMElement* e) {
            return textOf(e->getLocalName()) == local.getExternalBuffer();
        };
        const auto hasValue = [&](const DOMElement* e) {
            return textOf(e->getAttribute(name.getExternalBuffer())) == value.getExternalBuffer();
        };
        const auto hasText = [&](const DOMElement* e) {
            std::u16string own;
            for (const DOMNode* child = e->getFirstChild(); child != nullptr;
                 child = child->getNextSibling()) {
                own += child->getNodeType() == DOMNode::TEXT_NODE ? textOf(child->getNodeValue()) : u"";
            }
            return own == text.getExternalBuffer();
        };
        expectFirst(QRMIDOM_Helper::findFirstElement(start, tag), isTag);
        expectFirst(QRMIDOM_Helper::findElementWithAttribute(start, tag, name, value),
                    [&](const DOMElement* e) { return isTag(e) && hasValue(e); });
        expectFirst(QRMIDOM_Helper::findFirstElementNS(start, uri, local), [&](const DOMElement* e) {
            return isLocal(e) && textOf(e->getNamespaceURI()) == uri.getExternalBuffer();
        });
        expectFirst(QRMIDOM_Helper::findFirstElementWithName(start, local), isLocal);
        expectFirst(QRMIDOM_Helper::findChildElementWithText(start, tag, text),
                    [&](const DOMElement* e) { return isTag(e) && hasText(e); });

        const auto isChild = [&](const DOMElement* e) {
            return e->getParentNode() == start.getDOM_NodeImpl();
        };
        expectFirst(QRMIDOM_Helper::findChildElement(start, tag),
                    [&](const DOMElement* e) { return isChild(e) && isTag(e); });
        expectFirst(QRMIDOM_Helper::findChildElementWithAttribute(start, tag, name, value),
                    [&](const DOMElement* e) { return isChild(e) && isTag(e) && hasValue(e); });

        std::vector<QRMIDOM_Node> out;
        QRMIDOM_Helper::findChildElementsWithAttribute(start, tag, name, value, out);
        const std::vector<DOMElement*> expected =
            all([&](const DOMElement* e) { return isTag(e) && hasValue(e); });
        ASSERT_EQ(out.size(), expected.size()) << "tree " << tree;
        for (std::size_t i = 0; i < out.size(); ++i) {
            ASSERT_EQ(out[i].getDOM_NodeImpl(), expected[i]) << "tree " << tree;
        }
    }
    EXPECT_GT(hits, 3000) << "the trees hold too little of what is searched for";
}

class CopiesIntoATree : public testing::Test
{
protected:
    QRMIDOM_Document document = documentOf("<r><a/><b/></r>");
    QRMIDOM_Element root = document.getDocumentElement();
    std::string tree() { return written(root); }
};

TEST_F(CopiesIntoATree, GoBeforeTheReferenceWhichComesFirst)
{
    const QRMIDOM_Document other = documentOf("<n x='1'>t<i/></n>");
    const QRMIDOM_Node copy =
        QRMIDOM_Helper::insertBefore(root, root.getLastChild(), other.getDocumentElement());
    EXPECT_EQ(tree(), "<r><a/><n x=\"1\">t<i/></n><b/></r>");
    EXPECT_EQ(copy, root.getFirstChild().getNextSibling());
    EXPECT_NE(copy, other.getDocumentElement());
    EXPECT_EQ(copy.getOwnerDocument(), document);
    EXPECT_EQ(copy.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    EXPECT_EQ(written(other.getDocumentElement()), "<n x=\"1\">t<i/></n>");
}

TEST_F(CopiesIntoATree, GoToTheEndWithoutAReference)
{
    QRMIDOM_Helper::insertBefore(root, QRMIDOM_Node(), documentOf("<n/>").getDocumentElement());
    EXPECT_EQ(tree(), "<r><a/><b/><n/></r>");
    const QRMIDOM_Node copy = QRMIDOM_Helper::appendChild(root, documentOf("<m/>").getDocumentElement());
    EXPECT_EQ(copy, root.getLastChild());
    EXPECT_EQ(tree(), "<r><a/><b/><n/><m/></r>");
}

TEST_F(CopiesIntoATree, AreMadeOfNodesOfTheSameDocumentToo)
{
    const QRMIDOM_Node a = root.getFirstChild();
    const QRMIDOM_Node copy = QRMIDOM_Helper::appendChild(root, a);
    EXPECT_NE(copy, a);
    EXPECT_EQ(tree(), "<r><a/><b/><a/></r>");
    QRMIDOM_Helper::insertBefore(root, a, root.getLastChild());
    EXPECT_EQ(tree(), "<r><a/><a/><b/><a/></r>");
    QRMIDOM_Helper::appendChild(a, root);
    EXPECT_EQ(tree(), "<r><a/><a><r><a/><a/><b/><a/></r></a><b/><a/></r>") << "a copy of itself fits in";
}

TEST_F(CopiesIntoATree, GoIntoADocument)
{
    QRMIDOM_Helper::appendChild(document, document.createComment("end"));
    EXPECT_EQ(document.getLastChild().getNodeValue(), "end");
    QRMIDOM_Helper::insertBefore(document, root, document.createComment("start"));
    EXPECT_EQ(document.getFirstChild().getNodeValue(), "start");
    QRMIDOM_Document empty = emptyDocument();
    const QRMIDOM_Node copy = QRMIDOM_Helper::appendChild(empty, root);
    EXPECT_EQ(copy, empty.getDocumentElement());
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::appendChild(empty, root); }), 3);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::insertBefore(empty, empty.getFirstChild(), root); }), 3);
    EXPECT_EQ(written(empty), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r><a/><b/></r>\n");
}

TEST_F(CopiesIntoATree, AreRefusedAsTheTreeRefusesThem)
{
    const QRMIDOM_Node text = document.createTextNode("t");
    const QRMIDOM_Document other = documentOf("<x><y/></x>");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::appendChild(text, root); }), 3);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::appendChild(root, document); }), 9);
    EXPECT_EQ(domCodeOf([&] {
                  QRMIDOM_Helper::insertBefore(root, other.getDocumentElement().getFirstChild(), text);
              }),
              8)
        << "the reference is no child";
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::appendChild(QRMIDOM_Node(), root); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::insertBefore(QRMIDOM_Node(), root, root); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::appendChild(root, QRMIDOM_Node()); }),
              "QRM_ASSERT(importedNode != NULL);");
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::insertBefore(root, QRMIDOM_Node(), QRMIDOM_Node()); }),
              "QRM_ASSERT(importedNode != NULL);");
    EXPECT_EQ(tree(), "<r><a/><b/></r>");
    EXPECT_EQ(sharesOf(document), 3u) << "the document, the root and the text";
}

TEST_F(CopiesIntoATree, DoNotGoIntoADocumentTypeWithoutADocument)
{
    const QRMIDOM_DocumentType loose =
        QRMIDOM_DOMImplementation::getInstance().createDocumentType("d", "", "");
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::appendChild(loose, root); }), 9);
    EXPECT_EQ(domCodeOf([&] { QRMIDOM_Helper::insertBefore(loose, root, root); }), 9);
    loose.getDOM_NodeImpl()->release();
}

} // namespace
