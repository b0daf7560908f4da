#include <map>

#include "tests/support/TestDocument.h"

namespace {

using Map = std::map<I18NString, I18NString>;

QRMIDOM_Node first(const QRMIDOM_Node& node)
{
    return node.getFirstChild();
}

Map namespacesOf(const QRMIDOM_Node& node)
{
    Map namespaces;
    QRMIDOM_Helper::getNamespaces(node, namespaces);
    return namespaces;
}

TEST(NamespacePrefix, IsTheNearestOneDeclared)
{
    const QRMIDOM_Document document = documentOf("<a xmlns:p='u'><b xmlns:q='u'><c/></b></a>");
    const QRMIDOM_Node a = document.getDocumentElement();
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(first(first(a)), "u"), "q");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(first(a), "u"), "q");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(a, "u"), "p");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(a, "v"), "");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(a, "U"), "");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(a, ""), "");
}

TEST(NamespacePrefix, IsTheFirstByNameOnOneElement)
{
    const QRMIDOM_Document document = documentOf("<a xmlns:z='u' xmlns:b='u' xmlns:c='v' n='u'/>");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(document.getDocumentElement(), "u"), "b");
}

TEST(NamespacePrefix, DoesNotCountTheDefaultNamespace)
{
    const QRMIDOM_Document document = documentOf("<a xmlns='u'><b/></a>");
    const QRMIDOM_Node b = first(document.getDocumentElement());
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(b, "u"), "");
    EXPECT_TRUE(namespacesOf(b).empty());
}

TEST(NamespacePrefix, IsGivenEvenWhereThePrefixIsBoundAnew)
{
    const QRMIDOM_Document document = documentOf("<a xmlns:p='u1'><b xmlns:p='u2'/></a>");
    const QRMIDOM_Node b = first(document.getDocumentElement());
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(b, "u1"), "p");
    EXPECT_EQ(namespacesOf(b), (Map{{"xmlns:p", "u2"}}));
}

TEST(NamespacePrefix, GoesOnBehindADeclarationWithoutAPrefix)
{
    QRMIDOM_Document document = documentOf("<a xmlns:p='u'><b/></a>");
    QRMIDOM_Element b = first(document.getDocumentElement());
    QRMIDOM_Attr odd = document.createAttribute("xmlns:");
    odd.setNodeValue("u");
    b.setAttributeNode(odd);
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(b, "u"), "p");
    EXPECT_EQ(namespacesOf(b), (Map{{"xmlns:", "u"}, {"xmlns:p", "u"}}));
}

TEST(NamespaceScope, DoesNotKnowWhatElementsWereMadeWith)
{
    QRMIDOM_Document document = emptyDocument();
    document.appendChild(document.createElementNS("u", "p:a"));
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(document.getDocumentElement(), "u"), "");
    EXPECT_TRUE(namespacesOf(document.getDocumentElement()).empty());
}

TEST(NamespaceScope, WorksInTreesMadeWithoutNamespaces)
{
    QRMIDOM_Document document = emptyDocument();
    QRMIDOM_Element root = document.createElement("a");
    root.setAttribute("xmlns:p", "u");
    root.setAttribute("xmlnsp", "no");
    root.setAttribute("XMLNS:P", "no");
    document.appendChild(root);
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(root, "u"), "p");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(root, "no"), "");
    EXPECT_EQ(namespacesOf(root), (Map{{"xmlns:p", "u"}}));
}

TEST(NamespaceScope, CountsDefaultsOfTheDocumentType)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ATTLIST a xmlns:p CDATA 'u'>]><a/>");
    EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(document.getDocumentElement(), "u"), "p");
}

TEST(NamespaceScope, StartsAtNodesOfEveryType)
{
    QRMIDOM_Document document = documentOf("<a xmlns:p='u'>t<!--c--><?p d?><![CDATA[x]]></a>");
    const QRMIDOM_Element a = document.getDocumentElement();
    for (QRMIDOM_Node child = a.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
        EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(child, "u"), "p") << child.getNodeType();
        EXPECT_EQ(namespacesOf(child), (Map{{"xmlns:p", "u"}})) << child.getNodeType();
    }
    for (const QRMIDOM_Node& node :
         {QRMIDOM_Node(document), QRMIDOM_Node(a.getAttributeNode("xmlns:p")),
          QRMIDOM_Node(document.createDocumentFragment()), QRMIDOM_Node(document.createElement("loose"))}) {
        EXPECT_EQ(QRMIDOM_Helper::getNamespacePrefix(node, "u"), "") << node.getNodeType();
        EXPECT_TRUE(namespacesOf(node).empty()) << node.getNodeType();
    }
}

TEST(Namespaces, AreAddedToWhatTheMapHas)
{
    const QRMIDOM_Document document =
        documentOf("<a xmlns:p='outer' xmlns:r='r'><b xmlns:p='inner' xmlns:q='q' xmlns='d'><c/></b></a>");
    Map namespaces = {{"xmlns:q", "kept"}, {"other", "too"}};
    QRMIDOM_Helper::getNamespaces(first(first(document.getDocumentElement())), namespaces);
    EXPECT_EQ(namespaces,
              (Map{{"other", "too"}, {"xmlns:p", "inner"}, {"xmlns:q", "kept"}, {"xmlns:r", "r"}}));
}

TEST(NamespaceScope, FailsAnAssertionOnTheNullHandle)
{
    const char* const text =
        "QRM_ASSERT_NAMED((searchNode!=NULL), \"[KorvelHelper::GetNamespaces] being called with null "
        "searchNode.\");";
    Map namespaces = {{"kept", "kept"}};
    EXPECT_EQ(assertionOf([] { QRMIDOM_Helper::getNamespacePrefix(QRMIDOM_Node(), "u"); }), text);
    EXPECT_EQ(assertionOf([&] { QRMIDOM_Helper::getNamespaces(QRMIDOM_Node(), namespaces); }), text);
    EXPECT_EQ(namespaces, (Map{{"kept", "kept"}}));
    try {
        QRMIDOM_Helper::getNamespacePrefix(QRMIDOM_Node(), "u");
    } catch (const QRMAssertError& error) {
        EXPECT_EQ(error.getBackTrace().at(0).fileName, "QRMIDOM_Helper.cpp");
    }
}

} // namespace
