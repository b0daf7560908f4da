#include "tests/support/TestDocument.h"

namespace {

TEST(Document, TellsItsPartsAndItsImplementation)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a []><a/>");
    EXPECT_EQ(document.getDoctype().getName(), I18NString("a"));
    EXPECT_EQ(document.getDocumentElement().getTagName(), I18NString("a"));
    EXPECT_FALSE(document.getDOMImplementation() == NULL);
    EXPECT_TRUE(documentOf("<a/>").getDoctype().isNull());
    EXPECT_TRUE(emptyDocument().getDocumentElement().isNull());
}

TEST(Document, MakesEveryKindOfNode)
{
    QRMIDOM_Document document = emptyDocument();
    EXPECT_EQ(written(document.createElement("e")), "<e/>");
    EXPECT_EQ(written(document.createTextNode("t")), "t");
    EXPECT_EQ(written(document.createComment("c")), "<!--c-->");
    EXPECT_EQ(written(document.createCDATASection("d")), "<![CDATA[d]]>");
    EXPECT_EQ(written(document.createProcessingInstruction("t", "d")), "<?t d?>");
    EXPECT_EQ(written(document.createEntityReference("e")), "&e;");
    EXPECT_EQ(document.createDocumentFragment().getNodeType(), 11);
    EXPECT_EQ(document.createAttribute("n").getName(), I18NString("n"));
    const QRMIDOM_Element element = document.createElementNS("urn:u", "p:e");
    EXPECT_EQ(element.getNamespaceURI(), I18NString("urn:u"));
    EXPECT_EQ(element.getPrefix(), I18NString("p"));
    EXPECT_EQ(element.getLocalName(), I18NString("e"));
    EXPECT_EQ(document.createAttributeNS("urn:u", "p:n").getNamespaceURI(), I18NString("urn:u"));
    EXPECT_EQ(document.createElementNS("", "e").getLocalName(), I18NString("e"));
    EXPECT_EQ(document.createElement("p:e").getLocalName(), I18NString(""));
}

TEST(Document, TakesEmptyDataForNone)
{
    QRMIDOM_Document document = emptyDocument();
    EXPECT_EQ(document.createTextNode("").getData(), I18NString(""));
    EXPECT_EQ(document.createComment("").getData(), I18NString(""));
    EXPECT_EQ(document.createCDATASection("").getData(), I18NString(""));
    EXPECT_EQ(document.createProcessingInstruction("t", "").getData(), I18NString(""));
}

TEST(Document, RefusesNamesThatAreNone)
{
    QRMIDOM_Document document = emptyDocument();
    for (const char* name : {"", "1", "a b", "a/b"}) {
        EXPECT_EQ(domCodeOf([&] { document.createElement(name); }), 5) << name;
        EXPECT_EQ(domCodeOf([&] { document.createAttribute(name); }), 5) << name;
        EXPECT_EQ(domCodeOf([&] { document.createProcessingInstruction(name, "d"); }), 5) << name;
        EXPECT_EQ(domCodeOf([&] { document.createEntityReference(name); }), 5) << name;
        EXPECT_EQ(domCodeOf([&] { document.createElementNS("urn:u", name); }), 5) << name;
        EXPECT_EQ(domCodeOf([&] { document.createAttributeNS("urn:u", name); }), 5) << name;
    }
    EXPECT_EQ(domCodeOf([&] { document.createElementNS("", "p:e"); }), 14);
    EXPECT_EQ(domCodeOf([&] { document.createElementNS("urn:u", "a:b:c"); }), 14);
    EXPECT_EQ(domCodeOf([&] { document.createAttributeNS("", "xmlns"); }), 14);
    EXPECT_EQ(domCodeOf([&] { document.createAttributeNS("urn:u", "xmlns:p"); }), 14);
}

TEST(Document, ListsElements)
{
    const QRMIDOM_Document document = documentOf("<a xmlns:p='urn:p'><p:b/><b/></a>");
    EXPECT_EQ(document.getElementsByTagName("*").getLength(), 3u);
    EXPECT_EQ(document.getElementsByTagName("p:b").getLength(), 1u);
    EXPECT_EQ(document.getElementsByTagName("").getLength(), 0u);
    EXPECT_EQ(document.getElementsByTagNameNS("urn:p", "b").getLength(), 1u);
    EXPECT_EQ(document.getElementsByTagNameNS("", "b").getLength(), 1u);
}

TEST(Document, FindsElementsByTheirId)
{
    const QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ATTLIST b id ID #IMPLIED>]><a><b id='x'/></a>");
    EXPECT_EQ(document.getElementById("x").getTagName(), I18NString("b"));
    EXPECT_TRUE(document.getElementById("y").isNull());
    EXPECT_TRUE(document.getElementById("").isNull());
}

TEST(Document, ImportsCopies)
{
    QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Document other = documentOf("<o n='v'><p>t</p></o>");
    QRMIDOM_Node source = other.getDocumentElement();
    const QRMIDOM_Node deep = document.importNode(source, 1);
    const QRMIDOM_Node flat = document.importNode(source, 0);
    EXPECT_EQ(written(deep), "<o n=\"v\"><p>t</p></o>");
    EXPECT_EQ(written(flat), "<o n=\"v\"/>");
    EXPECT_TRUE(deep.getOwnerDocument() == document);
    EXPECT_TRUE(deep.getParentNode().isNull());
    EXPECT_EQ(written(other.getDocumentElement()), "<o n=\"v\"><p>t</p></o>");
    QRMIDOM_Node own = document.getDocumentElement();
    EXPECT_TRUE(document.importNode(own, 1) != own);
}

TEST(Document, RefusesToImportDocumentsAndNothing)
{
    QRMIDOM_Document document = documentOf("<!DOCTYPE a []><a/>");
    QRMIDOM_Node self = document;
    QRMIDOM_Node doctype = document.getDoctype();
    QRMIDOM_Node null;
    EXPECT_EQ(domCodeOf([&] { document.importNode(self, 1); }), 9);
    EXPECT_EQ(domCodeOf([&] { document.importNode(doctype, 1); }), 9);
    EXPECT_EQ(assertionOf([&] { document.importNode(null, 1); }), "QRM_ASSERT(importedNode != NULL);");
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Document().importNode(null, 1); }),
              "QRM_ASSERT(importedNode != NULL);");
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Document().importNode(self, 1); }), kNullHandle);
}

TEST(Document, RenamesElementsAndAttributes)
{
    QRMIDOM_Document document = documentOf("<a xmlns='urn:u' n='v'><b/></a>");
    QRMIDOM_Node root = document.getDocumentElement();
    EXPECT_TRUE(document.renameNode(root, "urn:w", "p:x") == root);
    EXPECT_EQ(root.getNodeName(), I18NString("p:x"));
    EXPECT_EQ(root.getNamespaceURI(), I18NString("urn:w"));
    document.renameNode(root, "", "y");
    EXPECT_EQ(root.getNodeName(), I18NString("y"));
    EXPECT_EQ(root.getNamespaceURI(), I18NString(""));
    QRMIDOM_Node attribute = QRMIDOM_Element(root).getAttributeNode("n");
    EXPECT_TRUE(document.renameNode(attribute, "urn:u", "q:m") == attribute);
    EXPECT_EQ(QRMIDOM_Element(root).getAttributeNS("urn:u", "m"), I18NString("v"));
}

TEST(Document, LeavesTheArgumentAsAnOrphanWhenAPlainElementGetsANamespace)
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Node plain = document.createElement("a");
    document.appendChild(plain);
    plain.appendChild(document.createTextNode("t"));
    EXPECT_TRUE(document.renameNode(plain, "urn:u", "p:b") == plain);
    EXPECT_EQ(document.getDocumentElement().getTagName(), I18NString("p:b"));
    EXPECT_EQ(written(document.getDocumentElement()), "<p:b>t</p:b>");
    EXPECT_FALSE(document.getDocumentElement() == plain);
    EXPECT_TRUE(plain.getParentNode().isNull());
}

TEST(Document, RefusesToRenameWhatCannotBe)
{
    QRMIDOM_Document document = documentOf("<a>t</a>");
    QRMIDOM_Node root = document.getDocumentElement();
    QRMIDOM_Node text = root.getFirstChild();
    QRMIDOM_Document other = documentOf("<o/>");
    QRMIDOM_Node foreign = other.getDocumentElement();
    QRMIDOM_Node null;
    EXPECT_EQ(domCodeOf([&] { document.renameNode(text, "", "x"); }), 9);
    EXPECT_EQ(domCodeOf([&] { document.renameNode(foreign, "", "x"); }), 4);
    EXPECT_EQ(domCodeOf([&] { document.renameNode(null, "", "x"); }), 8);
    EXPECT_EQ(domCodeOf([&] { document.renameNode(root, "", "p:x"); }), 14);
    EXPECT_EQ(domCodeOf([&] { document.renameNode(root, "", ""); }), 14);
    EXPECT_EQ(written(root), "<a>t</a>");
}

TEST(Document, NormalizesIntoItsPlainForm)
{
    QRMIDOM_Document document =
        documentOf("<!DOCTYPE a [<!ENTITY e 'x'>]><!--top--><a>t<![CDATA[c]]>u<!--k-->&e;</a>");
    document.normalizeDocument();
    EXPECT_EQ(written(document.getDocumentElement()), "<a>tcu&e;</a>");
    for (QRMIDOM_Node node = document.getFirstChild(); !node.isNull(); node = node.getNextSibling()) {
        EXPECT_NE(node.getNodeType(), 8);
    }
    EXPECT_EQ(document.getDocumentElement().getFirstChild().getNodeType(), 3);
    EXPECT_EQ(document.getDocumentElement().getLastChild().getNodeType(), 5);
    EXPECT_EQ(assertionOf([] { QRMIDOM_Document().normalizeDocument(); }),
              "QRM_ASSERT(this->m_nodeImpl != NULL);");
}

TEST(Document, AddsNoNamespaceDeclarationsWhenItNormalizes)
{
    QRMIDOM_Document document = emptyDocument();
    document.appendChild(document.createElementNS("urn:u", "p:a"));
    document.normalizeDocument();
    EXPECT_EQ(written(document.getDocumentElement()), "<p:a/>");
}

TEST(Document, FailsEveryOperationOnANullHandle)
{
    QRMIDOM_Document null;
    const I18NString text;
    QRMIDOM_Node node;
    EXPECT_EQ(assertionOf([&] { null.getDoctype(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getDOMImplementation(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getDocumentElement(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createElement(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createDocumentFragment(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createTextNode(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createComment(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createCDATASection(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createProcessingInstruction(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createAttribute(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createEntityReference(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createElementNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.createAttributeNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getElementsByTagName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getElementsByTagNameNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getElementById(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.renameNode(node, text, text); }), kNullHandle);
}

} // namespace
