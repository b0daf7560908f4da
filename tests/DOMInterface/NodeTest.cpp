#include "tests/support/TestDocument.h"

namespace {

TEST(Node, IsNullAtFirst)
{
    const QRMIDOM_Node node;
    EXPECT_TRUE(node.isNull());
    EXPECT_TRUE(node == NULL);
    EXPECT_FALSE(node != NULL);
    EXPECT_TRUE(node == nullptr);
    EXPECT_EQ(node.getDOM_NodeImpl(), nullptr);
    EXPECT_EQ(node.getRefCountedNodeImpl(), nullptr);
}

TEST(Node, ComparesByIdentityOfTheNode)
{
    const QRMIDOM_Document document = documentOf("<a><b/><b/></a>");
    const QRMIDOM_Node first = document.getDocumentElement().getFirstChild();
    const QRMIDOM_Node second = first.getNextSibling();
    QRMIDOM_Node bare;
    bare.setDOM_NodeImpl(first.getDOM_NodeImpl());
    EXPECT_TRUE(first == bare) << "holders do not count";
    EXPECT_FALSE(first != bare);
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(first != second);
}

TEST(Node, RefusesPointersOtherThanNull)
{
    QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Node node = document;
    EXPECT_EQ(assertionOf([&] { (void)(node == &node); }), kNotNull);
    EXPECT_EQ(assertionOf([&] { (void)(node != &node); }), kNotNull);
    EXPECT_EQ(assertionOf([&] { node = &node; }), kNotNull);
    EXPECT_FALSE(node.isNull());
    EXPECT_EQ(sharesOf(node), 2u);
}

TEST(Node, BecomesNullByAssignmentOfNull)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Node node = document;
    node = NULL;
    EXPECT_TRUE(node.isNull());
    EXPECT_EQ(node.getRefCountedNodeImpl(), nullptr);
    EXPECT_EQ(sharesOf(document), 1u);
}

TEST(Node, GivesItselfByItsArrow)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Node node = document.getDocumentElement();
    EXPECT_EQ(node.operator->(), &node);
    EXPECT_EQ(node->getNodeName(), I18NString("a"));
}

TEST(Node, TellsNameValueAndType)
{
    const QRMIDOM_Document document = documentOf(
        "<!DOCTYPE a [<!ENTITY e 'x'>]><a n='v'>text<![CDATA[data]]><!--comment--><?target data?>&e;</a>");
    const QRMIDOM_Node root = document.getDocumentElement();
    struct Expected
    {
        QRMIDOM_Node node;
        unsigned short type;
        const char* name;
        const char* value;
    };
    const QRMIDOM_Node text = root.getFirstChild();
    const QRMIDOM_Node cdata = text.getNextSibling();
    const QRMIDOM_Node comment = cdata.getNextSibling();
    const QRMIDOM_Node instruction = comment.getNextSibling();
    const QRMIDOM_Node reference = instruction.getNextSibling();
    const Expected expected[] = {{root, 1, "a", ""},
                                 {root.getAttributes().item(0), 2, "n", "v"},
                                 {text, 3, "#text", "text"},
                                 {cdata, 4, "#cdata-section", "data"},
                                 {reference, 5, "e", ""},
                                 {document.getDoctype().getEntities().item(0), 6, "e", ""},
                                 {instruction, 7, "target", "data"},
                                 {comment, 8, "#comment", "comment"},
                                 {document, 9, "#document", ""},
                                 {document.getDoctype(), 10, "a", ""}};
    for (const Expected& row : expected) {
        EXPECT_EQ(row.node.getNodeType(), row.type);
        EXPECT_EQ(row.node.getNodeName(), I18NString(row.name));
        EXPECT_EQ(row.node.getNodeValue(), I18NString(row.value));
        I18NString filled("before");
        row.node.getNodeName(filled);
        EXPECT_EQ(filled, I18NString(row.name));
        filled = "before";
        row.node.getNodeValue(filled);
        EXPECT_EQ(filled, I18NString(row.value));
        EXPECT_TRUE(row.node.matchNodeName(row.name));
        EXPECT_FALSE(row.node.matchNodeName("other"));
    }
}

TEST(Node, TellsNamespacePrefixAndLocalName)
{
    const QRMIDOM_Document document = documentOf("<p:a xmlns:p='urn:p'><b/></p:a>");
    const QRMIDOM_Node root = document.getDocumentElement();
    EXPECT_EQ(root.getNamespaceURI(), I18NString("urn:p"));
    EXPECT_EQ(root.getPrefix(), I18NString("p"));
    EXPECT_EQ(root.getLocalName(), I18NString("a"));
    EXPECT_TRUE(root.matchNamespaceURI("urn:p"));
    EXPECT_TRUE(root.matchLocalName("a"));
    EXPECT_FALSE(root.matchNamespaceURI(""));
    EXPECT_FALSE(root.matchLocalName("p:a"));

    const QRMIDOM_Node child = root.getFirstChild();
    EXPECT_EQ(child.getNamespaceURI(), I18NString(""));
    EXPECT_EQ(child.getPrefix(), I18NString(""));
    EXPECT_EQ(child.getLocalName(), I18NString("b"));
    EXPECT_TRUE(child.matchNamespaceURI(""));

    I18NString uri("before");
    I18NString prefix("before");
    I18NString local("before");
    root.getNamespaceURI(uri);
    root.getPrefix(prefix);
    root.getLocalName(local);
    EXPECT_EQ(uri + " " + prefix + " " + local, I18NString("urn:p p a"));
    child.getPrefix(prefix);
    EXPECT_TRUE(prefix.empty());

    const QRMIDOM_Element plain = emptyDocument().createElement("x");
    EXPECT_EQ(plain.getLocalName(), I18NString(""));
    EXPECT_TRUE(plain.matchLocalName(""));
}

TEST(Node, NavigatesAndGivesNullHandlesWhereThereIsNothing)
{
    const QRMIDOM_Document document = documentOf("<a><b/><c/></a>");
    const QRMIDOM_Node root = document.getDocumentElement();
    const QRMIDOM_Node b = root.getFirstChild();
    const QRMIDOM_Node c = root.getLastChild();
    EXPECT_EQ(b.getNodeName(), I18NString("b"));
    EXPECT_EQ(c.getNodeName(), I18NString("c"));
    EXPECT_TRUE(b.getNextSibling() == c);
    EXPECT_TRUE(c.getPreviousSibling() == b);
    EXPECT_TRUE(b.getParentNode() == root);
    EXPECT_TRUE(root.getParentNode() == document);
    EXPECT_TRUE(b.getOwnerDocument() == document);
    EXPECT_TRUE(root.hasChildNodes());
    EXPECT_FALSE(b.hasChildNodes());
    EXPECT_EQ(root.getChildNodes().getLength(), 2u);
    for (const QRMIDOM_Node& absent : {b.getFirstChild(), b.getLastChild(), b.getPreviousSibling(),
                                       c.getNextSibling(), document.getParentNode()}) {
        EXPECT_TRUE(absent.isNull());
        EXPECT_EQ(absent.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    }
    EXPECT_TRUE(document.getOwnerDocument().isNull());
    EXPECT_EQ(document.getOwnerDocument().getRefCountedNodeImpl(), nullptr);
}

TEST(Node, ChangesItsTree)
{
    QRMIDOM_Document document = documentOf("<a><b/></a>");
    QRMIDOM_Node root = document.getDocumentElement();
    const QRMIDOM_Node b = root.getFirstChild();
    const QRMIDOM_Element c = document.createElement("c");
    EXPECT_TRUE(root.appendChild(c) == c);
    EXPECT_EQ(written(root), "<a><b/><c/></a>");
    const QRMIDOM_Element d = document.createElement("d");
    EXPECT_TRUE(root.insertBefore(d, c) == d);
    EXPECT_EQ(written(root), "<a><b/><d/><c/></a>");
    const QRMIDOM_Element e = document.createElement("e");
    EXPECT_TRUE(root.insertBefore(e, QRMIDOM_Node()) == e);
    EXPECT_EQ(written(root), "<a><b/><d/><c/><e/></a>");
    EXPECT_TRUE(root.removeChild(b) == b);
    EXPECT_EQ(written(root), "<a><d/><c/><e/></a>");
    EXPECT_TRUE(root.replaceChild(b, d) == d);
    EXPECT_EQ(written(root), "<a><b/><c/><e/></a>");
    QRMIDOM_DocumentFragment fragment = document.createDocumentFragment();
    fragment.appendChild(document.createElement("f"));
    fragment.appendChild(document.createTextNode("g"));
    root.appendChild(fragment);
    EXPECT_EQ(written(root), "<a><b/><c/><e/><f/>g</a>");
    EXPECT_FALSE(fragment.hasChildNodes());
}

TEST(Node, RefusesChangesThatTheDomForbids)
{
    QRMIDOM_Document document = documentOf("<a><b/>t</a>");
    QRMIDOM_Node root = document.getDocumentElement();
    QRMIDOM_Node b = root.getFirstChild();
    QRMIDOM_Node text = root.getLastChild();
    QRMIDOM_Document other = documentOf("<o/>");
    const QRMIDOM_Node foreign = other.getDocumentElement();
    const QRMIDOM_Node loose = document.createElement("l");
    const QRMIDOM_Node none;

    EXPECT_EQ(domCodeOf([&] { root.appendChild(foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.insertBefore(foreign, b); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.replaceChild(foreign, b); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.removeChild(loose); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.removeChild(none); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.insertBefore(loose, foreign); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.replaceChild(loose, none); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.appendChild(none); }), 3);
    EXPECT_EQ(domCodeOf([&] { b.appendChild(root); }), 3);
    EXPECT_EQ(domCodeOf([&] { b.appendChild(b); }), 3);
    EXPECT_EQ(domCodeOf([&] { b.insertBefore(b, none); }), 3);
    EXPECT_EQ(domCodeOf([&] { root.replaceChild(root, b); }), 3);
    EXPECT_EQ(domCodeOf([&] { text.appendChild(loose); }), 3);
    EXPECT_EQ(domCodeOf([&] { document.appendChild(loose); }), 3);
    EXPECT_EQ(written(root), "<a><b/>t</a>");
    EXPECT_EQ(written(other.getDocumentElement()), "<o/>");
}

TEST(Node, LetsXercesErrorsThroughWhereItOnlySets)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>");
    QRMIDOM_Node readOnly = document.getDocumentElement().getFirstChild().getFirstChild();
    ASSERT_EQ(readOnly.getNodeType(), 3);
    try {
        readOnly.setNodeValue("new");
        FAIL() << "it was changed";
    } catch (const xercesc::DOMException& error) {
        EXPECT_EQ(error.code, 7);
    }
    EXPECT_EQ(readOnly.getNodeValue(), I18NString("x"));
}

TEST(Node, SetsValues)
{
    const QRMIDOM_Document document = documentOf("<a n='v'>t</a>");
    QRMIDOM_Node text = document.getDocumentElement().getFirstChild();
    text.setNodeValue("new");
    document.getDocumentElement().getAttributes().item(0).setNodeValue("w");
    EXPECT_EQ(written(document.getDocumentElement()), "<a n=\"w\">new</a>");
    text.setNodeValue("");
    EXPECT_EQ(text.getNodeValue(), I18NString(""));
}

TEST(Node, NormalizesTextInItsSubtree)
{
    QRMIDOM_Document document = documentOf("<a><b>x</b></a>");
    QRMIDOM_Node b = document.getDocumentElement().getFirstChild();
    b.appendChild(document.createTextNode("y"));
    b.appendChild(document.createTextNode(""));
    EXPECT_EQ(b.getChildNodes().getLength(), 3u);
    document.getDocumentElement().normalize();
    EXPECT_EQ(b.getChildNodes().getLength(), 1u);
    EXPECT_EQ(b.getFirstChild().getNodeValue(), I18NString("xy"));
}

TEST(Node, TellsWhichFeaturesAreSupported)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    EXPECT_TRUE(document.supports("XML", "1.0"));
    EXPECT_TRUE(document.supports("xml", ""));
    EXPECT_FALSE(document.supports("XML", "9.9"));
    EXPECT_FALSE(document.supports("", ""));
}

TEST(Node, ClonesFlatAndDeep)
{
    const QRMIDOM_Document document = documentOf("<a n='v'><b>t</b></a>");
    const QRMIDOM_Node root = document.getDocumentElement();
    const QRMIDOM_Node flat = root.cloneNode(0);
    const QRMIDOM_Node deep = root.cloneNode(5);
    EXPECT_EQ(written(flat), "<a n=\"v\"/>");
    EXPECT_EQ(written(deep), "<a n=\"v\"><b>t</b></a>");
    EXPECT_TRUE(deep != root);
    EXPECT_TRUE(deep.getParentNode().isNull());
    EXPECT_TRUE(deep.getOwnerDocument() == document);

    const QRMIDOM_Document copy = document.cloneNode(1);
    EXPECT_TRUE(copy.getOwnerDocument().isNull());
    EXPECT_EQ(written(copy), written(document));
    EXPECT_TRUE(copy != document);
}

TEST(Node, RefusesToCloneADocumentTypeWithoutADocument)
{
    const QRMIDOM_DocumentType doctype = QRMIDOM_DOMImplementation::getInstance().createDocumentType("a");
    EXPECT_EQ(domCodeOf([&] { doctype.cloneNode(1); }), 9);
    doctype.getDOM_NodeImpl()->release();
}

TEST(Node, FailsEveryOperationOnANullHandle)
{
    QRMIDOM_Node null;
    I18NString text("before");
    const QRMIDOM_Node other;
    EXPECT_EQ(assertionOf([&] { null.getNodeName(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNodeName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNodeValue(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNodeValue(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setNodeValue(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNodeType(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getParentNode(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getFirstChild(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getLastChild(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getPreviousSibling(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNextSibling(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getChildNodes(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttributes(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getOwnerDocument(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.insertBefore(other, other); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.replaceChild(other, other); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeChild(other); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.appendChild(other); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.hasChildNodes(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.cloneNode(1); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.normalize(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.supports(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNamespaceURI(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getNamespaceURI(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getPrefix(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getPrefix(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getLocalName(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getLocalName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchNodeName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchNamespaceURI(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchLocalName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setRefCountedNodeImpl(nullptr); }), "QRM_ASSERT(refCountedNodeImpl);");
    EXPECT_EQ(text, I18NString("before"));
}

TEST(Node, NamesItsSourceInAssertions)
{
    try {
        QRMIDOM_Node().getNodeName();
        FAIL() << "no assertion failed";
    } catch (const QRMAssertError& error) {
        EXPECT_EQ(error.getBackTrace().at(0).fileName, "QRMIDOM_Node.cpp");
        EXPECT_GT(error.getBackTrace().at(0).lineNumber, 0);
    }
}

} // namespace
