#include "tests/support/TestDocument.h"

namespace {

constexpr const char* kTwoNamespaces = "<p:a xmlns:p='urn:p' p:n='1' n='2'><p:b/><b/></p:a>";

TEST(Element, TellsItsTagName)
{
    const QRMIDOM_Document document = documentOf(kTwoNamespaces);
    const QRMIDOM_Element root = document.getDocumentElement();
    EXPECT_EQ(root.getTagName(), I18NString("p:a"));
    I18NString name("before");
    root.getTagName(name);
    EXPECT_EQ(name, I18NString("p:a"));
    EXPECT_TRUE(root.matchTagName("p:a"));
    EXPECT_FALSE(root.matchTagName("a"));
    EXPECT_FALSE(root.matchTagName("P:A"));
    EXPECT_FALSE(root.matchTagName(""));
}

TEST(Element, ReadsAttributes)
{
    const QRMIDOM_Document document = documentOf(kTwoNamespaces);
    const QRMIDOM_Element root = document.getDocumentElement();
    EXPECT_EQ(root.getAttribute("n"), I18NString("2"));
    EXPECT_EQ(root.getAttribute("p:n"), I18NString("1"));
    EXPECT_EQ(root.getAttributeNS("urn:p", "n"), I18NString("1"));
    EXPECT_EQ(root.getAttributeNS("", "n"), I18NString("2"));
    EXPECT_TRUE(root.hasAttribute("n"));
    EXPECT_TRUE(root.hasAttributeNS("urn:p", "n"));
    EXPECT_TRUE(root.matchAttribute("n", "2"));
    EXPECT_FALSE(root.matchAttribute("n", "1"));
    EXPECT_TRUE(root.matchAttributeNS("urn:p", "n", "1"));
    EXPECT_FALSE(root.matchAttributeNS("urn:p", "n", "2"));
    EXPECT_EQ(root.getAttributeNode("n").getValue(), I18NString("2"));
    EXPECT_EQ(root.getAttributeNodeNS("urn:p", "n").getValue(), I18NString("1"));
    I18NString value("before");
    root.getAttribute("n", value);
    EXPECT_EQ(value, I18NString("2"));
    root.getAttributeNS("urn:p", "n", value);
    EXPECT_EQ(value, I18NString("1"));
}

TEST(Element, ReadsAnAbsentAttributeAsEmpty)
{
    const QRMIDOM_Document document = documentOf("<a empty=''/>");
    const QRMIDOM_Element root = document.getDocumentElement();
    for (const char* name : {"absent", "", "1 2"}) {
        EXPECT_EQ(root.getAttribute(name), I18NString(""));
        EXPECT_EQ(root.getAttributeNS("urn:u", name), I18NString(""));
        EXPECT_FALSE(root.hasAttribute(name));
        EXPECT_FALSE(root.hasAttributeNS("", name));
        EXPECT_TRUE(root.getAttributeNode(name).isNull());
        EXPECT_TRUE(root.getAttributeNodeNS("", name).isNull());
        EXPECT_TRUE(root.matchAttribute(name, ""));
        EXPECT_TRUE(root.matchAttributeNS("", name, ""));
        EXPECT_FALSE(root.matchAttribute(name, "x"));
        I18NString value("before");
        root.getAttribute(name, value);
        EXPECT_TRUE(value.empty());
        value = "before";
        root.getAttributeNS("", name, value);
        EXPECT_TRUE(value.empty());
    }
    EXPECT_TRUE(root.hasAttribute("empty"));
    EXPECT_TRUE(root.matchAttribute("empty", ""));
}

TEST(Element, SetsAndRemovesAttributes)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Element root = document.getDocumentElement();
    root.setAttribute("n", "1");
    root.setAttribute("n", "2");
    root.setAttribute("e", "");
    root.setAttributeNS("urn:p", "p:n", "3");
    EXPECT_EQ(written(root), "<a e=\"\" n=\"2\" p:n=\"3\"/>");
    root.removeAttribute("n");
    root.removeAttribute("absent");
    root.removeAttributeNS("urn:p", "n");
    root.removeAttributeNS("urn:p", "absent");
    EXPECT_EQ(written(root), "<a e=\"\"/>");
}

TEST(Element, BringsBackADefaultWhenTheAttributeIsRemoved)
{
    const QRMIDOM_Document document = documentOf("<!DOCTYPE a [<!ATTLIST a n CDATA 'd'>]><a n='v'/>");
    QRMIDOM_Element root = document.getDocumentElement();
    EXPECT_TRUE(root.getAttributeNode("n").getSpecified());
    root.removeAttribute("n");
    EXPECT_EQ(root.getAttribute("n"), I18NString("d"));
    EXPECT_FALSE(root.getAttributeNode("n").getSpecified());
}

TEST(Element, RefusesNamesThatAreNone)
{
    const QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Element root = document.getDocumentElement();
    for (const char* name : {"", "1", "a b", "<"}) {
        EXPECT_EQ(domCodeOf([&] { root.setAttribute(name, "v"); }), 5) << name;
    }
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNS("urn:u", "1", "v"); }), 5);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNS("urn:u", "", "v"); }), 14);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNS("urn:u", "a:b:c", "v"); }), 14);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNS("", "p:a", "v"); }), 14);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNS("urn:u", "xmlns:p", "v"); }), 14);
    EXPECT_EQ(written(root), "<a/>");
}

TEST(Element, SetsAndRemovesAttributeNodes)
{
    QRMIDOM_Document document = documentOf("<a/>");
    QRMIDOM_Element root = document.getDocumentElement();
    QRMIDOM_Attr first = document.createAttribute("n");
    first.setNodeValue("1");
    const QRMIDOM_Attr none = root.setAttributeNode(first);
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(none.getRefCountedNodeImpl(), document.getRefCountedNodeImpl());
    const QRMIDOM_Attr second = document.createAttribute("n");
    EXPECT_TRUE(root.setAttributeNode(second) == first);
    EXPECT_TRUE(first.getOwnerElement().isNull());
    EXPECT_TRUE(root.setAttributeNode(second) == second);
    EXPECT_TRUE(root.removeAttributeNode(second) == second);

    const QRMIDOM_Attr inNamespace = document.createAttributeNS("urn:p", "p:n");
    EXPECT_TRUE(root.setAttributeNodeNS(inNamespace).isNull());
    EXPECT_TRUE(root.setAttributeNodeNS(document.createAttributeNS("urn:p", "q:n")) == inNamespace);
}

TEST(Element, RefusesAttributeNodesThatAreNotItsOwn)
{
    QRMIDOM_Document document = documentOf("<a><b n='v'/></a>");
    QRMIDOM_Element root = document.getDocumentElement();
    const QRMIDOM_Attr inUse = QRMIDOM_Element(root.getFirstChild()).getAttributeNode("n");
    const QRMIDOM_Document other = documentOf("<o n='v'/>");
    const QRMIDOM_Attr foreign = other.getDocumentElement().getAttributeNode("n");
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNode(inUse); }), 10);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNodeNS(inUse); }), 10);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNode(foreign); }), 4);
    EXPECT_EQ(domCodeOf([&] { root.removeAttributeNode(inUse); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNode(QRMIDOM_Attr()); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.setAttributeNodeNS(QRMIDOM_Attr()); }), 8);
    EXPECT_EQ(domCodeOf([&] { root.removeAttributeNode(QRMIDOM_Attr()); }), 8);
    EXPECT_EQ(written(root), "<a><b n=\"v\"/></a>");
}

TEST(Element, ListsElementsByName)
{
    const QRMIDOM_Document document = documentOf(kTwoNamespaces);
    const QRMIDOM_Element root = document.getDocumentElement();
    EXPECT_EQ(root.getElementsByTagName("b").getLength(), 1u);
    EXPECT_EQ(root.getElementsByTagName("p:b").getLength(), 1u);
    EXPECT_EQ(root.getElementsByTagName("*").getLength(), 2u);
    EXPECT_EQ(root.getElementsByTagName("p:a").getLength(), 0u);
    EXPECT_EQ(root.getElementsByTagName("").getLength(), 0u);
    EXPECT_EQ(root.getElementsByTagNameNS("urn:p", "b").getLength(), 1u);
    EXPECT_EQ(root.getElementsByTagNameNS("", "b").getLength(), 1u);
    EXPECT_EQ(root.getElementsByTagNameNS("*", "b").getLength(), 2u);
}

TEST(Element, FailsEveryOperationOnANullHandle)
{
    QRMIDOM_Element null;
    I18NString text("before");
    EXPECT_EQ(assertionOf([&] { null.getTagName(); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getTagName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchTagName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttribute(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttribute(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchAttribute(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setAttribute(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeAttribute(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.hasAttribute(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttributeNode(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setAttributeNode(QRMIDOM_Attr()); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeAttributeNode(QRMIDOM_Attr()); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getElementsByTagName(text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttributeNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttributeNS(text, text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.matchAttributeNS(text, text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setAttributeNS(text, text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.removeAttributeNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.hasAttributeNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getAttributeNodeNS(text, text); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.setAttributeNodeNS(QRMIDOM_Attr()); }), kNullHandle);
    EXPECT_EQ(assertionOf([&] { null.getElementsByTagNameNS(text, text); }), kNullHandle);
    EXPECT_EQ(text, I18NString("before"));
}

} // namespace
